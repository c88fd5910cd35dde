// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "Finding.h"
#include "KeyUses.h"
#include "Tables.h"

namespace kxstrings {

/// Keys that nothing is to be said of; one that ends in `*` stands for all that begin so.
class IgnoredKeys {
  public:
    void add(std::string pattern) { patterns_.push_back(std::move(pattern)); }
    [[nodiscard]] bool contains(std::string_view key) const;

  private:
    std::vector<std::string> patterns_;
};

/// What differs between the languages: tables and keys that some lack, texts that count as missing, format
/// arguments. A language is held against English where it has the key, else against the first that has it.
void compareLanguages(const Tables& tables, const IgnoredKeys& ignored, Findings& findings);

/// What differs between tables and sources: keys that no source uses, keys looked up that no table has.
void compareWithSources(const Tables& tables, const KeyUses& uses, const IgnoredKeys& ignored,
                        Findings& findings);

}  // namespace kxstrings
