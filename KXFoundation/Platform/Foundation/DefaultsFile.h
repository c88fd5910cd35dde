// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// The property-list file behind one NSUserDefaults (docs/formats/user-defaults.md), shared with the other
/// processes that hold the same identifier. Private to Foundation; one thread at a time.
class DefaultsFile {
  public:
    /// What to do with a key: the value to set, null to remove it.
    using Changes = std::map<std::string, Value>;

    /// The file of the identifier under the XDG configuration folder; without a home, or for an empty
    /// identifier, a file that is not there and cannot be written.
    explicit DefaultsFile(std::string_view identifier);

    /// Reads the file, if there is one. One that cannot be understood is set aside with a log line and counts
    /// as missing.
    Result<void> load();

    /// The dictionary that the file held when it was last read or written.
    [[nodiscard]] const Value& contents() const noexcept { return contents_; }

    /// Makes the changes to what the file holds now, so that keys of other processes stay, and writes it
    /// through to the disk. On failure the file holds the old or the new contents, and the changes may be
    /// made again.
    Result<void> apply(const Changes& changes);

  private:
    /// The file as last read or written. Holding it open keeps its identity from being given to a new file.
    struct Seen {
        FileSystem::Info info;
        std::unique_ptr<File> file;
    };
    using Damage = std::optional<Error>;  // why the file cannot be understood, if so

    Result<std::unique_ptr<File>> lock();
    Result<Damage> look();
    Result<void> lookUnderLock();
    Result<void> setAside(const Error& why);
    Result<void> write(const Value& dictionary);

    std::shared_ptr<FileSystem> files_;
    std::string path_;  // empty: no place for it
    Value contents_ = DictionaryBuilder().build();
    std::optional<Seen> seen_;
    bool isTidy_ = false;  // nothing of killed processes lies beside the file
};

}  // namespace kx
