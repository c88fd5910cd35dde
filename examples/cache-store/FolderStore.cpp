// SPDX-License-Identifier: MIT

#include "FolderStore.h"

#include <cctype>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iterator>

#include <KXFoundation/Platform/Foundation/NSKeyedArchiver.h>
#include <KXFoundation/Platform/Foundation/NSKeyedUnarchiver.h>

using namespace kx;
namespace fs = std::filesystem;

bool FolderStore::init(std::optional<std::string_view> path) {
    if (!NSObject::init() || !path || path->empty()) return false;
    folder_ = *path;
    queue_ = DispatchQueue::serial("FolderStore");
    std::error_code error;
    fs::create_directories(folder_, error);
    return fs::is_directory(folder_, error);
}

/// Letters and digits as they are, every other byte as %XX: no key leads out of the folder.
fs::path FolderStore::fileOf(std::string_view key) const {
    std::string name;
    for (const char letter : key) {
        const auto byte = static_cast<unsigned char>(letter);
        char code[4];
        std::snprintf(code, sizeof code, std::isalnum(byte) && byte < 128 ? "%c" : "%%%02X", byte);
        name += code;
    }
    return folder_ / (name + ".archive");
}

bool FolderStore::containsObjectForKey(Key key) {
    return cachePathForKey(key).has_value();
}

Value FolderStore::objectForKey(Key key) {
    if (!key) return {};
    const std::lock_guard lock(mutex_);
    std::ifstream file(fileOf(*key), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    const auto object = NSKeyedUnarchiver::unarchivedObject(std::as_bytes(std::span(bytes)));
    return object ? *object : Value();  // what is damaged is not there
}

void FolderStore::setObject(Value object, Key forKey) {
    if (object.isNull() || !forKey) return;
    const auto archive = NSKeyedArchiver::archivedDataWithRootObject(object);
    if (!archive) return;
    const std::lock_guard lock(mutex_);
    const fs::path file = fileOf(*forKey), beside = folder_ / "being written";
    std::error_code error;
    // Whole or not at all: a full disk, or an end of the process, leaves the former value.
    if (std::ofstream out(beside, std::ios::binary); out << *archive << std::flush)
        fs::rename(beside, file, error);
}

void FolderStore::removeObjectForKey(Key key) {
    if (!key) return;
    const std::lock_guard lock(mutex_);
    std::error_code error;
    fs::remove(fileOf(*key), error);
}

void FolderStore::removeAllObjects() {
    const std::lock_guard lock(mutex_);
    std::error_code error;
    for (const fs::path& file : files()) fs::remove(file, error);
}

void FolderStore::later(std::function<void(FolderStore&)> work) {
    queue_->async([self = self(), work = std::move(work)] { work(*self); });
}

void FolderStore::containsObjectForKey(Key key, KXCacheContains block) {
    if (!block) return;  // a query that nobody hears
    later([key = std::string(key.value_or("")), isKey = key.has_value(), block](FolderStore& store) {
        block(key, isKey && store.containsObjectForKey(key));
    });
}

void FolderStore::objectForKey(Key key, KXCacheObject block) {
    if (!block) return;
    later([key = std::string(key.value_or("")), isKey = key.has_value(), block](FolderStore& store) {
        block(key, isKey ? store.objectForKey(key) : Value());
    });
}

void FolderStore::setObject(Value object, Key forKey, KXCacheDone block) {
    later([object, key = std::string(forKey.value_or("")), isKey = forKey.has_value(),
           block](FolderStore& store) {
        if (isKey) store.setObject(object, key);
        if (block) block();
    });
}

void FolderStore::removeObjectForKey(Key key, KXCacheKeyDone block) {
    later([key = std::string(key.value_or("")), isKey = key.has_value(), block](FolderStore& store) {
        if (isKey) store.removeObjectForKey(key);
        if (block) block(key);
    });
}

void FolderStore::removeAllObjectsWithBlock(KXCacheDone block) {
    later([block](FolderStore& store) {
        store.removeAllObjects();
        if (block) block();
    });
}

std::vector<fs::path> FolderStore::files() const {
    std::vector<fs::path> found;
    std::error_code error;
    for (fs::directory_iterator at(folder_, error); !error && at != fs::directory_iterator();
         at.increment(error))
        if (at->path().extension() == ".archive") found.push_back(at->path());
    return found;
}

std::uint64_t FolderStore::totalCost() const {
    std::uint64_t bytes = 0;
    for (const fs::path& file : files()) {
        std::error_code error;
        const auto size = fs::file_size(file, error);
        if (!error) bytes += size;
    }
    return bytes;
}

std::optional<std::string> FolderStore::cachePathForKey(Key key) const {
    std::error_code error;
    if (!key || !fs::is_regular_file(fileOf(*key), error)) return std::nullopt;
    return fileOf(*key);
}

std::optional<double> FolderStore::ageOfObjectForKey(Key key) const {
    std::error_code error;
    const auto written = key ? fs::last_write_time(fileOf(*key), error) : fs::file_time_type();
    if (!key || error) return std::nullopt;
    return std::chrono::duration<double>(fs::file_time_type::clock::now() - written).count();
}
