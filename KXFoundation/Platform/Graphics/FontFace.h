// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace kx {

/// A family and a style in it. Weights as in OpenType's OS/2 table: 400 regular, 700 bold.
struct FontFace {
    std::string family;
    int weight = 400;
    bool italic = false;
    bool operator==(const FontFace&) const = default;
};

/// What a font name asks for: "PingFangSC-Semibold" is the family "PingFangSC" at weight 600, "DejaVu Sans
/// Bold Oblique" is "DejaVu Sans" at 700 and slanted. A name without style words is a family, regular and
/// upright.
[[nodiscard]] FontFace parseFontName(std::string_view name);

/// A name that parseFontName reads as this face; the family alone where it is regular and upright.
[[nodiscard]] std::string fontNameOf(const FontFace& face);

/// The form in which family names are compared: letters and digits only, lower case, so that "PingFangSC"
/// finds "PingFang SC". Bytes of other scripts are kept.
[[nodiscard]] std::string squashedFamily(std::string_view family);

}  // namespace kx
