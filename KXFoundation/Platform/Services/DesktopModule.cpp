#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

namespace kx {

const DesktopModule* desktopModule() {
    const auto module = openModule<DesktopModule>("desktop");
    return module ? *module : nullptr;
}

}  // namespace kx
