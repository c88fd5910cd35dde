// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSJSONSerialization.h>

namespace kx {
namespace {

using namespace std::string_literals;

TEST(NSJSONSerialization, ReadsEveryType) {
    const auto value = NSJSONSerialization::JSONObjectWithData(
        R"( {"b":[true,false,null,-1,9223372036854775807,9223372036854775808,1.5,2e3,"\u00e9\u0000"], "a":{}, "b2":[],
             "twice":1, "twice":2} )");
    ASSERT_TRUE(value);
    const auto list = (*value)["b"].elements();
    ASSERT_EQ(list.size(), 9U);
    const Value want[] = {
        true, false, {}, -1, INT64_MAX, 9223372036854775808.0, 1.5, 2e3, std::string_view("\u00e9\0", 3)};
    for (std::size_t i = 0; i < list.size(); ++i) EXPECT_EQ(list[i], want[i]) << i;
    EXPECT_EQ((*value)["a"].type(), Value::Type::Dictionary);
    EXPECT_EQ((*value)["b2"].type(), Value::Type::Array);
    EXPECT_EQ((*value)["twice"], Value(2));
    EXPECT_EQ(value->members().size(), 4U);
}

TEST(NSJSONSerialization, RefusesEverythingElse) {
    const auto nested = [](std::size_t depth) { return std::string(depth, '[') + std::string(depth, ']'); };
    ASSERT_TRUE(NSJSONSerialization::JSONObjectWithData(nested(Value::kMaxDepth)));
    const auto kindOf = [](const std::string& text) {
        const auto value = NSJSONSerialization::JSONObjectWithData(text);
        return value ? std::nullopt : std::optional(value.error().kind);
    };
    for (const std::string& text : {"[]\0"s, ""s, "7"s, "\"text\""s, "{"s, "[1,]"s, "[1] x"s, "[NaN]"s,
                                    "[1e999]"s, "[\"\xFF\"]"s, "[\"\\ud800\"]"s, "{1:2}"s, "// x\n[]"s})
        EXPECT_EQ(kindOf(text), ErrorKind::Corrupt) << text;
    EXPECT_EQ(kindOf(nested(Value::kMaxDepth + 1)), ErrorKind::TooLarge);
    EXPECT_EQ(kindOf(std::string(1'000'000, '[')), ErrorKind::TooLarge);
}

}  // namespace
}  // namespace kx
