// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx::disk {

/// What of a folder a power cut could still take. The system forgets what it failed to write, and would call
/// a later sync of that file a success: so a file whose sync failed counts as unsynced until it is deleted.
/// Private to Cache. Any thread.
class UnsyncedFiles {
  public:
    UnsyncedFiles(std::shared_ptr<FileSystem> files, std::string folder)
        : files_(std::move(files)), folder_(std::move(folder)) {}

    /// The file was written to through `open`.
    void add(const std::string& path, const std::shared_ptr<File>& open);
    /// A file came into the folder.
    void addFolder();
    /// These are about to be deleted.
    void forget(std::span<const std::string> paths);
    /// Waits until what was added before the call would survive.
    [[nodiscard]] Result<void> sync();
    /// Whether a sync of the file has failed.
    [[nodiscard]] bool isLost(const std::string& path) const;

  private:
    struct Written {
        std::string path;
        std::shared_ptr<File> open;  // the last one's only: files are many
    };
    enum class Synced : std::uint8_t { Yes, Lost, NotYet };
    Synced sync(const Written& file, Result<void>& result);

    const std::shared_ptr<FileSystem> files_;
    const std::string folder_;
    Mutex syncing_;  // who comes while another syncs waits for that too
    mutable Mutex mutex_;
    std::vector<Written> written_ KX_GUARDED_BY(mutex_);
    std::vector<std::string> lost_ KX_GUARDED_BY(mutex_);
    bool isFolderUnsynced_ KX_GUARDED_BY(mutex_) = false;
};

}  // namespace kx::disk
