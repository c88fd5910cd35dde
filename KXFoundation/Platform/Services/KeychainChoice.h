// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/KeychainStore.h>

namespace kx {

/// Where this process keeps its keychain items, and why there.
struct KeychainCapability {
    enum class Store : std::uint8_t { SecretService, File, None } store = Store::None;
    std::string why;  ///< one line for a person
};

/// Answers from the choice that the process keeps; the first to ask, here or through the keychain itself,
/// waits until it is made: for the time-out at the longest. Any thread.
[[nodiscard]] KX_EXPORT KeychainCapability keychainCapability();

/// How long the keychain lets its caller wait for the Secret Service, a dialogue for the person included.
inline constexpr std::chrono::milliseconds kKeychainTimeout{2000};

struct KeychainChoice {
    std::shared_ptr<KeychainStore> store;
    KeychainCapability capability;
};
/// Chooses anew: the Secret Service on that bus if it answers in time, else a file in the application's data
/// folder, else a store that holds nothing. Private to the library and its tests.
[[nodiscard]] KX_EXPORT KeychainChoice chooseKeychain(const std::optional<std::string>& busAddress,
                                                      std::chrono::milliseconds timeout);

}  // namespace kx
