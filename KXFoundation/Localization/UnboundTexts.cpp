// SPDX-License-Identifier: MIT

#include <KXFoundation/Localization/LiveBindings.h>
#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace kx {

namespace {

using Unbound = LiveLanguage::Unbound;
using live::Slot;

std::string described(const NSView& view) {
    const std::string& name = view.identifier();
    return name.empty() ? view.description() : view.description() + " #" + name;
}

class Audit {
  public:
    std::vector<Unbound> found;

    void look(const std::shared_ptr<NSView>& view, const std::string& around) {
        if (live::isAttached(*view, Slot::Exempt)) return;
        const std::string place = around.empty() ? described(*view) : around + " " + described(*view);
        lookAtTexts(view, place);
        for (const auto& subview : view->subviews()) look(subview, place);
    }

  private:
    void lookAtTexts(const std::shared_ptr<NSView>& view, const std::string& place) {
        const auto text = [&](const std::string& shown) { add(Unbound::Kind::Text, view, shown, place); };
        if (const auto button = objectCast<NSButton>(view)) text(button->title());
        if (const auto paragraph = objectCast<NSTextView>(view)) text(paragraph->string());
        if (const auto field = objectCast<NSTextField>(view)) {
            if (!field->isEditable()) text(field->stringValue());
            add(Unbound::Kind::Placeholder, view, field->placeholderString().value_or(""), place);
        }
    }

    void add(Unbound::Kind kind, const std::shared_ptr<NSView>& view, const std::string& text,
             const std::string& place) {
        const Slot slot = kind == Unbound::Kind::Placeholder ? Slot::Placeholder : Slot::Text;
        if (text.empty() || live::isAttached(*view, slot) || live::isAttached(*view, Slot::Custom)) return;
        found.push_back({kind, view, text, place});
    }
};

}  // namespace

std::string LiveLanguage::Unbound::describe() const {
    const std::string_view what = kind == Kind::Placeholder ? "placeholder "
                                  : kind == Kind::Title     ? "title "
                                                            : "";
    return std::string(what).append("\"").append(text).append("\" in ").append(place);
}

std::vector<Unbound> LiveLanguage::unbound(const std::shared_ptr<NSWindow>& window) {
    if (!window) return {};
    Audit audit;
    const bool titleFollows =
        live::isAttached(*window, Slot::Text) || live::isAttached(*window, Slot::Custom);
    if (!titleFollows && !window->title().empty())
        audit.found.push_back({Unbound::Kind::Title, nullptr, window->title(), window->description()});
    if (const auto content = window->contentView()) audit.look(content, "");
    return std::move(audit.found);
}

}  // namespace kx
