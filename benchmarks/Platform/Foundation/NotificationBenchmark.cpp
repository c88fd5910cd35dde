// SPDX-License-Identifier: MIT

// A notification's way to 1, 10 and 1,000 observers, and one more observer coming and going. Each observer
// adds the notification's number to a sum, which is checked before anything is timed.
#include <boost/signals2.hpp>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <sigc++/sigc++.h>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>

namespace {

thread_local std::int64_t sum;

// A contender: add() registers one more observer for good, comeAndGo() registers and removes one, post()
// delivers.

constexpr char kName[] = "KXThingDidChangeNotification";
constinit const kx::NSNotificationName kInterned{kName};

struct Interned {
    void add() { tokens.push_back(observe()); }
    void comeAndGo() { observe().remove(); }
    void post() { centre.postNotificationName(kInterned, nullptr, 1); }

    kx::NotificationToken observe() {
        return centre.addObserverForName(kInterned, nullptr, [](const kx::NSNotification& notification) {
            sum += notification.userInfo().asInteger().value_or(0);
        });
    }
    kx::NSNotificationCenter centre;
    std::vector<kx::NotificationToken> tokens;
};

struct Text : Interned {
    void post() { centre.postNotificationName(kName, nullptr, 1); }
};

class Thing : public kx::Subclass<Thing, kx::NSObject> {
  public:
    void noted(const kx::NSNotification& notification) {
        sum += notification.userInfo().asInteger().value_or(0);
    }
};

struct Objects : Interned {
    void add() {
        things.push_back(kx::make<Thing>());
        centre.addObserver(things.back(), &Thing::noted, kInterned);
    }
    std::vector<std::shared_ptr<Thing>> things;
};

struct Note {
    std::string name;
    int number;
};
const Note note{kName, 1};

struct Boost {
    auto connect() {
        return signal.connect([](const Note& n) { sum += n.number; });
    }
    void add() { connect(); }
    void comeAndGo() { connect().disconnect(); }
    void post() { signal(note); }
    boost::signals2::signal<void(const Note&)> signal;
};

struct Sigc {
    auto connect() {
        return signal.connect([](const Note& n) { sum += n.number; });
    }
    void add() { connect(); }
    void comeAndGo() { connect().disconnect(); }
    void post() { signal.emit(note); }
    sigc::signal<void(const Note&)> signal;
};

template <class Contender>
std::shared_ptr<Contender> withObservers(int count) {
    auto contender = std::make_shared<Contender>();
    for (int i = 0; i < count; ++i) contender->add();
    sum = 0;
    contender->post();
    return sum == count ? contender : nullptr;
}

template <class Contender>
auto posting(int observers) {
    return [contender = withObservers<Contender>(observers)](benchmark::State& state) {
        if (!contender) return state.SkipWithError("did not reach each observer once");
        for (auto _ : state) {
            contender->post();
            benchmark::DoNotOptimize(sum);
        }
    };
}

template <class Contender>
auto comingAndGoing(int observers) {
    return [contender = withObservers<Contender>(observers)](benchmark::State& state) {
        if (!contender) return state.SkipWithError("did not reach each observer once");
        for (auto _ : state) contender->comeAndGo();
    };
}

template <class Body>
auto* workload(const std::string& name, const std::string& who, Body body) {
    return benchmark::RegisterBenchmark(("notify/" + name + "/" + who).c_str(), body);
}

template <class Contender>
void contend(const std::string& who) {
    workload("post-10", who, posting<Contender>(10));
    workload("post-1000", who, posting<Contender>(1000));
    workload("add-remove-1000", who, comingAndGoing<Contender>(1000));
}

const bool registered = [] {
    workload("post-1-interned", "kx", posting<Interned>(1));
    workload("post-1-text", "kx", posting<Text>(1));
    workload("post-10-objects", "kx", posting<Objects>(10));
    workload("post-10-two-threads", "kx", posting<Interned>(10))->Threads(2)->UseRealTime();
    workload("post-10-two-threads", "boost", posting<Boost>(10))->Threads(2)->UseRealTime();
    for (const char* name : {"post-1-interned", "post-1-text"}) workload(name, "sigc", posting<Sigc>(1));
    contend<Interned>("kx");
    contend<Sigc>("sigc");
    contend<Boost>("boost");
    return true;
}();

}  // namespace
