// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <concepts>
#include <cstdint>
#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotification.h>
#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>

/// What the notification centre keeps for each registration. Private to the centre; it stands in a header
/// because the closure lies inside the record, so that a call goes straight to it.
namespace kx {

class KX_EXPORT NotificationObserver : public Retirable {
  public:
    using Call = void (*)(NotificationObserver&, const NSNotification&);

    void operator()(const NSNotification& notification) {
        call_.load(std::memory_order_acquire)(*this, notification);
    }

    /// Calls only for notifications of this sender, from now on.
    void listenTo(const std::shared_ptr<NSObject>& sender);

    /// Makes every later call do nothing.
    void silence() noexcept;

    [[nodiscard]] bool listensTo(const NSObject& sender) const noexcept { return sender_ == &sender; }

    /// Whether the observing object is gone, and no call can reach it any more.
    [[nodiscard]] virtual bool isGone() const noexcept { return false; }

  protected:
    explicit NotificationObserver(Call call) noexcept : call_(call) {}

  private:
    friend class ObserverTable;

    std::atomic<Call> call_;
    std::uint32_t name_ = 0;   // these five are guarded by the table's lock
    std::uint32_t index_ = 0;  // in the name's list
    const NSObject* object_ = nullptr;
    NotificationObserver* nextOfObject_ = nullptr;
    NotificationObserver* previousOfObject_ = nullptr;

    Call callWithoutFilter_ = nullptr;
    const NSObject* sender_ = nullptr;
    std::weak_ptr<NSObject> weakSender_;  // tells the sender from a later object at the same address
};

template <std::invocable<const NSNotification&> Block>
class BlockObserver final : public NotificationObserver {
  public:
    explicit BlockObserver(Block block) : NotificationObserver(&run), block_(std::move(block)) {}

  private:
    static void run(NotificationObserver& self, const NSNotification& notification) {
        static_cast<BlockObserver&>(self).block_(notification);
    }
    Block block_;
};

/// Calls a member function, or a function of the object, of an object that it holds weakly.
template <class T, class Callback>
class ObjectObserver final : public NotificationObserver {
  public:
    ObjectObserver(const std::shared_ptr<T>& object, Callback callback)
        : NotificationObserver(&run),
          address_(object.get()),
          object_(object),
          callback_(std::move(callback)) {}

    [[nodiscard]] bool isGone() const noexcept override { return object_.expired(); }

  private:
    static void run(NotificationObserver& self, const NSNotification& notification) {
        auto& observer = static_cast<ObjectObserver&>(self);
        if constexpr (MainThreadOnly<T>) {
            // It dies on this thread only, and not before the post is over (see MainThreadDeleter).
            if (isMainThread()) {
                if (!observer.isGone()) observer.deliver(*observer.address_, notification);
                return;
            }
        }
        if (const auto object = observer.object_.lock()) observer.deliver(*object, notification);
    }

    void deliver(T& object, const NSNotification& notification) {
        if constexpr (std::invocable<Callback&, T&, const NSNotification&>) {
            std::invoke(callback_, object, notification);
        } else {
            std::invoke(callback_, object);
        }
    }

    T* address_;
    std::weak_ptr<T> object_;
    Callback callback_;
};

}  // namespace kx
