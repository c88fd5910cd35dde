// SPDX-License-Identifier: MIT

#include <map>
#include <set>
#include <vector>

#include <KXFoundation/Media/KXGIFImageView.h>
#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/UI/OS_dispatch_queue.h>

#include "Core/HarbourRequest.h"
#include "Media/GIFFixture.h"
#include "Stress.h"

namespace kx::testing {

namespace {

class Listener : public Subclass<Listener, NSObject> {};

/// Callbacks post, add, remove and wait in their turn.
class Notifications {
  public:
    explicit Notifications(Stress& stress) : s_(stress) {}

    void step(int depth) {
        switch (s_.below(6)) {
            case 0:
            case 1:
                return depth < 3 && posts_ < 40 ? post(depth) : void();
            case 2:
            case 3:
                return observers_.size() < 10 ? add() : void();
            case 4:
                return observers_.empty() ? void() : remove();
            default:
                return Stress::pause();
        }
    }
    /// Whether every closure has gone with its observer.
    bool end() {
        observers_.clear();
        centre_.reset();
        return mark_.use_count() == 1;
    }

  private:
    struct Observer {
        int firstPost;
        NotificationToken token;
        std::shared_ptr<Listener> listener;
    };

    void post(int depth) {
        const int number = posts_++;
        depths_[number] = depth;
        std::vector<int> before;
        for (const auto& [id, observer] : observers_) before.push_back(id);
        centre_->postNotificationName(kName, nullptr, number);
        for (const int id : before) {
            const bool wasCalled = calls_.contains({number, id});
            s_.require(wasCalled || !observers_.contains(id), "an observer was left out");
        }
    }
    void add() {
        const int id = made_++;
        Observer& observer = observers_[id];
        observer.firstPost = posts_;
        auto callback = [this, id, mark = mark_](const NSNotification& notification) {
            called(id, notification);
        };
        if (s_.isOneIn(2)) {
            observer.token = centre_->addObserverForName(kName, nullptr, std::move(callback));
            return;
        }
        observer.listener = make<Listener>();
        centre_->addObserver(
            observer.listener, [callback](Listener&, const NSNotification& n) { callback(n); }, kName);
    }
    void remove() {
        const auto place = static_cast<std::ptrdiff_t>(s_.below(observers_.size()));
        const auto gone = observers_.extract(std::next(observers_.begin(), place));
        const Observer& observer = gone.mapped();
        if (observer.listener) centre_->removeObserver(*observer.listener);
    }
    void called(int id, const NSNotification& notification) {
        const auto number = static_cast<int>(notification.userInfo().asInteger().value_or(-1));
        const auto found = observers_.find(id);
        s_.require(found != observers_.end(), "called after its removal");
        s_.require(found == observers_.end() || number >= found->second.firstPost, "called by an older post");
        s_.require(calls_.insert({number, id}).second, "called twice by one post");
        s_.require(std::exchange(latest_[number], id) <= id, "called out of turn");
        if (s_.isOneIn(2)) step(depths_[number] + 1);
    }

    static const NSNotificationName kName;
    Stress& s_;
    std::unique_ptr<NSNotificationCenter> centre_ = std::make_unique<NSNotificationCenter>();
    std::map<int, Observer> observers_;  // those that have not been removed
    std::set<std::pair<int, int>> calls_;
    std::map<int, int> latest_, depths_;  // by post
    int posts_ = 0, made_ = 0;
    std::shared_ptr<int> mark_ = std::make_shared<int>();
};
const NSNotificationName Notifications::kName{"StressDidHappen"};

void notifications(Stress& s) {
    Notifications scenario(s);
    for (int i = 0; i < 24; ++i) s.later([&] { scenario.step(0); });
    s.run();
    s.require(scenario.end(), "a closure outlives its observer");
}

/// One request to a queue, the first on main with a time limit. Answers come late, twice, with errors, or
/// never.
void requests(Stress& s) {
    struct User {
        std::shared_ptr<HarbourRequest> request = make<HarbourRequest>();
        std::shared_ptr<DispatchQueue> queue = DispatchQueue::serial("user");
        int starts = 0, answers = 0;
        std::int32_t number = 0;  // of the start that waits
    };
    User users[3];
    users[0].queue = DispatchQueue::main().shared_from_this();
    users[0].request->setTimeout(std::chrono::milliseconds(3));
    std::int32_t last = 0;
    const auto method = [&](User& user) -> KXRequest::Method {
        return [&](KXRequest::Error&) {
            if (s.isOneIn(8)) return -5;
            const std::int32_t number = user.number = ++last;
            for (std::size_t count = s.below(8) == 0 ? 0 : 1 + s.below(2); count > 0; --count) {
                const auto code = s.isOneIn(4) ? std::optional<std::int32_t>(-7) : std::nullopt;
                user.queue->after(std::chrono::milliseconds(s.below(6)),
                                  [number, code] { postAnswer(number, code, number); });
            }
            return number;
        };
    };
    const auto start = [&](User& user) {
        ++user.starts;
        const bool isBusy = user.request->identifier() >= 1;
        auto calls = std::make_shared<int>(0);
        user.request->requestMethod(method(user), [&, isBusy, calls](bool success, const auto& error) {
            ++user.answers;
            s.require(++*calls == 1, "a callback was called twice");
            s.require(success == (!error || error->code() >= 0), "success and error disagree");
            s.require(isBusy == (error && error->code() == KXRequest::kBusyCode), "refused, or not, wrongly");
            const Value answered = user.request->response()["id"];
            s.require(!success || answered == Value(user.number), "another request's answer");
        });
    };
    for (int i = 0; i < 15; ++i) {
        User& user = users[s.below(3)];
        user.queue->after(std::chrono::milliseconds(s.below(12)),
                          [&] { s.later([&] { user.queue->async([&] { start(user); }); }); });
    }
    s.run();
    for (const User& user : users) {
        const int waiting = user.request->identifier() >= 1 ? 1 : 0;
        s.require(user.starts == user.answers + waiting, "a start without its answer");
        s.require(&user != users || waiting == 0, "no end of waiting in spite of the time limit");
    }
}

/// Views change their minds while files are decoded.
void gifs(Stress& s) {
    static const std::string names[] = {"one.gif", "other.gif", "animated.gif", "none.gif", "text.gif"};
    const std::string folder = s.directory() / "gifs/";
    static const TemporaryDirectory* written = nullptr;
    if (std::exchange(written, &s.directory()) != &s.directory()) {
        write(s.directory(), "gifs/one.gif", colouredGIF({5}));
        write(s.directory(), "gifs/other.gif", colouredGIF({5}, 0, 3));
        write(s.directory(), "gifs/animated.gif", colouredGIF({5, 5}));
        write(s.directory(), "gifs/text.gif", {'x'});
    }
    std::vector<std::shared_ptr<KXGIFImageView>> views;
    for (int i = 0; i < 3; ++i) views.push_back(KXGIFImageView::initWithGIFPath(folder + names[s.below(5)]));
    for (int i = 0; i < 12; ++i) {
        s.later([&] {
            DispatchQueue::main().async([&] { views[s.below(3)]->setGIFPath(folder + names[s.below(5)]); });
        });
    }
    s.run();
    for (const auto& view : views) {
        for (const auto& [name, side] : {std::pair("one.gif", 2), std::pair("other.gif", 3)}) {
            const bool isShown = view->image() && view->filePath() == folder + name;
            s.require(!isShown || view->image()->size().width == side, "the picture of another path");
        }
    }
    // Whatever came, a picture that can be shown is shown once all is quiet.
    for (const auto& view : views) view->setGIFPath(folder + "one.gif");
    s.run();
    for (const auto& view : views)
        s.require(view->image() && view->image()->size().width == 2, "the last path is not shown");
    s.require(frameOf(views[0]->image()) == 0, "the picture is not whole");
}

void once(Stress& s) {
    std::map<std::string, int> runs;
    const auto call = [&](const auto& self, int depth) -> void {
        const std::string token = "stress." + std::to_string(s.below(6));
        OS_dispatch_queue::once(token, [&] {
            s.require(++runs[token] == 1, "a block ran twice");
            if (depth < 3) self(self, depth + 1);
            OS_dispatch_queue::once(token, [&] { s.require(false, "its own token again"); });
        });
        s.require(runs[token] == 1, "a block has not run");
    };
    for (int i = 0; i < 16; ++i) s.later([&] { call(call, 0); });
    s.run();
}

}  // namespace

const StressScenario kNotificationScenario{"notification-centre", notifications};
const StressScenario kRequestScenario{"requests", requests};
const StressScenario kGIFScenario{"gif-queue", gifs};
const StressScenario kOnceScenario{"run-once", once};

}  // namespace kx::testing
