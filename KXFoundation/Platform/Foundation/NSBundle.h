// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

class ResourceFolder;

/// A folder of resources: `Info.plist`, `<code>.lproj/<Table>.strings`, pictures. What is read from a folder
/// is read once per process, at first need, and shared by every bundle object over it; the folder is taken to
/// stay as it is while the program runs. Making a bundle over a folder already known, asking for a resource's
/// path and looking a text up then take no lock that is held long and make no system call. Any thread.
class KX_EXPORT NSBundle : public Subclass<NSBundle, NSObject> {
  public:
    /// A bundle over the directory; kx::make<NSBundle>(path) answers none if the path is absent or no
    /// directory.
    bool init(std::optional<std::string_view> path);

    /// The application's bundle: the folder named by setMainBundlePath, else `Resources/` beside the program,
    /// else
    /// `../share/<program>/` from it. Always there; over a missing folder it is empty.
    [[nodiscard]] static std::shared_ptr<NSBundle> mainBundle();
    /// Names the application's folder. A caller error once somebody has asked for the main bundle.
    static void setMainBundlePath(std::string_view path);

    /// The folder's real path: absolute, symbolic links resolved.
    [[nodiscard]] const std::string& bundlePath() const noexcept;
    /// Info.plist as a dictionary; empty if it is missing or damaged (one log line).
    [[nodiscard]] Value infoDictionary() const;
    /// CFBundleIdentifier; for the main bundle the program's name if there is none.
    [[nodiscard]] std::optional<std::string> bundleIdentifier() const;
    /// The names of the `.lproj` directories without the extension, sorted.
    [[nodiscard]] std::vector<std::string> localizations() const;
    /// The path of `<name>.<type>` (of `<name>` if the type is absent or empty) directly in the bundle,
    /// absent if there is none. A name that leads elsewhere ("../x", "sub/x") has none.
    [[nodiscard]] std::optional<std::string> pathForResource(std::optional<std::string_view> name,
                                                             std::optional<std::string_view> type) const;

    /// The text of `key` in `<table>.strings` (default "Localizable") directly in this bundle; if the table
    /// or the key is missing, `value`, or the key itself if that is absent or empty.
    [[nodiscard]] std::string localizedStringForKey(std::string_view key,
                                                    std::optional<std::string_view> value,
                                                    std::optional<std::string_view> table) const;
    /// The same without a copy: a view into the table, which lives as long as the process; absent if missing.
    [[nodiscard]] std::optional<std::string_view> lookUp(std::string_view key,
                                                         std::optional<std::string_view> table = {}) const;

  private:
    bool initAsMain(const std::string& named);

    std::shared_ptr<const ResourceFolder> folder_;
    bool isMain_ = false;
};

}  // namespace kx
