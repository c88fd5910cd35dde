// SPDX-License-Identifier: MIT

#include <filesystem>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "support/OnThreads.h"

namespace kx {
namespace {

using namespace std::string_literals;
using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

struct NSBundleTest : ::testing::Test {
    std::string inMain(std::string_view name) { return platform.bundle().path() + '/' + std::string(name); }

    testing::ScopedPlatform platform;
    testing::CapturedLog log;
};

TEST_F(NSBundleTest, IsNoneWithoutADirectory) {
    platform.bundle().addFile("file", "");
    std::filesystem::create_directory_symlink("loop", inMain("loop"));
    for (const std::optional<std::string>& path :
         {std::optional<std::string>(), std::optional(""s), std::optional(inMain("missing")),
          std::optional(inMain("file")), std::optional(inMain("loop")), std::optional(inMain("\0"s))}) {
        EXPECT_EQ(make<NSBundle>(path), nullptr) << path.value_or("absent");
    }
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(NSBundleTest, ListsLocalizations) {
    auto& folder = platform.bundle();
    folder.addLocalization("pt").addLocalization("pt-BR").addLocalization("en").addFile("fr.lproj", "a file");
    folder.addFile(".lproj/x", "").addFile("de.lproj.bak/x", "");
    std::filesystem::create_symlink("nowhere", inMain("it.lproj"));
    std::filesystem::create_directory_symlink("en.lproj", inMain("en-GB.lproj"));
    EXPECT_THAT(NSBundle::mainBundle()->localizations(), ElementsAre("en", "en-GB", "pt", "pt-BR"));
}

TEST_F(NSBundleTest, FindsResourcesInItselfAlone) {
    platform.directory().write("outside.txt", "");
    platform.bundle().addLocalization("fr").addFile("logo.png", "").addFile("README", "");
    std::filesystem::create_symlink("nowhere", inMain("broken.txt"));
    using Name = std::optional<std::string>;
    const struct {
        Name name, type, found;
    } rows[] = {
        {{}, "png", {}},   {"de", "lproj", {}},     {"README", "", "README"},  {"fr", "lproj", "fr.lproj"},
        {"", "lproj", {}}, {"broken", "txt", {}},   {"../outside", "txt", {}}, {"logo", "png", "logo.png"},
        {"..", {}, {}},    {"fr.lproj/..", {}, {}}, {"logo.png\0"s, {}, {}},   {"logo.png", {}, "logo.png"},
        {".", {}, {}}};
    const auto bundle = NSBundle::mainBundle();
    for (int round = 0; round < 2; ++round) {
        for (const auto& [name, type, found] : rows) {
            const Name expected = found ? Name(inMain(*found)) : std::nullopt;
            EXPECT_EQ(bundle->pathForResource(name, type), expected) << name.value_or("absent");
        }
    }
}

TEST_F(NSBundleTest, LooksTextsUp) {
    platform.bundle().addStrings("fr", {{"hello", "Bonjour"}, {"empty", ""}});
    platform.bundle().addStrings("fr", {{"hello", "Salut"}}, "Other");
    const auto french = make<NSBundle>(inMain("fr.lproj"));
    ASSERT_TRUE(french);
    using Text = std::optional<std::string>;
    const std::tuple<std::string, Text, Text, std::string> rows[] = {
        {"hello", "hello", {}, "Bonjour"},      {"hello", {}, "", "Bonjour"},
        {"hello", {}, "Other", "Salut"},        {"hello", {}, "Missing", "hello"},
        {"hello", "value", "Missing", "value"}, {"empty", "value", {}, ""},
        {"missing", {}, {}, "missing"},         {"missing", "value", {}, "value"}};
    for (const auto& [key, value, table, text] : rows)
        EXPECT_EQ(french->localizedStringForKey(key, value, table), text)
            << key << " in " << table.value_or("absent");
    EXPECT_EQ(french->localizedStringForKey("hello", {}, "Localizable"), "Bonjour");
    EXPECT_EQ(french->localizedStringForKey("hello", "", "../fr.lproj/Other"), "hello");
    EXPECT_EQ(french->lookUp("missing"), std::nullopt);
}

TEST_F(NSBundleTest, BundlesOverOneFolderShareItsTables) {
    platform.bundle().addStringsFile("fr", "hello = Bonjour;\nbad");
    std::filesystem::create_directory_symlink("fr.lproj", inMain("link.lproj"));
    std::optional<std::string_view> text = make<NSBundle>(inMain("fr.lproj"))->lookUp("hello");
    for (const auto* path : {"fr.lproj", "link.lproj", "fr.lproj/../fr.lproj"}) {
        const auto bundle = make<NSBundle>(inMain(path));
        ASSERT_TRUE(bundle) << path;
        EXPECT_EQ(bundle->lookUp("hello")->data(), text->data()) << path;
    }
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("fr.lproj/Localizable.strings:2: ")));
}

TEST_F(NSBundleTest, ThreadsShareOneReading) {
    platform.bundle().addStringsFile("fr", "hello = Bonjour;\nbad");
    const char* found[4] = {};
    testing::onThreads(4, [&](int i) {
        found[i] = make<NSBundle>(inMain("fr.lproj"))->lookUp("hello").value_or("none").data();
    });
    EXPECT_THAT(found, ::testing::Each(found[0]));
    EXPECT_STREQ(std::string(found[0], 7).c_str(), "Bonjour");
    EXPECT_EQ(log.lines().size(), 1u);
}

TEST_F(NSBundleTest, DamagedInformationIsNoneWithOneLine) {
    for (const char* contents :
         {"", "<plist><dict><key>a", "bplist00\xFF", "<plist version=\"1.0\"><array/></plist>"}) {
        const auto folder = platform.directory().write(
            "damaged/" + std::to_string(log.lines().size()) + "/Info.plist", contents);
        const auto lines = log.lines().size();
        const auto bundle = make<NSBundle>(std::filesystem::path(folder).parent_path().string());
        for (int round = 0; round < 2; ++round) {
            EXPECT_TRUE(bundle->infoDictionary().members().empty()) << contents;
            EXPECT_EQ(bundle->infoDictionary().type(), Value::Type::Dictionary) << contents;
            EXPECT_EQ(bundle->bundleIdentifier(), std::nullopt);
        }
        EXPECT_EQ(log.lines().size(), lines + 1) << contents;
        EXPECT_THAT(log.lines().back(), HasSubstr("Info.plist"));
    }
}

TEST_F(NSBundleTest, AsksTheSystemOnceOnly) {
    platform.bundle().addStrings("fr", {{"hello", "Bonjour"}}).addFile("logo.png", "");
    const auto files = std::make_shared<testing::FaultyFileSystem>();
    const ScopedPort<FileSystem> scope(files);
    const auto askAll = [&] {
        const auto main = NSBundle::mainBundle();
        (void)main->infoDictionary();
        (void)main->localizations();
        (void)main->pathForResource("de", "lproj");
        const auto french = make<NSBundle>(main->pathForResource("fr", "lproj"));
        (void)french->lookUp("hello");
        (void)french->lookUp("hello", "Missing");
    };
    askAll();
    EXPECT_GT(files->calls(), 0u);
    files->resetCounts();
    askAll();
    EXPECT_EQ(files->calls(), 0u);
}

TEST_F(NSBundleTest, AnUnreadableFolderHoldsNothing) {
    platform.bundle().addStrings("fr", {{"hello", "Bonjour"}});
    const auto files = std::make_shared<testing::FaultyFileSystem>();
    const ScopedPort<FileSystem> scope(files);
    const auto french = make<NSBundle>(inMain("fr.lproj"));
    ASSERT_TRUE(french);
    files->failCall(1, EACCES);
    EXPECT_EQ(french->lookUp("hello"), std::nullopt);
    EXPECT_EQ(french->pathForResource("Localizable", "strings"), std::nullopt);
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("fr.lproj")));
}

TEST_F(NSBundleTest, AsksAgainAfterAFailureThatMayPass) {
    platform.bundle().addStrings("fr", {{"hello", "Bonjour"}});
    const auto files = std::make_shared<testing::FaultyFileSystem>();
    const ScopedPort<FileSystem> scope(files);
    const auto hello = []() -> std::optional<std::string> {
        const auto french = make<NSBundle>(NSBundle::mainBundle()->pathForResource("fr", "lproj"));
        return french ? std::optional<std::string>(french->lookUp("hello")) : std::nullopt;
    };
    ASSERT_EQ(hello(), "Bonjour");
    const std::size_t calls = files->calls();
    for (std::size_t failing = 1; failing <= calls; ++failing) {
        platform.restart();
        files->failCall(failing, EMFILE);
        (void)hello();
        EXPECT_EQ(hello(), "Bonjour") << "call " << failing << " of " << calls << " failed";
    }
    EXPECT_THAT(log.lines(), Contains(HasSubstr("Localizable.strings")));
}

struct MainBundleTest : ::testing::Test {
    MainBundleTest() {
        environment->setProgramPath(directory / "prefix/bin/editor");
        directory.makeDirectory("prefix/bin");
    }
    std::string mainPath() {
        const ScopedProcessState fresh;
        return NSBundle::mainBundle()->bundlePath();
    }

    testing::TemporaryDirectory directory;
    std::shared_ptr<testing::FakeEnvironment> environment = std::make_shared<testing::FakeEnvironment>();
    ScopedPort<Environment> scope{environment};
};

TEST_F(MainBundleTest, IsSoughtBesideTheProgramThenInShare) {
    EXPECT_EQ(mainPath(), directory / "prefix/bin/Resources") << "missing, but named";
    directory.makeDirectory("prefix/share/editor");
    EXPECT_EQ(mainPath(), directory / "prefix/share/editor");
    directory.makeDirectory("prefix/bin/Resources");
    EXPECT_EQ(mainPath(), directory / "prefix/bin/Resources");
    const ScopedProcessState fresh;
    NSBundle::setMainBundlePath(directory / "prefix");
    EXPECT_EQ(NSBundle::mainBundle()->bundlePath(), directory / "prefix");
}

TEST_F(MainBundleTest, IsThereWithoutAFolder) {
    const ScopedProcessState fresh;
    const auto bundle = NSBundle::mainBundle();
    EXPECT_THAT(bundle->localizations(), IsEmpty());
    EXPECT_EQ(bundle->pathForResource("en", "lproj"), std::nullopt);
    EXPECT_EQ(bundle->localizedStringForKey("key", {}, {}), "key");
    EXPECT_EQ(bundle->bundleIdentifier(), "editor") << "the program's name serves";
}

TEST_F(MainBundleTest, IsNamedBeforeItIsUsed) {
    const ScopedProcessState fresh;
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    const std::string before = NSBundle::mainBundle()->bundlePath();
    NSBundle::setMainBundlePath(directory.path());
    EXPECT_EQ(NSBundle::mainBundle()->bundlePath(), before);
    EXPECT_THAT(log.lines(), ElementsAre("NSBundle: the main bundle is already in use"));
}

}  // namespace
}  // namespace kx
