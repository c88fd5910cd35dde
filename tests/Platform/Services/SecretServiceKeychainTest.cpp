// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/SecretServiceKeychain.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "Platform/Services/MockSecretService.h"
#include "support/ScriptProcess.h"
#include "support/SilentSocket.h"

namespace kx {
namespace {

using testing::MockSecretService;
using Person = MockSecretService::Person;
using Store = KeychainCapability::Store;

constexpr std::chrono::milliseconds kPatient{20'000};
constexpr std::chrono::milliseconds kImpatient{100};

const DesktopSecrets& secrets() {
    return *openModule<DesktopModule>("desktop").value()->secrets;
}

struct SecretServiceKeychainTest : ::testing::Test {
    void SetUp() override {
        if (address.empty()) GTEST_SKIP() << "no message bus can be started here";
    }
    SecretServiceKeychain keychain(std::chrono::milliseconds timeout = kPatient,
                                   const char* application = "org.example.app") const {
        return {secrets(), address, application, timeout};
    }

    testing::ScopedPlatform platform;
    testing::ScriptProcess bus{"desktop_bus.py", {}};
    const std::string address = bus.readLine();
};

TEST_F(SecretServiceKeychainTest, AnyBytesAreNamesAndData) {
    const MockSecretService service(address);
    const std::string anyBytes("\0\xFF", 2);
    const std::string names[] = {"",     "IDFV",  std::string("a\0b", 3),   "a%00b", "caf\xE9", "caf%E9",
                                 "café", "100 %", std::string(1 << 20, 'n')};
    SecretServiceKeychain store = keychain();
    EXPECT_TRUE(store.probe().ok());
    for (const std::string& name : names) {
        EXPECT_EQ(store.copy({name, name}).error().kind, ErrorKind::Missing);
        EXPECT_EQ(store.remove({name, name}).error().kind, ErrorKind::Missing);
        ASSERT_TRUE(store.add({name, name}, "of" + name + anyBytes).ok()) << name.substr(0, 20);
    }
    EXPECT_EQ(service.items(), std::size(names));
    for (const std::string& name : names)
        EXPECT_EQ(*keychain().copy({name, name}), "of" + name + anyBytes) << name.substr(0, 20);
    EXPECT_EQ(keychain(kPatient, "org.example.other").copy({"IDFV", "IDFV"}).error().kind,
              ErrorKind::Missing);

    EXPECT_TRUE(store.add({"IDFV", "IDFV"}, "").ok());
    EXPECT_EQ(service.items(), std::size(names)) << "never a second one";
    EXPECT_EQ(*store.copy({"IDFV", "IDFV"}), "");
    EXPECT_TRUE(store.remove({"IDFV", "IDFV"}).ok());
    EXPECT_EQ(store.copy({"IDFV", "IDFV"}).error().kind, ErrorKind::Missing);
    EXPECT_EQ(service.items(), std::size(names) - 1);
}

TEST_F(SecretServiceKeychainTest, ALockedCollectionIsUnlockedByThePerson) {
    MockSecretService service(address);
    SecretServiceKeychain store = keychain();
    ASSERT_TRUE(store.add({"a", "a"}, "old").ok());
    service.lock(Person::Dismisses);
    EXPECT_TRUE(store.probe().ok()) << "needs no unlocking";
    EXPECT_EQ(store.copy({"a", "a"}).error().kind, ErrorKind::Denied);
    EXPECT_EQ(store.add({"a", "a"}, "new").error().kind, ErrorKind::Denied);
    EXPECT_EQ(store.copy({"b", "b"}).error().kind, ErrorKind::Missing) << "nothing to unlock for";
    EXPECT_EQ(service.dialogues(), 2u);
    service.lock(Person::Accepts);
    EXPECT_EQ(*store.copy({"a", "a"}), "old");
    service.lock(Person::Accepts);
    EXPECT_TRUE(store.add({"b", "b"}, "new").ok());
    service.lock(Person::Accepts);
    EXPECT_TRUE(store.remove({"a", "a"}).ok());
    EXPECT_EQ(service.dialogues(), 5u);
}

TEST_F(SecretServiceKeychainTest, ADialogueHoldsNobodyUp) {
    MockSecretService service(address);
    service.lock(Person::IsAway);
    EXPECT_EQ(keychain(kImpatient).add({"a", "a"}, "x").error().kind, ErrorKind::TimedOut);
    SecretServiceKeychain store = keychain();
    for (int i = 0; i < 3; ++i)  // at once, though the time is long
        EXPECT_EQ(store.add({"a", "a"}, "x").error().kind, ErrorKind::TimedOut);
    EXPECT_EQ(service.dialogues(), 1u) << "nobody is asked twice";
    service.comeBack();
    EXPECT_TRUE(store.add({"b", "b"}, "y").ok());
    EXPECT_EQ(service.items(), 1u) << "what was given up is not done later";
}

TEST_F(SecretServiceKeychainTest, SilenceEndsWithTheTime) {
    MockSecretService service(address);
    service.fallSilent();
    SecretServiceKeychain store = keychain(kImpatient);
    EXPECT_EQ(store.probe().error().kind, ErrorKind::TimedOut);
    EXPECT_EQ(store.copy({"a", "a"}).error().kind, ErrorKind::TimedOut);
    EXPECT_EQ(store.add({"a", "a"}, "x").error().kind, ErrorKind::TimedOut);
    EXPECT_EQ(store.remove({"a", "a"}).error().kind, ErrorKind::TimedOut);
}

/// A service that takes all the time there is, each time it is asked.
struct SlowService {
    static inline std::shared_ptr<testing::ManualClock> clock;
    static inline int asked = 0;

    static DesktopReply wait(std::uint32_t milliseconds) {
        ++asked;
        clock->advance(std::chrono::milliseconds(milliseconds));
        return DesktopReply::TimedOut;
    }
    static constexpr DesktopSecrets kTable{
        .probe = [](const char*, std::uint32_t time) { return wait(time); },
        .copy = [](const char*, const DesktopSecret*, std::uint32_t time, auto, void*,
                   bool*) { return wait(time); },
        .add = [](const char*, const DesktopSecret*, const void*, std::size_t,
                  std::uint32_t time) { return wait(time); },
        .remove = [](const char*, const DesktopSecret*, std::uint32_t time, bool*) { return wait(time); }};
};

TEST(SecretServiceKeychain, SilenceHoldsASaveUpOnce) {
    SlowService::clock = std::make_shared<testing::ManualClock>();
    const ScopedPort<Clock> scope(SlowService::clock);
    SecretServiceKeychain store(SlowService::kTable, "", "org.example.app", kKeychainTimeout);
    for (const int round : {1, 2}) {
        EXPECT_EQ(store.remove({"a", "a"}).error().kind, ErrorKind::TimedOut);
        EXPECT_EQ(store.add({"a", "a"}, "x").error().kind, ErrorKind::TimedOut);
        EXPECT_EQ(store.copy({"a", "a"}).error().kind, ErrorKind::TimedOut);
        EXPECT_EQ(SlowService::asked, round);
        SlowService::clock->advance(kKeychainTimeout);
    }
}

TEST_F(SecretServiceKeychainTest, TheServiceIsChosenWhereItCanKeepItems) {
    EXPECT_EQ(chooseKeychain(address, kPatient).capability.store, Store::File) << "nobody on the bus";
    MockSecretService service(address);
    const auto chosen = chooseKeychain(address, kPatient);
    EXPECT_EQ(chosen.capability.store, Store::SecretService) << chosen.capability.why;
    EXPECT_TRUE(chosen.store->add({"a", "a"}, "x").ok());
    EXPECT_EQ(service.items(), 1u);

    platform.environment().set("DBUS_SESSION_BUS_ADDRESS", address);
    EXPECT_EQ(keychainCapability().store, Store::SecretService) << "the process's own choice";
    EXPECT_EQ(*KeychainStore::slot().current().copy({"a", "a"}), "x");
    service.takeCollectionAway();
    EXPECT_EQ(chooseKeychain(address, kPatient).capability.store, Store::File);
    EXPECT_EQ(keychainCapability().store, Store::SecretService) << "made once";
}

TEST(KeychainChoice, WithoutAServiceItIsTheFile) {
    const testing::ScopedPlatform platform;
    const testing::CapturedLog log;
    const testing::SilentSocket silent;
    ASSERT_TRUE(silent.isListening());
    const std::optional<std::string> rows[] = {std::nullopt, "", "nonsense", "unix:path=/nobody/listens",
                                               "unix:path=" + silent.path()};
    for (const auto& address : rows) {
        const auto chosen = chooseKeychain(address, kImpatient);
        EXPECT_EQ(chosen.capability.store, Store::File) << address.value_or("none");
        EXPECT_TRUE(chosen.store->add({"a", "a"}, "x").ok());
        EXPECT_EQ(*chosen.store->copy({"a", "a"}), "x");
    }
    EXPECT_TRUE(log.lines().empty()) << log.lines().front();
}

}  // namespace
}  // namespace kx
