// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/NetworkInterfaces.h>

namespace kx {

/// The adapter over getifaddrs, the kernel's IPv4 routes and its description of each interface in sysfs.
class KX_EXPORT SystemInterfaces final : public NetworkInterfaces {
  public:
    /// `root` is put before "/sys" and "/proc".
    explicit SystemInterfaces(std::string root = {});

    Result<std::vector<InterfaceAddress>> addresses() override;

    /// Gives the roles' names to a list with the system's own names; see InterfaceNaming.
    [[nodiscard]] std::vector<InterfaceAddress> namedByRole(std::vector<InterfaceAddress> list) const;

  private:
    [[nodiscard]] bool isReal(const std::string& interface) const;
    [[nodiscard]] std::vector<std::string> routedInterfaces() const;

    std::shared_ptr<FileSystem> files_;
    std::string root_;
};

}  // namespace kx
