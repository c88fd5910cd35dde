// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetMediaType.h>

namespace kx {

/// What one change block asks of the photo library; all of it happens or nothing. Identifiers are
/// newPhotoIdentifier()s. Private to Services and its tests.
struct PhotoChanges {
    struct Album {
        std::string identifier;
        std::string title;  // any bytes
    };
    struct Asset {
        std::string identifier;
        PHAssetMediaType type;
        std::string path;  // of the file to copy; empty if its address was no file's
    };
    /// Of an asset above in an album, above or in the library.
    struct Member {
        std::string album;
        std::string asset;
    };

    std::vector<Album> albums;
    std::vector<Asset> assets;
    std::vector<Member> members;
};

/// 32 hexadecimal digits that nobody else has drawn.
[[nodiscard]] KX_EXPORT std::string newPhotoIdentifier();

}  // namespace kx
