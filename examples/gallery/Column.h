// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace gallery {

/// The text of a key of the gallery's tables.
[[nodiscard]] std::string text(std::string_view key);

/// The path as people write it, "~" for the user's home directory.
[[nodiscard]] std::string shownPath(const std::string& path);

/// Places views below one another in a view, and side by side in rows that begin where the language's lines
/// begin: on the right in a language written from right to left.
class Column {
  public:
    /// Between `left` and `left + width` of the view, from `top` down.
    Column(kx::NSView& view, double left, double top, double width);

    // Ready-made texts.
    /// At the top of a page, beside the button that changes between light and dark.
    void title(std::string_view text);
    static constexpr double kLookButtonWidth = 36;
    void paragraph(std::string_view text);
    void caption(std::string_view text);
    /// A caption and its value on one line, or on two where that is too short.
    std::shared_ptr<kx::NSTextField> pair(std::string_view caption, std::string_view value);

    /// A view over the whole width; the height is its own where it is 0 here.
    void add(const std::shared_ptr<kx::NSView>& view, double height = 0);
    /// Views in one line, each in its present width, and in more lines where one is too short for them.
    void row(const std::vector<std::shared_ptr<kx::NSView>>& views, double height = 28);
    /// Views in one line, however short it is: what stands below one another belongs together.
    void tableRow(const std::vector<std::shared_ptr<kx::NSView>>& views, double height);
    /// Cells in rows of so many columns over the whole width.
    void grid(const std::vector<std::shared_ptr<kx::NSView>>& cells, std::size_t columns, double rowHeight,
              double gap = 8);
    void space(double height) { y_ += height; }

    [[nodiscard]] double y() const { return y_; }
    [[nodiscard]] double width() const { return width_; }

  private:
    void place(const std::shared_ptr<kx::NSView>& view, double x, double width, double height);

    kx::NSView& view_;
    double left_;
    double y_;
    double width_;
    bool mirrored_;
};

/// A line of text that cannot be edited.
[[nodiscard]] std::shared_ptr<kx::NSTextField> label(std::string_view text, double size = 13,
                                                     bool bold = false);

/// The frame mirrored inside a view of that width while the selected language is written from right to left.
[[nodiscard]] kx::NSRect directed(kx::NSRect frame, double width);

}  // namespace gallery
