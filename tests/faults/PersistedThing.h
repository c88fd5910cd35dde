// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace kx::testing {

/// Something that the library keeps on disk, as the fault tests see it: texts under names.
class PersistedThing {
  public:
    virtual ~PersistedThing() = default;

    /// Puts the text under the name; true once it is there for good.
    virtual bool save(const std::string& name, const std::string& text) = 0;
    [[nodiscard]] virtual std::optional<std::string> load(const std::string& name) = 0;
    /// Whether there is nothing beside what load() gives.
    [[nodiscard]] virtual bool isWhole() { return true; }
};

/// Its kind.
struct PersistedKind {
    const char* name;
    /// As the next start of the application opens it, in the user's folders.
    std::unique_ptr<PersistedThing> (*open)();
    /// A save that fails may leave nothing under its own name.
    bool dropsTheOldFirst = false;
    /// What a save answers says nothing of the disk.
    bool isSilent = false;
    bool isSlow = false;
};

[[nodiscard]] const std::vector<PersistedKind>& persistedKinds();
inline void PrintTo(const PersistedKind& kind, std::ostream* out) {
    *out << kind.name;
}

}  // namespace kx::testing
