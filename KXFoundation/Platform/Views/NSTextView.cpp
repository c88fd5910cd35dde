// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Views/ArchivedAlignment.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/ViewOperations.h>

namespace kx {

void NSTextView::defineOperations(Class& cls) {
    setAlignmentOperation.implement<&NSTextView::applyAlignment>(cls);
    initWithFrameOperation.implement<&NSTextView::initializeWithFrame>(cls);
    initWithCoderOperation.implement<&NSTextView::initializeWithCoder>(cls);
}

bool NSTextView::init(NSRect frame) {
    return initWithFrameOperation(*this, frame);
}
bool NSTextView::init(NSCoder& coder) {
    return initWithCoderOperation(*this, coder);
}
void NSTextView::setAlignment(NSTextAlignment alignment) {
    setAlignmentOperation(*this, alignment);
}

bool NSTextView::initializeWithFrame(NSRect frame) {
    return Super::init(frame);
}

bool NSTextView::initializeWithCoder(NSCoder& coder) {
    if (!Super::init(coder)) return false;
    alignment_ = decodeAlignment(coder).value_or(alignment_);
    string_ = coder.decodeString("string").value_or("");
    return true;
}

void NSTextView::applyAlignment(NSTextAlignment alignment) {
    change(alignment_, alignment);
}

void NSTextView::encodeWithCoder(NSCoder& coder) const {
    Super::encodeWithCoder(coder);
    encodeAlignment(coder, alignment_);
    coder.encode("string", string_);
}

void NSTextView::setString(std::optional<std::string_view> text) {
    change(string_, std::string(text.value_or("")));
}
void NSTextView::setFont(std::shared_ptr<NSFont> font) {
    change(font_, std::move(font));
}
void NSTextView::setTextColor(std::shared_ptr<NSColor> color) {
    change(textColor_, std::move(color));
}

void NSTextView::setMaxSize(NSSize size) {
    const auto side = [](double length) { return length > 0 ? length : 0; };
    maxSize_ = {side(size.width), side(size.height)};
    invalidateIntrinsicContentSize();
}

NSSize NSTextView::fittingSize() const {
    const NSSize text = TextLayout(string_, font_, {.width = maxSize_.width, .alignment = alignment_}).size();
    return {std::min(std::ceil(text.width), maxSize_.width),
            std::min(std::ceil(text.height), maxSize_.height)};
}

NSSize NSTextView::intrinsicContentSize() const {
    return fittingSize();
}

void NSTextView::drawRect(GraphicsContext& context, NSRect) {
    const TextLayout text(string_, font_, {.width = bounds().size.width, .alignment = alignment_});
    const NSPoint crisp = context.pixelAligned({}).origin;  // a view may lie between pixels
    context.drawText(text, crisp, textColor_ ? *textColor_ : *NSColor::textColor());
}

}  // namespace kx
