// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/LiveBindings.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Localization/MirroredText.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace kx {

namespace {

using live::Slot;

NSUserInterfaceLayoutDirection direction() {
    return KXLocalizationUtils::isRTL() ? NSUserInterfaceLayoutDirection::RightToLeft
                                        : NSUserInterfaceLayoutDirection::LeftToRight;
}

/// Turns a control's alignment as a setter called anew would: the one that was asked for is mirrored or not.
/// A control does not remember what it was asked for, so that is taken from what it shows.
class FollowingAlignment {
  public:
    template <class Control>
    void apply(Control& control) {
        const bool isRTL = KXLocalizationUtils::isRTL();
        if (control.alignment() != shown_) asked_ = askedFor(control.alignment(), wasRTL_.value_or(isRTL));
        if (wasRTL_ && *wasRTL_ != isRTL) control.setAlignment(asked_);
        shown_ = control.alignment();
        wasRTL_ = isRTL;
    }

  private:
    static NSTextAlignment askedFor(NSTextAlignment shown, bool isRTL) {
        if (!isRTL) return shown;
        // Right comes from left too, which means the same as long as the text runs in the language's
        // direction.
        return shown == NSTextAlignment::Right ? NSTextAlignment::Natural : mirrored(shown);
    }

    std::optional<NSTextAlignment> shown_;
    NSTextAlignment asked_ = NSTextAlignment::Natural;
    std::optional<bool> wasRTL_;
};

/// A button's content stays in its middle, or where it was put.
live::Apply following(const NSButton&) {
    return
        [](NSObject& button) { static_cast<NSButton&>(button).setUserInterfaceLayoutDirection(direction()); };
}

template <class Control>
live::Apply following(const Control&) {
    return [alignment = FollowingAlignment()](NSObject& object) mutable {
        auto& control = static_cast<Control&>(object);
        control.setUserInterfaceLayoutDirection(direction());
        if constexpr (std::is_same_v<Control, NSTextView>) {
            if (isLabelOfTextField(control)) return;
        }
        alignment.apply(control);
    };
}

void layOutAll(NSView& view) {
    view.setNeedsLayout();
    const auto subviews = view.subviews();
    for (const auto& subview : subviews) layOutAll(*subview);
}

void followLayout(NSView& view) {
    view.setUserInterfaceLayoutDirection(direction());
    layOutAll(view);
}

live::Apply following(const NSView&) {
    return [](NSObject& view) { followLayout(static_cast<NSView&>(view)); };
}

live::Apply following(const NSWindow&) {
    return [](NSObject& window) {
        if (const auto content = static_cast<NSWindow&>(window).contentView()) followLayout(*content);
    };
}

void layOutHolder(const NSView& view) {
    if (const auto holder = view.superview()) holder->setNeedsLayout();
}

template <class T>
void bindText(const std::shared_ptr<T>& object, Slot slot, LiveLanguage::Text text,
              void (T::*set)(std::optional<std::string_view>)) {
    if (!object || !text) return;
    live::detach(*object, Slot::Exempt);
    if (!live::isAttached(*object, Slot::Layout)) live::attach(object, Slot::Layout, following(*object));
    live::attach(object, slot, [text = std::move(text), set](NSObject& each) {
        auto& target = static_cast<T&>(each);
        (target.*set)(text());
        layOutHolder(target);
    });
}

}  // namespace

std::function<std::string()> LiveLanguage::Text::ofKey(std::string_view key,
                                                       std::optional<std::string_view> table) {
    if (key.empty()) return nullptr;
    return
        [key = std::string(key), table = std::optional<std::string>(table)] { return localized(key, table); };
}

void LiveLanguage::bind(const std::shared_ptr<NSButton>& button, Text text) {
    bindText(button, Slot::Text, std::move(text), &NSButton::setTitle);
}
void LiveLanguage::bind(const std::shared_ptr<NSTextField>& field, Text text) {
    bindText(field, Slot::Text, std::move(text), &NSTextField::setStringValue);
}
void LiveLanguage::bind(const std::shared_ptr<NSTextView>& view, Text text) {
    bindText(view, Slot::Text, std::move(text), &NSTextView::setString);
}
void LiveLanguage::bindPlaceholder(const std::shared_ptr<NSTextField>& field, Text placeholder) {
    bindText(field, Slot::Placeholder, std::move(placeholder), &NSTextField::setPlaceholderString);
}

void LiveLanguage::bind(const std::shared_ptr<NSWindow>& window, Text title) {
    if (!window || !title) return;
    live::attach(window, Slot::Layout, following(*window));
    live::attach(window, Slot::Text, [title = std::move(title)](NSObject& each) {
        static_cast<NSWindow&>(each).setTitle(title());
    });
}

void LiveLanguage::bindLayout(const std::shared_ptr<NSView>& view) {
    if (!view) return;
    const bool isControl = live::isAttached(*view, Slot::Text) || live::isAttached(*view, Slot::Placeholder);
    if (!isControl) live::attach(view, Slot::Layout, following(*view));
}

void LiveLanguage::followObject(const std::shared_ptr<NSObject>& object,
                                std::function<void(NSObject&)> apply) {
    if (object && apply) live::attach(object, Slot::Custom, std::move(apply));
}

void LiveLanguage::refresh(const std::shared_ptr<NSObject>& object) {
    if (object) live::applyAgain(*object);
}

void LiveLanguage::unbind(const std::shared_ptr<NSObject>& object) {
    if (!object) return;
    for (const auto slot : {Slot::Text, Slot::Placeholder, Slot::Layout, Slot::Custom, Slot::Exempt})
        live::detach(*object, slot);
}

void LiveLanguage::exempt(const std::shared_ptr<NSView>& view) {
    if (view) live::attach(view, Slot::Exempt, nullptr);
}

void LiveLanguage::select(std::optional<std::string_view> language) {
    if (isMainThread()) {
        KXLocalizationUtils::setSelectLanguage(language);
        return;
    }
    DispatchQueue::main().async([language = std::optional<std::string>(language)] {
        KXLocalizationUtils::setSelectLanguage(language);
    });
}

}  // namespace kx
