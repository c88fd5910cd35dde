// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// POSIX locale names: `language[_region][.encoding][@modifier]`. Private to Foundation.
namespace kx {

struct PosixLocaleName {
    std::string language;  ///< "zh", today's code where the name had an old one
    std::string script;    ///< "Latn", empty unless the name gives one
    std::string region;    ///< "TW", "419" or empty
    std::string variant;   ///< "valencia" or empty
};

/// The parts; absent for "C", "POSIX" and what is no locale name. The script "zh_Hant_TW" may stand between
/// language and region, and hyphens for underscores, as people write them.
[[nodiscard]] std::optional<PosixLocaleName> parsePosixLocaleName(std::string_view name);

/// The locale as language, script if the name gives one, and region, joined by underscores ("sr_Latn_RS"). A
/// missing region becomes the likely one; it stays missing where no country is likely ("eo").
[[nodiscard]] std::string localeIdentifierFor(const PosixLocaleName& name);

}  // namespace kx
