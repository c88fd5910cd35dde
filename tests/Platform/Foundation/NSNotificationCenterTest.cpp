// SPDX-License-Identifier: MIT

#include <atomic>
#include <functional>
#include <stdexcept>
#include <thread>

#include <gmock/gmock.h>
#include <malloc.h>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/NotificationName.h>

namespace kx {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;

constinit const NSNotificationName kArrived{"test arrived"};
constinit const NSNotificationName kLeft{"test left"};

class Harbour : public Subclass<Harbour, NSObject> {
  public:
    ~Harbour() override {
        if (centre) centre->removeObserver(*this);
    }
    void shipArrived(const NSNotification& notification) {
        ships.push_back(*notification.userInfo().asInteger());
    }
    void shipLeft() { ships.clear(); }

    NSNotificationCenter* centre = nullptr;
    std::vector<std::int64_t> ships;
};

struct NSNotificationCenterTest : ::testing::Test {
    /// A block that notes its letter, then does something.
    auto noting(char letter, std::function<void()> then = nullptr) {
        return [this, letter, then = std::move(then)](const NSNotification&) {
            calls.push_back(letter);
            if (then) then();
        };
    }
    NotificationToken observe(char letter, std::function<void()> then = nullptr) {
        return centre.addObserverForName(kArrived, nullptr, noting(letter, std::move(then)));
    }
    std::string posted() {
        calls.clear();
        centre.postNotificationName(kArrived);
        return calls;
    }

    NSNotificationCenter centre;
    std::string calls;
};

TEST_F(NSNotificationCenterTest, CallsInOrderByNameAndSender) {
    const auto sender = make<Harbour>();
    const auto a = observe('a');
    const auto b = centre.addObserverForName(NSNotificationName::named("test arrived"), sender, noting('b'));
    const auto c = centre.addObserverForName(kLeft, nullptr, noting('c'));
    const auto d = observe('d');
    const std::tuple<std::string_view, std::shared_ptr<NSObject>, std::string_view> rows[] = {
        {"test arrived", nullptr, "ad"},
        {"test arrived", sender, "abd"},
        {"test arrived", make<Harbour>(), "ad"},
        {"test left", sender, "c"},
        {"test unheard of", sender, ""}};
    for (const auto& [name, from, want] : rows) {
        calls.clear();
        centre.postNotificationName(name, from);
        EXPECT_EQ(calls, want) << name;
    }
    EXPECT_EQ(NSNotificationName::find("test unheard of"), nullptr) << "a post does not intern";
}

TEST_F(NSNotificationCenterTest, ObserversOfAnObject) {
    const auto harbour = make<Harbour>();
    const auto sender = make<Harbour>();
    centre.addObserver(harbour, &Harbour::shipArrived, kArrived);
    centre.addObserver(harbour, &Harbour::shipArrived, kArrived, sender);
    centre.addObserver(harbour, &Harbour::shipLeft, kLeft);
    centre.postNotificationName(kArrived, sender, 1);
    centre.postNotificationName(kArrived, nullptr, 2);
    EXPECT_THAT(harbour->ships, ElementsAre(1, 1, 2));
    centre.removeObserver(*harbour, kArrived, sender.get());
    centre.postNotificationName(kArrived, sender, 3);
    EXPECT_THAT(harbour->ships, ElementsAre(1, 1, 2, 3));
    centre.postNotificationName(kLeft);
    EXPECT_THAT(harbour->ships, IsEmpty());
    centre.removeObserver(*harbour);
    centre.postNotificationName(kArrived, nullptr, 4);
    EXPECT_THAT(harbour->ships, IsEmpty());
}

TEST_F(NSNotificationCenterTest, AnObjectMayEndInItsOwnCallbackAndRemoveItselfThere) {
    auto harbour = make<Harbour>();
    harbour->centre = &centre;
    for (int i = 0; i < 40; ++i) {  // enough to pack the list when they go
        centre.addObserver(
            harbour, [&](Harbour&) { harbour.reset(); }, kArrived);
    }
    const auto last = observe('z');
    EXPECT_EQ(posted(), "z");
    EXPECT_EQ(harbour, nullptr);
    EXPECT_EQ(posted(), "z");
}

TEST_F(NSNotificationCenterTest, ChangesDuringAPost) {
    std::vector<NotificationToken> added;
    NotificationToken self, later;
    const auto first = observe('a', [&] {
        later.remove();
        for (int i = 0; i < 20; ++i) added.push_back(observe('n'));  // the list grows under the post
    });
    self = observe('b', [&] { self.remove(); });
    later = observe('c');
    const auto last = observe('d');
    EXPECT_EQ(posted(), "abd");
    EXPECT_EQ(posted(), "ad" + std::string(20, 'n'));
}

TEST_F(NSNotificationCenterTest, TheClosureGoesWithItsRegistrationButNotUnderACall) {
    auto captured = std::make_shared<int>(7);
    NotificationToken token;
    const auto block = [captured, &token](const NSNotification&) {
        token.remove();
        EXPECT_EQ(captured.use_count(), 3) << "here, in the test and in this local copy";
    };
    token = centre.addObserverForName(kArrived, nullptr, block);
    centre.postNotificationName(kArrived);
    EXPECT_EQ(captured.use_count(), 2) << "gone when the post is over";
    token = centre.addObserverForName(kArrived, nullptr, block);
    token.remove();
    EXPECT_EQ(captured.use_count(), 2) << "gone at once";
}

TEST_F(NSNotificationCenterTest, AnExceptionEndsThePostAndLeavesTheCentreUsable) {
    bool throwing = true;
    auto captured = std::make_shared<int>(7);
    auto a = observe('a', [&throwing, captured] {
        if (throwing) throw std::runtime_error("the application's own");
    });
    const auto b = observe('b');
    EXPECT_THROW(posted(), std::runtime_error);
    throwing = false;
    EXPECT_EQ(posted(), "ab");
    a.remove();
    EXPECT_EQ(captured.use_count(), 1) << "no mark was left behind";
}

TEST_F(NSNotificationCenterTest, ATokenMayOutliveTheCentre) {
    auto captured = std::make_shared<int>(7);
    NotificationToken token;
    {
        NSNotificationCenter local;
        token = local.addObserverForName(kArrived, nullptr, [captured](const NSNotification&) {});
        EXPECT_EQ(captured.use_count(), 2);
    }
    EXPECT_EQ(captured.use_count(), 1);
    token.remove();
}

TEST_F(NSNotificationCenterTest, ATypedNameCarriesItsPayload) {
    static constinit const NotificationName<std::string> kSpoken{"test spoken"};
    static constinit const NotificationName<std::shared_ptr<Harbour>> kBuilt{"test built"};
    std::string heard;
    const auto text = kSpoken.observe([&](std::string_view said) { heard += said; }, centre);
    const auto object =
        kBuilt.observe([&](const std::shared_ptr<Harbour>& made) { heard += made->className(); }, centre);
    kSpoken.post("ahoy ", centre);
    centre.postNotificationName("test spoken", nullptr, 7);  // of another type
    centre.postNotificationName("test spoken", nullptr, "there ");
    kBuilt.post(make<Harbour>(), centre);
    centre.postNotificationName("test built", nullptr, make<NSObject>());
    EXPECT_EQ(heard, "ahoy there Harbour");
}

TEST_F(NSNotificationCenterTest, ManyRegistrationsInTurnTakeNoMoreMemory) {
    const auto cycle = [&] {
        for (int i = 0; i < 1000; ++i) {
            const auto token = observe('a');
            const auto mortal = make<Harbour>();
            centre.addObserver(mortal, &Harbour::shipLeft, kLeft);  // never removed by hand
        }
    };
    cycle();
    const std::size_t before = mallinfo2().uordblks;
    for (int i = 0; i < 10; ++i) cycle();
    EXPECT_LT(mallinfo2().uordblks, before + 100'000);
}

TEST(NSNotificationCenterThreads, PostWhileOthersComeAndGo) {
    NSNotificationCenter centre;
    constexpr int kPosts = 20'000;
    std::atomic<std::int64_t> steady = 0, calls = 0, onDestroyed = 0;
    struct Captured {  // a call after the closure's end shows here, or to a sanitizer
        std::atomic<bool> alive = true;
        ~Captured() { alive = false; }
    };
    const auto stays = centre.addObserverForName(kArrived, nullptr, [&](const NSNotification&) { ++steady; });
    std::atomic<int> running = 2;
    const auto poster = [&] {
        for (int i = 0; i < kPosts; ++i) centre.postNotificationName(kArrived);
        --running;
    };
    std::thread posters[] = {std::thread(poster), std::thread(poster)};
    while (running > 0) {
        const auto harbour = make<Harbour>();
        auto token = centre.addObserverForName(
            kArrived, nullptr, [&, captured = std::make_unique<Captured>()](const NSNotification&) {
                ++(captured->alive ? calls : onDestroyed);
            });
        centre.addObserver(
            harbour, [](const Harbour& object) { EXPECT_TRUE(object.ships.empty()); }, kArrived);
    }
    for (std::thread& thread : posters) thread.join();
    EXPECT_EQ(steady, 2 * kPosts);
    EXPECT_EQ(onDestroyed, 0);
}

}  // namespace
}  // namespace kx
