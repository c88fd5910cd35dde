// SPDX-License-Identifier: MIT

#include <cmath>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Views/ControlLook.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/ViewOperations.h>

namespace kx {

void NSTextField::defineOperations(Class& cls) {
    setAlignmentOperation.implement<&NSTextField::applyAlignment>(cls);
    initWithFrameOperation.implement<&NSTextField::initializeWithFrame>(cls);
    initWithCoderOperation.implement<&NSTextField::initializeWithCoder>(cls);
}

bool NSTextField::init(NSRect frame) {
    return initWithFrameOperation(*this, frame);
}
bool NSTextField::init(NSCoder& coder) {
    return initWithCoderOperation(*this, coder);
}
void NSTextField::setAlignment(NSTextAlignment alignment) {
    setAlignmentOperation(*this, alignment);
}

bool NSTextField::initializeWithFrame(NSRect frame) {
    return Super::init(frame);
}

bool NSTextField::initializeWithCoder(NSCoder& coder) {
    if (!Super::init(coder)) return false;
    string_ = coder.decodeString("stringValue").value_or("");
    placeholder_ = coder.decodeString("placeholderString");
    editable_ = coder.decodeBoolean("editable").value_or(true);
    return true;
}

void NSTextField::applyAlignment(NSTextAlignment alignment) {
    Super::setAlignment(alignment);
}

void NSTextField::encodeWithCoder(NSCoder& coder) const {
    Super::encodeWithCoder(coder);
    coder.encode("stringValue", string_);
    if (placeholder_) coder.encode("placeholderString", *placeholder_);
    coder.encode("editable", editable_);
}

void NSTextField::setStringValue(std::optional<std::string_view> text) {
    change(string_, std::string(text.value_or("")));
}

void NSTextField::setPlaceholderString(std::optional<std::string_view> text) {
    change(placeholder_, text ? std::optional<std::string>(*text) : std::nullopt);
}

void NSTextField::setTextColor(std::shared_ptr<NSColor> color) {
    change(textColor_, std::move(color));
}
void NSTextField::setEditable(bool editable) {
    change(editable_, editable);
}

NSSize NSTextField::intrinsicContentSize() const {
    const NSSize text = TextLayout(string_, usedFont()).size();
    if (editable_) return {kNoIntrinsicMetric, std::max(ControlLook::kHeight, std::ceil(text.height) + 8)};
    return {std::ceil(text.width), std::ceil(text.height)};
}

void NSTextField::drawRect(GraphicsContext& context, NSRect) {
    ControlLook::drawEnabled(context, isEnabled(), [&] {
        if (editable_) {
            ControlLook::drawFace(context, bounds(), *NSColor::controlBackgroundColor(),
                                  *NSColor::separatorColor());
        }
        drawString(context);
    });
}

void NSTextField::drawString(GraphicsContext& context) const {
    const bool placeholder = string_.empty();
    const auto color = placeholder  ? NSColor::placeholderTextColor()
                       : textColor_ ? textColor_
                                    : NSColor::textColor();
    const NSRect inside = bounds().insetBy(editable_ ? ControlLook::kPadding : 0, 0);
    if (inside.isEmpty()) return;
    const TextLayout line(
        placeholder ? placeholder_.value_or("") : string_, usedFont(),
        {.width = inside.size.width, .alignment = alignment(), .lineBreak = LineBreakMode::TruncateTail});
    context.drawTextLine(line, inside, *color);
}

}  // namespace kx
