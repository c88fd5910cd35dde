#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

namespace kx {

const DesktopModule* desktopModule() {
    const auto module = openModule("desktop");
    if (!module) return nullptr;
    const auto* table = static_cast<const DesktopModule*>(*module);
    return table->version == DesktopModule::kVersion ? table : nullptr;
}

}  // namespace kx
