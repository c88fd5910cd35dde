// SPDX-License-Identifier: MIT

#include <algorithm>
#include <new>
#include <span>

#include <KXFoundation/Platform/Foundation/ObserverTable.h>

namespace kx {

namespace {
constexpr std::uint32_t kSmallest = 8;
}

/// One name's observers: header and places in one block of memory.
class ObserverTable::List final : public Retirable {
  public:
    using Place = std::atomic<NotificationObserver*>;

    static List* make(std::uint32_t room) {
        void* memory = ::operator new(sizeof(List) + room * sizeof(Place));
        List* list = new (memory) List(room);
        std::uninitialized_value_construct_n(list->places(), room);
        return list;
    }
    static void operator delete(void* memory) { ::operator delete(memory); }

    /// What was there at the moment of the call; removed ones leave a null.
    [[nodiscard]] std::span<Place> all() noexcept {
        return {places(), count_.load(std::memory_order_acquire)};
    }
    [[nodiscard]] bool isFull() const noexcept { return count_.load(std::memory_order_relaxed) == room_; }
    [[nodiscard]] std::uint32_t living() const noexcept {
        return count_.load(std::memory_order_relaxed) - empty;
    }

    /// Puts the observer into the next place and answers its index.
    std::uint32_t append(NotificationObserver& observer) noexcept {
        const std::uint32_t index = count_.load(std::memory_order_relaxed);
        places()[index].store(&observer, std::memory_order_release);
        count_.store(index + 1, std::memory_order_release);
        return index;
    }

    std::uint32_t empty = 0;  // guarded by the table's lock

  private:
    explicit List(std::uint32_t room) noexcept : room_(room) {}
    Place* places() noexcept { return reinterpret_cast<Place*>(this + 1); }

    std::atomic<std::uint32_t> count_{0};
    const std::uint32_t room_;
};

/// Lists by the number of their name.
struct ObserverTable::Directory final : Retirable {
    explicit Directory(std::size_t n) : size(n), lists(std::make_unique<std::atomic<List*>[]>(n)) {}

    [[nodiscard]] List* list(std::uint32_t name) const noexcept {
        return name < size ? lists[name].load(std::memory_order_acquire) : nullptr;
    }
    const std::size_t size;
    const std::unique_ptr<std::atomic<List*>[]> lists;
};

template <class Items>
void ObserverTable::retireAll(const Items& items) {
    for (Retirable* item : items) retire(item);
}

void ObserverTable::post(std::uint32_t name, const NSNotification& notification) const {
    const EpochReading reading;
    const Directory* directory = directory_.load(std::memory_order_acquire);
    List* list = directory ? directory->list(name) : nullptr;
    if (!list) return;
    for (const List::Place& place : list->all()) {
        if (NotificationObserver* observer = place.load(std::memory_order_acquire)) (*observer)(notification);
    }
}

void ObserverTable::add(std::unique_ptr<NotificationObserver> observer, const NSNotificationName& name,
                        const NSObject* object) {
    Garbage garbage;
    MutexLock lock(mutex_);
    if (closed_) return;
    NotificationObserver& added = *observer.release();
    added.name_ = name.interned().number;
    added.object_ = object;
    added.index_ = listWithRoom(added.name_, garbage).append(added);
    if (object) link(added);
    lock.unlock();
    retireAll(garbage);
}

void ObserverTable::remove(NotificationObserver& observer) {
    Garbage garbage;
    MutexLock lock(mutex_);
    if (closed_) return;
    const std::uint32_t name = observer.name_;
    take(observer);
    packIfSparse(name, garbage);
    lock.unlock();
    retire(&observer);
    retireAll(garbage);
}

void ObserverTable::removeObject(const NSObject& object, const NSNotificationName* name,
                                 const NSObject* sender) {
    std::vector<NotificationObserver*> taken;
    Garbage garbage;
    MutexLock lock(mutex_);
    const auto found = ofObject_.find(&object);
    NotificationObserver* next = found == ofObject_.end() ? nullptr : found->second;
    while (NotificationObserver* observer = next) {
        next = observer->nextOfObject_;
        if (name && observer->name_ != name->interned().number) continue;
        if (sender && !observer->listensTo(*sender)) continue;
        take(*observer);
        taken.push_back(observer);
    }
    for (const NotificationObserver* observer : taken) packIfSparse(observer->name_, garbage);
    lock.unlock();
    retireAll(taken);
    retireAll(garbage);
}

void ObserverTable::close() {
    Garbage garbage;
    MutexLock lock(mutex_);
    closed_ = true;
    ofObject_.clear();
    Directory* directory = directory_.exchange(nullptr);
    for (std::uint32_t name = 0; directory && name < directory->size; ++name) {
        List* list = directory->list(name);
        if (!list) continue;
        for (const List::Place& place : list->all()) {
            NotificationObserver* observer = place.load(std::memory_order_relaxed);
            if (!observer) continue;
            observer->silence();
            garbage.push_back(observer);
        }
        garbage.push_back(list);
    }
    if (directory) garbage.push_back(directory);
    lock.unlock();
    retireAll(garbage);
}

ObserverTable::List* ObserverTable::listOf(std::uint32_t name) const {
    const Directory* directory = directory_.load(std::memory_order_relaxed);
    return directory ? directory->list(name) : nullptr;
}

void ObserverTable::setList(std::uint32_t name, List& list, Garbage& garbage) {
    Directory* directory = directory_.load(std::memory_order_relaxed);
    if (!directory || name >= directory->size) {
        Directory* former = directory;
        directory = new Directory(std::max<std::size_t>(16, 2 * (std::size_t{name} + 1)));
        for (std::uint32_t i = 0; former && i < former->size; ++i) directory->lists[i] = former->list(i);
        directory_.store(directory, std::memory_order_release);
        if (former) garbage.push_back(former);
    }
    if (List* former = directory->lists[name].exchange(&list, std::memory_order_acq_rel))
        garbage.push_back(former);
}

/// That of a name which has one: an observer was registered for it.
ObserverTable::List& ObserverTable::listKnown(std::uint32_t name) const {
    return *directory_.load(std::memory_order_relaxed)->lists[name].load(std::memory_order_relaxed);
}

ObserverTable::List& ObserverTable::listWithRoom(std::uint32_t name, Garbage& garbage) {
    List* list = listOf(name);
    if (list && !list->isFull()) return *list;
    List& roomy = list ? packed(*list, garbage) : *List::make(kSmallest);
    setList(name, roomy, garbage);
    return roomy;
}

void ObserverTable::packIfSparse(std::uint32_t name, Garbage& garbage) {
    constexpr std::uint32_t kBearable = 16;
    List& list = listKnown(name);
    if (list.empty > list.living() + kBearable) setList(name, packed(list, garbage), garbage);
}

/// A copy without empty places and with as much room again. Leaves out observers whose object is gone.
ObserverTable::List& ObserverTable::packed(List& former, Garbage& garbage) {
    for (const List::Place& place : former.all()) {
        NotificationObserver* observer = place.load(std::memory_order_relaxed);
        if (!observer || !observer->isGone()) continue;
        take(*observer);
        garbage.push_back(observer);
    }
    List& packed = *List::make(std::max(kSmallest, 2 * former.living()));
    for (const List::Place& place : former.all()) {
        NotificationObserver* observer = place.load(std::memory_order_relaxed);
        if (observer) observer->index_ = packed.append(*observer);
    }
    return packed;
}

/// Takes the observer out of the lists; the caller retires it once the lock is released.
void ObserverTable::take(NotificationObserver& observer) {
    observer.silence();
    List& list = listKnown(observer.name_);
    list.all()[observer.index_].store(nullptr, std::memory_order_release);
    ++list.empty;
    if (observer.object_) unlink(observer);
}

void ObserverTable::link(NotificationObserver& observer) {
    NotificationObserver*& first = ofObject_[observer.object_];
    if (first) first->previousOfObject_ = &observer;
    observer.nextOfObject_ = std::exchange(first, &observer);
}

void ObserverTable::unlink(NotificationObserver& observer) {
    NotificationObserver* const next = observer.nextOfObject_;
    if (next) next->previousOfObject_ = observer.previousOfObject_;
    if (observer.previousOfObject_) {
        observer.previousOfObject_->nextOfObject_ = next;
    } else if (next) {
        ofObject_[observer.object_] = next;
    } else {
        ofObject_.erase(observer.object_);
    }
}

}  // namespace kx
