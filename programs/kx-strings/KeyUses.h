// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <map>
#include <set>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Result.h>

#include "Finding.h"

namespace kxstrings {

/// The calls that look a key up, and which of their arguments it is, counted from 1.
using Functions = std::map<std::string, std::size_t, std::less<>>;

/// Those of the library.
[[nodiscard]] Functions libraryFunctions();

/// A key, or the beginning of one that is put together, in the argument of a call that looks it up.
struct LookedUpKey {
    std::string key;
    std::string file;
    std::size_t line;
    bool isBeginning = false;
};

/// What the sources of an application say of keys.
class KeyUses {
  public:
    explicit KeyUses(Functions functions) : functions_(std::move(functions)) {}

    /// Takes the C++ sources in a directory and those below it, hidden ones left out, or a single file. One
    /// that cannot be read is a finding; a path that leads to nothing an error.
    kx::Result<void> addSources(const std::string& path, Findings& findings);
    void addSource(const std::string& file, std::string_view contents);

    /// Whether any literal is the key, a call or not (keys stand in lists and constants too), or is made
    /// longer by `+` and begins the key. Outside of a call such a beginning must end in no letter or digit.
    [[nodiscard]] bool uses(std::string_view key) const;
    [[nodiscard]] const std::vector<LookedUpKey>& lookedUp() const { return lookedUp_; }
    [[nodiscard]] std::size_t sources() const { return sources_; }

  private:
    kx::Result<void> addFile(const std::string& file);
    void addBeginning(const std::string& text);
    [[nodiscard]] bool hasBeginningOf(std::string_view key) const;

    Functions functions_;
    std::unordered_set<std::string> literals_;
    std::set<std::string, std::less<>> beginnings_;  // none of which begins another
    std::vector<LookedUpKey> lookedUp_;
    std::size_t sources_ = 0;
};

}  // namespace kxstrings
