// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// An address as RFC 3986 writes it: scheme, authority, path, query, fragment. An immutable value: copying
/// one is how its holder keeps its own. Views are valid as long as the NSURL lives. Any thread.
class KX_EXPORT NSURL {
  public:
    /// The "file" address of a path; a relative one starts at the working folder.
    [[nodiscard]] static NSURL fileURLWithPath(std::string_view path);

    /// Absent for what RFC 3986 does not allow: an empty text, characters that must be percent-encoded
    /// (spaces, anything but ASCII), a "%" without two hexadecimal digits, a host or port that can be none, a
    /// second "#"; and for an encoded zero byte, which no path can hold.
    [[nodiscard]] static std::optional<NSURL> URLWithString(std::optional<std::string_view> text);

    /// The whole address as it was given, percent-encoding included.
    [[nodiscard]] const std::string& absoluteString() const noexcept { return text_; }
    /// "https"; empty if the address is relative.
    [[nodiscard]] std::string_view scheme() const noexcept;
    /// "example.org:8080" with user and port, empty without one; still percent-encoded.
    [[nodiscard]] std::string_view authority() const noexcept;
    /// The path with percent-encoding undone: for a file, what the file system is asked for.
    [[nodiscard]] std::string path() const;
    /// Absent if there is no "?", without it otherwise; still percent-encoded.
    [[nodiscard]] std::optional<std::string_view> query() const noexcept;
    /// Absent if there is no "#", without it otherwise; still percent-encoded.
    [[nodiscard]] std::optional<std::string_view> fragment() const noexcept;
    /// Whether it has that scheme, given in lower case.
    [[nodiscard]] bool hasScheme(std::string_view name) const noexcept;
    [[nodiscard]] bool isFileURL() const noexcept { return hasScheme("file"); }

    bool operator==(const NSURL& other) const noexcept { return text_ == other.text_; }

  private:
    explicit NSURL(std::string text);
    [[nodiscard]] std::string_view slice(std::size_t from, std::size_t to) const noexcept;

    std::string text_;
    // Where the components end; a component that is missing ends where the one before it does.
    std::size_t schemeEnd_ = 0;  // at the ":"
    std::size_t authorityStart_ = 0;
    std::size_t pathStart_ = 0;
    std::size_t queryStart_ = 0;     // at the "?"
    std::size_t fragmentStart_ = 0;  // at the "#"
};

}  // namespace kx
