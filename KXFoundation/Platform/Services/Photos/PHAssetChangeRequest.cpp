#include <KXFoundation/Platform/Services/Photos/PHAssetChangeRequest.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChangeBlock.h>

namespace kx {

namespace {

std::shared_ptr<PHAssetChangeRequest> request(PHAssetMediaType type, const std::optional<NSURL>& url) {
    PhotoChangeBlock* const block = PhotoChangeBlock::current("PHAssetChangeRequest");
    if (!block) return nullptr;
    const std::string& identifier =
        block->changes.assets
            .emplace_back(newPhotoIdentifier(), type, url && url->isFileURL() ? url->path() : std::string())
            .identifier;
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
