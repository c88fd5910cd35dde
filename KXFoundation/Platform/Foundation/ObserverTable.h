// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include <KXFoundation/Platform/Foundation/NotificationObserver.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// The lists of observers behind a notification centre; private to it.
///
/// Each name has one array of observers in the order of their registration. A post reads it in place under an
/// epoch mark: it takes no lock, counts nothing and copies nothing. Writers hold the lock. To add is to
/// append, and a post calls no more than it found at its start. To remove is to silence the observer, empty
/// its place and retire it. An array without room, or with more empty places than observers, is replaced by a
/// packed copy and retired.
namespace kx {

class ObserverTable {
  public:
    ObserverTable() = default;
    ~ObserverTable() { close(); }
    ObserverTable(const ObserverTable&) = delete;
    ObserverTable& operator=(const ObserverTable&) = delete;

    /// Takes the observer over; `object` is the observing object, absent for a block.
    void add(std::unique_ptr<NotificationObserver> observer, const NSNotificationName& name,
             const NSObject* object);

    /// Removes one that add() took and that nothing else can remove.
    void remove(NotificationObserver& observer);

    /// Removes the object's observers; of one name or sender only where one is given.
    void removeObject(const NSObject& object, const NSNotificationName* name, const NSObject* sender);

    void post(std::uint32_t name, const NSNotification& notification) const;

    /// Removes everything; what comes later is ignored.
    void close();

  private:
    class List;
    struct Directory;
    using Garbage = std::vector<Retirable*>;

    [[nodiscard]] List* listOf(std::uint32_t name) const KX_REQUIRES(mutex_);
    [[nodiscard]] List& listKnown(std::uint32_t name) const KX_REQUIRES(mutex_);
    void setList(std::uint32_t name, List& list, Garbage& garbage) KX_REQUIRES(mutex_);
    List& listWithRoom(std::uint32_t name, Garbage& garbage) KX_REQUIRES(mutex_);
    void packIfSparse(std::uint32_t name, Garbage& garbage) KX_REQUIRES(mutex_);
    List& packed(List& former, Garbage& garbage) KX_REQUIRES(mutex_);
    void take(NotificationObserver& observer) KX_REQUIRES(mutex_);
    void link(NotificationObserver& observer) KX_REQUIRES(mutex_);
    void unlink(NotificationObserver& observer) KX_REQUIRES(mutex_);
    template <class Items>
    static void retireAll(const Items& items);

    Mutex mutex_;
    bool closed_ KX_GUARDED_BY(mutex_) = false;
    std::atomic<Directory*> directory_{nullptr};  // written under mutex_
    std::unordered_map<const NSObject*, NotificationObserver*> ofObject_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
