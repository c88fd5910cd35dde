// SPDX-License-Identifier: MIT

// Runs kx-strings over small applications.
#include <algorithm>
#include <cstdio>
#include <map>
#include <string>

#include <gmock/gmock.h>

#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace {

using namespace std::string_literals;
using ::testing::EndsWith;
using ::testing::StartsWith;

struct Answer {
    int status;
    std::string output;
};

/// In that directory, with the two outputs as one.
Answer run(const std::string& directory, const std::string& arguments) {
    const std::string command = "cd '" + directory + "' && '" KX_STRINGS "' " + arguments + " 2>&1";
    FILE* const pipe = popen(command.c_str(), "r");
    Answer result{0, ""};
    for (int c = 0; (c = std::fgetc(pipe)) != EOF;) result.output += static_cast<char>(c);
    result.status = WEXITSTATUS(pclose(pipe));
    return result;
}

const std::string kEnglish = "R/en.lproj/Localizable.strings";
const std::string kFrench = "R/fr.lproj/Localizable.strings";

/// Two tables in two languages with these texts under the one key "k".
std::map<std::string, std::string> texts(const std::string& english, const std::string& french) {
    return {{kEnglish, "k = \"" + english + "\";"}, {kFrench, "k = \"" + french + "\";"}};
}

std::map<std::string, std::string> source(const std::string& code) {
    return {{kEnglish, "/* */\na = A; b.one = B;"}, {"src/deep/Page.cpp", code}};
}

TEST(KXStrings, FindsWhatIsWrong) {
    const struct {
        const char* what;
        std::map<std::string, std::string> files;
        std::string options;
        std::string output;  // the findings, without the summary
    } rows[] = {
        {"clean", texts("A", "B"), "", ""},
        {"a language that cannot be read",
         {{kEnglish, "a = A;"}, {"R/fr.lproj", ""}},
         "",
         "R/fr.lproj:1: Not a directory\n"},
        {"languages with other resources alone", {{kEnglish, "a = A;"}, {"R/Base.lproj/x.png", ""}}, "", ""},
        {"missing keys",
         {{kEnglish, "a = A;\nb = B;"}, {kFrench, "c = C;\n"}, {"R/it.lproj/Localizable.strings", "b = B;"}},
         "--ignore c",
         kEnglish + ":1: \"a\" is missing in fr, it\n" + kEnglish + ":2: \"b\" is missing in fr\n"},
        {"missing table, several ignored",
         {{kEnglish, "a.x = A; a.y = A;"}, {kFrench, ""}, {"R/fr.lproj/More.strings", "a = A;"}},
         "--ignore 'a.*'",
         "R/fr.lproj/More.strings:1: the table \"More\" is missing in en\n"},
        {"key as text", texts("K", "k"), "",
         kFrench + ":1: \"k\" is its own text, which counts as missing\n"},
        {"key as text in English", texts("k", "k"), "", ""},
        {"duplicates",
         {{kEnglish, "a = A; /*\n*/ \"a\\n\" = \"1\\n2\";\nb = B;\na = A;"}},
         "",
         kEnglish + ":4: duplicate key \"a\", also on line 1\n"},
        {"each faulty entry, encoding in texts and comments",
         {{kEnglish, "a = \"\\q\";\nb = \"\xFF\";\n// \xFF\nc = C;\n}\n"}},
         "",
         kEnglish + ":1: an unknown escape; the entry is left out\n" + kEnglish +
             ":2: no UTF-8; the entry is left out\n" + kEnglish + ":3: no UTF-8\n" + kEnglish +
             ":5: expected a key; the entry is left out\n"},
        {"UTF-16",
         {{kEnglish, "a\0=\0A\0;\0\n\0a\0=\0B\0;\0"s}},
         "",
         kEnglish + ":2: duplicate key \"a\", also on line 1\n"},
        {"arguments in another order", texts("%@ of %d", "%2$i : %1$@"), "", ""},
        {"spellings of one argument", texts("%5.2f %x {n:>8} 9%% {{a}}", "%G %u {n}"), "", ""},
        {"no arguments", texts("50 % de 20%-os { a } {", "50% {!}"), "", ""},
        {"order without numbers", texts("%@ %d", "%d %@"), "",
         kFrench + ":1: \"k\" takes %1$d %2$@, but %1$@ %2$d in en\n"},
        {"types", texts("%ld", "%d"), "", kFrench + ":1: \"k\" takes %1$d, but %1$ld in en\n"},
        {"an argument too few", texts("%*d", "%d"), "",
         kFrench + ":1: \"k\" takes %1$d, but %1$d %2$d in en\n"},
        {"braces", texts("{} {}", "{0} {name}"), "",
         kFrench + ":1: \"k\" takes {0} {name}, but {0} {1} in en\n"},
        {"a number in what is no argument", texts("%d", "%*1$ %d"), "", ""},
        {"numbers mixed", texts("%@ %@", "%2$@ %@"), "",
         kFrench + ":1: \"k\" mixes arguments with and without a number\n"},
        {"keys in calls, lists and put together",
         source("f(\"a\"); setLocalizedKey(button(\"no\", 1), std::string(\"b.\") + name);"), "--sources src",
         ""},
        {"unused keys, with a mention in a comment, an include and a longer text",
         source("// \"a\"\n#include \"a\"\nf(\"a b\"); g('\"', R\"(b)\" \".one\");"), "--sources src",
         kEnglish + ":2: \"a\" is used by no source\n"},
        {"beginnings of beginnings, raw texts that are none",
         source("f(\"b.one.\" + x); f(\"b.\" + x); f(\"b.x.\" + x); g(R\"0123456789abcdefg(\"); f(\"a\");"),
         "--sources src", ""},
        {"unknown keys",
         source("char c = '\"'; int n = 1'000;\n/*\n*/ localized(\"x\");\n"
                "localized(b ? u8\"a\" : \"y\"s, \"no\"); bind(n, \"no\"); kx::LiveLanguage::bind(n, \"v\"); "
                "localized(n == \"no\" ? g(\"no\") : \"b.one\");\n"
                "localized(\"z.\" + name + \"no\"); if (localized(\"w\") == n) return;"),
         "--sources=src",
         "src/deep/Page.cpp:3: no table has \"x\"\nsrc/deep/Page.cpp:4: no table has \"v\"\n"
         "src/deep/Page.cpp:4: no table has \"y\"\n"
         "src/deep/Page.cpp:5: no table has \"w\"\nsrc/deep/Page.cpp:5: no table has a key that begins with "
         "\"z.\"\n"},
        {"functions of one's own, one source",
         source("text(\"b.one\"); text(\"c\"); caption([] { return 1; }, {\"a\"}); caption(x, \"d\");"),
         "--sources src/deep/Page.cpp --function text --function caption:2",
         "src/deep/Page.cpp:1: no table has \"c\"\nsrc/deep/Page.cpp:1: no table has \"d\"\n"},
    };
    for (const auto& [what, files, options, output] : rows) {
        const kx::testing::TemporaryDirectory directory;
        for (const auto& [name, contents] : files) directory.write(name, contents);
        const Answer result = run(directory.path(), options + " R");
        EXPECT_EQ(result.status, output.empty() ? 0 : 1) << what;
        const std::size_t summary = result.output.find_last_of('\n', result.output.size() - 2) + 1;
        EXPECT_EQ(result.output.substr(0, summary), output) << what;
        const auto findings = std::ranges::count(output, '\n');
        EXPECT_THAT(result.output.substr(summary),
                    EndsWith(findings == 0   ? ": clean\n"
                             : findings == 1 ? ": 1 finding\n"
                                             : ": " + std::to_string(findings) + " findings\n"))
            << what;
    }
}

TEST(KXStrings, TellsWrongUse) {
    const kx::testing::TemporaryDirectory directory;
    directory.write(kEnglish, "a = A;");
    const struct {
        const char* arguments;
        int status;
        const char* begin;
    } rows[] = {
        {"--help", 0, "usage: "},      {"", 2, "kx-strings: which folder"},
        {"R R", 2, "kx-strings: one"}, {"--unknown R", 2, ""},
        {"--function :1 R", 2, "kx-"}, {"--function f:0 R", 2, "kx-"},
        {"R/en.lproj", 2, "kx-"},      {"nowhere", 2, "kx-strings: tables <language>"},
        {"--sources no R", 2, "kx-"},  {"R", 0, "1 language, 1 table, 1 key, 0 sources: clean\n"},
    };
    for (const auto& [arguments, status, begin] : rows) {
        const Answer result = run(directory.path(), arguments);
        EXPECT_EQ(result.status, status) << arguments;
        EXPECT_THAT(result.output, StartsWith(begin)) << arguments;
    }
}

}  // namespace
