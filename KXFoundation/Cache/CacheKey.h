// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A key of a cache: any text, with zero bytes or not. Under an absent key there is never anything.
using KXCacheKey = std::optional<std::string_view>;

// Callbacks of the asynchronous forms. The key is the one that was asked for; an object that is not there is
// a null value.
using KXCacheDone = std::function<void()>;
using KXCacheKeyDone = std::function<void(const std::string& key)>;
using KXCacheContains = std::function<void(const std::string& key, bool contains)>;
using KXCacheObject = std::function<void(const std::string& key, const Value& object)>;

}  // namespace kx
