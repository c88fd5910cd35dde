// SPDX-License-Identifier: MIT

#include <cstring>
#include <memory>
#include <new>
#include <string>

#include <sqlite3.h>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>
#include <KXFoundation/Platform/Services/SqliteVfs.h>

namespace kx {

namespace {

struct OpenFile {
    std::shared_ptr<FileSystem> files;
    std::unique_ptr<File> file;
    std::string directory;  // until the file's name in it is known to be on the disk
};

/// What SQLite allocates for a file: its own part first.
struct SqliteFile {
    sqlite3_file base;
    OpenFile* open;
};

OpenFile& of(sqlite3_file* file) {
    return *reinterpret_cast<SqliteFile*>(file)->open;
}

int codeOf(const Result<void>& done, int failure) {
    if (done) return SQLITE_OK;
    return done.error().kind == ErrorKind::Full ? SQLITE_FULL : failure;
}

int close(sqlite3_file* file) {
    delete reinterpret_cast<SqliteFile*>(file)->open;
    return SQLITE_OK;
}

int read(sqlite3_file* file, void* into, int count, sqlite3_int64 offset) {
    const std::span bytes(static_cast<std::byte*>(into), static_cast<std::size_t>(count));
    const auto got = of(file).file->readAt(static_cast<std::uint64_t>(offset), bytes);
    if (!got) return SQLITE_IOERR_READ;
    if (*got == bytes.size()) return SQLITE_OK;
    std::memset(bytes.data() + *got, 0, bytes.size() - *got);
    return SQLITE_IOERR_SHORT_READ;
}

int write(sqlite3_file* file, const void* from, int count, sqlite3_int64 offset) {
    const std::span bytes(static_cast<const std::byte*>(from), static_cast<std::size_t>(count));
    return codeOf(of(file).file->writeAt(static_cast<std::uint64_t>(offset), bytes), SQLITE_IOERR_WRITE);
}

int truncate(sqlite3_file* file, sqlite3_int64 size) {
    return codeOf(of(file).file->truncate(static_cast<std::uint64_t>(size)), SQLITE_IOERR_TRUNCATE);
}

int sync(sqlite3_file* file, int) {
    OpenFile& open = of(file);
    if (const int code = codeOf(open.file->sync(), SQLITE_IOERR_FSYNC)) return code;
    if (open.directory.empty()) return SQLITE_OK;
    const int code = codeOf(open.files->syncDirectory(open.directory), SQLITE_IOERR_DIR_FSYNC);
    if (code == SQLITE_OK) open.directory.clear();
    return code;
}

int fileSize(sqlite3_file* file, sqlite3_int64* size) {
    const auto got = of(file).file->size();
    if (!got) return SQLITE_IOERR_FSTAT;
    *size = static_cast<sqlite3_int64>(*got);
    return SQLITE_OK;
}

int checkReservedLock(sqlite3_file*, int* isReserved) {
    *isReserved = 0;
    return SQLITE_OK;
}

constexpr sqlite3_io_methods kMethods{
    .iVersion = 1,
    .xClose = close,
    .xRead = read,
    .xWrite = write,
    .xTruncate = truncate,
    .xSync = sync,
    .xFileSize = fileSize,
    .xLock = [](sqlite3_file*, int) { return SQLITE_OK; },
    .xUnlock = [](sqlite3_file*, int) { return SQLITE_OK; },
    .xCheckReservedLock = checkReservedLock,
    .xFileControl = [](sqlite3_file*, int, void*) { return SQLITE_NOTFOUND; },
    .xSectorSize = [](sqlite3_file*) { return 4096; },
    .xDeviceCharacteristics = [](sqlite3_file*) { return 0; },
    .xShmMap = nullptr,
    .xShmLock = nullptr,
    .xShmBarrier = nullptr,
    .xShmUnmap = nullptr,
    .xFetch = nullptr,
    .xUnfetch = nullptr,
};

int open(sqlite3_vfs*, const char* name, sqlite3_file* file, int flags, int* outFlags) {
    file->pMethods = nullptr;
    if (!name) return SQLITE_CANTOPEN;
    auto files = FileSystem::slot().shared();
    const bool writes = (flags & SQLITE_OPEN_READWRITE) != 0;
    auto opened = files->open(name, writes ? FileSystem::Mode::ReadWrite : FileSystem::Mode::Read);
    if (!opened && writes && opened.error().kind == ErrorKind::Denied) {
        opened = files->open(name, FileSystem::Mode::Read);
        flags = (flags & ~(SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE)) | SQLITE_OPEN_READONLY;
    }
    if (!opened) return opened.error().kind == ErrorKind::Full ? SQLITE_FULL : SQLITE_CANTOPEN;
    reinterpret_cast<SqliteFile*>(file)->open =
        new OpenFile{std::move(files), std::move(*opened), directoryOf(name)};
    file->pMethods = &kMethods;
    if (outFlags) *outFlags = flags;
    return SQLITE_OK;
}

int remove(sqlite3_vfs*, const char* name, int syncs) {
    FileSystem& files = FileSystem::slot().current();
    const auto removed = files.remove(name);
    if (!removed && removed.error().kind == ErrorKind::Missing) return SQLITE_IOERR_DELETE_NOENT;
    if (!removed) return SQLITE_IOERR_DELETE;
    return syncs ? codeOf(files.syncDirectory(directoryOf(name)), SQLITE_IOERR_DIR_FSYNC) : SQLITE_OK;
}

/// An empty journal counts as none, as SQLite's own adapter has it.
int access(sqlite3_vfs*, const char* name, int, int* answer) {
    const auto info = FileSystem::slot().current().info(name);
    *answer = info && info->size > 0;
    return info || info.error().kind == ErrorKind::Missing ? SQLITE_OK : SQLITE_IOERR_ACCESS;
}

int fullPath(sqlite3_vfs*, const char* name, int size, char* into) {
    if (std::strlen(name) >= static_cast<std::size_t>(size)) return SQLITE_CANTOPEN;
    std::strcpy(into, name);
    return SQLITE_OK;
}

sqlite3_vfs* makeVfs(const SqliteModule& sqlite) {
    static sqlite3_vfs vfs{};
    const sqlite3_vfs* const system = sqlite.findVfs(nullptr);
    vfs = *system;  // its random numbers, clock and pauses
    vfs.iVersion = 1;
    vfs.szOsFile = sizeof(SqliteFile);
    vfs.mxPathname = 4096;
    vfs.pNext = nullptr;
    vfs.zName = "kx-files";
    vfs.xOpen = open;
    vfs.xDelete = remove;
    vfs.xAccess = access;
    vfs.xFullPathname = fullPath;
    sqlite.registerVfs(&vfs, 0);
    return &vfs;
}

}  // namespace

const char* sqliteVfsOverFileSystem(const SqliteModule& sqlite) {
    static const sqlite3_vfs* const vfs = makeVfs(sqlite);
    return vfs->zName;
}

}  // namespace kx
