// SPDX-License-Identifier: MIT

#include <stdexcept>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/UI/OS_dispatch_queue.h>

namespace kx {
namespace {

TEST(Once, TokensAreEqualAsUnicodeTexts) {
    const ScopedProcessState process;
    const std::pair<std::string, bool> rows[] = {
        {"a", true},        {"a", false},        {"A", true},           {"", true},
        {"", false},        {"caf\u00E9", true}, {"cafe\u0301", false},  // decomposed
        {"\u212B", true},                                                // the unit, equivalent to the letter
        {"A\u030A", false}, {"\uFB01", true},    {"fi", true},  // a compatible text, not an equal one
        {"\xFF", true},     {"\xFE", true},      {"\xFF", false},       {std::string("a\0b", 3), true},
    };
    for (const auto& [token, runs] : rows) {
        bool ran = false;
        OS_dispatch_queue::once(token, [&] { ran = true; });
        EXPECT_EQ(ran, runs) << "token " << token;
    }
}

TEST(Once, OfManyThreadsOneRunsTheBlock) {
    const ScopedProcessState process;
    for (int round = 0; round < 50; ++round) {
        int runs = 0;  // guarded by once() itself
        std::vector<std::thread> threads;
        for (int i = 0; i < 4; ++i)
            threads.emplace_back([&] { OS_dispatch_queue::once(std::to_string(round), [&] { ++runs; }); });
        for (auto& thread : threads) thread.join();
        EXPECT_EQ(runs, 1) << "round " << round;
    }
}

TEST(Once, ABlockMayCallAgainAndMayThrow) {
    const ScopedProcessState process;
    std::string order;
    OS_dispatch_queue::once("outer", [&] {
        OS_dispatch_queue::once("outer", [&] { order += "again"; });
        OS_dispatch_queue::once("inner", [&] { order += "inner,"; });
        order += "outer";
    });
    EXPECT_EQ(order, "inner,outer");
    EXPECT_THROW(OS_dispatch_queue::once("thrown", [] { throw std::runtime_error("no"); }),
                 std::runtime_error);
    std::thread([&] { OS_dispatch_queue::once("thrown", [&] { order += "twice"; }); }).join();
    EXPECT_EQ(order, "inner,outer") << "used, and the lock is free";
}

}  // namespace
}  // namespace kx
