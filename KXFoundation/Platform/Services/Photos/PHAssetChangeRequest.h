// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetMediaType.h>
#include <KXFoundation/Platform/Services/Photos/PHObjectPlaceholder.h>

namespace kx {

/// Asks, inside a change block of PHPhotoLibrary, for an asset from a file, which is copied when the block
/// has ended. The change fails for an address that is absent or no file's, and for contents that are not of
/// the kind asked for. Outside of a change block each is a caller error and answers none.
class KX_EXPORT PHAssetChangeRequest : public Subclass<PHAssetChangeRequest, NSObject> {
  public:
    static std::shared_ptr<PHAssetChangeRequest> creationRequestForAssetFromImageAtFileURL(
        const std::optional<NSURL>& url);
    static std::shared_ptr<PHAssetChangeRequest> creationRequestForAssetFromVideoAtFileURL(
        const std::optional<NSURL>& url);

    [[nodiscard]] const std::shared_ptr<PHObjectPlaceholder>& placeholderForCreatedAsset() const noexcept {
        return placeholder_;
    }

    bool init(std::shared_ptr<PHObjectPlaceholder> placeholder) {
        placeholder_ = std::move(placeholder);
        return Super::init();
    }

  private:
    std::shared_ptr<PHObjectPlaceholder> placeholder_;
};

}  // namespace kx
