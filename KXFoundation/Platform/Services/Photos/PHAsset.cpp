// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/Photos/PHAsset.h>
#include <KXFoundation/Platform/Services/Photos/PHPhotoLibrary.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>

namespace kx {

std::vector<std::shared_ptr<PHAsset>> PHAsset::fetchAssetsInAssetCollection(
    const std::shared_ptr<PHAssetCollection>& album) {
    std::vector<std::shared_ptr<PHAsset>> fetched;
    if (!album) return fetched;
    auto assets = PHPhotoLibrary::sharedPhotoLibrary()->store().assetsInAlbum(album->localIdentifier());
    if (!assets) {
        logError("photo library", assets.error());
        return fetched;
    }
    for (auto& asset : *assets)
        fetched.push_back(make<PHAsset>(std::move(asset.identifier), asset.type, std::move(asset.path)));
    return fetched;
}

}  // namespace kx
