// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

#include <KXFoundation/Core/KXObject.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/ReadWriteLock.h>

namespace kx {

/// Whether a list carries a lock, decided when it is made.
enum class KXListLocking : bool { Unlocked, Locked };

/// An ordered list of identified objects, found and removed by their id, with an optional reader/writer lock.
///
/// In a locked list (safeList) reading operations run side by side, changes and enumeration exclude all
/// others. The lock is not recursive: a locking operation of the list on a thread that already holds it, as
/// inside the list's own enumeration, is a caller error. An unlocked list costs nothing for it and belongs to
/// one thread at a time.
///
/// An index out of range, an absent object to add and removing the last of none are caller errors too:
/// nothing changes, and every lock is given back. Objects that leave the list are released after the lock.
/// Objects are the same when they are one object; ids are equal when their texts are, and an absent id equals
/// nothing.
class KX_EXPORT KXList : public Subclass<KXList, KXObject> {
  public:
    using Element = std::shared_ptr<KXObject>;
    using Array = std::vector<Element>;
    using Index = std::uint64_t;
    /// Called with each element and its index; setting `stop` ends the enumeration after this element.
    using Block = std::function<void(const Element& object, Index index, bool& stop)>;

    /// What objectIndexWithID answers when there is no such element.
    static constexpr Index kNoIndex = ~Index{0};

    [[nodiscard]] static std::shared_ptr<KXList> safeList() { return initWithLock(true); }
    [[nodiscard]] static std::shared_ptr<KXList> list() { return initWithLock(false); }
    [[nodiscard]] static std::shared_ptr<KXList> initWithLock(bool locked);

    // The id of every list is "KXList", whichever initialiser made it.
    bool init() { return init(KXListLocking::Unlocked); }
    bool init(std::optional<std::string_view> ignored);
    bool init(KXListLocking locking);

    [[nodiscard]] Element objectAtIndex(Index index) const;
    [[nodiscard]] Element objectAtIndexedSubscript(Index index) const { return objectAtIndex(index); }
    [[nodiscard]] Element operator[](Index index) const { return objectAtIndex(index); }
    [[nodiscard]] std::int64_t count() const;
    [[nodiscard]] bool isEmpty() const { return count() == 0; }
    /// None when the list is empty.
    [[nodiscard]] Element first() const;
    [[nodiscard]] Element last() const;
    /// Always false here; a derived list that loads its contents may say otherwise.
    [[nodiscard]] virtual bool isRefreshing() const { return false; }

    // By id: the first element that has it. Linear.
    [[nodiscard]] Element objectWithID(std::optional<std::string_view> id) const;
    [[nodiscard]] bool containsObjectWithID(std::optional<std::string_view> id) const;
    [[nodiscard]] Index objectIndexWithID(std::optional<std::string_view> id) const;

    void addObject(Element object);
    /// Inserts before the index; an index equal to count() appends.
    void insertObject(Element object, Index index);
    void replaceObjectAtIndex(Index index, Element object);
    /// Replaces the element at the index; an index equal to count() appends.
    void setObject(Element object, Index index);
    /// Swaps two elements; equal indices are left alone, unchecked and without the lock.
    void exchangeObjectAtIndex(Index one, Index other);

    /// Removes every occurrence of the object.
    void removeObject(const Element& object);
    void removeObjectAtIndex(Index index);
    void removeLastObject();
    void removeAllObjects();
    /// Removes every element that occurs in the array.
    void removeObjectsInArray(const Array& objects);
    /// Keeps the first `count` elements.
    void removeObjectsFromIndex(Index count);
    /// Removes every occurrence of the first element that has the id.
    void removeObjectWithID(std::optional<std::string_view> id);
    /// Takes over the elements of another list, shared; nothing if it is absent. Locks this list, then the
    /// other, so two threads must not replace two lists from each other crosswise. The list itself is a
    /// caller error.
    void replaceWithList(const std::shared_ptr<KXList>& other);

    /// Calls the block for each element in order while the list is locked exclusively; nothing without a
    /// block.
    void enumerateObjectsUsingBlock(const Block& block);

    // The lock alone, for several steps under one; nothing in an unlocked list. False, without the lock, if
    // this thread holds it exclusively already (a caller error); a thread that holds it shared must not ask
    // for it exclusively.
    bool listReadLock() const;
    bool listWriteLock() const;
    void listUnlock() const;

    // Raw access, past the lock: synchronising is up to the caller.
    [[nodiscard]] const std::shared_ptr<Array>& listArray() const noexcept { return list_; }
    /// Shares the array from now on; absent stands for a new, empty one.
    void setList(std::shared_ptr<Array> list);
    [[nodiscard]] const std::shared_ptr<ReadWriteLock>& lock() const noexcept { return lock_; }
    void setLock(std::shared_ptr<ReadWriteLock> lock) noexcept { lock_ = std::move(lock); }

  protected:
    void setupInternalArray() { setList(nullptr); }
    void setupLock() { setLock(std::make_shared<ReadWriteLock>()); }

  private:
    class Held;
    [[nodiscard]] Array::const_iterator find(std::optional<std::string_view> id) const;

    std::shared_ptr<Array> list_;
    std::shared_ptr<ReadWriteLock> lock_;
};

}  // namespace kx
