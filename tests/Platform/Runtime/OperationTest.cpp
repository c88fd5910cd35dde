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
    int doubled(int by) {
        return 2 * doubleScaleOperation(*this, by);
    }  // reaches the former one once exchanged
    void reset() {}
};

class Circle : public Subclass<Circle, Shape> {};
class SmallCircle : public Subclass<SmallCircle, Circle> {};

struct OperationTest : ::testing::Test {
    void exchange(Class& cls) { InstanceMethodSwizzling(cls, "test_scale:", "test_doubleScale:"); }
};

TEST_F(OperationTest, ExchangingTwiceRestores) {
    const auto shape = make<Shape>();
    EXPECT_EQ(shape->scale(5), 5);
    exchange(Shape::classObject());
    EXPECT_EQ(shape->scale(5), 10);
    EXPECT_EQ(make<SmallCircle>()->scale(5), 10) << "subclasses inherit the exchanged entry";
    exchange(Shape::classObject());
    EXPECT_EQ(shape->scale(5), 5);
}

TEST_F(OperationTest, ExchangingWhatIsInheritedLeavesTheBaseAlone) {
    const auto shape = make<Shape>();
    const auto circle = make<Circle>();
    exchange(Circle::classObject());
    EXPECT_EQ(circle->scale(5), 10);
    EXPECT_EQ(make<SmallCircle>()->scale(5), 10);
    EXPECT_EQ(shape->scale(5), 5);
    EXPECT_THAT(Circle::classObject().describe(),
                HasSubstr("- test_scale: runs test_doubleScale: (exchanged)"));
    exchange(Circle::classObject());
    EXPECT_EQ(circle->scale(5), 5);
}

TEST_F(OperationTest, ClassLevelTablesAreExchangedApart) {
    EXPECT_EQ(limitOperation(Circle::classObject()), 1);
    ClassMethodSwizzling(Circle::classObject(), "test_limit", "test_otherLimit");
    EXPECT_EQ(limitOperation(Circle::classObject()), 2);
    EXPECT_EQ(otherLimitOperation(Circle::classObject()), 1);
    EXPECT_EQ(limitOperation(Shape::classObject()), 1);
    ClassMethodSwizzling(Circle::classObject(), "test_limit", "test_otherLimit");
}

TEST_F(OperationTest, WhatDoesNotFitIsRefusedWithOneLine) {
    const testing::CapturedLog log;
    InstanceMethodSwizzling(Shape::classObject(), "test_scale:", "test_reset");
    InstanceMethodSwizzling(Shape::classObject(), "test_scale:", "test_unknown");
    static constinit Operation<double()> misfit{"test_scale:"};
    misfit.implement(Shape::classObject(), [](NSObject&) { return 1.0; });
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("signatures differ"), HasSubstr("does not know both"),
                                         HasSubstr("known with another signature")));
    EXPECT_EQ(make<Shape>()->scale(3), 3);
}

TEST_F(OperationTest, AnUnknownOperationIsACallerError) {
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    const auto object = make<NSObject>();
    EXPECT_EQ(scaleOperation(*object, 3), 0);
    EXPECT_THAT(log.lines(), ElementsAre("NSObject does not know the operation test_scale:"));
}

}  // namespace
}  // namespace kx
