// SPDX-License-Identifier: MIT

#include <mutex>
#include <utility>

#include <KXFoundation/Platform/Foundation/ApplicationFolder.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Services/BusAddress.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>
#include <KXFoundation/Platform/Services/KeychainChoice.h>
#include <KXFoundation/Platform/Services/SecretServiceKeychain.h>

namespace kx {

namespace {

using Store = KeychainCapability::Store;

/// Serves where nothing else can.
class NoKeychain final : public KeychainStore {
  public:
    Result<std::string> copy(const KeychainItem&) override { return Error{ErrorKind::Missing, 0, kWhere}; }
    Result<void> add(const KeychainItem&, std::string_view) override {
        return Error{ErrorKind::Unsupported, 0, kWhere};
    }
    Result<void> remove(const KeychainItem&) override { return Error{ErrorKind::Missing, 0, kWhere}; }

  private:
    static constexpr const char* kWhere = "keychain";
};

/// What has no identifier is told apart by its program's name.
std::string application() {
    return NSBundle::mainBundle()->bundleIdentifier().value_or(programName());
}

Result<std::shared_ptr<SecretServiceKeychain>> secretService(const std::optional<std::string>& busAddress,
                                                             std::chrono::milliseconds timeout) {
    if (!busAddress) return Error{ErrorKind::Missing, 0, "session bus"};
    auto left = timeout;
    const auto module = desktopModuleWithin(left);
    if (!module) return module.error();
    auto service =
        std::make_shared<SecretServiceKeychain>(*(*module)->secrets, *busAddress, application(), timeout);
    if (auto answered = service->probe(left); !answered) return std::move(answered).error();
    return service;
}

Result<std::shared_ptr<FileKeychain>> file() {
    const auto folder = baseDirectory(BaseDirectory::Data);
    if (!folder) return Error{ErrorKind::Missing, 0, "data folder"};
    const auto sodium = openModule<SodiumModule>("sodium");
    if (!sodium) return sodium.error();
    return std::make_shared<FileKeychain>(*folder + "/" + applicationFolder(application()), **sodium);
}

struct ProcessChoice {
    std::once_flag once;
    KeychainChoice choice;

    const KeychainChoice& made() {
        std::call_once(once, [&] { choice = chooseKeychain(sessionBusAddress(), kKeychainTimeout); });
        return choice;
    }
};

const KeychainChoice& processChoice() {
    static constinit ProcessState<ProcessChoice> state;
    return state.get().made();
}

/// The adapter in the slot: each process, one restarted by a test too, asks its own choice.
class ChosenKeychain final : public KeychainStore {
  public:
    Result<std::string> copy(const KeychainItem& item) override { return processChoice().store->copy(item); }
    Result<void> add(const KeychainItem& item, std::string_view data) override {
        return processChoice().store->add(item, data);
    }
    Result<void> remove(const KeychainItem& item) override { return processChoice().store->remove(item); }
};

}  // namespace

KeychainChoice chooseKeychain(const std::optional<std::string>& busAddress,
                              std::chrono::milliseconds timeout) {
    const auto service = secretService(busAddress, timeout);
    if (service) return {*service, {Store::SecretService, "the Secret Service answers"}};
    const std::string why = "no Secret Service (" + service.error().message() + ")";
    const auto inFile = file();
    if (inFile) return {*inFile, {Store::File, why}};
    return {std::make_shared<NoKeychain>(),
            {Store::None, why + ", no encrypted file (" + inFile.error().message() + ")"}};
}

KeychainCapability keychainCapability() {
    return processChoice().capability;
}

PortSlot<KeychainStore>& KeychainStore::slot() {
    static constinit PortSlot<KeychainStore> slot;
    return slot;
}

std::shared_ptr<KeychainStore> KeychainStore::makeDefault() {
    return std::make_shared<ChosenKeychain>();
}

}  // namespace kx
