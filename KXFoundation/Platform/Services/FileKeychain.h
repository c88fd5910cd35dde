// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <utility>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Services/KeychainStore.h>
#include <KXFoundation/Platform/Services/SodiumModule.h>

namespace kx {

/// A keychain in an encrypted file whose key lies beside it (docs/formats/keychain-file.md), shared with the
/// other processes of the application. A file that cannot be understood counts as empty, with one log line,
/// and is set aside before a new one takes its place. Any thread.
class KX_EXPORT FileKeychain final : public KeychainStore {
  public:
    /// In that folder, which is made when it is needed. Asks the module for every byte: it must outlive this.
    FileKeychain(const std::string& folder, const SodiumModule& sodium);

    Result<std::string> copy(const KeychainItem& item) override;
    Result<void> add(const KeychainItem& item, std::string_view data) override;
    Result<void> remove(const KeychainItem& item) override;

  private:
    using Address = std::pair<std::string, std::string>;  // service and account
    using Items = std::map<Address, std::string>;
    struct Contents {
        Items items;
        std::string key;              // empty: there is none yet
        std::optional<Error> damage;  // why the items could not be understood, if so
    };

    Result<std::unique_ptr<File>> lock(File::Lock kind);
    Result<Contents> read();
    Result<Contents> readUnlessBeingChanged();
    [[nodiscard]] Result<Items> opened(const std::string& key, const std::string& box) const;
    [[nodiscard]] Result<std::string> sealed(const std::string& key, const Items& items) const;

    Result<void> change(const std::function<Result<void>(Items&)>& edit);
    Result<void> write(Contents contents);
    Result<std::string> makeKey();
    Result<void> setAside(const std::string& path);
    void report(const Error& damage);

    const std::shared_ptr<FileSystem> files_;
    const std::string path_;
    const std::string keyPath_;
    const SodiumModule& sodium_;
    std::once_flag tidied_;  // nothing of killed processes lies beside the files
    Mutex mutex_;
    bool reported_ KX_GUARDED_BY(mutex_) = false;  // the damage that is there has its line
};

}  // namespace kx
