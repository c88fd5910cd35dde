// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/Photos/PHAssetMediaType.h>
#include <KXFoundation/Platform/Services/SqliteDatabase.h>

namespace kx {

/// Where a file of the photo library lies: a folder below the pictures folder ("" is that folder itself) and
/// a name in it.
struct PhotoPlace {
    std::string folder;
    std::string name;
};

/// What the photo library knows, in an SQLite file (docs/formats/photo-index.md). Whoever opens it holds its
/// lock. Each step is durable when it returns, or part of the transaction around it; Corrupt where the file
/// is damaged. One thread at a time.
class PhotoIndex {
  public:
    struct Album {
        std::string identifier;
        std::string title;
        std::string folder;
    };
    struct Asset {
        std::string identifier;
        PHAssetMediaType type;
        PhotoPlace place;
        std::string incoming;  // its file's name until it gets its own; then empty

        /// Where its file is.
        [[nodiscard]] PhotoPlace present() const {
            return {place.folder, incoming.empty() ? place.name : incoming};
        }
    };

    /// Makes the file and its tables if they are missing. Unsupported for one that a newer version made.
    static Result<PhotoIndex> open(const std::string& path);

    /// Does all that the steps do, or nothing.
    Result<void> inTransaction(const std::function<Result<void>()>& steps);

    /// In the order in which they were made.
    Result<std::vector<Album>> albums();
    Result<std::vector<Asset>> assetsInAlbum(const std::string& identifier);
    /// The assets whose files have not got their names yet.
    Result<std::vector<Asset>> incomingAssets();
    /// The names of the folder's assets.
    Result<std::vector<std::string>> namesIn(const std::string& folder);
    /// Whether there is such an asset or album.
    Result<bool> knows(const std::string& identifier);
    /// What a change made, or was about to, before it was complete: its incoming files, then its folders,
    /// which have no name.
    Result<std::vector<PhotoPlace>> intents();

    Result<void> addAlbum(const Album& album);
    Result<void> addAsset(const Asset& asset);
    Result<void> addMember(const std::string& album, const std::string& asset);
    Result<void> addIntent(const PhotoPlace& place);
    Result<void> removeIntent(const PhotoPlace& place);
    Result<void> setName(const std::string& asset, const std::string& name);
    /// The asset's file has its name now.
    Result<void> setArrived(const std::string& asset);

  private:
    explicit PhotoIndex(SqliteDatabase database) : database_(std::move(database)) {}
    Result<void> prepare();
    Result<std::vector<Asset>> assets(const char* query, const SqliteDatabase::Row& parameters);
    Result<void> change(const char* statement, const SqliteDatabase::Row& parameters);

    SqliteDatabase database_;
};

}  // namespace kx
