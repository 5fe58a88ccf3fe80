// Fax pages from text, against pages that a plain walk over the same text draws: pixel by pixel, whatever fonts the
// system has.
#include "annot/fax_pages.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

#include <random>

namespace vellum::test {
namespace {

void expectAsDrawnPlainly(FaxPageParams params, const std::string &text) {
    const TextFile file(text);
    lstrcpynA(params.textFile, file.path(), sizeof params.textFile);
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
    const PlainFax plain(params, text, params.fontFace[0] == '\0' ? std::nullopt : std::optional(expectedFont(params)));
    ASSERT_EQ(result.count(), plain.pages().size());
    EXPECT_TRUE(result.untouchedFrom(result.count()));
    for (DWORD i = 0; i < result.count(); ++i) {
        EXPECT_TRUE(pixelsOf(result.bitmap(i)) == plain.pages()[i]) << "page " << i << " of " << result.count();
    }
}

TEST(FaxPage, ATextOfOneLineIsOnePage) {
    const TextFile file("Hello, fax.");
    const FaxPageParams params = smallPage(file.path());
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_TRUE(result.untouchedFrom(1));
    BITMAP bitmap{};
    ASSERT_NE(GetObject(result.bitmap(0), sizeof bitmap, &bitmap), 0);
    EXPECT_EQ(bitmap.bmWidth, 400);
    EXPECT_EQ(bitmap.bmHeight, 300);
    EXPECT_EQ(bitmap.bmPlanes * bitmap.bmBitsPixel, 1);
    const ExpectedPage expected(400, 300, expectedFont(params));
    expected.draw(20, 20, "Hello, fax.");
    const Pixels pixels = pixelsOf(result.bitmap(0));
    EXPECT_TRUE(hasInk(pixels));
    EXPECT_TRUE(pixels == expected.pixels());
}

TEST(FaxPage, LinesTabsAndWrapsAreThoseOfThePlainWalk) {
    const FaxPageParams params = smallPage("");
    for (const char *text : {
             "one\r\ntwo\r\n\r\nthree",
             "a\tb\tc\r\nlonger than a stop\tb\tc",
             "The quick brown fox jumps over the lazy dog, and then it is tired: it sleeps. Next day; again!",
             "Averylongwordthatdoesnotfitthelineandhasnobreakcharacterinitwhatsoeverandgoesonandon end",
             "\t\t\t\t\t\t\t\t\t\t\t\tfar to the right",
             "tab at the end\t",
             "a form\ffeed and a line\nfeed",
             "an umlaut \xE4 and \x7F",
             " ",
         }) {
        SCOPED_TRACE(text);
        expectAsDrawnPlainly(params, text);
    }
}

TEST(FaxPage, ALineWithoutABreakRunsPastTheMargin) {
    const TextFile file(std::string(100, '#'));
    FaxPageParams params = smallPage(file.path());
    // The limit goes through the middle of the 31st character.
    const LONG character = ExpectedPage(1, 1, expectedFont(params)).extent("#").cx;
    const LONG limit = 20 + 30 * character + character / 2;
    params.pageWidth = static_cast<DWORD>(limit + 20);
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    const Pixels pixels = pixelsOf(result.bitmap(0));
    const auto inkBehind = [&](LONG column) {
        bool found = false;
        for (std::size_t i = 0; i < pixels.size(); ++i) {
            found = found || (pixels[i] == 0 && static_cast<LONG>(i % params.pageWidth) >= column);
        }
        return found;
    };
    EXPECT_TRUE(inkBehind(limit));
    EXPECT_FALSE(inkBehind(limit + character));
    expectAsDrawnPlainly(params, std::string(100, '#'));
}

TEST(FaxPage, PagesFollowEachOther) {
    std::string text;
    for (int i = 0; i < 60; ++i) {
        text += "line " + std::to_string(i) + "\r\n";
    }
    expectAsDrawnPlainly(smallPage(""), text);
}

TEST(FaxPage, ATextThatFillsItsPageAndEndsTheLastLineHasAnEmptyPageBehindIt) {
    const TextFile nothing("");
    FaxPageParams params = smallPage(nothing.path());
    const int lineHeight = ExpectedPage(1, 1, expectedFont(params)).extent("M").cy;
    params.pageHeight = static_cast<DWORD>(40 + 3 * lineHeight);
    for (const std::string text : {"1\r\n2\r\n3", "1\r\n2\r\n3\r\n"}) {
        const TextFile file(text);
        lstrcpynA(params.textFile, file.path(), sizeof params.textFile);
        const FaxResult result(params, VELLUM_FAX_BITMAPS);
        EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
        ASSERT_EQ(result.count(), text.back() == '\n' ? 2U : 1U);
        EXPECT_TRUE(hasInk(pixelsOf(result.bitmap(0))));
        EXPECT_TRUE(result.count() == 1 || !hasInk(pixelsOf(result.bitmap(1))));
        expectAsDrawnPlainly(params, text);
    }
}

TEST(FaxPage, TextsWithoutAnythingToDrawAreOneWhitePage) {
    for (const std::string text : {"", "\r", "\n\n\n", "\x1A", "\x01\x02\x03\f\v"}) {
        const TextFile file(text);
        const FaxResult result(smallPage(file.path()), VELLUM_FAX_BITMAPS);
        EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
        ASSERT_EQ(result.count(), 1U);
        EXPECT_TRUE(pixelsOf(result.bitmap(0)) == Pixels(400 * 300, 0xFFFFFF));
    }
}

TEST(FaxPage, RandomTextsAreThoseOfThePlainWalk) {
    std::mt19937 random(20);
    const std::string alphabet = "abcdefghijklmnop WWM,.-;:?!\t\r\n\f";
    for (int round = 0; round < 25; ++round) {
        std::string text;
        for (unsigned length = random() % 700; length > 0; --length) {
            text += alphabet[random() % alphabet.size()];
        }
        FaxPageParams params = smallPage("");
        params.pageWidth = 60 + random() % 400;
        params.pageHeight = 80 + random() % 200;
        params.lineSpacing = random() % 9;
        params.fontSize = 6 + random() % 12;
        for (DWORD &stop : params.tabStops) {
            stop = random() % 400;
        }
        SCOPED_TRACE(round);
        expectAsDrawnPlainly(params, text);
    }
}

TEST(FaxPage, TheFontIsTheRecords) {
    struct Case {
        const char *face;
        DWORD size;
        DWORD flags;
    };
    for (const Case &entry :
         {Case{"Arial", 20, 0}, Case{"Arial", 12, VELLUM_FAX_ITALIC}, Case{"Times New Roman", 12, VELLUM_FAX_BOLD},
          Case{"Courier New", 9, VELLUM_FAX_BOLD | VELLUM_FAX_ITALIC}, Case{"No font of this name", 11, 0},
          Case{"Arial", 0, 0}, Case{"", 12, 0}}) {
        FaxPageParams params = smallPage("");
        lstrcpynA(params.fontFace, entry.face, sizeof params.fontFace);
        params.fontSize = entry.size;
        params.flags |= entry.flags;
        SCOPED_TRACE(entry.face);
        expectAsDrawnPlainly(params, "The font, with some words that are wrapped at the right margin.\r\nNext.");
    }
}

TEST(FaxPage, TheTwoResolutionsCountEachInItsDirection) {
    const TextFile file("x\ty\r\nz");
    FaxPageParams params = smallPage(file.path());
    params.horizontalResolution = 200;
    params.verticalResolution = 50;
    params.lineSpacing = 10;
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    const ExpectedPage expected(800, 150, expectedFont(params));
    expected.draw(40, 10, "x");
    expected.draw(40 + 80, 10, "y");
    expected.draw(40, 10 + expected.extent("M").cy + 5, "z");
    EXPECT_TRUE(pixelsOf(result.bitmap(0)) == expected.pixels());
}

TEST(FaxPage, MillimetresAreTheUnitWithoutTheFlag) {
    const TextFile file("x\ty\r\nz");
    FaxPageParams params = smallPage(file.path());
    params.flags = 0;
    params.pageWidth = 100;  // 393 hundredths
    params.pageHeight = 50;  // 196
    params.leftMargin = 10;  // 39
    params.topMargin = 5;    // 19
    params.lineSpacing = 2;  // 7
    params.tabStops[0] = 20; // 78
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    const ExpectedPage expected(393, 196, expectedFont(params));
    expected.draw(39, 19, "x");
    expected.draw(39 + 78, 19, "y");
    expected.draw(39, 19 + expected.extent("M").cy + 7, "z");
    EXPECT_TRUE(pixelsOf(result.bitmap(0)) == expected.pixels());
}

TEST(FaxPage, DibsHaveThePagesPixelsAndTheRecordsResolution) {
    const TextFile file("A page\twith tabs.\r\nand lines");
    FaxPageParams params = smallPage(file.path());
    params.horizontalResolution = 204;
    params.verticalResolution = 98;
    const FaxResult bitmaps(params, VELLUM_FAX_BITMAPS);
    FaxResult dibs(params, VELLUM_FAX_DIBS);
    ASSERT_EQ(bitmaps.count(), 1U);
    ASSERT_EQ(dibs.count(), 1U);
    EXPECT_EQ(dibs.status(), DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_EQ(lockCount(dibs.handle(0)), 0U);
    const Bytes bytes = blockBytes(dibs.handle(0));
    BITMAPINFOHEADER header{};
    ASSERT_GT(bytes.size(), sizeof header);
    std::memcpy(&header, bytes.data(), sizeof header);
    EXPECT_EQ(header.biSize, sizeof header);
    EXPECT_EQ(header.biWidth, 816);
    EXPECT_EQ(header.biHeight, 294);
    EXPECT_EQ(header.biPlanes, 1);
    EXPECT_EQ(header.biBitCount, 1);
    EXPECT_EQ(header.biCompression, DWORD{BI_RGB});
    EXPECT_EQ(header.biXPelsPerMeter, 8031) << "204 * 39.37 = 8031.48";
    EXPECT_EQ(header.biYPelsPerMeter, 3858) << "98 * 39.37 = 3858.26";
    EXPECT_EQ(header.biSizeImage, 104U * 294);
    EXPECT_EQ(header.biClrUsed, 2U);
    EXPECT_EQ(bytes.size(), sizeof header + 2 * sizeof(RGBQUAD) + header.biSizeImage);
    EXPECT_TRUE(pixelsOf(Dib(makeBlock(bytes))) == pixelsOf(bitmaps.bitmap(0)));
}

TEST(FaxPage, DibsOfSeveralPagesAreThePagesInOrder) {
    std::string text;
    for (int i = 0; i < 40; ++i) {
        text += "line " + std::to_string(i) + "\r\n";
    }
    const TextFile file(text);
    const FaxPageParams params = smallPage(file.path());
    const FaxResult dibs(params, VELLUM_FAX_DIBS);
    const PlainFax plain(params, text, expectedFont(params));
    ASSERT_GT(plain.pages().size(), 2U);
    ASSERT_EQ(dibs.count(), plain.pages().size());
    for (DWORD i = 0; i < dibs.count(); ++i) {
        EXPECT_TRUE(pixelsOf(Dib(makeBlock(blockBytes(dibs.handle(i))))) == plain.pages()[i]) << i;
    }
}

TEST(FaxPage, TheShortFormsDoTheSame) {
    const TextFile file("one\r\ntwo");
    const FaxPageParams params = smallPage(file.path());
    const FaxResult expected(params, VELLUM_FAX_BITMAPS);
    HANDLE page = nullptr;
    DWORD status = 7;
    ASSERT_EQ(CreateBMPFaxPageFromASCII(&params, 1, &page, &status), 1U);
    EXPECT_EQ(status, DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_TRUE(pixelsOf(static_cast<HBITMAP>(page)) == pixelsOf(expected.bitmap(0)));
    DeleteObject(page);
    status = 7;
    ASSERT_EQ(CreateDIBFaxPageFromASCII(&params, 1, &page, &status), 1U);
    EXPECT_EQ(status, DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_TRUE(pixelsOf(Dib(page)) == pixelsOf(expected.bitmap(0)));
}

TEST(FaxPage, AnyOtherKindIsBitmaps) {
    const TextFile file("one");
    const FaxResult result(smallPage(file.path()), 0);
    ASSERT_EQ(result.count(), 1U);
    EXPECT_EQ(GetObjectType(result.handle(0)), DWORD{OBJ_BITMAP});
}

} // namespace
} // namespace vellum::test
