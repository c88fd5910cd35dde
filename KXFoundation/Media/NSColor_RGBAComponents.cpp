// SPDX-License-Identifier: MIT

#include <KXFoundation/Media/NSColor_RGBAComponents.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {

void NSColor_RGBAComponents::getRGBAComponents(const NSColor* color, double* components) noexcept {
    if (!components) return;
    const ColorComponents of = color ? color->components() : ColorComponents();
    components[0] = of.red;
    components[1] = of.green;
    components[2] = of.blue;
    components[3] = of.alpha;
}

}  // namespace kx
