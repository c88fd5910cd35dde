// SPDX-License-Identifier: MIT

#include <cerrno>

#include <sqlite3.h>

#include <KXFoundation/Platform/Services/SqliteDatabase.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>
#include <KXFoundation/Platform/Services/SqliteVfs.h>

namespace kx {

namespace {

ErrorKind kindOf(int code) {
    switch (code & 0xFF) {
        case SQLITE_CORRUPT:
        case SQLITE_NOTADB:
            return ErrorKind::Corrupt;
        case SQLITE_FULL:
            return ErrorKind::Full;
        case SQLITE_CANTOPEN:
        case SQLITE_READONLY:
        case SQLITE_PERM:
            return ErrorKind::Denied;
        case SQLITE_BUSY:
        case SQLITE_LOCKED:
            return ErrorKind::Busy;
        default:
            return ErrorKind::Failed;
    }
}

/// The module's calls; there once a database is open.
const SqliteModule& sqlite() {
    return *sqliteModule();
}

using Statement = std::unique_ptr<sqlite3_stmt, decltype([](sqlite3_stmt* s) { sqlite().finalize(s); })>;

void bind(sqlite3_stmt* statement, const SqliteDatabase::Row& parameters) {
    int index = 0;
    for (const auto& field : parameters) {
        ++index;
        if (field.isText)
            sqlite().bindText64(statement, index, field.text.data(), field.text.size(), SQLITE_STATIC,
                                SQLITE_UTF8);
        else
            sqlite().bindInt64(statement, index, field.number);
    }
}

SqliteDatabase::Row rowOf(sqlite3_stmt* statement) {
    SqliteDatabase::Row row;
    for (int column = 0; column < sqlite().columnCount(statement); ++column) {
        if (sqlite().columnType(statement, column) == SQLITE_INTEGER) {
            row.emplace_back(sqlite().columnInt64(statement, column));
            continue;
        }
        const auto* const text = static_cast<const char*>(sqlite().columnBlob(statement, column));
        const auto size = static_cast<std::size_t>(sqlite().columnBytes(statement, column));
        row.emplace_back(std::string(text ? text : "", size));
    }
    return row;
}

}  // namespace

void SqliteDatabase::Closer::operator()(sqlite3* database) const {
    sqlite().close(database);
}

Error SqliteDatabase::error() const {
    const ErrorKind kind = kindOf(sqlite().errorCode(database_.get()));
    return {kind, kind == ErrorKind::Full ? ENOSPC : 0,
            std::string("photo index: ") + sqlite().errorMessage(database_.get())};
}

Result<SqliteDatabase> SqliteDatabase::open(const std::string& path) {
    const SqliteModule* const module = sqliteModule();
    if (!module) return Error{ErrorKind::Unsupported, 0, "photo index: no module for it"};
    sqlite3* handle = nullptr;
    const int code = module->openV2(path.c_str(), &handle, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                                    sqliteVfsOverFileSystem(*module));
    SqliteDatabase database(handle);
    if (!handle) return Error{ErrorKind::Failed, 0, "photo index: no memory"};
    if (code != SQLITE_OK) return database.error();
    // The whole state of the disk lies in the file and its journal; nothing is trusted to be written later.
    if (auto set = database.execute("PRAGMA temp_store=MEMORY; PRAGMA synchronous=EXTRA;"); !set)
        return std::move(set).error();
    return database;
}

Result<std::vector<SqliteDatabase::Row>> SqliteDatabase::run(const char* text, const Row& parameters) {
    sqlite3_stmt* prepared = nullptr;
    if (sqlite().prepareV2(database_.get(), text, -1, &prepared, nullptr) != SQLITE_OK) return error();
    const Statement statement(prepared);
    bind(prepared, parameters);
    std::vector<Row> rows;
    int code = 0;
    while ((code = sqlite().step(prepared)) == SQLITE_ROW) rows.push_back(rowOf(prepared));
    if (code != SQLITE_DONE) return error();
    return rows;
}

Result<void> SqliteDatabase::execute(const char* statements) {
    if (sqlite().execute(database_.get(), statements, nullptr, nullptr, nullptr) != SQLITE_OK) return error();
    return {};
}

}  // namespace kx
