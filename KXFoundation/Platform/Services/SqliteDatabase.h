// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Result.h>

struct sqlite3;

namespace kx {

/// An SQLite database over the FileSystem port (SqliteVfs.h). Private to Services; one thread at a time.
class SqliteDatabase {
  public:
    /// A parameter or a column: a number or a text, which may hold any bytes.
    struct Field {
        Field(std::int64_t value) : number(value), isText(false) {}
        Field(std::string value) : text(std::move(value)), isText(true) {}
        std::string text;
        std::int64_t number = 0;
        bool isText;
    };
    using Row = std::vector<Field>;

    /// Makes the file if it is missing. What cannot be written is opened to be read. What is no database is
    /// found out at the first statement: Corrupt. Unsupported where the module for SQLite is missing.
    static Result<SqliteDatabase> open(const std::string& path);

    /// Runs one statement with its parameters and answers all rows.
    Result<std::vector<Row>> run(const char* statement, const Row& parameters = {});
    /// Runs statements that answer nothing.
    Result<void> execute(const char* statements);

  private:
    struct Closer {
        void operator()(sqlite3* database) const;
    };
    explicit SqliteDatabase(sqlite3* database) : database_(database) {}
    [[nodiscard]] Error error() const;

    std::unique_ptr<sqlite3, Closer> database_;
};

}  // namespace kx
