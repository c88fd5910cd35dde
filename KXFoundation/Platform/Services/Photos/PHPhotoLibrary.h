// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class NSError;
class PhotoStore;

/// The user's photo library: real files in album folders below the pictures folder, which a person may look
/// at with any program, and an index of them in the data folder, shared by all applications of the user. Any
/// thread.
///
///     PHPhotoLibrary::sharedPhotoLibrary()->performChanges(
///         [=] {
///             auto asset = PHAssetChangeRequest::creationRequestForAssetFromImageAtFileURL(url);
///             auto change = PHAssetCollectionChangeRequest::changeRequestForAssetCollection(album);
///             change->addAssets({asset->placeholderForCreatedAsset()});
///         },
///         [](bool success, std::shared_ptr<NSError> error) { ... });
class KX_EXPORT PHPhotoLibrary : public Subclass<PHPhotoLibrary, NSObject> {
  public:
    using CompletionHandler = std::function<void(bool success, std::shared_ptr<NSError> error)>;

    /// Made at first need, lives as long as the process. What a kill has left of a change is then undone or
    /// completed in the background.
    [[nodiscard]] static std::shared_ptr<PHPhotoLibrary> sharedPhotoLibrary();

    /// Runs `changes` and makes all that it asked for through change requests, or nothing: a kill at any
    /// instant leaves no half and no file without its place in the library. Then calls `completionHandler`,
    /// unless it is empty, with what came of it. Both run on the library's own queue, one change after
    /// another; this returns at once.
    void performChanges(std::function<void()> changes, CompletionHandler completionHandler);

    /// Whether the calling thread is the library's own: whoever waits there for a change waits for ever.
    [[nodiscard]] bool isCurrent() const noexcept { return queue_->isCurrent(); }

    /// Where it keeps everything. Private to Services.
    [[nodiscard]] PhotoStore& store() const noexcept { return *store_; }

    bool init();

  private:
    std::shared_ptr<PhotoStore> store_;
    std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace kx
