// SPDX-License-Identifier: MIT

#include <atomic>
#include <cerrno>

#include <unistd.h>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx {

PortSlot<FileSystem>& FileSystem::slot() {
    static constinit PortSlot<FileSystem> slot;
    return slot;
}

Result<std::string> readFile(FileSystem& files, const std::string& path, std::uint64_t limit) {
    auto file = files.open(path, FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    auto size = (*file)->size();
    if (!size) return std::move(size).error();
    if (*size > limit) return Error{ErrorKind::TooLarge, 0, path};
    std::string contents(*size, '\0');
    auto got = (*file)->readAt(0, std::as_writable_bytes(std::span(contents)));
    if (!got) return std::move(got).error();
    contents.resize(*got);
    return contents;
}

Result<std::unique_ptr<File>> lockFile(FileSystem& files, const std::string& path, File::Lock kind) {
    auto file = files.open(path, FileSystem::Mode::ReadWrite);
    if (!file && file.error().kind == ErrorKind::Missing) {
        if (auto made = makeDirectories(files, directoryOf(path)); !made) return std::move(made).error();
        file = files.open(path, FileSystem::Mode::ReadWrite);
    }
    if (!file) return file;
    if (auto held = (*file)->lock(kind); !held) return std::move(held).error();
    return file;
}

Result<void> replaceFile(FileSystem& files, const std::string& path, std::string_view contents) {
    static std::atomic<unsigned> counter{0};
    const std::string temporary =
        path + ".new-" + std::to_string(getpid()) + "-" + std::to_string(counter.fetch_add(1));
    const auto write = [&]() -> Result<void> {
        auto file = files.open(temporary, FileSystem::Mode::CreateNew);
        if (!file && file.error().systemError == EEXIST) {  // left by a process that died with this id
            if (auto removed = files.remove(temporary); !removed) return removed;
            file = files.open(temporary, FileSystem::Mode::CreateNew);
        }
        if (!file) return std::move(file).error();
        if (auto done = (*file)->writeAt(0, std::as_bytes(std::span(contents))); !done) return done;
        if (auto done = (*file)->sync(); !done) return done;
        return files.rename(temporary, path);
    };
    if (auto done = write(); !done) {
        (void)files.remove(temporary);
        return done;
    }
    return files.syncDirectory(directoryOf(path));
}

Result<void> makeDirectories(FileSystem& files, const std::string& path) {
    if (auto made = files.makeDirectory(path); made || made.error().kind != ErrorKind::Missing) return made;
    const std::string above = directoryOf(path);
    if (above == path || above == ".") return Error{ErrorKind::Missing, 0, path};
    if (auto made = makeDirectories(files, above); !made) return made;
    return files.makeDirectory(path);
}

std::string directoryOf(std::string_view path) {
    const std::size_t slash = path.find_last_of('/');
    if (slash == std::string_view::npos) return ".";
    return std::string(path.substr(0, slash == 0 ? 1 : slash));
}

}  // namespace kx
