// SPDX-License-Identifier: MIT

#include "PushButton.h"

#include <utility>

#include "Column.h"

namespace gallery {

using namespace kx;

std::shared_ptr<NSButton> pushButton(std::string_view key, std::function<void()> action) {
    return titledButton(text(key), std::move(action));
}

std::shared_ptr<NSButton> titledButton(std::string_view title, std::function<void()> action) {
    auto button = make<NSButton>();
    button->setTitle(title);
    button->sizeToFit();
    button->setAction([action = std::move(action)](NSControl&) { action(); });
    return button;
}

}  // namespace gallery
