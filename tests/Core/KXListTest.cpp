// SPDX-License-Identifier: MIT

#include <functional>
#include <stdexcept>
#include <string>
#include <thread>

#include <gmock/gmock.h>

#include <KXFoundation/Core/KXList.h>
#include <KXFoundation/Testing/CapturedLog.h>

namespace kx {
namespace {

using ::testing::ElementsAre;

std::string ids(const KXList& list) {
    std::string text;
    for (const auto& object : *list.listArray()) text += object->id().value_or("-");
    return text;
}

/// A list of objects with one-letter ids; equal letters are one object.
std::shared_ptr<KXList> listOf(std::string_view letters, bool locked = true) {
    auto list = KXList::initWithLock(locked);
    for (const char c : letters) {
        auto known = list->objectWithID(std::string(1, c));
        list->addObject(known ? known : KXObject::objectWithID(std::string(1, c)));
    }
    return list;
}

TEST(KXList, FreshListsAreEmptyAndNamedAfterTheClass) {
    const std::tuple<const char*, std::shared_ptr<KXList>, bool> rows[] = {
        {"init", make<KXList>(), false},
        {"initWithID", make<KXList>("harbours"), false},
        {"list", KXList::list(), false},
        {"safeList", KXList::safeList(), true}};
    for (const auto& [how, list, locked] : rows) {
        EXPECT_EQ(list->id(), "KXList") << how;
        EXPECT_EQ(list->lock() != nullptr, locked) << how;
        EXPECT_TRUE(list->isEmpty() && !list->first() && !list->last() && !list->isRefreshing()) << how;
        EXPECT_EQ(list->objectIndexWithID("a"), 18446744073709551615U) << how;
    }
}

TEST(KXList, Changes) {
    const auto x = KXObject::objectWithID("x");
    const std::tuple<const char*, const char*, std::function<void(KXList&)>, const char*> rows[] = {
        {"add", "ab", [&](KXList& l) { l.addObject(x); }, "abx"},
        {"insert in front", "ab", [&](KXList& l) { l.insertObject(x, 0); }, "xab"},
        {"insert at count", "ab", [&](KXList& l) { l.insertObject(x, 2); }, "abx"},
        {"replace", "abc", [&](KXList& l) { l.replaceObjectAtIndex(1, x); }, "axc"},
        {"set replaces", "abc", [&](KXList& l) { l.setObject(x, 2); }, "abx"},
        {"set at count appends", "abc", [&](KXList& l) { l.setObject(x, 3); }, "abcx"},
        {"exchange", "abc", [](KXList& l) { l.exchangeObjectAtIndex(0, 2); }, "cba"},
        {"exchange equal ones past the end", "ab", [](KXList& l) { l.exchangeObjectAtIndex(9, 9); }, "ab"},
        {"remove every occurrence", "abab", [](KXList& l) { l.removeObject(l[0]); }, "bb"},
        {"remove a stranger", "ab", [&](KXList& l) { l.removeObject(x); }, "ab"},
        {"remove at", "abc", [](KXList& l) { l.removeObjectAtIndex(1); }, "ac"},
        {"remove last", "abc", [](KXList& l) { l.removeLastObject(); }, "ab"},
        {"remove all", "abc", [](KXList& l) { l.removeAllObjects(); }, ""},
        {"remove array", "abcab",
         [](KXList& l) {
             l.removeObjectsInArray({l[0], l[2]});
         },
         "bb"},
        {"truncate", "abcde", [](KXList& l) { l.removeObjectsFromIndex(2); }, "ab"},
        {"truncate to nothing", "abc", [](KXList& l) { l.removeObjectsFromIndex(0); }, ""},
        {"truncate at count", "abc", [](KXList& l) { l.removeObjectsFromIndex(3); }, "abc"},
        {"truncate far past", "abc", [](KXList& l) { l.removeObjectsFromIndex(~0ULL); }, "abc"},
        {"remove by id", "abca", [](KXList& l) { l.removeObjectWithID("a"); }, "bc"},
        {"remove by an unknown id", "abc", [](KXList& l) { l.removeObjectWithID("A"); }, "abc"},
        {"remove by an absent id", "abc", [](KXList& l) { l.removeObjectWithID(std::nullopt); }, "abc"},
        {"replace with none", "abc", [](KXList& l) { l.replaceWithList(nullptr); }, "abc"},
        {"replace with empty", "abc", [](KXList& l) { l.replaceWithList(KXList::list()); }, ""},
    };
    for (const auto& [what, before, change, after] : rows) {
        for (const bool locked : {false, true}) {
            const auto list = listOf(before, locked);
            change(*list);
            EXPECT_EQ(ids(*list), after) << what << ", locked: " << locked;
        }
    }
}

TEST(KXList, OfTwoWithOneIdTheEarlierIsFoundAndRemoved) {
    const auto list = KXList::safeList();
    const auto earlier = KXObject::objectWithID("twin");
    const auto later = KXObject::objectWithID("twin");
    for (const auto& object : {KXObject::objectWithID(std::nullopt), earlier, later}) list->addObject(object);
    EXPECT_EQ(list->objectWithID("twin"), earlier);
    EXPECT_EQ(list->objectIndexWithID("twin"), 1U);
    EXPECT_FALSE(list->containsObjectWithID(std::nullopt)) << "an absent id equals nothing";
    EXPECT_EQ(list->objectIndexWithID("other"), 18446744073709551615U);
    EXPECT_EQ(list->id(), "KXList");
    list->removeObjectWithID("twin");
    EXPECT_EQ(list->objectWithID("twin"), later);
    EXPECT_EQ(list->count(), 2);
}

TEST(KXList, ReplacingSharesTheElements) {
    const auto source = listOf("abc");
    const auto list = listOf("xy");
    list->replaceWithList(source);
    EXPECT_EQ(*list->listArray(), *source->listArray());
    EXPECT_NE(list->listArray(), source->listArray()) << "the elements are shared, the arrays are not";
}

TEST(KXList, EnumerationStopsWhenTold) {
    std::string visited;
    listOf("abc")->enumerateObjectsUsingBlock(
        [&](const KXList::Element& object, KXList::Index index, bool& stop) {
            visited += *object->id() + std::to_string(index);
            stop = index == 1;
        });
    EXPECT_EQ(visited, "a0b1");
}

TEST(KXList, AnUnlockedListMayChangeInItsOwnEnumeration) {
    const auto list = listOf("abc", false);
    list->enumerateObjectsUsingBlock(
        [&](const KXList::Element& object, KXList::Index, bool&) { list->removeObject(object); });
    EXPECT_EQ(ids(*list), "b");
}

TEST(KXList, ItsEnumerationMayLetTheLastReferenceGo) {
    auto list = listOf("abc");
    std::string visited;
    list->enumerateObjectsUsingBlock([&](const KXList::Element& object, KXList::Index, bool&) {
        visited += *object->id();
        list = nullptr;
    });
    EXPECT_EQ(visited, "abc");
}

TEST(KXList, CallerErrorsChangeNothingAndLeaveTheLockFree) {
    const auto x = KXObject::objectWithID("x");
    const std::pair<const char*, std::function<void(KXList&)>> rows[] = {
        {"KXList: index 7 of 3", [](KXList& l) { EXPECT_EQ(l[7], nullptr); }},
        {"KXList: index 3 of 3", [&](KXList& l) { l.replaceObjectAtIndex(3, x); }},
        {"KXList: index 4 of 3", [&](KXList& l) { l.insertObject(x, 4); }},
        {"KXList: index 4 of 3", [&](KXList& l) { l.setObject(x, 4); }},
        {"KXList: index 3 of 3", [](KXList& l) { l.removeObjectAtIndex(3); }},
        {"KXList: index 3 of 3", [](KXList& l) { l.exchangeObjectAtIndex(0, 3); }},
        {"KXList: no object to add", [](KXList& l) { l.addObject(nullptr); }},
        {"KXList: no object to add", [](KXList& l) { l.insertObject(nullptr, 0); }},
        {"KXList: no object to add", [](KXList& l) { l.replaceObjectAtIndex(0, nullptr); }},
        {"KXList: no object to add", [](KXList& l) { l.setObject(nullptr, 0); }},
        {"KXList: replaced with itself",
         [](KXList& l) { l.replaceWithList(std::shared_ptr<KXList>(std::shared_ptr<void>(), &l)); }},
        {"KXList: changed while this thread holds its lock",
         [&](KXList& l) {
             l.enumerateObjectsUsingBlock([&](auto&, auto, bool& stop) { l.addObject(x), stop = true; });
         }},
        {"KXList: read while this thread holds its lock",
         [](KXList& l) {
             l.enumerateObjectsUsingBlock(
                 [&](auto&, auto, bool& stop) { stop = !l.containsObjectWithID("a"); });
         }},
    };
    const testing::LenientMode lenient;
    for (const auto& [line, mistake] : rows) {
        const testing::CapturedLog log;
        const auto list = listOf("abc");
        mistake(*list);
        EXPECT_THAT(log.lines(), ElementsAre(line));
        EXPECT_EQ(ids(*list), "abc") << line;
        std::thread([&] { list->addObject(x); }).join();  // hangs if the lock is still held
        EXPECT_EQ(list->count(), 4) << line;
    }
    const testing::CapturedLog log;
    KXList::safeList()->removeLastObject();
    EXPECT_THAT(log.lines(), ElementsAre("KXList: index 0 of 0"));
}

TEST(KXList, AnExceptionOfTheBlockLeavesTheLockFree) {
    const auto list = listOf("abc");
    EXPECT_THROW(
        list->enumerateObjectsUsingBlock([](auto&, auto, bool&) { throw std::runtime_error("block"); }),
        std::runtime_error);
    EXPECT_EQ(list->count(), 3);
}

/// An object that looks into its list when it dies.
class Watcher : public Subclass<Watcher, KXObject> {
  public:
    ~Watcher() override {
        if (const auto list = list_.lock()) *seen_ = list->count();
    }
    void watch(const std::shared_ptr<KXList>& list, std::int64_t& seen) { list_ = list, seen_ = &seen; }

  private:
    std::weak_ptr<KXList> list_;
    std::int64_t* seen_ = nullptr;
};

TEST(KXList, ElementsDieAfterTheLockIsFree) {
    const std::function<void(KXList&)> removals[] = {
        [](KXList& l) { l.removeLastObject(); }, [](KXList& l) { l.removeObjectAtIndex(3); },
        [](KXList& l) { l.removeObjectWithID("Watcher"); }, [](KXList& l) { l.removeObjectsFromIndex(3); }};
    for (const auto& remove : removals) {
        const auto list = listOf("abc");
        std::int64_t seen = -1;
        auto watcher = make<Watcher>();
        watcher->watch(list, seen);
        list->addObject(std::move(watcher));
        remove(*list);
        EXPECT_EQ(seen, 3) << "removal " << &remove - removals;
    }
}

TEST(KXList, TwoThreadsShareALockedList) {
    const auto list = KXList::safeList();
    const auto fill = [&](const char* prefix) {
        for (int i = 0; i < 500; ++i) {
            const std::string id = prefix + std::to_string(i);
            list->addObject(KXObject::objectWithID(id));
            if (i % 2) list->removeObjectWithID(id);
        }
    };
    std::thread other(fill, "b");
    fill("a");
    other.join();
    std::int64_t visited = 0;
    list->enumerateObjectsUsingBlock([&](auto&, auto, bool&) { ++visited; });
    EXPECT_EQ(visited, 500);
    EXPECT_TRUE(list->containsObjectWithID("a498") && list->containsObjectWithID("b0"));
}

}  // namespace
}  // namespace kx
