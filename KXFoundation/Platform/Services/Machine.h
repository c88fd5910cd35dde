// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// The room on a volume.
struct VolumeRoom {
    std::uint32_t blockSize;   ///< bytes
    std::uint64_t freeBlocks;  ///< those kept for the superuser included
};

/// The port of the facts about the machine. Any thread.
class KX_EXPORT Machine {
  public:
    virtual ~Machine() = default;

    /// The hardware's name as the kernel has it ("x86_64", "aarch64").
    [[nodiscard]] virtual std::string hardwareIdentifier() = 0;
    /// The room on the volume that holds the path.
    virtual Result<VolumeRoom> roomAt(const std::string& path) = 0;

    static PortSlot<Machine>& slot();
    static std::shared_ptr<Machine> makeDefault();
};

}  // namespace kx
