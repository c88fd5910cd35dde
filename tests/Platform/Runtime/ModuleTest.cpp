// The library in a folder of its own (CMakeLists.txt), where no module lies beside it.
#include <algorithm>
#include <filesystem>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/URLLoader.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>

#include "support/CapturedLog.h"
#include "support/ScopedPlatform.h"

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

    PhotoStore photos(platform.directory() / "data", platform.directory() / "pictures");
    PhotoChanges album;
    album.albums.push_back({newPhotoIdentifier(), "Trip"});
    for (const bool again : {false, true}) {
        const auto checked = checkVideo(platform.directory().write("clip.mp4", "a recording"));
        EXPECT_EQ(checked.error().kind, ErrorKind::Unsupported) << "it is not the file that is missing";
        EXPECT_EQ(photos.perform(album).error().kind, ErrorKind::Unsupported) << again;
        EXPECT_FALSE(std::filesystem::exists(platform.directory() / "pictures")) << again;
        EXPECT_EQ(URLLoader::makeDefault()->open("https://example.org/").error().kind,
                  ErrorKind::Unsupported);
        EXPECT_EQ(chooseKeychain("unix:path=/no/such/bus", std::chrono::seconds(1)).capability.store,
                  KeychainCapability::Store::None);
    }
    const std::string modules[] = {"ffmpeg", "sqlite", "curl", "desktop", "sodium"};
    const auto lines = log.lines();
    EXPECT_EQ(lines.size(), std::size(modules));
    for (const std::string& name : modules) {
        const auto tells = [&](const std::string& line) { return line.find("kx-" + name) != line.npos; };
        EXPECT_EQ(std::ranges::count_if(lines, tells), 1) << name;
    }
}

}  // namespace
}  // namespace kx
