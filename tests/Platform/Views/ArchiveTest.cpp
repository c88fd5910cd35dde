// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>

namespace kx {
namespace {

template <class View>
std::shared_ptr<View> copyThroughArchive(const View& view) {
    NSCoder writer;
    view.encodeWithCoder(writer);
    NSCoder reader(writer.archive());
    return make<View>(reader);
}

TEST(Archive, FieldComesBack) {
    const auto field = make<NSTextField>(NSRect(1, 2, 30, 40));
    field->setStringValue("Größe");
    field->setAlignment(NSTextAlignment::Right);
    field->setEnabled(false);
    field->setEditable(false);
    auto copy = copyThroughArchive(*field);
    EXPECT_EQ(copy->frame(), field->frame());
    EXPECT_EQ(copy->stringValue(), "Größe");
    EXPECT_EQ(copy->placeholderString(), std::nullopt);
    EXPECT_EQ(copy->alignment(), NSTextAlignment::Right);
    EXPECT_FALSE(copy->isEnabled());
    EXPECT_FALSE(copy->isEditable());
    field->setPlaceholderString("");
    EXPECT_EQ(copyThroughArchive(*field)->placeholderString(), "");
}

TEST(Archive, TextViewAndButtonComeBack) {
    const auto text = make<NSTextView>(NSRect(1, 2, 30, 40));
    text->setString("مرحبا");
    text->setAlignment(NSTextAlignment::Justified);
    EXPECT_EQ(copyThroughArchive(*text)->string(), "مرحبا");
    EXPECT_EQ(copyThroughArchive(*text)->alignment(), NSTextAlignment::Justified);
    const auto button = make<NSButton>(NSRect(1, 2, 30, 40));
    button->setTitle("Anlegen");
    button->setAlignment(NSTextAlignment::Left);
    EXPECT_EQ(copyThroughArchive(*button)->title(), "Anlegen");
    EXPECT_EQ(copyThroughArchive(*button)->alignment(), NSTextAlignment::Left);
}

TEST(Archive, HostileValuesLeaveTheDefaults) {
    DictionaryBuilder wrong;
    for (const char* key : {"frame", "stringValue", "placeholderString", "string", "title"})
        wrong.set(key, 7);
    for (const char* key : {"enabled", "editable", "alignment"}) wrong.set(key, "2");
    const auto withAlignment = [](Value alignment) {
        return DictionaryBuilder().set("alignment", std::move(alignment)).build();
    };
    const std::pair<std::string, Value> rows[] = {
        {"no dictionary", Value(3)},
        {"empty", DictionaryBuilder().build()},
        {"other types", wrong.build()},
        {"alignment 5", withAlignment(5)},
        {"alignment -1", withAlignment(-1)},
        {"alignment beyond 32 bits", withAlignment(std::int64_t{1} << 32)},
        {"alignment 2.0", withAlignment(2.0)},
    };
    for (const auto& [what, archive] : rows) {
        NSCoder coder(archive);
        const auto field = make<NSTextField>(coder);
        EXPECT_EQ(field->frame(), NSRect()) << what;
        EXPECT_EQ(field->stringValue(), "") << what;
        EXPECT_EQ(field->alignment(), NSTextAlignment::Natural) << what;
        EXPECT_TRUE(field->isEnabled() && field->isEditable()) << what;
        EXPECT_EQ(make<NSTextView>(coder)->alignment(), NSTextAlignment::Natural) << what;
        EXPECT_EQ(make<NSButton>(coder)->alignment(), NSTextAlignment::Center) << what;
        EXPECT_EQ(make<NSButton>(coder)->title(), "") << what;
    }
    NSCoder coder;
    coder.encode("frame", NSRect(std::nan(""), 2, std::numeric_limits<double>::infinity(), -4));
    EXPECT_EQ(make<NSButton>(coder)->frame().size, NSSize());
    EXPECT_EQ(make<NSButton>(coder)->frame().origin.x, 0);
}

}  // namespace
}  // namespace kx
