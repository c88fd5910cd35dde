// SPDX-License-Identifier: MIT

#include <filesystem>
#include <fstream>
#include <functional>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using testing::FaultyFileSystem;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;

constexpr const char* kIdentifier = "org.example.app";

std::vector<std::string> namesIn(const std::string& directory) {
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(directory))
        names.push_back(entry.path().filename());
    return names;
}

struct NSUserDefaultsTest : ::testing::Test {
    static std::shared_ptr<NSUserDefaults> defaults() { return make<NSUserDefaults>(kIdentifier); }
    std::string config() const { return platform.directory() / "home/config"; }
    std::string place(std::string_view name = "defaults.plist") const {
        return config() + "/" + kIdentifier + "/" + std::string(name);
    }
    void damage() const {
        std::filesystem::create_directories(directoryOf(place()));
        std::ofstream(place()) << "<plist><dict><key>half";
    }

    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

TEST_F(NSUserDefaultsTest, AFreshObjectReadsWhatWasFlushed) {
    const Value rows[] = {"", "bell \a", 2.5, true, ArrayBuilder().add(1).add("two").build(),
                          // A date within a second, and bytes.
                          Value::date(0.25),
                          DictionaryBuilder().set("k", Value::data(std::vector<std::byte>(3))).build()};
    for (const Value& row : rows) {
        const auto writer = defaults();
        writer->setObject("key", row);
        EXPECT_TRUE(writer->synchronize());
        EXPECT_EQ(defaults()->objectForKey("key"), row) << row.description();
    }
    const auto writer = defaults();
    writer->removeObjectForKey("key");
    EXPECT_TRUE(writer->synchronize());
    EXPECT_TRUE(defaults()->objectForKey("key").isNull());
    EXPECT_THAT(log.lines(), ElementsAre());
}

TEST_F(NSUserDefaultsTest, WritesOnceAndOnlyWhatChanged) {
    using Call = FaultyFileSystem::Call;
    const auto settings = defaults();
    for (const char* text : {"first", "second"}) {
        const auto before = settings->version();
        settings->setObject("key", text);
        EXPECT_NE(settings->version(), before);
        files->resetCounts();
        EXPECT_TRUE(settings->synchronize());
        EXPECT_EQ(files->calls(Call::Write), 1u) << text;
        EXPECT_EQ(files->calls(Call::Sync), 1u) << text;
        EXPECT_EQ(files->calls(Call::SyncDirectory), 1u) << text;
    }
    files->resetCounts();
    const auto version = settings->version();
    settings->setObject("key", "second");
    settings->removeObjectForKey("missing");
    EXPECT_TRUE(settings->synchronize());
    EXPECT_EQ(settings->objectForKey("key"), Value("second"));
    EXPECT_EQ(settings->version(), version);
    EXPECT_EQ(files->calls(), 0u);
    settings->removeObjectForKey("key");
    EXPECT_NE(settings->version(), version);
}

TEST_F(NSUserDefaultsTest, DamagedFilesAreSetAsideOneByOne) {
    for (const int number : {1, 2}) {
        damage();
        const auto settings = defaults();
        EXPECT_TRUE(settings->objectForKey("half").isNull());
        settings->setObject("key", number);
        EXPECT_TRUE(settings->synchronize());
        EXPECT_EQ(defaults()->objectForKey("key"), Value(number));
    }
    EXPECT_TRUE(std::filesystem::exists(place("defaults.plist.damaged-1")));
    EXPECT_TRUE(std::filesystem::exists(place("defaults.plist.damaged-2")));
    EXPECT_THAT(log.lines(),
                ElementsAre(HasSubstr("defaults.plist.damaged-1"), HasSubstr("defaults.plist.damaged-2")));
}

TEST_F(NSUserDefaultsTest, ADamagedFileThatCannotBeSetAsideIsLeftAlone) {
    damage();
    files->failCall(1, EROFS, FaultyFileSystem::Then::StaysBroken);
    const auto settings = defaults();
    settings->setObject("key", 1);
    EXPECT_FALSE(settings->synchronize());
    EXPECT_FALSE(settings->synchronize());
    EXPECT_EQ(settings->objectForKey("key"), Value(1));
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("denied")));
    files->heal();
    EXPECT_TRUE(settings->synchronize());
    EXPECT_TRUE(std::filesystem::exists(place("defaults.plist.damaged-1")));
}

TEST_F(NSUserDefaultsTest, WorksInMemoryWithoutAPlace) {
    platform.environment().set("HOME", "").set("XDG_CONFIG_HOME", "");
    const auto settings = defaults();
    settings->setObject("key", "kept");
    EXPECT_FALSE(settings->synchronize());
    EXPECT_FALSE(settings->synchronize());
    EXPECT_EQ(settings->stringForKey("key"), "kept");
    EXPECT_EQ(log.lines().size(), 1u);
    EXPECT_EQ(files->calls(), 0u);
}

TEST_F(NSUserDefaultsTest, NoIdentifierLeavesTheFolder) {
    for (const char* identifier :
         {"..", ".", "../evil", "/etc/evil", "a/../../evil", ".hidden", "%2E%2E", "new\nline"}) {
        const auto settings = make<NSUserDefaults>(identifier);
        settings->setObject("key", identifier);
        EXPECT_TRUE(settings->synchronize()) << identifier;
        EXPECT_EQ(make<NSUserDefaults>(identifier)->stringForKey("key"), identifier);
    }
    EXPECT_THAT(namesIn(platform.directory() / "home"), ElementsAre("config"));
    EXPECT_THAT(namesIn(config()),
                UnorderedElementsAre("%2E.", "%2E", "%2E.%2Fevil", "%2Fetc%2Fevil", "a%2F..%2F..%2Fevil",
                                     "%2Ehidden", "%252E%252E", "new%0Aline"));
}

TEST_F(NSUserDefaultsTest, WhatNoPropertyListHoldsIsACallerError) {
    const testing::LenientMode lenient;
    const auto settings = defaults();
    settings->setObject("object", Value(std::static_pointer_cast<NSObject>(settings)));
    settings->setObject("nested", ArrayBuilder().add(nullptr).build());
    EXPECT_TRUE(settings->objectForKey("object").isNull());
    EXPECT_TRUE(settings->objectForKey("nested").isNull());
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("\"object\""), HasSubstr("\"nested\"")));
}

TEST_F(NSUserDefaultsTest, TheStandardObjectBelongsToTheMainBundle) {
    platform.bundle().setInfo("CFBundleIdentifier", kIdentifier);
    NSUserDefaults::standardUserDefaults().setObject("key", "x");
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey("key"), "x");
    EXPECT_TRUE(NSUserDefaults::standardUserDefaults().synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "x");
    platform.restart();
    EXPECT_EQ(NSUserDefaults::standardUserDefaults().stringForKey("key"), "x");
}

TEST_F(NSUserDefaultsTest, AFullDiskKeepsTheOldContents) {
    const auto settings = defaults();
    settings->setObject("key", "old");
    ASSERT_TRUE(settings->synchronize());
    files->setRoom(10);
    settings->setObject("key", "new");
    EXPECT_FALSE(settings->synchronize());
    EXPECT_FALSE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "old");
    EXPECT_EQ(settings->stringForKey("key"), "new") << "memory keeps the change";
    EXPECT_EQ(log.lines().size(), 1u);
    files->heal();
    EXPECT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->stringForKey("key"), "new");
}

// Two objects of one identifier stand for two processes; real ones are in tests/faults.
TEST_F(NSUserDefaultsTest, MergesKeyByKeyWithAnotherProcess) {
    using Step = std::function<void(NSUserDefaults&)>;
    const auto set = [](const char* key, Value value) {
        return [=](NSUserDefaults& settings) { settings.setObject(key, value); };
    };
    const struct {
        const char* what;
        Step theirs, ours;
        Value a, b;  // at the end, in the file and in our memory
    } rows[] = {
        {"another key", set("b", 3), set("a", 2), 2, 3},
        {"the same key: the later flush wins", set("a", 3), set("a", 2), 2, 1},
        {"their removal", set("b", {}), set("a", 2), 2, {}},
        {"our removal", set("b", 3), set("a", {}), {}, 3},
        {"our removal of what they changed", set("a", 3), set("a", {}), {}, 1},
    };
    for (const auto& [what, theirs, ours, a, b] : rows) {
        const auto first = defaults();
        first->setObject("a", 1);
        first->setObject("b", 1);
        ASSERT_TRUE(first->synchronize());
        const auto second = defaults();
        theirs(*second);
        ASSERT_TRUE(second->synchronize());
        ours(*first);
        const auto version = first->version();
        ASSERT_TRUE(first->synchronize());
        EXPECT_EQ(first->version() != version, !(first->objectForKey("b") == Value(1))) << what;
        for (const auto& settings : {first, defaults()}) {
            EXPECT_EQ(settings->objectForKey("a"), a) << what;
            EXPECT_EQ(settings->objectForKey("b"), b) << what;
        }
    }
}

TEST_F(NSUserDefaultsTest, ADeletedFileIsWrittenAgainWhole) {
    const auto settings = defaults();
    settings->setObject("a", 1);
    ASSERT_TRUE(settings->synchronize());
    std::filesystem::remove_all(config());
    settings->setObject("b", 2);
    ASSERT_TRUE(settings->synchronize());
    EXPECT_EQ(defaults()->objectForKey("a"), Value(1));
    EXPECT_EQ(defaults()->objectForKey("b"), Value(2));
}

}  // namespace
}  // namespace kx
