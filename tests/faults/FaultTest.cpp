// SPDX-License-Identifier: MIT

// What is kept on disk, under a disk that fails, fills up and loses its power, and in processes that are
// killed or work at the same time. Nothing acknowledged is lost, and the next start reads everything.
#include <chrono>
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "FaultTable.h"
#include "PersistedThing.h"
#include "support/ChildProcess.h"

namespace kx {
namespace {

using testing::ChildProcess;
using testing::FaultyFileSystem;
using Then = FaultyFileSystem::Then;
using Text = std::optional<std::string>;

constexpr std::size_t kMostCalls = 600;

struct FaultTest : ::testing::TestWithParam<testing::PersistedKind> {
    static std::unique_ptr<testing::PersistedThing> open() { return GetParam().open(); }

    /// A round of the fault: one start, save or process that something happens to.
    class Round {
      public:
        explicit Round(FaultTest& test) : test_(test) {}
        ~Round() {
            EXPECT_TRUE(open()->isWhole());
            ++test_.rounds_;
            test_.losses_ += failures() == before_ ? 0 : 1;
        }

      private:
        static int failures() {
            return ::testing::UnitTest::GetInstance()->current_test_info()->result()->total_part_count();
        }
        FaultTest& test_;
        const int before_ = failures();
    };
    void TearDown() override {
        RecordProperty("rounds", rounds_);
        RecordProperty("losses", losses_);
    }

    /// What the next start finds where `now` was being saved over `old`.
    static void expectKept(bool acknowledged, const Text& old, const std::string& now) {
        const Text found = open()->load("key");
        const bool isOld = found == old || (!found && GetParam().dropsTheOldFirst);
        EXPECT_TRUE(found == now || (isOld && !acknowledged))
            << found.value_or("nothing") << (acknowledged ? ", acknowledged" : "");
    }
    [[nodiscard]] int filesNamed(std::string_view part) const {
        int count = 0;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(platform.directory().path()))
            count += entry.path().filename().string().find(part) != std::string::npos ? 1 : 0;
        return count;
    }
    void startFromNothing() {
        platform.restart();
        std::filesystem::remove_all(platform.directory() / "home");
    }

    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;

  private:
    int rounds_ = 0, losses_ = 0;
};

INSTANTIATE_TEST_SUITE_P(Of, FaultTest, ::testing::ValuesIn(testing::persistedKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

/// Every call of a save fails in turn, a write half-way, just after another process has saved.
TEST_P(FaultTest, AFailingCallLosesNothing) {
    const std::tuple<const char*, int, Then> faults[] = {
        {"full", ENOSPC, Then::Recovers},
        {"broken once", EIO, Then::Recovers},
        {"denied", EACCES, Then::Recovers},
        {"denied from then on", EACCES, Then::StaysBroken},
        {"gone from then on", EIO, Then::StaysBroken},
    };
    std::size_t turn = 0;  // in an ordinary run the faults take turns with what is slow
    for (const auto& [what, error, then] : faults) {
        bool passed = false;
        for (std::size_t number = 1; !passed; ++number) {
            if (GetParam().isSlow && askedRounds(0) == 0 && number % 5 != turn) continue;
            if (number % 8 == 0) startFromNothing();
            const Round round(*this);
            SCOPED_TRACE(std::string(what) + ", call " + std::to_string(number));
            ASSERT_LT(number, kMostCalls);
            const std::string now = what + std::to_string(number);
            const auto thing = open();
            const Text old = thing->load("key");
            ASSERT_TRUE(open()->save("other", now));
            files->failCall(number, error, then);
            files->resetCounts();
            const bool acknowledged = thing->save("key", now);
            passed = files->calls() < number;
            files->heal();
            EXPECT_TRUE(acknowledged || !passed);
            expectKept(acknowledged, old, now);
            EXPECT_EQ(open()->load("other"), now);
            EXPECT_TRUE(then != Then::Recovers || filesNamed(".new-") == 0);
        }
        ++turn;
        ASSERT_TRUE(open()->save("key", "whole again"));
    }
    EXPECT_EQ(filesNamed("damaged"), 0) << "a failing disk is no damage";
}

/// The power goes before every call of a save in turn; of what was not synced each part is there or is not.
TEST_P(FaultTest, APowerCutLosesNothing) {
    const std::size_t most =
        GetParam().isSlow ? std::max<std::size_t>(askedRounds(1) / 10, 1) : askedRounds(8);
    std::mt19937_64 random(1);
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        ASSERT_LT(number, kMostCalls);
        startFromNothing();
        ASSERT_TRUE(open()->save("key", "old"));
        std::size_t choices = 1;
        for (std::size_t choice = 0; choice < std::min(choices, most); ++choice) {
            if (choice % 8 == 7) startFromNothing();
            const Round round(*this);
            const std::string now = std::to_string(number) + "." + std::to_string(choice);
            SCOPED_TRACE("before call " + now);
            const auto thing = open();
            const Text old = thing->load("key");
            ASSERT_TRUE(open()->save("other", now));
            files->rememberUnsynced();
            files->failCall(number, EIO, Then::StaysBroken);
            files->resetCounts();
            const bool acknowledged = thing->save("key", now);
            passed = files->calls() < number;
            const bool isAny = choice > 0 ? choices > most : most == 1 && number % 2 == 0;
            std::uint64_t kept = isAny ? random() : choice;
            const std::size_t changes =
                files->dropUnsynced([&] { return (std::exchange(kept, kept >> 1) & 1) != 0; });
            choices = std::size_t{1} << std::min<std::size_t>(changes, 20);
            files->heal();
            EXPECT_TRUE(acknowledged || !passed);
            expectKept(passed || (acknowledged && !GetParam().isSilent), old, now);
            EXPECT_EQ(open()->load("other"), now);
        }
    }
    EXPECT_EQ(filesNamed("damaged"), 0) << "a power cut is no damage";
}

TEST_P(FaultTest, AFailingFirstSaveIsMadeGoodByTheNext) {
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        const Round round(*this);
        SCOPED_TRACE("call " + std::to_string(number));
        ASSERT_LT(number, kMostCalls);
        startFromNothing();
        const auto thing = open();
        files->rememberUnsynced();
        files->failCall(number, EIO, Then::StaysBroken);
        files->resetCounts();
        const bool acknowledged = thing->save("key", "first");
        passed = files->calls() < number;
        files->dropUnsynced();
        files->heal();
        expectKept(passed || (acknowledged && !GetParam().isSilent), std::nullopt, "first");
        EXPECT_TRUE(open()->save("other", "second"));
        EXPECT_EQ(open()->load("other"), "second");
        expectKept(passed || (acknowledged && !GetParam().isSilent), std::nullopt, "first");
    }
}

/// Every call of a start fails in turn: what could not be read is never overwritten.
TEST_P(FaultTest, AFailingReadLosesNothing) {
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        const Round round(*this);
        SCOPED_TRACE("call " + std::to_string(number));
        ASSERT_LT(number, kMostCalls);
        if (number % 8 == 1) startFromNothing();
        ASSERT_TRUE(open()->save("key", "kept"));
        files->failCall(number, EIO, number % 2 == 0 ? Then::Recovers : Then::StaysBroken);
        files->resetCounts();
        const auto thing = open();
        const Text found = thing->load("key");
        passed = files->calls() < number;
        files->heal();
        EXPECT_TRUE(found == "kept" || (!found && !passed)) << found.value_or("nothing");
        EXPECT_TRUE(thing->save("other", std::to_string(number)));
        EXPECT_EQ(open()->load("key"), "kept");
        EXPECT_EQ(open()->load("other"), std::to_string(number));
    }
}

TEST_P(FaultTest, AFullDiskKeepsTheOld) {
    const std::uint64_t fineness = std::max<std::size_t>(askedRounds(200) / 20, 1);
    bool acknowledged = false;
    for (std::uint64_t room = 0; !acknowledged; room += 1 + 300 / fineness + room / fineness) {
        const Round round(*this);
        SCOPED_TRACE("room for " + std::to_string(room));
        ASSERT_LT(room, 1'000'000u);
        startFromNothing();
        ASSERT_TRUE(open()->save("key", "old"));
        files->setRoom(room);
        acknowledged = open()->save("key", "new");
        files->heal();
        expectKept(acknowledged, "old", "new");
    }
}

TEST_P(FaultTest, AKillAtAnyMomentLosesNothing) {
    using Clock = std::chrono::steady_clock;
    std::mt19937 random(6);
    int last = 0;
    for (std::size_t round = 0, rounds = askedRounds(GetParam().isSlow ? 40 : 100); round < rounds; ++round) {
        const Round counted(*this);
        if (round % 10 == 0) {
            startFromNothing();
            ASSERT_TRUE(open()->save("other", "kept"));
            last = 0;
        }
        const auto began = Clock::now();
        ASSERT_TRUE(open()->save("other", "kept"));
        const auto whole = Clock::now() - began;
        ChildProcess child([from = last + 1](auto tell) {
            const auto thing = open();
            for (int number = from; thing->save("key", std::to_string(number)); ++number) tell(number);
            return false;
        });
        for (auto wait = random() % 3; wait > 0; --wait) last = child.next().value_or(-1);
        ASSERT_NE(last, -1) << "a save failed";
        const auto end = Clock::now() + whole * (random() % 64) / 48;
        while (Clock::now() < end) {
        }
        child.kill();
        while (const auto more = child.next()) last = *more;
        const Text found = open()->load("key");
        if (found) {
            EXPECT_TRUE(*found == std::to_string(last) || *found == std::to_string(last + 1))
                << *found << " where " << last << " was acknowledged";
            last = std::atoi(found->c_str());
        } else {
            EXPECT_TRUE(last == 0 || GetParam().dropsTheOldFirst) << last << " was acknowledged";
        }
        EXPECT_EQ(open()->load("other"), "kept");
    }
    EXPECT_TRUE(open()->save("key", "whole"));
    EXPECT_TRUE(filesNamed(".new-") == 0 || GetParam().isSilent) << "left over";
}

/// And one of them is killed, while the other works on.
TEST_P(FaultTest, TwoProcessesAtOnceLoseNothing) {
    constexpr int kSaves = 10;
    const auto nameOf = [](char process, int number) { return process + std::to_string(number); };
    const auto saver = [&](char process) {
        return [&, process](auto tell) {
            const auto thing = open();
            bool good = true;
            for (int i = 0; i < kSaves; ++i) {
                good = thing->save(nameOf(process, i), std::to_string(i)) && good;
                tell(i);
            }
            return good;
        };
    };
    std::mt19937 random(2);
    for (std::size_t round = 0, rounds = askedRounds(4); round < rounds; ++round) {
        const Round counted(*this);
        startFromNothing();
        ChildProcess first(saver('a')), second(saver('b'));
        int saved = kSaves;
        if (round % 2 == 1) {
            saved = 0;
            for (auto wait = random() % kSaves; wait > 0; --wait) saved = second.next().value_or(-1) + 1;
            second.kill();
            while (const auto more = second.next()) saved = *more + 1;
        } else {
            EXPECT_EQ(second.end(), 0);
        }
        EXPECT_EQ(first.end(), 0);
        const auto thing = open();
        for (int i = 0; i < kSaves; ++i) EXPECT_EQ(thing->load(nameOf('a', i)), std::to_string(i));
        for (int i = 0; i < saved; ++i) EXPECT_EQ(thing->load(nameOf('b', i)), std::to_string(i));
    }
}

}  // namespace
}  // namespace kx
