// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Value.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

namespace kx {

class ImageSource;

/// Shows the picture in a GIF file, read and decoded in the background, at most four files at a time; a
/// decoded file serves every later request of its path while it is among the 20 kept in memory. Of an
/// animation it only takes note: KXAnimatedGIFImageView plays it.
///
/// The two class-level operations are the decoder; they may be called on any thread.
class KX_EXPORT KXGIFImageView : public Subclass<KXGIFImageView, NSImageView> {
  public:
    [[nodiscard]] static std::shared_ptr<KXGIFImageView> initWithGIFPath(
        std::optional<std::string_view> path);
    using Super::init;
    bool init(std::optional<std::string_view> path);

    /// Shows the file: at once if it is kept, else when it has been decoded. What comes for an earlier path
    /// by then leaves the view without an image, and so does what cannot be read or decoded.
    void setGIFPath(std::optional<std::string_view> path);
    /// The image, or of one with frames their loop count; the image stays then.
    virtual void renderImageViewWithImg(const std::shared_ptr<NSImage>& image);

    /// Does nothing here, so that the count stays 0; for subclasses that play.
    virtual void setLoopCount(std::int64_t count);
    [[nodiscard]] virtual std::int64_t loopCount() const noexcept { return loopCount_; }

    /// The path asked for last: a decoded file is shown if it is this one.
    [[nodiscard]] const std::optional<std::string>& filePath() const noexcept { return filePath_; }
    void setFilePath(std::optional<std::string_view> path);

    using Completion = std::function<void(const std::shared_ptr<NSImage>&)>;

    /// Calls back once, before it returns. More than one frame: an empty image that carries them, their total
    /// duration and the loop count. Else the picture as NSImage reads it, none if it cannot be read. None
    /// for what is no data value. The callback may be absent.
    static void kx_animatedGIFWithData(const Value& data, const Completion& complete);

    /// Seconds that a frame is shown: its unclamped delay, else its delay, 0.1 if it has neither or less than
    /// 0.011.
    [[nodiscard]] static float frameDurationAtIndex(std::uint64_t index,
                                                    const std::shared_ptr<ImageSource>& source);

  protected:
    KXGIFImageView() = default;

  private:
    void decodeInBackground(std::string path);
    void showDecoded(const std::string& path, const std::shared_ptr<NSImage>& image);

    std::int64_t loopCount_ = 0;
    std::optional<std::string> filePath_;
};

}  // namespace kx
