#include <random>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Platform/Runtime/ManualClock.h>

#include "support/CapturedLog.h"
#include "support/FaultyFileSystem.h"
#include "support/ScopedQueues.h"
#include "support/TemporaryDirectory.h"

namespace kx {
namespace {

using namespace std::chrono_literals;
using Then = testing::FaultyFileSystem::Then;

std::string key(int number) {
    return "key " + std::to_string(number);
}
/// Of another length and content for each number.
Value value(int number) {
    return std::string(static_cast<std::size_t>(number % 40) * 50, 'x') + std::to_string(number);
}

struct KXDiskCacheFaultTest : ::testing::TestWithParam<Then> {
    std::shared_ptr<KXDiskCache> open() const { return KXDiskCache::initWithPath(directory / "cache"); }

    testing::TemporaryDirectory directory;
    std::shared_ptr<testing::FaultyFileSystem> files = std::make_shared<testing::FaultyFileSystem>();
    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    ScopedPort<FileSystem> filesScope{files};
    ScopedPort<Clock> clockScope{clock};
    testing::CapturedLog log;
    testing::ScopedQueues queues;
};

/// Every call fails in turn, from the opening on. What was there stays, but for what was changed, which is
/// the former or the new value; a second later the store works again.
TEST_P(KXDiskCacheFaultTest, AFailingCallLosesNothing) {
    bool passed = false;
    std::size_t number = 0;
    while (!passed) {
        ++number;
        ASSERT_LT(number, 200u) << "no end of calls";
        const int now = static_cast<int>(number);
        {
            const auto before = open();
            before->setObject("former", "changed");
            for (int i = 0; i < 10; ++i) before->setObject(value(i), key(i));
        }
        files->resetCounts();
        files->failCall(number, number % 2 == 0 ? EIO : ENOSPC, GetParam());
        const auto cache = open();
        cache->setCostLimit(1 << 20);
        cache->setObject(now, "changed");
        cache->setObject(now, "synced", [] {});
        cache->removeObjectForKey(key(0));
        drainQueues();
        passed = files->calls() < number;
        files->heal();
        clock->advance(2s);
        for (const auto& store : {cache, open()}) {
            const Value changed = store->objectForKey("changed");
            EXPECT_TRUE(changed == Value(now) || (changed == Value("former") && !passed))
                << "call " << number;
            for (int i = 1; i < 10; ++i)
                EXPECT_EQ(store->objectForKey(key(i)), value(i)) << "call " << number;
        }
        cache->setObject("later", "later");
        EXPECT_EQ(open()->objectForKey("later"), Value("later")) << "call " << number;
    }
    EXPECT_GT(number, 10u) << "that takes more calls";
}

INSTANTIATE_TEST_SUITE_P(After, KXDiskCacheFaultTest, ::testing::Values(Then::Recovers, Then::StaysBroken));

/// What was acknowledged by a callback is there after a power cut; of the rest, whole values.
TEST_F(KXDiskCacheFaultTest, APowerCutLosesNothingThatWasSynced) {
    std::mt19937 random(1);
    for (int round = 0; round < 10; ++round) {
        files->rememberUnsynced();
        std::vector<int> waiting, synced;
        {
            const auto cache = open();
            for (int number = round * 100; number < round * 100 + 60; ++number) {
                if (random() % 3 != 0) {
                    cache->setObject(value(number), key(number));
                    continue;
                }
                cache->setObject(value(number), key(number), [] {});
                waiting.push_back(number);
                if (random() % 2 != 0) continue;
                drainQueues();  // they have answered
                synced.insert(synced.end(), waiting.begin(), waiting.end());
                waiting.clear();
            }
            files->failCall(1, EIO, Then::StaysBroken);  // the power is gone: nothing more gets through
            drainQueues();
        }
        files->heal();
        files->dropUnsynced();
        const auto cache = open();
        for (const int number : synced) EXPECT_EQ(cache->objectForKey(key(number)), value(number)) << round;
        for (int number = 0; number < (round + 1) * 100; ++number) {
            const Value found = cache->objectForKey(key(number));
            EXPECT_TRUE(found.isNull() || found == value(number)) << round << ": " << number;
        }
        cache->setObject(1, "after");
        EXPECT_EQ(open()->objectForKey("after"), Value(1));
    }
}

/// A process that does nothing but sets, and tells each one that has returned.
class SettingProcess {
  public:
    SettingProcess(const std::string& folder, int first) {
        int ends[2];
        if (::pipe(ends) != 0) return;
        child_ = ::fork();
        if (child_ == 0) {
            const ScopedPort<FileSystem> scope(FileSystem::makeDefault());
            const auto cache = KXDiskCache::initWithPath(folder);
            for (int i = first; i < first + kMost; ++i) {
                cache->setObject(value(i), key(i));
                if (::write(ends[1], &i, sizeof i) != sizeof i) break;
            }
            ::_exit(0);
        }
        ::close(ends[1]);
        told_ = ends[0];
    }
    ~SettingProcess() {
        ::close(told_);
        ::waitpid(child_, nullptr, 0);
    }
    SettingProcess(const SettingProcess&) = delete;
    SettingProcess& operator=(const SettingProcess&) = delete;

    static constexpr int kMost = 1000;
    bool isTold(int& number) const { return ::read(told_, &number, sizeof number) == sizeof number; }
    void kill() const { ::kill(child_, SIGKILL); }

  private:
    pid_t child_ = -1;
    int told_ = -1;
};

TEST_F(KXDiskCacheFaultTest, AKilledProcessLosesNothingThatReturned) {
    const ScopedPort<FileSystem> real(FileSystem::makeDefault());
    std::mt19937 random(2);
    const auto other = open();  // follows what the killed ones leave
    for (int round = 0; round < 200; ++round) {
        const int first = round * SettingProcess::kMost;
        int last = first - 1, number = 0;
        {
            const SettingProcess process(directory / "cache", first);
            for (auto told = random() % 20; told > 0 && process.isTold(number); --told) last = number;
            for (auto wait = random() % 2000; wait > 0; --wait)
                std::atomic_signal_fence(std::memory_order_seq_cst);
            process.kill();
            while (process.isTold(number)) last = number;
        }
        for (const auto& store : {other, open()}) {
            for (int i = first; i <= last; ++i) ASSERT_EQ(store->objectForKey(key(i)), value(i)) << round;
            const Value next = store->objectForKey(key(last + 1));
            ASSERT_TRUE(next.isNull() || next == value(last + 1)) << round;
        }
        if (round % 10 == 9) other->removeAllObjects();
    }
    EXPECT_EQ(open()->totalCount(), other->totalCount());
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
}

TEST_F(KXDiskCacheFaultTest, TwoProcessesSetAtOnce) {
    const ScopedPort<FileSystem> real(FileSystem::makeDefault());
    const auto cache = open();
    {
        const SettingProcess process(directory / "cache", 0);
        int told = 0;
        for (int i = 0; i < SettingProcess::kMost; ++i) {
            cache->setObject(i, "own " + std::to_string(i));
            ASSERT_TRUE(process.isTold(told));
            ASSERT_EQ(cache->objectForKey(key(told)), value(told));
        }
    }
    for (const auto& store : {cache, open()}) {
        EXPECT_EQ(store->totalCount(), 2u * SettingProcess::kMost);
        for (int i = 0; i < SettingProcess::kMost; ++i) {
            EXPECT_EQ(store->objectForKey(key(i)), value(i));
            EXPECT_EQ(store->objectForKey("own " + std::to_string(i)), Value(i));
        }
    }
}

}  // namespace
}  // namespace kx
