// SPDX-License-Identifier: MIT
#pragma once

#include <initializer_list>
#include <map>
#include <string>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx::testing {

/// A bundle's folder on disk, written by the test. What a bundle has looked at once it remembers: write
/// first.
class KX_EXPORT BundleFolder {
  public:
    /// Makes the directory if it is missing. It is left there at the end: see TemporaryDirectory.
    explicit BundleFolder(std::string path);

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    using Texts = std::initializer_list<std::pair<std::string_view, std::string_view>>;
    /// Writes `<language>.lproj/<table>.strings`: bundle.addStrings("fr", {{"greeting", "Bonjour"}}).
    BundleFolder& addStrings(std::string_view language, Texts texts, std::string_view table = "Localizable");
    /// The same from the bytes of the file.
    BundleFolder& addStringsFile(std::string_view language, std::string_view contents,
                                 std::string_view table = "Localizable");
    /// Makes `<language>.lproj`, empty if it was not there.
    BundleFolder& addLocalization(std::string_view language);
    /// Sets a text in Info.plist: setInfo("CFBundleIdentifier", "org.example.app").
    BundleFolder& setInfo(std::string_view key, std::string_view text);
    /// Writes any other file.
    BundleFolder& addFile(std::string_view name, std::string_view contents);

  private:
    std::string path_;
    std::map<std::string, std::string, std::less<>> info_;
};

}  // namespace kx::testing
