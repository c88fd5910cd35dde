// SPDX-License-Identifier: MIT

#include <atomic>
#include <cerrno>
#include <charconv>
#include <optional>

#include <signal.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx {

namespace {

constexpr std::string_view kTemporary = ".new-";
constexpr std::size_t kLongestName = 255;                                    // NAME_MAX
constexpr std::size_t kLongestStem = kLongestName - kTemporary.size() - 21;  // two numbers and a dash

/// What the temporary names of a file of this name begin with.
std::string_view stemOf(std::string_view name) {
    return name.substr(0, kLongestStem);
}

/// Beside the file, under a name that no other thread or process has.
std::string temporaryPath(const std::string& path) {
    static std::atomic<unsigned> counter{0};
    const std::size_t name = path.find_last_of('/') + 1;  // npos + 1 is 0
    std::string temporary = path.substr(0, name);
    temporary.append(stemOf(std::string_view(path).substr(name))).append(kTemporary);
    return temporary + std::to_string(getpid()) + "-" + std::to_string(counter.fetch_add(1));
}

/// The process in the name of a temporary file of the file called `name`; absent for any other name.
std::optional<pid_t> processOf(std::string_view temporary, std::string_view name) {
    const std::string_view stem = stemOf(name);
    if (!temporary.starts_with(stem) || !temporary.substr(stem.size()).starts_with(kTemporary)) return {};
    const std::string_view numbers = temporary.substr(stem.size() + kTemporary.size());
    const char* const end = numbers.data() + numbers.size();
    pid_t process = 0;
    unsigned number = 0;
    const auto first = std::from_chars(numbers.data(), end, process);
    if (first.ec != std::errc() || process <= 0 || first.ptr == end || *first.ptr != '-') return {};
    const auto second = std::from_chars(first.ptr + 1, end, number);
    if (second.ec != std::errc() || second.ptr != end) return {};
    return process;
}

bool isAlive(pid_t process) noexcept {
    return ::kill(process, 0) == 0 || errno != ESRCH;
}

bool isOld(FileSystem& files, const std::string& path) {
    const auto info = files.info(path);
    if (!info) return false;
    const std::chrono::nanoseconds now = Clock::slot().current().wallTime().time_since_epoch();
    return now - std::chrono::nanoseconds(info->modifiedNanoseconds) > std::chrono::hours(1);
}

}  // namespace

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

Result<void> replaceFile(FileSystem& files, const std::string& path, std::string_view contents, Kept kept) {
    const std::string temporary = temporaryPath(path);
    const auto former = kept == Kept::Document ? files.info(path) : Result<FileSystem::Info>(Error());
    const bool isPrivate = kept == Kept::Private || former;  // a former one's mode is given before any byte
    const auto mode = isPrivate ? FileSystem::Mode::CreateNew : FileSystem::Mode::CreateNewDocument;
    const auto write = [&]() -> Result<void> {
        auto file = files.open(temporary, mode);
        if (!file && file.error().systemError == EEXIST) {  // left by a process that died with this id
            if (auto removed = files.remove(temporary); !removed) return removed;
            file = files.open(temporary, mode);
        }
        if (!file) return std::move(file).error();
        if (former) (void)(*file)->setPermissions(former->permissions);  // else it is its owner's alone
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

void removeLeftOver(FileSystem& files, const std::string& path, LeftOver which) {
    const std::string folder = directoryOf(path);
    const auto names = files.list(folder);
    if (!names) return;
    const std::string name = path.substr(path.find_last_of('/') + 1);  // npos + 1 is 0
    for (const std::string& found : *names) {
        const auto process = processOf(found, name);
        if (!process) continue;
        const std::string left = (folder + "/").append(found);
        if (which == LeftOver::All || (!isAlive(*process) && isOld(files, left))) (void)files.remove(left);
    }
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
