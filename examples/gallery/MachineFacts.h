// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Services/Capabilities.h>

namespace gallery {

/// What the device page tells of the machine beside what the library's own ports do. Any thread.
class MachineFacts {
  public:
    virtual ~MachineFacts() = default;

    [[nodiscard]] virtual std::string hostName() = 0;
    /// "Linux 6.1.0".
    [[nodiscard]] virtual std::string system() = 0;
    /// That of the first network interface that has one; empty if none has.
    [[nodiscard]] virtual std::string hardwareAddress() = 0;
    /// May take seconds.
    [[nodiscard]] virtual std::vector<kx::Capability> capabilities() = 0;

    static kx::PortSlot<MachineFacts>& slot();
    static std::shared_ptr<MachineFacts> makeDefault();
};

}  // namespace gallery
