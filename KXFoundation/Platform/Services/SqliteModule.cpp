#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/SqliteModule.h>

namespace kx {

const SqliteModule* sqliteModule() {
    static const auto module = openModule<SqliteModule>("sqlite");
    return module ? *module : nullptr;
}

}  // namespace kx
