// SPDX-License-Identifier: MIT

#include <functional>
#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSMutableAttributedString.h>
#include <KXFoundation/Testing/CapturedLog.h>

namespace kx {
namespace {

Value withStyle(std::string_view name) {
    return DictionaryBuilder().set("style", name).build();
}

/// "[a]Har[-]bour": each run behind its style.
std::string shown(const NSAttributedString& text) {
    std::string words;
    std::uint64_t end = 0;
    for (const auto& [range, attributes] : text.runs()) {
        EXPECT_EQ(range.location, end);
        end = range.end();
        words += "[" + std::string(attributes["style"].asString().value_or("-")) + "]";
        words += text.string().substr(range.location, range.length);
    }
    EXPECT_EQ(end, text.length());
    return words;
}

}  // namespace

TEST(NSMutableAttributedString, ChangesTheRunsOfARange) {
    using Text = NSMutableAttributedString;
    using Change = std::function<void(Text&)>;
    const auto set = [](Value attributes, NSRange range) -> Change {
        return [=](Text& t) { t.setAttributes(attributes, range); };
    };
    const auto add = [](const char* name, Value value, NSRange range) -> Change {
        return [=](Text& t) { t.addAttribute(name, value, range); };
    };
    const auto replace = [](NSRange range, const char* text) -> Change {
        return [=](Text& t) { t.replaceCharactersInRange(range, text); };
    };
    const auto remove = [](NSRange range) -> Change {
        return [=](Text& t) { t.deleteCharactersInRange(range); };
    };
    const NSRange all{0, 11};
    const std::tuple<const char*, Change, const char*> rows[] = {
        {"nothing", [](Text&) {}, "[a]Häfen[b]Bucht"},
        {"a part", set(withStyle("c"), {0, 1}), "[c]H[a]äfen[b]Bucht"},
        {"equal neighbours join", set(withStyle("a"), {6, 5}), "[a]HäfenBucht"},
        {"over an edge", add("style", "c", {5, 2}), "[a]Häfe[c]nB[b]ucht"},
        {"inside a letter", set(withStyle("c"), {2, 2}), "[a]H[c]äf[a]en[b]Bucht"},
        {"another name", add("link", 1, {0, 1}), "[a]H[a]äfen[b]Bucht"},
        {"no style", [&](Text& t) { t.removeAttribute("style", all); }, "[-]HäfenBucht"},
        {"no dictionary", set("bold", all), "[-]HäfenBucht"},
        {"an empty range", set(withStyle("c"), {4, 0}), "[a]Häfen[b]Bucht"},
        {"deleted", remove({3, 6}), "[a]Hä[b]ht"},
        {"replaced", replace({5, 2}, "XY"), "[a]HäfeXY[b]ucht"},
        {"inserted", replace({6, 0}, "s"), "[a]Häfens[b]Bucht"},
        {"all gone", remove(all), ""},
        {"itself appended", [](Text& t) { t.appendAttributedString(t); }, "[a]Häfen[b]Bucht[a]Häfen[b]Bucht"},
    };
    for (const auto& [what, change, want] : rows) {
        const auto text = Text::initWithString("Häfen", withStyle("a"));
        text->appendAttributedString(*NSAttributedString::initWithString("Bucht", withStyle("b")));
        change(*text);
        EXPECT_EQ(shown(*text), want) << what;
    }
}

TEST(NSAttributedString, AnswersForPlacesAndParts) {
    const auto text = NSMutableAttributedString::initWithString("quay", withStyle("a"));
    text->addAttribute("style", "b", {1, 2});
    NSRange range;
    EXPECT_EQ(text->attribute("style", 2, &range), Value("b"));
    EXPECT_EQ(range, (NSRange{1, 2}));
    EXPECT_EQ(shown(*text->attributedSubstringFromRange({2, 2})), "[b]a[a]y");
    const auto copy = NSMutableAttributedString::initWithAttributedString(*text);
    EXPECT_TRUE(copy->isEqual(*text));
    copy->removeAttribute("style", {0, 1});
    EXPECT_FALSE(copy->isEqual(*text));
}

TEST(NSAttributedString, RangesBeyondTheTextChangeNothing) {
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    const auto text = NSMutableAttributedString::initWithString("quay", withStyle("a"));
    text->setAttributes({}, {3, 2});
    text->deleteCharactersInRange({~std::uint64_t{0}, 2});  // the end wraps around
    EXPECT_EQ(text->attributedSubstringFromRange({5, 0}), nullptr);
    EXPECT_TRUE(text->attributesAtIndex(4).isNull());
    EXPECT_EQ(shown(*text), "[a]quay");
    EXPECT_EQ(log.lines().size(), 4u);
}

}  // namespace kx
