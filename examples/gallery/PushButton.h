// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Views/NSButton.h>

namespace gallery {

/// A button as wide as its title, the text of `key`.
[[nodiscard]] std::shared_ptr<kx::NSButton> pushButton(std::string_view key, std::function<void()> action);
/// The same with a title that needs no translation.
[[nodiscard]] std::shared_ptr<kx::NSButton> titledButton(std::string_view title,
                                                         std::function<void()> action);

}  // namespace gallery
