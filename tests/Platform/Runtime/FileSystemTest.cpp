// SPDX-License-Identifier: MIT

#include <chrono>
#include <filesystem>
#include <optional>

#include <gtest/gtest.h>
#include <sys/stat.h>
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

TEST(FileSystem, ADocumentHasTheModeThatItsReadersNeed) {
    const testing::TemporaryDirectory directory;
    FileSystem& files = FileSystem::slot().current();
    std::string name;
    name.resize(255, 'n');  // the longest: a temporary one's stem is shorter
    const std::string path = directory / name;
    const mode_t mask = umask(027);
    const struct {
        std::optional<std::uint32_t> former;
        Kept kept;
        std::uint32_t permissions;
    } rows[] = {
        {{}, Kept::Private, 0600},    {{}, Kept::Document, 0640},   {0644, Kept::Private, 0600},
        {0644, Kept::Document, 0644}, {0600, Kept::Document, 0600},
    };
    for (const auto& [former, kept, permissions] : rows) {
        std::filesystem::remove(path);
        if (former) {
            ASSERT_TRUE(replaceFile(files, path, "former"));
            ASSERT_EQ(chmod(path.c_str(), *former), 0);
        }
        ASSERT_TRUE(replaceFile(files, path, "contents", kept));
        const auto info = files.info(path);
        ASSERT_TRUE(info);
        EXPECT_EQ(info->permissions, permissions);
        EXPECT_EQ(readFile(files, path, 100).value(), "contents");
    }
    umask(mask);
    const std::string left = directory.write(name.substr(0, 229) + ".new-99999999-0", "half");
    removeLeftOver(files, path, LeftOver::All);
    EXPECT_FALSE(std::filesystem::exists(left));
}

}  // namespace
}  // namespace kx
