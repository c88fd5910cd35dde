// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/ViewDescription.h>

namespace kx {

namespace {
void describe(const NSView& view, std::size_t depth, std::string& text) {
    text.append(2 * depth, ' ').append(view.description()).append("\n");
    for (const auto& subview : view.subviews()) describe(*subview, depth + 1, text);
}
}  // namespace

std::string describeTree(const NSView& view) {
    std::string text;
    describe(view, 0, text);
    return text;
}

}  // namespace kx
