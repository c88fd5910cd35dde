// SPDX-License-Identifier: MIT

// Everything that the library changes in the platform's classes, and when.
#include <string_view>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/MirroredText.h>
#include <KXFoundation/Localization/RightToLeftOperations.h>
#include <KXFoundation/Platform/Runtime/OperationExchange.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionViewFlowLayout.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/UI/NSButton_Custom.h>

namespace kx {

namespace {

bool keepsNothing(const NSTextField&) {
    return false;
}

/// A button's initialisers are passed, but nothing changes.
void implementPlainInitialisers(Class& cls) {
    rtlInitWithFrameOperation.implement(
        cls, [](NSObject& receiver, NSRect frame) { return rtlInitWithFrameOperation(receiver, frame); });
    rtlInitWithCoderOperation.implement(
        cls, [](NSObject& receiver, NSCoder& coder) { return rtlInitWithCoderOperation(receiver, coder); });
}

struct Interception {
    Class& (*classObject)();
    std::string_view target;
    std::string_view replacement;
};

constexpr Interception kInterceptions[] = {
    {NSTextView::classObject, "setAlignment:", "rtl_setTextAlignment:"},
    {NSTextView::classObject, "initWithCoder:", "rtl_initWithCoder:"},
    {NSTextView::classObject, "initWithFrame:", "rtl_initWithFrame:"},
    {NSTextField::classObject, "initWithFrame:", "rtl_initWithFrame:"},
    {NSTextField::classObject, "initWithCoder:", "rtl_initWithCoder:"},
    {NSTextField::classObject, "setAlignment:", "rtl_setTextAlignment:"},
    {NSButton::classObject, "initWithCoder:", "rtl_initWithCoder:"},
    {NSButton::classObject, "initWithFrame:", "rtl_initWithFrame:"},
};

void intercept() {
    MirroredText<NSTextView, isLabelOfTextField>::implementOn(NSTextView::classObject());
    MirroredText<NSTextField, keepsNothing>::implementOn(NSTextField::classObject());
    implementPlainInitialisers(NSButton::classObject());
    for (const auto& [classObject, target, replacement] : kInterceptions) {
        InstanceMethodSwizzling(classObject(), target, replacement);
    }
    flipsHorizontallyInOppositeLayoutDirectionOperation.implement(
        NSCollectionViewFlowLayout::classObject(), [](NSObject&) { return KXLocalizationUtils::isRTL(); });
    hitTestOperation.implement(NSButton::classObject(), [](NSObject& receiver, NSPoint point) {
        const auto button = std::static_pointer_cast<NSButton>(receiver.weak_from_this().lock());
        return NSButton_Custom::hitTest(button, point);
    });
}

}  // namespace

}  // namespace kx

/// Runs before the static constructors of the program, which may make controls already (101 is the first
/// priority that is not reserved for the compiler's own). A static build names this symbol to the linker,
/// which would otherwise leave the whole file out.
extern "C" KX_EXPORT __attribute__((constructor(101))) void kx_loadTimeInterceptions() {
    static constinit bool done = false;  // exchanging twice would undo it
    if (!done) kx::intercept();
    done = true;
}
