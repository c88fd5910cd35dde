// SPDX-License-Identifier: MIT

#include <chrono>
#include <filesystem>

#include <gmock/gmock.h>

#include <KXFoundation/Core/KXPhotoFileInfo.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Services/Machine.h>
#include <KXFoundation/Platform/Services/Photos/PHAsset.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetChangeRequest.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollectionChangeRequest.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using testing::FaultyFileSystem;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ::testing::StartsWith;

const std::string kClip = KX_CLIPS "h264.mp4";

/// A picture whose every pixel differs from its neighbours, so that quality shows.
std::shared_ptr<NSImage> photograph(std::uint32_t side) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(side, side);
    std::uint32_t state = 1;
    for (std::uint32_t& pixel : bitmap->pixels())
        pixel = 0xFF000000 | (state = state * 1664525 + 1013904223) >> 8;
    return NSImage::initWithBitmap(bitmap);
}

std::shared_ptr<KXPhotoFileInfo> file(const std::string& path, std::uint64_t type) {
    auto info = make<KXPhotoFileInfo>();
    info->setUrl(NSURL::fileURLWithPath(path));
    info->setType(type);
    return info;
}

class DiskWithRoom final : public Machine {
  public:
    explicit DiskWithRoom(std::uint64_t blocks) : blocks_(blocks) {}
    std::string hardwareIdentifier() override { return {}; }
    Result<VolumeRoom> roomAt(const std::string&) override { return VolumeRoom{4096, blocks_}; }

  private:
    std::uint64_t blocks_;
};

struct KXPhotoUtilsTest : ::testing::Test {
    KXPhotoUtilsTest() { platform.bundle().setInfo("CFBundleDisplayName", "Harbour"); }

    struct Outcome {
        int calls = 0;
        bool success = false;
        std::shared_ptr<NSError> error;
    };
    Outcome exported(std::vector<std::shared_ptr<KXPhotoFileInfo>> list,
                     const std::shared_ptr<PHAssetCollection>& album) {
        Outcome outcome;
        KXPhotoUtils::createAssets(std::move(list), album, [&](bool success, std::shared_ptr<NSError> error) {
            outcome = {outcome.calls + 1, success, std::move(error)};
        });
        drainQueues();
        return outcome;
    }
    std::vector<PHAssetMediaType> typesIn(const std::shared_ptr<PHAssetCollection>& album) {
        std::vector<PHAssetMediaType> types;
        for (const auto& asset : PHAsset::fetchAssetsInAssetCollection(album))
            types.push_back(asset->mediaType());
        return types;
    }
    std::string at(std::string_view name) const { return platform.directory() / name; }

    testing::ScopedPlatform platform;
    testing::CapturedLog log;
    ScopedPort<Machine> machine{std::make_shared<DiskWithRoom>(1)};
};

TEST_F(KXPhotoUtilsTest, ExportsWhatIsAPictureOrAVideo) {
    ASSERT_TRUE(KXPhotoUtils::saveImage(photograph(8), at("photo.jpg"), std::nullopt));
    const auto album = KXPhotoUtils::defaultAlbum();
    ASSERT_TRUE(album);
    const auto picture = file(at("photo.jpg"), 0), video = file(kClip, 1), other = file(at("none"), 2);
    const Outcome done = exported({picture, nullptr, video, other}, album);
    EXPECT_EQ(done.calls, 1);
    EXPECT_TRUE(done.success);
    EXPECT_FALSE(done.error);
    EXPECT_THAT(typesIn(album), ElementsAre(PHAssetMediaType::Image, PHAssetMediaType::Video));
    EXPECT_TRUE(std::filesystem::exists(at("home/Pictures/Harbour/h264.mp4")));

    EXPECT_TRUE(exported({}, album).success) << "nothing to export";
    EXPECT_TRUE(exported({other}, nullptr).success) << "nothing that is exported";
    const Outcome missing = exported({picture, file(at("none"), 0)}, album);
    EXPECT_FALSE(missing.success);
    ASSERT_TRUE(missing.error);
    EXPECT_EQ(missing.error->domain(), NSPOSIXErrorDomain);
    EXPECT_EQ(missing.error->code(), ENOENT);
    const std::string text = platform.directory().write("text.png", "text");
    const auto refused = exported({picture, file(text, 0)}, album).error;
    ASSERT_TRUE(refused);
    EXPECT_EQ(refused->description(), "NSPOSIXErrorDomain 95: " + text + ": no picture: unsupported");
    EXPECT_FALSE(exported({make<KXPhotoFileInfo>()}, album).success) << "no address";
    EXPECT_EQ(typesIn(album).size(), 2u);

    KXPhotoUtils::createAsset(picture, nullptr, {});
    drainQueues();
    EXPECT_TRUE(std::filesystem::exists(at("home/Pictures/photo.jpg"))) << "without album and callback";
}

TEST_F(KXPhotoUtilsTest, TheDefaultAlbumIsMadeOnce) {
    EXPECT_EQ(KXPhotoUtils::getAlbum("Harbour"), nullptr);
    const auto made = KXPhotoUtils::defaultAlbum();
    ASSERT_TRUE(made);
    EXPECT_EQ(made->localizedTitle(), "Harbour");
    EXPECT_THAT(log.lines(), ElementsAre("create album ok"));
    platform.restart();
    EXPECT_EQ(KXPhotoUtils::defaultAlbum()->localIdentifier(), made->localIdentifier());
    EXPECT_EQ(KXPhotoUtils::getAlbum("Harbour")->localIdentifier(), made->localIdentifier());
    for (const std::optional<std::string_view> title : {std::optional<std::string_view>("harbour"), {""}, {}})
        EXPECT_EQ(KXPhotoUtils::getAlbum(title), nullptr) << title.value_or("none");
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(KXPhotoUtilsTest, AnAlbumThatCannotBeMadeIsNone) {
    auto files = std::make_shared<FaultyFileSystem>();
    const ScopedPort<FileSystem> scope(files);
    files->setRoom(0);
    EXPECT_EQ(KXPhotoUtils::defaultAlbum(), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre(StartsWith("Error creating album: NSPOSIXErrorDomain 28: ")));
}

TEST_F(KXPhotoUtilsTest, WhoWouldWaitForHimselfGetsNone) {
    const testing::LenientMode lenient;
    std::shared_ptr<PHAssetCollection> album;
    KXPhotoUtils::createAssets({}, nullptr, [&](bool, const auto&) { album = KXPhotoUtils::defaultAlbum(); });
    drainQueues();
    EXPECT_EQ(album, nullptr);
    EXPECT_EQ(PHAssetChangeRequest::creationRequestForAssetFromImageAtFileURL(NSURL::fileURLWithPath(kClip)),
              nullptr);
    EXPECT_EQ(PHAssetCollectionChangeRequest::creationRequestForAssetCollectionWithTitle("x"), nullptr);
    EXPECT_THAT(log.lines(),
                ElementsAre(HasSubstr("own queue"), HasSubstr("change block"), HasSubstr("change block")));
}

/// Acts after the queues have ended, which began later than this.
struct AtTheEnd {
    ~AtTheEnd() {
        if (act) act();
    }
    std::function<void()> act;
} atTheEnd;

TEST_F(KXPhotoUtilsTest, AtTheProcesssEndNobodyWaitsForAnAlbum) {
    const auto askAtTheEnd = [] {
        static_cast<void>(KXPhotoUtils::getAlbum("none yet"));
        atTheEnd.act = [] { std::_Exit(KXPhotoUtils::defaultAlbum() ? 1 : 3); };
        std::exit(0);
    };
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(askAtTheEnd(), ::testing::ExitedWithCode(3), "");
}

TEST_F(KXPhotoUtilsTest, JpegOfAPicture) {
    const auto image = photograph(64);
    const auto full = KXPhotoUtils::imgToData(image, 1), small = KXPhotoUtils::imgToData(image, 0.25);
    ASSERT_TRUE(full && small);
    EXPECT_GT(full->size(), 2 * small->size());
    const auto read = NSImage::initWithData(*small);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->size(), image->size());
    EXPECT_EQ(KXPhotoUtils::imgToData(nullptr, 1), std::nullopt);
    EXPECT_EQ(KXPhotoUtils::imgToData(NSImage::initWithSize({4, 4}), 1), std::nullopt) << "empty";

    const auto drawn = NSImage::imageWithSize({3, 2}, [](NSRect rect) {
        GraphicsContext::current()->fill(rect, *NSColor::blackColor());
        return true;
    });
    const auto bitmap = NSImage::initWithData(*KXPhotoUtils::imgToData(drawn, 1))->bitmapAtScale(1);
    EXPECT_EQ(bitmap->pixelsWide(), 3u);
    EXPECT_EQ(bitmap->pixelAt(1, 1), 0xFF000000u);
    const auto sharp = NSImage::initWithBitmap(image->bitmapAtScale(1), 2);
    EXPECT_EQ(NSImage::initWithData(*KXPhotoUtils::imgToData(sharp, 1))->size(), image->size())
        << "its own pixels";
}

TEST_F(KXPhotoUtilsTest, SavesAPictureAndItsThumbnail) {
    const auto image = photograph(64);
    using Path = std::optional<std::string>;
    const std::tuple<const char*, Path, Path, std::uint64_t, bool, std::ptrdiff_t> rows[] = {
        {"both", at("s/a.jpg"), at("s/t.jpg"), 1, true, 2},
        {"no thumbnail", at("s/a.jpg"), std::nullopt, 1, true, 1},
        {"no picture", std::nullopt, at("s/t.jpg"), 1, true, 1},
        {"a full disk", at("s/a.jpg"), at("s/t.jpg"), 0, false, 0},
        {"no such folder", at("none/a.jpg"), at("s/t.jpg"), 1, true, 1},
        {"a zero byte", at(std::string_view("s/a.jpg\0x", 9)), {}, 1, true, 0},
    };
    for (const auto& [what, path, thumbnail, room, answer, files] : rows) {
        std::filesystem::remove_all(at("s"));
        std::filesystem::create_directory(at("s"));
        const ScopedPort<Machine> disk(std::make_shared<DiskWithRoom>(room));
        EXPECT_EQ(KXPhotoUtils::saveImage(image, path, thumbnail), answer) << what;
        using Files = std::filesystem::directory_iterator;
        EXPECT_EQ(std::distance(Files(at("s")), Files()), files) << what;
    }
    const std::string left = platform.directory().write("s/a.jpg.new-99999999-0", "of a killed process");
    std::filesystem::last_write_time(left, std::filesystem::last_write_time(left) - std::chrono::hours(2));
    EXPECT_TRUE(KXPhotoUtils::saveImage(image, at("s/a.jpg"), std::nullopt));
    EXPECT_FALSE(std::filesystem::exists(left));
    EXPECT_TRUE(KXPhotoUtils::saveImage(nullptr, at("n.jpg"), std::nullopt));
    EXPECT_FALSE(std::filesystem::exists(at("n.jpg")));
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(KXPhotoUtilsTest, TheThumbnailIsTheFrameAtATenthOfASecond) {
    const auto image = KXPhotoUtils::getThumbnailForMP4(kClip);
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (NSSize{70, 46}));
    const std::uint32_t pixel = image->bitmapAtScale(1)->pixelAt(10, 10);
    EXPECT_GT(pixel >> 8 & 0xFF, 150u) << "green, the second frame";
    EXPECT_LT(pixel >> 16 & 0xFF, 60u);
    for (const std::optional<std::string_view> path :
         {std::optional<std::string_view>("/none.mp4"), {""}, {}})
        EXPECT_EQ(KXPhotoUtils::getThumbnailForMP4(path), nullptr);
    EXPECT_EQ(KXPhotoUtils::getThumbnailForMP4(std::string(kClip) + '\0'), nullptr) << "another path";
    EXPECT_THAT(log.lines(), IsEmpty());
}

}  // namespace
}  // namespace kx
