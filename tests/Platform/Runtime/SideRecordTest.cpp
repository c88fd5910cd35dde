// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Runtime/Monitor.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

class Thing : public Subclass<Thing, NSObject> {};

TEST(AssociatedValues, AreKeptPerObjectAndKeyAndReleasedWithIt) {
    static const char colour = 0, friendly = 0;
    auto thing = make<Thing>();
    const auto other = make<Thing>();
    auto held = make<Thing>();
    const std::weak_ptr<Thing> watched = held;
    setAssociatedValue(*thing, &colour, "red");
    setAssociatedValue(*thing, &friendly, Value(std::shared_ptr<NSObject>(std::move(held))));
    EXPECT_EQ(associatedValue(*thing, &colour), Value("red"));
    EXPECT_TRUE(associatedValue(*other, &colour).isNull());
    setAssociatedValue(*thing, &colour, {});
    EXPECT_TRUE(associatedValue(*thing, &colour).isNull());
    EXPECT_FALSE(watched.expired());
    thing.reset();
    EXPECT_TRUE(watched.expired());
}

/// Whether another thread has to wait for the monitor, seen without waiting: it counts only once let in.
template <class Guarded>
void excludesOtherThreads(Guarded& guarded) {
    int count = 0;
    testing::onThreads(4, [&](int) {
        for (int i = 0; i < 2000; ++i) {
            const Monitor held(guarded);
            const Monitor again(guarded);  // recursive
            ++count;
        }
    });
    EXPECT_EQ(count, 8000);
}

TEST(Monitor, OneThreadAtATimeHoldsAnObjectOrAClass) {
    const auto thing = make<Thing>();
    excludesOtherThreads(static_cast<NSObject&>(*thing));
    excludesOtherThreads(Thing::classObject());
}

}  // namespace
}  // namespace kx
