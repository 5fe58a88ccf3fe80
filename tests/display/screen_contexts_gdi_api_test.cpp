// Device contexts that are not as a window gives them: with a world transform, and enhanced metafiles.
#include "support/screen_painting.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {71, 63};

// ---------------------------------------------------------------- world transforms

struct NamedTransform {
    const char *name;
    XFORM transform;
};
constexpr NamedTransform kTransforms[] = {
    {"half", {0.5F, 0, 0, 0.5F, 0, 0}},
    {"shifted", {1, 0, 0, 1, 7, -5}},
    {"half and shifted", {0.5F, 0, 0, 0.5F, 20, 11}},
    {"threefold, mirrored", {-3, 0, 0, 3, 40, 0}},
    {"turned", {0, 1, -1, 0, 60, 0}},
};
void PrintTo(const NamedTransform &named, std::ostream *out) {
    *out << named.name;
}

void transform(HDC dc, const XFORM &by) {
    SetGraphicsMode(dc, GM_ADVANCED);
    SetWorldTransform(dc, &by);
}

// As it was set; then there is none, so that pixels can be read.
void expectStill(HDC dc, const XFORM &expected) {
    EXPECT_EQ(GetGraphicsMode(dc), GM_ADVANCED);
    XFORM now{};
    GetWorldTransform(dc, &now);
    EXPECT_EQ(std::memcmp(&now, &expected, sizeof now), 0);
    ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
    SetGraphicsMode(dc, GM_COMPATIBLE);
}

class ScreenTransforms : public testing::TestWithParam<NamedTransform> {
protected:
    void expectPaintedAsWithout(const ScreenPicture &picture, DWORD mode, const ScrollState &bar = {}) {
        const TempFile file(picture.tiff());
        for (const DWORD flags : fourTurns(mode)) {
            SCOPED_TRACE(describe(picture, {flags}));
            host_.reset(bar, bar);
            transform(host_.dc(), GetParam().transform);
            EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), {flags}), kDecoded);
            expectStill(host_.dc(), GetParam().transform);
            const ScreenModel model(picture, {flags}, {kWindow, bar, bar});
            EXPECT_TRUE(hasBars(host_, model));
            EXPECT_TRUE(keepsMapping(host_.dc(), model));
            EXPECT_TRUE(shows(host_.pixels(), model));
            EXPECT_FALSE(host_.needsPainting());
        }
    }

    Host host_{kWindow.cx, kWindow.cy};
};

TEST_P(ScreenTransforms, DoNotTouchThePictureAndItsBackground) {
    for (const DWORD bits : kScreenDepths) {
        expectPaintedAsWithout(screenPicture(31, 17, bits), 0);
    }
}

TEST_P(ScreenTransforms, DoNotTouchScrolledPictures) {
    expectPaintedAsWithout(screenPicture(151, 137, 8), 0, {0, 100, 50});
}

TEST_P(ScreenTransforms, DoNotTouchScaledAndFittedPictures) {
    ScreenPicture coarse = screenPicture(31, 17, 8);
    coarse.xDpi = 48;
    coarse.yDpi = 48;
    expectPaintedAsWithout(coarse, VELLUM_SHOW_BY_RESOLUTION);
    expectPaintedAsWithout(screenPicture(71, 63, 8), VELLUM_SHOW_FIT);
}

TEST_P(ScreenTransforms, DoNotChangeTheRoomWithoutAWindow) {
    const ScreenPicture picture = screenPicture(400, 300, 8, 30);
    const TempFile file(picture.tiff());
    for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_FIT}}) {
        const Look look{mode};
        SCOPED_TRACE(describe(picture, look));
        const MemoryTarget plain(MemoryTarget::Kind::TrueColorSection, kWindow.cx, kWindow.cy);
        EXPECT_EQ(paint(nullptr, plain.dc(), file.path(), look), kDecoded);
        EXPECT_NE(plain.pixels().front(), kUntouched);
        const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, kWindow.cx, kWindow.cy);
        transform(target.dc(), GetParam().transform);
        EXPECT_EQ(paint(nullptr, target.dc(), file.path(), look), kDecoded);
        expectStill(target.dc(), GetParam().transform);
        EXPECT_TRUE(keepsMapping(target.dc(), ScreenModel(picture, look, {.window = kWindow, .fixed = true})));
        EXPECT_EQ(target.pixels(), plain.pixels());
    }
}

INSTANTIATE_TEST_SUITE_P(World, ScreenTransforms, testing::ValuesIn(kTransforms));

// ---------------------------------------------------------------- enhanced metafiles

// Records what is drawn on it, for the screen.
class Metafile {
public:
    Metafile() : recording_(CreateEnhMetaFileA(nullptr, nullptr, nullptr, nullptr)) {}
    Metafile(const Metafile &) = delete;
    Metafile &operator=(const Metafile &) = delete;
    ~Metafile() { DeleteEnhMetaFile(close()); }

    [[nodiscard]] HDC dc() const { return recording_; }
    // Ends the recording.
    HENHMETAFILE close() {
        if (recording_ != nullptr) {
            closed_ = CloseEnhMetaFile(recording_);
            recording_ = nullptr;
        }
        return closed_;
    }
    // How many there are of each kind.
    std::map<DWORD, int> records() {
        std::map<DWORD, int> counted;
        EnumEnhMetaFile(nullptr, close(), &count, &counted, nullptr);
        return counted;
    }

    // Draws it in its own size: its frame goes to the middle of its last pixels.
    void play(HDC dc, const SIZE &size) {
        const RECT all = {0, 0, size.cx - 1, size.cy - 1};
        PlayEnhMetaFile(dc, close(), &all);
    }

private:
    static int CALLBACK count(HDC, HANDLETABLE *, const ENHMETARECORD *record, int, LPARAM counted) {
        ++(*reinterpret_cast<std::map<DWORD, int> *>(counted))[record->iType];
        return 1;
    }

    HDC recording_;
    HENHMETAFILE closed_ = nullptr;
};

// The size that the records say they cover.
SIZE recordedSize(HENHMETAFILE metafile) {
    ENHMETAHEADER header{};
    GetEnhMetaFileHeader(metafile, sizeof header, &header);
    const RECTL &bounds = header.rclBounds;
    EXPECT_EQ(bounds.left, 0);
    EXPECT_EQ(bounds.top, 0);
    return {bounds.right + 1, bounds.bottom + 1};
}

SIZE deviceSize() {
    const HDC screen = GetDC(nullptr);
    const SIZE size = {GetDeviceCaps(screen, HORZRES), GetDeviceCaps(screen, VERTRES)};
    ReleaseDC(nullptr, screen);
    return size;
}

TEST(ScreenMetafile, HoldsThePicturePixelForPixel) {
    for (const DWORD bits : kScreenDepths) {
        const ScreenPicture picture = screenPicture(131, 117, bits);
        const TempFile file(picture.tiff());
        for (const DWORD flags : fourTurns()) {
            SCOPED_TRACE(describe(picture, {flags}));
            Metafile metafile;
            EXPECT_EQ(paint(nullptr, metafile.dc(), file.path(), {flags}), kDecoded);
            EXPECT_GT(metafile.records()[EMR_BITBLT], 0);
            const SIZE size = recordedSize(metafile.close());
            EXPECT_EQ(size.cx, flags % 2 == 0 ? 131 : 117);
            EXPECT_EQ(size.cy, flags % 2 == 0 ? 117 : 131);
            const MemoryTarget target(MemoryTarget::Kind::TrueColorSection, size.cx, size.cy);
            metafile.play(target.dc(), size);
            const ScreenModel model(picture, {flags}, {.window = size, .fixed = true});
            EXPECT_TRUE(shows(target.pixels(), model));
        }
    }
}

// There is no clipping to give the room: it is the device's.
TEST(ScreenMetafile, HasTheDevicesRoom) {
    const SIZE device = deviceSize();
    const ScreenPicture picture = screenPicture(device.cx + 200, device.cy + 300, 1, 100);
    const TempFile file(picture.tiff());
    for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_FIT}}) {
        SCOPED_TRACE(mode);
        Metafile metafile;
        EXPECT_EQ(paint(nullptr, metafile.dc(), file.path(), {mode}), kDecoded);
        EXPECT_GT(metafile.records()[EMR_BITBLT], 0);
        const SIZE size = recordedSize(metafile.close());
        const ScreenModel model(picture, {mode}, {.window = device, .fixed = true});
        EXPECT_EQ(size.cx, std::min<LONG>(model.x().target, device.cx));
        EXPECT_EQ(size.cy, std::min<LONG>(model.y().target, device.cy));
    }
}

TEST(ScreenMetafile, HoldsNoPictureThatCannotBePainted) {
    const TempFile noTiff(Bytes{'n', 'o'});
    Metafile metafile;
    EXPECT_EQ(paint(nullptr, metafile.dc(), noTiff.path()).result, 0U);
    EXPECT_EQ(metafile.records().count(EMR_BITBLT), 0U);
}

} // namespace
