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

}  // namespace
}  // namespace kx
