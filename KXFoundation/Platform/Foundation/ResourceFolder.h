// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/StringTable.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// What one folder holds, read at first need and remembered: its names (one listing), what each of them is,
/// its Info.plist and its string tables. The folder is taken to stay as it is while the program runs. What
/// was asked once is answered without a lock and without a system call, but for names, kinds and
/// tables that the process could not read just then (too many open files): they are read again. Any thread.
/// Private to Foundation.
class ResourceFolder {
  public:
    /// The process's one object over the directory; absent if the path leads to none. A path that has been
    /// asked for before is answered from memory.
    [[nodiscard]] static std::shared_ptr<const ResourceFolder> over(std::string_view path);

    /// Over a path that may be missing: then it holds nothing. Not shared.
    explicit ResourceFolder(std::string path);
    ~ResourceFolder();
    ResourceFolder(const ResourceFolder&) = delete;
    ResourceFolder& operator=(const ResourceFolder&) = delete;

    [[nodiscard]] const std::string& path() const noexcept { return path_; }
    /// The path of what stands in the folder under this very name.
    [[nodiscard]] std::optional<std::string> pathOf(std::string_view name) const;
    /// The names of directories that end in the suffix, without it, sorted.
    [[nodiscard]] std::vector<std::string> directoriesEndingIn(std::string_view suffix) const;
    /// Info.plist; an empty dictionary if it is missing or damaged.
    [[nodiscard]] const Value& information() const;
    /// The table of `<name>.strings`; null if there is none.
    [[nodiscard]] const StringTable* table(std::string_view name) const;
    /// The table of Localizable.strings, which nearly every look-up wants.
    [[nodiscard]] const StringTable* defaultTable() const;

  private:
    enum class Kind : std::uint8_t { Unasked, File, Directory, Nothing };
    struct Listing;
    struct LoadedTable;

    [[nodiscard]] const Listing* listing() const;
    [[nodiscard]] Kind kindOf(std::string_view name) const;
    [[nodiscard]] Kind kindAt(const Listing& listing, std::size_t index) const;
    [[nodiscard]] bool isAnswer(const Error& error) const;
    [[nodiscard]] Value readInformation() const;
    [[nodiscard]] const LoadedTable* loadedTable(std::string_view name) const noexcept;
    [[nodiscard]] std::string below(std::string_view name) const { return (path_ + '/').append(name); }

    std::shared_ptr<FileSystem> files_ = FileSystem::slot().shared();
    std::string path_;
    mutable std::once_flag informationRead_;
    mutable Value information_;
    mutable std::atomic<bool> hasComplained_{false};
    mutable std::mutex reading_;                               // one thread sets listing_ or adds to tables_
    mutable std::atomic<const Listing*> listing_{nullptr};     // stays once it is set
    mutable std::atomic<const LoadedTable*> tables_{nullptr};  // a list that only grows
    mutable std::atomic<const StringTable*> defaultTable_{nullptr};
};

}  // namespace kx
