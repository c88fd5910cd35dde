// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Services/CMTime.h>

namespace kx {

/// Opaque pixels 0xFFRRGGBB, top row first, rows without a gap.
struct PixelBuffer {
    std::uint32_t wide = 0;
    std::uint32_t high = 0;
    std::vector<std::uint32_t> pixels;
};

/// A recording in a file. Making one opens nothing. Immutable; any thread.
class KX_EXPORT AVURLAsset : public Subclass<AVURLAsset, NSObject> {
  public:
    [[nodiscard]] static std::shared_ptr<AVURLAsset> assetWithURL(const NSURL& url);

    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    bool init(const NSURL& url);

  protected:
    AVURLAsset() = default;

  private:
    std::string path_;  // empty: no file's address
};

/// Takes single frames out of a recording, through FFmpeg in the module kx-ffmpeg.so. The first call in a
/// process opens the module, which takes some 60 ms. Any thread, but better not the main one.
class KX_EXPORT AVAssetImageGenerator : public Subclass<AVAssetImageGenerator, NSObject> {
  public:
    /// None for an absent asset.
    [[nodiscard]] static std::shared_ptr<AVAssetImageGenerator> assetImageGeneratorWithAsset(
        std::shared_ptr<AVURLAsset> asset);

    /// The frame that is shown at `time`, turned as the recording says: the first one for a time before it,
    /// the last one for a time behind the end. `actualTime`, unless null, gets the time at which that frame
    /// begins. Unsupported without the module or a decoder, Missing, Corrupt, TooLarge (a frame of more than
    /// 64 Mi pixels, before anything is allocated for it) or TimedOut (after 10 s) else.
    [[nodiscard]] Result<PixelBuffer> copyImageAtTime(CMTime time, CMTime* actualTime = nullptr) const;

    bool init(std::shared_ptr<AVURLAsset> asset);

  protected:
    AVAssetImageGenerator() = default;

  private:
    std::shared_ptr<AVURLAsset> asset_;
};

/// Whether the file's contents are a moving picture whose first frame can be decoded; the name does not
/// count. Fails as copyImageAtTime does.
[[nodiscard]] KX_EXPORT Result<void> checkVideo(const std::string& path);

/// What frames are taken with, for a person; Unsupported without the module.
[[nodiscard]] KX_EXPORT Result<std::string> videoLibrary();

}  // namespace kx
