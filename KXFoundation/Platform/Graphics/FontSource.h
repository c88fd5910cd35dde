// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

struct LoadedFonts;

/// Where fonts come from: the desktop's own configuration, or a fontconfig file of the application's or of a
/// test's, which then is all there is. ScopedPort<FontSource> puts one in place for a scope. Any thread.
class KX_EXPORT FontSource {
  public:
    /// Absent: the desktop's configuration.
    explicit FontSource(std::optional<std::string> configurationFile = std::nullopt);
    ~FontSource();
    FontSource(const FontSource&) = delete;
    FontSource& operator=(const FontSource&) = delete;

    /// Reads the configuration and the list of its fonts now rather than at the first need. A file that
    /// cannot be read is an error here; text is then drawn with the desktop's fonts.
    Result<void> load() const;

    /// The library's own way in: loads if need be, with one log line if that fails.
    [[nodiscard]] const LoadedFonts& loaded() const;

    static PortSlot<FontSource>& slot();
    static std::shared_ptr<FontSource> makeDefault();

  private:
    struct State;
    std::unique_ptr<State> state_;
};

namespace Fonts {
/// Draws with the fonts of this configuration from now on. On an error nothing changes. Call it before other
/// threads draw.
KX_EXPORT Result<void> useConfiguration(const std::string& path);
}  // namespace Fonts

}  // namespace kx
