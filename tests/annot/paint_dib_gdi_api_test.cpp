// Windows: DIBs and notes painted by PaintDIBWithNote, pixel by pixel.
#include "annot/painted_dibs.h"
#include "annot/plain_notes.h"
#include "annot/uneven_screen.h"
#include "support/faults.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

using Picture = DibPicture;
using Look = DibLook;

constexpr LONG kScreenDpi = 96;
constexpr WORD kDepths[] = {1, 4, 8, 24};

// ---------------------------------------------------------------- the picture

// Programs have them compiled in.
TEST(PaintDib, ItsModesAre8And0x20) {
    EXPECT_EQ(VELLUM_SHOW_FIT, 8);
    EXPECT_EQ(VELLUM_SHOW_INVERTED, 0x20);
}

TEST(PaintDib, ShowsEveryDepthPixelForPixelOnTheClassBackground) {
    for (const WORD bits : kDepths) {
        SCOPED_TRACE(bits);
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(101, 53, bits);
        EXPECT_EQ(paint(host, picture.get()), 1);
        EXPECT_FALSE(host.hasBar(SB_HORZ));
        EXPECT_FALSE(host.hasBar(SB_VERT));
        EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {101, 53}, kClient));
        EXPECT_EQ(lockCount(picture.get()), 0U);
    }
}

// By design: the other way round than CALS files are painted.
TEST(PaintDib, InvertedIsTheComplement) {
    for (const WORD bits : kDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(40, 30, bits);
        paint(host, picture.get(), {.mode = VELLUM_SHOW_INVERTED});
        EXPECT_TRUE(host.pixels() == complement(expected(picture, whole(picture), {40, 30}, kClient), {40, 30}))
            << bits;
    }
}

TEST(PaintDib, HasItsTrueSizeInEachDirection) {
    for (const WORD bits : kDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        ASSERT_EQ(GetDeviceCaps(host.dc(), LOGPIXELSX), kScreenDpi);
        // 192 x 48 dots per inch: half as wide, twice as high.
        const Picture picture(101, 53, bits, 7559, 1890);
        paint(host, picture.get());
        EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {51, 106}, kClient)) << bits;
    }
}

// 192 dots per inch across and none down, and the other way round with 48.
TEST(PaintDib, OfNoResolutionInOneDirectionHasTheScreensInThatOneOnly) {
    const struct {
        LONG xPelsPerMeter, yPelsPerMeter;
        SIZE shown;
    } kPictures[] = {{7559, 0, {51, 53}}, {0, 1890, {101, 106}}};
    for (const auto &[x, y, shown] : kPictures) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(101, 53, 8, x, y);
        paint(host, picture.get());
        EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), shown, kClient)) << x << ", " << y;
    }
}

// 96 dots per inch: half as wide, twice as high.
TEST(PaintDib, OnAScreenOfTwoResolutionsEachDirectionHasItsOwn) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const UnevenScreen screen(48, 192);
    const Picture picture(100, 53, 8, 3780, 3780);
    paint(host, picture.get());
    EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {50, 106}, kClient));
}

TEST(PaintDib, IsMultipliedByEachPairOfTheZoomWithoutAZero) {
    const Picture picture(50, 40, 8);
    const struct {
        std::array<LONG, 4> zoom;
        SIZE shown;
    } kZooms[] = {
        {{3, 2, 1, 2}, {75, 20}}, {{0, 2, 2, 1}, {50, 80}}, {{2, 0, 2, 1}, {50, 80}}, {{-2, -1, 1, 0}, {100, 40}}};
    for (const auto &[zoom, shown] : kZooms) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        paint(host, picture.get(), {.zoom = zoom});
        EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), shown, kClient)) << zoom[0] << "/" << zoom[1];
    }
}

TEST(PaintDib, OfNoSizeOnTheScreenIsAllBackground) {
    for (const std::array<LONG, 4> zoom : {std::array<LONG, 4>{1, 1000, 1, 1}, std::array<LONG, 4>{-1, 1, 1, 1}}) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(50, 40, 8);
        paint(host, picture.get(), {.zoom = zoom});
        EXPECT_TRUE(host.pixels() == Pixels(kClientWidth * kClientHeight, kBackground));
    }
}

TEST(PaintDib, EnlargedSoThatAPixelFillsTheWindowNeedsNoMoreMemory) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const Picture picture(2, 2, 24);
    paint(host, picture.get(), {.zoom = {{1000000, 1, 1000000, 1}}});
    const SIZE client = host.client();
    EXPECT_TRUE(host.pixels() == Pixels(static_cast<std::size_t>(client.cx * client.cy), picture.at(0, 0)));
}

// ---------------------------------------------------------------- scroll bars

TEST(PaintDib, ShowsScrollBarsWhereThePictureIsLarger) {
    const struct {
        LONG width, height;
        bool horizontal, vertical;
    } kSizes[] = {{300, 200, false, false}, {301, 100, true, false}, {100, 201, false, true}, {600, 400, true, true}};
    for (const auto &[width, height, horizontal, vertical] : kSizes) {
        for (const bool before : {false, true}) {
            SCOPED_TRACE(testing::Message() << width << " x " << height);
            Host host(kClientWidth, kClientHeight);
            host.reset({0, 100, 0, before}, {0, 100, 0, before});
            const Picture picture(width, height, 8);
            paint(host, picture.get());
            EXPECT_EQ(host.hasBar(SB_HORZ), horizontal);
            EXPECT_EQ(host.hasBar(SB_VERT), vertical);
            EXPECT_FALSE(host.needsPainting());
            const SIZE client = host.client();
            EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {width, height}, client));
        }
    }
}

TEST(PaintDib, ShowsThePartThatTheScrollBarsTell) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 50, true}, {0, 100, 25, true});
    const Picture picture(600, 500, 8);
    paint(host, picture.get());
    const SIZE client = host.client();
    const LONG x = (600 - client.cx + 1) / 2;
    const LONG y = (500 - client.cy + 2) / 4;
    EXPECT_TRUE(host.pixels() == expected(picture, {x, y, x + client.cx, y + client.cy}, client, client));
    EXPECT_EQ(GetScrollPos(host.window(), SB_HORZ), 50);
}

TEST(PaintDib, PaintsEverythingAnewWhenABarChangesTheRoom) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const Picture picture(600, 100, 8);
    ValidateRect(host.window(), nullptr);
    const RECT corner = {0, 0, 10, 10};
    InvalidateRect(host.window(), &corner, FALSE);
    EXPECT_LE(paint(host, picture.get()), 2);
    EXPECT_TRUE(host.hasBar(SB_HORZ));
    EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {600, 100}, host.client()));
}

TEST(PaintDib, PaintsOnlyWhatIsToBePaintedAnew) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const Picture picture(100, 100, 8);
    ValidateRect(host.window(), nullptr);
    const RECT corner = {90, 90, 110, 110};
    InvalidateRect(host.window(), &corner, FALSE);
    paint(host, picture.get());
    const RECT changed = changedArea(Pixels(kClientWidth * kClientHeight, kUntouched), host.pixels(), kClientWidth);
    EXPECT_EQ(changed.left, 90);
    EXPECT_EQ(changed.bottom, 110);
    EXPECT_FALSE(host.needsPainting());
}

// ---------------------------------------------------------------- fitted

TEST(PaintDib, FittedKeepsItsProportionsAndNeedsNoBars) {
    const struct {
        LONG width, height, xPelsPerMeter, yPelsPerMeter;
        SIZE shown;
    } kPictures[] = {{600, 200, 0, 0, {300, 100}},
                     {100, 400, 0, 0, {50, 200}},
                     {30, 10, 0, 0, {300, 100}},
                     // 192 x 96 dots per inch: 300 x 300 on the screen.
                     {600, 300, 7559, 3780, {200, 200}}};
    for (const auto &[width, height, x, y, shown] : kPictures) {
        SCOPED_TRACE(testing::Message() << width << " x " << height);
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 50, true}, {0, 100, 50, true});
        const Picture picture(width, height, 8, x, y);
        paint(host, picture.get(), {.zoom = {{5, 1, 7, 1}}, .mode = VELLUM_SHOW_FIT});
        EXPECT_FALSE(host.hasBar(SB_HORZ));
        EXPECT_FALSE(host.hasBar(SB_VERT));
        EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), shown, kClient));
    }
}

TEST(PaintDib, FittedAndInvertedIsTheComplement) {
    for (const WORD bits : kDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(100, 400, bits);
        paint(host, picture.get(), {.mode = VELLUM_SHOW_FIT | VELLUM_SHOW_INVERTED});
        EXPECT_TRUE(host.pixels() == complement(expected(picture, whole(picture), {50, 200}, kClient), {50, 200}))
            << bits;
    }
}

// ---------------------------------------------------------------- the area

TEST(PaintDib, AnAreaShowsItsPartOfThePictureAndBackgroundBeside) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const Picture picture(100, 80, 8);
    paint(host, picture.get(), {.area = RECT{30, 20, 60, 500}});
    Pixels pixels = expected(picture, whole(picture), {100, 80}, kClient);
    for (LONG y = 0; y < kClientHeight; ++y) {
        for (LONG x = 0; x < kClientWidth; ++x) {
            if (x < 30 || x >= 60 || y < 20) {
                pixels[static_cast<std::size_t>(y * kClientWidth + x)] = kBackground;
            }
        }
    }
    EXPECT_TRUE(host.pixels() == pixels);
}

TEST(PaintDib, AnEmptyAreaIsAllBackground) {
    for (const RECT &area : {RECT{50, 50, 50, 60}, RECT{60, 50, 50, 60}, RECT{500, 0, 600, 10}, RECT{-9, -9, 0, 0}}) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        paint(host, Picture(100, 80, 8).get(), {.area = area});
        EXPECT_TRUE(host.pixels() == Pixels(kClientWidth * kClientHeight, kBackground));
    }
}

// ---------------------------------------------------------------- the note

// The note, over what the window shows without it.
Pixels withNote(const Host &host, const RECT &area, const RECT &clip, const Lines &lines, bool opaque) {
    const HDC dc = host.dc();
    SetBkMode(dc, TRANSPARENT);
    IntersectClipRect(dc, clip.left, clip.top, clip.right, clip.bottom);
    if (opaque) {
        const HBRUSH white = CreateSolidBrush(RGB(255, 255, 255));
        FillRect(dc, &area, white);
        DeleteObject(white);
    }
    drawPlainly(dc, area, lines);
    SelectClipRgn(dc, nullptr);
    return host.pixels();
}

void expectNote(const Picture &picture, Look look, const RECT &area, const Lines &lines,
                const ScrollState &horizontal = {0, 100, 0, false}, const ScrollState &vertical = {0, 100, 0, false}) {
    Host plainHost(kClientWidth, kClientHeight);
    plainHost.reset(horizontal, vertical);
    Look withoutNote = look;
    withoutNote.note = nullptr;
    paint(plainHost, picture.get(), withoutNote);
    const Pixels bare = plainHost.pixels();
    const SIZE client = plainHost.client();
    const LONG right = std::min<LONG>(client.cx, look.area ? look.area->right : client.cx);
    const Pixels wanted = withNote(plainHost, area, {look.area ? look.area->left : 0, 0, right, client.cy}, lines,
                                   look.note->opaque != 0);
    Host host(kClientWidth, kClientHeight);
    host.reset(horizontal, vertical);
    paint(host, picture.get(), look);
    EXPECT_TRUE(host.pixels() == wanted);
    EXPECT_TRUE(wanted != bare);
}

void keep(OwnedNote &note, const RECT &area, LONG opaque) {
    note.record.inHeader = 1;
    note.record.opaque = opaque;
    note.record.left = area.left;
    note.record.top = area.top;
    note.record.right = area.right;
    note.record.bottom = area.bottom;
}

TEST(PaintDibNote, LiesOnThePictureOfEveryDepth) {
    for (const WORD bits : kDepths) {
        for (const LONG opaque : {0, 1}) {
            OwnedNote note("Hello\r\nworld");
            keep(note, {10, 20, 110, 60}, opaque);
            expectNote(Picture(200, 100, bits), {.note = &note.record}, {10, 20, 110, 60}, {"Hello", "world"});
        }
    }
}

TEST(PaintDibNote, IsMovedByZoomAndScrollBarsAndNotScaled) {
    OwnedNote note("Hello");
    keep(note, {30, 10, 80, 25}, 1);
    expectNote(Picture(140, 60, 8), {.zoom = {{2, 1, 3, 1}}, .note = &note.record}, {60, 30, 110, 45}, {"Hello"});
    keep(note, {200, 10, 250, 25}, 1);
    expectNote(Picture(400, 100, 8), {.note = &note.record}, {100, 10, 150, 25}, {"Hello"}, {0, 100, 100, true});
    keep(note, {20, 150, 70, 165}, 1);
    expectNote(Picture(100, 300, 8), {.note = &note.record}, {20, 50, 70, 65}, {"Hello"}, {0, 100, 0, false},
               {0, 100, 100, true});
}

// What is inverted is the picture.
TEST(PaintDibNote, LiesOnAnInvertedPictureAsItIs) {
    OwnedNote note("Hello");
    keep(note, {10, 20, 110, 60}, 1);
    expectNote(Picture(200, 100, 8), {.mode = VELLUM_SHOW_INVERTED, .note = &note.record}, {10, 20, 110, 60},
               {"Hello"});
}

// The window needs only the lower half of the first line and the upper half of the second one.
TEST(PaintDibNote, LinesThatReachIntoWhatIsPaintedAnewAreDrawn) {
    const Picture picture(200, 100, 8);
    OwnedNote note("MMMM\r\nMMMM\r\nMMMM");
    keep(note, {10, 20, 110, 90}, 1);
    const auto strip = [&](bool stripOnly) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const LONG height = plainExtent(host.dc(), "M").cy;
        const RECT part = {0, 20 + height / 2, kClientWidth, 20 + height + height / 2};
        if (stripOnly) {
            ValidateRect(host.window(), nullptr);
            InvalidateRect(host.window(), &part, FALSE);
        }
        paint(host, picture.get(), {.note = &note.record});
        const Pixels all = host.pixels();
        return Pixels(all.begin() + part.top * kClientWidth, all.begin() + part.bottom * kClientWidth);
    };
    EXPECT_TRUE(strip(true) == strip(false));
}

// 192 dots per inch in one direction: half of the place, and half of the rectangle, whatever the zoom is.
TEST(PaintDibNote, ItsRectangleIsScaledByTheResolution) {
    OwnedNote note("Hello world");
    keep(note, {20, 10, 80, 30}, 1);
    expectNote(Picture(300, 100, 8, 7559, 3780), {.note = &note.record}, {10, 10, 40, 30}, {"Hello world"});
    expectNote(Picture(140, 50, 8, 7559, 3780), {.zoom = {{4, 1, 2, 1}}, .note = &note.record}, {40, 20, 70, 40},
               {"Hello world"});
    expectNote(Picture(140, 100, 8, 3780, 7559), {.note = &note.record}, {20, 5, 80, 15}, {"Hello world"});
}

TEST(PaintDibNote, ShowsTheFirst40CharactersOfALine) {
    const std::string line(60, 'i');
    OwnedNote note(line);
    keep(note, {0, 0, 290, 30}, 0);
    expectNote(Picture(290, 60, 24), {.note = &note.record}, {0, 0, 290, 30}, {line.substr(0, 40)});
}

TEST(PaintDibNote, IsClippedToTheAreaToo) {
    OwnedNote note("MMMMMMMMMM");
    keep(note, {0, 0, 200, 40}, 1);
    expectNote(Picture(200, 100, 8), {.area = RECT{15, 0, 45, 200}, .note = &note.record}, {0, 0, 200, 40},
               {"MMMMMMMMMM"});
}

TEST(PaintDibNote, IsNotDrawnFittedBurnedOrBegunOutside) {
    const Picture picture(400, 100, 8);
    OwnedNote note("Hello");
    keep(note, {10, 10, 110, 60}, 1);
    const auto paintedWith = [&](const NoteRecord *record, DWORD mode) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 100, true}, {0, 100, 0, false});
        paint(host, picture.get(), {.mode = mode, .note = record});
        return host.pixels();
    };
    EXPECT_TRUE(paintedWith(&note.record, VELLUM_SHOW_FIT) == paintedWith(nullptr, VELLUM_SHOW_FIT));
    EXPECT_TRUE(paintedWith(&note.record, 0) == paintedWith(nullptr, 0)) << "it begins left of what is shown";
    note.record.left = 200;
    note.record.right = 300;
    EXPECT_TRUE(paintedWith(&note.record, 0) != paintedWith(nullptr, 0));
    note.record.inHeader = 0;
    EXPECT_TRUE(paintedWith(&note.record, 0) == paintedWith(nullptr, 0));
}

// ---------------------------------------------------------------- without a picture, and what is given back

TEST(PaintDib, WithoutADibValidatesTheWindowAndPaintsNothing) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, true}, {0, 100, 0, true});
    EXPECT_EQ(paint(host, nullptr), 1);
    EXPECT_FALSE(host.needsPainting());
    EXPECT_TRUE(host.hasBar(SB_HORZ));
    const SIZE client = host.client();
    EXPECT_TRUE(host.pixels() == Pixels(static_cast<std::size_t>(client.cx * client.cy), kUntouched));
}

TEST(PaintDib, OfABlockThatIsNoPictureIsAllBackground) {
    Bytes cut = PackedDib(100, 80, 8).bytes();
    cut.pop_back();
    for (const Bytes &bytes : {Bytes(10), cut}) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, true}, {0, 100, 0, true});
        const DibBlock block(bytes);
        EXPECT_LE(paint(host, block.get()), 2);
        EXPECT_FALSE(host.hasBar(SB_HORZ));
        EXPECT_TRUE(host.pixels() == Pixels(kClientWidth * kClientHeight, kBackground));
    }
}

TEST(PaintDib, WithoutAWindowIs0) {
    EXPECT_EQ(PaintDIBWithNote(nullptr, Picture(10, 10, 8).get(), nullptr, nullptr, 0, nullptr), 0);
    EXPECT_EQ(PaintDIBWithNote(nullptr, nullptr, nullptr, nullptr, 0, nullptr), 0);
}

TEST(PaintDib, WithoutMemoryForTheScaledPartDrawsThePictureDirectly) {
    Host host(kClientWidth, kClientHeight);
    host.reset({0, 100, 0, false}, {0, 100, 0, false});
    const Picture picture(101, 53, 8);
    const FailNth fault(Call::Allocate, 0);
    paint(host, picture.get());
    EXPECT_TRUE(fault.happened());
    EXPECT_TRUE(host.pixels() == expected(picture, whole(picture), {101, 53}, kClient));
}

int palettesWhenDrawn = 0;
ImportPatch drawingDibs;

int WINAPI notePalettes(HDC dc, int x, int y, int width, int height, int fromX, int fromY, int fromWidth,
                        int fromHeight, const void *bits, const BITMAPINFO *info, UINT usage, DWORD operation) {
    palettesWhenDrawn += GdiCalls::counts().paletteSelections == 1 && GdiCalls::counts().paletteRealizations == 1;
    return drawingDibs.original<decltype(StretchDIBits)>()(dc, x, y, width, height, fromX, fromY, fromWidth, fromHeight,
                                                           bits, info, usage, operation);
}

TEST(PaintDib, IsDrawnWithItsPaletteRealizedAndTheFormerOneComesBack) {
    Host host(kClientWidth, kClientHeight);
    for (const WORD bits : kDepths) {
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const Picture picture(100, 80, bits);
        palettesWhenDrawn = 0;
        const GdiCalls calls;
        drawingDibs.replace("StretchDIBits", &notePalettes);
        EXPECT_EQ(paint(host, picture.get()), 1);
        drawingDibs.restore();
        EXPECT_EQ(palettesWhenDrawn, 1) << bits;
        EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Palette), 1) << bits;
        EXPECT_EQ(GdiCalls::counts().paletteSelections, 2) << bits;
        EXPECT_NE(GdiCalls::counts().original, nullptr) << bits;
        EXPECT_EQ(GdiCalls::counts().selected, GdiCalls::counts().original) << bits;
    }
}

TEST(PaintDib, GivesEverythingBack) {
    Host host(kClientWidth, kClientHeight);
    OwnedNote note("Hello");
    keep(note, {10, 10, 110, 60}, 1);
    for (const WORD bits : kDepths) {
        for (const bool paletteFails : {false, true}) {
            host.reset({0, 100, 0, false}, {0, 100, 0, false});
            const Picture picture(200, 100, bits);
            const GdiCalls calls(paletteFails ? GdiCalls::Fail::Palette : GdiCalls::Fail::Nothing);
            paint(host, picture.get(), {.note = &note.record});
            const GdiCalls::Counts &counts = GdiCalls::counts();
            EXPECT_EQ(counts.objects, 0);
            EXPECT_EQ(counts.contexts, 0);
            EXPECT_EQ(counts.savedStates, 0);
            EXPECT_EQ(counts.selected, counts.original) << "the last palette selected is the first one there was";
            EXPECT_EQ(lockCount(picture.get()), 0U);
        }
    }
}

} // namespace
