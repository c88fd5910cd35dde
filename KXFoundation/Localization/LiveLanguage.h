// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class NSButton;
class NSTextField;
class NSTextView;
class NSView;
class NSWindow;

/// Lets controls follow the language while they are shown, for applications that want that:
///
///     LiveLanguage::bind(window, "app.title");
///     LiveLanguage::bind(label, "greeting");
///     LiveLanguage::bind(count, [&] { return localized("crates") + " " + std::to_string(crates); });
///     LiveLanguage::bindPlaceholder(field, "your name");
///
/// What is bound has its text, alignment and direction in the first frame that is drawn after a switch: after
/// KXLocalizationUtils::setSelectLanguage() or, while the system is followed, another answer of
/// NSLocale::preferredLanguages(). Several switches before that frame are one. The main thread does it, in a
/// block of the main queue or before it draws, whichever comes first.
///
/// A binding is kept with its object: it ends with the object, with unbind(), or when the same is bound
/// again. An absent object and an empty key do nothing. Closures are called on the main thread, now and after
/// every switch; one that holds the object it is bound to keeps it alive for ever.
///
/// Controls that are not bound are as before: NSButton_LocalizedKey and its like set a text once.
///
/// No instances. Main thread, but for select().
class KX_EXPORT LiveLanguage {
  public:
    LiveLanguage() = delete;

    /// A key of the main bundle's tables, with the name of its table unless that is the default one, or a
    /// closure that makes the text in the language of the moment. A key without a text is shown itself.
    class KX_EXPORT Text {
      public:
        template <class Key>
        requires std::convertible_to<const Key&, std::string_view> Text(
            const Key& key, std::optional<std::string_view> table = {})
            : make_(ofKey(std::string_view(key), table)) {}
        template <class Closure>
        requires(!std::same_as<Closure, Text>) &&
            std::convertible_to<std::invoke_result_t<Closure&>, std::string> Text(Closure closure)
            : make_(std::move(closure)) {}

        explicit operator bool() const noexcept { return static_cast<bool>(make_); }
        [[nodiscard]] std::string operator()() const { return make_(); }

      private:
        static std::function<std::string()> ofKey(std::string_view key,
                                                  std::optional<std::string_view> table);
        std::function<std::string()> make_;
    };

    /// Binds the button's title, the field's text, the view's text. The control's own direction follows the
    /// language too, and with it its leading and trailing constraints; the alignment of a text is mirrored as
    /// it would be if it were set anew. The view that holds the control is laid out again.
    static void bind(const std::shared_ptr<NSButton>& button, Text text);
    static void bind(const std::shared_ptr<NSTextField>& field, Text text);
    static void bind(const std::shared_ptr<NSTextView>& view, Text text);
    /// Binds the title, and the content view that the window has now as bindLayout() does.
    static void bind(const std::shared_ptr<NSWindow>& window, Text title);
    static void bindPlaceholder(const std::shared_ptr<NSTextField>& field, Text placeholder);
    /// The view has the language's direction, which all it holds has too unless it has one of its own; after
    /// a switch all of it is laid out again. For what has no text: cards, rows, collection views.
    static void bindLayout(const std::shared_ptr<NSView>& view);
    /// Calls `apply(*object)` now and after every switch: for views that draw a text themselves, and whatever
    /// else depends on the language. Counts as a binding of all of a control's texts.
    template <class T, std::invocable<T&> Apply>
    static void follow(const std::shared_ptr<T>& object, Apply apply) {
        followObject(object,
                     [apply = std::move(apply)](NSObject& each) mutable { apply(static_cast<T&>(each)); });
    }

    /// Sets what is bound of the object again, after a change of something that its closures read.
    static void refresh(const std::shared_ptr<NSObject>& object);
    /// The object stays as it is from now on.
    static void unbind(const std::shared_ptr<NSObject>& object);

    /// Selects as KXLocalizationUtils::setSelectLanguage() does: at once on the main thread, from any other
    /// one later on the main queue. The language choice has no lock, so other threads switch by this.
    static void select(std::optional<std::string_view> language);

    // The audit

    /// A text of a window that no switch will change.
    struct KX_EXPORT Unbound {
        enum class Kind { Text, Placeholder, Title };

        Kind kind;
        std::shared_ptr<NSView> view;  ///< none for the window's title
        std::string text;
        std::string
            place;  ///< the views around it and itself, from the outside: "<NSView 0,0 240x100> <...>"

        /// One line: `"Good morning" in <NSView 0,0 240x100> <NSTextField 20,16 200x24>`.
        [[nodiscard]] std::string describe() const;
    };

    /// The texts of buttons, text fields and text views of the window that are not bound, hidden ones
    /// included, in the tree's order, after its title if that is not. What stands in an editable field is the
    /// user's and does not count; nor do child windows, which are asked themselves. An absent window has
    /// none.
    [[nodiscard]] static std::vector<Unbound> unbound(const std::shared_ptr<NSWindow>& window);
    /// unbound() leaves out the view and what it holds: names, numbers, the user's own texts.
    static void exempt(const std::shared_ptr<NSView>& view);

  private:
    static void followObject(const std::shared_ptr<NSObject>& object, std::function<void(NSObject&)> apply);
};

}  // namespace kx
