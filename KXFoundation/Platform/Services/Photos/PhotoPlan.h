// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <string>
#include <unordered_set>
#include <vector>

#include <KXFoundation/Platform/Services/Photos/PhotoChanges.h>
#include <KXFoundation/Platform/Services/Photos/PhotoFiles.h>
#include <KXFoundation/Platform/Services/Photos/PhotoIndex.h>

namespace kx {

/// Where the albums and files of a change will lie.
struct PhotoPlan {
    struct Arrival {
        PhotoIndex::Asset asset;
        std::string from;
    };
    std::vector<PhotoIndex::Album> albums;
    std::vector<Arrival> arrivals;
    std::vector<PhotoChanges::Member> members;
    std::vector<PhotoPlace> intents;
};

/// Missing for an asset without a path and for an album that is gone.
Result<PhotoPlan> planPhotoChanges(const PhotoChanges& changes, PhotoIndex& index, PhotoFiles& photos);

/// Names for files that neither the disk nor the index has yet.
class FreeNames {
  public:
    FreeNames(PhotoIndex& index, PhotoFiles& photos) : index_(index), photos_(photos) {}

    /// The name, or the first free one with a number; taken from then on.
    Result<std::string> take(const std::string& folder, const std::string& wanted);

  private:
    using Names = std::unordered_set<std::string>;
    Result<Names> namesIn(const std::string& folder);

    PhotoIndex& index_;
    PhotoFiles& photos_;
    std::map<std::string, Names> taken_;
};

}  // namespace kx
