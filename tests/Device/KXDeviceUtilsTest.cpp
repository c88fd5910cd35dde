// SPDX-License-Identifier: MIT

#include <set>

#include <gtest/gtest.h>

#include <KXFoundation/Device/DeviceModels.h>
#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Services/Biometrics.h>
#include <KXFoundation/Platform/Services/Machine.h>
#include <KXFoundation/Platform/Services/Torch.h>
#include <KXFoundation/Testing/CapturedLog.h>

namespace kx {
namespace {

class InjectedMachine final : public Machine {
  public:
    explicit InjectedMachine(std::string identifier,
                             Result<VolumeRoom> room = Error{ErrorKind::Denied, 0, "/var"})
        : identifier_(std::move(identifier)), room_(std::move(room)) {}
    std::string hardwareIdentifier() override { return identifier_; }
    Result<VolumeRoom> roomAt(const std::string& path) override {
        EXPECT_EQ(path, "/var");
        return room_;
    }

  private:
    std::string identifier_;
    Result<VolumeRoom> room_;
};

TEST(KXDeviceUtils, WhatFollowsFromTheHardwareIdentifier) {
    const std::tuple<const char*, const char*, const char*, bool> rows[] = {
        {"iPhone10,3", "iPhone X", "0", true},
        {"iPhone10,6", "iPhone X", "0", true},
        {"iPhone5,3", "iPhone 5c", "0", false},
        {"iPhone6,1", "iPhone 5s", "0", true},
        {"iPad4,6", "iPad Mini 2 (Cellular)", "4", false},
        {"iPad4,7", "iPad Mini 3 (WiFi)", "4", true},
        {"iPad4,9", "iPad Mini 3 (Cellular)", "4", true},
        {"iPad5,1", "iPad Mini 4 (WiFi)", "4", true},
        {"iPod9,1", "iPod Touch 7G", "0", false},
        {"x86_64", "iPhone Simulator", "0", false},
        {"arm64", "arm64", "0", false},
        {"iphone10,3", "iphone10,3", "0", false},
        {"iPhone7", "iPhone7", "0", true},
        {"iPhone", "iPhone", "0", false},
        {"iPad", "iPad", "4", false},
        {"iPad4", "iPad4", "4", false},
        {"iPad4,", "iPad4,", "4", false},
        {"iPad4,99999999999,8", "iPad4,99999999999,8", "4", true},
        {"an iPad9,9", "an iPad9,9", "4", false},  // its first four characters are no name
        {"", "", "0", false},
    };
    for (const auto& [identifier, model, terminal, biometric] : rows) {
        const ScopedPort<Machine> scope(std::make_shared<InjectedMachine>(identifier));
        EXPECT_EQ(KXDeviceUtils::deviceModel(), model);
        EXPECT_EQ(KXDeviceUtils::terminalMeta(), terminal) << identifier;
        EXPECT_EQ(KXDeviceUtils::isSupportBiometric(), biometric) << identifier;
    }
}

TEST(DeviceModels, EveryIdentifierStandsOnce) {
    std::set<std::string_view> identifiers, names;
    for (const auto& [identifier, name] : devices::kModels) {
        EXPECT_TRUE(identifiers.insert(identifier).second) << identifier;
        names.insert(name);
    }
    EXPECT_EQ(identifiers.size(), 98U);
    EXPECT_EQ(names.size(), 85U);
}

TEST(KXDeviceUtils, FreeSpace) {
    const std::pair<Result<VolumeRoom>, std::uint64_t> rows[] = {
        {VolumeRoom{4096, 3}, 12'288},
        {VolumeRoom{0xFFFF'FFFF, 0x1'0000'0001}, 0xFFFF'FFFF'FFFF'FFFF},
        {VolumeRoom{4096, 0}, 0},
        {Error{ErrorKind::Missing, 0, "/var"}, 0},
    };
    const testing::CapturedLog log;
    for (const auto& [room, want] : rows) {
        const ScopedPort<Machine> scope(std::make_shared<InjectedMachine>("x86_64", room));
        EXPECT_EQ(KXDeviceUtils::freeSpace(), want);
        EXPECT_EQ(KXDeviceUtils::isSpaceFull(), want == 0);
    }
    EXPECT_EQ(log.lines().size(), 1U);
    EXPECT_EQ(Machine::makeDefault()->roomAt("/no/such/place").error().kind, ErrorKind::Missing);
}

TEST(KXDeviceUtils, FaceRecognitionIsWhatTheSystemSays) {
    class InjectedBiometrics final : public Biometrics {
      public:
        explicit InjectedBiometrics(Result<BiometryType> type) : type_(std::move(type)) {}
        Result<BiometryType> type(std::chrono::milliseconds) override { return type_; }

      private:
        Result<BiometryType> type_;
    };
    const std::pair<Result<BiometryType>, bool> rows[] = {
        {BiometryType::None, false},
        {BiometryType::Fingerprint, false},
        {BiometryType::Face, true},
        {Error{ErrorKind::TimedOut, 0, "bus"}, false},
    };
    for (const auto& [type, want] : rows) {
        const ScopedPort<Biometrics> scope(std::make_shared<InjectedBiometrics>(type));
        EXPECT_EQ(KXDeviceUtils::isSupportFaceID(), want);
    }
}

/// A torch that is there or not, and that obeys or has its reason not to.
class InjectedTorch final : public Torch {
  public:
    explicit InjectedTorch(bool isThere, int refusal = 0) : isThere_(isThere), refusal_(refusal) {}
    std::optional<std::string> name() override {
        return isThere_ ? std::optional<std::string>("torch") : std::nullopt;
    }
    Result<float> level() override { return level_; }
    Result<void> maySet() override { return setLevel(level_); }
    Result<void> setLevel(float level) override {
        if (!isThere_) return Error{ErrorKind::Missing, 0, "torch"};
        if (refusal_ != 0) return Error::fromErrno(refusal_, "torch");
        level_ = level;
        return {};
    }

  private:
    bool isThere_;
    int refusal_;
    float level_ = 0;
};

using ErrorSlot = std::shared_ptr<NSError>*;

TEST(KXDeviceUtils, TheTorchTakesALevelBetween0And1) {
    const ScopedPort<Torch> scope(std::make_shared<InjectedTorch>(true));
    const std::pair<float, float> rows[] = {{1.5F, 1}, {-0.2F, 0}, {0.25F, 0.25F}, {1, 1}};
    for (const auto& [level, want] : rows) {
        std::shared_ptr<NSError> error;
        EXPECT_TRUE(KXDeviceUtils::setTorchOnWithLevel(level, &error));
        EXPECT_EQ(error, nullptr);
        EXPECT_EQ(KXDeviceUtils::torchLevel(), want);
        EXPECT_EQ(KXDeviceUtils::isTorchOn(), want > 0) << level;
    }
    EXPECT_TRUE(KXDeviceUtils::turnOffTorch());
    EXPECT_FALSE(KXDeviceUtils::isTorchOn());
    EXPECT_TRUE(KXDeviceUtils::turnOnTorch());
    EXPECT_EQ(KXDeviceUtils::torchLevel(), 1);
}

TEST(KXDeviceUtils, ATorchThatIsMissingOrRefusesLeavesItsError) {
    const std::tuple<const char*, bool (*)(ErrorSlot), bool> rows[] = {
        {"level", [](ErrorSlot error) { return KXDeviceUtils::setTorchOnWithLevel(1, error); }, false},
        {"on", [](ErrorSlot error) { return KXDeviceUtils::turnOnTorch(error); }, true},
        {"off", [](ErrorSlot error) { return KXDeviceUtils::turnOffTorch(error); }, true},
    };
    for (const auto& [name, call, wantWhenRefused] : rows) {
        std::shared_ptr<NSError> error;
        for (const int refusal : {EACCES, ENOENT}) {  // a light without its files is a torch all the same
            const ScopedPort<Torch> scope(std::make_shared<InjectedTorch>(true, refusal));
            EXPECT_EQ(call(&error), wantWhenRefused) << name;
            ASSERT_NE(error, nullptr) << name;
            EXPECT_EQ(error->domain(), NSPOSIXErrorDomain);
            EXPECT_EQ(error->code(), refusal);
        }
        const ScopedPort<Torch> scope(std::make_shared<InjectedTorch>(false));
        EXPECT_FALSE(call(&error)) << name;
        EXPECT_EQ(error->domain(), "KXFoundationTorchErrorDomain");
        EXPECT_EQ(error->code(), -1);
        EXPECT_TRUE(error->userInfo().isNull());
        EXPECT_FALSE(call(nullptr));
    }
    const ScopedPort<Torch> scope(std::make_shared<InjectedTorch>(false));
    EXPECT_FALSE(KXDeviceUtils::hasTorch());
    EXPECT_EQ(KXDeviceUtils::torchLevel(), 0);
    std::shared_ptr<NSError> error;
    KXFoundationUnsupportTorchErrorCode = -7;
    EXPECT_FALSE(KXDeviceUtils::turnOnTorch(&error));
    KXFoundationUnsupportTorchErrorCode = -1;
    EXPECT_EQ(error->code(), -7);
}

}  // namespace
}  // namespace kx
