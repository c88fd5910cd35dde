// SPDX-License-Identifier: MIT

#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

namespace kx {
namespace {

using namespace std::string_literals;

/// With every number of letters before it that two blocks of 16 can hold.
void expectValidity(const std::string& bytes, bool valid) {
    for (std::size_t before = 0; before <= 33; ++before) {
        const std::string text = std::string(before, 'a') + bytes;
        EXPECT_EQ(isUtf8(text), valid) << before << " bytes, then " << ::testing::PrintToString(bytes);
        EXPECT_EQ(isUtf8ByCharacters(text), valid) << ::testing::PrintToString(bytes);
    }
}

TEST(Utf8Validation, KnowsWhatIsCutOrOverlong) {
    for (const std::string& bytes : {""s, "\0"s, "\xC2\x80\xDF\xBF"s, "\xF0\x90\x80\x80\xF4\x8F\xBF\xBF"s,
                                     "\xE0\xA0\x80\xED\x9F\xBF\xEE\x80\x80\xEF\xBF\xBD\xEF\xBF\xBF"s})
        expectValidity(bytes, true);
    for (const char* bytes :
         {"\x80", "\xC1\xBF", "\xE0\x9F\xBF", "\xED\xA0\x80", "\xF0\x8F\xBF\xBF", "\xF4\x90\x80\x80",
          "\xF5\x80\x80\x80", "\xC2", "\xE1\x80", "\xF1\x80\x80", "\xC2\x80\x80"})
        expectValidity(bytes, false);
}

/// Every four bytes of those where a rule begins or ends, over the border of two blocks of 16.
TEST(Utf8Validation, BothWaysAgree) {
    const std::string edges =
        "\x00\x7F\x80\x8F\x90\x9F\xA0\xBF\xC0\xC1\xC2\xDF\xE0\xE1\xEC\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF"s;
    std::string text(40, 'a');
    for (const char first : edges) {
        for (const char second : edges) {
            for (const char third : edges) {
                for (const char fourth : edges) {
                    text.replace(14, 4, {first, second, third, fourth});
                    ASSERT_EQ(isUtf8(text), isUtf8ByCharacters(text)) << ::testing::PrintToString(text);
                }
            }
        }
    }
}

}  // namespace
}  // namespace kx
