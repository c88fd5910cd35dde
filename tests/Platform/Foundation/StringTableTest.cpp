// SPDX-License-Identifier: MIT

#include <string>
#include <utility>
#include <vector>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Foundation/StringTable.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;
using ::testing::ElementsAre;

using Texts = std::vector<std::pair<std::string, std::string>>;

void expectTexts(const StringTable& table, const Texts& texts) {
    EXPECT_EQ(table.size(), texts.size());
    for (const auto& [key, text] : texts) EXPECT_EQ(table.lookUp(key), text) << "key " << key;
}

std::string utf16(std::u16string_view units, bool bigEndian) {
    std::string bytes;
    for (const char16_t unit : units) {
        const char low = static_cast<char>(unit & 0xFF);
        const char high = static_cast<char>(unit >> 8);
        bytes += bigEndian ? std::string{high, low} : std::string{low, high};
    }
    return bytes;
}

TEST(StringTable, ReadsEveryForm) {
    const std::tuple<const char*, std::string, Texts> rows[] = {
        {"empty file", "", {}},
        {"plain", R"("a" = "A"; "b"="B";)", {{"a", "A"}, {"b", "B"}}},
        {"no line end, spaces and tabs", "\t\"a\"\t=\r\n \"A\" ;", {{"a", "A"}}},
        {"bare key", "page.title_2-x = \"A\";", {{"page.title_2-x", "A"}}},
        {"bare text", "a = b;", {{"a", "b"}}},
        {"empty key and text", R"("" = ""; "b" = "";)", {{"", ""}, {"b", ""}}},
        {"comments", "/* \"x\" = \"X\"; **/ \"a\" /* = */ = // \"y\n\"A\"/**/;//end", {{"a", "A"}}},
        {"comment signs in a text", R"("a" = "/* no */ // comment";)", {{"a", "/* no */ // comment"}}},
        {"text over lines", "\"a\" = \"one\ntwo\";", {{"a", "one\ntwo"}}},
        {"escapes", R"("\"k\\" = "1\n2\t3\r4\"5\\6\'7";)", {{"\"k\\", "1\n2\t3\r4\"5\\6'7"}}},
        {"code points", R"("a" = "\U00e9\u4E2D\UD83D\uDE00!";)", {{"a", "é中😀!"}}},
        {"later of equal keys", R"("a" = "1"; "b" = "B"; "a" = "2";)", {{"a", "2"}, {"b", "B"}}},
        {"UTF-8", "\"ключ\" = \"значение, довольно длинное\";", {{"ключ", "значение, довольно длинное"}}},
        {"UTF-8 mark", "\xEF\xBB\xBF\"a\" = \"A\";", {{"a", "A"}}},
        {"UTF-16 mark, big", utf16(u"\uFEFF\"a\" = \"é中😀\";", true), {{"a", "é中😀"}}},
        {"UTF-16 mark, little", utf16(u"\uFEFF\"a\" = \"é中😀\";", false), {{"a", "é中😀"}}},
        {"UTF-16 without mark, big", utf16(u"\"a\" = \"中\";", true), {{"a", "中"}}},
        {"UTF-16 without mark, little", utf16(u"\"a\" = \"中\";", false), {{"a", "中"}}},
    };
    for (const auto& [what, contents, texts] : rows) {
        SCOPED_TRACE(what);
        const StringTable table(contents);
        expectTexts(table, texts);
        EXPECT_EQ(table.faults().count, 0u) << table.faults().firstReason;
    }
}

TEST(StringTable, ABadEntryCostsItselfAlone) {
    const std::tuple<const char*, std::string, std::size_t, Texts> rows[] = {
        {"no semicolon, next line", "\"x\" = \"X\"\n\"a\" = \"A\";", 1, {{"a", "A"}}},
        {"no semicolon, same line", "\"x\" = \"X\" \"a\" = \"A\";", 1, {{"a", "A"}}},
        {"open text", "\n\"x\" = \"X;\n\"a\" = \"A\";\nb = \"B\";", 2, {{"a", "A"}, {"b", "B"}}},
        {"open key", "\"x = \"X\";\n\"a\" = \"A\";", 1, {{"a", "A"}}},
        {"open text at the end", "\"a\" = \"A\";\n\"x\" = \"X", 2, {{"a", "A"}}},
        {"half an escape at the end", "\"a\" = \"A\";\n\"x\" = \"X\\", 2, {{"a", "A"}}},
        {"no text", "\"x\";\n\"a\" = \"A\";", 1, {{"a", "A"}}},
        {"no text, same line", "x; \"a\" = \"A\";", 1, {{"a", "A"}}},
        {"no key", "= \"X\"; a = \"A\";", 1, {{"a", "A"}}},
        {"garbage line", "a = A;\n}{ <<<\nb = B;", 2, {{"a", "A"}, {"b", "B"}}},
        {"unknown escape", R"("x" = "\q"; "a" = "A";)", 1, {{"a", "A"}}},
        {"short code point", R"("x" = "\U12"; "a" = "A";)", 1, {{"a", "A"}}},
        {"half a surrogate pair", R"("x" = "\UD83D-"; "a" = "A";)", 1, {{"a", "A"}}},
        {"low surrogate first", R"("x" = "\UDE00"; "a" = "A";)", 1, {{"a", "A"}}},
        {"zero code point", R"("x" = "\U0000"; "a" = "A";)", 1, {{"a", "A"}}},
        {"zero byte", "\"x\" = \"X\0\"; \"a\" = \"A\";"s, 1, {{"a", "A"}}},
        {"wrong encoding", "\"x\" = \"caf\xE9\"; \"a\" = \"A\";", 1, {{"a", "A"}}},
        {"wrong encoding beyond 16 bytes", "x = \"0123456789abcdef\xC0\x80\"; a = A;", 1, {{"a", "A"}}},
        {"byte beyond ASCII after the text",
         "a = \"A\";\xFF b = \"B\"; c = \"C\";",
         1,
         {{"a", "A"}, {"c", "C"}}},
        {"half a surrogate in UTF-16", utf16(u"\uFEFFx = \"\xD83D\"; a = A;", true), 1, {{"a", "A"}}},
        {"UTF-16 cut in a unit", utf16(u"\uFEFFa = A;\nb = \"B", true) + "\0"s, 2, {{"a", "A"}}},
        {"comment without end", "a = A;\n/* b = B;\nc = C;", 2, {{"a", "A"}, {"c", "C"}}},
        {"escaped line ends are no lines", "\"a\" = \"1\\n2\\n\\U000A\";\nx\n", 2, {{"a", "1\n2\n\n"}}},
        {"escaped line ends of the bad entry", "\"x\\n\" = \"\\q\";\na = A;", 1, {{"a", "A"}}},
    };
    for (const auto& [what, contents, line, texts] : rows) {
        SCOPED_TRACE(what);
        const StringTable table(contents);
        expectTexts(table, texts);
        EXPECT_EQ(table.faults().firstLine, line) << table.faults().firstReason;
    }
}

/// Each would take minutes if something were read again for every entry.
TEST(StringTable, TakesLinearTimeOnHostileTexts) {
    constexpr std::size_t kSize = 1u << 20;
    for (const std::string_view piece : {"\"", "\"\n", "\"\\\n", "\"k\" /*\n", "/*\n", "a=\"\\\"\n",
                                         "\"k\" // \n", "k\n", "\\\"\n", "a=b;", "\"k\"=\n", "/**/", "\n"}) {
        SCOPED_TRACE(piece);
        for (const std::string_view end : {"", "*/", "\"", ";"}) {
            std::string contents;
            while (contents.size() < kSize) contents += piece;
            EXPECT_LE(StringTable(contents.append(end)).size(), 2u);
        }
    }
    const std::string longLine(kSize, 'x');
    EXPECT_EQ(StringTable("a = \"" + longLine + "\";").lookUp("a"), longLine);
}

TEST(StringTable, FindsEachOfManyKeys) {
    constexpr int kCount = 20000;
    std::string contents;
    for (int i = 0; i < kCount; ++i)
        contents += "\"key." + std::to_string(i) + "\" = \"" + std::to_string(i) + "\";\n";
    const StringTable table(contents);
    for (int i = 0; i < kCount; ++i) ASSERT_EQ(table.lookUp("key." + std::to_string(i)), std::to_string(i));
    EXPECT_EQ(table.lookUp("key."), std::nullopt);
    EXPECT_EQ(table.lookUp("key.20000"), std::nullopt);
}

TEST(StringTable, LogsOneLineForAFile) {
    const testing::TemporaryDirectory directory;
    const testing::CapturedLog log;
    FileSystem& files = FileSystem::slot().current();
    const std::string bad = directory.write("bad.strings", "a = A;\nb\nc = \"\\q\";\n");
    const std::string one = directory.write("one.strings", "a = \n");
    expectTexts(**StringTable::load(files, bad), {{"a", "A"}});
    expectTexts(**StringTable::load(files, one), {});
    EXPECT_EQ(StringTable::load(files, directory / "missing.strings").error().kind, ErrorKind::Missing);
    const std::string huge = directory.write("huge.strings", std::string(StringTable::kLargestFile + 1, ' '));
    EXPECT_EQ(StringTable::load(files, huge).error().kind, ErrorKind::TooLarge);
    EXPECT_THAT(log.lines(),
                ElementsAre(bad + ":2: expected '=' after the key; 2 entries of the file are left out",
                            one + ":1: expected a text; the entry is left out"));
}

}  // namespace
}  // namespace kx
