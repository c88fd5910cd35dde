// SPDX-License-Identifier: MIT

#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Device/KXToolUtils.h>
#include <KXFoundation/Testing/CountedMemory.h>

namespace kx {
namespace {

TEST(KXToolUtils, CalculateMD5) {
    const std::pair<std::optional<std::string>, std::string_view> rows[] = {
        // RFC 1321, A.5
        {"", "d41d8cd98f00b204e9800998ecf8427e"},
        {"a", "0cc175b9c0f1b6a831c399e269772661"},
        {"abc", "900150983cd24fb0d6963f7d28e17f72"},
        {"message digest", "f96b697d7cb7938d525a2f31aaf161d0"},
        {"abcdefghijklmnopqrstuvwxyz", "c3fcd3d76192e4007dfb496cca67e13b"},
        {"ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789",
         "d174ab98d277d9f5a5611c2c9f419d9f"},
        {"12345678901234567890123456789012345678901234567890123456789012345678901234567890",
         "57edf4a22be3c955ac49da2e2107b67a"},
        {std::nullopt, ""},
        {std::string("abc\0def", 7), "900150983cd24fb0d6963f7d28e17f72"},  // up to the zero byte
        {std::string("\0", 1), "d41d8cd98f00b204e9800998ecf8427e"},
        {std::string(1'000'000, 'a'), "7707d6ae4e027c70eea2a935c2296f21"},
        {"caf\xE9", "961f50f6282239d09e48f812c1ca7276"},  // as it is, UTF-8 or not
    };
    for (const auto& [text, digest] : rows) {
        std::string answer;
        EXPECT_LE(testing::allocationsOf([&, &input = text] { answer = KXToolUtils::calculateMD5(input); }),
                  1U)
            << "its answer alone";
        EXPECT_EQ(answer, digest) << "text: " << text.value_or("none").substr(0, 100);
    }
}

}  // namespace
}  // namespace kx
