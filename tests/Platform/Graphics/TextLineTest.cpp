// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Graphics/TextLine.h>

namespace kx {
namespace {

std::shared_ptr<NSFont> font(std::string_view name, double size = 14) {
    return NSFont::fontWithNameOrFallback(name, size);
}

std::shared_ptr<const TextLine> lineOf(std::initializer_list<StyledText> pieces) {
    return TextLine::layOut(std::span(pieces.begin(), pieces.size()));
}

std::vector<TextLine::Glyph> glyphsOf(const TextLine& line, std::size_t piece) {
    std::vector<TextLine::Glyph> glyphs;
    for (const auto& run : line.runs()) {
        const auto part = line.glyphsOf(run);
        if (run.piece == piece) glyphs.insert(glyphs.end(), part.begin(), part.end());
    }
    return glyphs;
}

/// The pieces from left to right, those that run to the left in brackets: "0(1)0".
std::string order(const TextLine& line) {
    std::string order;
    for (const auto& run : line.runs())
        order += run.isRightToLeft ? "(" + std::to_string(run.piece) + ")" : std::to_string(run.piece);
    return order;
}

TEST(TextLine, AsciiTakesTheShortRoadToTheSameGlyphs) {
    for (const char* name : {"DejaVu Sans", "DejaVu Serif Bold", "DejaVu Sans Mono", "Amiri"}) {
        for (const char* text :
             {"Waffles, AVATAR & fjord office", "  two  blanks ", "12.50 (x)", "~!@#$%^&*"}) {
            const auto simple = lineOf({{text, font(name)}});
            const auto full = lineOf({{text, font(name)}, {"é", font(name)}});
            const auto got = glyphsOf(*simple, 0), want = glyphsOf(*full, 0);
            ASSERT_EQ(got.size(), want.size()) << name << ": " << text;
            for (std::size_t i = 0; i < got.size(); ++i) {
                EXPECT_EQ(got[i].number, want[i].number) << name << ": " << text << ", glyph " << i;
                EXPECT_NEAR(got[i].position.x, want[i].position.x, 0.05) << name << ": " << text << ", " << i;
                EXPECT_NEAR(got[i].position.y, want[i].position.y, 0.01) << name << ": " << text << ", " << i;
            }
        }
    }
}

TEST(TextLine, OrdersItsPiecesForTheirScripts) {
    const auto plain = font("DejaVu Sans"), bold = font("DejaVu Sans Bold");
    const std::tuple<const char*, std::shared_ptr<const TextLine>, const char*> rows[] = {
        {"nothing", lineOf({}), ""},
        {"empty pieces", lineOf({{"", plain}, {"", nullptr}}), ""},
        {"Latin", lineOf({{"Har", plain}, {"bour", bold}}), "01"},
        {"Arabic", lineOf({{"ميناء", plain}, {" قديم", bold}}), "(1)(0)"},
        {"Arabic in Latin", lineOf({{"a ", plain}, {"ميناء", bold}, {" b", plain}}), "0(1)22"},
        {"a number in Arabic", lineOf({{"ميناء ", plain}, {"12", bold}, {" قديم", plain}}), "(2)1(0)"},
        {"Chinese from another font", lineOf({{"a港", plain}}), "00"},
    };
    for (const auto& [what, line, want] : rows) EXPECT_EQ(order(*line), want) << what;
    const TextLine &latin = *std::get<1>(rows[2]), &chinese = *std::get<1>(rows[6]);
    EXPECT_EQ(latin.fontNameOf(latin.runs()[1]), "DejaVu Sans Bold");
    EXPECT_EQ(chinese.fontNameOf(chinese.runs()[1]), "Droid Sans Fallback");
}

TEST(TextLine, IsAsWideAndHighAsTheSameTextLaidOut) {
    for (const char* text : {"Harbour", "ميناء قديم", "Files: مرحبا 12", "港口 a", "a\xFF b"}) {
        const auto line = lineOf({{text, font("DejaVu Sans")}});
        const NSSize laidOut = TextLayout(text, font("DejaVu Sans")).size();
        EXPECT_NEAR(line->width(), laidOut.width, 0.05) << text;
        EXPECT_NEAR(line->ascent() + line->descent(), laidOut.height, 0.05) << text;
    }
    EXPECT_EQ(lineOf({{"a\tb\nc", font("DejaVu Sans")}})->width(),
              lineOf({{"a b c", font("DejaVu Sans")}})->width());
}

TEST(TextLine, OutlinesScaleAndCarryForcedWeight) {
    const auto outlined = [](std::string_view text, std::string_view name, double size) {
        const auto path = CGMutablePath::path();
        const auto line = lineOf({{text, font(name, size)}});
        for (const auto& run : line->runs()) line->addOutlinesOf(run, *path);
        return path->pathBoundingBox();
    };
    const NSRect small = outlined("H", "DejaVu Sans", 10), large = outlined("H", "DejaVu Sans", 2000);
    EXPECT_NEAR(large.size.width, 200 * small.size.width, 0.5);
    EXPECT_NEAR(large.size.height, 2000 * 0.729, 1);  // the capitals of DejaVu Sans stand 1493 of 2048 high
    EXPECT_NEAR(small.maxY(), 0, 0.01);               // on the baseline
    EXPECT_GT(outlined("g", "DejaVu Sans", 10).maxY(), 1);
    // The Chinese test font has no bold: it is made by force.
    EXPECT_GT(outlined("一", "DejaVu Sans Bold", 100).size.height,
              outlined("一", "DejaVu Sans", 100).size.height + 0.5);
    EXPECT_TRUE(outlined("  ", "DejaVu Sans", 10).isEmpty());
}

TEST(TextLine, HostileTextIsHarmless) {
    std::string arabic;
    while (arabic.size() < 20'000) arabic += "ميناء ";
    const std::tuple<const char*, std::string, double> rows[] = {
        {"1 MB", std::string(1'000'000, 'W'), 14},
        {"large letters", std::string(100'000, 'W'), 2000},
        {"no UTF-8", "\xFF\xFE\xC3(\x80", 14},
        {"zero bytes", std::string("a\0\0b", 4), 14},
        {"letters no font has", "\U000F0000\U0001F9FF", 14},
        {"direction marks", "\u202E\u2067\u2029\u2028a", 14},
        {"long Arabic", arabic, 14},
    };
    for (const auto& [what, text, size] : rows) {
        const auto path = CGMutablePath::path();
        const auto line = lineOf({{text, font("serif", size)}, {"x", font("serif")}});
        for (const auto& run : line->runs()) line->addOutlinesOf(run, *path);
        EXPECT_GE(line->width(), 0) << what;
        EXPECT_LT(line->width(), 2'100'000) << what;
    }
}

}  // namespace
}  // namespace kx
