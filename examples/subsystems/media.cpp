// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Core/KXPhotoFileInfo.h>
#include <KXFoundation/Media/KXAnimatedGIFImageView.h>
#include <KXFoundation/Media/KXPhotoUtils.h>
#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Platform/Foundation/NSBundle.h>
#include <KXFoundation/Platform/Foundation/NSError.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>

using namespace kx;

void playGIF() {
    const auto view =
        KXAnimatedGIFImageView::initWithGIFPath(NSBundle::mainBundle()->pathForResource("spinner", "gif"));
    while (view->frameCount() == 0) EventLoop::main().runOnce();  // it is decoded in the background
    view->setSpeed(2);
    view->seekToFrame(3);
    std::printf("frame %d of %d\n", static_cast<int>(view->currentFrame()),
                static_cast<int>(view->frameCount()));
}

void workOnPicture(const std::shared_ptr<NSImage>& boat) {
    const auto orange = NSColor_HEX::colorWithHexString("#FF8800");
    const auto tinted = NSImage_Mask::imageContentWithColor(boat, orange);
    const auto small = NSImage_Mask::fixImageSizeWithWidth(tinted, 32);
    std::printf("%.0f x %.0f points, %d x %d when scaled\n", tinted->size().width, tinted->size().height,
                static_cast<int>(small->size().width), static_cast<int>(small->size().height));
    std::printf("\"#FFF\" is %s\n",
                NSColor_HEX::colorWithHexString("#FFF")->alphaComponent() == 0 ? "clear" : "white");
}

/// Into the photo library: a real file in an album of the user's pictures.
void exportPicture(const std::string& path) {
    const auto file = make<KXPhotoFileInfo>();
    file->setUrl(NSURL::fileURLWithPath(path));
    Semaphore done;
    KXPhotoUtils::createAsset(file, KXPhotoUtils::defaultAlbum(), [&](bool success, const auto& error) {
        std::printf("export: %s\n", success ? "done" : error->description().c_str());
        done.signal();
    });
    done.wait();
}

int main() {
    playGIF();
    workOnPicture(NSImage::imageNamed("boat"));
    exportPicture(*NSBundle::mainBundle()->pathForResource("boat", "png"));
}
