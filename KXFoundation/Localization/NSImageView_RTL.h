// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSImageView;

/// Gives an image view its picture by name.
struct KX_EXPORT NSImageView_RTL {
    NSImageView_RTL() = delete;

    /// Shows the main bundle's picture of that name, nothing if there is none. The name is not remembered.
    static void setImageName(const std::shared_ptr<NSImageView>& view, std::optional<std::string_view> name);
    /// Always absent.
    [[nodiscard]] static std::optional<std::string> imageName(const std::shared_ptr<NSImageView>& view);
};

}  // namespace kx
