// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/SideRecord.h>

namespace kx {

SideRecord& sideRecord(NSObject& object) {
    if (SideRecord* found = object.side_.load(std::memory_order_acquire)) return *found;
    auto made = std::make_unique<SideRecord>();
    SideRecord* expected = nullptr;
    if (object.side_.compare_exchange_strong(expected, made.get(), std::memory_order_acq_rel)) {
        return *made.release();
    }
    return *expected;
}

SideRecord* existingSideRecord(const NSObject& object) noexcept {
    return object.side_.load(std::memory_order_acquire);
}

}  // namespace kx
