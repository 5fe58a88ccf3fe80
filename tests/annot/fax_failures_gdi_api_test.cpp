// Fax pages that cannot be made: what the status says, how many pages there are, and that nothing is left behind.
#include "annot/fax_pages.h"
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr DWORD kKinds[] = {VELLUM_FAX_BITMAPS, VELLUM_FAX_DIBS};
constexpr DWORD kMost = 0xFFFFFFFF;

// Some 11 lines fit a page.
std::string threePages() {
    std::string text;
    for (int i = 0; i < 30; ++i) {
        text += "line " + std::to_string(i) + "\r\n";
    }
    return text;
}

TEST(FaxFailures, WithoutRecordArrayOrRoomThereIsNothingToDo) {
    const TextFile file("one");
    const FaxPageParams params = smallPage(file.path());
    HANDLE page = nullptr;
    DWORD status = 7;
    const GdiCalls calls;
    EXPECT_EQ(CreateFaxPageFromASCII(nullptr, 1, &page, VELLUM_FAX_BITMAPS, nullptr, &status), 0U);
    EXPECT_EQ(status, DWORD{VELLUM_FAX_NOTHING_TO_DO});
    status = 7;
    EXPECT_EQ(CreateFaxPageFromASCII(&params, 1, nullptr, VELLUM_FAX_BITMAPS, nullptr, &status), 0U);
    EXPECT_EQ(status, DWORD{VELLUM_FAX_NOTHING_TO_DO});
    status = 7;
    EXPECT_EQ(CreateFaxPageFromASCII(&params, 0, &page, VELLUM_FAX_BITMAPS, nullptr, &status), 0U);
    EXPECT_EQ(status, DWORD{VELLUM_FAX_NOTHING_TO_DO});
    EXPECT_EQ(CreateFaxPageFromASCII(nullptr, 1, &page, VELLUM_FAX_BITMAPS, nullptr, nullptr), 0U);
    EXPECT_EQ(page, nullptr);
    EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::MemoryDc), 0);
}

TEST(FaxFailures, TheStatusCodesAreZeroToFour) {
    EXPECT_EQ(VELLUM_FAX_COMPLETE, 0);
    EXPECT_EQ(VELLUM_FAX_NOTHING_TO_DO, 1);
    EXPECT_EQ(VELLUM_FAX_PAGE_LIMIT, 2);
    EXPECT_EQ(VELLUM_FAX_NO_TEXT, 3);
    EXPECT_EQ(VELLUM_FAX_NO_MEMORY, 4);
}

TEST(FaxFailures, TheFlagsAreOneTwoAndFourAndTheKindsTenAndEleven) {
    EXPECT_EQ(VELLUM_FAX_HUNDREDTHS, 1);
    EXPECT_EQ(VELLUM_FAX_ITALIC, 2);
    EXPECT_EQ(VELLUM_FAX_BOLD, 4);
    EXPECT_EQ(VELLUM_FAX_BITMAPS, 10);
    EXPECT_EQ(VELLUM_FAX_DIBS, 11);
}

TEST(FaxFailures, TextBehindTheLastPageIsReported) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    for (const DWORD kind : kKinds) {
        for (const DWORD most : {1U, 2U}) {
            const GdiCalls calls;
            const FaxResult result(params, kind, most);
            EXPECT_EQ(result.count(), most);
            EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_PAGE_LIMIT});
            EXPECT_EQ(GdiCalls::counts().objects, kind == VELLUM_FAX_BITMAPS ? static_cast<int>(most) : 0)
                << "the page behind the last one is deleted";
            EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
        }
    }
}

TEST(FaxFailures, WithTheLimitReachedThePagesAreThoseOfThePlainWalk) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    const FaxResult result(params, VELLUM_FAX_BITMAPS, 2);
    const PlainFax plain(params, threePages(), expectedFont(params));
    ASSERT_EQ(result.count(), 2U);
    EXPECT_TRUE(pixelsOf(result.bitmap(0)) == plain.pages()[0]);
    EXPECT_TRUE(pixelsOf(result.bitmap(1)) == plain.pages()[1]);
}

TEST(FaxFailures, ALimitThatIsJustEnoughIsNone) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    const DWORD pages = FaxResult(params, VELLUM_FAX_BITMAPS).count();
    ASSERT_GT(pages, 1U);
    const FaxResult result(params, VELLUM_FAX_BITMAPS, pages);
    EXPECT_EQ(result.count(), pages);
    EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
}

TEST(FaxFailures, ATextThatCannotBeOpenedIsReported) {
    const TextFile gone("");
    FaxPageParams params = smallPage("no such folder\\no such file.txt");
    for (const DWORD kind : kKinds) {
        const GdiCalls calls;
        const FaxResult result(params, kind);
        EXPECT_EQ(result.count(), 0U);
        EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_TEXT});
        EXPECT_TRUE(result.untouchedFrom(0));
        EXPECT_EQ(GdiCalls::counts().objects, 0);
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    }
    params.textFile[0] = '\0';
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).status(), DWORD{VELLUM_FAX_NO_TEXT});
}

TEST(FaxFailures, TheErrorNumberIsNotTouched) {
    const TextFile file("one");
    SetTiffError(VELLUM_NOT_CALS);
    EXPECT_EQ(FaxResult(smallPage(file.path()), VELLUM_FAX_DIBS).count(), 1U);
    EXPECT_EQ(FaxResult(smallPage("no such file"), VELLUM_FAX_DIBS).count(), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
    SetTiffError(VELLUM_OK);
}

TEST(FaxFailures, ThePageIsMadeBeforeTheTextIsOpened) {
    FaxPageParams params = smallPage("no such file");
    params.pageWidth = 0;
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).status(), DWORD{VELLUM_FAX_NO_MEMORY});
}

TEST(FaxFailures, PagesWithoutPixelsAndPagesThatNoMemoryHoldsAreNoPages) {
    const TextFile file("one");
    struct Case {
        DWORD width;
        DWORD height;
        DWORD resolution;
        DWORD flags;
    };
    for (const Case &entry : {Case{0, 300, 100, 1}, Case{400, 0, 100, 1}, Case{400, 300, 0, 1}, Case{1, 1, 1, 0},
                              Case{kMost, kMost, 200, 0}, Case{kMost, kMost, kMost, 1}, Case{kMost, 1, 100, 1},
                              Case{0x80000000, 1, 100, 1}, Case{200000, 200000, 100, 1}}) {
        for (const DWORD kind : kKinds) {
            FaxPageParams params = smallPage(file.path());
            params.pageWidth = entry.width;
            params.pageHeight = entry.height;
            params.horizontalResolution = entry.resolution;
            params.verticalResolution = entry.resolution;
            params.fontSize = 0;
            params.flags = entry.flags;
            const DWORD start = GetTickCount();
            const FaxResult result(params, kind);
            EXPECT_EQ(result.count(), 0U);
            EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_MEMORY}) << entry.width << " x " << entry.height;
            EXPECT_TRUE(result.untouchedFrom(0));
            EXPECT_LT(GetTickCount() - start, 5000U);
        }
    }
}

TEST(FaxFailures, WhateverCannotBeMadeTheRestIsGivenBack) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    struct Case {
        GdiCalls::Fail kind;
        int nth;
        DWORD pages; // with bitmaps
    };
    for (const Case &entry :
         {Case{GdiCalls::Fail::MemoryDc, 0, 0}, Case{GdiCalls::Fail::Bitmap, 0, 0}, Case{GdiCalls::Fail::Bitmap, 1, 1},
          Case{GdiCalls::Fail::Bitmap, 2, 2}, Case{GdiCalls::Fail::Selection, 0, 0}}) {
        const GdiCalls calls(entry.kind, entry.nth);
        const FaxResult result(params, VELLUM_FAX_BITMAPS);
        EXPECT_EQ(result.count(), entry.pages);
        EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_MEMORY});
        EXPECT_EQ(GdiCalls::counts().objects, static_cast<int>(entry.pages));
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
        EXPECT_TRUE(result.untouchedFrom(entry.pages));
    }
}

TEST(FaxFailures, AFontThatCannotBeMadeIsReplacedByTheContextsOwn) {
    const TextFile file("some text");
    const FaxPageParams params = smallPage(file.path());
    const GdiCalls calls(GdiCalls::Fail::Font, 0);
    const FaxResult result(params, VELLUM_FAX_BITMAPS);
    ASSERT_EQ(result.count(), 1U);
    EXPECT_TRUE(result.pixels() == PlainFax(params, "some text", std::nullopt).pages());
}

TEST(FaxFailures, AfterEveryAllocationFaultThePagesSoFarAreThere) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    const std::vector<Pixels> expected = PlainFax(params, threePages(), expectedFont(params)).pages();
    for (long nth = 0;; ++nth) {
        const GdiCalls calls;
        const FailNth fault(Call::Allocate, nth);
        const FaxResult result(params, VELLUM_FAX_DIBS);
        EXPECT_EQ(GdiCalls::counts().objects, 0);
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
        if (!fault.happened()) {
            EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_COMPLETE});
            EXPECT_GE(nth, 3);
            break;
        }
        EXPECT_EQ(result.status(), DWORD{VELLUM_FAX_NO_MEMORY});
        EXPECT_LT(result.count(), expected.size());
        EXPECT_TRUE(result.untouchedFrom(result.count()));
        for (DWORD i = 0; i < result.count(); ++i) {
            EXPECT_TRUE(pixelsOf(Dib(makeBlock(blockBytes(result.handle(i))))) == expected[i]);
        }
    }
}

TEST(FaxFailures, OnSuccessOnlyThePagesAreLeft) {
    const TextFile file(threePages());
    const FaxPageParams params = smallPage(file.path());
    const GdiCalls calls;
    const FaxResult bitmaps(params, VELLUM_FAX_BITMAPS);
    EXPECT_EQ(GdiCalls::counts().objects, static_cast<int>(bitmaps.count()));
    EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    const FaxResult dibs(params, VELLUM_FAX_DIBS);
    EXPECT_EQ(GdiCalls::counts().objects, static_cast<int>(bitmaps.count()));
    EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    // A file that is still open could not be deleted.
    EXPECT_NE(DeleteFileA(file.path()), FALSE);
}

TEST(FaxFailures, PathAndFaceMayLackTheirTerminators) {
    const TextFile file("one");
    FaxPageParams params = smallPage(file.path());
    std::memset(params.fontFace, 'x', sizeof params.fontFace);
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).count(), 1U);
    std::memset(params.textFile, 'x', sizeof params.textFile);
    EXPECT_EQ(FaxResult(params, VELLUM_FAX_BITMAPS).status(), DWORD{VELLUM_FAX_NO_TEXT});
}

TEST(FaxFailures, APathOf255CharactersIsOpened) {
    const TextFile file("one");
    std::string path = file.path();
    const std::size_t name = path.find_last_of("\\/") + 1;
    while (path.size() < 254) {
        path.insert(name, ".\\");
    }
    path.insert(name, 256 - path.size() - 1, '\\');
    ASSERT_EQ(path.size(), 255U);
    EXPECT_EQ(FaxResult(smallPage(path.c_str()), VELLUM_FAX_BITMAPS).count(), 1U);
}

TEST(FaxFailures, LettersDoNotGetMuchLargerThanThePage) {
    const TextFile file("text");
    for (const auto &[points, height] : {std::pair{700U, -972L}, std::pair{12000U, -1024L}}) {
        FaxPageParams params = smallPage(file.path());
        params.fontSize = points;
        const GdiCalls calls;
        EXPECT_GE(FaxResult(params, VELLUM_FAX_BITMAPS).count(), 1U);
        EXPECT_EQ(GdiCalls::counts().font.lfHeight, height);
    }
}

TEST(FaxFailures, NorWider) {
    const TextFile file("text");
    LOGFONTA wide{};
    for (const auto &[width, asked] : {std::pair{500L, 500L}, std::pair{100000L, 1024L}, std::pair{-100000L, -1024L}}) {
        wide.lfWidth = width;
        lstrcpynA(wide.lfFaceName, "Arial", LF_FACESIZE);
        FaxPageParams params = smallPage(file.path());
        params.fontDescription = &wide;
        const GdiCalls calls;
        EXPECT_GE(FaxResult(params, VELLUM_FAX_BITMAPS).count(), 1U);
        EXPECT_EQ(GdiCalls::counts().font.lfWidth, asked);
    }
}

TEST(FaxFailures, RecordsWithoutMeaningMakePagesAllTheSame) {
    const TextFile file("some\ttext, and\r\nmore of it");
    const std::vector<DWORD FaxPageParams::*> fields = {&FaxPageParams::leftMargin, &FaxPageParams::topMargin,
                                                        &FaxPageParams::fontSize, &FaxPageParams::lineSpacing,
                                                        &FaxPageParams::flags};
    for (const auto field : fields) {
        for (const DWORD value : {kMost, DWORD{0x7FFFFFFF}, DWORD{0x80000000}, DWORD{100000}, DWORD{5000}}) {
            FaxPageParams params = smallPage(file.path());
            params.*field = value;
            const GdiCalls calls;
            const FaxResult result(params, VELLUM_FAX_BITMAPS, 3);
            EXPECT_GE(result.count(), 1U);
            EXPECT_EQ(GdiCalls::counts().objects, static_cast<int>(result.count()));
        }
    }
    FaxPageParams tabs = smallPage(file.path());
    std::fill(std::begin(tabs.tabStops), std::end(tabs.tabStops), kMost);
    EXPECT_EQ(FaxResult(tabs, VELLUM_FAX_BITMAPS).count(), 1U);
}

} // namespace
} // namespace vellum::test
