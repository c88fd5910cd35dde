#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

const IcuModule* icuModule() {
    static const auto module = openModule<IcuModule>("icu");
    return module ? *module : nullptr;
}

}  // namespace kx
