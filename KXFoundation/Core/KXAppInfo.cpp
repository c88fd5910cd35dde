// SPDX-License-Identifier: MIT

#include <KXFoundation/Core/KXAppInfo.h>

namespace kx {

std::optional<std::string> KXAppInfo::AtomicText::load() const {
    const std::lock_guard lock(mutex_);
    return text_;
}

void KXAppInfo::AtomicText::store(std::optional<std::string_view> text) {
    std::optional<std::string> copy(text);
    const std::lock_guard lock(mutex_);
    text_.swap(copy);
}

}  // namespace kx
