// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Services/Photos/PHAssetChangeRequest.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChangeBlock.h>

namespace kx {

namespace {

std::shared_ptr<PHAssetChangeRequest> request(PHAssetMediaType type, const std::optional<NSURL>& url) {
    PhotoChangeBlock* const block = PhotoChangeBlock::current("PHAssetChangeRequest");
    if (!block) return nullptr;
    const std::string identifier = newPhotoIdentifier();
    block->changes.assets.push_back(
        {identifier, type, url && url->isFileURL() ? url->path() : std::string()});
    return make<PHAssetChangeRequest>(make<PHObjectPlaceholder>(identifier));
}

}  // namespace

std::shared_ptr<PHAssetChangeRequest> PHAssetChangeRequest::creationRequestForAssetFromImageAtFileURL(
    const std::optional<NSURL>& url) {
    return request(PHAssetMediaType::Image, url);
}

std::shared_ptr<PHAssetChangeRequest> PHAssetChangeRequest::creationRequestForAssetFromVideoAtFileURL(
    const std::optional<NSURL>& url) {
    return request(PHAssetMediaType::Video, url);
}

}  // namespace kx
