// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Views/ArchivedAlignment.h>

namespace kx {

void encodeAlignment(NSCoder& coder, NSTextAlignment alignment) {
    coder.encode("alignment", static_cast<std::int64_t>(alignment));
}

std::optional<NSTextAlignment> decodeAlignment(const NSCoder& coder) {
    const auto number = coder.decodeInteger("alignment");
    if (!number || *number < 0 || *number > static_cast<std::int64_t>(NSTextAlignment::Natural))
        return std::nullopt;
    return static_cast<NSTextAlignment>(*number);
}

}  // namespace kx
