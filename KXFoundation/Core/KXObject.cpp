// SPDX-License-Identifier: MIT

#include <KXFoundation/Core/KXObject.h>

namespace kx {

std::shared_ptr<KXObject> KXObject::objectWithID(std::optional<std::string_view> id) {
    return make<KXObject>(id);
}

bool KXObject::init(std::optional<std::string_view> id) {
    if (!Super::init()) return false;
    id_ = id;
    return true;
}

}  // namespace kx
