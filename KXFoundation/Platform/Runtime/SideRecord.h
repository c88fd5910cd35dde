// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <mutex>
#include <vector>

#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Observation.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// What few objects need and none should pay for: made at first need, freed with its object. Private to
/// Runtime.
struct SideRecord {
    std::recursive_mutex monitor;

    std::mutex associatedMutex;
    std::map<const void*, Value> associated;  // guarded by associatedMutex

    std::mutex observersMutex;
    std::vector<std::shared_ptr<ObservationToken::Observer>> observers;  // guarded by observersMutex
};

[[nodiscard]] SideRecord& sideRecord(NSObject& object);
[[nodiscard]] SideRecord* existingSideRecord(const NSObject& object) noexcept;

}  // namespace kx
