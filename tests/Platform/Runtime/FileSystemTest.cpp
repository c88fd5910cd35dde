// SPDX-License-Identifier: MIT

#include <chrono>
#include <filesystem>

#include <gtest/gtest.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

TEST(FileSystem, RemovesWhatNobodyWritesAnyMore) {
    const std::string dead = "99999999";  // beyond the kernel's largest
    const std::string living = std::to_string(getpid());
    const struct {
        std::string name;
        int hours;  // old
        bool isDead, isLeftOver;
    } rows[] = {
        {"photo.jpg.new-" + dead + "-0", 2, true, true},
        {"photo.jpg.new-" + dead + "-1", 0, false, true},
        {"photo.jpg.new-" + living + "-4294967295", 2, false, true},
        {"photo.jpg", 2, false, false},
        {"other.photo.jpg.new-" + dead + "-0", 2, false, false},
        {"photo.jpg.new-" + dead + "-0.txt", 2, false, false},
        {"photo.jpg.new-" + dead, 2, false, false},
        {"photo.jpg.new-" + dead + "-", 2, false, false},
        {"photo.jpg.new--1-0", 2, false, false},
    };
    for (const LeftOver which : {LeftOver::Dead, LeftOver::All}) {
        const testing::TemporaryDirectory directory;
        for (const auto& row : rows) {
            const auto written =
                std::filesystem::file_time_type::clock::now() - std::chrono::hours(row.hours);
            std::filesystem::last_write_time(directory.write(row.name, "half"), written);
        }
        removeLeftOver(FileSystem::slot().current(), directory / "photo.jpg", which);
        for (const auto& row : rows) {
            const bool goes = which == LeftOver::All ? row.isLeftOver : row.isDead;
            EXPECT_EQ(std::filesystem::exists(directory / row.name), !goes) << row.name;
        }
    }
}

}  // namespace
}  // namespace kx
