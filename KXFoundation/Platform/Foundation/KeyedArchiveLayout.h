// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

/// The layout that archiver and unarchiver share. Private to Foundation.
///
///     $archiver  "NSKeyedArchiver"
///     $version   100000
///     $top       {root: uid}
///     $objects   ["$null", ...], what the uids count into:
///         a number, text or data                   itself
///         an array                                 {$class, NS.objects: [uid...]}
///         a dictionary                             {$class, NS.keys: [uid...], NS.objects: [uid...]}
///         a date                                   {$class, NS.time: seconds since 2001}
///         null                                     {$class}
///         a text that is no UTF-8                  {$class, NS.bytes: data}
///         an object                                {$class, and each key of its own: a number or uid}
///         a class                                  {$classname, $classes: [name, base's name, ...]}
///
/// A key of an object's own that begins with "$" has one more "$" before it.
namespace kx::archive {

inline constexpr std::string_view kArchiverKey = "$archiver";
inline constexpr std::string_view kArchiver = "NSKeyedArchiver";
inline constexpr std::string_view kVersionKey = "$version";
inline constexpr std::int64_t kVersion = 100'000;
inline constexpr std::string_view kTop = "$top";
inline constexpr std::string_view kRoot = "root";
inline constexpr std::string_view kObjects = "$objects";
inline constexpr std::string_view kNull = "$null";
inline constexpr std::string_view kClass = "$class";
inline constexpr std::string_view kClassName = "$classname";
inline constexpr std::string_view kClasses = "$classes";
inline constexpr std::string_view kItems = "NS.objects";
inline constexpr std::string_view kKeys = "NS.keys";
inline constexpr std::string_view kTime = "NS.time";
inline constexpr std::string_view kText = "NS.string";
inline constexpr std::string_view kTextBytes = "NS.bytes";
inline constexpr std::string_view kData = "NS.data";

/// How far a value goes when everything that it shares is written out: an archive of a hundred bytes can name
/// an array of two arrays of two arrays, a million times a million elements, or hang one array in the next
/// without end. Objects end the count: they are shared, never repeated.
struct Extent {
    std::uint64_t elements = 1;
    std::size_t levels = 0;  // of containers and objects

    void include(const Extent& part) {
        elements = std::min(elements + part.elements, kMostElements + 1);
        levels = std::max(levels, part.levels + 1);
    }
    /// Whether it may stand `depth` levels down.
    [[nodiscard]] bool fits(std::size_t depth) const {
        return elements <= kMostElements && depth + levels <= Value::kMaxDepth;
    }

    static constexpr std::uint64_t kMostElements = std::uint64_t{1} << 24;
    static constexpr Extent container() { return {1, 1}; }
};

[[nodiscard]] inline Error error(ErrorKind kind, std::string_view what = "") {
    return {kind, 0, what.empty() ? "keyed archive" : std::string("keyed archive: ").append(what)};
}

}  // namespace kx::archive
