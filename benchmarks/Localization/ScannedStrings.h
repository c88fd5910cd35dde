// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

/// The least work that makes a table of texts ready: read the file, find the quotes, insert slices into a
/// table that has the right size from the start. Knows no escapes and no comments.
class ScannedStrings {
  public:
    ScannedStrings(const std::string& path, std::size_t entries);
    ~ScannedStrings();

    [[nodiscard]] std::optional<std::string_view> lookUp(std::string_view key) const;

  private:
    struct Table;
    std::unique_ptr<Table> table_;
};
