// What cannot be painted: the result and the error of each case, and a window that nobody has touched; and which files
// DecompressToScreen takes for what.
#include "support/faults.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};

// Nothing was painted, filled, scrolled or validated.
void expectUntouched(const Host &host) {
    EXPECT_EQ(host.pixels(), Pixels(static_cast<std::size_t>(kWindow.cx) * kWindow.cy, kUntouched));
    EXPECT_TRUE(host.needsPainting());
    EXPECT_EQ(GetMapMode(host.dc()), MM_TEXT);
    EXPECT_EQ(GetScrollPos(host.window(), SB_HORZ), 40);
    EXPECT_EQ(GetScrollPos(host.window(), SB_VERT), 60);
}

class ScreenFailures : public testing::Test {
protected:
    // In every rotation and mode.
    void expectFailure(const char *path, const Outcome &expected, DWORD index = 0) {
        for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_BY_RESOLUTION}, DWORD{VELLUM_SHOW_FIT}}) {
            for (const DWORD flags : fourTurns(mode)) {
                SCOPED_TRACE(flags);
                host_.reset({0, 100, 40}, {0, 100, 60});
                EXPECT_EQ(paint(host_.window(), host_.dc(), path, {flags}, index), expected);
                expectUntouched(host_);
            }
        }
    }

    Host host_{kWindow.cx, kWindow.cy};
    const ScreenPicture picture_ = screenPicture(30, 20, 8);
    const TempFile file_{picture_.tiff()};
    const MessageBoxes boxes_;
};

// ---------------------------------------------------------------- arguments

TEST_F(ScreenFailures, AnEmptyPathIsFailureWithoutAnError) {
    expectFailure("", failedWith(VELLUM_NOT_CALS));
}

TEST_F(ScreenFailures, NoPathIsFailureWithoutAnError) {
    expectFailure(nullptr, failedWith(VELLUM_NOT_CALS));
}

TEST_F(ScreenFailures, NoContextIsFailureWithoutAnError) {
    host_.reset({0, 100, 40}, {0, 100, 60});
    EXPECT_EQ(paint(host_.window(), nullptr, file_.path()), failedWith(VELLUM_NOT_CALS));
    expectUntouched(host_);
    EXPECT_EQ(paint(nullptr, nullptr, file_.path()), failedWith(VELLUM_NOT_CALS));
}

TEST_F(ScreenFailures, AWindowThatIsNoneAnyMoreDoesNoHarm) {
    HWND gone = nullptr;
    {
        const Host host(5, 5);
        gone = host.window();
    }
    const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, 30, 20);
    paint(gone, target.dc(), file_.path());
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
}

// ---------------------------------------------------------------- files and images

TEST_F(ScreenFailures, AFileThatIsNotThereIsError6) {
    expectFailure("no such file.tif", failedWith(VELLUM_IO_ERROR));
}

TEST_F(ScreenFailures, AFileThatIsNoTiffHasTheErrorOfItsHeader) {
    const TempFile text(Bytes(40, BYTE{'x'}));
    EXPECT_EQ(OpenTiffFile(text.path(), T_READ), nullptr);
    const DWORD error = TiffError();
    EXPECT_NE(error, DWORD{VELLUM_OK});
    expectFailure(text.path(), failedWith(error));
}

TEST_F(ScreenFailures, APathThatIsTooLongIsError7) {
    expectFailure(std::string(150, 'x').c_str(), failedWith(VELLUM_PATH_TOO_LONG));
}

TEST_F(ScreenFailures, AnImageThatIsNotThereHasTheErrorOfItsRegistration) {
    expectFailure(file_.path(), failedWith(VELLUM_IO_ERROR), 1);
    expectFailure(file_.path(), failedWith(VELLUM_INDEX_OUT_OF_RANGE), 1000);
    expectFailure(file_.path(), failedWith(VELLUM_INDEX_OUT_OF_RANGE), 0xFFFFFFFF);
}

TEST_F(ScreenFailures, APaletteImageWithoutAColorMapIsError10) {
    std::vector<tiff::Entry> entries = picture_.entries();
    ASSERT_EQ(entries.back().tag, 320);
    entries.pop_back();
    tiff::Builder builder;
    builder.page(entries, {picture_.packed()});
    const TempFile file(builder.bytes());
    expectFailure(file.path(), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(boxes_.count(), 0);
}

TEST_F(ScreenFailures, AnImageWithoutAWidthIsError10) {
    std::vector<tiff::Entry> entries = picture_.entries();
    ASSERT_EQ(entries.front().tag, 256);
    entries.erase(entries.begin());
    tiff::Builder builder;
    builder.page(entries, {picture_.packed()});
    const TempFile file(builder.bytes());
    expectFailure(file.path(), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(boxes_.count(), 0);
}

// ---------------------------------------------------------------- depths

Bytes ofDepth(DWORD bits, DWORD samples) {
    const ScreenPicture picture = screenPicture(8, 4, 8);
    std::vector<tiff::Entry> entries = picture.entries();
    entries[2] = tiff::shorts(258, std::vector<std::uint32_t>(samples, bits));
    entries[4] = tiff::shorts(262, {samples >= 3 ? 2U : 1U});
    entries[5] = tiff::shorts(277, {samples});
    tiff::Builder builder;
    builder.page(entries, {Bytes(400, BYTE{0x5A})});
    return builder.bytes();
}

TEST_F(ScreenFailures, OtherDepthsThan1And4And8And24AreError16AndToldToTheUser) {
    struct Depth {
        DWORD bits;
        DWORD samples;
    };
    for (const Depth depth : {Depth{2, 1}, Depth{3, 1}, Depth{5, 1}, Depth{6, 1}, Depth{7, 1}, Depth{12, 1},
                              Depth{16, 1}, Depth{32, 1}, Depth{8, 2}, Depth{8, 4}, Depth{16, 3}, Depth{4, 3}}) {
        SCOPED_TRACE(std::to_string(depth.samples) + " x " + std::to_string(depth.bits) + " bits");
        const TempFile file(ofDepth(depth.bits, depth.samples));
        const int before = boxes_.count();
        expectFailure(file.path(), failedWith(VELLUM_BAD_COLOR_FORMAT));
        EXPECT_EQ(boxes_.count() - before, 12) << "one for each painting";
        EXPECT_EQ(boxes_.text(), "Color format is not supported.");
        EXPECT_EQ(boxes_.caption(), "VELLUMSDK");
        EXPECT_EQ(boxes_.style() & MB_TASKMODAL, UINT{MB_TASKMODAL});
    }
}

TEST_F(ScreenFailures, PicturesThatArePaintedAreNotTalkedAbout) {
    for (const DWORD bits : kScreenDepths) {
        host_.reset();
        const TempFile file(screenPicture(9, 7, bits).tiff());
        EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
    }
    EXPECT_EQ(boxes_.count(), 0);
}

TEST_F(ScreenFailures, SeparatePlanesAreError16) {
    const ScreenPicture picture = screenPicture(8, 4, 24);
    std::vector<tiff::Entry> entries = picture.entries();
    entries.insert(entries.begin() + 6, tiff::shorts(284, {2}));
    tiff::Builder builder;
    builder.page(entries, {picture.packed()});
    const TempFile file(builder.bytes());
    expectFailure(file.path(), failedWith(VELLUM_BAD_COLOR_FORMAT));
}

// ---------------------------------------------------------------- which image, which kind

DWORD paintAny(LONG kind, Host &host, const char *path, const Look &look = {}, DWORD index = 0) {
    SetTiffError(VELLUM_NOT_CALS);
    return DecompressToScreen(kind, host.window(), host.dc(), path, index, look.ratiosOrNull(), look.flags);
}

class ScreenKinds : public ScreenFailures {
protected:
    void expectShown(const ScreenPicture &picture, const Look &look = {}) {
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
        EXPECT_TRUE(shows(host_.pixels(), ScreenModel(picture, look, {kWindow})));
        EXPECT_FALSE(host_.needsPainting());
    }
};

TEST_F(ScreenKinds, ATiffIsPaintedAsATiffAndWhenNothingIsSaid) {
    for (const LONG kind : {VELLUM_SHOW_TIFF, VELLUM_SHOW_ANY}) {
        host_.reset();
        EXPECT_EQ(paintAny(kind, host_, file_.path()), 1U);
        expectShown(picture_);
    }
}

TEST_F(ScreenKinds, RotationRatiosAndImageReachThePainter) {
    ScreenPicture second = screenPicture(11, 7, 24);
    second.xDpi = 96;
    second.yDpi = 96;
    tiff::Builder builder(tiff::kMM);
    builder.page(picture_.entries(), {picture_.packed()});
    builder.page(second.entries(), {second.packed()});
    const TempFile file(builder.bytes());
    const Look look{VELLUM_ROTATE_90 | VELLUM_SHOW_BY_RESOLUTION | VELLUM_SHOW_INVERTED, {2, 1, 3, 1}};
    for (const LONG kind : {VELLUM_SHOW_TIFF, VELLUM_SHOW_ANY}) {
        host_.reset();
        EXPECT_EQ(paintAny(kind, host_, file.path(), look, 1), 1U);
        expectShown(second, look);
        host_.reset();
        EXPECT_EQ(paintAny(kind, host_, file.path()), 1U);
        expectShown(picture_);
    }
}

TEST_F(ScreenKinds, AFileThatIsNeitherIsNotPainted) {
    const TempFile text(Bytes(4000, BYTE{'x'}));
    const TempFile empty(Bytes{});
    const TempFile letter(Bytes{'I'});
    for (const char *path : {text.path(), empty.path(), letter.path(), "no such file", ""}) {
        host_.reset({0, 100, 40}, {0, 100, 60});
        EXPECT_EQ(paintAny(VELLUM_SHOW_ANY, host_, path), 0U);
        EXPECT_EQ(paintAny(VELLUM_SHOW_TIFF, host_, path), 0U);
        expectUntouched(host_);
    }
    EXPECT_EQ(paintAny(VELLUM_SHOW_ANY, host_, nullptr), 0U);
    EXPECT_EQ(paintAny(VELLUM_SHOW_TIFF, host_, nullptr), 0U);
}

TEST_F(ScreenKinds, AFileThatOnlyBeginsAsATiffHasTheErrorOfOne) {
    for (const BYTE letter : {BYTE{'I'}, BYTE{'M'}}) {
        const TempFile file(Bytes{letter, letter, 0, 0});
        host_.reset({0, 100, 40}, {0, 100, 60});
        const Outcome asTiff = paint(host_.window(), host_.dc(), file.path());
        EXPECT_EQ(asTiff.result, 0U);
        EXPECT_EQ(paintAny(VELLUM_SHOW_ANY, host_, file.path()), 0U);
        EXPECT_EQ(TiffError(), asTiff.error);
        expectUntouched(host_);
    }
}

TEST_F(ScreenKinds, OtherKindsPaintNothing) {
    for (const LONG kind : {3L, 4L, -1L, 0x7FFFFFFFL, static_cast<LONG>(0x80000000)}) {
        host_.reset({0, 100, 40}, {0, 100, 60});
        EXPECT_EQ(paintAny(kind, host_, file_.path()), 0U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NOT_CALS});
        expectUntouched(host_);
    }
}

TEST_F(ScreenKinds, ATiffIsNotPaintedAsACalsFile) {
    host_.reset({0, 100, 40}, {0, 100, 60});
    EXPECT_EQ(paintAny(VELLUM_SHOW_CALS, host_, file_.path()), 0U);
    expectUntouched(host_);
}

TEST_F(ScreenKinds, WithoutAContextNothingIsPainted) {
    for (const LONG kind : {VELLUM_SHOW_TIFF, VELLUM_SHOW_ANY}) {
        EXPECT_EQ(DecompressToScreen(kind, host_.window(), nullptr, file_.path(), 0, nullptr, 0), 0U);
    }
}

} // namespace
