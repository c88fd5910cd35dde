// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/Photos/PhotoChanges.h>
#include <KXFoundation/Platform/Services/Photos/PhotoFiles.h>
#include <KXFoundation/Platform/Services/Photos/PhotoIndex.h>

namespace kx {

struct PhotoPlan;

/// The photo library on the disk: files in album folders and an index of them, shared with the user's other
/// applications (docs/formats/photo-index.md). Private to Services and its tests; any thread.
///
/// How a change is all or nothing: the index first notes which incoming files will be written (intents). They
/// are copied and checked. Then one transaction of the index adds albums and assets and takes the intents
/// back: from there on the change holds. At last the files get their names. Whatever a kill leaves of this,
/// recover() or the next change undoes (intents) or completes (files without their names).
class KX_EXPORT PhotoStore {
  public:
    /// The index in one folder, the files below another; both are made when they are needed. Where either is
    /// absent the library is empty, and no change succeeds.
    PhotoStore(const std::optional<std::string>& indexFolder,
               const std::optional<std::string>& picturesFolder);

    /// All of it or nothing. Fails with what the first file that cannot be taken says (Missing, Denied,
    /// Corrupt, Unsupported for what is no picture or video), Missing for an album that is gone, Full, Busy
    /// while another process makes a change for long. Takes as long as copying takes.
    Result<void> perform(const PhotoChanges& changes);

    /// Undoes or completes what a kill has left. Makes nothing where there is no index.
    Result<void> recover();

    struct Asset {
        std::string identifier;
        PHAssetMediaType type;
        std::string path;
    };
    /// In the order in which they were made.
    Result<std::vector<PhotoIndex::Album>> albums();
    /// In the order in which they came; those whose files the person has taken away are left out.
    Result<std::vector<Asset>> assetsInAlbum(const std::string& identifier);

  private:
    using Step = std::function<Result<void>(PhotoIndex&)>;

    Result<std::unique_ptr<File>> lock(const char* name) const;
    Result<void> withIndex(const Step& step) const;
    Result<void> reading(const Step& step) const;

    Result<void> begin(const PhotoChanges& changes, PhotoPlan& plan);
    Result<void> beginAnew(const PhotoChanges& changes, PhotoPlan& plan);
    Result<void> take(const PhotoPlan& plan);
    Result<void> commit(const PhotoPlan& plan);
    Result<void> setDamagedAside();
    [[nodiscard]] bool isThere(const std::string& path) const;

    const std::shared_ptr<FileSystem> files_;
    const std::string folder_;  // empty: there is no library
    const std::string indexPath_;
    PhotoFiles photos_;
};

}  // namespace kx
