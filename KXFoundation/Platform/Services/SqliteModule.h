// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

struct sqlite3;
struct sqlite3_stmt;
struct sqlite3_vfs;

/// The table between the library and its module for SQLite (Modules/SqliteModule.cpp): the calls of its C
/// interface that are used here, as its manual describes them. Private to Services.
namespace kx {

struct SqliteModule {
    static constexpr std::uint32_t kVersion = 1;

    std::uint32_t version;
    int (*openV2)(const char* path, sqlite3** database, int flags, const char* vfs);
    int (*close)(sqlite3* database);
    int (*errorCode)(sqlite3* database);
    const char* (*errorMessage)(sqlite3* database);
    int (*execute)(sqlite3* database, const char* statements,
                   int (*takeRow)(void* context, int count, char** values, char** names), void* context,
                   char** message);

    int (*prepareV2)(sqlite3* database, const char* text, int size, sqlite3_stmt** statement,
                     const char** rest);
    int (*finalize)(sqlite3_stmt* statement);
    int (*step)(sqlite3_stmt* statement);
    int (*bindInt64)(sqlite3_stmt* statement, int index, long long value);
    int (*bindText64)(sqlite3_stmt* statement, int index, const char* text, unsigned long long size,
                      void (*release)(void*), unsigned char encoding);
    int (*columnCount)(sqlite3_stmt* statement);
    int (*columnType)(sqlite3_stmt* statement, int column);
    long long (*columnInt64)(sqlite3_stmt* statement, int column);
    const void* (*columnBlob)(sqlite3_stmt* statement, int column);
    int (*columnBytes)(sqlite3_stmt* statement, int column);

    sqlite3_vfs* (*findVfs)(const char* name);
    int (*registerVfs)(sqlite3_vfs* vfs, int isDefault);
};

/// The module's table, opened at the first call; nullptr if it is not there. Any thread.
[[nodiscard]] const SqliteModule* sqliteModule();

}  // namespace kx
