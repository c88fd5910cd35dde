// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/AppEnvironment/KXAppUtils.h>
#include <KXFoundation/Core/KXPhotoFileInfo.h>
#include <KXFoundation/Device/KXDeviceUtils.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetChangeRequest.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollectionChangeRequest.h>

namespace kx {

namespace {

constexpr double kFullQuality = 1.0;
constexpr double kThumbnailQuality = 0.25;

/// None for what is neither a picture nor a video.
std::shared_ptr<PHAssetChangeRequest> creationRequest(const std::shared_ptr<KXPhotoFileInfo>& file) {
    if (!file) return nullptr;
    switch (file->type()) {
        case KXPhotoFileInfo::kVideo:
            return PHAssetChangeRequest::creationRequestForAssetFromVideoAtFileURL(file->url());
        case KXPhotoFileInfo::kImage:
            return PHAssetChangeRequest::creationRequestForAssetFromImageAtFileURL(file->url());
        default:
            return nullptr;
    }
}

void requestAssets(const std::vector<std::shared_ptr<KXPhotoFileInfo>>& files,
                   const std::shared_ptr<PHAssetCollection>& album) {
    std::vector<std::shared_ptr<PHObjectPlaceholder>> placeholders;
    for (const auto& file : files)
        if (const auto request = creationRequest(file))
            placeholders.push_back(request->placeholderForCreatedAsset());
    if (const auto change = PHAssetCollectionChangeRequest::changeRequestForAssetCollection(album))
        change->addAssets(placeholders);
}

void logAlbumCreation(bool success, const std::shared_ptr<NSError>& error) {
    if (success) {
        log(LogLevel::Info, "create album ok");
    } else {
        log(LogLevel::Warning, "Error creating album: " + (error ? error->description() : "(null)"));
    }
}

/// Waits until the library has made it, or has failed to.
void makeAlbum(const std::string& title) {
    Semaphore done;
    PHPhotoLibrary::sharedPhotoLibrary()->performChanges(
        [title] {
            // Another thread may have asked for the same meanwhile.
            if (!KXPhotoUtils::getAlbum(title))
                PHAssetCollectionChangeRequest::creationRequestForAssetCollectionWithTitle(title);
        },
        [&done](bool success, const std::shared_ptr<NSError>& error) {
            logAlbumCreation(success, error);
            done.signal();
        });
    done.wait();
}

std::shared_ptr<NSImage> imageOf(const PixelBuffer& frame) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(frame.wide, frame.high);
    if (!bitmap) return nullptr;
    std::ranges::copy(frame.pixels, bitmap->pixels().begin());
    return NSImage::initWithBitmap(std::move(bitmap));
}

std::shared_ptr<NSBitmapImageRep> flattened(const NSImage& image) {
    for (const auto& representation : image.representations())
        if (auto bitmap = objectCast<NSBitmapImageRep>(representation)) return bitmap;
    return image.bitmapAtScale(1);
}

void writeJpeg(const std::shared_ptr<NSImage>& image, double quality, std::optional<std::string_view> path) {
    if (!path || path->find('\0') != path->npos) return;
    const auto data = KXPhotoUtils::imgToData(image, quality);
    if (!data) return;
    const std::string_view contents(reinterpret_cast<const char*>(data->data()), data->size());
    FileSystem& files = FileSystem::slot().current();
    removeLeftOver(files, std::string(*path), LeftOver::Dead);
    (void)replaceFile(files, std::string(*path), contents, Kept::Document);
}

}  // namespace

void KXPhotoUtils::createAsset(std::shared_ptr<KXPhotoFileInfo> file,
                               std::shared_ptr<PHAssetCollection> album,
                               CompletionHandler completionHandler) {
    createAssets({std::move(file)}, std::move(album), std::move(completionHandler));
}

void KXPhotoUtils::createAssets(std::vector<std::shared_ptr<KXPhotoFileInfo>> files,
                                std::shared_ptr<PHAssetCollection> album,
                                CompletionHandler completionHandler) {
    PHPhotoLibrary::sharedPhotoLibrary()->performChanges(
        [files = std::move(files), album = std::move(album)] { requestAssets(files, album); },
        std::move(completionHandler));
}

std::shared_ptr<PHAssetCollection> KXPhotoUtils::defaultAlbum() {
    const auto title = KXAppUtils::appName();
    if (!title) return nullptr;
    if (auto album = getAlbum(title)) return album;
    if (PHPhotoLibrary::sharedPhotoLibrary()->isCurrent()) {
        callerError("KXPhotoUtils: defaultAlbum on the photo library's own queue");
        return nullptr;
    }
    makeAlbum(*title);
    return getAlbum(title);
}

std::shared_ptr<PHAssetCollection> KXPhotoUtils::getAlbum(std::optional<std::string_view> title) {
    if (!title) return nullptr;
    for (auto& album : PHCollectionList::fetchTopLevelUserCollectionsWithOptions())
        if (album->localizedTitle() == *title) return std::move(album);
    return nullptr;
}

std::shared_ptr<NSImage> KXPhotoUtils::getThumbnailForMP4(std::optional<std::string_view> path) {
    if (!path || path->find('\0') != path->npos) return nullptr;  // the system would read another file
    const auto asset = AVURLAsset::assetWithURL(NSURL::fileURLWithPath(*path));
    const auto generator = AVAssetImageGenerator::assetImageGeneratorWithAsset(asset);
    const auto frame = generator->copyImageAtTime(CMTimeMakeWithSeconds(0.1, 10));
    return frame ? imageOf(*frame) : nullptr;
}

std::optional<std::vector<std::byte>> KXPhotoUtils::imgToData(const std::shared_ptr<NSImage>& image,
                                                              double compressionQuality) {
    const auto bitmap = image ? flattened(*image) : nullptr;
    if (!bitmap) return std::nullopt;
    auto data = encodeJpeg(*bitmap, compressionQuality);
    if (!data) return std::nullopt;
    return std::move(*data);
}

bool KXPhotoUtils::saveImage(const std::shared_ptr<NSImage>& image, std::optional<std::string_view> path,
                             std::optional<std::string_view> thumbnailPath) {
    if (KXDeviceUtils::isSpaceFull()) return false;
    writeJpeg(image, kFullQuality, path);
    writeJpeg(image, kThumbnailQuality, thumbnailPath);
    return true;
}

}  // namespace kx
