// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <KXFoundation/Platform/Graphics/FontSource.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

/// Draws with these font files and no others for one scope, so that pictures are the same on every machine
/// that has the files. Main thread.
///
///     const ScopedFonts fonts({"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"});
class KX_EXPORT ScopedFonts {
  public:
    /// Every queue is idle at both ends.
    explicit ScopedFonts(const std::vector<std::string>& files);
    ~ScopedFonts();
    ScopedFonts(const ScopedFonts&) = delete;
    ScopedFonts& operator=(const ScopedFonts&) = delete;

    /// An error names a file that is left out: Missing if it is not there, Failed if another has its name.
    /// Text is drawn with the others then.
    [[nodiscard]] const Result<void>& outcome() const noexcept { return outcome_; }

  private:
    TemporaryDirectory directory_;
    Result<void> outcome_;
    ScopedPort<FontSource> scope_;
};

}  // namespace kx::testing
