// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

struct FontFace;

/// An immutable font: a face and a size in points. Any thread.
/// A size that is not above 0 means the system's size; more than 2000 points are 2000.
class KX_EXPORT NSFont : public Subclass<NSFont, NSObject> {
  public:
    /// The font of that name ("PingFangSC-Semibold", "DejaVu Sans Bold", "serif"); none if its family is not
    /// installed. A family that lacks the style asked for gives its nearest one.
    [[nodiscard]] static std::shared_ptr<NSFont> fontWithName(std::optional<std::string_view> name,
                                                              double size);
    /// The same, but with the desktop's sans-serif in the same weight, slant and size where the other gives
    /// none.
    [[nodiscard]] static std::shared_ptr<NSFont> fontWithNameOrFallback(std::optional<std::string_view> name,
                                                                        double size);
    [[nodiscard]] static std::shared_ptr<NSFont> systemFontOfSize(double size);
    [[nodiscard]] static std::shared_ptr<NSFont> boldSystemFontOfSize(double size);
    [[nodiscard]] static constexpr double systemFontSize() noexcept { return 13; }

    /// A name that fontWithName makes the same face from: the installed family and the style asked for.
    [[nodiscard]] std::string fontName() const;
    [[nodiscard]] const std::string& familyName() const noexcept;
    [[nodiscard]] double pointSize() const noexcept { return pointSize_; }
    [[nodiscard]] const FontFace& face() const noexcept { return *face_; }

    /// Equal for fonts of equal face and size (to 1/1024 point), in this process: the key for caches.
    [[nodiscard]] std::uint64_t identity() const noexcept { return identity_; }

    [[nodiscard]] std::string description() const override;
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

    bool init(FontFace face, double size);

  protected:
    NSFont() = default;

  private:
    const FontFace* face_ = nullptr;  // interned, lives as long as the process
    double pointSize_ = 0;
    std::uint64_t identity_ = 0;
};

}  // namespace kx
