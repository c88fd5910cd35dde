// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <functional>
#include <unordered_map>
#include <utility>

namespace kx {

/// Keeps what was used lately, between `capacity` and twice as many entries: two generations, of which the
/// older one is dropped whole when the newer one is full. A hit in the older one moves the entry over. Not
/// thread-safe.
template <class Key, class Value, class Hash = std::hash<Key>>
class RecentCache {
  public:
    explicit RecentCache(std::size_t capacity) : capacity_(capacity) {}

    /// nullptr if it is not there; valid until the next add(). `key` may be anything that the hash and the
    /// keys' equality know, if the hash says that it is transparent.
    template <class Query>
    Value* find(const Query& key) {
        if (const auto found = newer_.find(key); found != newer_.end()) return &found->second;
        if (older_.empty()) return nullptr;
        const auto found = older_.find(key);
        if (found == older_.end()) return nullptr;
        auto entry = older_.extract(found);
        makeRoom();
        return &newer_.insert(std::move(entry)).position->second;
    }

    Value& add(Key key, Value value) {
        makeRoom();
        return newer_.insert_or_assign(std::move(key), std::move(value)).first->second;
    }

    void clear() {
        newer_.clear();
        older_.clear();
    }

  private:
    using Generation = std::unordered_map<Key, Value, Hash, std::equal_to<>>;

    void makeRoom() {
        if (newer_.size() < capacity_) return;
        older_ = std::move(newer_);
        newer_.clear();
    }

    std::size_t capacity_;
    Generation newer_;
    Generation older_;
};

}  // namespace kx
