// SPDX-License-Identifier: MIT

#include <atomic>
#include <optional>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/Epoch.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

struct Counted final : Retirable {
    explicit Counted(std::atomic<int>& n) : living(n) { ++living; }
    ~Counted() override { --living; }
    std::atomic<int>& living;
    int value = 7;
};

TEST(Epoch, DestroysWhenTheLastReaderLeaves) {
    std::atomic<int> living = 0;
    retire(new Counted(living));
    EXPECT_EQ(living, 0) << "nobody reads";
    {
        const EpochReading outer;
        {
            const EpochReading inner;
            retire(new Counted(living));
        }
        EXPECT_EQ(living, 1) << "the outer scope decides";
    }
    EXPECT_EQ(living, 0);
}

TEST(Epoch, WaitsForReadersOfOtherThreadsButNotForLaterOnes) {
    std::atomic<int> living = 0, phase = 0;
    const auto await = [&](int wanted) {
        while (phase < wanted) std::this_thread::yield();
    };
    std::thread reader([&] {
        std::optional<EpochReading> reading;
        reading.emplace();
        phase = 1;
        await(2);
        reading.reset();
        phase = 3;
    });
    await(1);
    retire(new Counted(living));
    EXPECT_EQ(living, 1);
    const EpochReading later;
    phase = 2;
    await(3);
    reader.join();
    EXPECT_EQ(living, 0) << "destroyed by the reader's leaving";
}

TEST(Epoch, TheKindsOfReadersDoNotWaitForEachOther) {
    std::atomic<int> living = 0;
    const bool canTell = !kThreadSanitizer;  // where it never says that nobody is reading
    {
        const EpochReading plain;
        EXPECT_EQ(isNobodyReadingFenced(), canTell);
        retireFenced(new Counted(living));
        EXPECT_EQ(living, 0);
    }
    const FencedEpochReading fenced;
    EXPECT_FALSE(isNobodyReadingFenced());
    std::thread([] { EXPECT_FALSE(isNobodyReadingFenced()) << "another thread is"; }).join();
    retire(new Counted(living));
    EXPECT_EQ(living, 0);
    retireFenced(new Counted(living));
    EXPECT_EQ(living, 1);
}

/// One thread replaces an object while three read it; a sanitizer sees it if they read a destroyed one.
template <class Reading>
void replaceWhileOthersRead(void (*discard)(Retirable*)) {
    std::atomic<int> living = 0;
    std::atomic<Counted*> shared = new Counted(living);
    std::atomic<bool> ending = false;
    std::atomic<long> sum = 0;
    testing::onThreads(4, [&](int thread) {
        for (int i = 0; thread == 0 && i < 3000; ++i) discard(shared.exchange(new Counted(living)));
        if (thread == 0) ending = true;
        while (!ending) {
            const Reading reading;
            sum += shared.load(std::memory_order_acquire)->value;
        }
    });
    retire(shared.load());
    EXPECT_EQ(living, 0);
    EXPECT_EQ(sum % 7, 0);
}

TEST(Epoch, ReadersNeverSeeWhatIsDestroyed) {
    replaceWhileOthersRead<EpochReading>(retire);
    replaceWhileOthersRead<FencedEpochReading>(retireFenced);
    replaceWhileOthersRead<FencedEpochReading>([](Retirable* unlinked) {
        if (isNobodyReadingFenced()) {
            delete unlinked;
        } else {
            retireFenced(unlinked);
        }
    });
}

}  // namespace
}  // namespace kx
