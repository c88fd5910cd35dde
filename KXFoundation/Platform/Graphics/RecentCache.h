#pragma once

#include <cstddef>
#include <unordered_map>
#include <utility>

namespace kx {

/// Keeps what was used lately, between `capacity` and twice as many entries: two generations, of which the
/// older one is dropped whole when the newer one is full. A hit in the older one moves the entry over. Not
/// thread-safe.
template <class Key, class Value, class Hash>
class RecentCache {
  public:
    explicit RecentCache(std::size_t capacity) : capacity_(capacity) {}

    /// nullptr if it is not there; valid until the next add().
    Value* find(const Key& key) {
        if (const auto found = newer_.find(key); found != newer_.end()) return &found->second;
        const auto found = older_.find(key);
        if (found == older_.end()) return nullptr;
        Value value = std::move(found->second);
        older_.erase(found);
        return &add(key, std::move(value));
    }

    Value& add(Key key, Value value) {
        if (newer_.size() >= capacity_) {
            older_ = std::move(newer_);
            newer_.clear();
        }
        return newer_.insert_or_assign(std::move(key), std::move(value)).first->second;
    }

    void clear() {
        newer_.clear();
        older_.clear();
    }

  private:
    std::size_t capacity_;
    std::unordered_map<Key, Value, Hash> newer_;
    std::unordered_map<Key, Value, Hash> older_;
};

}  // namespace kx
