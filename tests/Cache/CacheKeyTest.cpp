// SPDX-License-Identifier: MIT

#include <array>
#include <optional>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include <KXFoundation/Cache/CacheKey.h>

namespace kx {
namespace {

std::optional<std::string> asked(KXCacheKey key) {
    return key ? std::optional<std::string>(*key) : std::nullopt;
}

struct TextAndAddress {
    operator std::string_view() const { return "as a text"; }
    operator const char*() const { return "as an address"; }
};
struct ChangesWhenAsked {
    operator std::string_view() { return "never"; }
};
static_assert(!std::is_convertible_v<ChangesWhenAsked, KXCacheKey>, "refused, not an error inside");

TEST(KXCacheKey, IsMadeOfWhateverIsATextOrNone) {
    using namespace std::literals;
    const char* const none = nullptr;
    std::array text{'k', 'e', 'y', '\0'};
    char* const changeable = text.data();
    EXPECT_EQ(asked("key"), "key");
    EXPECT_EQ(asked(changeable), "key");
    EXPECT_EQ(asked("key"s), "key");
    EXPECT_EQ(asked(TextAndAddress()), "as a text");
    EXPECT_EQ(asked("a\0b"sv), "a\0b"s);
    EXPECT_EQ(asked(std::optional("key"s)), "key");
    EXPECT_EQ(asked(""), "") << "an empty key is a key";
    EXPECT_EQ(asked(std::string_view()), "") << "whose address may be null";
    EXPECT_EQ(asked(std::optional(std::string_view())), "");
    EXPECT_EQ(asked(std::optional<std::string_view>()), std::nullopt);
    EXPECT_EQ(asked(std::optional<std::string>()), std::nullopt);
    EXPECT_EQ(asked(std::nullopt), std::nullopt);
    EXPECT_EQ(asked(nullptr), std::nullopt);
    EXPECT_EQ(asked(none), std::nullopt);
    EXPECT_EQ(KXCacheKey().value_or("other"), "other");
    EXPECT_EQ(KXCacheKey("key").value_or("other"), "key");
    EXPECT_TRUE(KXCacheKey("key") == "key"s && KXCacheKey() == std::nullopt);
    EXPECT_FALSE(KXCacheKey("key") == "other" || KXCacheKey("") == std::nullopt);
}

}  // namespace
}  // namespace kx
