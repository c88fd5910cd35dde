// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollection.h>
#include <KXFoundation/Platform/Services/Photos/PHObjectPlaceholder.h>

namespace kx {

/// Asks, inside a change block of PHPhotoLibrary, for changes of albums. Outside of one each is a caller
/// error, changes nothing and answers none.
class KX_EXPORT PHAssetCollectionChangeRequest : public Subclass<PHAssetCollectionChangeRequest, NSObject> {
  public:
    /// A new album, beside any other of the same title; its files get a folder of their own, named after the
    /// title as far as a folder can be.
    static std::shared_ptr<PHAssetCollectionChangeRequest> creationRequestForAssetCollectionWithTitle(
        std::string_view title);
    /// None for an absent album.
    static std::shared_ptr<PHAssetCollectionChangeRequest> changeRequestForAssetCollection(
        const std::shared_ptr<PHAssetCollection>& album);

    /// Adds assets that the same change block makes. Their files lie in the folder of the first album that
    /// they are added to.
    void addAssets(const std::vector<std::shared_ptr<PHObjectPlaceholder>>& placeholders);

    bool init(std::string album) {
        album_ = std::move(album);
        return Super::init();
    }

  private:
    std::string album_;  // its identifier
};

}  // namespace kx
