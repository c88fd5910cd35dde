// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

class DefaultsSnapshot;

/// The user's settings of one application: keys to property-list values, in memory, read from and flushed to
/// one property-list file per application identifier under the XDG configuration folder. Any thread.
///
/// Processes with the same identifier share the file: a flush merges key by key, so that none loses another's
/// keys. What another process wrote is seen at the next flush that has something to write.
class KX_EXPORT NSUserDefaults : public Subclass<NSUserDefaults, NSObject> {
  public:
    /// The defaults of the main bundle's identifier. Made at first need, lives as long as the process.
    [[nodiscard]] static NSUserDefaults& standardUserDefaults();

    /// kx::make<NSUserDefaults>("org.example.app"): the defaults of any identifier, read now. Two objects of
    /// one identifier behave as two processes do. Without a home, or with an empty identifier, they live in
    /// memory.
    bool init(std::string_view identifier);

    ~NSUserDefaults() override;

    /// The value, null if the key is not set.
    [[nodiscard]] Value objectForKey(std::string_view key) const;
    /// The value if it is a text; another type counts as not set.
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;
    /// The same without a copy or a lock: the view is valid until this thread asks any NSUserDefaults again,
    /// or ends; changes made meanwhile, on whichever thread, leave it alone.
    [[nodiscard]] std::optional<std::string_view> stringViewForKey(std::string_view key) const;

    /// Sets a property-list value; null removes the key. An equal value marks nothing to flush; an object,
    /// which no property list holds, is a caller error, as is a null inside an array or dictionary. It stays
    /// in memory until synchronize().
    void setObject(std::string_view key, Value value);
    using Setting = std::pair<std::string_view, Value>;
    /// Sets values that belong together as one change: where one of them differs, the next flush writes all,
    /// whatever another process has put in the place of the others meanwhile.
    void setObjects(std::initializer_list<Setting> settings) { set({settings.begin(), settings.size()}); }
    void removeObjectForKey(std::string_view key) { setObject(key, {}); }

    /// Flushes what changed since the last flush, which nothing else does, the exit of the process included;
    /// without a change it makes no system call. True if everything set so far is in the file; false (one log
    /// line until it succeeds again) where it cannot be written: it is kept in memory, and the next call
    /// tries again. Waits while another process flushes.
    bool synchronize();

    /// Another number after every change, own or merged from the file; one atomic load.
    [[nodiscard]] std::uint64_t version() const noexcept { return version_.load(std::memory_order_acquire); }

  protected:
    NSUserDefaults();

  private:
    struct State;

    void set(std::span<const Setting> settings);
    [[nodiscard]] const DefaultsSnapshot* readableSnapshot() const;
    [[nodiscard]] Value valueUnderLock(std::string_view key) const;
    void noteChange();
    void adoptFile(std::uint64_t upTo);

    mutable std::atomic<const DefaultsSnapshot*> published_{
        nullptr};  // owned by the state; null once it is stale
    std::atomic<std::uint64_t> version_{1};
    std::unique_ptr<State> state_;
};

}  // namespace kx
