// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetCollection.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetMediaType.h>

namespace kx {

/// A picture or video of the library as it was when it was fetched. Immutable; any thread.
class KX_EXPORT PHAsset : public Subclass<PHAsset, NSObject> {
  public:
    /// The album's assets in the order in which they came, but those whose files the person has taken away.
    /// Empty for an absent album and, with one log line, where the library cannot be read. Reads a file at
    /// each call.
    [[nodiscard]] static std::vector<std::shared_ptr<PHAsset>> fetchAssetsInAssetCollection(
        const std::shared_ptr<PHAssetCollection>& album);

    [[nodiscard]] const std::string& localIdentifier() const noexcept { return identifier_; }
    [[nodiscard]] PHAssetMediaType mediaType() const noexcept { return type_; }
    /// Its file, an absolute path.
    [[nodiscard]] const std::string& path() const noexcept { return path_; }

    bool init(std::string identifier, PHAssetMediaType type, std::string path) {
        identifier_ = std::move(identifier);
        type_ = type;
        path_ = std::move(path);
        return Super::init();
    }

  private:
    std::string identifier_;
    PHAssetMediaType type_ = PHAssetMediaType::Image;
    std::string path_;
};

}  // namespace kx
