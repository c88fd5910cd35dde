// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {
namespace {

TEST(Value, ComparesDeeplyAndByType) {
    const auto nested = [](Value last) {
        return DictionaryBuilder()
            .set("list", ArrayBuilder().add(1).add("two").add(std::move(last)).build())
            .build();
    };
    EXPECT_EQ(nested(3.5), nested(3.5));
    EXPECT_FALSE(nested(3.5) == nested(3));
    EXPECT_FALSE(Value(1) == Value(1.0));
    EXPECT_FALSE(Value(true) == Value(1));
    EXPECT_FALSE(Value::date(1) == Value(1.0));
    EXPECT_EQ(Value(1).asReal(), 1.0) << "an integer reads as a real";
    EXPECT_EQ(Value("1").asInteger(), std::nullopt) << "a text is not converted";
}

TEST(Value, DictionaryKeepsTheLaterOfEqualKeys) {
    const Value dictionary = DictionaryBuilder().set("b", 1).set("a", 2).set("b", 3).build();
    ASSERT_EQ(dictionary.members().size(), 2u);
    EXPECT_EQ(dictionary["b"], Value(3));
    EXPECT_EQ(dictionary.members()[0].first, "a");
    EXPECT_TRUE(dictionary["c"].isNull());
    EXPECT_EQ(DictionaryBuilder(dictionary).remove("a").build().members().size(), 1u);
}

}  // namespace
}  // namespace kx
