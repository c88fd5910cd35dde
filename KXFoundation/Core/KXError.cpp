// SPDX-License-Identifier: MIT

#include <KXFoundation/Core/KXError.h>

namespace kx {

std::shared_ptr<KXError> KXError::errorWithCode(std::int32_t code) {
    return make<KXError>(code);
}

bool KXError::init(std::int32_t code) {
    if (!Super::init()) return false;
    setCode(code);
    return true;
}

}  // namespace kx
