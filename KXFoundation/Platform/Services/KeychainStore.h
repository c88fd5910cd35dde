// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// What an item of the keychain is found by; any bytes.
struct KeychainItem {
    std::string_view service;
    std::string_view account;
};

/// The port of the keychain: generic-password items of this application. The adapter in use answers from the
/// Secret Service or from an encrypted file, see KeychainChoice.h. Any thread; a call may take as long as a
/// file write or, with the Secret Service, its time-out.
class KX_EXPORT KeychainStore {
  public:
    virtual ~KeychainStore() = default;

    /// The item's data; Missing if there is no such item.
    virtual Result<std::string> copy(const KeychainItem& item) = 0;
    /// Adds the item. There is never a second one: should another process have added it meanwhile, this one
    /// stands. TooLarge, and nothing changes, beyond kMostBytes of data.
    virtual Result<void> add(const KeychainItem& item, std::string_view data) = 0;
    /// Deletes the item; Missing if there is none.
    virtual Result<void> remove(const KeychainItem& item) = 0;

    static constexpr std::size_t kMostBytes = 16 << 20;

    static PortSlot<KeychainStore>& slot();
    static std::shared_ptr<KeychainStore> makeDefault();
};

}  // namespace kx
