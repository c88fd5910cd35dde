// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <mutex>
#include <utility>

#include <KXFoundation/Platform/Foundation/DefaultsFile.h>
#include <KXFoundation/Platform/Foundation/DefaultsSnapshot.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSUserDefaults.h>
#include <KXFoundation/Platform/Foundation/PropertyList.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

// Readers take an immutable snapshot of the table. Each thread keeps the snapshot that it read last alive, so
// that reading again costs one atomic load and a comparison, and nothing is freed under a view. A change
// makes the snapshot stale: reads then go to the table under the lock, one by one, until there were as many
// as the table has keys; only then is the table copied into a new snapshot. So neither a burst of changes nor
// one of alternating changes and reads copies the table more often than it pays.

namespace kx {

namespace {

const Value& valueIn(const DefaultsTable& table, std::string_view key) {
    static const Value kNull;
    const auto found = table.find(key);
    return found == table.end() ? kNull : found->second;
}

}  // namespace

struct NSUserDefaults::State {
    explicit State(std::string_view identifier) : file(identifier) {}

    std::mutex mutex;
    DefaultsTable table;  // guarded by mutex
    std::map<std::string, std::uint64_t>
        changes;  // not flushed yet, with the version of each; guarded by mutex
    std::shared_ptr<const DefaultsSnapshot> snapshot;  // guarded by mutex
    std::size_t staleReads = 0;                        // since the snapshot became stale; guarded by mutex
    std::atomic<bool> unflushed{false};                // whether there are changes

    std::mutex flushing;                // taken before mutex
    DefaultsFile file;                  // guarded by flushing
    std::optional<ErrorKind> reported;  // the lasting failure that has its log line; guarded by flushing
};

namespace {

/// What a thread's last read left it to look at.
struct LastRead {
    std::shared_ptr<const void> snapshot;
    Value value;
};

// Trivial thread locals, so that reading one is one instruction; `LastReadOwner` frees what hangs on them.
[[gnu::tls_model("initial-exec")]] constinit thread_local const void* lastSnapshot = nullptr;
[[gnu::tls_model("initial-exec")]] constinit thread_local LastRead* lastRead = nullptr;

struct LastReadOwner {
    LastReadOwner() { lastRead = new LastRead; }
    ~LastReadOwner() {
        lastSnapshot = nullptr;
        delete std::exchange(lastRead, nullptr);
    }
};

LastRead& lastReadOfThread() {
    static thread_local const LastReadOwner owner;
    if (!lastRead) lastRead = new LastRead;  // a read from a destructor that runs after the owner's: kept
    return *lastRead;
}

}  // namespace

NSUserDefaults::NSUserDefaults() = default;
NSUserDefaults::~NSUserDefaults() = default;

bool NSUserDefaults::init(std::string_view identifier) {
    if (!Super::init()) return false;
    state_ = std::make_unique<State>(identifier);
    if (auto loaded = state_->file.load(); !loaded) {
        state_->reported = loaded.error().kind;
        log(LogLevel::Warning, "user defaults: " + loaded.error().message());
    }
    for (const auto& [key, value] : state_->file.contents().members()) state_->table.emplace(key, value);
    return true;
}

/// The snapshot, kept alive for this thread; nullptr while there is none.
const DefaultsSnapshot* NSUserDefaults::readableSnapshot() const {
    const DefaultsSnapshot* snapshot = published_.load(std::memory_order_acquire);
    if (snapshot == lastSnapshot || !snapshot) [[likely]]
        return snapshot;
    LastRead& mine = lastReadOfThread();
    const std::lock_guard lock(state_->mutex);
    mine.snapshot = state_->snapshot;
    lastSnapshot = state_->snapshot.get();
    return state_->snapshot.get();
}

Value NSUserDefaults::valueUnderLock(std::string_view key) const {
    const std::lock_guard lock(state_->mutex);
    if (!state_->snapshot && ++state_->staleReads >= state_->table.size()) {
        state_->snapshot = std::make_shared<const DefaultsSnapshot>(state_->table);
        published_.store(state_->snapshot.get(), std::memory_order_release);
    }
    return valueIn(state_->table, key);
}

Value NSUserDefaults::objectForKey(std::string_view key) const {
    if (const DefaultsSnapshot* snapshot = readableSnapshot()) return snapshot->value(key);
    return valueUnderLock(key);
}

std::optional<std::string> NSUserDefaults::stringForKey(std::string_view key) const {
    const auto text = stringViewForKey(key);
    if (!text) return std::nullopt;
    return std::string(*text);
}

std::optional<std::string_view> NSUserDefaults::stringViewForKey(std::string_view key) const {
    if (const DefaultsSnapshot* snapshot = readableSnapshot()) return snapshot->text(key);
    LastRead& mine = lastReadOfThread();
    mine.value = valueUnderLock(key);
    return mine.value.asString();
}

/// The table has changed; the caller holds the mutex.
void NSUserDefaults::noteChange() {
    published_.store(nullptr, std::memory_order_relaxed);
    state_->snapshot.reset();
    state_->staleReads = 0;
    version_.fetch_add(1, std::memory_order_release);
}

void NSUserDefaults::setObject(std::string_view key, Value value) {
    set(std::array{Setting(key, std::move(value))});
}

void NSUserDefaults::set(std::span<const Setting> settings) {
    for (const auto& [key, value] : settings) {
        // As it will be kept, one level down in the file's dictionary.
        if (value.isNull() || isPropertyList(DictionaryBuilder().set(key, value).build())) continue;
        return callerError("NSUserDefaults: the value for \"" + std::string(key) + "\" is no property list");
    }
    const std::lock_guard lock(state_->mutex);
    DefaultsTable& table = state_->table;
    const auto isSet = [&](const Setting& setting) {
        return valueIn(table, setting.first) == setting.second;
    };
    if (std::ranges::all_of(settings, isSet)) return;
    noteChange();
    for (const auto& [key, value] : settings) {
        const auto place = table.find(key);
        if (place == table.end()) {
            if (!value.isNull()) table.emplace(key, value);
        } else if (value.isNull()) {
            table.erase(place);
        } else {
            place->second = value;
        }
        state_->changes.insert_or_assign(std::string(key), version());
    }
    state_->unflushed.store(true, std::memory_order_release);
}

bool NSUserDefaults::synchronize() {
    State& state = *state_;
    if (!state.unflushed.load(std::memory_order_acquire)) return true;
    const std::lock_guard flushing(state.flushing);
    const auto [changes, upTo] = [&] {
        const std::lock_guard lock(state.mutex);
        DefaultsFile::Changes values;
        for (const auto& change : state.changes)
            values.emplace(change.first, valueIn(state.table, change.first));
        return std::pair(std::move(values), version());
    }();
    if (changes.empty()) return true;  // another thread has just flushed them
    if (auto applied = state.file.apply(changes); !applied) {
        if (state.reported != applied.error().kind)
            log(LogLevel::Warning, "user defaults: " + applied.error().message());
        state.reported = applied.error().kind;
        return false;
    }
    state.reported.reset();
    adoptFile(upTo);
    return true;
}

/// Makes the file's contents ours, but for the keys that changed since version `upTo`, of which it knows
/// nothing.
void NSUserDefaults::adoptFile(std::uint64_t upTo) {
    State& state = *state_;
    const std::lock_guard lock(state.mutex);
    std::erase_if(state.changes, [&](const auto& change) { return change.second <= upTo; });
    state.unflushed.store(!state.changes.empty(), std::memory_order_release);
    DefaultsTable adopted;
    for (const auto& [key, value] : state.file.contents().members()) {
        if (!state.changes.contains(key)) adopted.emplace(key, value);
    }
    for (const auto& change : state.changes) {
        if (const Value& value = valueIn(state.table, change.first); !value.isNull())
            adopted.emplace(change.first, value);
    }
    if (adopted == state.table) return;
    state.table = std::move(adopted);
    noteChange();
}

namespace {

struct StandardDefaults {
    std::shared_ptr<NSUserDefaults> object =
        make<NSUserDefaults>(NSBundle::mainBundle()->bundleIdentifier().value_or(""));
};

}  // namespace

NSUserDefaults& NSUserDefaults::standardUserDefaults() {
    static constinit ProcessState<StandardDefaults> state;
    return *state.get().object;
}

}  // namespace kx
