// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <utility>

#include <KXFoundation/Cache/Disk/UnsyncedFiles.h>

namespace kx::disk {

void UnsyncedFiles::add(const std::string& path, const std::shared_ptr<File>& open) {
    const MutexLock lock(mutex_);
    if (!written_.empty()) {
        if (written_.back().path == path) return;
        written_.back().open = nullptr;
    }
    written_.push_back({path, open});
}

void UnsyncedFiles::addFolder() {
    const MutexLock lock(mutex_);
    isFolderUnsynced_ = true;
}

void UnsyncedFiles::forget(std::span<const std::string> paths) {
    const auto isOfThem = [&](const std::string& path) {
        return std::ranges::find(paths, path) != paths.end();
    };
    const MutexLock lock(mutex_);
    std::erase_if(written_, [&](const Written& file) { return isOfThem(file.path); });
    std::erase_if(lost_, isOfThem);
}

bool UnsyncedFiles::isLost(const std::string& path) const {
    const MutexLock lock(mutex_);
    return std::ranges::find(lost_, path) != lost_.end();
}

Result<void> UnsyncedFiles::sync() {
    const MutexLock turn(syncing_);
    std::vector<Written> written;
    std::vector<std::string> lost;
    bool isFolderUnsynced = false;
    {
        const MutexLock lock(mutex_);
        written.swap(written_);
        lost.swap(lost_);
        isFolderUnsynced = std::exchange(isFolderUnsynced_, false);
    }
    Result<void> result;
    std::erase_if(lost, [&](const std::string& path) {  // by another process
        const auto info = files_->info(path);
        return !info && info.error().kind == ErrorKind::Missing;
    });
    if (!lost.empty()) result = Error::fromErrno(EIO, lost.front());
    std::erase_if(written, [&](const Written& file) {
        const Synced synced = sync(file, result);
        if (synced == Synced::Lost) lost.push_back(file.path);
        return synced != Synced::NotYet;
    });
    if (isFolderUnsynced) {
        if (auto done = files_->syncDirectory(folder_); done) {
            isFolderUnsynced = false;
        } else {
            result = std::move(done);
        }
    }
    const MutexLock lock(mutex_);
    written_.insert(written_.begin(), written.begin(), written.end());
    lost_.insert(lost_.end(), lost.begin(), lost.end());
    isFolderUnsynced_ |= isFolderUnsynced;
    return result;
}

/// One that is missing has nothing to lose.
UnsyncedFiles::Synced UnsyncedFiles::sync(const Written& file, Result<void>& result) {
    std::shared_ptr<File> open = file.open;
    if (!open) {
        auto opened = files_->open(file.path, FileSystem::Mode::Read);
        if (!opened && opened.error().kind == ErrorKind::Missing) return Synced::Yes;
        if (!opened) {
            result = std::move(opened).error();
            return Synced::NotYet;
        }
        open = std::move(*opened);
    }
    auto done = open->sync();
    if (done) return Synced::Yes;
    result = std::move(done);
    return Synced::Lost;
}

}  // namespace kx::disk
