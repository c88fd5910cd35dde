// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/ObserverTable.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>

namespace kx {

NotificationToken::NotificationToken(std::shared_ptr<ObserverTable> table,
                                     NotificationObserver* observer) noexcept
    : table_(std::move(table)), observer_(observer) {}

NotificationToken::NotificationToken(NotificationToken&& other) noexcept
    : table_(std::move(other.table_)), observer_(std::exchange(other.observer_, nullptr)) {}

NotificationToken& NotificationToken::operator=(NotificationToken&& other) noexcept {
    if (this == &other) return *this;
    remove();
    table_ = std::move(other.table_);
    observer_ = std::exchange(other.observer_, nullptr);
    return *this;
}

void NotificationToken::remove() {
    if (NotificationObserver* observer = std::exchange(observer_, nullptr)) {
        const auto table = std::move(table_);
        table->remove(*observer);
    }
}

NSNotificationCenter::NSNotificationCenter() : table_(std::make_shared<ObserverTable>()) {}

NSNotificationCenter::~NSNotificationCenter() {
    table_->close();
}

NSNotificationCenter& NSNotificationCenter::defaultCenter() {
    static constinit ProcessState<NSNotificationCenter> centre;
    return centre.get();
}

void NSNotificationCenter::postNotificationName(const NSNotificationName& name,
                                                std::shared_ptr<NSObject> object, Value userInfo) {
    postNotification(NSNotification(name, std::move(object), std::move(userInfo)));
}

void NSNotificationCenter::postNotificationName(std::string_view name, std::shared_ptr<NSObject> object,
                                                Value userInfo) {
    if (const auto* interned = NSNotificationName::find(name)) {
        postNotification(
            NSNotification(NSNotificationName(*interned), std::move(object), std::move(userInfo)));
    }
}

void NSNotificationCenter::postNotification(const NSNotification& notification) {
    table_->post(notification.name().interned().number, notification);
}

void NSNotificationCenter::removeObserver(const NSObject& observer) {
    table_->removeObject(observer, nullptr, nullptr);
}

void NSNotificationCenter::removeObserver(const NSObject& observer, const NSNotificationName& name,
                                          const NSObject* object) {
    table_->removeObject(observer, &name, object);
}

NotificationToken NSNotificationCenter::add(std::unique_ptr<NotificationObserver> record,
                                            const NSNotificationName& name, const NSObject* observer,
                                            const std::shared_ptr<NSObject>& object) {
    if (object) record->listenTo(object);
    NotificationObserver* const added = record.get();
    table_->add(std::move(record), name, observer);
    return observer ? NotificationToken() : NotificationToken(table_, added);
}

}  // namespace kx
