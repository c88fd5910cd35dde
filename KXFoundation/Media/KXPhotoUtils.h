// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollection.h>
#include <KXFoundation/Platform/Services/Photos/PHPhotoLibrary.h>

namespace kx {

class KXPhotoFileInfo;
class NSImage;

/// Exports pictures and videos to the user's photo library, and prepares them for it. No instances; any
/// thread.
class KX_EXPORT KXPhotoUtils {
  public:
    KXPhotoUtils() = delete;

    /// Called once with what came of an export, on the photo library's own queue; may be empty. `error` is
    /// none on success.
    using CompletionHandler = PHPhotoLibrary::CompletionHandler;

    /// Copies one file into the library and, unless it is absent, the album.
    static void createAsset(std::shared_ptr<KXPhotoFileInfo> file, std::shared_ptr<PHAssetCollection> album,
                            CompletionHandler completionHandler);
    /// The same for several: all of them or, if one cannot be taken, none. An absent file is passed over, as
    /// is one whose type is neither picture nor video. A picture is PNG, JPEG, TIFF, GIF, WebP, HEIF, AVIF,
    /// BMP or JPEG XL, by how its file begins; it is copied as it is.
    static void createAssets(std::vector<std::shared_ptr<KXPhotoFileInfo>> files,
                             std::shared_ptr<PHAssetCollection> album, CompletionHandler completionHandler);

    /// The album named after the application, made if there is none; waits until it is. None, and a log line,
    /// if it cannot be made. To call it on the photo library's own queue is a caller error, which answers
    /// none.
    [[nodiscard]] static std::shared_ptr<PHAssetCollection> defaultAlbum();
    /// The first album with exactly that title, or none.
    [[nodiscard]] static std::shared_ptr<PHAssetCollection> getAlbum(std::optional<std::string_view> title);

    /// The frame that a video (MP4 or any other recording) shows at 0.1 s, upright, one point per pixel; none
    /// if there is none to be had. The first call in a process opens the video module, which takes some
    /// 60 ms.
    [[nodiscard]] static std::shared_ptr<NSImage> getThumbnailForMP4(std::optional<std::string_view> path);

    /// The picture's first bitmap, or what it draws at one pixel to the point, as JPEG, transparent pixels
    /// over white; `compressionQuality` is 0 to 1, or the nearest of these. None for an absent or empty
    /// picture.
    [[nodiscard]] static std::optional<std::vector<std::byte>> imgToData(
        const std::shared_ptr<NSImage>& image, double compressionQuality);

    /// Writes the picture as JPEG of quality 1 to `path` and of quality 0.25, in the same size, to
    /// `thumbnailPath`; an absent one is left out. Each file is replaced whole or stays as it was. False, and
    /// nothing is written, if the disk is full; else true, even if a file could not be written.
    static bool saveImage(const std::shared_ptr<NSImage>& image, std::optional<std::string_view> path,
                          std::optional<std::string_view> thumbnailPath);
};

}  // namespace kx
