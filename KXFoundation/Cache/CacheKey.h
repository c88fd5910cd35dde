// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <cstddef>
#include <cstring>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A key of a cache: any text, with zero bytes or not, or absent. Under an absent key there is never
/// anything. Like a std::optional<std::string_view>, valid as long as the text; but it travels in registers,
/// where that one goes through memory and a hit in memory takes a third longer for it.
class KXCacheKey {
  public:
    KXCacheKey(std::nullptr_t = nullptr) noexcept {}
    KXCacheKey(std::nullopt_t) noexcept {}
    KXCacheKey(const char* text) noexcept : text_(text), size_(text ? std::strlen(text) : 0) {}
    template <class Text>
    requires(std::convertible_to<const Text&, std::string_view> &&
             !std::is_pointer_v<std::decay_t<const Text&>>) KXCacheKey(const Text& text)
        : KXCacheKey(std::string_view(text), Present()) {}
    template <class Text>
    requires std::convertible_to<const Text&, std::string_view> KXCacheKey(const std::optional<Text>& text)
        : KXCacheKey(text ? KXCacheKey(*text) : KXCacheKey()) {}

    [[nodiscard]] explicit operator bool() const noexcept { return has_value(); }
    [[nodiscard]] std::string_view operator*() const noexcept { return {text_, size_}; }
    [[nodiscard]] bool has_value() const noexcept { return text_ != nullptr; }
    [[nodiscard]] std::string_view value_or(std::string_view text) const noexcept {
        return has_value() ? **this : text;
    }
    /// An absent key equals an absent one only.
    [[nodiscard]] friend bool operator==(KXCacheKey a, KXCacheKey b) noexcept {
        return a.has_value() == b.has_value() && *a == *b;
    }

  private:
    struct Present {};
    KXCacheKey(std::string_view text, Present) noexcept
        : text_(text.data() ? text.data() : ""), size_(text.size()) {}

    const char* text_ = nullptr;
    std::size_t size_ = 0;
};
static_assert(std::is_trivially_copyable_v<KXCacheKey> && sizeof(KXCacheKey) == 16);

// Callbacks of the asynchronous forms. The key is the one that was asked for; an object that is not there is
// a null value.
using KXCacheDone = std::function<void()>;
using KXCacheKeyDone = std::function<void(const std::string& key)>;
using KXCacheContains = std::function<void(const std::string& key, bool contains)>;
using KXCacheObject = std::function<void(const std::string& key, const Value& object)>;

}  // namespace kx
