// Fax pages whose first page is the caller's bitmap, and fonts that the caller describes.
#include "annot/fax_pages.h"
#include "support/gdi_calls.h"
#include "support/global_memory.h"
#include "write/bitmaps.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr DWORD kKinds[] = {VELLUM_FAX_BITMAPS, VELLUM_FAX_DIBS};

std::string manyLines() {
    std::string text;
    for (int i = 0; i < 20; ++i) {
        text += "line " + std::to_string(i) + "\r\n";
    }
    return text;
}

TEST(FaxOnABitmap, TheTextIsDrawnOverThePictureAndThePictureStays) {
    const TextFile file("one\r\ntwo");
    const FaxPageParams params = smallPage(file.path());
    const TestBitmap expected = screenBitmap(200, 150);
    const TestBitmap bitmap = screenBitmap(200, 150);
    const Pixels before = pixelsOf(bitmap.get());
    const FaxResult result(params, VELLUM_FAX_BITMAPS, 5, bitmap.get());
    ASSERT_EQ(result.count(), 1U);
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_EQ(result.bitmap(0), bitmap.get()) << "the caller's own bitmap is the page";
    const Pixels pixels = pixelsOf(bitmap.get());
    EXPECT_FALSE(pixels == before);
    EXPECT_TRUE(pixels == withText(expected.get(), params, {"one", "two"}));
}

TEST(FaxOnABitmap, ThePageIsTheRecordsWhateverTheBitmapsSize) {
    const TextFile file("words that are wrapped where the record says, not at the bitmap's right side");
    FaxPageParams params = smallPage(file.path());
    const TestBitmap bitmap = monochromeBitmap(1000, 100);
    const TestBitmap expected = monochromeBitmap(1000, 100);
    std::vector<std::string> lines = {""};
    {
        const ExpectedPage measure(1, 1, expectedFont(params));
        std::string text = "words that are wrapped where the record says, not at the bitmap's right side";
        while (!text.empty()) {
            std::size_t length = 0;
            while (length < text.size() && 20 + measure.extent(text.substr(0, length)).cx < 380) {
                ++length;
            }
            const std::size_t last = text.substr(0, length).find_last_of(" ,");
            const bool ends = 20 + measure.extent(text).cx < 380;
            lines.back() = ends ? text : text.substr(0, last + 1);
            text = ends ? "" : text.substr(last + 1);
            if (!ends) {
                lines.emplace_back();
            }
        }
    }
    ASSERT_GT(lines.size(), 1U);
    const FaxResult result(params, VELLUM_FAX_BITMAPS, 1, bitmap.get());
    EXPECT_TRUE(pixelsOf(bitmap.get()) == withText(expected.get(), params, lines));
}

TEST(FaxOnABitmap, WithBitmapsTheOtherPagesAreTheLibrarys) {
    const TextFile file(manyLines());
    const FaxPageParams params = smallPage(file.path());
    const TestBitmap bitmap = monochromeBitmap(400, 300);
    const GdiCalls calls;
    const FaxResult result(params, VELLUM_FAX_BITMAPS, 5, bitmap.get());
    ASSERT_EQ(result.count(), 2U);
    EXPECT_EQ(result.bitmap(0), bitmap.get());
    EXPECT_EQ(GdiCalls::counts().objects, 1);
    EXPECT_TRUE(pixelsOf(result.bitmap(1)) == PlainFax(params, manyLines(), expectedFont(params)).pages()[1])
        << "white but for its text";
}

TEST(FaxOnABitmap, WithDibsEveryPageIsDrawnOnItInTurn) {
    const TextFile file(manyLines());
    const FaxPageParams params = smallPage(file.path());
    const TestBitmap bitmap = monochromeBitmap(400, 300);
    const FaxResult onPicture(params, VELLUM_FAX_BITMAPS, 1, monochromeBitmap(400, 300).get());
    const GdiCalls calls;
    const FaxResult result(params, VELLUM_FAX_DIBS, 5, bitmap.get());
    ASSERT_EQ(result.count(), 2U);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Bitmap), 0);
    const std::vector<Pixels> plain = PlainFax(params, manyLines(), expectedFont(params)).pages();
    const Pixels first = pixelsOf(Dib(makeBlock(blockBytes(result.handle(0)))));
    std::vector<std::string> lines;
    for (int i = 0; i < 20; ++i) {
        lines.push_back("line " + std::to_string(i));
    }
    const int lineHeight = ExpectedPage(1, 1, expectedFont(params)).extent("M").cy;
    lines.resize(static_cast<std::size_t>((260 + lineHeight - 1) / lineHeight));
    const TestBitmap expected = monochromeBitmap(400, 300);
    EXPECT_TRUE(first == withText(expected.get(), params, lines));
    EXPECT_TRUE(pixelsOf(Dib(makeBlock(blockBytes(result.handle(1))))) == plain[1]);
    EXPECT_TRUE(pixelsOf(bitmap.get()) == plain[1]) << "the last page stays on the bitmap";
}

TEST(FaxOnABitmap, WithDibsATextThatIsTooLongLeavesItWhite) {
    const TextFile file(manyLines());
    const TestBitmap bitmap = screenBitmap(300, 400);
    const FaxResult result(smallPage(file.path()), VELLUM_FAX_DIBS, 1, bitmap.get());
    EXPECT_EQ(result.count(), 1U);
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_PAGE_LIMIT});
    EXPECT_TRUE(pixelsOf(bitmap.get()) == Pixels(300 * 400, 0xFFFFFF));
}

TEST(FaxOnABitmap, TheDibHasTheBitmapsDepthWhereDibsHaveIt) {
    const TextFile file("text");
    FaxPageParams params = smallPage(file.path());
    std::vector<RGBQUAD> colours(256);
    for (std::size_t i = 0; i < colours.size(); ++i) {
        colours[i] = {static_cast<BYTE>(i), static_cast<BYTE>(255 - i), static_cast<BYTE>(i * 3), 0};
    }
    colours[9] = {0, 0, 0, 0};
    struct Case {
        WORD bits;
        WORD stored;
    };
    for (const Case &entry : {Case{1, 1}, Case{4, 4}, Case{8, 8}, Case{24, 24}, Case{32, 24}, Case{16, 24}}) {
        SCOPED_TRACE(entry.bits);
        std::vector<RGBQUAD> table(colours.begin(), colours.begin() + (entry.bits <= 8 ? 1 << entry.bits : 0));
        const TestBitmap bitmap = sectionBitmap(61, 47, entry.bits, table);
        const FaxResult result(params, VELLUM_FAX_DIBS, 1, bitmap.get());
        ASSERT_EQ(result.count(), 1U);
        const Dib dib(makeBlock(blockBytes(result.handle(0))));
        EXPECT_EQ(dib.header().biBitCount, entry.stored);
        EXPECT_EQ(dib.header().biClrUsed, table.size());
        EXPECT_EQ(dib.header().biXPelsPerMeter, 3936) << "100 * 39.37 comes out just below 3937";
        if (entry.bits != 16) {
            EXPECT_TRUE(pixelsOf(dib) == pixelsOf(bitmap.get()));
        }
    }
}

TEST(FaxOnABitmap, WhateverFailsTheBitmapStaysTheCallers) {
    const TextFile file("one");
    const FaxPageParams none = smallPage("no such file");
    for (const DWORD kind : kKinds) {
        const TestBitmap bitmap = screenBitmap(30, 20);
        const Pixels before = pixelsOf(bitmap.get());
        {
            const GdiCalls calls;
            const FaxResult result(none, kind, 1, bitmap.get());
            EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_TEXT});
            EXPECT_EQ(GdiCalls::counts().objects, 0);
        }
        {
            const GdiCalls calls(GdiCalls::Fail::MemoryDc, 0);
            const FaxResult result(smallPage(file.path()), kind, 1, bitmap.get());
            EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_MEMORY});
        }
        EXPECT_TRUE(pixelsOf(bitmap.get()) == before);
    }
}

TEST(FaxOnABitmap, ABitmapThatIsInUseOrNoBitmapIsReported) {
    const TextFile file("one");
    const TestBitmap bitmap = screenBitmap(30, 20);
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, bitmap.get());
    EXPECT_EQ(FaxResult(smallPage(file.path()), VELLUM_FAX_BITMAPS, 1, bitmap.get()).status(),
              DWORD{VELLUM_FAX_NO_MEMORY});
    SelectObject(dc, before);
    DeleteDC(dc);
    EXPECT_EQ(FaxResult(smallPage(file.path()), VELLUM_FAX_BITMAPS, 1, reinterpret_cast<HBITMAP>(0x1234)).status(),
              DWORD{VELLUM_FAX_NO_MEMORY});
}

TEST(FaxFont, ADescriptionReplacesFaceItalicAndBoldButNotTheSize) {
    const TextFile file("Some text in the font described.");
    FaxPageParams params = smallPage(file.path());
    LOGFONTA font{};
    font.lfHeight = 77;
    font.lfWidth = 9;
    font.lfWeight = 300;
    font.lfUnderline = TRUE;
    font.lfCharSet = ANSI_CHARSET;
    lstrcpynA(font.lfFaceName, "Times New Roman", LF_FACESIZE);
    params.fontDescription = &font;
    params.flags |= VELLUM_FAX_BOLD | VELLUM_FAX_ITALIC;
    LOGFONTA expected = font;
    expected.lfHeight = -17; // 12 points at 100 dots per inch are 16.67 pixels
    const GdiCalls calls;
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    EXPECT_EQ(std::memcmp(&GdiCalls::counts().font, &expected, offsetof(LOGFONTA, lfFaceName)), 0);
    EXPECT_STREQ(GdiCalls::counts().font.lfFaceName, "Times New Roman");
    EXPECT_EQ(font.lfHeight, 77) << "the caller's record stays as it is";
    EXPECT_TRUE(result.pixels() == PlainFax(params, "Some text in the font described.", expected).pages());
}

TEST(FaxFont, WithoutAFaceTheDescriptionIsNotLookedAt) {
    const TextFile file("Some text.");
    FaxPageParams params = smallPage(file.path());
    params.fontFace[0] = '\0';
    params.fontDescription = reinterpret_cast<const LOGFONTA *>(0x10);
    const GdiCalls calls;
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Font), 0);
    EXPECT_TRUE(result.pixels() == PlainFax(params, "Some text.", std::nullopt).pages());
}

TEST(FaxFont, TheRecordsFontIsAskedForInFull) {
    const TextFile file("x");
    FaxPageParams params = smallPage(file.path());
    for (const DWORD flags : {DWORD{0}, DWORD{VELLUM_FAX_ITALIC}, DWORD{VELLUM_FAX_BOLD}}) {
        params.flags = VELLUM_FAX_HUNDREDTHS | flags;
        const GdiCalls calls;
        const FaxResult result(params, VELLUM_FAX_BITMAPS);
        const LOGFONTA &font = GdiCalls::counts().font;
        EXPECT_EQ(font.lfHeight, -17);
        EXPECT_EQ(font.lfWidth, 0);
        EXPECT_EQ(font.lfWeight, flags == VELLUM_FAX_BOLD ? 700 : 400);
        EXPECT_EQ(font.lfItalic, flags == VELLUM_FAX_ITALIC ? 1 : 0);
        EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
        EXPECT_STREQ(font.lfFaceName, "Arial");
    }
}

TEST(FaxFont, AFaceThatIsTooLongIsCut) {
    const TextFile file("x");
    FaxPageParams params = smallPage(file.path());
    std::memset(params.fontFace, 'f', sizeof params.fontFace);
    const GdiCalls calls;
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).count(), 1U);
    EXPECT_EQ(std::string(GdiCalls::counts().font.lfFaceName, LF_FACESIZE), std::string(31, 'f') + '\0');
    LOGFONTA font{};
    std::memset(font.lfFaceName, 'g', sizeof font.lfFaceName);
    params.fontDescription = &font;
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).count(), 1U);
    EXPECT_EQ(std::string(GdiCalls::counts().font.lfFaceName, LF_FACESIZE), std::string(31, 'g') + '\0');
}

TEST(FaxOnABitmap, ALineOfAMillionCharactersIsDrawnAsFarAsItIsSeen) {
    const TextFile file(std::string(1000000, 'x'));
    FaxPageParams params = smallPage(file.path());
    params.pageWidth = 0x7FFFFFFF;
    const TestBitmap bitmap = monochromeBitmap(500, 60);
    const TestBitmap expected = monochromeBitmap(500, 60);
    const FaxResult result(params, VELLUM_FAX_BITMAPS, 1, bitmap.get());
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
    EXPECT_TRUE(pixelsOf(bitmap.get()) == withText(expected.get(), params, {std::string(600, 'x')}));
}

} // namespace
} // namespace vellum::test
