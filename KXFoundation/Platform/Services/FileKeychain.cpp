// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Services/FileKeychain.h>

namespace kx {

namespace {

constexpr std::string_view kMagic = "KXKEYC01";
constexpr std::uint64_t kLargestFile = 64 << 20;

Error corrupt(const std::string& path) {
    return {ErrorKind::Corrupt, 0, path};
}

Value bytes(std::string_view text) {
    return Value::data(std::as_bytes(std::span(text)));
}

std::optional<std::string> text(const Value& value) {
    const auto data = value.asData();
    if (!data) return std::nullopt;
    return std::string(reinterpret_cast<const char*>(data->data()), data->size());
}

const std::uint8_t* raw(const std::string& text) {
    return reinterpret_cast<const std::uint8_t*>(text.data());
}

/// The file, absent if there is none. One larger than any of ours is damaged, and empty is damaged too.
Result<std::optional<std::string>> contentsOf(FileSystem& files, const std::string& path,
                                              std::uint64_t limit) {
    auto contents = readFile(files, path, limit);
    if (contents) return std::optional(std::move(*contents));
    if (contents.error().kind == ErrorKind::Missing) return std::optional<std::string>();
    if (contents.error().kind == ErrorKind::TooLarge) return std::optional(std::string());
    return std::move(contents).error();
}

}  // namespace

FileKeychain::FileKeychain(const std::string& folder, const SodiumModule& sodium)
    : files_(FileSystem::slot().shared()),
      path_(folder + "/keychain"),
      keyPath_(folder + "/keychain.key"),
      sodium_(sodium) {}

Result<std::string> FileKeychain::copy(const KeychainItem& item) {
    auto contents = readUnlessBeingChanged();
    if (!contents) return std::move(contents).error();
    if (contents->damage) report(*contents->damage);
    const auto found = contents->items.find({std::string(item.service), std::string(item.account)});
    if (found == contents->items.end()) return Error{ErrorKind::Missing, 0, "keychain item"};
    return std::move(found->second);
}

Result<void> FileKeychain::add(const KeychainItem& item, std::string_view data) {
    if (data.size() > kMostBytes) return Error{ErrorKind::TooLarge, 0, "keychain item"};
    return change([&](Items& items) -> Result<void> {
        items[{std::string(item.service), std::string(item.account)}] = data;
        return {};
    });
}

Result<void> FileKeychain::remove(const KeychainItem& item) {
    // Without a file there is nothing to delete, and no folder and lock need be made.
    if (auto info = files_->info(path_); !info) return std::move(info).error();
    return change([&](Items& items) -> Result<void> {
        if (items.erase({std::string(item.service), std::string(item.account)}) > 0) return {};
        return Error{ErrorKind::Missing, 0, "keychain item"};
    });
}

Result<std::unique_ptr<File>> FileKeychain::lock(File::Lock kind) {
    return lockFile(*files_, path_ + ".lock", kind);
}

/// The box first: whoever makes one has made its key before.
Result<FileKeychain::Contents> FileKeychain::read() {
    const auto box = contentsOf(*files_, path_, kLargestFile);
    if (!box) return box.error();
    const auto key = contentsOf(*files_, keyPath_, SodiumModule::kKeySize);
    if (!key) return key.error();
    Contents contents;
    if (*key && (*key)->size() != SodiumModule::kKeySize) {
        contents.damage = corrupt(keyPath_);
    } else if (*key) {
        contents.key = **key;
    } else if (*box) {
        contents.damage = Error{ErrorKind::Missing, 0, keyPath_};
    }
    if (!*box || contents.damage) return contents;
    auto items = opened(contents.key, **box);
    if (items) {
        contents.items = std::move(*items);
    } else {
        contents.damage = items.error();
    }
    return contents;
}

/// Box and key may stem from before and after another process replaced damaged ones: then once more, while
/// nobody changes them.
Result<FileKeychain::Contents> FileKeychain::readUnlessBeingChanged() {
    auto contents = read();
    if (!contents || !contents->damage) return contents;
    const auto held = lock(File::Lock::Shared);
    return held ? read() : std::move(contents);
}

Result<FileKeychain::Items> FileKeychain::opened(const std::string& key, const std::string& box) const {
    if (!box.starts_with(kMagic) || box.size() < kMagic.size() + SodiumModule::kOverhead)
        return corrupt(path_);
    const std::size_t size = box.size() - kMagic.size();
    std::string list(size - SodiumModule::kOverhead, '\0');
    if (!sodium_.open(raw(key), kMagic.data(), kMagic.size(), raw(box) + kMagic.size(), size, list.data()))
        return corrupt(path_);
    const auto value = readPropertyList(std::as_bytes(std::span(list)));
    if (!value || value->type() != Value::Type::Array) return corrupt(path_);
    Items items;
    for (const Value& entry : value->elements()) {
        auto service = text(entry["service"]);
        auto account = text(entry["account"]);
        auto data = text(entry["data"]);
        if (!service || !account || !data) return corrupt(path_);
        items[{std::move(*service), std::move(*account)}] = std::move(*data);
    }
    return items;
}

Result<std::string> FileKeychain::sealed(const std::string& key, const Items& items) const {
    ArrayBuilder entries;
    for (const auto& [address, data] : items) {
        entries.add(DictionaryBuilder()
                        .set("service", bytes(address.first))
                        .set("account", bytes(address.second))
                        .set("data", bytes(data))
                        .build());
    }
    const auto list = writeBinaryPropertyList(entries.build());
    if (!list) return list.error();
    std::string box(kMagic);
    box.resize(kMagic.size() + SodiumModule::kOverhead + list->size());
    if (box.size() > kLargestFile) return Error{ErrorKind::TooLarge, 0, path_};
    sodium_.seal(raw(key), kMagic.data(), kMagic.size(), list->data(), list->size(),
                 reinterpret_cast<std::uint8_t*>(box.data()) + kMagic.size());
    return box;
}

Result<void> FileKeychain::change(const std::function<Result<void>(Items&)>& edit) {
    const auto held = lock(File::Lock::Exclusive);
    if (!held) return held.error();
    auto contents = read();
    if (!contents) return std::move(contents).error();
    if (contents->damage) report(*contents->damage);
    if (auto done = edit(contents->items); !done) return done;
    return write(std::move(*contents));
}

Result<void> FileKeychain::write(Contents contents) {
    std::call_once(tidied_, [this] {
        for (const std::string& path : {path_, keyPath_}) removeLeftOver(*files_, path, LeftOver::All);
    });
    if (contents.damage) {
        if (auto moved = setAside(path_); !moved) return moved;
        if (contents.key.empty()) {
            if (auto moved = setAside(keyPath_); !moved) return moved;
        }
    }
    if (contents.key.empty()) {
        auto made = makeKey();
        if (!made) return std::move(made).error();
        contents.key = std::move(*made);
    }
    const auto box = sealed(contents.key, contents.items);
    if (!box) return box.error();
    if (auto written = replaceFile(*files_, path_, *box); !written) return written;
    const MutexLock guard(mutex_);
    reported_ = false;
    return {};
}

Result<std::string> FileKeychain::makeKey() {
    std::string key(SodiumModule::kKeySize, '\0');
    sodium_.makeKey(reinterpret_cast<std::uint8_t*>(key.data()));
    if (auto written = replaceFile(*files_, keyPath_, key); !written) return std::move(written).error();
    return key;
}

/// Under the first free name; what is not there needs none.
Result<void> FileKeychain::setAside(const std::string& path) {
    for (unsigned number = 1;; ++number) {
        const std::string name = path + ".damaged-" + std::to_string(number);
        auto info = files_->info(name);
        if (info) continue;
        if (info.error().kind != ErrorKind::Missing) return std::move(info).error();
        auto moved = files_->rename(path, name);
        if (!moved && moved.error().kind == ErrorKind::Missing) return {};
        return moved;
    }
}

void FileKeychain::report(const Error& damage) {
    {
        const MutexLock guard(mutex_);
        if (std::exchange(reported_, true)) return;
    }
    log(LogLevel::Warning, "keychain: " + damage.where + " is " + std::string(errorKindName(damage.kind)) +
                               "; its items cannot be read, and it will be kept under another name");
}

}  // namespace kx
