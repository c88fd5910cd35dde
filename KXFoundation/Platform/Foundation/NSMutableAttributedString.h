// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSAttributedString.h>

namespace kx {

/// A text with attributes that can be changed. Ranges are treated as by attributedSubstringFromRange: their
/// ends move to whole characters; a range that reaches beyond the text is a caller error and changes nothing.
/// One thread at a time.
class KX_EXPORT NSMutableAttributedString : public Subclass<NSMutableAttributedString, NSAttributedString> {
  public:
    [[nodiscard]] static std::shared_ptr<NSMutableAttributedString> initWithString(std::string_view text,
                                                                                   Value attributes = {});
    [[nodiscard]] static std::shared_ptr<NSMutableAttributedString> initWithAttributedString(
        const NSAttributedString& other);

    /// In place of what the range had.
    void setAttributes(Value attributes, NSRange range);
    /// Beside what the range has; in place of an attribute of that name.
    void addAttribute(std::string_view name, const Value& value, NSRange range);
    void removeAttribute(std::string_view name, NSRange range);

    void replaceCharactersInRange(NSRange range, const NSAttributedString& text);
    /// The new text has the attributes of the first byte replaced, else of the byte before it, else of the
    /// one behind.
    void replaceCharactersInRange(NSRange range, std::string_view text);
    void appendAttributedString(const NSAttributedString& text) {
        replaceCharactersInRange({length(), 0}, text);
    }
    void deleteCharactersInRange(NSRange range) { replaceCharactersInRange(range, ""); }

  protected:
    NSMutableAttributedString() = default;

  private:
    using Runs = std::vector<Run>;
    /// Puts other runs in place of those of the range.
    void spliceRuns(NSRange range, const Runs& runs);
    template <class Change>
    void changeRuns(NSRange range, const Change& change);
};

}  // namespace kx
