// SPDX-License-Identifier: MIT

#include <cmath>
#include <filesystem>
#include <limits>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

/// The clips are made by tools/make_media.py: 70 x 46 pixels, ten frames a second, each in one colour.
const std::string kClips = KX_CLIPS;
constexpr std::uint32_t kRed = 0xC81E1E, kGreen = 0x1EB428, kBlue = 0x1E28C8, kWhite = 0xDCDCDC,
                        kBlack = 0x282828;

Result<PixelBuffer> frame(const std::string& path, CMTime time, CMTime* actual = nullptr) {
    const auto asset = AVURLAsset::assetWithURL(NSURL::fileURLWithPath(path));
    return AVAssetImageGenerator::assetImageGeneratorWithAsset(asset)->copyImageAtTime(time, actual);
}

/// Whether a pixel is that colour, as well as a codec keeps it.
bool isNear(std::uint32_t pixel, std::uint32_t color) {
    if (pixel >> 24 != 0xFF) return false;
    for (const int shift : {0, 8, 16}) {
        const int a = static_cast<int>(pixel >> shift & 0xFF), b = static_cast<int>(color >> shift & 0xFF);
        if (std::abs(a - b) > 16) return false;
    }
    return true;
}

TEST(CMTime, CountsInItsTimescale) {
    constexpr double kInfinite = std::numeric_limits<double>::infinity();
    const std::tuple<double, std::int32_t, CMTime> rows[] = {
        {0.1, 10, {1, 10}},  {0.04, 10, {0, 10}}, {-2.5, 600, {-1500, 600}},
        {1, 0, {}},          {1, -10, {}},        {NAN, 10, {}},
        {kInfinite, 10, {}}, {1e18, 10, {}},      {9e17, 10, {9'000'000'000'000'000'000, 10}},
    };
    for (const auto& [seconds, timescale, want] : rows) {
        const CMTime time = CMTimeMakeWithSeconds(seconds, timescale);
        EXPECT_EQ(time, want) << seconds << " in " << timescale;
        EXPECT_EQ(time.isValid(), want.timescale != 0) << seconds;
    }
    EXPECT_EQ(CMTimeGetSeconds(CMTimeMake(3, 2)), 1.5);
    EXPECT_TRUE(std::isnan(CMTimeGetSeconds({})));
    EXPECT_TRUE(CMTimeCompare({1, 10}, {10, 100}) == 0);
    EXPECT_TRUE(CMTimeCompare({INT64_MAX, 3}, {INT64_MAX, 2}) < 0);
    EXPECT_TRUE(CMTimeCompare({1, 10}, {}) == std::partial_ordering::unordered);
}

TEST(AVAssetImageGenerator, TakesTheFrameShownAtATime) {
    const std::tuple<CMTime, std::uint32_t, double> rows[] = {
        {{1, 10}, kGreen, 0.1},   {{0, 1}, kRed, 0},    {{-5, 1}, kRed, 0},     {{19, 100}, kGreen, 0.1},
        {{30, 100}, kWhite, 0.3}, {{1, 1000}, kRed, 0}, {{99, 1}, kBlack, 0.4}, {{INT64_MAX, 1}, kBlack, 0.4},
        {{25, 100}, kBlue, 0.2},
    };
    for (const char* clip : {"h264.mp4", "vp9.webm", "av1.mp4"}) {
        for (const auto& [time, color, begins] : rows) {
            const std::string what = clip + (" at " + std::to_string(CMTimeGetSeconds(time)));
            CMTime actual;
            const auto got = frame(kClips + clip, time, &actual);
            ASSERT_TRUE(got.ok()) << what << ": " << got.error().message();
            EXPECT_EQ(got->wide, 70u) << what;
            EXPECT_EQ(got->high, 46u) << what;
            for (const std::uint32_t pixel : got->pixels)
                ASSERT_TRUE(isNear(pixel, color)) << what << std::hex << pixel;
            EXPECT_NEAR(CMTimeGetSeconds(actual), begins, 0.002) << what;
        }
    }
}

/// Recorded with red on the left and blue on the right, to be turned clockwise when shown.
TEST(AVAssetImageGenerator, TurnsTheFrameUpright) {
    const std::tuple<const char*, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t>
        rows[] = {{"turned90.mp4", 46, 70, kRed, kRed, kBlue},
                  {"turned180.mp4", 70, 46, kBlue, kRed, kBlue},
                  {"turned270.mp4", 46, 70, kBlue, kBlue, kRed}};
    for (const auto& [clip, wide, high, topLeft, topRight, bottomLeft] : rows) {
        const auto got = frame(kClips + clip, {0, 1});
        ASSERT_TRUE(got.ok()) << clip << ": " << got.error().message();
        ASSERT_EQ(std::pair(got->wide, got->high), std::pair(wide, high)) << clip;
        const auto at = [&](std::uint32_t x, std::uint32_t y) { return got->pixels[y * got->wide + x]; };
        EXPECT_TRUE(isNear(at(2, 2), topLeft)) << clip;
        EXPECT_TRUE(isNear(at(got->wide - 3, 2), topRight)) << clip;
        EXPECT_TRUE(isNear(at(2, got->high - 3), bottomLeft)) << clip;
    }
}

TEST(AVAssetImageGenerator, DamagedFilesGiveNoFrame) {
    const testing::TemporaryDirectory directory;
    const testing::CapturedLog log;
    std::filesystem::copy(kClips + "h264.mp4", directory / "clip");
    const std::string whole = directory.read("clip");
    const std::tuple<const char*, std::string, ErrorKind> rows[] = {
        {"none", directory / "none.mp4", ErrorKind::Missing},
        {"no path", "", ErrorKind::Corrupt},
        {"empty", directory.write("empty.mp4", ""), ErrorKind::Corrupt},
        {"text", directory.write("text.mp4", "#EXTM3U\nfile:///etc/passwd\n"), ErrorKind::Corrupt},
        {"cut", directory.write("cut.mp4", whole.substr(0, 200)), ErrorKind::Corrupt},
        {"another protocol", "concat:" + kClips + "h264.mp4", ErrorKind::Missing},
    };
    for (const auto& [what, path, kind] : rows) {
        const auto got = frame(path, {0, 1});
        ASSERT_FALSE(got.ok()) << what;
        EXPECT_EQ(got.error().kind, kind) << what << ": " << got.error().message();
        EXPECT_FALSE(checkVideo(path).ok()) << what;
    }
    EXPECT_TRUE(checkVideo(directory / "clip").ok()) << "the name does not count";
    EXPECT_FALSE(frame(kClips + "h264.mp4", {}).ok()) << "no time";
    EXPECT_FALSE(frame("/\xFF", {0, 1}).ok());
    EXPECT_EQ(AVAssetImageGenerator::assetImageGeneratorWithAsset(nullptr), nullptr);
    // Whatever bytes are damaged: an answer.
    for (std::size_t at = 0; at < whole.size(); at += 7) {
        std::string damaged = whole;
        damaged[at] = static_cast<char>(damaged[at] ^ 0xFF);
        (void)frame(directory.write("damaged.mp4", damaged), {1, 10});
    }
    EXPECT_THAT(log.lines(), ::testing::IsEmpty());
}

}  // namespace
}  // namespace kx
