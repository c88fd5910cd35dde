// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Foundation/ApplicationFolder.h>
#include <KXFoundation/Platform/Foundation/DefaultsFile.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {

constexpr std::uint64_t kLargestFile = 64 << 20;

std::string pathFor(std::string_view identifier) {
    const auto folder = baseDirectory(BaseDirectory::Config);
    if (!folder || identifier.empty()) return {};
    return *folder + "/" + applicationFolder(identifier) + "/defaults.plist";
}

Result<Value> parsed(const std::string& text) {
    auto value = readPropertyList(std::as_bytes(std::span(text)));
    if (value && value->type() != Value::Type::Dictionary)
        return Error{ErrorKind::Corrupt, 0, "no dictionary"};
    return value;
}

/// XML, which a person can read, unless a text or date in it needs the binary form.
Result<std::string> written(const Value& dictionary) {
    auto text = writeXmlPropertyList(dictionary);
    return text ? text : writeBinaryPropertyList(dictionary);
}

Value changed(const Value& dictionary, const DefaultsFile::Changes& changes) {
    DictionaryBuilder builder;
    for (const auto& [key, value] : dictionary.members()) {
        if (!changes.contains(key)) builder.set(key, value);
    }
    for (const auto& [key, value] : changes) {
        if (!value.isNull()) builder.set(key, value);
    }
    return builder.build();
}

bool sameFile(const FileSystem::Info& a, const FileSystem::Info& b) {
    return a.identity == b.identity && a.size == b.size && a.modifiedNanoseconds == b.modifiedNanoseconds;
}

}  // namespace

DefaultsFile::DefaultsFile(std::string_view identifier)
    : files_(FileSystem::slot().shared()), path_(pathFor(identifier)) {}

Result<void> DefaultsFile::load() {
    if (path_.empty()) return {};
    auto damage = look();
    if (!damage) return std::move(damage).error();
    if (!*damage) return {};
    auto held = lock();
    if (!held) return std::move(held).error();
    return lookUnderLock();
}

Result<void> DefaultsFile::apply(const Changes& changes) {
    if (path_.empty()) return Error{ErrorKind::Missing, 0, "no folder for settings"};
    auto held = lock();
    if (!held) return std::move(held).error();
    if (auto looked = lookUnderLock(); !looked) return looked;
    return write(changed(contents_, changes));
}

Result<std::unique_ptr<File>> DefaultsFile::lock() {
    return lockFile(*files_, path_ + ".lock", File::Lock::Exclusive);
}

/// Reads the file if it is another than the one last seen. A missing one leaves what is known: nothing is
/// lost when somebody deletes it.
Result<DefaultsFile::Damage> DefaultsFile::look() {
    auto info = files_->info(path_);
    if (!info && info.error().kind == ErrorKind::Missing) return Damage();
    if (!info) return std::move(info).error();
    if (seen_ && sameFile(seen_->info, *info)) return Damage();
    seen_.reset();
    auto file = files_->open(path_, FileSystem::Mode::Read);
    if (!file) return std::move(file).error();
    auto text = readFile(*files_, path_, kLargestFile);
    if (!text && text.error().kind == ErrorKind::TooLarge) return Damage(text.error());
    if (!text) return std::move(text).error();
    auto value = parsed(*text);
    if (!value) return Damage(value.error());
    contents_ = std::move(*value);
    // The file may have been replaced since `info` was taken; then the next look reads once more.
    seen_ = Seen{*info, std::move(*file)};
    return Damage();
}

Result<void> DefaultsFile::lookUnderLock() {
    auto damage = look();
    if (!damage) return std::move(damage).error();
    if (*damage) return setAside(**damage);
    return {};
}

Result<void> DefaultsFile::setAside(const Error& why) {
    for (unsigned number = 1;; ++number) {
        const std::string name = path_ + ".damaged-" + std::to_string(number);
        auto info = files_->info(name);
        if (info) continue;
        if (info.error().kind != ErrorKind::Missing) return std::move(info).error();
        if (auto moved = files_->rename(path_, name); !moved) return moved;
        log(LogLevel::Warning,
            "user defaults: " + path_ + " is " + std::string(errorKindName(why.kind)) + "; kept as " + name);
        return {};
    }
}

Result<void> DefaultsFile::write(const Value& dictionary) {
    auto text = written(dictionary);
    if (!text) return std::move(text).error();
    if (text->size() > kLargestFile)
        return Error{ErrorKind::TooLarge, 0, path_};  // it could not be read again
    if (!std::exchange(isTidy_, true)) removeLeftOver(*files_, path_, LeftOver::All);
    if (auto done = replaceFile(*files_, path_, *text); !done) return done;
    contents_ = dictionary;
    seen_.reset();
    auto info = files_->info(path_);
    auto file = files_->open(path_, FileSystem::Mode::Read);
    if (info && file) seen_ = Seen{*info, std::move(*file)};  // else the next look reads the file again
    return {};
}

}  // namespace kx
