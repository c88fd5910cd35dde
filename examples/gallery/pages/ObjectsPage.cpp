// SPDX-License-Identifier: MIT

#include "pages/ObjectsPage.h"

#include <algorithm>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr int kRounds = 200;

/// Adds two objects and takes one of them away again, so that each round leaves one behind.
std::uint64_t changeList(KXList& list, const std::string& who) {
    std::uint64_t changes = 0;
    for (int round = 0; round < kRounds; ++round) {
        const std::string id = who + std::to_string(round);
        list.addObject(KXObject::objectWithID(id));
        list.addObject(KXObject::objectWithID(id + "*"));
        list.removeObjectWithID(id + "*");
        changes += 3;
    }
    return changes;
}

/// Sorted: which thread's objects came first is another thing each time.
std::vector<std::string> identifiers(KXList& list) {
    std::vector<std::string> found;
    list.enumerateObjectsUsingBlock([&](const KXList::Element& object, std::uint64_t, bool&) {
        found.push_back(object->id().value_or(""));
    });
    std::ranges::sort(found);
    return found;
}

}  // namespace

ObjectsPage::ObjectsPage() {
    changeFromTwoThreads();
}

void ObjectsPage::changeFromTwoThreads() {
    Semaphore done;
    DispatchQueue::shared().async([&] {
        changesByA_ = changeList(*list_, "A");
        done.signal();
    });
    DispatchQueue::shared().async([&] {
        changesByB_ = changeList(*list_, "B");
        done.signal();
    });
    // Each time through, the list stands still for as long as it takes.
    for (int finished = 0; finished < 2;) {
        list_->enumerateObjectsUsingBlock([](const auto&, std::uint64_t, bool&) {});
        if (done.waitFor(std::chrono::microseconds(50))) ++finished;
    }
}

void ObjectsPage::add() {
    auto object = KXObject::objectWithID(std::to_string(list_->count()));
    list_->addObject(object);
}

void ObjectsPage::build(Column& column, Gallery& gallery) {
    column.title(text("objects.title"));
    column.paragraph(text("objects.explanation"));
    column.space(12);
    column.pair(text("objects.changes_a"), std::to_string(changesByA_));
    column.pair(text("objects.changes_b"), std::to_string(changesByB_));
    column.pair(text("objects.elements"), std::to_string(list_->count()));
    column.space(8);
    const auto showingAnew = [this, &gallery](void (ObjectsPage::*change)()) {
        return [this, &gallery, change] {
            (this->*change)();
            gallery.rebuild();
        };
    };
    column.row({pushButton("button.add", showingAnew(&ObjectsPage::add)),
                pushButton("button.remove", showingAnew(&ObjectsPage::remove)),
                pushButton("button.clear", showingAnew(&ObjectsPage::clear))});
    column.space(12);

    constexpr std::size_t kShown = 40;
    std::vector<std::shared_ptr<NSView>> tiles;
    for (const std::string& id : identifiers(*list_)) {
        auto tile = make<NSButton>();
        tile->setTitle(id);
        tiles.push_back(tile);
        if (tiles.size() == kShown) break;
    }
    auto layout = make<NSCollectionViewFlowLayout>();
    layout->setItemSize({64, 28});
    auto view = make<NSCollectionView>();
    view->setCollectionViewLayout(layout);
    view->setItemViews(tiles);
    column.add(view, layout->contentHeight(tiles.size(), column.width()));
}

}  // namespace gallery
