// SPDX-License-Identifier: MIT

#include <stdexcept>

#include <gmock/gmock.h>

#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Device/KXKeychainUtils.h>
#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Foundation/NSException.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/SecItem.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using testing::FaultyFileSystem;
using ::testing::IsEmpty;

class Harbour : public Subclass<Harbour, NSObject>, public NSSecureCoding {
  public:
    std::string name;

    static std::shared_ptr<Harbour> named(std::string name) {
        auto harbour = make<Harbour>();
        harbour->name = std::move(name);
        return harbour;
    }
    void encodeWithCoder(NSCoder& coder) const override {
        if (name == "unwritten") throw NSException("NSGeneric", "no name yet");
        coder.encode("name", name);
    }
    bool initWithCoder(NSCoder& coder) override {
        name = coder.decodeString("name").value_or("");
        if (name == "exception") throw NSException("NSGeneric", "no such harbour");
        if (name == "other") throw std::runtime_error("other");
        return name != "refused";
    }
};
class Ordinary : public Subclass<Ordinary, NSObject> {};

struct KXKeychainUtilsTest : ::testing::Test {
    testing::ScopedPlatform platform;
    std::shared_ptr<FaultyFileSystem> files = std::make_shared<FaultyFileSystem>();
    ScopedPort<FileSystem> scope{files};
    testing::CapturedLog log;
};

TEST_F(KXKeychainUtilsTest, TheDeviceIdentifierIsTheApplicationsToGive) {
    EXPECT_EQ(KXDeviceUtils::IDFV(), "");
    EXPECT_EQ(KXKeychainUtils::load<std::string>("IDFV"), "") << "what was missing is stored";
    KXDeviceUtils::save("a-1", "IDFV");
    EXPECT_EQ(KXDeviceUtils::IDFV(), "a-1");
    KXDeviceUtils::save(7, "IDFV");
    EXPECT_EQ(KXDeviceUtils::IDFV(), "") << "no text";
}

TEST_F(KXKeychainUtilsTest, TheQueryNamesTheKeyTwice) {
    EXPECT_EQ(KXKeychainUtils::getKeychainQuery("IDFV"),
              DictionaryBuilder()
                  .set("kSecClass", "kSecClassGenericPassword")
                  .set("kSecAttrService", "IDFV")
                  .set("kSecAttrAccount", "IDFV")
                  .set("kSecAttrAccessible", "kSecAttrAccessibleAfterFirstUnlock")
                  .build());
    EXPECT_TRUE(KXKeychainUtils::getKeychainQuery(std::nullopt).isNull());
}

TEST_F(KXKeychainUtilsTest, WhatIsSavedLoadsAsItsClass) {
    const std::tuple<std::string, Value, ArchivedClass> rows[] = {
        {"IDFV", "", ValueClass::NSString},
        {"", "of the empty key", ValueClass::NSString},
        {std::string("a\0b", 3), 7, ValueClass::NSNumber},
        {"caf\xE9", ArrayBuilder().add("caf\xE9").add(nullptr).build(), ValueClass::NSArray},
        {std::string(100'000, 'k'), Value::date(1), ValueClass::NSDate},
    };
    for (const auto& [key, value, cls] : rows) {
        KXKeychainUtils::save("before", key);
        KXKeychainUtils::save(value, key);
    }
    platform.restart();
    for (const auto& [key, value, cls] : rows) {
        EXPECT_EQ(KXKeychainUtils::loadDataForKey(key, cls), value) << key.substr(0, 20);
        EXPECT_TRUE(KXKeychainUtils::loadDataForKey(key, ValueClass::NSData).isNull());
        for (int round = 0; round < 2; ++round) KXKeychainUtils::deleteKeyDataFor(key);
        EXPECT_TRUE(KXKeychainUtils::loadDataForKey(key, cls).isNull());
    }
    EXPECT_EQ(keychainCapability().store, KeychainCapability::Store::File);
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST_F(KXKeychainUtilsTest, TypedLoads) {
    KXKeychainUtils::save(Value(Harbour::named("Kiel")), "object");
    KXKeychainUtils::save("text", "text");
    KXKeychainUtils::save(3, "number");
    EXPECT_EQ(KXKeychainUtils::load<Harbour>("object")->name, "Kiel");
    EXPECT_EQ(KXKeychainUtils::load<Harbour>("text"), nullptr);
    EXPECT_EQ(KXKeychainUtils::load<Ordinary>("object"), nullptr);
    EXPECT_EQ(KXKeychainUtils::load<std::string>("text"), "text");
    EXPECT_EQ(KXKeychainUtils::load<std::string>("number"), std::nullopt);
    EXPECT_EQ(KXKeychainUtils::load<int>("number"), 3);
    EXPECT_EQ(KXKeychainUtils::load<bool>("number"), std::nullopt);
    EXPECT_EQ(KXKeychainUtils::load<double>("number"), 3.0);
}

TEST_F(KXKeychainUtilsTest, OnlyTwoFailuresAreLogged) {
    for (const char* name : {"Kiel", "refused", "exception", "other"})
        KXKeychainUtils::save(Value(Harbour::named(name)), name);
    EXPECT_EQ(KXKeychainUtils::load<Harbour>("refused"), nullptr);
    EXPECT_THROW(static_cast<void>(KXKeychainUtils::load<Harbour>("other")), std::runtime_error);
    EXPECT_TRUE(KXKeychainUtils::loadDataForKey("never saved", ValueClass::NSString).isNull());
    EXPECT_TRUE(KXKeychainUtils::loadDataForKey(std::nullopt, ValueClass::NSString).isNull());
    KXKeychainUtils::save("x", std::nullopt);
    KXKeychainUtils::deleteKeyDataFor(std::nullopt);
    EXPECT_THAT(log.lines(), IsEmpty());

    EXPECT_EQ(KXKeychainUtils::load<Harbour>("exception"), nullptr);
    EXPECT_THAT(log.lines(), ElementsAre("解档 exception 失败: no such harbour"));

    KXKeychainUtils::save(Value(make<Ordinary>()), "Kiel");
    ASSERT_EQ(log.lines().size(), 2u);
    EXPECT_TRUE(log.lines()[1].starts_with("归档到keychain失败:")) << log.lines()[1];
    EXPECT_EQ(KXKeychainUtils::load<Harbour>("Kiel"), nullptr) << "the old one went first";
    KXKeychainUtils::save(Value(Harbour::named("unwritten")), "Kiel");
    ASSERT_EQ(log.lines().size(), 3u);
    EXPECT_TRUE(log.lines()[2].starts_with("归档到keychain失败:no name yet")) << log.lines()[2];
}

TEST_F(KXKeychainUtilsTest, ASaveReplacesTwoFilesAtMost) {
    for (int round = 0; round < 3; ++round) {
        files->resetCounts();
        KXKeychainUtils::save(round, "IDFV");
        EXPECT_EQ(files->calls(FaultyFileSystem::Call::Rename), 2u) << "round " << round;
    }
}

TEST_F(KXKeychainUtilsTest, TheChoiceStaysForTheProcessAndWithoutAnyPlaceNothingIsKept) {
    EXPECT_EQ(keychainCapability().store, KeychainCapability::Store::File);
    platform.environment().set("HOME", "").set("XDG_DATA_HOME", "");
    KXKeychainUtils::save("x", "IDFV");
    EXPECT_EQ(KXKeychainUtils::load<std::string>("IDFV"), "x");
    platform.restart();
    EXPECT_EQ(keychainCapability().store, KeychainCapability::Store::None);
    KXKeychainUtils::save("x", "IDFV");
    EXPECT_TRUE(KXKeychainUtils::loadDataForKey("IDFV", ValueClass::NSString).isNull());
    EXPECT_THAT(log.lines(), IsEmpty());
}

TEST(SecItem, AQueryNamesClassServiceAndAccount) {
    const testing::ScopedPlatform platform;
    const Value whole =
        DictionaryBuilder(KXKeychainUtils::getKeychainQuery("a")).set(kSecReturnData, true).build();
    const std::pair<const char*, Value> rows[] = {
        {"nothing", {}},
        {"no dictionary", "a"},
        {"no class", DictionaryBuilder(whole).remove(kSecClass).build()},
        {"no service", DictionaryBuilder(whole).remove(kSecAttrService).build()},
        {"another account", DictionaryBuilder(whole).set(kSecAttrAccount, 1).build()},
    };
    for (const auto& [what, query] : rows) {
        EXPECT_EQ(SecItemCopyMatching(query).error().kind, ErrorKind::Unsupported) << what;
        EXPECT_EQ(SecItemDelete(query).error().kind, ErrorKind::Unsupported) << what;
    }
    EXPECT_EQ(SecItemAdd(whole).error().kind, ErrorKind::Unsupported) << "no data";
    EXPECT_EQ(SecItemCopyMatching(whole).error().kind, ErrorKind::Missing);
    EXPECT_TRUE(
        SecItemAdd(
            DictionaryBuilder(whole).set(kSecValueData, Value::data(std::vector<std::byte>(3))).build())
            .ok());
    EXPECT_EQ(SecItemCopyMatching(whole)->asData()->size(), 3u);
    EXPECT_TRUE(SecItemCopyMatching(DictionaryBuilder(whole).remove(kSecReturnData).build())->isNull());
}

}  // namespace
}  // namespace kx
