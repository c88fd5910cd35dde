// SPDX-License-Identifier: MIT

#include <cstring>
#include <new>
#include <utility>

#include <KXFoundation/Platform/Foundation/CacheEntry.h>
#include <KXFoundation/Platform/Foundation/CacheMemory.h>

namespace kx {

CacheEntry* CacheEntry::make(std::string_view key, Value value, const Facts& facts) {
    void* memory = cacheMemory::allocate(sizeof(CacheEntry) + key.size());
    auto* entry = new (memory) CacheEntry(std::move(value), static_cast<std::uint32_t>(key.size()), facts);
    std::memcpy(reinterpret_cast<char*>(entry + 1), key.data(), key.size());
    return entry;
}

void CacheEntry::destroy(CacheEntry* entry) noexcept {
    const std::size_t size = sizeof(CacheEntry) + entry->keySize;
    entry->~CacheEntry();
    cacheMemory::release(entry, size);
}

}  // namespace kx
