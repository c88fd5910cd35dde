// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <string>
#include <unordered_set>

#include <KXFoundation/Core/KXList.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

namespace {

using Element = KXList::Element;
using Array = KXList::Array;

void reportIndex(std::uint64_t index, std::size_t count) {
    callerError("KXList: index " + std::to_string(index) + " of " + std::to_string(count));
}

bool reportIfAbsent(const Element& object) {
    if (!object) callerError("KXList: no object to add");
    return !object;
}

/// Moves what the test chooses out of the array, so that it can be released once the lock is given back.
template <class Test>
Array takeOut(Array& array, Test chosen) {
    const auto kept = std::stable_partition(array.begin(), array.end(), std::not_fn(chosen));
    Array taken(std::make_move_iterator(kept), std::make_move_iterator(array.end()));
    array.erase(kept, array.end());
    return taken;
}

Array takeOutObject(Array& array, const KXObject* object) {
    return takeOut(array, [object](const Element& element) { return element.get() == object; });
}

}  // namespace

/// The list's lock for one scope; false when it was refused.
class KXList::Held {
  public:
    enum class Mode : bool { Read, Write };
    Held(const KXList& list, Mode mode)
        : list_(list), held_(mode == Mode::Read ? list.listReadLock() : list.listWriteLock()) {}
    ~Held() { release(); }
    Held(const Held&) = delete;
    Held& operator=(const Held&) = delete;

    explicit operator bool() const noexcept { return held_; }
    void release() {
        if (std::exchange(held_, false)) list_.listUnlock();
    }

    /// True if the index is below the array's size; otherwise reports the caller's mistake with the lock
    /// given back.
    bool holds(Index index) { return fits(index, list_.list_->size()); }
    bool fits(Index index, std::size_t limit) {
        if (index < limit) return true;
        const std::size_t count = list_.list_->size();
        release();
        reportIndex(index, count);
        return false;
    }

  private:
    const KXList& list_;
    bool held_;
};

std::shared_ptr<KXList> KXList::initWithLock(bool locked) {
    return make<KXList>(locked ? KXListLocking::Locked : KXListLocking::Unlocked);
}

bool KXList::init(std::optional<std::string_view>) {
    return init(KXListLocking::Unlocked);
}

bool KXList::init(KXListLocking locking) {
    if (!Super::init("KXList")) return false;
    setupInternalArray();
    if (locking == KXListLocking::Locked) setupLock();
    return true;
}

void KXList::setList(std::shared_ptr<Array> list) {
    list_ = list ? std::move(list) : std::make_shared<Array>();
}

bool KXList::listReadLock() const {
    if (!lock_ || lock_->lockShared()) return true;
    callerError("KXList: read while this thread holds its lock");
    return false;
}

bool KXList::listWriteLock() const {
    if (!lock_ || lock_->lockExclusive()) return true;
    callerError("KXList: changed while this thread holds its lock");
    return false;
}

void KXList::listUnlock() const {
    if (lock_) lock_->unlock();
}

KXList::Array::const_iterator KXList::find(std::optional<std::string_view> id) const {
    if (!id) return list_->cend();
    return std::find_if(list_->cbegin(), list_->cend(), [wanted = *id](const Element& element) {
        if (!element) return false;  // raw access can put one there
        const std::optional<std::string>& own = element->id();
        return own && *own == wanted;
    });
}

Element KXList::objectAtIndex(Index index) const {
    Held held(*this, Held::Mode::Read);
    return held && held.holds(index) ? (*list_)[index] : nullptr;
}

std::int64_t KXList::count() const {
    const Held held(*this, Held::Mode::Read);
    return held ? std::ssize(*list_) : 0;
}

Element KXList::first() const {
    const Held held(*this, Held::Mode::Read);
    return held && !list_->empty() ? list_->front() : nullptr;
}

Element KXList::last() const {
    const Held held(*this, Held::Mode::Read);
    return held && !list_->empty() ? list_->back() : nullptr;
}

Element KXList::objectWithID(std::optional<std::string_view> id) const {
    const Held held(*this, Held::Mode::Read);
    if (!held) return nullptr;
    const auto found = find(id);
    return found == list_->cend() ? nullptr : *found;
}

bool KXList::containsObjectWithID(std::optional<std::string_view> id) const {
    const Held held(*this, Held::Mode::Read);
    return held && find(id) != list_->cend();
}

KXList::Index KXList::objectIndexWithID(std::optional<std::string_view> id) const {
    const Held held(*this, Held::Mode::Read);
    if (!held) return kNoIndex;
    const auto found = find(id);
    return found == list_->cend() ? kNoIndex : static_cast<Index>(found - list_->cbegin());
}

void KXList::addObject(Element object) {
    if (reportIfAbsent(object)) return;
    if (const Held held(*this, Held::Mode::Write); held) list_->push_back(std::move(object));
}

void KXList::insertObject(Element object, Index index) {
    if (reportIfAbsent(object)) return;
    Held held(*this, Held::Mode::Write);
    if (!held || !held.fits(index, list_->size() + 1)) return;
    list_->insert(list_->begin() + static_cast<std::ptrdiff_t>(index), std::move(object));
}

void KXList::replaceObjectAtIndex(Index index, Element object) {
    if (reportIfAbsent(object)) return;
    Held held(*this, Held::Mode::Write);  // destroyed before `object`, which then holds the former element
    if (held && held.holds(index)) (*list_)[index].swap(object);
}

void KXList::setObject(Element object, Index index) {
    if (reportIfAbsent(object)) return;
    Held held(*this, Held::Mode::Write);
    if (!held || !held.fits(index, list_->size() + 1)) return;
    if (index == list_->size()) {
        list_->push_back(std::move(object));
    } else {
        (*list_)[index].swap(object);
    }
}

void KXList::exchangeObjectAtIndex(Index one, Index other) {
    if (one == other) return;
    Held held(*this, Held::Mode::Write);
    if (held && held.holds(one) && held.holds(other)) (*list_)[one].swap((*list_)[other]);
}

void KXList::removeObject(const Element& object) {
    Array removed;
    if (const Held held(*this, Held::Mode::Write); held) removed = takeOutObject(*list_, object.get());
}

void KXList::removeObjectAtIndex(Index index) {
    Element removed;
    Held held(*this, Held::Mode::Write);
    if (!held || !held.holds(index)) return;
    removed = std::move((*list_)[index]);
    list_->erase(list_->begin() + static_cast<std::ptrdiff_t>(index));
}

void KXList::removeLastObject() {
    Element removed;
    Held held(*this, Held::Mode::Write);
    if (!held || !held.holds(0)) return;
    removed = std::move(list_->back());
    list_->pop_back();
}

void KXList::removeAllObjects() {
    removeObjectsFromIndex(0);
}

void KXList::removeObjectsInArray(const Array& objects) {
    std::unordered_set<const KXObject*> chosen;
    for (const Element& object : objects) chosen.insert(object.get());
    Array removed;
    if (const Held held(*this, Held::Mode::Write); held) {
        removed = takeOut(*list_, [&](const Element& element) { return chosen.contains(element.get()); });
    }
}

void KXList::removeObjectsFromIndex(Index count) {
    Array removed;
    const Held held(*this, Held::Mode::Write);
    if (!held || list_->size() <= count) return;
    const auto kept = list_->begin() + static_cast<std::ptrdiff_t>(count);
    removed.assign(std::make_move_iterator(kept), std::make_move_iterator(list_->end()));
    list_->erase(kept, list_->end());
}

void KXList::removeObjectWithID(std::optional<std::string_view> id) {
    Array removed;
    const Held held(*this, Held::Mode::Write);
    if (!held) return;
    if (const auto found = find(id); found != list_->cend()) removed = takeOutObject(*list_, found->get());
}

void KXList::replaceWithList(const std::shared_ptr<KXList>& other) {
    if (!other) return;
    if (other.get() == this) return callerError("KXList: replaced with itself");
    Array incoming;  // holds the former elements in the end, released after the lock
    const Held held(*this, Held::Mode::Write);
    if (!held) return;
    {
        const Held source(*other, Held::Mode::Write);
        if (!source) return;
        incoming = *other->list_;
    }
    list_->swap(incoming);
}

void KXList::enumerateObjectsUsingBlock(const Block& block) {
    if (!block) return;
    const auto alive = weak_from_this().lock();  // the block may let the last reference go
    const Held held(*this, Held::Mode::Write);
    if (!held) return;
    bool stop = false;
    for (Index index = 0; index < list_->size() && !stop; ++index) {
        const Element element = (*list_)[index];  // kept: the block of an unlocked list may remove it
        block(element, index, stop);
    }
}

}  // namespace kx
