#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// The user's settings of one application: keys to property-list values, in memory, read from and flushed to one
/// property-list file per application identifier under the XDG configuration folder. Any thread.
class KX_EXPORT NSUserDefaults : public Subclass<NSUserDefaults, NSObject> {
 public:
    /// The defaults of the main bundle's identifier. Made at first need, lives as long as the process.
    [[nodiscard]] static NSUserDefaults& standardUserDefaults();

    /// The value, null if the key is not set.
    [[nodiscard]] Value objectForKey(std::string_view key) const;
    /// The value if it is a text; another type counts as not set.
    [[nodiscard]] std::optional<std::string> stringForKey(std::string_view key) const;
    /// Sets a property-list value; null removes the key. An equal value marks nothing to flush; an object, which no
    /// property list holds, is a caller error.
    void setObject(std::string_view key, Value value);
    void removeObjectForKey(std::string_view key) { setObject(key, {}); }

    /// Flushes what changed since the last flush; without a change it makes no system call. True if everything
    /// set so far is in the file; false (one log line) where it cannot be written, and it is kept in memory.
    bool synchronize();

    /// Another number after every change, own or merged from the file; one atomic load.
    [[nodiscard]] std::uint64_t version() const noexcept;
};

}  // namespace kx
