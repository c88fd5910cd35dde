// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/NSTextView_RTL.h>
#include <KXFoundation/Localization/RightToLeftOperations.h>
#include <KXFoundation/Platform/Views/NSTextView.h>

namespace kx {

void NSTextView_RTL::rtl_setTextAlignment(const std::shared_ptr<NSTextView>& view,
                                          NSTextAlignment alignment) {
    if (view) rtlSetTextAlignmentOperation(*view, alignment);
}

std::shared_ptr<NSTextView> NSTextView_RTL::rtl_initWithFrame(const std::shared_ptr<NSTextView>& view,
                                                              NSRect frame) {
    return view && rtlInitWithFrameOperation(*view, frame) ? view : nullptr;
}

std::shared_ptr<NSTextView> NSTextView_RTL::rtl_initWithCoder(const std::shared_ptr<NSTextView>& view,
                                                              NSCoder& coder) {
    return view && rtlInitWithCoderOperation(*view, coder) ? view : nullptr;
}

}  // namespace kx
