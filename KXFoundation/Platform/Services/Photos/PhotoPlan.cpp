// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Services/Photos/PhotoFileName.h>
#include <KXFoundation/Platform/Services/Photos/PhotoPlan.h>

namespace kx {

namespace {

/// Plans one change.
class Planner {
  public:
    Planner(const PhotoChanges& changes, PhotoIndex& index, PhotoFiles& photos)
        : changes_(changes), index_(index), photos_(photos), names_(index, photos) {}

    Result<PhotoPlan> plan() {
        auto known = index_.albums();
        if (!known) return std::move(known).error();
        albums_ = std::move(*known);
        for (const auto& album : changes_.albums)
            if (auto planned = planAlbum(album); !planned) return std::move(planned).error();
        for (const auto& asset : changes_.assets)
            if (auto planned = planAsset(asset); !planned) return std::move(planned).error();
        for (const auto& member : changes_.members)
            if (!find(member.album)) return Error{ErrorKind::Missing, 0, "photo library: the album is gone"};
        plan_.members = changes_.members;
        return std::move(plan_);
    }

  private:
    Result<void> planAlbum(const PhotoChanges::Album& album) {
        auto folder = freeFolder(photoFileName(album.title));
        if (!folder) return std::move(folder).error();
        albums_.push_back({album.identifier, album.title, std::move(*folder)});
        plan_.albums.push_back(albums_.back());
        return {};
    }

    /// A folder that no other album has. One that is there already takes the album in: the person, or an
    /// index that was lost, has made it.
    Result<std::string> freeFolder(const std::string& wanted) {
        for (unsigned number = 1;; ++number) {
            std::string folder = number == 1 ? wanted : wanted + " " + std::to_string(number);
            if (std::ranges::find(albums_, folder, &PhotoIndex::Album::folder) != albums_.end()) continue;
            const auto found = photos_.look(folder);
            if (!found) return found.error();
            if (*found == PhotoFiles::Found::Other) continue;
            if (*found == PhotoFiles::Found::Nothing) plan_.intents.push_back({folder, {}});
            return folder;
        }
    }

    Result<void> planAsset(const PhotoChanges::Asset& asset) {
        if (asset.path.empty()) return Error{ErrorKind::Missing, 0, "photo library: the address of no file"};
        const std::string folder = folderOf(asset);
        auto name = names_.take(folder, photoFileName(asset.path.substr(asset.path.rfind('/') + 1)));
        if (!name) return std::move(name).error();
        PhotoIndex::Asset row{
            asset.identifier, asset.type, {folder, std::move(*name)}, PhotoFiles::incomingName()};
        plan_.intents.push_back(row.present());
        plan_.arrivals.push_back({std::move(row), asset.path});
        return {};
    }

    /// That of its first album; the pictures folder itself without one.
    std::string folderOf(const PhotoChanges::Asset& asset) const {
        const auto member =
            std::ranges::find(changes_.members, asset.identifier, &PhotoChanges::Member::asset);
        const PhotoIndex::Album* const album =
            member != changes_.members.end() ? find(member->album) : nullptr;
        return album ? album->folder : std::string();
    }

    const PhotoIndex::Album* find(const std::string& identifier) const {
        const auto found = std::ranges::find(albums_, identifier, &PhotoIndex::Album::identifier);
        return found != albums_.end() ? &*found : nullptr;
    }

    const PhotoChanges& changes_;
    PhotoIndex& index_;
    PhotoFiles& photos_;
    FreeNames names_;
    std::vector<PhotoIndex::Album> albums_;  // those of the library and of the change
    PhotoPlan plan_;
};

}  // namespace

Result<PhotoPlan> planPhotoChanges(const PhotoChanges& changes, PhotoIndex& index, PhotoFiles& photos) {
    return Planner(changes, index, photos).plan();
}

Result<std::string> FreeNames::take(const std::string& folder, const std::string& wanted) {
    auto known = taken_.find(folder);
    if (known == taken_.end()) {
        auto names = namesIn(folder);
        if (!names) return std::move(names).error();
        known = taken_.emplace(folder, std::move(*names)).first;
    }
    for (unsigned number = 1;; ++number) {
        std::string name = numberedFileName(wanted, number);
        if (known->second.insert(name).second) return name;
    }
}

Result<FreeNames::Names> FreeNames::namesIn(const std::string& folder) {
    auto names = photos_.namesIn(folder);
    if (!names) return names;
    auto known = index_.namesIn(folder);
    if (!known) return std::move(known).error();
    names->insert(known->begin(), known->end());
    return names;
}

}  // namespace kx
