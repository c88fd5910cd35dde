// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/NSImageView_RTL.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

namespace kx {

void NSImageView_RTL::setImageName(const std::shared_ptr<NSImageView>& view,
                                   std::optional<std::string_view> name) {
    if (view) view->setImage(NSImage::imageNamed(name));
}

std::optional<std::string> NSImageView_RTL::imageName(const std::shared_ptr<NSImageView>&) {
    return std::nullopt;
}

}  // namespace kx
