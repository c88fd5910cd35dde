// SPDX-License-Identifier: MIT

#include "benchmarks/Localization/ScannedStrings.h"

#include <cstdlib>
#include <cstring>

#include <absl/container/flat_hash_map.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

struct ScannedStrings::Table {
    std::string text;
    absl::flat_hash_map<std::string_view, std::string_view> slices;
};

namespace {

std::string contents(const std::string& path) {
    const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    struct stat info {};
    if (file < 0 || fstat(file, &info) != 0) std::abort();
    std::string text(static_cast<std::size_t>(info.st_size), '\0');
    if (read(file, text.data(), text.size()) != info.st_size) std::abort();
    close(file);
    return text;
}

/// What stands between the next two quotes; `at` moves behind them, to the end where there are none.
std::string_view quoted(const char*& at, const char* end) {
    const auto find = [end](const char* from) {
        return static_cast<const char*>(std::memchr(from, '"', static_cast<std::size_t>(end - from)));
    };
    const char* const opening = find(at);
    if (!opening) {
        at = end;
        return {};
    }
    const char* const closing = find(opening + 1);
    at = closing + 1;
    return {opening + 1, static_cast<std::size_t>(closing - opening - 1)};
}

}  // namespace

ScannedStrings::ScannedStrings(const std::string& path, std::size_t entries)
    : table_(std::make_unique<Table>()) {
    table_->text = contents(path);
    table_->slices.reserve(entries);
    const char* at = table_->text.data();
    const char* const end = at + table_->text.size();
    while (at < end) {
        const std::string_view key = quoted(at, end);
        if (at < end) table_->slices.emplace(key, quoted(at, end));
    }
}

ScannedStrings::~ScannedStrings() = default;

std::optional<std::string_view> ScannedStrings::lookUp(std::string_view key) const {
    const auto found = table_->slices.find(key);
    if (found == table_->slices.end()) return std::nullopt;
    return found->second;
}
