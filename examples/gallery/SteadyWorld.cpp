// SPDX-License-Identifier: MIT

#include "SteadyWorld.h"

#include <chrono>

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/InjectedClockFormat.h>
#include <KXFoundation/Testing/InjectedInterfaces.h>
#include <KXFoundation/Testing/InjectedLocale.h>
#include <KXFoundation/Testing/InjectedTimeZone.h>

namespace gallery {

using namespace kx;

namespace {

/// 2024-03-14 15:09:26 in Berlin.
constexpr Clock::WallTime kMoment{std::chrono::sys_days{std::chrono::March / 14 / 2024} +
                                  std::chrono::hours(14) + std::chrono::minutes(9) +
                                  std::chrono::seconds(26)};

class Computer final : public Machine {
  public:
    std::string hardwareIdentifier() override { return "x86_64"; }
    Result<VolumeRoom> roomAt(const std::string&) override { return VolumeRoom{4096, 31'415'926}; }
};

class Facts final : public MachineFacts {
  public:
    std::string hostName() override { return "lighthouse"; }
    std::string system() override { return "Linux 6.1.0"; }
    std::string hardwareAddress() override { return "02:00:5E:10:00:01"; }
    std::vector<Capability> capabilities() override {
        return {{"display", true, "x11"},
                {"bus", true, "the session's own"},
                {"portal", false,
                 "no answer within 2 s; what does not work is told in a line of its own, which may be "
                 "as long as this one and then goes on below"}};
    }
};

std::vector<InterfaceAddress> interfaces() {
    constexpr IPv4Address kMask{{255, 255, 255, 0}};
    return {{"lo", IPv4Address{{127, 0, 0, 1}}, IPv4Address{{255, 0, 0, 0}}},
            {"en0", IPv4Address{{192, 168, 1, 57}}, kMask},
            {"en1", IPv4Address{{10, 0, 0, 4}}, kMask}};
}

class Lamp final : public Torch {
  public:
    std::optional<std::string> name() override { return "torch"; }
    Result<float> level() override { return level_; }
    Result<void> maySet() override { return {}; }
    Result<void> setLevel(float level) override {
        level_ = level;
        return {};
    }

  private:
    float level_ = 0;
};

class FingerprintSensor final : public Biometrics {
  public:
    Result<BiometryType> type(std::chrono::milliseconds) override { return BiometryType::Fingerprint; }
};

}  // namespace

SteadyWorld::SteadyWorld()
    : clock_(std::make_shared<testing::ManualClock>(kMoment)),
      clockScope_(clock_),
      zone_(std::make_shared<testing::InjectedTimeZone>("Europe/Berlin")),
      clockFormat_(std::make_shared<testing::InjectedClockFormat>()),
      locale_(std::make_shared<testing::InjectedLocale>()),
      machine_(std::make_shared<Computer>()),
      facts_(std::make_shared<Facts>()),
      interfaces_(std::make_shared<testing::InjectedInterfaces>(interfaces())),
      torch_(std::make_shared<Lamp>()),
      biometrics_(std::make_shared<FingerprintSensor>()) {}

/// No work may be using the ports when they change.
SteadyWorld::~SteadyWorld() {
    drainQueues();
}

}  // namespace gallery
