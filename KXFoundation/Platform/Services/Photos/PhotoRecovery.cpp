// SPDX-License-Identifier: MIT

#include <algorithm>
#include <set>

#include <KXFoundation/Platform/Services/Photos/PhotoPlan.h>
#include <KXFoundation/Platform/Services/Photos/PhotoRecovery.h>

namespace kx {

namespace {

/// Keeps the first failure of several attempts.
class FirstFailure {
  public:
    /// Whether the step succeeded.
    bool note(Result<void> done) {
        if (done) return true;
        if (first_) first_ = std::move(done);
        return false;
    }
    [[nodiscard]] bool isNone() const { return first_.ok(); }
    Result<void> take() { return std::move(first_); }

  private:
    Result<void> first_;
};

bool isFolder(const PhotoPlace& intent) {
    return intent.name.empty();
}

/// A folder that another change made an album's meanwhile stays.
Result<void> removeFolder(const std::string& folder, const std::vector<PhotoIndex::Album>& albums,
                          PhotoFiles& photos) {
    if (std::ranges::find(albums, folder, &PhotoIndex::Album::folder) != albums.end()) return {};
    return photos.removeFolder(folder);
}

Result<void> discard(const PhotoPlace& incoming, PhotoFiles& photos) {
    if (auto discarded = photos.discard(incoming); !discarded) return discarded;
    return photos.sync(incoming.folder);  // the intent must not go before the file
}

Result<void> undo(PhotoIndex& index, PhotoFiles& photos) {
    const auto intents = index.intents();
    if (!intents) return intents.error();
    if (intents->empty()) return {};
    const auto albums = index.albums();
    if (!albums) return albums.error();
    FirstFailure failure;
    for (const PhotoPlace& intent : *intents) {
        if (isFolder(intent) && !failure.isNone()) break;  // its files are still there
        if (failure.note(isFolder(intent) ? removeFolder(intent.folder, *albums, photos)
                                          : discard(intent, photos)))
            failure.note(index.removeIntent(intent));
    }
    return failure.take();
}

/// Should another program have taken the name meanwhile, the file gets the next one.
Result<void> nameFile(PhotoIndex::Asset asset, PhotoIndex& index, PhotoFiles& photos) {
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        if (!PhotoFiles::isInside(asset.place)) break;
        const auto named = photos.giveName(asset.present(), asset.place.name);
        if (!named) return named.error();
        if (*named) return {};
        auto name = FreeNames(index, photos).take(asset.place.folder, asset.place.name);
        if (!name) return std::move(name).error();
        asset.place.name = std::move(*name);
        if (auto set = index.setName(asset.identifier, asset.place.name); !set) return set;
    }
    return Error{ErrorKind::Busy, 0, "photo library: no name for " + asset.place.name};
}

Result<void> complete(PhotoIndex& index, PhotoFiles& photos) {
    const auto assets = index.incomingAssets();
    if (!assets) return assets.error();
    FirstFailure failure;
    std::vector<std::string> named;
    std::set<std::string> folders;
    for (const PhotoIndex::Asset& asset : *assets) {
        if (!failure.note(nameFile(asset, index, photos))) continue;
        named.push_back(asset.identifier);
        folders.insert(asset.place.folder);
    }
    for (const std::string& folder : folders)
        if (!failure.note(photos.sync(folder))) return failure.take();
    if (named.empty()) return failure.take();
    failure.note(index.inTransaction([&]() -> Result<void> {
        for (const std::string& identifier : named)
            if (auto set = index.setArrived(identifier); !set) return set;
        return {};
    }));
    return failure.take();
}

}  // namespace

Result<void> recoverPhotos(PhotoIndex& index, PhotoFiles& photos) {
    FirstFailure failure;
    failure.note(undo(index, photos));
    failure.note(complete(index, photos));
    return failure.take();
}

}  // namespace kx
