// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string_view>

#include <KXFoundation/Cache/KXStoreClass.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

/// Private to Cache.
namespace kx {

/// A store that no initialiser has run on yet; none if the class does not conform or cannot be instantiated.
template <class Protocol>
[[nodiscard]] std::shared_ptr<Protocol> allocatedStore(KXStoreClass cls) {
    if (!cls.conformsTo(Protocol::classObject())) return nullptr;
    return objectCast<Protocol>(cls.get()->allocate());
}

/// A store made with its protocol's own initialiser; none if that refuses too.
template <class Protocol>
[[nodiscard]] std::shared_ptr<Protocol> madeStore(KXStoreClass cls, std::optional<std::string_view> place) {
    auto store = allocatedStore<Protocol>(cls);
    return store && store->init(place) ? store : nullptr;
}

}  // namespace kx
