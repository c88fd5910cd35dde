// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

namespace kx {

/// Whether the window draws straight into the surface's pixels, or the surface copies what the window tells
/// it has changed and nothing more, as a display does: a change that is not told is not seen.
enum class OffscreenPixels : std::uint8_t { Shared, Copied };

/// A window without a display: it keeps the pixels that a screen would show, and takes its events from the
/// program. For pictures and tests.
class KX_EXPORT OffscreenSurface final : public WindowSurface {
  public:
    OffscreenSurface(NSRect frame, double scale, WindowSystem::Handler handler,
                     OffscreenPixels pixels = OffscreenPixels::Shared);

    [[nodiscard]] NSSize size() const override { return frame_.size; }
    [[nodiscard]] double scale() const override { return scale_; }
    std::shared_ptr<NSBitmapImageRep> lentPixels(std::uint32_t wide, std::uint32_t high) override;
    void present(const NSBitmapImageRep& bitmap, std::span<const PixelRect> changed) override;
    void setFrame(NSRect frame) override;
    void setTitle(std::string_view title) override { title_ = title; }
    void activate() override;

    /// What a screen would show; none before anything was presented.
    [[nodiscard]] std::shared_ptr<const NSBitmapImageRep> bitmap() const { return bitmap_; }
    /// The same as an encoded PNG; Unsupported before anything was presented.
    [[nodiscard]] Result<std::vector<std::byte>> png() const;
    /// What the last present() changed.
    [[nodiscard]] const std::vector<PixelRect>& lastChanged() const noexcept { return lastChanged_; }
    [[nodiscard]] const std::string& title() const noexcept { return title_; }

    /// Gives the window an event, as a user would cause it.
    void send(const SurfaceEvent& event) {
        const auto handler = handler_;
        handler(event);
    }
    void click(NSPoint point);
    void setScale(double scale);

  private:
    NSRect frame_;
    double scale_;
    WindowSystem::Handler handler_;
    OffscreenPixels pixels_;
    std::shared_ptr<NSBitmapImageRep> bitmap_;
    std::vector<PixelRect> lastChanged_;
    std::string title_;
};

/// Makes off-screen surfaces of one scale, on a screen of that size in points: ScopedPort<WindowSystem>
/// scope(std::make_shared<OffscreenWindowSystem>(2)).
class KX_EXPORT OffscreenWindowSystem final : public WindowSystem {
  public:
    explicit OffscreenWindowSystem(double scale = 1, NSSize screen = {1440, 900},
                                   OffscreenPixels pixels = OffscreenPixels::Shared)
        : scale_(scale), screen_(screen), pixels_(pixels) {}
    std::shared_ptr<WindowSurface> makeSurface(NSRect frame, Handler handler) override;
    std::optional<NSSize> mainScreenSize() override { return screen_; }

  private:
    double scale_;
    NSSize screen_;
    OffscreenPixels pixels_;
};

}  // namespace kx
