// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/ClockFormatSetting.h>
#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Foundation/NSTimeZone.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Services/Biometrics.h>
#include <KXFoundation/Platform/Services/Machine.h>
#include <KXFoundation/Platform/Services/NetworkInterfaces.h>
#include <KXFoundation/Platform/Services/Torch.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "MachineFacts.h"
#include "TemporaryHome.h"

namespace gallery {

/// While it lives, every run of the gallery shows the same on every machine: an afternoon in Berlin at which
/// time stands still, a user from the United States with an empty home directory, and a machine of whose
/// values each is made up. The window and the fonts stay the desktop's.
class SteadyWorld {
  public:
    SteadyWorld();
    ~SteadyWorld();
    SteadyWorld(const SteadyWorld&) = delete;
    SteadyWorld& operator=(const SteadyWorld&) = delete;

    /// Lets time go on, for pictures of what moves.
    [[nodiscard]] kx::testing::ManualClock& clock() { return *clock_; }

  private:
    TemporaryHome home_{TemporaryHome::Others::Unset};
    std::shared_ptr<kx::testing::ManualClock> clock_;
    kx::ScopedPort<kx::Clock> clockScope_;
    kx::ScopedPort<kx::TimeZoneSettings> zone_;
    kx::ScopedPort<kx::ClockFormatSetting> clockFormat_;
    kx::ScopedPort<kx::LocaleSettings> locale_;
    kx::ScopedPort<kx::Machine> machine_;
    kx::ScopedPort<MachineFacts> facts_;
    kx::ScopedPort<kx::NetworkInterfaces> interfaces_;
    kx::ScopedPort<kx::Torch> torch_;
    kx::ScopedPort<kx::Biometrics> biometrics_;
};

}  // namespace gallery
