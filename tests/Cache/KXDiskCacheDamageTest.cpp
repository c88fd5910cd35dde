// SPDX-License-Identifier: MIT

#include <filesystem>
#include <functional>
#include <string_view>

#include <gmock/gmock.h>

#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedQueues.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

namespace fs = std::filesystem;

using namespace std::literals;

constexpr int kValues = 100;
constexpr auto kNearTheLast = "\0\0\0\0\xFF\xFF\xFE\xFF"sv;  // positions: offset, number
constexpr auto kTheLast = "\0\0\0\0\0\0\xFF\xFF"sv;

struct KXDiskCacheDamageTest : ::testing::Test {
    std::shared_ptr<KXDiskCache> open() const { return KXDiskCache::initWithPath(folder); }
    static std::string key(int number) { return "key " + std::to_string(number); }
    static Value value(int number) { return std::string(200, static_cast<char>('a' + number % 26)); }
    void fill() const {
        const auto cache = open();
        for (int i = 0; i < kValues; ++i) cache->setObject(value(i), key(i));
    }
    /// How many values are there; each of them is the right one.
    static int whole(KXDiskCache& cache) {
        int count = 0;
        for (int i = 0; i < kValues; ++i) {
            const Value found = cache.objectForKey(key(i));
            if (found.isNull()) continue;
            EXPECT_EQ(found, value(i)) << i;
            ++count;
        }
        return count;
    }
    std::string segment() const {
        for (const auto& entry : fs::directory_iterator(folder)) {
            if (entry.path().filename() != "header") return entry.path();
        }
        return {};
    }
    static void patch(const std::string& path, std::uint64_t offset, std::string_view bytes) {
        const auto file = FileSystem::slot().current().open(path, FileSystem::Mode::ReadWrite);
        ASSERT_TRUE((*file)->writeAt(offset, std::as_bytes(std::span(bytes))));
    }
    std::size_t newLines() {
        const std::size_t before = std::exchange(linesSeen, log.lines().size());
        return linesSeen - before;
    }

    testing::TemporaryDirectory directory;
    const std::string folder = directory / "cache", header = folder + "/header";
    std::shared_ptr<testing::FaultyFileSystem> files = std::make_shared<testing::FaultyFileSystem>();
    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<FileSystem> filesScope{files};
    ScopedPort<Clock> clockScope{clock};
    testing::CapturedLog log;
    std::size_t linesSeen = 0;
    testing::ScopedQueues queues;
};

/// One byte of the segment is wrong, at one place after another: at most one value is missed, with one line,
/// and then all is well again.
TEST_F(KXDiskCacheDamageTest, OneWrongByteCostsOneValue) {
    fill();
    const std::size_t end = directory.read("cache/segment-00000001").find_last_not_of('\0') + 1;
    for (std::size_t at = 32; at < end; at += 151) {
        fs::remove_all(folder);
        fill();
        std::string contents = directory.read("cache/segment-00000001");
        contents[at] ^= 0x40;
        directory.write("cache/segment-00000001", contents);
        clock->advance(std::chrono::minutes(2));
        newLines();
        const auto cache = open();
        EXPECT_GE(whole(*cache), kValues - 1) << at;
        EXPECT_EQ(newLines(), 1u) << at;
        cache->setObject("new", "new");
        clock->advance(std::chrono::minutes(2));
        const auto again = open();
        EXPECT_GE(whole(*again), kValues - 1) << at;
        EXPECT_EQ(again->objectForKey("new"), Value("new")) << at;
        EXPECT_EQ(newLines(), 0u) << at;
    }
}

TEST_F(KXDiskCacheDamageTest, DamagedFolders) {
    const struct {
        const char* what;
        std::function<void(KXDiskCacheDamageTest&)> damage;
        int least = kValues, lines = 0;
    } rows[] = {
        {"segment cut in the middle", [](auto& t) { fs::resize_file(t.segment(), 10'000); }, 40, 1},
        {"segment empty", [](auto& t) { fs::resize_file(t.segment(), 0); }, 0, 1},
        {"segment's header wrong", [](auto& t) { patch(t.segment(), 3, "xx"); }, 0, 1},
        {"noise at its end", [](auto& t) { patch(t.segment(), fs::file_size(t.segment()), "noise"); }},
        {"header gone", [](auto& t) { fs::remove(t.header); }},
        {"header of noise", [](auto& t) { patch(t.header, 0, std::string(4096, 'x')); }},
        {"a segment number far ahead", [](auto& t) { patch(t.header, 16, std::string(8, '\x7F')); }},
        {"a segment number near the last one", [](auto& t) { patch(t.header, 16, kNearTheLast); }, kValues,
         1},
        {"the last segment number", [](auto& t) { patch(t.header, 16, kTheLast); }, kValues, 1},
        {"head and tail near the last one",
         [](auto& t) {
             patch(t.header, 8, kNearTheLast);
             patch(t.header, 16, kNearTheLast);
         },
         kValues, 1},
        {"a head of an earlier start of the machine",
         [](auto& t) {
             patch(t.header, 8, std::string("\x88\x13\0\0\1\0\0\0", 8));
             patch(t.header, 24, "earlier!");
         }},
        {"a strange file", [](auto& t) { t.directory.write("cache/segment-zz", "x"); }},
        {"a strange folder", [](auto& t) { t.directory.makeDirectory("cache/a"); }},
        {"a folder for a segment", [](auto& t) { t.directory.makeDirectory("cache/segment-00000009"); }},
        {"a folder where the next segment is to be",
         [](auto& t) {
             patch(t.segment(), fs::file_size(t.segment()) / 2, "damage: sealed");
             t.directory.write("cache/segment-00000002/file", "not ours");
         },
         kValues - 2, 2},
        {"all gone", [](auto& t) { fs::remove_all(t.folder); }, 0},
    };
    for (const auto& [what, damage, least, lines] : rows) {
        fs::remove_all(folder);
        fill();
        damage(*this);
        clock->advance(std::chrono::minutes(2));
        newLines();
        const auto cache = open();
        EXPECT_GE(whole(*cache), least) << what;
        cache->setObject("new", "new");
        EXPECT_LE(newLines(), static_cast<std::size_t>(lines)) << what;
        EXPECT_EQ(open()->objectForKey("new"), Value("new")) << what;
        EXPECT_GE(whole(*open()), least) << what;
    }
}

/// What happens to an open store's files behind its back.
TEST_F(KXDiskCacheDamageTest, FilesThatChangeWhileTheStoreIsOpen) {
    fill();
    const auto cache = open();
    ASSERT_EQ(whole(*cache), kValues);
    fs::resize_file(segment(), 10'000);  // mapped, and read before
    const int left = whole(*cache);
    EXPECT_GE(left, 40);
    EXPECT_LT(left, kValues);
    cache->setObject(1, "new");
    EXPECT_EQ(cache->objectForKey("new"), Value(1));
    fs::remove(segment());
    clock->advance(std::chrono::seconds(2));
    cache->setObject(1, "again");
    EXPECT_EQ(open()->objectForKey("again"), Value(1)) << "not into the deleted file";
    fs::remove_all(folder);
    clock->advance(std::chrono::seconds(2));
    cache->setObject(2, "after");
    EXPECT_EQ(cache->objectForKey("after"), Value(2));
    EXPECT_EQ(open()->objectForKey("after"), Value(2)) << "in a new folder";
    EXPECT_EQ(cache->totalCount(), 1u);
}

TEST_F(KXDiskCacheDamageTest, AHeaderThatChangesWhileStoresAreOpen) {
    const std::pair<const char*, std::function<void(const std::string& path)>> rows[] = {
        {"empty", [](auto& path) { fs::resize_file(path, 0); }},
        {"cut", [](auto& path) { fs::resize_file(path, 16); }},
        {"noise", [](auto& path) { patch(path, 0, std::string(4096, 'x')); }},
        {"deleted", [](auto& path) { fs::remove(path); }},
        {"a tail near the last number", [](auto& path) { patch(path, 16, kNearTheLast); }},
        {"a tail at the last number", [](auto& path) { patch(path, 16, kTheLast); }},
    };
    for (const auto& [what, damage] : rows) {
        fs::remove_all(folder);
        fill();
        const auto one = open(), other = open();
        ASSERT_EQ(whole(*one) + whole(*other), 2 * kValues) << what;
        damage(header);
        clock->advance(std::chrono::seconds(2));
        EXPECT_EQ(whole(*one), kValues) << what;
        one->setObject(1, "new");
        one->removeObjectForKey(key(0));
        EXPECT_EQ(other->objectForKey("new"), Value(1)) << what;
        for (const auto& cache : {one, other, open()}) EXPECT_EQ(whole(*cache), kValues - 1) << what;
    }
}

TEST_F(KXDiskCacheDamageTest, AFolderThatRefuses) {
    fill();
    const auto cache = open();
    ASSERT_EQ(whole(*cache), kValues);
    files->setRoom(100);
    cache->setObject(std::string(5000, 'x'), key(0));
    cache->setObject(std::string(5000, 'x'), "new");
    EXPECT_EQ(whole(*cache), kValues) << "a full disk: nothing changed";
    EXPECT_EQ(newLines(), 1u);
    files->heal();
    cache->setObject(1, "new");
    EXPECT_EQ(cache->objectForKey("new"), Value(1));

    // Not writable: opened for reading.
    class ReadOnly final : public FileSystem {
      public:
        Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override {
            if (mode != Mode::Read) return Error::fromErrno(EACCES, path);
            return below->open(path, mode);
        }
        Result<Info> info(const std::string& path) override { return below->info(path); }
        Result<std::vector<std::string>> list(const std::string& path) override { return below->list(path); }
        Result<void> rename(const std::string&, const std::string& to) override {
            return Error::fromErrno(EROFS, to);
        }
        Result<void> remove(const std::string& path) override { return Error::fromErrno(EROFS, path); }
        Result<void> makeDirectory(const std::string& path) override { return Error::fromErrno(EROFS, path); }
        Result<void> syncDirectory(const std::string&) override { return {}; }
        const std::shared_ptr<FileSystem> below = FileSystem::makeDefault();
    };
    const ScopedPort<FileSystem> scope(std::make_shared<ReadOnly>());
    const auto reader = open();
    newLines();
    EXPECT_EQ(whole(*reader), kValues);
    reader->setObject(2, "new");
    reader->removeAllObjects();
    EXPECT_EQ(reader->objectForKey("new"), Value(1));
    cache->setObject(3, "new");
    EXPECT_EQ(reader->objectForKey("new"), Value(3)) << "others still write";
    const auto nowhere = KXDiskCache::initWithPath(directory / "other");
    nowhere->setObject(1, "a");
    EXPECT_FALSE(nowhere->containsObjectForKey("a"));
    EXPECT_GE(newLines(), 1u);
}

}  // namespace
}  // namespace kx
