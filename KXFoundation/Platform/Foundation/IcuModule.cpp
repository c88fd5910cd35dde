// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

const IcuModule* icuModule() {
    // A plain pointer: objects that outlive main still reach the module.
    static const IcuModule* const module = [] {
        const auto opened = openModule<IcuModule>("icu");
        return opened ? *opened : nullptr;
    }();
    return module;
}

}  // namespace kx
