// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NotificationObserver.h>

namespace kx {

void NotificationObserver::listenTo(const std::shared_ptr<NSObject>& sender) {
    sender_ = sender.get();
    weakSender_ = sender;
    callWithoutFilter_ = call_.load(std::memory_order_relaxed);
    call_.store(
        [](NotificationObserver& self, const NSNotification& notification) {
            const bool isSender = notification.object().get() == self.sender_ && !self.weakSender_.expired();
            if (isSender) self.callWithoutFilter_(self, notification);
        },
        std::memory_order_relaxed);
}

void NotificationObserver::silence() noexcept {
    call_.store([](NotificationObserver&, const NSNotification&) {}, std::memory_order_release);
}

}  // namespace kx
