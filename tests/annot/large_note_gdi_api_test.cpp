// Windows: notes of a megabyte. What is drawn of them is what can be seen, and burning makes nothing larger than the
// image.
#include "annot/answered_dialogs.h"
#include "annot/plain_notes.h"
#include "support/gdi_calls.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

#include <optional>

namespace {

using namespace vellum::test;

constexpr int kWidth = 300;
constexpr int kHeight = 120;
constexpr LONG kMost = 0x7FFFFFFF;
constexpr int kStored = 2;

// A megabyte of lines with a few characters each.
Lines manyLines() {
    Lines lines;
    for (int i = 0; i < 130000; ++i) {
        lines.push_back(std::to_string(100000 + i));
    }
    return lines;
}

std::string joined(const Lines &lines) {
    std::string text;
    for (const std::string &line : lines) {
        text += line + "\r\n";
    }
    return text;
}

Lines some(const Lines &lines, std::size_t count) {
    return {lines.begin(), lines.begin() + static_cast<std::ptrdiff_t>(count)};
}

LONG lineHeight(HDC dc) {
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    return metrics.tmHeight + metrics.tmExternalLeading;
}

// Lines that begin in so many pixels.
int linesIn(LONG pixels, HDC dc) {
    return static_cast<int>((pixels + lineHeight(dc) - 1) / lineHeight(dc));
}

OwnedNote &kept(OwnedNote &note, LONG right, LONG bottom) {
    note.record.inHeader = 1;
    note.record.opaque = 1;
    note.record.right = right;
    note.record.bottom = bottom;
    return note;
}

TEST(LargeNote, OnlyTheLinesOnTheDeviceAreDrawn) {
    const Lines lines = manyLines();
    OwnedNote note(joined(lines));
    ASSERT_GT(GlobalSize(kept(note, kMost, kMost).record.text), 1000000U);
    const MemoryTarget sheet(MemoryTarget::Kind::TrueColorSection, kWidth, kHeight);
    const GdiCalls calls;
    EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
    const int seen = linesIn(kHeight, sheet.dc());
    EXPECT_EQ(GdiCalls::counts().textsDrawn, seen + 1) << "the background, and the lines";
    EXPECT_LE(GdiCalls::counts().textsMeasured, 1);
    const MemoryTarget plain(MemoryTarget::Kind::TrueColorSection, kWidth, kHeight);
    fillPixels(plain.dc(), {0, 0, kWidth, kHeight}, 0xFFFFFF);
    drawPlainly(plain.dc(), {0, 0, kWidth, kHeight}, some(lines, static_cast<std::size_t>(seen)));
    EXPECT_TRUE(sheet.pixels() == plain.pixels());
}

TEST(LargeNote, OfAHiddenOneNothingIsDrawnButTheResultIs1) {
    OwnedNote note(joined(manyLines()));
    kept(note, kMost, kMost);
    const MemoryTarget sheet(MemoryTarget::Kind::TrueColorSection, kWidth, kHeight);
    const Pixels before = sheet.pixels();
    IntersectClipRect(sheet.dc(), 0, 0, 0, 0);
    const GdiCalls calls;
    EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
    EXPECT_LE(GdiCalls::counts().textsDrawn, 1) << "the background at most";
    EXPECT_TRUE(sheet.pixels() == before);
}

TEST(LargeNote, BehindAClipRegionOnlyTheLinesInItAreDrawn) {
    OwnedNote note(joined(manyLines()));
    kept(note, kMost, kMost);
    const MemoryTarget sheet(MemoryTarget::Kind::TrueColorSection, kWidth, kHeight);
    const LONG height = lineHeight(sheet.dc());
    IntersectClipRect(sheet.dc(), 0, 2 * height + 1, kWidth, 4 * height);
    const GdiCalls calls;
    EXPECT_EQ(PaintNotePlus(nullptr, sheet.dc(), nullptr, 1, 1, nullptr, &note.record), 1);
    EXPECT_EQ(GdiCalls::counts().textsDrawn, 1 + 2);
}

TEST(LargeNote, OverAPaintedImageOnlyTheLinesOfTheWindowAreDrawn) {
    Host host(kWidth, kHeight);
    host.reset();
    const DibBlock dib(PackedDib(kWidth, 20000, 1));
    OwnedNote note(joined(manyLines()));
    kept(note, kWidth, kMost);
    const GdiCalls calls;
    int paints = 0;
    for (; host.needsPainting() && paints < 10; ++paints) {
        EXPECT_EQ(PaintDIBWithNote(host.window(), dib.get(), nullptr, nullptr, 0, &note.record), 1);
    }
    EXPECT_GE(GdiCalls::counts().textsDrawn, 2 * paints);
    EXPECT_LE(GdiCalls::counts().textsDrawn, paints * (1 + linesIn(kHeight, host.dc())));
}

// ---------------------------------------------------------------- burning

int widest = 0;
int highest = 0;
ImportPatch makingBitmaps;

HBITMAP WINAPI noteBitmap(int width, int height, UINT planes, UINT bits, const void *data) {
    widest = std::max(widest, width);
    highest = std::max(highest, height);
    return makingBitmaps.original<decltype(CreateBitmap)>()(width, height, planes, bits, data);
}

// What is left of the picture when the text has been burned into it, without a dialog. The note begins at its left and
// top, which may lie outside.
struct BurnedNote {
    BurnedNote(const std::string &text, LONG left, LONG top) : before(PackedDib(kWidth, kHeight, 24)), note(text) {
        const AnsweredDialogs dialogs(kStored);
        note.record.left = left;
        note.record.top = top;
        note.record.opaque = 1;
        note.record.image = before.get();
        widest = 0;
        highest = 0;
        const GdiCalls calls;
        makingBitmaps.replace("CreateBitmap", &noteBitmap);
        result = NotePlus(nullptr, &note.record, nullptr, nullptr, nullptr, 0);
        makingBitmaps.restore();
        counts = GdiCalls::counts();
        if (note.record.image != before.get()) {
            after.emplace(note.record.image);
        }
        note.record.image = nullptr;
    }

    DibBlock before;
    OwnedNote note;
    LONG result = 0;
    GdiCalls::Counts counts;
    std::optional<Dib> after;
};

Pixels plainPaper(LONG left, LONG top, const Lines &lines) {
    const MemoryTarget paper(MemoryTarget::Kind::Monochrome, kWidth, kHeight);
    PatBlt(paper.dc(), 0, 0, kWidth, kHeight, WHITENESS);
    drawPlainly(paper.dc(), {left, top, kWidth, kHeight}, lines);
    return paper.pixels();
}

TEST(LargeNote, IsMeasuredWholeAndBurnedAsFarAsTheImageReaches) {
    const Lines lines = manyLines();
    const BurnedNote burned(joined(lines), 0, 0);
    EXPECT_EQ(burned.result, 1);
    EXPECT_EQ(burned.note.record.text, nullptr);
    ASSERT_TRUE(burned.after);
    EXPECT_GT(burned.note.record.bottom, 1000000);
    const MemoryTarget paper(MemoryTarget::Kind::Monochrome, 1, 1);
    EXPECT_EQ(burned.counts.textsDrawn, linesIn(kHeight, paper.dc()));
    EXPECT_LE(burned.counts.textsMeasured, static_cast<int>(lines.size()) + 2) << "once a line";
    EXPECT_EQ(burned.counts.objects, 0);
    EXPECT_LE(widest, kWidth);
    EXPECT_LE(highest, kHeight);
}

TEST(LargeNote, ThatBeginsFarOutsideIsBurnedWhereItLiesOnTheImage) {
    Lines lines = manyLines();
    for (std::string &line : lines) {
        line.insert(0, 600, 'i');
    }
    lines.resize(4000);
    const SIZE size = plainSize(MemoryTarget(MemoryTarget::Kind::Monochrome, 1, 1).dc(), {lines[0]});
    const LONG left = 100 - size.cx;
    constexpr LONG kTop = -30001;
    const BurnedNote burned(joined(lines), left, kTop);
    EXPECT_EQ(burned.result, 1);
    ASSERT_TRUE(burned.after);
    EXPECT_EQ(burned.note.record.left, left);
    EXPECT_GT(burned.note.record.right, 0);
    EXPECT_GT(widest, 0);
    EXPECT_LE(widest, kWidth);
    EXPECT_LE(highest, kHeight);
    EXPECT_LE(burned.counts.textsDrawn, linesIn(kHeight, MemoryTarget(MemoryTarget::Kind::Monochrome, 1, 1).dc()) + 1);
    const Pixels paper = plainPaper(left, kTop, lines);
    const Pixels after = pixelsOf(*burned.after);
    std::size_t ink = 0;
    for (LONG y = 0; y < kHeight; ++y) {
        for (LONG x = 0; x < std::min<LONG>(burned.note.record.right, kWidth); ++x) {
            const auto at = static_cast<std::size_t>(y * kWidth + x);
            ink += paper[at] == 0 ? 1 : 0;
            ASSERT_EQ(after[at], paper[at]) << x << ", " << y;
        }
    }
    EXPECT_GT(ink, 100U);
}

TEST(LargeNote, AtTheNumbersEndsIsBurnedOrLeftOut) {
    for (const LONG left : {-kMost - 1, -kMost, kMost}) {
        for (const LONG top : {-kMost - 1, LONG{-30}, kMost}) {
            const BurnedNote burned("Hello\r\nworld", left, top);
            EXPECT_EQ(burned.result, 1);
            EXPECT_EQ(burned.counts.textsDrawn, 0);
            EXPECT_EQ(burned.counts.objects, 0);
            ASSERT_TRUE(burned.after);
            EXPECT_TRUE(blockBytes(burned.before.get()) == burned.after->bytes());
        }
    }
}

} // namespace
