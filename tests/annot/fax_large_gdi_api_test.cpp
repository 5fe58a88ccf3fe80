// Windows: texts of megabytes on fax pages. The calls that measure and draw grow with the text, and no faster; a byte
// costs no call of its own.
#include "annot/fax_pages.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// What a font costs that is measured character by character, and its line height.
constexpr int kFontMeasures = 300;
// Long enough for any machine, and far from enough for time that grows with the square of a text.
constexpr DWORD kSeconds = 60;

struct Cost {
    DWORD pages = 0;
    DWORD status = 0xBAD;
    int drawn = 0;
    int measured = 0;
    bool inTime = false;
};

// Glyphs are the system's work, and slow.
enum class Glyphs { Drawn, LeftOut };

BOOL WINAPI drawNothing(HDC, int, int, UINT, const RECT *, const char *, UINT, const INT *) {
    return TRUE;
}

Cost costOf(const std::string &text, FaxPageParams params, Glyphs glyphs = Glyphs::Drawn) {
    const TextFile file(text);
    ImportPatch drawing;
    if (glyphs == Glyphs::LeftOut) {
        drawing.replace("ExtTextOutA", &drawNothing);
    }
    lstrcpynA(params.textFile, file.path(), sizeof params.textFile);
    std::vector<HANDLE> pages(100);
    Cost cost;
    const DWORD start = GetTickCount();
    {
        const GdiCalls calls;
        cost.pages = CreateDIBFaxPageFromASCII(&params, static_cast<DWORD>(pages.size()), pages.data(), &cost.status);
        cost.drawn = GdiCalls::counts().textsDrawn;
        cost.measured = GdiCalls::counts().textsMeasured;
    }
    cost.inTime = GetTickCount() - start < kSeconds * 1000;
    for (DWORD i = 0; i < cost.pages; ++i) {
        GlobalFree(pages[i]);
    }
    return cost;
}

// Small print on a large page.
FaxPageParams poster(DWORD width = 4000, DWORD height = 4000) {
    FaxPageParams page = smallPage("");
    page.pageWidth = width;
    page.pageHeight = height;
    page.fontSize = 5;
    return page;
}

// Lines of words, with tabs, some of them longer than the page is wide.
std::string manyWords(std::size_t bytes) {
    std::string text;
    for (unsigned i = 0; text.size() < bytes; ++i) {
        text += "word" + std::to_string(i % 1000);
        text += i % 400 == 399 ? "\r\n" : i % 7 == 6 ? "\t" : i % 5 == 4 ? ", " : " ";
    }
    text.resize(bytes);
    return text;
}

void expectLinear(const Cost &once, const Cost &fourTimes) {
    for (const Cost &cost : {once, fourTimes}) {
        EXPECT_EQ(cost.status, DWORD{VELLUM_FAX_COMPLETE});
        EXPECT_GT(cost.drawn, 0);
        EXPECT_LE(cost.measured, kFontMeasures + cost.drawn);
        EXPECT_TRUE(cost.inTime);
    }
    EXPECT_LE(fourTimes.drawn, once.drawn * 4.5);
    EXPECT_LE(fourTimes.measured, once.measured * 4.5);
}

TEST(LargeFax, OfTenMegabytesHasOneCallForAPieceOfALine) {
    constexpr std::size_t kBytes = 10'000'000;
    const Cost quarter = costOf(manyWords(kBytes / 4), poster(), Glyphs::LeftOut);
    const Cost whole = costOf(manyWords(kBytes), poster(), Glyphs::LeftOut);
    expectLinear(quarter, whole);
    EXPECT_GT(whole.pages, quarter.pages);
    // A tab after every seven words of some eight bytes.
    EXPECT_LE(whole.drawn, static_cast<int>(kBytes / 40));
    EXPECT_LE(whole.measured, kFontMeasures) << "no line is longer than what one call takes";
}

// On a page so wide that it is never wrapped, it waits as a whole to be drawn.
TEST(LargeFax, OfALineOfAMillionCharactersHasOneCallForThousandsOfThem) {
    constexpr std::size_t kBytes = 1'000'000;
    FaxPageParams strip = poster(4'000'000, 12);
    strip.topMargin = 0;
    const Cost quarter = costOf(std::string(kBytes / 4, 'i'), strip);
    const Cost whole = costOf(std::string(kBytes, 'i'), strip);
    expectLinear(quarter, whole);
    EXPECT_EQ(whole.pages, 1U);
    EXPECT_LE(whole.drawn, static_cast<int>(kBytes / 4000));
    EXPECT_LE(whole.measured, kFontMeasures + whole.drawn);
}

// Without a break character every line of the page is full.
TEST(LargeFax, OfAMillionCharactersWithoutABreakHasOneCallForALine) {
    constexpr std::size_t kBytes = 1'000'000;
    const Cost quarter = costOf(std::string(kBytes / 4, 'x'), poster());
    const Cost whole = costOf(std::string(kBytes, 'x'), poster());
    expectLinear(quarter, whole);
    EXPECT_LE(whole.drawn, static_cast<int>(kBytes / 300));
    EXPECT_LE(whole.measured, kFontMeasures);
}

// The last break character stands at the line's beginning: what is moved down is nearly all of it, time and again.
TEST(LargeFax, OfLinesWhoseOnlyBreakIsTheirFirstCharacterIsLinearToo) {
    const auto lines = [](std::size_t count) {
        std::string text;
        for (std::size_t i = 0; i < count; ++i) {
            text += " " + std::string(999, 'x');
        }
        return text;
    };
    expectLinear(costOf(lines(250), poster()), costOf(lines(1000), poster()));
}

} // namespace
} // namespace vellum::test
