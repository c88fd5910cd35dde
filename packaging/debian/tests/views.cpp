// SPDX-License-Identifier: MIT

// A text drawn without a display: "ink" if it left any.
#include <algorithm>
#include <cstdio>

#include <KXFoundation/Media/NSView_Snapshot.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Views/NSTextField.h>

int main() {
    const auto label = kx::make<kx::NSTextField>(kx::NSRect{{0, 0}, {120, 30}});
    label->setStringValue("Gênes");
    const auto picture = kx::NSView_Snapshot::snapshot(label);
    const auto bitmap = picture ? picture->bitmapAtScale(1) : nullptr;
    const bool ink = bitmap && std::ranges::any_of(bitmap->pixels(), [](auto pixel) { return pixel != 0; });
    std::puts(ink ? "ink" : "nothing was drawn");
}
