// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <thread>

#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx {

namespace {

Error failed(const std::string& path) {
    return Error::fromErrno(errno, path);
}

Result<void> done(int answer, const std::string& path) {
    if (answer != 0) return failed(path);
    return {};
}

/// The path for a system call, which ends at the first zero byte: with one inside it would name another file.
/// No file has the empty name.
const char* systemPath(const std::string& path) {
    return path.find('\0') == std::string::npos ? path.c_str() : "";
}

template <class Call>
auto untilUninterrupted(Call call) {
    auto answer = call();
    while (answer < 0 && errno == EINTR) answer = call();
    return answer;
}

constexpr std::chrono::microseconds kLongestSleep{2000};

class PosixMapping final : public FileMapping {
  public:
    PosixMapping(void* start, std::size_t size) : FileMapping({static_cast<std::byte*>(start), size}) {}
    ~PosixMapping() override { ::munmap(bytes().data(), bytes().size()); }
};

class PosixFile final : public File {
  public:
    PosixFile(int descriptor, std::string path) : descriptor_(descriptor), path_(std::move(path)) {}
    ~PosixFile() override { ::close(descriptor_); }

    Result<std::size_t> readAt(std::uint64_t offset, std::span<std::byte> into) override {
        std::size_t total = 0;
        while (total < into.size()) {
            const ssize_t got = untilUninterrupted([&] {
                return ::pread(descriptor_, into.data() + total, into.size() - total,
                               static_cast<off_t>(offset + total));
            });
            if (got < 0) return failed(path_);
            if (got == 0) break;
            total += static_cast<std::size_t>(got);
        }
        return total;
    }

    Result<void> writeAt(std::uint64_t offset, std::span<const std::byte> bytes) override {
        while (!bytes.empty()) {
            const ssize_t put = untilUninterrupted([&] {
                return ::pwrite(descriptor_, bytes.data(), bytes.size(), static_cast<off_t>(offset));
            });
            if (put < 0) return failed(path_);
            offset += static_cast<std::uint64_t>(put);
            bytes = bytes.subspan(static_cast<std::size_t>(put));
        }
        return {};
    }

    Result<std::uint64_t> size() override {
        struct stat status;
        if (::fstat(descriptor_, &status) != 0) return failed(path_);
        return static_cast<std::uint64_t>(status.st_size);
    }

    Result<std::uint64_t> identity() override {
        struct stat status;
        if (::fstat(descriptor_, &status) != 0) return failed(path_);
        return static_cast<std::uint64_t>(status.st_ino);
    }

    Result<void> setPermissions(std::uint32_t permissions) override {
        return done(::fchmod(descriptor_, permissions), path_);
    }

    Result<void> truncate(std::uint64_t size) override {
        return done(::ftruncate(descriptor_, static_cast<off_t>(size)), path_);
    }

    Result<void> sync() override { return done(::fdatasync(descriptor_), path_); }

    Result<void> lock(Lock kind) override {
        using Clock = std::chrono::steady_clock;
        const int operation = (kind == Lock::Shared ? LOCK_SH : LOCK_EX) | LOCK_NB;
        const auto end = Clock::now() + kLongestLock;
        // flock() knows no time-out. Whoever holds the lock is done within milliseconds, so the sleeps begin
        // short.
        for (auto sleep = std::chrono::microseconds(50);; sleep = std::min(2 * sleep, kLongestSleep)) {
            if (untilUninterrupted([&] { return ::flock(descriptor_, operation); }) == 0) return {};
            if (errno != EWOULDBLOCK) return failed(path_);
            if (Clock::now() >= end) return Error{ErrorKind::Busy, EWOULDBLOCK, path_};
            std::this_thread::sleep_for(sleep);
        }
    }
    void unlock() override { ::flock(descriptor_, LOCK_UN); }

    Result<std::unique_ptr<FileMapping>> map(std::uint64_t size, Access access) override {
        const int protection = access == Access::Read ? PROT_READ : PROT_READ | PROT_WRITE;
        void* start = ::mmap(nullptr, size, protection, MAP_SHARED, descriptor_, 0);
        if (start == MAP_FAILED) return failed(path_);
        return std::unique_ptr<FileMapping>(std::make_unique<PosixMapping>(start, size));
    }

  private:
    int descriptor_;
    std::string path_;
};

class PosixFileSystem final : public FileSystem {
  public:
    Result<std::unique_ptr<File>> open(const std::string& path, Mode mode) override {
        int flags = O_CLOEXEC;
        mode_t permissions = 0600;
        switch (mode) {
            case Mode::Read:
                flags |= O_RDONLY | O_NONBLOCK;
                break;  // a pipe in a file's place must not block
            case Mode::ReadWrite:
                flags |= O_RDWR | O_CREAT;
                break;
            case Mode::CreateNewDocument:
                permissions = 0666;
                [[fallthrough]];
            case Mode::CreateNew:
                flags |= O_RDWR | O_CREAT | O_EXCL;
                break;
        }
        const int descriptor =
            untilUninterrupted([&] { return ::open(systemPath(path), flags, permissions); });
        if (descriptor < 0) return failed(path);
        return std::unique_ptr<File>(std::make_unique<PosixFile>(descriptor, path));
    }

    Result<Info> info(const std::string& path) override {
        struct stat status;
        if (::stat(systemPath(path), &status) != 0) return failed(path);
        const auto kind = S_ISREG(status.st_mode)   ? Info::Kind::File
                          : S_ISDIR(status.st_mode) ? Info::Kind::Directory
                                                    : Info::Kind::Other;
        return Info{kind, static_cast<std::uint64_t>(status.st_size),
                    status.st_mtim.tv_sec * 1'000'000'000 + status.st_mtim.tv_nsec, status.st_ino,
                    status.st_mode & 07777U};
    }

    Result<std::vector<std::string>> list(const std::string& directory) override {
        DIR* stream = ::opendir(systemPath(directory));
        if (!stream) return failed(directory);
        std::vector<std::string> names;
        // Safe over a stream of one's own.
        while (const dirent* entry = ::readdir(stream)) {  // NOLINT(concurrency-mt-unsafe)
            const std::string_view name = entry->d_name;
            if (name != "." && name != "..") names.emplace_back(name);
        }
        ::closedir(stream);
        return names;
    }

    Result<void> rename(const std::string& from, const std::string& to) override {
        return done(::rename(systemPath(from), systemPath(to)), to);
    }

    Result<void> remove(const std::string& path) override { return done(::remove(systemPath(path)), path); }

    Result<void> makeDirectory(const std::string& path) override {
        if (::mkdir(systemPath(path), 0700) == 0) return {};
        if (errno != EEXIST) return failed(path);
        auto found = info(path);
        if (found && found->kind == Info::Kind::Directory) return {};
        return Error::fromErrno(ENOTDIR, path);
    }

    Result<void> syncDirectory(const std::string& path) override {
        const int descriptor = ::open(systemPath(path), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
        if (descriptor < 0) return failed(path);
        auto answer = done(::fsync(descriptor), path);
        ::close(descriptor);
        return answer;
    }
};

}  // namespace

std::shared_ptr<FileSystem> FileSystem::makeDefault() {
    return std::make_shared<PosixFileSystem>();
}

}  // namespace kx
