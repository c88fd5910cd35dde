// SPDX-License-Identifier: MIT

#include <limits>
#include <string>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/PropertyList.h>

namespace kx {
namespace {

Result<Value> read(std::string_view bytes) {
    return readPropertyList(std::as_bytes(std::span(bytes)));
}

std::string xml(std::string_view body) {
    return "<plist version=\"1.0\">" + std::string(body) + "</plist>";
}

Value array(std::initializer_list<Value> items) {
    ArrayBuilder builder;
    for (const Value& item : items) builder.add(item);
    return builder.build();
}

Value nestedArrays(std::size_t depth) {
    Value value = array({7});
    while (--depth > 0) value = array({value});
    return value;
}

std::string utf16LittleEndian(std::string_view ascii) {
    std::string units;
    for (const char c : ascii) units += {c, '\0'};
    return units;
}

std::string outcome(const Result<Value>& result) {
    return result ? result->description() : std::string(errorKindName(result.error().kind));
}

TEST(PropertyList, BothFormsGiveBackWhatWasWritten) {
    std::vector<std::byte> bytes;
    for (int i = 0; i < 256; ++i) bytes.push_back(static_cast<std::byte>(i));
    ArrayBuilder many;
    for (int i = 0; i < 70'000; ++i) many.add(i);  // references of four bytes
    using Integers = std::numeric_limits<std::int64_t>;
    const Value rows[] = {
        // Texts.
        "", "plain", "<a & b> \r\n\t\"'", "Ünïcode 文字 🙂", std::string(300, 'x'),
        // Numbers.
        true, false, 0, 127, 128, 255, 256, 65'536, -1, Integers::max(), Integers::min(), 0.1, -1e300,
        std::numeric_limits<double>::infinity(), Value::uid(0), Value::uid(4'294'967'295),
        // Dates and bytes.
        Value::date(0), Value::date(-1), Value::date(-978'307'200.0 - 1), Value::data(bytes),
        Value::data(std::vector<std::byte>(2)),
        // What holds others.
        array({}), DictionaryBuilder().build(), array({"shared", "shared", array({"shared"})}), many.build(),
        nestedArrays(512), DictionaryBuilder().set("", 1).set("ключ", array({1, 2.5, "three"})).build()};
    for (const Value& row : rows) {
        for (const auto write : {writeXmlPropertyList, writeBinaryPropertyList}) {
            const auto written = write(row);
            ASSERT_TRUE(written) << row.description() << ": " << written.error().message();
            const auto back = read(*written);
            EXPECT_TRUE(back && *back == row) << row.description() << " came back as " << outcome(back);
        }
    }
}

TEST(PropertyList, WhatAFormCannotHoldIsRefused) {
    const std::tuple<Value, bool, bool> rows[] = {
        {"bell \a", false, true},      {Value::date(0.5), false, true},  {Value::date(1e18), false, true},
        {nullptr, false, false},       {array({nullptr}), false, false}, {nestedArrays(513), false, false},
        {"\xEF\xBF\xBE", false, true},  // U+FFFE
    };
    for (const auto& [value, inXml, inBinary] : rows) {
        EXPECT_EQ(writeXmlPropertyList(value).ok(), inXml) << value.description();
        const auto binary = writeBinaryPropertyList(value);
        ASSERT_EQ(binary.ok(), inBinary) << value.description();
        if (inBinary) {
            EXPECT_EQ(*read(*binary), value);
        }
    }
    EXPECT_EQ(*read(*writeXmlPropertyList("a\xFF\xC0\x80z")), Value("a\uFFFD\uFFFD\uFFFDz"));
}

TEST(PropertyList, ReadsXml) {
    const struct {
        std::string text;
        std::string want;  // description() or the kind of error
    } rows[] = {
        {xml("<string> a &amp; &#x4E2D;<![CDATA[<b>]]> </string>"), "\" a & 中<b> \""},
        {xml("<integer> +7 </integer>"), "7"},
        {xml("<integer>-0x10</integer>"), "-16"},
        {xml("<integer>-9223372036854775808</integer>"), "-9223372036854775808"},
        {xml("<integer>9223372036854775808</integer>"), "too large"},
        {xml("<integer>99999999999999999999999</integer>"), "too large"},
        {xml("<real>1e3</real>"), "1000"},
        {xml("<date>2001-01-01T00:01:00Z</date>"), "60 s since 2001"},
        {xml("<data> AQ\nI= </data>"), "2 bytes"},
        {xml("<dict><key>b</key><true/><key>a</key><array/></dict>"), "{a: [], b: true}"},
        {"<true/>", "corrupt"},
        {"<?xml version='1.0'?><!DOCTYPE plist PUBLIC '-//X//DTD' 'http://127.0.0.1:1/p.dtd'>" +
             xml("<true/>"),
         "true"},
        {"<!DOCTYPE plist [<!ENTITY a 'b'>]>" + xml("<string>&a;</string>"), "corrupt"},
        {"<!DOCTYPE plist [<!ENTITY % a SYSTEM '/etc/passwd'> %a;]>" + xml("<true/>"), "corrupt"},
        {"<!DOCTYPE plist SYSTEM 'p.dtd'>" + xml("<string>&a;</string>"), "corrupt"},
        {"<?xml version='1.0' encoding='ISO-8859-1'?>" + xml("<string>\xE9</string>"), "\"é\""},
        {"<?xml version='1.0' encoding='EBCDIC'?>" + xml("<true/>"), "unsupported"},
        {"\xFF\xFE" + utf16LittleEndian(xml("<true/>")), "true"},
        {"", "ended early"},
        {"   ", "ended early"},
        {"<plist><array>", "ended early"},
        {std::string(1'000'000, '<'), "corrupt"},
        {"<plist>" + std::string(1'000'000, ' '), "ended early"},
    };
    for (const auto& [text, want] : rows) EXPECT_EQ(outcome(read(text)), want) << text.substr(0, 200);
    for (const char* body :
         {"<integer></integer>", "<integer>12x</integer>", "<real>1,5</real>",
          "<date>2001-02-30T00:00:00Z</date>", "<date>2001-01-01</date>", "<data>A</data>",
          "<data>AQ=I</data>", "<dict><key>a</key></dict>", "<dict><true/></dict>",
          "<dict><key>a</key><key>b</key></dict>", "<dict><key><string>a</string></key></dict>",
          "<array>loose</array>", "<true/><true/>", "<string><true/></string>", "<set/>", "",
          "<string>&nbsp;</string>", "<string>\xFF</string>"})
        EXPECT_EQ(outcome(read(xml(body))), "corrupt") << body;
    std::string nested = "<plist>";
    for (int i = 0; i < 1'000'000; ++i) nested += "<array>";
    EXPECT_EQ(outcome(read(nested)), "too large");
}

/// Assembles a binary list with offsets of four bytes and references of two, its first object the root.
class BinaryList {
  public:
    BinaryList& object(std::string bytes) {
        offsets_ += number(text_.size(), 4);
        text_ += bytes;
        ++count_;
        return *this;
    }
    [[nodiscard]] std::string build() const {
        return text_ + offsets_ + std::string("\0\0\0\0\0\0\4\2", 8) + number(count_, 8) + number(0, 8) +
               number(text_.size(), 8);
    }
    static std::string number(std::uint64_t value, std::size_t size) {
        std::string bytes;
        for (std::size_t i = size; i-- > 0;) bytes.push_back(static_cast<char>(value >> (8 * i)));
        return bytes;
    }

  private:
    std::string text_ = "bplist00";
    std::string offsets_;
    std::uint64_t count_ = 0;
};

TEST(PropertyList, RefusesBinaryListsThatCheat) {
    using namespace std::string_literals;
    BinaryList bomb;  // each array holds the next one twice
    for (int i = 0; i < 100; ++i)
        bomb.object("\xA2"s + BinaryList::number(static_cast<unsigned>(i) + 1, 2) +
                    BinaryList::number(static_cast<unsigned>(i) + 1, 2));
    bomb.object("\x09"s);
    BinaryList deep;
    for (int i = 0; i < 60'000; ++i)
        deep.object("\xA1"s + BinaryList::number(static_cast<unsigned>(i) + 1, 2));
    deep.object("\x09"s);
    const std::tuple<std::string, BinaryList, std::string> rows[] = {
        {"an array that holds itself", BinaryList().object("\xA1\0\0"s), "corrupt"},
        {"a circle of two", BinaryList().object("\xA1\0\1"s).object("\xA1\0\0"s), "corrupt"},
        {"a bomb of shared arrays", bomb, "too large"},
        {"sixty thousand nested arrays", deep, "too large"},
        {"a reference to no object", BinaryList().object("\xA1\0\7"s), "corrupt"},
        {"an array of 2^62 elements", BinaryList().object("\xAF\x13\x40\0\0\0\0\0\0\0"s), "ended early"},
        {"a dictionary of -1 members", BinaryList().object("\xDF\x13\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"s),
         "corrupt"},
        {"a text longer than the list", BinaryList().object("\x5F\x12\x7F\xFF\xFF\xFF"s), "ended early"},
        {"a count that is no integer", BinaryList().object("\x5F\x51zz"s), "corrupt"},
        {"a key that is no text", BinaryList().object("\xD1\0\1\0\1"s).object("\x09"s), "corrupt"},
        {"ASCII beyond 7 bits", BinaryList().object("\x51\xE9"s), "corrupt"},
        {"half a surrogate pair", BinaryList().object("\x61\xD8\x3D"s), "corrupt"},
        {"an integer of 65 bits", BinaryList().object("\x14\0\0\0\0\0\0\0\1\0\0\0\0\0\0\0\0"s), "too large"},
        {"an unsigned integer beyond Value", BinaryList().object("\x14\0\0\0\0\0\0\0\0\xFF\0\0\0\0\0\0\0"s),
         "too large"},
        {"a set", BinaryList().object("\xC0"s), "unsupported"},
        {"null", BinaryList().object("\0"s), "corrupt"},
        {"an unknown type", BinaryList().object("\x70"s), "corrupt"},
    };
    for (const auto& [what, list, want] : rows) EXPECT_EQ(outcome(read(list.build())), want) << what;
}

TEST(PropertyList, DamagedBinaryListsNeverCrash) {
    const Value value =
        DictionaryBuilder()
            .set("list", array({1, -2, 3.5, "text", "文字", true, Value::date(9), Value::uid(3)}))
            .set("data", Value::data(std::vector<std::byte>(20)))
            .build();
    const std::string whole = *writeBinaryPropertyList(value);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_FALSE(read(whole.substr(0, size))) << "cut to " << size;
    for (std::size_t at = 0; at < whole.size(); ++at) {
        for (const int flip : {0x01, 0x10, 0x80, 0xFF}) {
            std::string damaged = whole;
            damaged[at] = static_cast<char>(damaged[at] ^ flip);
            if (const auto got = read(damaged)) {
                EXPECT_TRUE(writeBinaryPropertyList(*got)) << at << " " << flip;
            }
        }
    }
}

}  // namespace
}  // namespace kx
