// SPDX-License-Identifier: MIT

#include <array>

#include <gtest/gtest.h>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Media/NSColor_RGBAComponents.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {
namespace {

using Four = std::array<double, 4>;

Four componentsOf(std::optional<std::string_view> text, double alpha = 1) {
    Four four{-1, -1, -1, -1};
    NSColor_RGBAComponents::getRGBAComponents(NSColor_HEX::colorWithHexString(text, alpha).get(),
                                              four.data());
    return four;
}

constexpr double of255(int n) {
    return static_cast<float>(n) / 255.0F;
}

TEST(NSColor_HEX, ReadsSixDigits) {
    const Four orange{1, of255(0x88), 0, 1}, clear{};
    const std::pair<std::optional<std::string_view>, Four> rows[] = {
        {"#FF8800", orange},
        {"ff8800", orange},
        {"0xFF8800", orange},
        {"0Xff8800", orange},
        {"0x#FF8800", orange},
        {"  #ff8800\r\n", orange},
        {"\xE3\x80\x80"
         "FF8800\xE2\x80\xA9",
         orange},  // ideographic space, paragraph separator
        {"000000", {0, 0, 0, 1}},
        {"1GFFFF", {of255(1), 1, 1, 1}},
        {"F0 F0F", {of255(0xF0), of255(15), of255(15), 1}},
        {"ZZ8800", {0, of255(0x88), 0, 1}},
        {"ßßß", {0, 0, 0, 1}},  // three letters, six in upper case, no digit
        {"#0XFF8800", clear},
        {"#FFF", clear},
        {"FF880", clear},
        {"#FF880", clear},
        {"FF88001", clear},
        {"0xFF88", clear},
        {"\xF0\x9F\x8E\xA8"
         "FF88",
         {0, 1, of255(0x88), 1}},  // a character of two units
        {std::string_view("FF8800\0", 7), clear},
        {"FF\xFF"
         "800",
         {1, 0, 0, 1}},
        {"", clear},
        {std::nullopt, clear},
    };
    for (const auto& [text, want] : rows) EXPECT_EQ(componentsOf(text), want) << text.value_or("absent");
    EXPECT_EQ(componentsOf(std::string(1 << 20, 'F')), clear);
    EXPECT_EQ(componentsOf("FF8800", 0.5), (Four{1, of255(0x88), 0, 0.5}));
    EXPECT_EQ(componentsOf(std::nullopt, 0.5), clear);
}

TEST(NSColor_RGBAComponents, NeedsNeitherColourNorPlace) {
    Four four{1, 1, 1, 1};
    NSColor_RGBAComponents::getRGBAComponents(nullptr, four.data());
    EXPECT_EQ(four, Four());
    NSColor_RGBAComponents::getRGBAComponents(NSColor::whiteColor().get(), nullptr);
}

}  // namespace
}  // namespace kx
