// What is kept on disk, under a disk that fails, fills up and loses its power, and in processes that are
// killed or work at the same time. Nothing acknowledged is lost, and the next start reads everything.
#include <filesystem>
#include <random>

#include <gtest/gtest.h>

#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "PersistedThing.h"
#include "support/ChildProcess.h"

namespace kx {
namespace {

using testing::ChildProcess;
using testing::FaultyFileSystem;
using Then = FaultyFileSystem::Then;
using Text = std::optional<std::string>;

constexpr std::size_t kMostCalls = 300;

struct FaultTest : ::testing::TestWithParam<testing::PersistedKind> {
    static std::unique_ptr<testing::PersistedThing> open() { return GetParam().open(); }

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

    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
};

INSTANTIATE_TEST_SUITE_P(Of, FaultTest, ::testing::ValuesIn(testing::persistedKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

/// Every call of a save fails in turn, a write half-way, just after another process has saved.
TEST_P(FaultTest, AFailingCallLosesNothing) {
    struct Fault {
        const char* what;
        int error;
        Then then;
        bool losesPower;
    };
    for (const auto& [what, error, then, losesPower] :
         {Fault{"full", ENOSPC, Then::Recovers, false},
          {"broken once", EIO, Then::Recovers, false},
          {"denied", EACCES, Then::Recovers, false},
          {"denied from then on", EACCES, Then::StaysBroken, false},
          {"gone from then on", EIO, Then::StaysBroken, false},
          {"power cut", EIO, Then::StaysBroken, true}}) {
        bool passed = false;
        for (std::size_t number = 1; !passed; ++number) {
            SCOPED_TRACE(std::string(what) + ", call " + std::to_string(number));
            ASSERT_LT(number, kMostCalls);
            const std::string now = what + std::to_string(number);
            const auto thing = open();
            const Text old = thing->load("key");
            ASSERT_TRUE(open()->save("other", now));
            if (losesPower) files->rememberUnsynced();
            files->failCall(number, error, then);
            files->resetCounts();
            const bool acknowledged = thing->save("key", now);
            passed = files->calls() < number;
            if (losesPower) files->dropUnsynced();
            files->heal();
            EXPECT_TRUE(acknowledged || !passed);
            expectKept(acknowledged, old, now);
            EXPECT_EQ(open()->load("other"), now);
            EXPECT_TRUE(then != Then::Recovers || filesNamed(".new-") == 0);
        }
        ASSERT_TRUE(open()->save("key", "whole again"));
    }
    EXPECT_EQ(filesNamed("damaged"), 0) << "a failing disk is no damage";
}

TEST_P(FaultTest, AFailingFirstSaveIsMadeGoodByTheNext) {
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        ASSERT_LT(number, kMostCalls);
        platform.restart();
        std::filesystem::remove_all(platform.directory() / "home");
        const auto thing = open();
        files->rememberUnsynced();
        files->failCall(number, EIO, Then::StaysBroken);
        files->resetCounts();
        const bool acknowledged = thing->save("key", "first");
        passed = files->calls() < number;
        files->dropUnsynced();
        files->heal();
        expectKept(acknowledged, std::nullopt, "first");
        EXPECT_TRUE(open()->save("other", "second"));
        EXPECT_EQ(open()->load("other"), "second");
        expectKept(acknowledged, std::nullopt, "first");
    }
}

/// Every call of a start fails in turn: what could not be read is never overwritten.
TEST_P(FaultTest, AFailingReadLosesNothing) {
    ASSERT_TRUE(open()->save("key", "kept"));
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        SCOPED_TRACE("call " + std::to_string(number));
        ASSERT_LT(number, kMostCalls);
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
    bool acknowledged = false;
    for (std::uint64_t room = 0; !acknowledged; room += 31) {
        SCOPED_TRACE("room for " + std::to_string(room));
        ASSERT_LT(room, 10'000u);
        ASSERT_TRUE(open()->save("key", "old"));
        files->setRoom(room);
        acknowledged = open()->save("key", "new");
        files->heal();
        expectKept(acknowledged, "old", "new");
    }
}

TEST_P(FaultTest, AKillAtAnyMomentLosesNothing) {
    ASSERT_TRUE(open()->save("other", "kept"));
    std::mt19937 random(6);
    int last = 0;
    for (int round = 0; round < 200; ++round) {
        ChildProcess child([from = last + 1](auto tell) {
            const auto thing = open();
            for (int number = from; thing->save("key", std::to_string(number)); ++number) tell(number);
            return false;
        });
        for (auto wait = random() % 3; wait > 0; --wait) last = child.next().value_or(-1);
        ASSERT_NE(last, -1) << "a save failed";
        for (volatile auto spin = random() % 200'000; spin > 0;) spin = spin - 1;
        child.kill();
        while (const auto more = child.next()) last = *more;
        const Text found = open()->load("key");
        if (found) {
            EXPECT_TRUE(*found == std::to_string(last) || *found == std::to_string(last + 1))
                << *found << " where " << last << " was acknowledged";
            last = std::stoi(*found);
        } else {
            EXPECT_TRUE(last == 0 || GetParam().dropsTheOldFirst) << last << " was acknowledged";
        }
        EXPECT_EQ(open()->load("other"), "kept");
    }
    EXPECT_TRUE(open()->save("key", "whole"));
}

TEST_P(FaultTest, TwoProcessesAtOnceLoseNothing) {
    const auto nameOf = [](char process, int number) { return process + std::to_string(number); };
    const auto saver = [&](char process) {
        return [&, process](auto) {
            const auto thing = open();
            bool good = true;
            for (int i = 0; i < 40; ++i) good = thing->save(nameOf(process, i), std::to_string(i)) && good;
            return good;
        };
    };
    ChildProcess first(saver('a')), second(saver('b'));
    EXPECT_EQ(first.end(), 0);
    EXPECT_EQ(second.end(), 0);
    const auto thing = open();
    for (const char process : {'a', 'b'}) {
        for (int i = 0; i < 40; ++i) EXPECT_EQ(thing->load(nameOf(process, i)), std::to_string(i));
    }
}

}  // namespace
}  // namespace kx
