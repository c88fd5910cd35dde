// SPDX-License-Identifier: MIT

// The library in a folder of its own (CMakeLists.txt), where no module lies beside it.
#include <algorithm>
#include <filesystem>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/CanonicalText.h>
#include <KXFoundation/Platform/Foundation/NSDateFormatter.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/URLLoader.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

TEST(Module, EachAbsentOneIsALogLineAndAHarmlessAnswer) {
    Dl_info library;
    ASSERT_TRUE(::dladdr(reinterpret_cast<const void*>(&errorKindName), &library));
    ASSERT_FALSE(
        std::filesystem::exists(std::filesystem::path(library.dli_fname).parent_path() / "KXFoundation"))
        << "run by ctest, which sets LD_LIBRARY_PATH";
    const testing::ScopedPlatform platform;
    const testing::CapturedLog log;
    if (openModule("ffmpeg", 1)) GTEST_SKIP() << "the modules are installed on this machine";

    const std::string clip = platform.directory().write("clip.mp4", "a recording"),
                      pictures = "home/Pictures";
    PhotoChanges videos;
    videos.assets.push_back({newPhotoIdentifier(), PHAssetMediaType::Video, clip});
    PhotoStore photos(platform.directory() / "data", platform.directory() / pictures);
    const std::string twoCodePoints = "e\u0301";
    for (const bool again : {false, true}) {
        EXPECT_EQ(checkVideo(clip).error().kind, ErrorKind::Unsupported) << again;
        const auto taken = photos.perform(videos);
        ASSERT_FALSE(taken.ok()) << again;
        EXPECT_EQ(taken.error().kind, ErrorKind::Unsupported) << "the file is not what is missing";
        EXPECT_FALSE(std::filesystem::exists(platform.directory() / pictures)) << again;
        EXPECT_EQ(URLLoader::makeDefault()->open("https://example.org/").error().kind,
                  ErrorKind::Unsupported);
        EXPECT_EQ(chooseKeychain("unix:path=/no/such/bus", std::chrono::seconds(1)).capability.store,
                  KeychainCapability::Store::None);
        EXPECT_EQ(canonicalText(twoCodePoints), twoCodePoints);
        EXPECT_EQ(languageTagForPosixName("zh_TW"), "zh-Hant-TW")
            << "the language of the texts is no module's";
        const auto formatter = make<NSDateFormatter>();
        formatter->setTimeZone(NSTimeZone::timeZoneWithName("UTC"));
        for (const auto& [pattern, text] :
             {std::pair{"yyyy-MM-dd h:mm a", "1970-01-01 12:00 AM"}, {"MMMM", "none"}}) {
            formatter->setDateFormat(pattern);
            EXPECT_EQ(formatter->stringFromDate(NSDate::dateWithTimeIntervalSince1970(0)).value_or("none"),
                      text);
        }
    }
    const auto lines = log.lines();
    EXPECT_EQ(lines.size(), 6u);
    for (const char* name :
         {"kx-ffmpeg.so", "kx-curl.so", "kx-desktop.so", "kx-sodium.so", "kx-sqlite.so", "kx-icu.so"})
        EXPECT_EQ(
            std::ranges::count_if(lines, [&](const auto& line) { return line.find(name) != line.npos; }), 1)
            << name;
}

}  // namespace
}  // namespace kx
