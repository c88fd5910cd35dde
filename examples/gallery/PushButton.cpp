#include "PushButton.h"

#include "Column.h"

namespace gallery {

using namespace kx;

std::shared_ptr<NSButton> pushButton(std::string_view key, std::function<void()> action) {
    auto button = make<NSButton>();
    button->setTitle(text(key));
    button->sizeToFit();
    button->setAction([action = std::move(action)](NSControl&) { action(); });
    return button;
}

}  // namespace gallery
