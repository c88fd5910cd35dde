// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>

namespace kx {

const SqliteModule* sqliteModule() {
    // A plain pointer: objects that outlive main still reach the module.
    static const SqliteModule* const module = [] {
        const auto opened = openModule<SqliteModule>("sqlite");
        return opened ? *opened : nullptr;
    }();
    return module;
}

}  // namespace kx
