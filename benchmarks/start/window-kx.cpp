// SPDX-License-Identifier: MIT

// A window with a label, a picture and a button, drawn off the screen and written as a PNG file.
#include <fstream>

#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

#include "benchmarks/start/PeakMemory.h"

namespace {

void fill(kx::NSView& content, const char* picture) {
    const auto font = kx::NSFont::fontWithName("DejaVu Sans", 14);
    const auto label = kx::make<kx::NSTextField>(kx::NSRect(40, 16, 400, 28));
    label->setEditable(false);
    label->setFont(font);
    label->setStringValue("Balloons over the harbour");
    const auto view = kx::NSImageView::imageViewWithImage(kx::NSImage::initWithContentsOfFile(picture));
    view->setFrame({40, 60, 400, 240});
    const auto button = kx::make<kx::NSButton>(kx::NSRect(180, 324, 120, 36));
    button->setFont(font);
    button->setTitle("Fly with us");
    content.addSubview(label);
    content.addSubview(view);
    content.addSubview(button);
}

}  // namespace

int main(int, char** arguments) {
    kx::WindowSystem::slot().replace(std::make_shared<kx::OffscreenWindowSystem>());
    const auto window = kx::make<kx::NSWindow>(kx::NSRect(0, 0, 480, 376));
    fill(*window->contentView(), arguments[1]);
    window->makeKeyAndOrderFront();
    window->displayIfNeeded();
    const auto png = static_cast<kx::OffscreenSurface&>(*window->surface()).png();
    if (!png) return 1;
    std::ofstream file(arguments[2], std::ios::binary);
    file.write(reinterpret_cast<const char*>(png->data()), static_cast<std::streamsize>(png->size()));
    printPeakMemory();
    return file ? 0 : 1;
}
