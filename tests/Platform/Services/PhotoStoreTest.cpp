// SPDX-License-Identifier: MIT

#include <cerrno>
#include <filesystem>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Services/Photos/PhotoFileName.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using testing::FaultyFileSystem;
using ::testing::IsEmpty;

constexpr PHAssetMediaType kImage = PHAssetMediaType::Image;
constexpr PHAssetMediaType kVideo = PHAssetMediaType::Video;
const std::string kPicture("\x89PNG\r\n\x1A\n and the rest", 20);

/// A new album with the files in it.
PhotoChanges albumOf(const std::string& title, const std::vector<std::string>& paths,
                     PHAssetMediaType type = kImage) {
    PhotoChanges changes;
    changes.albums.push_back({newPhotoIdentifier(), title});
    for (const std::string& path : paths) {
        changes.assets.push_back({newPhotoIdentifier(), type, path});
        changes.members.push_back({changes.albums[0].identifier, changes.assets.back().identifier});
    }
    return changes;
}

struct PhotoStoreTest : ::testing::Test {
    PhotoStore store() const { return {directory / "data", pictures}; }
    std::string picture(const std::string& name) const { return directory.write("from/" + name, kPicture); }
    std::vector<std::string> pathsIn(const std::string& album) const {
        std::vector<std::string> paths;
        const auto assets = store().assetsInAlbum(album);
        if (!assets) return {assets.error().message()};
        for (const auto& asset : *assets) paths.push_back(asset.path);
        return paths;
    }

    testing::TemporaryDirectory directory;
    const std::string pictures = directory / "Pictures";
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

TEST(PhotoFileName, StaysInItsFolder) {
    const std::string longName(300, 'x');
    const std::pair<std::string, std::string> rows[] = {
        {"photo.jpg", "photo.jpg"},
        {"../../etc/passwd", "_._.._etc_passwd"},
        {"..", "_."},
        {".", "_"},
        {".hidden.jpg", "_hidden.jpg"},
        {"a\\b\nc", "a_b_c"},
        {std::string("nul\0.jpg", 8), "nul_.jpg"},
        {"  spaces .jpg ", "spaces .jpg"},
        {"", "Untitled"},
        {"   ", "Untitled"},
        {"caf\xE9.png", "caf\xEF\xBF\xBD.png"},
        {"相册", "相册"},
        {longName + ".jpeg", std::string(195, 'x') + ".jpeg"},
        {std::string(199, 'x') + "é", std::string(199, 'x')},
    };
    for (const auto& [text, name] : rows) EXPECT_EQ(photoFileName(text), name) << text;
    EXPECT_EQ(numberedFileName("a.tar.gz", 2), "a.tar 2.gz");
    EXPECT_EQ(numberedFileName("_hidden", 12), "_hidden 12");
}

TEST_F(PhotoStoreTest, NamesNeitherCollideNorReplace) {
    std::filesystem::create_directories(pictures + "/Trip");
    directory.write("Pictures/Trip/a.png", "the person's own");
    directory.write("Pictures/Day_1", "a file");
    const PhotoChanges first = albumOf("Trip", {picture("1/a.png"), picture("2/a.png"), picture("../x.png")});
    const PhotoChanges second = albumOf("Trip", {picture("1/a.png")});
    const PhotoChanges third = albumOf("Day/1", {picture("1/a.png")});
    for (const PhotoChanges* changes : {&first, &second, &third}) EXPECT_TRUE(store().perform(*changes).ok());
    EXPECT_THAT(
        pathsIn(first.albums[0].identifier),
        ElementsAre(pictures + "/Trip/a 2.png", pictures + "/Trip/a 3.png", pictures + "/Trip/x.png"));
    EXPECT_THAT(pathsIn(second.albums[0].identifier), ElementsAre(pictures + "/Trip 2/a.png"));
    EXPECT_THAT(pathsIn(third.albums[0].identifier), ElementsAre(pictures + "/Day_1 2/a.png"));
    EXPECT_EQ(directory.read("Pictures/Trip/a.png"), "the person's own");

    PhotoChanges loose;
    loose.assets.push_back({newPhotoIdentifier(), kImage, picture("loose.png")});
    EXPECT_TRUE(store().perform(loose).ok());
    EXPECT_EQ(directory.read("Pictures/loose.png"), kPicture) << "without an album";
    std::filesystem::remove(pictures + "/Trip/a 2.png");
    EXPECT_EQ(pathsIn(first.albums[0].identifier).size(), 2u) << "what the person takes away is gone";
}

TEST_F(PhotoStoreTest, OneFileThatCannotBeTakenKeepsAllOut) {
    const std::string good = picture("good.png");
    PhotoChanges gone = albumOf("A", {good});
    gone.members[0].album = newPhotoIdentifier();
    const std::tuple<const char*, PhotoChanges, ErrorKind> rows[] = {
        {"no file", albumOf("A", {good, directory / "none.png"}), ErrorKind::Missing},
        {"no address", albumOf("A", {good, ""}), ErrorKind::Missing},
        {"a folder", albumOf("A", {good, directory.path()}), ErrorKind::Unsupported},
        {"no picture", albumOf("A", {good, directory.write("x.png", "text")}), ErrorKind::Unsupported},
        {"an empty file", albumOf("A", {good, directory.write("y.png", "")}), ErrorKind::Unsupported},
        {"a picture as a video", albumOf("A", {good}, kVideo), ErrorKind::Corrupt},
        {"an album that is gone", gone, ErrorKind::Missing},
    };
    for (const auto& [what, changes, kind] : rows) {
        const auto done = store().perform(changes);
        ASSERT_FALSE(done.ok()) << what;
        EXPECT_EQ(done.error().kind, kind) << what << ": " << done.error().message();
        PhotoStore opened = store();
        EXPECT_TRUE(opened.recover().ok()) << what;
        EXPECT_THAT(*opened.albums(), IsEmpty()) << what;
        EXPECT_TRUE(!std::filesystem::exists(pictures) || std::filesystem::is_empty(pictures)) << what;
    }
    EXPECT_TRUE(store().perform({}).ok()) << "nothing asked is nothing failed";
    EXPECT_FALSE(PhotoStore(std::nullopt, pictures).perform(albumOf("A", {})).ok()) << "no home";
}

TEST_F(PhotoStoreTest, TakesThePicturesOfCamerasAndScanners) {
    const std::string_view beginnings[] = {
        {"\0\0\0\x18"
         "ftypheic\0\0\0\0",
         16},  // HEIC
        {"\0\0\0\x20"
         "ftypavif\0\0\0\0",
         16},
        {"BM\x3A\0\0\0\0\0\0\0\x36", 11},
        {"\xFF\x0A\xFA\x1F", 4},  // JPEG XL
        {"\0\0\0\x0CJXL \r\n\x87\n", 12},
        {"II+\0\x08\0\0\0", 8},
    };
    for (const std::string_view begins : beginnings) {
        const auto taken = store().perform(albumOf("A", {directory.write("from/any", begins)}));
        EXPECT_TRUE(taken.ok()) << begins;
    }
    for (const std::string_view begins : {"BMX: a bicycle", "....ftypisom"})
        EXPECT_FALSE(store().perform(albumOf("A", {directory.write("from/any", begins)})).ok()) << begins;
}

TEST_F(PhotoStoreTest, AFullDiskKeepsWhatWasThere) {
    ASSERT_TRUE(store().perform(albumOf("before", {picture("x.png")})).ok());
    const std::string large = directory.write("from/large.png", kPicture + std::string(3 << 20, 'x'));
    files->setRoom(2 << 20);
    EXPECT_EQ(store().perform(albumOf("A", {large})).error().kind, ErrorKind::Full);
    files->heal();
    PhotoStore opened = store();
    EXPECT_TRUE(opened.recover().ok());
    EXPECT_EQ(opened.albums()->size(), 1U);
    EXPECT_EQ(directory.read("Pictures/before/x.png"), kPicture);
    EXPECT_FALSE(std::filesystem::exists(pictures + "/A"));
}

TEST_F(PhotoStoreTest, ADamagedIndexIsSetAside) {
    const PhotoChanges before = albumOf("Trip", {picture("x.png")});
    ASSERT_TRUE(store().perform(before).ok());
    directory.write("data/index",
                    "no database at all, but longer than a header of one is: " + std::string(100, 'x'));
    EXPECT_FALSE(store().albums().ok());
    EXPECT_THAT(log.lines(), IsEmpty()) << "the face above says it";
    const PhotoChanges after = albumOf("Trip", {picture("x.png")});
    ASSERT_TRUE(store().perform(after).ok());
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_TRUE(directory.read("data/index.damaged-1").starts_with("no database"));
    EXPECT_THAT(pathsIn(after.albums[0].identifier), ElementsAre(pictures + "/Trip/x 2.png"))
        << "in the folder that is there, beside the picture that the index has lost";
}

TEST_F(PhotoStoreTest, ReadsWhereNothingCanBeWritten) {
    EXPECT_THAT(*store().albums(), IsEmpty());
    EXPECT_FALSE(std::filesystem::exists(directory / "data")) << "asking makes nothing";
    const PhotoChanges changes = albumOf("Trip", {picture("x.png")});
    ASSERT_TRUE(store().perform(changes).ok());
    for (std::size_t number = 2; number < 5; ++number) {  // the lock's file, the lock, the index
        files->failCall(number, EROFS);
        EXPECT_THAT(pathsIn(changes.albums[0].identifier), ElementsAre(pictures + "/Trip/x.png")) << number;
    }
}

}  // namespace
}  // namespace kx
