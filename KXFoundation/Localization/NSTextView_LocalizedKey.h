// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSTextView;

/// Gives a text view its whole text by key.
struct KX_EXPORT NSTextView_LocalizedKey {
    NSTextView_LocalizedKey() = delete;

    /// The key is not remembered: it is looked up now, and a language chosen later changes nothing here. An
    /// absent or empty key does nothing; a key without a text anywhere is shown itself.
    static void setLocalizedKey(const std::shared_ptr<NSTextView>& view, std::optional<std::string_view> key);
    /// Always absent.
    [[nodiscard]] static std::optional<std::string> localizedKey(const std::shared_ptr<NSTextView>& view);
};

}  // namespace kx
