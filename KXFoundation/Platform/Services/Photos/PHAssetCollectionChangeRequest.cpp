// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/Photos/PHAssetCollectionChangeRequest.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChangeBlock.h>

namespace kx {

namespace {
constexpr const char* kName = "PHAssetCollectionChangeRequest";
}

std::shared_ptr<PHAssetCollectionChangeRequest>
PHAssetCollectionChangeRequest::creationRequestForAssetCollectionWithTitle(std::string_view title) {
    PhotoChangeBlock* const block = PhotoChangeBlock::current(kName);
    if (!block) return nullptr;
    const std::string identifier = newPhotoIdentifier();
    block->changes.albums.push_back({identifier, std::string(title)});
    return make<PHAssetCollectionChangeRequest>(identifier);
}

std::shared_ptr<PHAssetCollectionChangeRequest>
PHAssetCollectionChangeRequest::changeRequestForAssetCollection(
    const std::shared_ptr<PHAssetCollection>& album) {
    if (!album || !PhotoChangeBlock::current(kName)) return nullptr;
    return make<PHAssetCollectionChangeRequest>(album->localIdentifier());
}

void PHAssetCollectionChangeRequest::addAssets(
    const std::vector<std::shared_ptr<PHObjectPlaceholder>>& placeholders) {
    PhotoChangeBlock* const block = PhotoChangeBlock::current(kName);
    if (!block) return;
    for (const auto& placeholder : placeholders)
        if (placeholder) block->changes.members.push_back({album_, placeholder->localIdentifier()});
}

}  // namespace kx
