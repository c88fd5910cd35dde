// SPDX-License-Identifier: MIT

#include <filesystem>

#include <gmock/gmock.h>
#include <sys/stat.h>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using testing::FaultyFileSystem;
using ::testing::HasSubstr;

const SodiumModule& sodium() {
    return *openModule<SodiumModule>("sodium").value();
}

struct FileKeychainTest : ::testing::Test {
    FileKeychain keychain() const { return {directory / "data/app", sodium()}; }
    std::string valueOf(std::string_view name) const {
        auto found = keychain().copy({name, name});
        return found ? *found : "(" + std::string(errorKindName(found.error().kind)) + ")";
    }

    testing::TemporaryDirectory directory;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

constexpr const char* kMissing = "(missing)";

TEST_F(FileKeychainTest, AnyBytesAreNamesAndData) {
    const std::string names[] = {"",        "IDFV", std::string("a\0b", 3),   std::string("a\0c", 3),
                                 "caf\xE9", "海",   std::string(1 << 20, 'n')};
    FileKeychain first = keychain();
    EXPECT_EQ(valueOf("IDFV"), kMissing);
    EXPECT_EQ(first.remove({"IDFV", "IDFV"}).error().kind, ErrorKind::Missing);
    EXPECT_FALSE(std::filesystem::exists(directory / "data")) << "asking makes nothing";
    for (const std::string& name : names) EXPECT_TRUE(first.add({name, name}, "of " + name).ok());
    EXPECT_TRUE(first.add({"IDFV", "other account"}, std::string("\0\xFF", 2)).ok());
    EXPECT_TRUE(first.add({"IDFV", "IDFV"}, "again").ok());
    for (const std::string& name : names)
        EXPECT_EQ(valueOf(name), name == "IDFV" ? "again" : "of " + name) << name.substr(0, 20);
    EXPECT_EQ(*keychain().copy({"IDFV", "other account"}), std::string("\0\xFF", 2));
    EXPECT_TRUE(first.remove({"", ""}).ok());
    EXPECT_EQ(valueOf(""), kMissing);
    EXPECT_EQ(valueOf("海"), "of 海");
    EXPECT_EQ(first.add({"x", "x"}, std::string(KeychainStore::kMostBytes + 1, 'x')).error().kind,
              ErrorKind::TooLarge);
}

TEST_F(FileKeychainTest, IsEncryptedWithAKeyForItsOwnerAlone) {
    EXPECT_TRUE(keychain().add({"harbour", "harbour"}, "Kiel lighthouse").ok());
    const std::string box = directory.read("data/app/keychain");
    EXPECT_TRUE(box.starts_with("KXKEYC01"));
    EXPECT_EQ(box.find("lighthouse"), std::string::npos);
    EXPECT_EQ(box.find("harbour"), std::string::npos);
    for (const char* name : {"keychain", "keychain.key", "keychain.lock"}) {
        struct stat info {};
        ASSERT_EQ(::stat((directory / ("data/app/" + std::string(name))).c_str(), &info), 0) << name;
        EXPECT_EQ(info.st_mode & 0777, 0600u) << name;
    }
    EXPECT_TRUE(keychain().add({"harbour", "harbour"}, "Kiel lighthouse").ok());
    EXPECT_NE(directory.read("data/app/keychain"), box) << "a nonce of its own each time";
}

/// Whatever happens to either file, the items are gone, nothing is overwritten, and one line says so.
TEST_F(FileKeychainTest, ADamagedFileIsSetAside) {
    const auto flipped = [](std::string text, std::size_t at) {
        text[at] = static_cast<char>(text[at] ^ 1);
        return text;
    };
    EXPECT_TRUE(keychain().add({"a", "a"}, "old").ok());
    const std::string box = directory.read("data/app/keychain");
    const std::string key = directory.read("data/app/keychain.key");
    const std::tuple<const char*, std::string, std::string> rows[] = {
        {"empty", "", key},
        {"too short", box.substr(0, 40), key},
        {"cut", box.substr(0, box.size() - 1), key},
        {"longer", box + "x", key},
        {"another format", flipped(box, 7), key},
        {"another nonce", flipped(box, 8), key},
        {"another tag", flipped(box, box.size() - 1), key},
        {"another key", box, flipped(key, 31)},
        {"a key too short", box, key.substr(1)},
        {"a key too long", box, key + "x"},
        {"no key", box, "none"},
    };
    for (const auto& [what, givenBox, givenKey] : rows) {
        std::filesystem::remove_all(directory / "data/app");
        directory.write("data/app/keychain", givenBox);
        if (givenKey != "none") directory.write("data/app/keychain.key", givenKey);
        const std::size_t before = log.lines().size();
        FileKeychain store = keychain();
        for (int i = 0; i < 2; ++i)
            EXPECT_EQ(store.copy({"a", "a"}).error().kind, ErrorKind::Missing) << what;
        EXPECT_EQ(store.remove({"a", "a"}).error().kind, ErrorKind::Missing) << what;
        EXPECT_EQ(directory.read("data/app/keychain"), givenBox) << what << ": reading changes nothing";
        EXPECT_TRUE(store.add({"b", "b"}, "new").ok()) << what;
        ASSERT_EQ(log.lines().size(), before + 1) << what;
        EXPECT_THAT(log.lines().back(), HasSubstr("keychain")) << what;
        EXPECT_EQ(directory.read("data/app/keychain.damaged-1"), givenBox) << what;
        if (givenKey.size() != key.size() && givenKey != "none") {
            EXPECT_EQ(directory.read("data/app/keychain.key.damaged-1"), givenKey) << what;
        }
        EXPECT_EQ(valueOf("b"), "new") << what;
    }
}

TEST_F(FileKeychainTest, RemovesWhatAKilledProcessWasWriting) {
    const std::string left[] = {directory.write("data/app/keychain.new-1-0", "half"),
                                directory.write("data/app/keychain.key.new-1-1", "half")};
    EXPECT_TRUE(keychain().add({"a", "a"}, "b").ok());
    for (const std::string& path : left) EXPECT_FALSE(std::filesystem::exists(path)) << path;
}

TEST_F(FileKeychainTest, ReadsWhereNothingCanBeWritten) {
    EXPECT_TRUE(keychain().add({"a", "a"}, "old").ok());
    std::filesystem::remove(directory / "data/app/keychain.lock");
    files->setRoom(0);
    EXPECT_EQ(valueOf("a"), "old");
    EXPECT_FALSE(keychain().add({"a", "a"}, "new").ok());
    EXPECT_EQ(valueOf("a"), "old");
}

}  // namespace
}  // namespace kx
