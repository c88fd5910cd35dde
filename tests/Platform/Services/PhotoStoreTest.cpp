#include <cerrno>
#include <csignal>
#include <filesystem>
#include <random>
#include <set>

#include <gmock/gmock.h>
#include <sys/time.h>

#include <KXFoundation/Platform/Services/Photos/PhotoFileName.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "support/ChildProcess.h"

namespace kx {
namespace {

using testing::ChildProcess;
using ::testing::ElementsAre;
using testing::FaultyFileSystem;
using ::testing::IsEmpty;
using Then = FaultyFileSystem::Then;

constexpr PHAssetMediaType kImage = PHAssetMediaType::Image;
constexpr PHAssetMediaType kVideo = PHAssetMediaType::Video;
const std::string kPicture("\x89PNG\r\n\x1A\n and the rest", 20);

std::set<std::string> filesBelow(const std::string& folder) {
    std::set<std::string> files;
    if (!std::filesystem::exists(folder)) return files;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
        if (entry.is_regular_file()) files.insert(entry.path());
    return files;
}

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
    /// After a recovery: each album has so many pictures, and there is no file but theirs.
    std::vector<std::string> titlesOfWholeLibrary(std::size_t picturesInEach) const {
        PhotoStore opened = store();
        EXPECT_TRUE(opened.recover().ok());
        std::vector<std::string> titles;
        std::set<std::string> known;
        const auto albums = opened.albums();
        if (!albums) return {albums.error().message()};
        for (const auto& album : *albums) {
            titles.push_back(album.title);
            const auto paths = pathsIn(album.identifier);
            EXPECT_EQ(paths.size(), picturesInEach) << album.title;
            for (const std::string& path : paths) {
                EXPECT_EQ(directory.read(path.substr(directory.path().size() + 1)), kPicture) << path;
                EXPECT_FALSE(path.substr(path.rfind('/') + 1).starts_with('.')) << path;
                known.insert(path);
            }
        }
        EXPECT_EQ(filesBelow(pictures), known);
        return titles;
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
        EXPECT_THAT(titlesOfWholeLibrary(1), IsEmpty()) << what;
        EXPECT_FALSE(std::filesystem::exists(pictures + "/A")) << what;
    }
    EXPECT_TRUE(store().perform({}).ok()) << "nothing asked is nothing failed";
    EXPECT_FALSE(PhotoStore(std::nullopt, pictures).perform(albumOf("A", {})).ok()) << "no home";
}

/// Every call of a change fails in turn, or is the last one of all, or of all before the power goes.
struct Fault {
    Then then;
    bool losesPower;
};
struct PhotoStoreFaultTest : PhotoStoreTest, ::testing::WithParamInterface<Fault> {};

TEST_P(PhotoStoreFaultTest, AllOfItOrNothing) {
    const std::vector<std::string> paths{picture("a/x.png"), picture("b/x.png")};
    bool passed = false;
    for (std::size_t number = 1; !passed; ++number) {
        ASSERT_LT(number, 600u) << "no end of calls";
        for (const char* folder : {"data", "Pictures"}) std::filesystem::remove_all(directory / folder);
        ASSERT_TRUE(store().perform(albumOf("before", paths)).ok());
        if (GetParam().losesPower) files->rememberUnsynced();
        files->failCall(number, number % 2 == 0 ? EIO : ENOSPC, GetParam().then);
        files->resetCounts();
        const bool acknowledged = store().perform(albumOf("new", paths)).ok();
        passed = files->calls() < number;
        if (GetParam().losesPower) files->dropUnsynced();
        files->heal();
        const auto titles = titlesOfWholeLibrary(2);
        const bool holds = titles.size() > 1;
        std::vector<std::string> expected{"before"};
        if (holds) expected.emplace_back("new");
        ASSERT_EQ(titles, expected) << "call " << number;
        ASSERT_TRUE(holds || !acknowledged) << "call " << number;
        ASSERT_TRUE(acknowledged || !passed);
        ASSERT_EQ(std::filesystem::exists(pictures + "/new"), holds) << "call " << number;
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

INSTANTIATE_TEST_SUITE_P(After, PhotoStoreFaultTest,
                         ::testing::Values(Fault{Then::Recovers, false}, Fault{Then::StaysBroken, false},
                                           Fault{Then::StaysBroken, true}));

TEST_F(PhotoStoreTest, TwoProcessesAtOnceLoseNothing) {
    const std::vector<std::string> paths{picture("a/x.png"), picture("b/x.png")};
    const auto maker = [&](const char* process) {
        return [&, process](auto) {
            PhotoStore store = this->store();
            bool good = true;
            for (int i = 0; i < 20; ++i)
                good = store.perform(albumOf(process + std::to_string(i % 5), paths)).ok() && good;
            return good;
        };
    };
    ChildProcess first(maker("a")), second(maker("b"));
    EXPECT_EQ(first.end(), 0);
    EXPECT_EQ(second.end(), 0);
    EXPECT_EQ(titlesOfWholeLibrary(2).size(), 40u);
}

TEST_F(PhotoStoreTest, AFullDiskKeepsWhatWasThere) {
    ASSERT_TRUE(store().perform(albumOf("before", {picture("x.png")})).ok());
    const std::string large = directory.write("from/large.png", kPicture + std::string(3 << 20, 'x'));
    files->setRoom(2 << 20);
    EXPECT_EQ(store().perform(albumOf("A", {large})).error().kind, ErrorKind::Full);
    files->heal();
    EXPECT_THAT(titlesOfWholeLibrary(1), ElementsAre("before"));
}

TEST_F(PhotoStoreTest, AKillAtAnyMomentLeavesAllOrNothing) {
    const std::vector<std::string> paths{picture("a/x.png"), picture("b/x.png")};
    std::mt19937 random(7);
    std::set<std::string> told;
    for (int round = 0; round < 40; ++round) {
        const auto titleOf = [&](int number) { return std::to_string(round) + "." + std::to_string(number); };
        const itimerval life{{0, 0}, {0, static_cast<suseconds_t>(500 + random() % 30'000)}};
        ChildProcess child([&](auto tell) {
            ::signal(SIGALRM, SIG_DFL);  // ends the process wherever it is
            ::setitimer(ITIMER_REAL, &life, nullptr);
            PhotoStore store = this->store();
            for (int number = 0; store.perform(albumOf(titleOf(number), paths)); ++number) tell(number);
            return false;
        });
        while (const auto number = child.next()) told.insert(titleOf(*number));
        EXPECT_TRUE(WIFSIGNALED(child.end())) << "not killed, round " << round;
        const auto found = titlesOfWholeLibrary(2);
        for (const std::string& title : told)
            ASSERT_TRUE(std::ranges::find(found, title) != found.end()) << title << ", round " << round;
    }
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
