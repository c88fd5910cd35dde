// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSCoder.h>

namespace kx {
namespace {

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
    EXPECT_TRUE(decoder.contains("text"));
    EXPECT_FALSE(decoder.contains("Text"));
    EXPECT_EQ(NSCoder(Value(7)).decodeString("text"), std::nullopt) << "no dictionary at all";
}

}  // namespace
}  // namespace kx
