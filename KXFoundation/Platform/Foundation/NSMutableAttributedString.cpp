// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/NSMutableAttributedString.h>

namespace kx {

std::shared_ptr<NSMutableAttributedString> NSMutableAttributedString::initWithString(std::string_view text,
                                                                                     Value attributes) {
    return make<NSMutableAttributedString>(text, std::move(attributes));
}

std::shared_ptr<NSMutableAttributedString> NSMutableAttributedString::initWithAttributedString(
    const NSAttributedString& other) {
    return make<NSMutableAttributedString>(other);
}

void NSMutableAttributedString::spliceRuns(NSRange range, const Runs& runs) {
    Runs spliced;
    const auto add = [&](const Runs& part) {
        for (const Run& run : part) append(spliced, run.range.length, run.attributes);
    };
    const std::uint64_t whole = runs_.empty() ? 0 : runs_.back().range.end();
    add(runsIn({0, range.location}));
    add(runs);
    add(runsIn({range.end(), whole - range.end()}));
    runs_ = std::move(spliced);
}

template <class Change>
void NSMutableAttributedString::changeRuns(NSRange range, const Change& change) {
    if (!fitToCharacters(range)) return;
    Runs runs = runsIn(range);
    for (Run& run : runs) run.attributes = change(run.attributes);
    spliceRuns(range, runs);
}

void NSMutableAttributedString::setAttributes(Value attributes, NSRange range) {
    changeRuns(range, [&](const Value&) { return attributes; });
}

void NSMutableAttributedString::addAttribute(std::string_view name, const Value& value, NSRange range) {
    changeRuns(range,
               [&](const Value& present) { return DictionaryBuilder(present).set(name, value).build(); });
}

void NSMutableAttributedString::removeAttribute(std::string_view name, NSRange range) {
    changeRuns(range, [&](const Value& present) { return DictionaryBuilder(present).remove(name).build(); });
}

void NSMutableAttributedString::replaceCharactersInRange(NSRange range, const NSAttributedString& text) {
    if (!fitToCharacters(range)) return;
    const std::string letters = text.string();  // the text may be this one
    const Runs runs(text.runs().begin(), text.runs().end());
    spliceRuns(range, runs);
    text_.replace(range.location, range.length, letters);
}

void NSMutableAttributedString::replaceCharactersInRange(NSRange range, std::string_view text) {
    if (!fitToCharacters(range)) return;
    Value attributes;
    if (length() > 0) {
        const std::uint64_t before = range.location - std::min<std::uint64_t>(range.location, 1);
        attributes = attributesAtIndex(range.length > 0 ? range.location : before);
    }
    replaceCharactersInRange(range, *NSAttributedString::initWithString(text, std::move(attributes)));
}

}  // namespace kx
