// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NSAttributedString.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

namespace {

bool beginsCharacter(char byte) noexcept {
    return (static_cast<unsigned char>(byte) & 0xC0) != 0x80;
}

std::uint64_t characterStart(std::string_view text, std::uint64_t at) noexcept {
    while (at > 0 && at < text.size() && !beginsCharacter(text[at])) --at;
    return at;
}

}  // namespace

std::shared_ptr<NSAttributedString> NSAttributedString::initWithString(std::string_view text,
                                                                       Value attributes) {
    return make<NSAttributedString>(text, std::move(attributes));
}

bool NSAttributedString::init(std::string_view text, Value attributes) {
    if (!Super::init()) return false;
    text_ = text;
    append(runs_, text_.size(), std::move(attributes));
    return true;
}

bool NSAttributedString::init(const NSAttributedString& other) {
    if (!Super::init()) return false;
    text_ = other.text_;
    runs_ = other.runs_;
    return true;
}

void NSAttributedString::append(std::vector<Run>& runs, std::uint64_t length, Value attributes) {
    if (length == 0) return;
    if (attributes.members().empty()) attributes = {};
    if (!runs.empty() && runs.back().attributes == attributes) {
        runs.back().range.length += length;
    } else {
        runs.push_back({{runs.empty() ? 0 : runs.back().range.end(), length}, std::move(attributes)});
    }
}

const NSAttributedString::Run* NSAttributedString::runAt(std::uint64_t index) const {
    const auto after =
        std::ranges::upper_bound(runs_, index, {}, [](const Run& run) { return run.range.location; });
    if (index < length()) return &*std::prev(after);
    callerError("NSAttributedString: index " + std::to_string(index) + " of " + std::to_string(length()));
    return nullptr;
}

Value NSAttributedString::attributesAtIndex(std::uint64_t index, NSRange* effectiveRange) const {
    const Run* run = runAt(index);
    if (effectiveRange) *effectiveRange = run ? run->range : NSRange{};
    return run ? run->attributes : Value();
}

Value NSAttributedString::attribute(std::string_view name, std::uint64_t index,
                                    NSRange* effectiveRange) const {
    return attributesAtIndex(index, effectiveRange)[name];
}

bool NSAttributedString::fitToCharacters(NSRange& range) const {
    if (!range.isWithin(length())) {
        callerError("NSAttributedString: range " + std::to_string(range.location) + ", " +
                    std::to_string(range.length) + " of " + std::to_string(length()));
        return false;
    }
    const std::uint64_t start = characterStart(text_, range.location);
    range = {start, characterStart(text_, range.end()) - start};
    return true;
}

std::vector<NSAttributedString::Run> NSAttributedString::runsIn(NSRange range) const {
    std::vector<Run> inside;
    for (const Run& run : runs_) {
        const std::uint64_t from = std::max(run.range.location, range.location);
        const std::uint64_t to = std::min(run.range.end(), range.end());
        if (from < to) append(inside, to - from, run.attributes);
    }
    return inside;
}

std::shared_ptr<NSAttributedString> NSAttributedString::attributedSubstringFromRange(NSRange range) const {
    if (!fitToCharacters(range)) return nullptr;
    auto part = initWithString(std::string_view(text_).substr(range.location, range.length));
    part->runs_ = runsIn(range);
    return part;
}

std::string NSAttributedString::description() const {
    std::string words;
    for (const Run& run : runs_) {
        words.append(text_, run.range.location, run.range.length);
        words += run.attributes.isNull() ? "{}" : run.attributes.description();
    }
    return words;
}

bool NSAttributedString::isEqual(const NSObject& other) const {
    if (!other.isKindOfClass(NSAttributedString::classObject())) return false;
    const auto& text = static_cast<const NSAttributedString&>(other);
    return text_ == text.text_ && runs_ == text.runs_;
}

}  // namespace kx
