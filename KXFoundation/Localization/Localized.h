// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The text of the key as KXLocalizationUtils::localizedStringForKey finds it, the key itself where that is
/// absent: what a control shows. One thread at a time, as everything that reads the language choice.
[[nodiscard]] KX_EXPORT std::string localized(std::string_view key,
                                              std::optional<std::string_view> tableName = {});

}  // namespace kx
