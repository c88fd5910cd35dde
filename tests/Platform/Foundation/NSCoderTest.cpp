// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCoder.h>

namespace kx {
namespace {

TEST(NSCoder, GivesBackWhatWasEncoded) {
    NSCoder encoder;
    encoder.encode("title", "Harbour");
    encoder.encode("alignment", 2);
    encoder.encode("hidden", true);
    encoder.encode("frame", NSRect(1, 2.5, -3, 4));
    const NSCoder decoder(encoder.archive());
    EXPECT_EQ(decoder.decodeString("title"), "Harbour");
    EXPECT_EQ(decoder.decodeInteger("alignment"), 2);
    EXPECT_EQ(decoder.decodeBoolean("hidden"), true);
    EXPECT_EQ(decoder.decodeRect("frame"), NSRect(1, 2.5, -3, 4));
    EXPECT_TRUE(decoder.contains("frame"));
    EXPECT_FALSE(decoder.contains("Frame"));
}

TEST(NSCoder, AnotherTypeOrShapeDecodesAsMissing) {
    const Value archive = DictionaryBuilder()
                              .set("text", "1")
                              .set("short", ArrayBuilder().add(1).add(2).add(3).build())
                              .set("mixed", ArrayBuilder().add(1).add(2).add(3).add("4").build())
                              .build();
    const NSCoder decoder(archive);
    EXPECT_EQ(decoder.decodeInteger("text"), std::nullopt);
    EXPECT_EQ(decoder.decodeRect("short"), std::nullopt);
    EXPECT_EQ(decoder.decodeRect("mixed"), std::nullopt);
    EXPECT_EQ(NSCoder(Value(7)).decodeString("text"), std::nullopt) << "no dictionary at all";
}

}  // namespace
}  // namespace kx
