// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Core/KXRequest.h>
#include <KXFoundation/Core/KXRequestAnswer.h>
#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Runtime/DetachedTask.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>

using namespace kx;

/// A service that has its own thread to ask on, and broadcasts each answer on the main queue.
std::int32_t askForBerths(int free) {
    static std::int32_t last = 0;
    const std::int32_t number = ++last;
    DispatchQueue::shared().async([=] {
        DispatchQueue::main().async([=] {
            NSNotificationCenter::defaultCenter().postNotificationName(
                "BerthsDidAnswer", nullptr,
                DictionaryBuilder().set("number", number).set("free", free).build());
        });
    });
    return number;
}

/// How the service's notifications are recognised and read.
class BerthsRequest : public Subclass<BerthsRequest, KXRequest> {
  public:
    std::string requestNotificationName() const override { return "BerthsDidAnswer"; }
    std::int32_t requestIDInNotification(const NSNotification& notification) const override {
        return static_cast<std::int32_t>(notification.userInfo()["number"].asInteger().value_or(0));
    }
    Value responseInNotification(const NSNotification& notification) const override {
        return notification.userInfo();
    }
    int free() const { return static_cast<int>(response()["free"].asInteger().value_or(0)); }
};

/// The same with co_await.
DetachedTask askAgain(std::shared_ptr<BerthsRequest> request) {
    const auto outcome = co_await request->answer([](auto&) { return askForBerths(3); });
    if (outcome && outcome->success) std::printf("awaited: %d free\n", request->free());
    EventLoop::main().stop();
}

int main() {
    const auto request = make<BerthsRequest>();
    request->requestMethod([](auto&) { return askForBerths(12); },
                           [&](bool success, const auto&) {
                               std::printf("answer: %s, %d free\n", success ? "success" : "failure",
                                           request->free());
                               DispatchQueue::main().async([&] { askAgain(request); });
                           });
    request->requestMethod(
        [](auto&) { return askForBerths(0); },  // while the first one waits
        [](bool, const auto& error) { std::printf("refused with code %d\n", error->code()); });
    EventLoop::main().run();
}
