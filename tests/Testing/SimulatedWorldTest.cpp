// SPDX-License-Identifier: MIT

#include <algorithm>
#include <optional>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Runtime/OperationQueue.h>
#include <KXFoundation/Testing/SimulatedWorld.h>

namespace kx::testing {
namespace {

using namespace std::chrono_literals;

/// Reads in one block and writes in the next: loses counts when another reader comes between.
int countInTwoSteps(std::uint64_t seed) {
    int counter = 0;
    SimulatedWorld world(seed);
    for (int i = 0; i < 3; ++i)
        DispatchQueue::shared().async(
            [&] { DispatchQueue::shared().async([&, read = counter] { counter = read + 1; }); });
    world.run();
    return counter;
}

TEST(SimulatedWorld, SomeSeedShowsARaceAndShowsItAgain) {
    std::optional<std::uint64_t> failing, passing;
    for (std::uint64_t seed = 0; seed < 200; ++seed) (countInTwoSteps(seed) == 3 ? passing : failing) = seed;
    ASSERT_TRUE(failing && passing);
    for (int i = 0; i < 10; ++i) {
        EXPECT_NE(countInTwoSteps(*failing), 3);
        EXPECT_EQ(countInTwoSteps(*passing), 3);
    }
}

TEST(SimulatedWorld, OrdersDifferBySeedButQueuesKeepTheirPromises) {
    std::set<std::string> orders;
    for (std::uint64_t seed = 0; seed < 200; ++seed) {
        std::string ran;
        SimulatedWorld world(seed);
        const auto serial = DispatchQueue::serial("test.serial");
        OperationQueue operations("test.operations", 2);
        int running = 0;
        for (const char letter : {'a', 'b', 'c'}) {
            serial->async([&, letter] { ran += letter; });
            DispatchQueue::main().after(1s, [&] { EXPECT_TRUE(isMainThread()); });
            operations.addOperation([&] {
                EXPECT_FALSE(isMainThread());
                EXPECT_LE(++running, 2);
                DispatchQueue::main().sync([&] { ran += isMainThread() ? 'M' : '?'; });
                --running;
            });
        }
        operations.waitUntilAllOperationsAreFinished();
        world.run();
        orders.insert(ran);
        std::erase(ran, 'M');
        EXPECT_EQ(ran, "abc") << "seed " << seed;
    }
    EXPECT_GT(orders.size(), 5u);
}

TEST(SimulatedWorld, FileOperationsOfBlocksMix) {
    const std::string folder = ::testing::TempDir();
    const auto lostUnder = [&](std::uint64_t seed) {
        SimulatedWorld world(seed, SimulatedWorld::FileWork::Interleaved);
        FileSystem& files = FileSystem::slot().current();
        const std::string path = folder + "/counter";
        EXPECT_TRUE(replaceFile(files, path, ""));
        for (int i = 0; i < 2; ++i) {
            DispatchQueue::shared().async([&] {
                const std::string text = *readFile(files, path, 100);
                EXPECT_TRUE(replaceFile(files, path + std::to_string(text.size()), text + "x"));
                EXPECT_TRUE(files.rename(path + std::to_string(text.size()), path));
            });
        }
        world.run();
        return readFile(files, path, 100)->size() != 2;
    };
    int lost = 0;
    for (std::uint64_t seed = 0; seed < 50; ++seed) lost += lostUnder(seed);
    EXPECT_GT(lost, 0);
    EXPECT_LT(lost, 50);
}

}  // namespace
}  // namespace kx::testing
