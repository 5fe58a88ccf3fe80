// Loading into a bitmap for the screen: its pixels, which errors leave one, and that nothing of GDI is left behind.
#include "support/bitmap_pixels.h"
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// Every load leaves the screen's context and the cursor as they were, and of GDI's objects the bitmap alone.
class Load {
public:
    explicit Load(const char *path, DWORD index = 0, GdiCalls::Fail fail = GdiCalls::Fail::Nothing)
        : bitmap_(load(path, index, fail)) {}

    explicit operator bool() const { return static_cast<bool>(bitmap_); }
    [[nodiscard]] HBITMAP get() const { return bitmap_.get(); }

private:
    static HBITMAP load(const char *path, DWORD index, GdiCalls::Fail fail) {
        const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
        SetCursor(arrow);
        SetTiffError(VELLUM_NOT_CALS);
        const GdiCalls calls(fail);
        const HBITMAP bitmap = LoadTiffIntoBitmap(path, index, 0);
        EXPECT_EQ(calls.counts().objects, bitmap == nullptr ? 0 : 1);
        EXPECT_EQ(calls.counts().contexts, 0);
        EXPECT_EQ(GetCursor(), arrow);
        if (calls.counts().paletteSelections > 0) {
            EXPECT_EQ(calls.counts().selected, calls.counts().original) << "the screen's palette is not given back";
        }
        return bitmap;
    }

    LoadedBitmap bitmap_;
};

Pixels dibPixels(const char *path) {
    return pixelsOf(Dib(LoadTiffIntoDIB(path, 0, 0)));
}

TEST(LoadBitmap, ItsPixelsAreTheDibsAtEveryDepthAndWidth) {
    for (const Depth &depth : kDepths) {
        for (const DWORD width : {1, 2, 3, 5, 7, 8, 9, 15, 16, 17, 31, 33}) {
            SCOPED_TRACE(std::to_string(depth.bitsPerPixel()) + " bits, width " + std::to_string(width));
            const TempFile file(picture(width, 4, depth).tiff());
            const Pixels expected = dibPixels(file.path());
            const Load bitmap(file.path());
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            ASSERT_TRUE(bitmap);
            ASSERT_EQ(expected.size(), std::size_t{width} * 4);
            EXPECT_EQ(pixelsOf(bitmap.get()), expected);
        }
    }
}

TEST(LoadBitmap, Rows123OfA24BitImageAreRedGreenAndBlue) {
    Picture colours = picture(2, 2, {8, 3});
    colours.packed = {1, 2, 3, 255, 0, 0, 0, 255, 0, 0, 0, 255};
    const TempFile file(colours.tiff());
    const Load bitmap(file.path());
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(pixelsOf(bitmap.get()), (Pixels{0x010203, 0xFF0000, 0x00FF00, 0x0000FF}));
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, bitmap.get());
    EXPECT_EQ(GetPixel(dc, 0, 0), RGB(1, 2, 3));
    EXPECT_EQ(GetPixel(dc, 1, 1), RGB(0, 0, 255));
    SelectObject(dc, before);
    DeleteDC(dc);
}

TEST(LoadBitmap, BilevelImagesAreMonochromeAndTheOthersTheScreens) {
    const HDC screen = GetDC(nullptr);
    const int screenBits = GetDeviceCaps(screen, BITSPIXEL);
    ReleaseDC(nullptr, screen);
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const TempFile file(picture(21, 13, depth).tiff());
        const Load loaded(file.path());
        BITMAP size{};
        ASSERT_NE(GetObject(loaded.get(), sizeof size, &size), 0);
        EXPECT_EQ(size.bmWidth, 21);
        EXPECT_EQ(size.bmHeight, 13);
        EXPECT_EQ(size.bmBitsPixel, depth.bits == 1 ? 1 : screenBits);
    }
}

TEST(LoadBitmap, TheImagesPaletteIsRealizedWhileItLoads) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const TempFile file(picture(4, 4, depth).tiff());
        const GdiCalls calls;
        const LoadedBitmap bitmap(LoadTiffIntoBitmap(file.path(), 0, 0));
        EXPECT_EQ(calls.counts().paletteSelections, 2);
        EXPECT_EQ(calls.counts().paletteRealizations, 1);
        EXPECT_EQ(calls.counts().lines, 4);
        EXPECT_EQ(calls.counts().lastUsage, UINT{DIB_RGB_COLORS});
    }
}

TEST(LoadBitmap, AnEarlyEndKeepsTheRowsThatCame) {
    const Picture original = picture(9, 5, {8, 3});
    const Bytes upper(original.packed.begin(), original.packed.begin() + 2 * 27);
    const TempFile whole(original.tiff());
    const TempFile cut(codedTiffCodeLast(original.page, upper));
    Pixels expected = dibPixels(whole.path());
    const Load bitmap(cut.path());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_UNEXPECTED_END});
    ASSERT_TRUE(bitmap);
    Pixels rows = pixelsOf(bitmap.get());
    rows.resize(2 * 9);
    expected.resize(2 * 9);
    EXPECT_EQ(rows, expected);
}

DWORD endsWith = 0;
DWORD VELLUMAPI endsAtOnce(CodecState *) {
    return endsWith;
}

TEST(LoadBitmap, Error5AloneLeavesABitmap) {
    const TempFile file(jpegTiff({}));
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&endsAtOnce));
    for (DWORD error = 0; error <= 22; ++error) {
        SCOPED_TRACE(error);
        endsWith = error;
        const Load bitmap(file.path());
        EXPECT_EQ(static_cast<bool>(bitmap), error == 0 || error == 5);
        EXPECT_EQ(TiffError(), error);
    }
}

TEST(LoadBitmap, FilesAndImagesThatAreNotThereHaveTheirErrors) {
    EXPECT_FALSE(Load("no such file.tif"));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    const TempFile file(picture(4, 4, {8, 1}).tiff());
    EXPECT_FALSE(Load(file.path(), 1));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_FALSE(Load(file.path(), 1000));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    Picture deep = picture(4, 4, {8, 1});
    deep.page.bits = 16;
    const TempFile badDepth(deep.tiff());
    EXPECT_FALSE(Load(badDepth.path()));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
}

TEST(LoadBitmap, WhatGdiRefusesEndsTheLoad) {
    const TempFile file(picture(4, 4, {8, 1}).tiff());
    EXPECT_FALSE(Load(file.path(), 0, GdiCalls::Fail::GetDc));
    EXPECT_FALSE(Load(file.path(), 0, GdiCalls::Fail::Bitmap));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_TRUE(Load(file.path(), 0, GdiCalls::Fail::Palette)) << "a true-colour screen needs none";
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
}

TEST(LoadBitmap, WithoutMemoryThereIsNoBitmapAndError1) {
    const TempFile file(picture(4, 4, {8, 1}, 2).tiff());
    for (long n = 0;; ++n) {
        ASSERT_LT(n, 100);
        SCOPED_TRACE(n);
        const FailNth fault(Call::Allocate, n);
        const Load bitmap(file.path());
        if (!fault.happened()) {
            EXPECT_TRUE(bitmap);
            EXPECT_GE(n, 4);
            break;
        }
        EXPECT_FALSE(bitmap);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    }
}

TEST(LoadBitmap, ASmallFileThatClaimsAHugePictureIsRefusedForWantOfMemory) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const CodedPage page{
            .width = 32767, .height = 32767, .bits = depth.bits, .samples = depth.samples, .key = VELLUM_KEY_NONE};
        const TempFile file(codedTiff(page, {Bytes(600, BYTE{0x55})}));
        const GdiCalls calls(GdiCalls::Fail::Nothing);
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(LoadTiffIntoBitmap(file.path(), 0, 0), nullptr);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
        EXPECT_EQ(calls.counts().lines, 0);
    }
}

// A bitmap of the screen's depth is larger than the picture in the file.
TEST(LoadBitmap, TheMemoryOfTheScreensDepthNeedsTheFilesProofToo) {
    for (const SIZE size : {SIZE{8190, 4090}, SIZE{2100, 2100}}) {
        SCOPED_TRACE(size.cx);
        const CodedPage page{.width = static_cast<DWORD>(size.cx),
                             .height = static_cast<DWORD>(size.cy),
                             .bits = 4,
                             .key = VELLUM_KEY_NONE};
        const TempFile file(codedTiff(page, {Bytes(10, BYTE{0x55})}));
        const GdiCalls calls;
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(LoadTiffIntoBitmap(file.path(), 0, 0), nullptr);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
        EXPECT_EQ(calls.counts().objects, 0);
        EXPECT_EQ(calls.counts().lines, 0);
    }
}

TEST(LoadBitmap, ALargePictureWhoseDataAreThereLoads) {
    const TempFile file(picture(2100, 2100, {4, 1}).tiff());
    const Load bitmap(file.path());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    ASSERT_TRUE(bitmap);
    EXPECT_EQ(pixelsOf(bitmap.get()), dibPixels(file.path()));
}

// ---------------------------------------------------------------- of an open file

TEST(LoadChainBitmap, NoHandleIsNoBitmap) {
    const GdiCalls calls;
    EXPECT_EQ(LoadTiffChainIntoBitmap(nullptr, 0), nullptr);
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_EQ(calls.counts().contexts, 0);
}

TEST(LoadChainBitmap, AnImageThatIsNotRegisteredIsNoBitmap) {
    const OpenedTiff tiff(picture(4, 4, {8, 1}).tiff());
    SetTiffError(VELLUM_OK);
    const GdiCalls calls;
    EXPECT_EQ(LoadTiffChainIntoBitmap(tiff.get(), 0), nullptr);
    EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(calls.counts().objects, 0);
    EXPECT_EQ(calls.counts().contexts, 0);
}

TEST(LoadChainBitmap, RegisteredImagesLoadFromFilesAndFromMemoryAndStayRegistered) {
    const Bytes bytes = picture(9, 4, {8, 3}).tiff();
    const TempFile file(bytes);
    const Pixels expected = dibPixels(file.path());
    const OpenedTiff inMemory(bytes);
    const OpenedTiff inFile{std::string(file.path())};
    for (const OpenedTiff *tiff : {&inMemory, &inFile}) {
        ASSERT_TRUE(registerImage(tiff->get(), 0));
        for (int round = 0; round < 2; ++round) {
            const LoadedBitmap bitmap(LoadTiffChainIntoBitmap(tiff->get(), 0));
            EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
            EXPECT_EQ(pixelsOf(bitmap.get()), expected);
            EXPECT_EQ(IsTiffImageRegistered(tiff->get(), 0), 1U);
        }
    }
}

// ---------------------------------------------------------------- the line functions with a context of a program's own

template <class LineFunction>
LineFunc asLineFunc(LineFunction *function) {
    return reinterpret_cast<LineFunc>(reinterpret_cast<void *>(function));
}

// A bitmap of the screen's kind, all white, that a program fills line by line.
class OwnContext {
public:
    OwnContext(TiffHandle tiff, int width, int height) : info_(GetTiffRGBQuad(tiff, 0)) {
        context.dc = GetDC(nullptr);
        context.bitmap = CreateCompatibleBitmap(context.dc, width, height);
        context.hInfo = info_.get();
        context.lineBytes = static_cast<DWORD>((width * info_.header().biBitCount + 15) / 8 & ~1);
        context.strideOrUsage = DIB_RGB_COLORS;
    }
    OwnContext(const OwnContext &) = delete;
    OwnContext &operator=(const OwnContext &) = delete;
    ~OwnContext() {
        DeleteObject(context.bitmap);
        ReleaseDC(nullptr, context.dc);
    }
    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&context)); }

    LoadLineContext context{};

private:
    Dib info_;
};

TEST(BitmapLines, AProgramsOwnContextTakesAnImage) {
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const Bytes bytes = picture(7, 5, depth).tiff();
        const TempFile file(bytes);
        const OpenedTiff tiff(bytes);
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        OwnContext own(tiff.get(), 7, 5);
        ASSERT_EQ(DecodeTiffImage(tiff.get(), 0, 0, 0, own.userValue(),
                                  depth.samples == 3 ? asLineFunc(DllFlushTiffLine24) : asLineFunc(DllFlushTiffLine)),
                  1U);
        EXPECT_EQ(pixelsOf(own.context.bitmap), dibPixels(file.path()));
    }
}

TEST(BitmapLines, OneLineGoesToItsPlaceFromTheBottom) {
    const OpenedTiff tiff(picture(2, 3, {8, 3}).tiff());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    OwnContext own(tiff.get(), 2, 3);
    const Pixels before = pixelsOf(own.context.bitmap);
    BYTE line[] = {10, 20, 30, 40, 50, 60, 0, 0};
    EXPECT_EQ(DllFlushTiffLine24(line, 1, &own.context), 0U);
    Pixels expected = before;
    expected[2] = 0x0A141E;
    expected[3] = 0x28323C;
    EXPECT_EQ(pixelsOf(own.context.bitmap), expected);
    const BYTE exchanged[] = {30, 20, 10, 60, 50, 40};
    EXPECT_EQ(std::memcmp(line, exchanged, 6), 0) << "red and blue are exchanged in the line itself";
    EXPECT_EQ(DllFlushTiffLine(line, 0, &own.context), 0U);
    expected[0] = expected[2];
    expected[1] = expected[3];
    EXPECT_EQ(pixelsOf(own.context.bitmap), expected) << "DllFlushTiffLine takes blue, green, red";
}

TEST(BitmapLines, TheContextsUsageIsForThePlainFunctionOnly) {
    const OpenedTiff tiff(picture(2, 3, {8, 3}).tiff());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    OwnContext own(tiff.get(), 2, 3);
    own.context.strideOrUsage = DIB_PAL_COLORS;
    BYTE line[8] = {};
    const GdiCalls calls;
    DllFlushTiffLine(line, 0, &own.context);
    EXPECT_EQ(calls.counts().lastUsage, UINT{DIB_PAL_COLORS});
    DllFlushTiffLine24(line, 0, &own.context);
    EXPECT_EQ(calls.counts().lastUsage, UINT{DIB_RGB_COLORS});
    EXPECT_EQ(calls.counts().lines, 2);
}

TEST(BitmapLines, RowsBelowTheBitmapAndContextsWithoutAHeaderDrawNothing) {
    const OpenedTiff tiff(picture(2, 3, {8, 3}).tiff());
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    OwnContext own(tiff.get(), 2, 3);
    BYTE line[8] = {1, 2, 3, 4, 5, 6};
    const GdiCalls calls;
    EXPECT_EQ(DllFlushTiffLine(line, 3, &own.context), 0U);
    EXPECT_EQ(DllFlushTiffLine24(line, 0xFFFFFFFF, &own.context), 0U);
    own.context.hInfo = nullptr;
    EXPECT_EQ(DllFlushTiffLine(line, 0, &own.context), 0U);
    EXPECT_EQ(calls.counts().lines, 0);
}

} // namespace
