// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollection.h>
#include <KXFoundation/Platform/Services/Photos/PHPhotoLibrary.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>

namespace kx {

std::vector<std::shared_ptr<PHAssetCollection>> PHCollectionList::fetchTopLevelUserCollectionsWithOptions() {
    std::vector<std::shared_ptr<PHAssetCollection>> collections;
    auto albums = PHPhotoLibrary::sharedPhotoLibrary()->store().albums();
    if (!albums) {
        logError("photo library", albums.error());
        return collections;
    }
    for (auto& album : *albums)
        collections.push_back(make<PHAssetCollection>(std::move(album.identifier), std::move(album.title)));
    return collections;
}

}  // namespace kx
