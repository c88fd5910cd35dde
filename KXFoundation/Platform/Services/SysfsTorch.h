// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string_view>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/Torch.h>

namespace kx {

/// The adapter over the kernel's LED class devices. A light is a torch if the function in its name, the part
/// after the last ":", begins with "torch" or "flash" ("white:torch", "led:flash_0"); torches go before
/// flashes, then the name decides. Its files belong to the superuser unless the system's rules give them to
/// the user.
class KX_EXPORT SysfsTorch final : public Torch {
  public:
    /// `root` is put before "/sys".
    explicit SysfsTorch(std::string_view root = {});

    [[nodiscard]] std::optional<std::string> name() override;
    Result<float> level() override;
    Result<void> maySet() override;
    Result<void> setLevel(float level) override;

  private:
    /// The torch's folder; Missing without a torch.
    Result<std::string> folder();
    Result<std::uint32_t> number(const std::string& path);

    std::shared_ptr<FileSystem> files_;
    std::string directory_;
};

}  // namespace kx
