// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSRange.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A text of which stretches carry attributes: a dictionary from names (NSFontAttributeName,
/// NSForegroundColorAttributeName, an application's own) to values. Neighbours with equal attributes are one
/// run. Immutable, but for its mutable subclass; any thread.
///
/// Places and lengths count bytes of the UTF-8 text, so that string_view's searches find them.
class KX_EXPORT NSAttributedString : public Subclass<NSAttributedString, NSObject> {
  public:
    struct Run {
        NSRange range;
        Value attributes;  ///< a dictionary; null where there are none
        bool operator==(const Run&) const = default;
    };

    /// The whole text with the same attributes; anything but a dictionary counts as none.
    [[nodiscard]] static std::shared_ptr<NSAttributedString> initWithString(std::string_view text,
                                                                            Value attributes = {});

    [[nodiscard]] const std::string& string() const noexcept { return text_; }
    [[nodiscard]] std::uint64_t length() const noexcept { return text_.size(); }
    /// From the first byte to the last without a gap; none for an empty text. Valid until the text changes.
    [[nodiscard]] std::span<const Run> runs() const noexcept { return runs_; }

    /// What the byte's run carries, and where that run lies if asked. Beyond the end: null and an empty
    /// range, and a caller error.
    [[nodiscard]] Value attributesAtIndex(std::uint64_t index, NSRange* effectiveRange = nullptr) const;
    [[nodiscard]] Value attribute(std::string_view name, std::uint64_t index,
                                  NSRange* effectiveRange = nullptr) const;

    /// A part as a text of its own. Its ends move back to the beginning of the character they are in; beyond
    /// the text: none, and a caller error.
    [[nodiscard]] std::shared_ptr<NSAttributedString> attributedSubstringFromRange(NSRange range) const;

    [[nodiscard]] std::string description() const override;
    /// Equal texts with equal attributes.
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

    bool init() { return init(""); }
    bool init(std::string_view text, Value attributes = {});
    bool init(const NSAttributedString& other);

  protected:
    NSAttributedString() = default;

    /// The range on whole characters; false, and a caller error, if it reaches beyond the text.
    bool fitToCharacters(NSRange& range) const;
    /// The runs inside a range that fits, placed from its beginning.
    [[nodiscard]] std::vector<Run> runsIn(NSRange range) const;
    /// Appends a run, to the last one if that is equal.
    static void append(std::vector<Run>& runs, std::uint64_t length, Value attributes);

    std::string text_;
    std::vector<Run> runs_;

  private:
    [[nodiscard]] const Run* runAt(std::uint64_t index) const;
};

}  // namespace kx
