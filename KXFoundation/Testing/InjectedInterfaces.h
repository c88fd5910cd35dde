// SPDX-License-Identifier: MIT
#pragma once

#include <utility>
#include <vector>

#include <KXFoundation/Platform/Services/NetworkInterfaces.h>

namespace kx::testing {

/// A machine with the network interfaces that the test gives, or one that cannot tell its interfaces.
class KX_EXPORT InjectedInterfaces final : public NetworkInterfaces {
  public:
    explicit InjectedInterfaces(Result<std::vector<InterfaceAddress>> list) : list_(std::move(list)) {}

    Result<std::vector<InterfaceAddress>> addresses() override { return list_; }

  private:
    Result<std::vector<InterfaceAddress>> list_;
};

}  // namespace kx::testing
