// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSButton;

/// Gives a button its title by key.
struct KX_EXPORT NSButton_LocalizedKey {
    NSButton_LocalizedKey() = delete;

    /// The key is not remembered: it is looked up now, and a language chosen later changes nothing here. An
    /// absent or empty key does nothing; a key without a text anywhere is shown itself.
    static void setLocalizedKey(const std::shared_ptr<NSButton>& button, std::optional<std::string_view> key);
    /// Always absent.
    [[nodiscard]] static std::optional<std::string> localizedKey(const std::shared_ptr<NSButton>& button);
};

}  // namespace kx
