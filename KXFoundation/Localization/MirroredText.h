// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/RightToLeftOperations.h>
#include <KXFoundation/Platform/Views/NSTextView.h>

/// What replaces the alignment setter and the initialisers of text controls. Private to Localization.
namespace kx {

/// What is applied in a right-to-left language for what was asked.
[[nodiscard]] constexpr NSTextAlignment mirrored(NSTextAlignment asked) noexcept {
    switch (asked) {
        case NSTextAlignment::Left:
        case NSTextAlignment::Natural:
            return NSTextAlignment::Right;
        case NSTextAlignment::Right:
            return NSTextAlignment::Left;
        case NSTextAlignment::Center:
        case NSTextAlignment::Justified:
            break;
    }
    return asked;
}

/// The text view that stands in for the label of a text field is aligned by its field.
[[nodiscard]] inline bool isLabelOfTextField(const NSTextView& view) {
    return view.className().find("UITextFieldLabel") != std::string::npos;
}

/// Replacements for a class of text controls; `Keeps` says which of them are aligned as asked in any
/// language. Each calls on to the platform's implementation through its own name, as the exchange leaves it.
template <class Control, bool (*Keeps)(const Control&)>
struct MirroredText {
    static void setTextAlignment(NSObject& receiver, NSTextAlignment asked) {
        const bool mirrors = KXLocalizationUtils::isRTL() && !Keeps(static_cast<Control&>(receiver));
        rtlSetTextAlignmentOperation(receiver, mirrors ? mirrored(asked) : asked);
    }

    static bool initWithFrame(NSObject& receiver, NSRect frame) {
        if (!rtlInitWithFrameOperation(receiver, frame)) return false;
        static_cast<Control&>(receiver).setAlignment(NSTextAlignment::Natural);
        return true;
    }

    static bool initWithCoder(NSObject& receiver, NSCoder& coder) {
        if (!rtlInitWithCoderOperation(receiver, coder)) return false;
        auto& control = static_cast<Control&>(receiver);
        control.setAlignment(control.alignment());  // mirrors what an interface file holds
        return true;
    }

    static void implementOn(Class& cls) {
        rtlSetTextAlignmentOperation.implement(cls, setTextAlignment);
        rtlInitWithFrameOperation.implement(cls, initWithFrame);
        rtlInitWithCoderOperation.implement(cls, initWithCoder);
    }
};

}  // namespace kx
