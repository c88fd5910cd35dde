// SPDX-License-Identifier: MIT

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Runtime/Operation.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>
#include <KXFoundation/Testing/CapturedLog.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;

constinit Operation<int(int)> scaleOperation{"test_scale:"};
constinit Operation<int(int)> doubleScaleOperation{"test_doubleScale:"};
constinit Operation<void()> resetOperation{"test_reset"};
constinit ClassOperation<int()> limitOperation{"test_limit"};
constinit ClassOperation<int()> otherLimitOperation{"test_otherLimit"};

class Shape : public Subclass<Shape, NSObject> {
  public:
    int scale(int by) { return scaleOperation(*this, by); }
    static void defineOperations(Class& cls) {
        scaleOperation.implement<&Shape::plainScale>(cls);
        doubleScaleOperation.implement<&Shape::doubled>(cls);
        resetOperation.implement<&Shape::reset>(cls);
        limitOperation.implement(cls, [](Class&) { return 1; });
        otherLimitOperation.implement(cls, [](Class&) { return 2; });
    }

  private:
    int plainScale(int by) { return by; }
    /// Reaches the former one once exchanged.
    int doubled(int by) { return 2 * doubleScaleOperation(*this, by); }
    void reset() {}
};

class Circle : public Subclass<Circle, Shape> {};
class SmallCircle : public Subclass<SmallCircle, Circle> {};

TEST(Operation, ExchangingReachesSubclassesAloneAndTwiceRestores) {
    for (Class* const exchanged : {&Shape::classObject(), &Circle::classObject()}) {
        InstanceMethodSwizzling(*exchanged, "test_scale:", "test_doubleScale:");
        EXPECT_EQ(make<Circle>()->scale(5), 10);
        EXPECT_EQ(make<SmallCircle>()->scale(5), 10) << "subclasses inherit the exchanged entry";
        EXPECT_EQ(make<Shape>()->scale(5), exchanged == &Shape::classObject() ? 10 : 5);
        EXPECT_THAT(exchanged->describe(), HasSubstr("- test_scale: runs test_doubleScale: (exchanged)"));
        EXPECT_EQ(Shape::classObject().describe().find("exchanged") != std::string::npos,
                  exchanged == &Shape::classObject());
        InstanceMethodSwizzling(*exchanged, "test_scale:", "test_doubleScale:");
        EXPECT_EQ(make<SmallCircle>()->scale(5), 5);
    }
}

TEST(Operation, ClassLevelTablesAreExchangedApart) {
    EXPECT_EQ(limitOperation(Circle::classObject()), 1);
    ClassMethodSwizzling(Circle::classObject(), "test_limit", "test_otherLimit");
    EXPECT_EQ(limitOperation(Circle::classObject()), 2);
    EXPECT_EQ(otherLimitOperation(Circle::classObject()), 1);
    EXPECT_EQ(limitOperation(Shape::classObject()), 1);
    ClassMethodSwizzling(Circle::classObject(), "test_limit", "test_otherLimit");
}

TEST(Operation, WhatDoesNotFitIsRefusedWithOneLine) {
    const testing::CapturedLog log;
    InstanceMethodSwizzling(Shape::classObject(), "test_scale:", "test_reset");
    InstanceMethodSwizzling(Shape::classObject(), "test_scale:", "test_unknown");
    static constinit Operation<double()> misfit{"test_scale:"};
    misfit.implement(Shape::classObject(), [](NSObject&) { return 1.0; });
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("signatures differ"), HasSubstr("does not know both"),
                                         HasSubstr("known with another signature")));
    EXPECT_EQ(make<Shape>()->scale(3), 3);
}

TEST(Operation, AnUnknownOperationIsACallerError) {
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    const auto object = make<NSObject>();
    EXPECT_EQ(scaleOperation(*object, 3), 0);
    EXPECT_THAT(log.lines(), ElementsAre("NSObject does not know the operation test_scale:"));
}

}  // namespace
}  // namespace kx
