// SPDX-License-Identifier: MIT

#include <algorithm>
#include <map>

#include <KXFoundation/Cache/KXCache.h>
#include <KXFoundation/Cache/KXDiskCache.h>
#include <KXFoundation/Cache/KXMemoryCache.h>
#include <KXFoundation/Core/KXList.h>

#include "Stress.h"

namespace kx::testing {

namespace {

using namespace std::chrono_literals;

/// Beside the list goes a plain one, which must hold the same after every step.
void list(Stress& s) {
    const auto list = KXList::safeList(), other = KXList::safeList();
    KXList::Array plain;
    for (const char* id : {"1", "x"}) other->addObject(KXObject::objectWithID(id));
    for (int i = 0; i < 24; ++i) {
        s.later([&] {
            const std::string id = std::to_string(s.below(5));
            const auto object = KXObject::objectWithID(id);
            const std::size_t at = s.below(plain.size() + 1);
            const auto place = plain.begin() + static_cast<std::ptrdiff_t>(at);
            const bool isThere = at < plain.size();
            switch (s.below(9)) {
                case 0:
                    list->addObject(object), plain.push_back(object);
                    break;
                case 1:
                    list->insertObject(object, at), plain.insert(place, object);
                    break;
                case 2:
                    list->setObject(object, at), (isThere ? * place = object : plain.emplace_back(object));
                    break;
                case 3:
                    list->removeObjectsFromIndex(at), plain.erase(place, plain.end());
                    break;
                case 4:
                    list->replaceWithList(other), plain = *other->listArray();
                    break;
                case 5:
                    if (isThere) list->removeObjectAtIndex(at), plain.erase(place);
                    break;
                case 6:
                    if (isThere) list->exchangeObjectAtIndex(at, 0), std::swap(*place, plain.front());
                    break;
                case 7:
                    if (isThere) list->addObject(*place), plain.push_back(KXList::Element(plain[at]));
                    break;
                default:
                    list->removeObjectWithID(id);
                    const auto found =
                        std::ranges::find(plain, id, [](const auto& one) { return *one->id(); });
                    if (found != plain.end()) std::erase(plain, KXList::Element(*found));
            }
            KXList::Array seen;
            list->enumerateObjectsUsingBlock([&](const auto& one, auto, bool&) { seen.push_back(one); });
            s.require(seen == plain, "the list holds something else");
            s.require(list->count() == static_cast<std::int64_t>(plain.size()), "count() says otherwise");
        });
    }
    s.run();
}

/// Its death is counted.
class Counted : public Subclass<Counted, NSObject> {
  public:
    ~Counted() override { --alive; }
    bool init(int number) {
        ++alive;
        number_ = number;
        return NSObject::init();
    }
    [[nodiscard]] int number() const noexcept { return number_; }
    static inline int alive = 0;

  private:
    int number_ = 0;
};

void memoryCache(Stress& s) {
    struct Last {
        int number;
        std::chrono::nanoseconds when;
    };
    std::map<std::string, Last> last;
    int sets = 0;
    auto cache = KXMemoryCache::initWithNameSpace("x");
    cache->setCountLimit(s.below(6));
    cache->setCostLimit(s.isOneIn(2) ? 20 : 0);
    cache->setAgeLimit(s.isOneIn(2) ? 0.003 : 0);
    for (int i = 0; i < 40; ++i) {
        s.later([&] {
            const std::string key = std::to_string(s.below(8));
            const auto now = Clock::slot().current().now();
            const std::size_t choice = s.below(16);
            if (choice < 8) {
                cache->setObjectWithCost(Value(std::shared_ptr<NSObject>(make<Counted>(++sets))), key,
                                         s.below(8));
                last[key] = {sets, now};
            } else if (choice < 14) {
                if (const auto found = objectCast<Counted>(cache->objectForKey(key).asObject())) {
                    const auto known = last.find(key);
                    s.require(known != last.end() && known->second.number == found->number(), "an old value");
                    const bool isOld =
                        cache->ageLimit() > 0 && known != last.end() && now - known->second.when > 3ms;
                    s.require(!isOld, "a value beyond the age limit");
                } else {
                    const bool mayBeGone =
                        cache->countLimit() + cache->costLimit() > 0 || cache->ageLimit() > 0;
                    s.require(mayBeGone || !last.contains(key), "a value is lost");
                }
            } else if (choice == 14) {
                cache->removeObjectForKey(key);
                last.erase(key);
            } else if (s.isOneIn(4)) {
                cache->removeAllObjects();
                last.clear();
            }
            const auto [count, cost] = std::pair(cache->totalCount(), cache->totalCost());
            s.require(cache->countLimit() == 0 || count <= cache->countLimit(), "more than the count limit");
            s.require(cache->costLimit() == 0 || cost <= cache->costLimit(), "more than the cost limit");
        });
    }
    s.run();
    s.require(Counted::alive == static_cast<int>(cache->totalCount()),
              "something else lives than is counted");
    cache = nullptr;
    s.require(Counted::alive == 0, "an object outlives its cache");
}

/// Two stores over one folder, as two processes have them.
void diskCache(Stress& s) {
    const std::string folder = s.folder();
    const std::shared_ptr<KXDiskCache> stores[] = {KXDiskCache::initWithPath(folder),
                                                   KXDiskCache::initWithPath(folder)};
    const std::size_t limit = s.below(6);
    for (const auto& store : stores) store->setCountLimit(limit);
    std::map<std::string, int> last;
    int sets = 0, asked = 0, answered = 0;
    for (int i = 0; i < 16; ++i) {
        s.later([&] {
            const std::string key = std::to_string(s.below(6));
            KXDiskCache& store = *stores[s.below(2)];
            const std::size_t choice = s.below(12);
            const auto check = [&, known = last.contains(key) ? last[key] : 0](const Value& found) {
                s.require(found.isNull() ? limit > 0 || known == 0 : found == Value(known),
                          "not the last value");
            };
            if (choice < 4) {
                store.setObject(last[key] = ++sets, key);
            } else if (choice < 7) {
                check(store.objectForKey(key));
            } else if (choice == 7) {
                store.removeObjectForKey(key);
                last.erase(key);
            } else if (choice < 10) {
                ++asked;
                store.setObject(sets, key + " later", [&] { ++answered; });
            } else {
                ++asked;
                store.objectForKey(key + " later", [&](const auto&, const Value& found) {
                    ++answered;
                    s.require(found.isNull() || found.asInteger().value_or(-1) <= sets,
                              "a value that nobody set");
                });
            }
            s.require(limit == 0 || store.totalCount() <= limit, "more than the limit");
        });
    }
    s.run();
    s.require(answered == asked, "a callback too many or too few");
    const auto fresh = KXDiskCache::initWithPath(folder);
    for (const auto& [key, number] : last) {
        const Value found = fresh->objectForKey(key);
        s.require(found.isNull() ? limit > 0 : found == Value(number), "the next start finds another value");
    }
}

/// A source of values that changes; whoever changes it removes what is cached. Nobody who asks after that
/// gets what was before.
void loads(Stress& s) {
    const auto cache = KXCache::initWithPath("KXMemoryCache", "KXDiskCache", s.folder());
    const std::string keys[] = {"a", "b"};
    int source[] = {1, 1};
    int answers = 0, callers = 0;
    const auto loader = [&](std::size_t which) -> KXCacheLoader {
        return [&, which](const KXCacheLoading& loading) {
            const int read = source[which];
            Stress::pause();
            if (s.isOneIn(8)) return;
            if (s.isOneIn(8)) throw 1;
            const bool fails = s.isOneIn(6);
            s.later([loading, read, fails] {
                loading.complete(fails ? Result<Value>(Error{ErrorKind::Busy, 0, "source"}) : Value(read));
            });
        };
    };
    const auto ask = [&](std::size_t which) {
        std::stop_source stop;
        KXCacheLoadOptions options;
        options.freshFor =
            s.isOneIn(2) ? KXCacheLoadOptions::kForever : static_cast<double>(s.below(3)) / 1000;
        options.staleFor = static_cast<double>(s.below(3)) / 500;
        options.failure = KXCacheLoadOptions::Failure(s.isOneIn(2));
        options.cancellation = stop.get_token();
        ++callers;
        auto isAnswered = std::make_shared<bool>(false);
        cache->load(keys[which], loader(which), options,
                    [&, which, isAnswered, least = source[which]](auto& answer) {
                        ++answers;
                        s.require(!std::exchange(*isAnswered, true), "answered twice");
                        if (!answer) return;
                        const auto value = answer->asInteger().value_or(-1);
                        s.require(value >= least && value <= source[which], "an outdated value");
                    });
        if (s.isOneIn(4)) s.later([stop]() mutable { stop.request_stop(); });
    };
    for (int i = 0; i < 12; ++i) {
        s.later([&] {
            const std::size_t which = s.below(2);
            if (!s.isOneIn(4)) return ask(which);
            ++source[which];
            if (s.isOneIn(2)) return cache->setObject(source[which], keys[which]);
            cache->removeObjectForKey(keys[which]);
        });
    }
    s.run();
    s.require(answers == callers, "a caller without an answer");
    for (std::size_t which = 0; which < 2; ++which) {
        const auto kept = cache->get<int>(keys[which]);
        s.require(!kept || *kept == source[which], "an outdated value is kept");
    }
}

}  // namespace

const StressScenario kListScenario{"list", list};
const StressScenario kMemoryCacheScenario{"memory-cache", memoryCache};
const StressScenario kDiskCacheScenario{"disk-cache", diskCache};
const StressScenario kLoadScenario{"cache-load", loads};

}  // namespace kx::testing
