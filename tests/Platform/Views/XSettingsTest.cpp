// SPDX-License-Identifier: MIT

#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Views/Modules/XSettings.h>

namespace kx {
namespace {

using std::string_literals::operator""s;

// A colour, a text and two numbers, in both byte orders.
const std::string kLittle =
    "\0\0\0\0\7\0\0\0\4\0\0\0"
    "\2\0\4\0Tint\0\0\0\0\1\2\3\4\5\6\7\10"
    "\1\0\6\0Xft/Rg\0\0\0\0\0\0\3\0\0\0rgb\0"
    "\0\0\7\0Xft/DPI\0\0\0\0\0\0\340\1\0"
    "\0\0\3\0Low\0\0\0\0\0\377\377\377\377"s;
const std::string kBig =
    "\1\0\0\0\0\0\0\7\0\0\0\2"
    "\1\0\0\6Xft/Rg\0\0\0\0\0\0\0\0\0\3rgb\0"
    "\0\0\0\7Xft/DPI\0\0\0\0\0\0\1\340\0"s;

TEST(XSettings, NumbersAreFoundByName) {
    EXPECT_EQ(xsettingsInteger(kLittle, "Xft/DPI"), 120 * 1024);
    EXPECT_EQ(xsettingsInteger(kLittle, "Low"), -1);
    EXPECT_EQ(xsettingsInteger(kBig, "Xft/DPI"), 120 * 1024);
    EXPECT_EQ(xsettingsInteger(kLittle, "Tint"), std::nullopt);
    EXPECT_EQ(xsettingsInteger(kLittle, "Xft/DP"), std::nullopt);
}

TEST(XSettings, WhatBreaksOffHasNothingBeyond) {
    for (std::size_t length = 0; length < kBig.size(); ++length)
        EXPECT_EQ(xsettingsInteger(kBig.substr(0, length), "Xft/DPI"), std::nullopt) << length;
    std::string endless = kLittle;
    endless[8] = endless[9] = endless[10] = endless[11] = '\377';  // so many settings
    EXPECT_EQ(xsettingsInteger(endless, "none"), std::nullopt);
    for (std::size_t i = 12; i < endless.size(); ++i) {
        std::string broken = endless;
        broken[i] = '\377';
        static_cast<void>(xsettingsInteger(broken, "none"));
    }
}

}  // namespace
}  // namespace kx
