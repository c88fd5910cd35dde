// SPDX-License-Identifier: MIT

#include <set>

#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/AVAsset.h>
#include <KXFoundation/Platform/Services/Photos/PhotoPlan.h>
#include <KXFoundation/Platform/Services/Photos/PhotoRecovery.h>
#include <KXFoundation/Platform/Services/Photos/PhotoStore.h>
#include <KXFoundation/Platform/Services/Photos/PictureSignature.h>

namespace kx {

namespace {

constexpr const char* kWriting = "/writing.lock";  // held through a whole change
constexpr const char* kIndexLock = "/index.lock";  // held while the index is open, milliseconds

bool isMissing(const Error& error) {
    return error.kind == ErrorKind::Missing;
}

/// By what is in the file that came in, whatever the one that it came from is by now.
Result<void> checkContents(FileSystem& files, const PhotoPlan::Arrival& arrival, const std::string& path) {
    auto checked =
        arrival.asset.type == PHAssetMediaType::Video ? checkVideo(path) : checkPicture(files, path);
    if (checked) return checked;
    Error error = checked.error();
    if (error.where.starts_with(path)) error.where.replace(0, path.size(), arrival.from);
    return error;
}

Result<void> enter(const PhotoPlan& plan, PhotoIndex& index) {
    for (const auto& album : plan.albums)
        if (auto added = index.addAlbum(album); !added) return added;
    for (const auto& arrival : plan.arrivals)
        if (auto added = index.addAsset(arrival.asset); !added) return added;
    for (const auto& member : plan.members)
        if (auto added = index.addMember(member.album, member.asset); !added) return added;
    for (const auto& intent : plan.intents)
        if (auto removed = index.removeIntent(intent); !removed) return removed;
    return {};
}

const std::string& oneIdentifier(const PhotoPlan& plan) {
    return plan.albums.empty() ? plan.arrivals.front().asset.identifier : plan.albums.front().identifier;
}

}  // namespace

PhotoStore::PhotoStore(const std::optional<std::string>& indexFolder,
                       const std::optional<std::string>& picturesFolder)
    : files_(FileSystem::slot().shared()),
      folder_(picturesFolder ? indexFolder.value_or("") : ""),
      indexPath_(folder_ + "/index"),
      photos_(files_, picturesFolder.value_or("")) {}

Result<std::unique_ptr<File>> PhotoStore::lock(const char* name) const {
    return lockFile(*files_, folder_ + name, File::Lock::Exclusive);
}

bool PhotoStore::isThere(const std::string& path) const {
    const auto info = files_->info(path);
    return info || !isMissing(info.error());
}

Result<void> PhotoStore::withIndex(const Step& step) const {
    const auto held = lock(kIndexLock);
    if (!held) return held.error();
    auto index = PhotoIndex::open(indexPath_);
    if (!index) return std::move(index).error();
    return step(*index);
}

/// Nothing is made, and a home that cannot be written is read all the same.
Result<void> PhotoStore::reading(const Step& step) const {
    if (folder_.empty()) return {};
    const auto info = files_->info(indexPath_);
    if (info ? info->size == 0 : isMissing(info.error())) return {};
    const auto held = lock(kIndexLock);
    if (!held && held.error().kind != ErrorKind::Denied) return held.error();
    auto index = PhotoIndex::open(indexPath_);
    if (!index) return std::move(index).error();
    return step(*index);
}

Result<std::vector<PhotoIndex::Album>> PhotoStore::albums() {
    std::vector<PhotoIndex::Album> albums;
    auto read = reading([&](PhotoIndex& index) -> Result<void> {
        auto rows = index.albums();
        if (!rows) return std::move(rows).error();
        albums = std::move(*rows);
        return {};
    });
    if (!read) return read.error();
    return albums;
}

Result<std::vector<PhotoStore::Asset>> PhotoStore::assetsInAlbum(const std::string& identifier) {
    std::vector<Asset> assets;
    auto read = reading([&](PhotoIndex& index) -> Result<void> {
        const auto rows = index.assetsInAlbum(identifier);
        if (!rows) return rows.error();
        for (const auto& row : *rows) {
            const PhotoPlace place = row.present();
            std::string path = photos_.pathOf(place);
            if (PhotoFiles::isInside(place) && isThere(path))
                assets.push_back({row.identifier, row.type, std::move(path)});
        }
        return {};
    });
    if (!read) return read.error();
    return assets;
}

Result<void> PhotoStore::recover() {
    bool isPending = false;
    auto looked = reading([&](PhotoIndex& index) -> Result<void> {
        const auto intents = index.intents();
        if (!intents) return intents.error();
        const auto assets = index.incomingAssets();
        if (!assets) return assets.error();
        isPending = !intents->empty() || !assets->empty();
        return {};
    });
    if (!looked || !isPending) return looked;
    const auto writing = lock(kWriting);
    if (!writing) return writing.error();
    return withIndex([&](PhotoIndex& index) { return recoverPhotos(index, photos_); });
}

Result<void> PhotoStore::perform(const PhotoChanges& changes) {
    if (changes.albums.empty() && changes.assets.empty()) return {};
    if (folder_.empty()) return Error{ErrorKind::Missing, 0, "photo library: no home"};
    const auto writing = lock(kWriting);
    if (!writing) return writing.error();
    PhotoPlan plan;
    if (auto begun = beginAnew(changes, plan); !begun) return begun;
    auto done = take(plan);
    if (done) done = commit(plan);
    // Names for the files, or their end. Where that fails it is left to the next change or opening.
    (void)withIndex([&](PhotoIndex& index) { return recoverPhotos(index, photos_); });
    return done;
}

Result<void> PhotoStore::beginAnew(const PhotoChanges& changes, PhotoPlan& plan) {
    auto begun = begin(changes, plan);
    if (begun || begun.error().kind != ErrorKind::Corrupt) return begun;
    log(LogLevel::Warning,
        begun.error().message() + "; it is kept under another name, and a new one is made");
    if (auto moved = setDamagedAside(); !moved) return moved;
    return begin(changes, plan);
}

Result<void> PhotoStore::begin(const PhotoChanges& changes, PhotoPlan& plan) {
    return withIndex([&](PhotoIndex& index) -> Result<void> {
        (void)recoverPhotos(index, photos_);  // what cannot be undone yet is in nobody's way
        auto planned = planPhotoChanges(changes, index, photos_);
        if (!planned) return std::move(planned).error();
        plan = std::move(*planned);
        return index.inTransaction([&]() -> Result<void> {
            for (const PhotoPlace& intent : plan.intents)
                if (auto noted = index.addIntent(intent); !noted) return noted;
            return {};
        });
    });
}

Result<void> PhotoStore::take(const PhotoPlan& plan) {
    std::set<std::string> folders;
    for (const PhotoPlan::Arrival& arrival : plan.arrivals) {
        const PhotoPlace place = arrival.asset.present();
        if (auto made = photos_.makeFolder(place.folder); !made) return made;
        if (auto copied = photos_.copyInto(place, arrival.from); !copied) return copied;
        if (auto checked = checkContents(*files_, arrival, photos_.pathOf(place)); !checked) return checked;
        folders.insert(place.folder);
    }
    for (const std::string& folder : folders)
        if (auto synced = photos_.sync(folder); !synced) return synced;
    return {};
}

Result<void> PhotoStore::commit(const PhotoPlan& plan) {
    auto done =
        withIndex([&](PhotoIndex& index) { return index.inTransaction([&] { return enter(plan, index); }); });
    if (done) return done;
    // The call that failed may have come after the transaction was on the disk.
    bool holds = false;
    const auto asked = withIndex([&](PhotoIndex& index) -> Result<void> {
        const auto known = index.knows(oneIdentifier(plan));
        holds = known && *known;
        return {};
    });
    return asked && holds ? files_->syncDirectory(folder_) : done;
}

/// Under the first free name, with the journal, which belongs to it alone.
Result<void> PhotoStore::setDamagedAside() {
    const auto held = lock(kIndexLock);
    if (!held) return held.error();
    for (unsigned number = 1;; ++number) {
        const std::string aside = indexPath_ + ".damaged-" + std::to_string(number);
        const auto info = files_->info(aside);
        if (info) continue;
        if (!isMissing(info.error())) return info.error();
        auto moved = files_->rename(indexPath_ + "-journal", aside + "-journal");
        if (!moved && !isMissing(moved.error())) return moved;
        return files_->rename(indexPath_, aside);
    }
}

}  // namespace kx
