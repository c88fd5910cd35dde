// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/NSTextField_RTL.h>
#include <KXFoundation/Localization/RightToLeftOperations.h>
#include <KXFoundation/Platform/Views/NSTextField.h>

namespace kx {

void NSTextField_RTL::rtl_setTextAlignment(const std::shared_ptr<NSTextField>& field,
                                           NSTextAlignment alignment) {
    if (field) rtlSetTextAlignmentOperation(*field, alignment);
}

std::shared_ptr<NSTextField> NSTextField_RTL::rtl_initWithFrame(const std::shared_ptr<NSTextField>& field,
                                                                NSRect frame) {
    return field && rtlInitWithFrameOperation(*field, frame) ? field : nullptr;
}

std::shared_ptr<NSTextField> NSTextField_RTL::rtl_initWithCoder(const std::shared_ptr<NSTextField>& field,
                                                                NSCoder& coder) {
    return field && rtlInitWithCoderOperation(*field, coder) ? field : nullptr;
}

}  // namespace kx
