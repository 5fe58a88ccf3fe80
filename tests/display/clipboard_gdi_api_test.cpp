// LoadTiffFileIntoClipboard: what lies on the clipboard afterwards, and its results.
#include "support/bitmap_pixels.h"
#include "support/gdi_calls.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr char kText[] = "was here before";

class ClipboardLoad : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        const HGLOBAL text = makeBlock(Bytes(kText, kText + sizeof kText));
        EXPECT_NE(SetClipboardData(CF_TEXT, text), nullptr);
        CloseClipboard();
        ASSERT_TRUE(holdsTheText());
    }
    void TearDown() override {
        if (OpenClipboard(nullptr)) {
            EmptyClipboard();
            CloseClipboard();
        }
    }

    static bool holdsTheText() {
        if (!OpenClipboard(nullptr)) {
            return false;
        }
        const HANDLE text = GetClipboardData(CF_TEXT);
        const bool same = text != nullptr && std::strcmp(static_cast<const char *>(GlobalLock(text)), kText) == 0;
        if (text != nullptr) {
            GlobalUnlock(text);
        }
        CloseClipboard();
        return same;
    }

    static Pixels clipboardPixels() {
        if (!OpenClipboard(nullptr)) {
            return {};
        }
        const Pixels pixels = pixelsOf(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)));
        CloseClipboard();
        return pixels;
    }
};

TEST_F(ClipboardLoad, AnImageReplacesWhatWasThere) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const TempFile file(picture(9, 4, depth).tiff());
        const GdiCalls calls;
        EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 0, 0), 1U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
        EXPECT_EQ(calls.counts().objects, 1) << "the bitmap, which is the clipboard's now";
        EXPECT_EQ(calls.counts().contexts, 0);
        EXPECT_EQ(calls.counts().clipboardOpen, 0);
        EXPECT_EQ(calls.counts().clipboardEmptied, 1);
        EXPECT_FALSE(IsClipboardFormatAvailable(CF_TEXT));
        EXPECT_EQ(clipboardPixels(), pixelsOf(Dib(LoadTiffIntoDIB(file.path(), 0, 0))));
    }
}

// By design: programs tell a missing file from a failed load by TiffError.
TEST_F(ClipboardLoad, AMissingFileIsResult1AndTheClipboardStaysAsItIs) {
    const GdiCalls calls;
    EXPECT_EQ(LoadTiffFileIntoClipboard("no such file.tif", 0, 0), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(calls.counts().clipboardEmptied, 0);
    EXPECT_TRUE(holdsTheText());
}

TEST_F(ClipboardLoad, AnImageThatCannotBeRegisteredIsResult1Too) {
    const TempFile file(picture(9, 4, {8, 1}).tiff());
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 1, 0), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 1000, 0), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_TRUE(holdsTheText());
}

TEST_F(ClipboardLoad, AnImageThatCannotBeDecodedIsResult0AndTheClipboardStaysAsItIs) {
    const CodedPage page{.width = 8, .height = 2, .bits = 8, .key = VELLUM_KEY_LZW};
    const TempFile file(codedTiff(page, {LzwCodes().code(kLzwClear, 9).code(300, 9).bytes()}));
    const GdiCalls calls;
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 0, 0), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR});
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_TRUE(holdsTheText());
}

TEST_F(ClipboardLoad, AnEarlyEndStillBringsTheBitmap) {
    const Picture original = picture(9, 4, {8, 1});
    const TempFile file(codedTiffCodeLast(original.page, Bytes(20, BYTE{0x80})));
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 0, 0), 1U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_UNEXPECTED_END});
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
}

TEST_F(ClipboardLoad, AClipboardThatCannotBeOpenedIsResult0AndNothingIsLeftBehind) {
    const TempFile file(picture(9, 4, {8, 1}).tiff());
    const GdiCalls calls(GdiCalls::Fail::OpenClipboard);
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 0, 0), 0U);
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_EQ(calls.counts().clipboardEmptied, 0);
    EXPECT_TRUE(holdsTheText());
}

TEST_F(ClipboardLoad, AClipboardThatDoesNotTakeTheBitmapIsResult0AndNothingIsLeftBehind) {
    const TempFile file(picture(9, 4, {8, 1}).tiff());
    const GdiCalls calls(GdiCalls::Fail::SetClipboardData);
    EXPECT_EQ(LoadTiffFileIntoClipboard(file.path(), 0, 0), 0U);
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_EQ(calls.counts().clipboardOpen, 0);
}

} // namespace
