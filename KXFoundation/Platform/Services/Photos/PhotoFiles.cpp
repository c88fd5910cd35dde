// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>

#include <KXFoundation/Platform/Services/Photos/PhotoChanges.h>
#include <KXFoundation/Platform/Services/Photos/PhotoFiles.h>

namespace kx {

namespace {

constexpr std::string_view kIncoming = ".kx-incoming-";
constexpr std::size_t kChunk = 1 << 20;

bool isPlain(std::string_view name) {
    return !name.empty() && name != "." && name != ".." && name.find('/') == name.npos &&
           name.find('\0') == name.npos;
}

bool isMissing(const Error& error) {
    return error.kind == ErrorKind::Missing;
}

/// Copies `size` bytes; Ended if there are fewer.
Result<void> copy(File& from, File& to, std::uint64_t size, const std::string& path) {
    std::vector<std::byte> chunk(std::min<std::uint64_t>(kChunk, size));
    for (std::uint64_t at = 0; at < size;) {
        const auto wanted = std::span(chunk).first(std::min<std::uint64_t>(chunk.size(), size - at));
        auto got = from.readAt(at, wanted);
        if (!got) return std::move(got).error();
        if (*got == 0) return Error{ErrorKind::Ended, 0, path};
        if (auto put = to.writeAt(at, wanted.first(*got)); !put) return put;
        at += *got;
    }
    return {};
}

}  // namespace

std::string PhotoFiles::pathOf(const PhotoPlace& place) const {
    std::string path = root_;
    for (const std::string* part : {&place.folder, &place.name})
        if (!part->empty()) path.append("/").append(*part);
    return path;
}

std::string PhotoFiles::incomingName() {
    return std::string(kIncoming) + newPhotoIdentifier();
}

bool PhotoFiles::isInside(const PhotoPlace& place) {
    return isPlain(place.name) && (place.folder.empty() || isPlain(place.folder));
}

Result<std::unordered_set<std::string>> PhotoFiles::namesIn(const std::string& folder) {
    auto names = files_->list(pathOf({folder, {}}));
    if (names) return std::unordered_set<std::string>(names->begin(), names->end());
    if (isMissing(names.error())) return std::unordered_set<std::string>();
    return std::move(names).error();
}

Result<PhotoFiles::Found> PhotoFiles::look(const std::string& folder) {
    auto info = files_->info(pathOf({folder, {}}));
    if (info) return info->kind == FileSystem::Info::Kind::Directory ? Found::Folder : Found::Other;
    if (isMissing(info.error())) return Found::Nothing;
    return std::move(info).error();
}

Result<void> PhotoFiles::makeFolder(const std::string& folder) {
    const std::string path = pathOf({folder, {}});
    if (files_->info(path)) return {};
    if (auto made = makeDirectories(*files_, path); !made) return made;
    if (auto synced = files_->syncDirectory(directoryOf(path)); !synced || folder.empty()) return synced;
    return files_->syncDirectory(directoryOf(root_));
}

Result<void> PhotoFiles::copyInto(const PhotoPlace& incoming, const std::string& from) {
    const auto info = files_->info(from);
    if (!info) return info.error();
    if (info->kind != FileSystem::Info::Kind::File)
        return Error{ErrorKind::Unsupported, 0, from + ": no file"};
    auto source = files_->open(from, FileSystem::Mode::Read);
    if (!source) return std::move(source).error();
    auto target = files_->open(pathOf(incoming), FileSystem::Mode::CreateNewDocument);
    if (!target) return std::move(target).error();
    if (auto copied = copy(**source, **target, info->size, from); !copied) return copied;
    return (*target)->sync();
}

/// Whether the name is ours: nobody's before, or an empty file's, as an earlier attempt leaves it.
Result<bool> PhotoFiles::reserve(const std::string& path) {
    auto made = files_->open(path, FileSystem::Mode::CreateNew);
    if (made) return true;
    if (made.error().systemError != EEXIST) return std::move(made).error();
    auto info = files_->info(path);
    if (info) return info->kind == FileSystem::Info::Kind::File && info->size == 0;
    if (isMissing(info.error())) return false;
    return std::move(info).error();
}

Result<bool> PhotoFiles::giveName(const PhotoPlace& incoming, const std::string& name) {
    const std::string from = pathOf(incoming), to = pathOf({incoming.folder, name});
    if (auto info = files_->info(from); !info) {
        if (isMissing(info.error())) return true;
        return std::move(info).error();
    }
    auto reserved = reserve(to);
    if (!reserved || !*reserved) return reserved;
    if (auto renamed = files_->rename(from, to); !renamed) return std::move(renamed).error();
    return true;
}

Result<void> PhotoFiles::discard(const PhotoPlace& incoming) {
    if (!isInside(incoming) || !incoming.name.starts_with(kIncoming)) return {};  // not of our making
    auto removed = files_->remove(pathOf(incoming));
    if (!removed && isMissing(removed.error())) return {};
    return removed;
}

Result<void> PhotoFiles::removeFolder(const std::string& folder) {
    if (!isPlain(folder)) return {};
    auto removed = files_->remove(pathOf({folder, {}}));
    if (removed || isMissing(removed.error())) return {};
    const int reason = removed.error().systemError;
    return reason == ENOTEMPTY || reason == EEXIST ? Result<void>() : removed;
}

Result<void> PhotoFiles::sync(const std::string& folder) {
    auto synced = files_->syncDirectory(pathOf({folder, {}}));
    if (!synced && isMissing(synced.error())) return {};
    return synced;
}

}  // namespace kx
