// A text file printed on a form out of a TIFF.
#include "annot/overlays.h"
#include "display/pictures.h"
#include "support/gdi_calls.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

Bytes formFile(const Depth &depth = {1, 1}) {
    return picture(400, 300, depth).tiff();
}

Pixels formWithText(const char *form, const FaxPageParams &params, const std::vector<std::string> &lines) {
    const LoadedBitmap bitmap(LoadTiffIntoBitmap(form, 0, 0));
    return withText(bitmap.get(), params, lines);
}

TEST(FormOverlay, TheTextIsDrawnOverTheFormAtEveryDepth) {
    const TextFile text("Name: A. Clerk\r\nDate: today");
    const FaxPageParams params = smallPage(text.path());
    for (const Depth &depth : kDepths) {
        SCOPED_TRACE(depth.bitsPerPixel());
        const TempFile form(formFile(depth));
        const Pixels expected = formWithText(form.path(), params, {"Name: A. Clerk", "Date: today"});
        ASSERT_EQ(expected.size(), 400U * 300U);
        EXPECT_FALSE(expected == pixelsOf(LoadedBitmap(LoadTiffIntoBitmap(form.path(), 0, 0)).get()));
        const GdiCalls calls;
        const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), &params));
        ASSERT_TRUE(bitmap);
        EXPECT_EQ(GdiCalls::counts().objects, 1);
        EXPECT_TRUE(pixelsOf(bitmap.get()) == expected);
        const Dib dib(DIBFormOverlay(form.path(), &params));
        ASSERT_TRUE(dib);
        EXPECT_EQ(GdiCalls::counts().objects, 1) << "the form's bitmap is deleted";
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
        EXPECT_EQ(dib.header().biBitCount, depth.bitsPerPixel() == 1 ? 1 : 24);
        EXPECT_TRUE(pixelsOf(dib) == expected);
    }
}

TEST(FormOverlay, TheDibHasTheRecordsResolution) {
    const TextFile text("x");
    const TempFile form(formFile());
    FaxPageParams params = smallPage(text.path());
    params.horizontalResolution = 300;
    params.verticalResolution = 204;
    const Dib dib(DIBFormOverlay(form.path(), &params));
    EXPECT_EQ(dib.header().biXPelsPerMeter, 11811);
    EXPECT_EQ(dib.header().biYPelsPerMeter, 8031);
    EXPECT_EQ(dib.header().biWidth, 400);
}

TEST(FormOverlay, OnlyTheFirstPageOfTheTextIsUsed) {
    std::string lines;
    std::vector<std::string> all;
    for (int i = 0; i < 40; ++i) {
        all.push_back("line " + std::to_string(i));
        lines += all.back() + "\r\n";
    }
    const TextFile text(lines);
    const TempFile form(formFile());
    const FaxPageParams params = smallPage(text.path());
    const int lineHeight = ExpectedPage(1, 1, expectedFont(params)).extent("M").cy;
    all.resize(static_cast<std::size_t>((260 + lineHeight - 1) / lineHeight));
    const Pixels expected = formWithText(form.path(), params, all);
    const GdiCalls calls;
    const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), &params));
    EXPECT_TRUE(pixelsOf(bitmap.get()) == expected);
    EXPECT_EQ(GdiCalls::counts().objects, 1);
    const Dib dib(DIBFormOverlay(form.path(), &params));
    EXPECT_TRUE(pixelsOf(dib) == expected);
}

TEST(FormOverlay, WithoutATextTheBitmapIsTheFormAndThereIsNoDib) {
    const TempFile form(formFile());
    const Pixels plain = pixelsOf(LoadedBitmap(LoadTiffIntoBitmap(form.path(), 0, 0)).get());
    const FaxPageParams missing = smallPage("no such file");
    for (const FaxPageParams *params : {&missing, static_cast<const FaxPageParams *>(nullptr)}) {
        const GdiCalls calls;
        const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), params));
        ASSERT_TRUE(bitmap);
        EXPECT_TRUE(pixelsOf(bitmap.get()) == plain);
        EXPECT_EQ(DIBFormOverlay(form.path(), params), nullptr);
        EXPECT_EQ(GdiCalls::counts().objects, 1);
        EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
    }
}

TEST(FormOverlay, WithoutAFormThereIsNoResult) {
    const TextFile text("x");
    const FaxPageParams params = smallPage(text.path());
    const TempFile noTiff(Bytes{'x', 'y', 'z'});
    const GdiCalls calls;
    EXPECT_EQ(BitmapFormOverlay("no such file.tif", &params), nullptr);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(DIBFormOverlay("no such file.tif", &params), nullptr);
    EXPECT_EQ(BitmapFormOverlay(noTiff.path(), &params), nullptr);
    EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(DIBFormOverlay(noTiff.path(), &params), nullptr);
    EXPECT_EQ(BitmapFormOverlay(nullptr, &params), nullptr);
    EXPECT_EQ(GdiCalls::counts().objects, 0);
    EXPECT_EQ(GdiCalls::counts().allContexts(), 0);
}

// Two bilevel images of one size.
Bytes twoForms() {
    const std::vector<tiff::Entry> entries = {tiff::shorts(256, {400}), tiff::shorts(257, {300}),
                                              tiff::shorts(258, {1}),   tiff::shorts(259, {1}),
                                              tiff::shorts(262, {0}),   tiff::shorts(278, {300})};
    tiff::Builder file;
    file.page(entries, {Bytes(50 * 300, BYTE{0x81})});
    file.page(entries, {Bytes(50 * 300, BYTE{0x18})});
    return file.bytes();
}

TEST(FormOverlay, OfAFileOfTwoImagesTheFirstOneIsTheForm) {
    const TextFile text("x");
    const TempFile form(twoForms());
    const FaxPageParams params = smallPage(text.path());
    const Pixels expected = formWithText(form.path(), params, {"x"});
    ASSERT_EQ(expected.size(), 400U * 300U);
    const LoadedBitmap second(LoadTiffIntoBitmap(form.path(), 1, 0));
    ASSERT_TRUE(second);
    EXPECT_FALSE(withText(second.get(), params, {"x"}) == expected);
    const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), &params));
    EXPECT_TRUE(pixelsOf(bitmap.get()) == expected);
    const Dib dib(DIBFormOverlay(form.path(), &params));
    EXPECT_TRUE(pixelsOf(dib) == expected);
}

TEST(FormOverlay, TheFormIsImageZeroAndItsFileStays) {
    const TextFile text("x");
    const Bytes before = formFile();
    const TempFile form(before);
    const FaxPageParams params = smallPage(text.path());
    const HCURSOR arrow = LoadCursor(nullptr, IDC_ARROW);
    SetCursor(arrow);
    const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), &params));
    EXPECT_TRUE(bitmap);
    EXPECT_EQ(GetCursor(), arrow);
    EXPECT_TRUE(readFile(form.path()) == before);
    EXPECT_NE(DeleteFileA(form.path()), FALSE) << "it is not open any more";
}

TEST(FormOverlay, AFormWhosePageCannotBeDrawnOnIsStillTheForm) {
    const TextFile text("x");
    const TempFile form(formFile());
    const FaxPageParams params = smallPage(text.path());
    const GdiCalls calls(GdiCalls::Fail::MemoryDc, 0);
    const LoadedBitmap bitmap(BitmapFormOverlay(form.path(), &params));
    EXPECT_TRUE(bitmap);
    EXPECT_EQ(GdiCalls::counts().objects, 1);
}

} // namespace
} // namespace vellum::test
