// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/Observation.h>

namespace kx {
namespace {

class Lamp : public Subclass<Lamp, NSObject> {
  public:
    void setBrightness(int brightness) {
        const ChangeNotice notice(*this, "brightness");
        brightness_ = brightness;
    }
    int brightness() const { return brightness_; }

  private:
    int brightness_ = 0;
};

struct ObservationTest : ::testing::Test {
    auto noting(std::string name) {
        return [this, name = std::move(name)](NSObject& object, std::string_view, ChangePhase phase) {
            told += name + (phase == ChangePhase::Will ? "<" : ">");
            told += std::to_string(static_cast<Lamp&>(object).brightness()) + " ";
        };
    }
    std::string toldOf(int brightness) {
        told.clear();
        lamp->setBrightness(brightness);
        return told;
    }
    std::shared_ptr<Lamp> lamp = make<Lamp>();
    std::string told;
};

TEST_F(ObservationTest, TellsBeforeAndAfterByKeyAndOption) {
    const auto both = observe(lamp, "brightness", ChangeOptions::Both, noting("a"));
    const auto did = observe(lamp, "brightness", ChangeOptions::Did, noting("b"));
    const auto will = observe(lamp, "brightness", ChangeOptions::Will, noting("c"));
    const auto other = observe(lamp, "colour", ChangeOptions::Both, noting("d"));
    EXPECT_EQ(toldOf(3), "a<0 c<0 a>3 b>3 ");
}

TEST_F(ObservationTest, ObserversComeAndGoInsideACallback) {
    ObservationToken first, second, late;
    first = observe(lamp, "brightness", ChangeOptions::Did, [&](auto&&...) {
        second.remove();
        late = observe(lamp, "brightness", ChangeOptions::Did, noting("late"));
        first.remove();
    });
    second = observe(lamp, "brightness", ChangeOptions::Did, noting("second"));
    EXPECT_EQ(toldOf(1), "");
    EXPECT_EQ(toldOf(2), "late>2 ");
}

TEST_F(ObservationTest, ATokenMayOutliveTheObject) {
    auto token = observe(lamp, "brightness", ChangeOptions::Both, noting("a"));
    lamp.reset();
    token.remove();
    EXPECT_EQ(told, "");
    const auto none = observe(nullptr, "brightness", ChangeOptions::Both, noting("a"));
}

}  // namespace
}  // namespace kx
