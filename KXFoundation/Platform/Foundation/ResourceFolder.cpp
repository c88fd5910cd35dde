// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <iterator>
#include <map>
#include <shared_mutex>
#include <span>
#include <system_error>
#include <utility>

#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Foundation/ResourceFolder.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

namespace {

constexpr std::string_view kInformation = "Info.plist";
constexpr std::uint64_t kLargestInformation = std::uint64_t{16} << 20;

/// Folders by every absolute path that led to them, the real one among them.
class FolderRegistry {
  public:
    std::shared_ptr<const ResourceFolder> find(std::string_view path) const {
        const std::shared_lock lock(mutex_);
        const auto found = folders_.find(path);
        return found == folders_.end() ? nullptr : found->second;
    }

    std::shared_ptr<const ResourceFolder> add(std::string_view path, std::string realPath) {
        const std::lock_guard lock(mutex_);
        auto& folder = folders_[realPath];
        if (!folder) folder = std::make_shared<const ResourceFolder>(std::move(realPath));
        if (path.starts_with('/')) folders_.try_emplace(std::string(path), folder);
        return folder;
    }

  private:
    mutable std::shared_mutex mutex_;
    std::map<std::string, std::shared_ptr<const ResourceFolder>, std::less<>> folders_;  // guarded by mutex_
};

constinit ProcessState<FolderRegistry> registry;

std::optional<std::string> realDirectory(std::string_view path) {
    if (path.empty() || path.find('\0') != path.npos) return std::nullopt;
    std::error_code error;
    std::string real = std::filesystem::canonical(path, error).string();
    if (error) return std::nullopt;
    const auto info = FileSystem::slot().current().info(real);
    if (!info || info.value().kind != FileSystem::Info::Kind::Directory) return std::nullopt;
    return real;
}

}  // namespace

struct ResourceFolder::Listing {
    explicit Listing(std::vector<std::string> unsorted)
        : names(std::move(unsorted)), kinds(std::make_unique<std::atomic<Kind>[]>(names.size())) {
        std::ranges::sort(names);
    }

    std::vector<std::string> names;
    std::unique_ptr<std::atomic<Kind>[]> kinds;  // of each name, once it was asked for
};

struct ResourceFolder::LoadedTable {
    std::string name;
    std::unique_ptr<const StringTable> table;
    const LoadedTable* next;
};

std::shared_ptr<const ResourceFolder> ResourceFolder::over(std::string_view path) {
    FolderRegistry& folders = registry.get();
    if (auto known = folders.find(path)) return known;
    auto real = realDirectory(path);
    if (!real) return nullptr;
    return folders.add(path, *std::move(real));
}

ResourceFolder::ResourceFolder(std::string path) : path_(std::move(path)) {}

ResourceFolder::~ResourceFolder() {
    delete listing_.load();
    for (const LoadedTable* table = tables_; table;) delete std::exchange(table, table->next);
}

/// Whether the error tells what is in the folder, not what the process lacks just then; that is logged once.
bool ResourceFolder::isAnswer(const Error& error) const {
    constexpr int kPassing[] = {EMFILE, ENFILE, ENOMEM, EAGAIN, EINTR};
    const bool isPassing = std::ranges::find(kPassing, error.systemError) != std::end(kPassing);
    const bool isNews = !isPassing || !hasComplained_.exchange(true);
    if (isNews && error.kind != ErrorKind::Missing) log(LogLevel::Warning, error.message());
    return !isPassing;
}

/// Null while the folder cannot be listed.
const ResourceFolder::Listing* ResourceFolder::listing() const {
    if (const Listing* known = listing_.load(std::memory_order_acquire)) return known;
    const std::lock_guard lock(reading_);
    if (const Listing* known = listing_.load()) return known;
    auto names = files_->list(path_);
    if (!names && !isAnswer(names.error())) return nullptr;
    auto listing = std::make_unique<const Listing>(names ? *std::move(names) : std::vector<std::string>());
    listing_.store(listing.get(), std::memory_order_release);
    return listing.release();
}

ResourceFolder::Kind ResourceFolder::kindOf(std::string_view name) const {
    const Listing* const all = listing();
    if (!all) return Kind::Nothing;
    const auto found = std::ranges::lower_bound(all->names, name, std::less<>());
    if (found == all->names.end() || *found != name) return Kind::Nothing;
    return kindAt(*all, static_cast<std::size_t>(found - all->names.begin()));
}

ResourceFolder::Kind ResourceFolder::kindAt(const Listing& listing, std::size_t index) const {
    std::atomic<Kind>& kind = listing.kinds[index];
    if (const Kind known = kind.load(std::memory_order_relaxed); known != Kind::Unasked) return known;
    const auto info = files_->info(below(listing.names[index]));
    if (!info && !isAnswer(info.error())) return Kind::Nothing;
    const Kind found = !info                                                    ? Kind::Nothing
                       : info.value().kind == FileSystem::Info::Kind::Directory ? Kind::Directory
                                                                                : Kind::File;
    kind.store(found, std::memory_order_relaxed);
    return found;
}

std::optional<std::string> ResourceFolder::pathOf(std::string_view name) const {
    if (kindOf(name) == Kind::Nothing) return std::nullopt;
    return below(name);
}

std::vector<std::string> ResourceFolder::directoriesEndingIn(std::string_view suffix) const {
    std::vector<std::string> found;
    const Listing* const all = listing();
    if (!all) return found;
    for (std::size_t i = 0; i < all->names.size(); ++i) {
        const std::string& name = all->names[i];
        if (name.size() <= suffix.size() || !name.ends_with(suffix)) continue;
        if (kindAt(*all, i) == Kind::Directory) found.push_back(name.substr(0, name.size() - suffix.size()));
    }
    std::ranges::sort(found);  // "pt-BR.lproj" comes before "pt.lproj", "pt" before "pt-BR"
    return found;
}

const Value& ResourceFolder::information() const {
    std::call_once(informationRead_, [this] { information_ = readInformation(); });
    return information_;
}

Value ResourceFolder::readInformation() const {
    if (kindOf(kInformation) == Kind::Nothing) return DictionaryBuilder().build();
    const std::string path = below(kInformation);
    auto value = [&]() -> Result<Value> {
        auto contents = readFile(*files_, path, kLargestInformation);
        if (!contents) return std::move(contents).error();
        return readPropertyList(std::as_bytes(std::span(*contents)));
    }();
    if (value && value->type() == Value::Type::Dictionary) return *std::move(value);
    const Error fault = value ? Error{ErrorKind::Corrupt, 0, "no dictionary"} : value.error();
    log(LogLevel::Warning, path + ": " + fault.message());
    return DictionaryBuilder().build();
}

const ResourceFolder::LoadedTable* ResourceFolder::loadedTable(std::string_view name) const noexcept {
    const LoadedTable* loaded = tables_.load(std::memory_order_acquire);
    while (loaded && loaded->name != name) loaded = loaded->next;
    return loaded;
}

const StringTable* ResourceFolder::table(std::string_view name) const {
    if (const LoadedTable* known = loadedTable(name)) return known->table.get();
    const std::string file = std::string(name) + ".strings";
    if (kindOf(file) != Kind::File) return nullptr;
    const std::lock_guard lock(reading_);
    if (const LoadedTable* known = loadedTable(name)) return known->table.get();
    auto table = StringTable::load(*files_, below(file));
    if (!table && !isAnswer(table.error())) return nullptr;
    auto loaded = std::make_unique<LoadedTable>(
        LoadedTable{std::string(name), table ? *std::move(table) : nullptr, tables_.load()});
    tables_.store(loaded.get(), std::memory_order_release);
    return loaded.release()->table.get();
}

const StringTable* ResourceFolder::defaultTable() const {
    if (const StringTable* known = defaultTable_.load(std::memory_order_acquire)) return known;
    const StringTable* const found = table("Localizable");
    defaultTable_.store(found, std::memory_order_release);
    return found;
}

}  // namespace kx
