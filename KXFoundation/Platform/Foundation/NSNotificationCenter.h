// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <memory>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotification.h>
#include <KXFoundation/Platform/Foundation/NSNotificationName.h>
#include <KXFoundation/Platform/Foundation/NotificationObserver.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class ObserverTable;

/// A block observer's registration, which ends when the token is destroyed or remove() is called. Any thread,
/// but one at a time. May outlive the centre.
class KX_EXPORT NotificationToken {
  public:
    NotificationToken() noexcept = default;
    NotificationToken(NotificationToken&& other) noexcept;
    NotificationToken& operator=(NotificationToken&& other) noexcept;
    ~NotificationToken() { remove(); }

    void remove();

  private:
    friend class NSNotificationCenter;
    NotificationToken(std::shared_ptr<ObserverTable> table, NotificationObserver* observer) noexcept;

    std::shared_ptr<ObserverTable> table_;
    NotificationObserver* observer_ = nullptr;
};

/// Broadcasts named notifications, each on the thread that posts it, to whoever registered for the name, in
/// the order of registration, before post returns.
///
/// Any thread may post, add and remove at any time, inside a callback too. A post takes no lock. An observer
/// that was added during a post is not called by that post. After removal the same thread calls the observer
/// no more, not even from a post that is under way; another thread that is already about to call it still
/// may. The closure is destroyed once no such call can be running, mostly before the removal returns. An
/// exception that a callback throws ends the post and reaches its caller.
class KX_EXPORT NSNotificationCenter {
  public:
    NSNotificationCenter();
    ~NSNotificationCenter();
    NSNotificationCenter(const NSNotificationCenter&) = delete;
    NSNotificationCenter& operator=(const NSNotificationCenter&) = delete;

    [[nodiscard]] static NSNotificationCenter& defaultCenter();

    void postNotificationName(const NSNotificationName& name, std::shared_ptr<NSObject> object = nullptr,
                              Value userInfo = {});
    /// By text. Does not intern a name that nobody has used.
    void postNotificationName(std::string_view name, std::shared_ptr<NSObject> object = nullptr,
                              Value userInfo = {});
    void postNotification(const NSNotification& notification);

    /// Calls `callback(*observer, notification)` or `callback(*observer)`, a member function or any function,
    /// for each notification of the name, and of the sender `object` alone if one is given. The observer is
    /// held weakly, its registrations end with it at the latest (what the callback holds may go later, with
    /// the next changes to the name's observers). Each registration calls once.
    ///
    ///     centre.addObserver(self(), &KXToastView::dismissWithoutAnimation, name);
    template <std::derived_from<NSObject> T, class Callback>
    void addObserver(const std::shared_ptr<T>& observer, Callback callback, const NSNotificationName& name,
                     const std::shared_ptr<NSObject>& object = nullptr) {
        if (!observer) return;
        add(std::make_unique<ObjectObserver<T, Callback>>(observer, std::move(callback)), name,
            observer.get(), object);
    }

    /// Calls the block until the token ends.
    template <std::invocable<const NSNotification&> Block>
    [[nodiscard]] NotificationToken addObserverForName(const NSNotificationName& name,
                                                       const std::shared_ptr<NSObject>& object, Block block) {
        return add(std::make_unique<BlockObserver<Block>>(std::move(block)), name, nullptr, object);
    }

    /// Ends all of the observer's registrations. Also from the observer's destructor.
    void removeObserver(const NSObject& observer);
    /// Ends those for the name; for the sender alone if one is given.
    void removeObserver(const NSObject& observer, const NSNotificationName& name,
                        const NSObject* object = nullptr);

  private:
    NotificationToken add(std::unique_ptr<NotificationObserver> record, const NSNotificationName& name,
                          const NSObject* observer, const std::shared_ptr<NSObject>& object);

    std::shared_ptr<ObserverTable> table_;
};

}  // namespace kx
