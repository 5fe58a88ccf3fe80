// Windows: notes drawn over an image, against texts drawn plainly.
#include "annot/plain_notes.h"
#include "support/gdi_calls.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr int kWidth = 700;
constexpr int kHeight = 120;
constexpr DWORD kInk = 0xC00000;
constexpr DWORD kPaper = 0xFFFF80;

// A bitmap to draw on, in colours of the test's.
class Sheet : public MemoryTarget {
public:
    Sheet() : MemoryTarget(Kind::TrueColorSection, kWidth, kHeight) {
        SetTextColor(dc(), colorRef(kInk));
        SetBkColor(dc(), colorRef(kPaper));
    }
};

struct Drawn {
    LONG result;
    Pixels pixels;
};

Drawn draw(const NoteRecord *note, const POINT *offset = nullptr, double xScale = 1.0, double yScale = 1.0,
           const POINT *origin = nullptr) {
    const Sheet sheet;
    const LONG result = PaintNotePlus(nullptr, sheet.dc(), offset, xScale, yScale, origin, note);
    return {result, sheet.pixels()};
}

Pixels plain(const RECT &area, const Lines &lines, bool opaque) {
    const Sheet sheet;
    SetBkMode(sheet.dc(), TRANSPARENT);
    if (opaque) {
        fillPixels(sheet.dc(), area, kPaper);
    }
    drawPlainly(sheet.dc(), area, lines);
    return sheet.pixels();
}

Pixels blank() {
    return Sheet().pixels();
}

OwnedNote &placed(OwnedNote &note, LONG left, LONG top, LONG right, LONG bottom) {
    note.record.inHeader = 1;
    note.record.left = left;
    note.record.top = top;
    note.record.right = right;
    note.record.bottom = bottom;
    return note;
}

TEST(PaintNote, DrawsItsLinesOneBelowTheOther) {
    OwnedNote note("Hello\r\nworld");
    placed(note, 10, 20, 300, 100);
    const Drawn drawn = draw(&note.record);
    EXPECT_EQ(drawn.result, 1);
    EXPECT_TRUE(drawn.pixels != blank());
    EXPECT_TRUE(drawn.pixels == plain({10, 20, 300, 100}, {"Hello", "world"}, false));
}

TEST(PaintNote, AnOpaqueOneFillsItsRectangleOnceForAllLines) {
    OwnedNote note("Hello\r\nworld");
    placed(note, 10, 20, 300, 100).record.opaque = 1;
    const Drawn drawn = draw(&note.record);
    EXPECT_TRUE(drawn.pixels == plain({10, 20, 300, 100}, {"Hello", "world"}, true));
    EXPECT_EQ(drawn.pixels[20 * kWidth + 10 + 250], kPaper);
    EXPECT_EQ(drawn.pixels[99 * kWidth + 299], kPaper);
    EXPECT_EQ(drawn.pixels[100 * kWidth + 299], kUntouched);
    EXPECT_EQ(drawn.pixels[99 * kWidth + 300], kUntouched);
}

TEST(PaintNote, AnyNumberBut0IsOpaqueAndKeptAsAText) {
    for (const LONG set : {-7, 2, 0x100}) {
        OwnedNote note("Hello");
        placed(note, 10, 20, 300, 100).record.opaque = set;
        note.record.inHeader = set;
        const Drawn drawn = draw(&note.record);
        EXPECT_EQ(drawn.result, 1) << set;
        EXPECT_TRUE(drawn.pixels == plain({10, 20, 300, 100}, {"Hello"}, true)) << set;
    }
}

// A font with space between its lines; null when no size of these has any.
HFONT fontWithLeading() {
    const Sheet sheet;
    for (const char *face : {"Arial", "Times New Roman", "Courier New", "Tahoma", ""}) {
        for (int height = 12; height <= 50; ++height) {
            const HFONT font = CreateFontA(-height, 0, 0, 0, 0, 0, 0, 0, DEFAULT_CHARSET, 0, 0, 0, 0, face);
            const HGDIOBJ before = SelectObject(sheet.dc(), font);
            TEXTMETRICA metrics{};
            GetTextMetricsA(sheet.dc(), &metrics);
            SelectObject(sheet.dc(), before);
            if (metrics.tmExternalLeading > 0) {
                return font;
            }
            DeleteObject(font);
        }
    }
    return nullptr;
}

TEST(PaintNote, BetweenTwoLinesIsTheFontsExternalLeading) {
    const HFONT font = fontWithLeading();
    if (font == nullptr) {
        GTEST_SKIP() << "no font here has space between its lines";
    }
    OwnedNote note("Hello\r\nworld");
    placed(note, 10, 0, 600, kHeight);
    {
        const Sheet sheet;
        const Sheet expected;
        for (const HDC dc : {sheet.dc(), expected.dc()}) {
            SelectObject(dc, font);
        }
        SetBkMode(expected.dc(), TRANSPARENT);
        EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
        drawPlainly(expected.dc(), {10, 0, 600, kHeight}, {"Hello", "world"});
        EXPECT_TRUE(sheet.pixels() == expected.pixels());
    }
    DeleteObject(font);
}

TEST(PaintNote, LinesThatAClipRegionShowsAPartOfAreDrawn) {
    OwnedNote note("MMMM\r\nMMMM\r\nMMMM");
    placed(note, 10, 20, 300, 100);
    const Sheet sheet;
    const Sheet expected;
    const LONG half = plainExtent(sheet.dc(), "M").cy / 2;
    SetBkMode(expected.dc(), TRANSPARENT);
    for (const HDC dc : {sheet.dc(), expected.dc()}) {
        IntersectClipRect(dc, 0, 20 + half, kWidth, 20 + 3 * half);
    }
    EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
    drawPlainly(expected.dc(), {10, 20, 300, 100}, {"MMMM", "MMMM", "MMMM"});
    EXPECT_TRUE(sheet.pixels() == expected.pixels());
    EXPECT_TRUE(sheet.pixels() != blank());
}

TEST(PaintNote, SkipsRunsOfLineEnds) {
    for (const char *text : {"a\rb", "a\nb", "a\r\nb", "\r\n\r\na\r\n\n\r\rb\r\n", "a\n\nb"}) {
        OwnedNote note(text);
        placed(note, 0, 0, 300, 100);
        EXPECT_TRUE(draw(&note.record).pixels == plain({0, 0, 300, 100}, {"a", "b"}, false)) << text;
    }
}

// By design.
TEST(PaintNote, ShowsTheFirst40CharactersOfALine) {
    const std::string line(60, 'M');
    OwnedNote note(line + "\r\nshort");
    placed(note, 0, 0, 10000, 100);
    const Pixels pixels = draw(&note.record).pixels;
    EXPECT_TRUE(pixels == plain({0, 0, kWidth, 100}, {line.substr(0, 40), "short"}, false));
    EXPECT_TRUE(pixels != plain({0, 0, kWidth, 100}, {line.substr(0, 41), "short"}, false));
}

TEST(PaintNote, IsClippedToItsRectangle) {
    OwnedNote note("MMMMMMMM\r\nMMMMMMMM\r\nMMMMMMMM");
    placed(note, 30, 40, 57, 59);
    const RECT changed = changedArea(blank(), draw(&note.record).pixels, kWidth);
    EXPECT_GE(changed.left, 30);
    EXPECT_GE(changed.top, 40);
    EXPECT_EQ(changed.right, 57);
    EXPECT_LE(changed.bottom, 59);
    EXPECT_GT(changed.bottom, changed.top);
}

TEST(PaintNote, ItsPlaceIsScaledAndItsSizeIsNot) {
    OwnedNote note("Hello\r\nworld");
    placed(note, 41, 30, 141, 70).record.opaque = 1;
    const POINT offset = {20, 10};
    const POINT origin = {100, 7};
    // 21 * 1.5 = 31.5 becomes 32; 20 * 0.5 is 10.
    EXPECT_TRUE(draw(&note.record, &offset, 1.5, 0.5, &origin).pixels ==
                plain({132, 17, 232, 57}, {"Hello", "world"}, true));
}

// By design: even if most of it would be seen.
TEST(PaintNote, ThatBeginsOutsideIsNotDrawnAtAll) {
    OwnedNote note("Hello");
    placed(note, 9, 10, 300, 100);
    for (const POINT offset : {POINT{10, 0}, POINT{0, 11}}) {
        const Drawn drawn = draw(&note.record, &offset);
        EXPECT_EQ(drawn.result, 0);
        EXPECT_TRUE(drawn.pixels == blank());
    }
    const POINT exact = {9, 10};
    EXPECT_TRUE(draw(&note.record, &exact).pixels == plain({0, 0, 291, 90}, {"Hello"}, false));
}

TEST(PaintNote, WithoutTextOrNotKeptAsOneIsNotDrawn) {
    OwnedNote burned("Hello");
    placed(burned, 0, 0, 300, 100).record.inHeader = 0;
    OwnedNote none;
    placed(none, 0, 0, 300, 100).record.opaque = 1;
    for (const NoteRecord *record : std::initializer_list<const NoteRecord *>{&burned.record, &none.record, nullptr}) {
        const Drawn drawn = draw(record);
        EXPECT_EQ(drawn.result, 0);
        EXPECT_TRUE(drawn.pixels == blank());
    }
}

TEST(PaintNote, OfAnEmptyOrTurnedRectangleShowsNothing) {
    for (const LONG right : {50, 20}) {
        OwnedNote note("Hello");
        placed(note, 50, 20, right, 60);
        const Drawn drawn = draw(&note.record);
        EXPECT_EQ(drawn.result, 1) << right;
        EXPECT_TRUE(drawn.pixels == blank()) << right;
    }
}

TEST(PaintNote, OfATextWithoutATerminatorEndsWithItsBlock) {
    OwnedNote note;
    note.record.text = makeBlock(bytesOf("abc"));
    placed(note, 0, 0, 300, 100);
    EXPECT_TRUE(draw(&note.record).pixels == plain({0, 0, 300, 100}, {"abc"}, false));
    EXPECT_EQ(lockCount(note.record.text), 0U);
}

TEST(PaintNote, OfTheLargestNumbersIsHarmless) {
    constexpr LONG kMost = 2147483647;
    const POINT remote = {-kMost, -kMost};
    OwnedNote note("Hello");
    placed(note, kMost, kMost, -kMost, kMost).record.opaque = 1;
    EXPECT_TRUE(draw(&note.record, &remote, 1e30, 1e30, &remote).pixels == blank());
    placed(note, 0, 0, kMost, kMost);
    EXPECT_TRUE(draw(&note.record).pixels == plain({0, 0, kWidth, kHeight}, {"Hello"}, true));
}

TEST(PaintNote, LeavesTheDeviceContextAsItWas) {
    OwnedNote note("Hello");
    placed(note, 0, 0, 300, 100).record.opaque = 1;
    const Sheet sheet;
    SetBkMode(sheet.dc(), TRANSPARENT);
    SetTextAlign(sheet.dc(), TA_RIGHT | TA_BOTTOM | TA_UPDATECP);
    MoveToEx(sheet.dc(), 33, 44, nullptr);
    {
        const GdiCalls calls;
        EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
        EXPECT_EQ(GdiCalls::counts().savedStates, 0);
        EXPECT_EQ(GdiCalls::counts().objects, 0);
    }
    EXPECT_EQ(GetBkMode(sheet.dc()), TRANSPARENT);
    EXPECT_EQ(GetTextAlign(sheet.dc()), UINT{TA_RIGHT | TA_BOTTOM | TA_UPDATECP});
    POINT position{};
    GetCurrentPositionEx(sheet.dc(), &position);
    EXPECT_EQ(position.x, 33);
    EXPECT_EQ(position.y, 44);
    EXPECT_TRUE(sheet.pixels() == plain({0, 0, 300, 100}, {"Hello"}, true));
}

TEST(PaintNote, WhenTheDeviceContextCannotBeBroughtBackDrawsNothing) {
    OwnedNote note("Hello");
    placed(note, 0, 0, 300, 100).record.opaque = 1;
    const GdiCalls calls(GdiCalls::Fail::SaveDc);
    const Drawn drawn = draw(&note.record);
    EXPECT_EQ(drawn.result, 0);
    EXPECT_TRUE(drawn.pixels == blank());
}

} // namespace
