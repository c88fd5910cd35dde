// SPDX-License-Identifier: MIT

#include "pages/RequestsPage.h"

#include <algorithm>
#include <utility>

#include <KXFoundation/Core/KXRequestAnswer.h>
#include <KXFoundation/Platform/Foundation/NotificationName.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

#include "Gallery.h"
#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

constexpr std::size_t kShownEvents = 12;
inline constinit const NSNotificationName PrimesDidAnswer{"PrimesDidAnswer"};

void postAnswer(std::int32_t number, std::int64_t primes) {
    NSNotificationCenter::defaultCenter().postNotificationName(
        PrimesDidAnswer, nullptr, DictionaryBuilder().set("number", number).set("primes", primes).build());
}

std::int64_t primesBelow(std::int64_t limit) {
    std::int64_t count = 0;
    for (std::int64_t n = 2; n < limit; ++n) {
        bool isPrime = true;
        for (std::int64_t d = 2; d * d <= n && isPrime; ++d) isPrime = n % d != 0;
        if (isPrime) ++count;
    }
    return count;
}

/// The service: counts on a worker thread, answers on the main queue.
std::int32_t countPrimes() {
    static constinit ProcessState<std::int32_t> last;
    const std::int32_t number = ++last.get();
    DispatchQueue::shared().async([number] {
        const std::int64_t primes = primesBelow(200'000);
        DispatchQueue::main().async([number, primes] { postAnswer(number, primes); });
    });
    return number;
}

class PrimesRequest : public Subclass<PrimesRequest, KXRequest> {
  public:
    std::string requestNotificationName() const override { return std::string(PrimesDidAnswer.text()); }
    std::int32_t requestIDInNotification(const NSNotification& notification) const override {
        return static_cast<std::int32_t>(notification.userInfo()["number"].asInteger().value_or(0));
    }
    Value responseInNotification(const NSNotification& notification) const override {
        return notification.userInfo();
    }
};

std::string primesIn(const Value& response) {
    return std::to_string(response["primes"].asInteger().value_or(0));
}

}  // namespace

RequestsPage::RequestsPage() : request_(make<PrimesRequest>()) {}
RequestsPage::~RequestsPage() = default;

void RequestsPage::note(std::string_view key, std::string_view detail) {
    events_.push_back({std::string(key), std::string(detail)});
    gallery_->rebuild();
}

void RequestsPage::start() {
    const bool isBusy = request_->identifier() >= 1;
    request_->requestMethod([](auto&) { return countPrimes(); },
                            [this](bool success, const auto& error) {
                                if (success) return note("requests.answered", primesIn(request_->response()));
                                note("requests.refused", error->message().value_or(""));
                            });
    if (isBusy) return;
    note("requests.started", std::to_string(request_->identifier()));
    postAnswer(request_->identifier() + 1000, 0);
    note("requests.ignored", std::to_string(request_->identifier() + 1000));
}

DetachedTask RequestsPage::await() {
    const auto outcome = co_await request_->answer([](auto&) { return countPrimes(); });
    if (!outcome) co_return;  // busy, or the page is gone, and the request with it
    note("requests.awaited", primesIn(outcome->response));
}

void RequestsPage::build(Column& column, Gallery& gallery) {
    const bool isFirst = !std::exchange(gallery_, &gallery);
    if (isFirst) {
        start();
        start();  // refused: the first is still waiting
    }
    column.title(text("requests.title"));
    column.paragraph(text("requests.explanation"));
    column.space(12);
    column.row({pushButton("requests.start", [this] { start(); }),
                pushButton("requests.await", [this] { await(); })});
    column.space(8);
    const bool isWaiting = request_->identifier() >= 1;
    column.pair(text("requests.state"), text(isWaiting ? "requests.waiting" : "requests.idle"));
    column.space(8);
    const std::size_t first = events_.size() - std::min(events_.size(), kShownEvents);
    for (std::size_t i = first; i < events_.size(); ++i) column.pair(text(events_[i].key), events_[i].detail);
}

}  // namespace gallery
