// Windows: notes burned into images of every depth, pixel by pixel against texts drawn plainly.
#include "annot/answered_dialogs.h"
#include "annot/plain_notes.h"
#include "support/dialog_user.h"
#include "support/faults.h"
#include "support/gdi_calls.h"
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr int kOnImage = 1000;
constexpr LONG kWidth = 300;
constexpr LONG kHeight = 80;

LONG burn(NoteRecord &record) {
    const DialogUser user([](HWND dialog) {
        press(dialog, kOnImage);
        press(dialog, IDOK);
    });
    return NotePlus(nullptr, &record, nullptr, nullptr, nullptr, 0);
}

// Black and white are neither the first nor the last colours.
PackedDib pictureOf(WORD bits) {
    PackedDib dib(kWidth, kHeight, bits);
    if (bits == 4 || bits == 8) {
        dib.colours[5] = kBlackQuad;
        dib.colours[9] = kWhiteQuad;
    }
    dib.header.biXPelsPerMeter = 1234;
    dib.header.biYPelsPerMeter = 4321;
    return dib;
}

// The text as it is drawn on paper of the note's size: true where there is ink.
std::vector<bool> inkOf(const NoteRecord &record, const Lines &lines) {
    const int width = record.right - record.left;
    const int height = record.bottom - record.top;
    const MemoryTarget paper(MemoryTarget::Kind::Monochrome, width, height);
    PatBlt(paper.dc(), 0, 0, width, height, WHITENESS);
    drawPlainly(paper.dc(), {0, 0, width, height}, lines);
    std::vector<bool> ink;
    for (const DWORD pixel : paper.pixels()) {
        ink.push_back(pixel == 0);
    }
    return ink;
}

// The picture with the text on it.
Pixels expected(Pixels pixels, const NoteRecord &record, const Lines &lines) {
    const std::vector<bool> ink = inkOf(record, lines);
    std::size_t i = 0;
    for (LONG y = record.top; y < record.bottom; ++y) {
        for (LONG x = record.left; x < record.right; ++x, ++i) {
            if (x >= 0 && y >= 0 && x < kWidth && y < kHeight && (ink[i] || record.opaque != 0)) {
                pixels[static_cast<std::size_t>(y * kWidth + x)] = ink[i] ? 0x000000 : 0xFFFFFF;
            }
        }
    }
    return pixels;
}

struct Burned {
    explicit Burned(const PackedDib &dib, const std::string &text, LONG left = 20, LONG top = 10, LONG opaque = 0)
        : before(makeBlock(dib.bytes())) {
        record.text = textBlock(text);
        textBefore = record.text;
        record.left = left;
        record.top = top;
        record.opaque = opaque;
        record.image = before.get();
        result = burn(record);
    }
    ~Burned() {
        if (record.image != before.get()) {
            GlobalFree(record.image);
        }
        if (record.text != nullptr) {
            GlobalFree(record.text);
        }
        GlobalFree(textBefore);
    }
    Burned(const Burned &) = delete;
    Burned &operator=(const Burned &) = delete;

    Dib before;
    HGLOBAL textBefore;
    NoteRecord record = {};
    LONG result;
};

void expectBurned(const PackedDib &dib, const std::string &text, const Lines &lines, LONG left, LONG top) {
    for (const LONG opaque : {0, 1}) {
        SCOPED_TRACE(testing::Message() << dib.header.biBitCount << " bits, " << (opaque ? "opaque" : "transparent"));
        Burned burned(dib, text, left, top, opaque);
        EXPECT_EQ(burned.result, 1);
        EXPECT_EQ(burned.record.text, nullptr);
        ASSERT_NE(burned.record.image, burned.before.get());
        const Pixels before = pixelsOf(burned.before);
        EXPECT_EQ(blockBytes(burned.before.get()), dib.bytes()) << "the old image stays as it was";
        const Dib after(std::exchange(burned.record.image, burned.before.get()));
        EXPECT_EQ(std::memcmp(after.bytes().data(), dib.bytes().data(), after.bitsOffset()), 0)
            << "header, resolution and colours stay";
        EXPECT_TRUE(pixelsOf(after) == expected(before, burned.record, lines));
        EXPECT_TRUE(pixelsOf(after) != before);
        EXPECT_EQ(lockCount(after.get()), 0U);
        EXPECT_EQ(lockCount(burned.before.get()), 0U);
    }
}

TEST(NoteBurning, IsBlackTextAndForOpaqueNotesWhitePaperAtEveryDepth) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        expectBurned(pictureOf(bits), "Hello\r\nworld", {"Hello", "world"}, 20, 10);
        expectBurned(pictureOf(bits), "Hello", {"Hello"}, 21, 0);
    }
}

TEST(NoteBurning, TakesFirstBlackThenWhiteToo) {
    PackedDib dib(kWidth, kHeight, 1, {kBlackQuad, kWhiteQuad});
    expectBurned(dib, "Hello", {"Hello"}, 3, 3);
}

TEST(NoteBurning, IsCutAtTheEdgesOfTheImage) {
    const std::string line(60, 'M');
    expectBurned(pictureOf(8), line + "\r\n" + line, {line, line}, kWidth - 25, kHeight - 20);
    expectBurned(pictureOf(1), line + "\r\n" + line, {line, line}, -13, -5);
}

// By design: all of a line is drawn. Painted over the image it would have 40 characters.
TEST(NoteBurning, DrawsAllOfALongLine) {
    const std::string line(60, 'i');
    expectBurned(pictureOf(24), line, {line}, 0, 0);
    Burned burned(pictureOf(24), line, 0, 0);
    const Dib after(std::exchange(burned.record.image, burned.before.get()));
    const LONG right = changedArea(pixelsOf(burned.before), pixelsOf(after), kWidth).right;
    EXPECT_GT(right, burned.record.right * 55 / 60);
}

TEST(NoteBurning, SkipsEmptyLines) {
    expectBurned(pictureOf(8), "\r\na\r\n\r\nb", {"a", "b"}, 5, 5);
}

TEST(NoteBurning, TakesTheNearestColours) {
    PackedDib dib(kWidth, kHeight, 8, {quad(250, 0, 0), quad(20, 30, 10), quad(200, 220, 230), quad(100, 100, 100)});
    Bytes bytes = dib.bytes();
    std::fill(bytes.end() - static_cast<std::ptrdiff_t>(dib.stride() * kHeight), bytes.end(), BYTE{0});
    NoteRecord record = {};
    record.opaque = 1;
    record.text = textBlock("Hello");
    const HGLOBAL text = record.text;
    const DibBlock before(bytes);
    record.image = before.get();
    ASSERT_EQ(burn(record), 1);
    const Dib after(record.image);
    const std::vector<bool> ink = inkOf(record, {"Hello"});
    for (LONG y = 0; y < record.bottom; ++y) {
        const Bytes row = after.row(static_cast<DWORD>(y), dib.stride());
        for (LONG x = 0; x < record.right; ++x) {
            ASSERT_EQ(row[static_cast<std::size_t>(x)], ink[static_cast<std::size_t>(y * record.right + x)] ? 1 : 2);
        }
        EXPECT_EQ(row[static_cast<std::size_t>(record.right)], 0);
    }
    GlobalFree(text);
}

TEST(NoteBurning, BesideTheImageLeavesACopyOfIt) {
    for (const auto &[left, top] : {std::pair{kWidth, LONG{0}}, std::pair{LONG{0}, kHeight},
                                    std::pair{LONG{2147483647}, LONG{0}}, std::pair{LONG{-100000}, LONG{0}}}) {
        Burned burned(pictureOf(8), "Hello", left, top, 1);
        EXPECT_EQ(burned.result, 1);
        EXPECT_NE(burned.record.image, burned.before.get());
        EXPECT_EQ(blockBytes(burned.record.image), burned.before.bytes());
    }
}

TEST(NoteBurning, OfAHugeTextNeedsNoMoreThanTheImageDoes) {
    std::string text;
    for (int i = 0; i < 20000; ++i) {
        text += i == 7 ? std::string(20000, 'W') + "\r\n" : "W\r\n";
    }
    Burned burned(pictureOf(1), text, 0, 0, 1);
    EXPECT_EQ(burned.result, 1);
    EXPECT_GT(burned.record.bottom, 100000);
    EXPECT_EQ(GlobalSize(burned.record.image), burned.before.bytes().size());
}

constexpr INT_PTR kStored = 2;

// Without a dialog, which would make the flags 0 and 1. Result: that of NotePlus; the image is the new one.
LONG burnAsItIs(NoteRecord &record) {
    const AnsweredDialogs dialogs(kStored);
    return NotePlus(nullptr, &record, nullptr, nullptr, nullptr, 0);
}

TEST(NoteBurning, AnyNumberBut0IsOpaque) {
    const DibBlock image(pictureOf(8));
    const auto burnedWith = [&](LONG opaque) {
        NoteRecord record = {0, opaque, textBlock("Hello"), 20, 10, 0, 0, image.get()};
        EXPECT_EQ(burnAsItIs(record), 1);
        EXPECT_NE(record.image, image.get());
        return Dib(record.image).bytes();
    };
    const Bytes opaque = burnedWith(1);
    EXPECT_TRUE(opaque != burnedWith(0));
    for (const LONG other : {-7, 2, 0x100}) {
        EXPECT_TRUE(burnedWith(other) == opaque) << other;
    }
}

TEST(NoteBurning, OfANoteKeptAsATextByAnyNumberBut0DoesNotHappen) {
    const DibBlock image(pictureOf(8));
    for (const LONG inHeader : {1, -7, 2, 0x100}) {
        OwnedNote note("Hello");
        note.record.inHeader = inHeader;
        note.record.image = image.get();
        EXPECT_EQ(burnAsItIs(note.record), 1) << inHeader;
        const AnsweredDialogs dialogs(kStored);
        EXPECT_EQ(Note(nullptr, &note.record), 1) << inHeader;
        EXPECT_EQ(note.record.image, image.get()) << inHeader;
        EXPECT_EQ(note.text(), "Hello") << inHeader;
        note.record.image = nullptr;
    }
}

constexpr LONG kLeading = 3;
ImportPatch measuringFonts;

BOOL WINAPI withLeading(HDC dc, TEXTMETRICA *metrics) {
    const BOOL known = measuringFonts.original<decltype(GetTextMetricsA)>()(dc, metrics);
    metrics->tmExternalLeading += kLeading;
    return known;
}

// As a font with more space between its lines would do it; the system's own has little or none.
TEST(NoteBurning, BetweenTwoLinesIsTheFontsExternalLeading) {
    const DibBlock image(pictureOf(8));
    NoteRecord record = {0, 0, textBlock("Hello\r\nworld"), 20, 10, 0, 0, image.get()};
    measuringFonts.replace("GetTextMetricsA", &withLeading);
    EXPECT_EQ(burnAsItIs(record), 1);
    measuringFonts.restore();
    const Dib after(record.image);
    const LONG width = record.right - record.left;
    const LONG height = record.bottom - record.top;
    const MemoryTarget paper(MemoryTarget::Kind::Monochrome, width, height);
    PatBlt(paper.dc(), 0, 0, width, height, WHITENESS);
    TEXTMETRICA metrics{};
    GetTextMetricsA(paper.dc(), &metrics);
    drawPlainly(paper.dc(), {0, 0, width, height}, {"Hello"});
    drawPlainly(paper.dc(), {0, metrics.tmHeight + metrics.tmExternalLeading + kLeading, width, height}, {"world"});
    const Pixels ink = paper.pixels();
    Pixels pixels = pixelsOf(Dib(makeBlock(pictureOf(8).bytes())));
    for (LONG i = 0; i < width * height; ++i) {
        if (ink[static_cast<std::size_t>(i)] == 0) {
            pixels[static_cast<std::size_t>((10 + i / width) * kWidth + 20 + i % width)] = 0;
        }
    }
    EXPECT_TRUE(pixelsOf(after) == pixels);
}

TEST(NoteBurning, DeletesEveryObjectThatItMakes) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        for (const LONG opaque : {0, 1}) {
            const GdiCalls calls;
            const Burned burned(pictureOf(bits), "Hello\r\nworld", 20, 10, opaque);
            EXPECT_EQ(burned.result, 1);
            EXPECT_EQ(GdiCalls::counts().objects, 0);
            EXPECT_EQ(GdiCalls::counts().contexts, 0);
            EXPECT_EQ(GdiCalls::counts().memoryContexts, 0);
            EXPECT_EQ(GdiCalls::counts().deletedInUse, 0);
            EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Brush), 1);
            EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Bitmap), 1);
        }
    }
}

// ---------------------------------------------------------------- failures

TEST(NoteBurning, WithoutMemoryLeavesTextAndImage) {
    const PackedDib dib = pictureOf(8);
    bool burned = false;
    int failures = 0;
    for (long nth = 0; nth < 20 && !burned; ++nth) {
        NoteRecord record = {};
        const DibBlock image(dib);
        record.image = image.get();
        std::optional<FailNth> fault;
        const DialogUser user([&](HWND dialog) {
            press(dialog, kOnImage);
            fault.emplace(Call::Allocate, nth + 1); // the first one is the dialog's text
            press(dialog, IDOK);
        });
        const LONG result = NotePlus(nullptr, &record, nullptr, nullptr, nullptr, 0);
        burned = !fault->happened();
        fault.reset();
        EXPECT_EQ(result, burned ? 1 : 0);
        EXPECT_EQ(record.text == nullptr, burned);
        EXPECT_EQ(record.image == image.get(), !burned);
        EXPECT_EQ(lockCount(image.get()), 0U);
        failures += burned ? 0 : 1;
        for (HGLOBAL block : {record.text, record.image == image.get() ? nullptr : record.image}) {
            if (block != nullptr) {
                GlobalFree(block);
            }
        }
    }
    EXPECT_TRUE(burned);
    EXPECT_EQ(failures, 3) << "the copy of the image, the drawn text and its rows";
}

TEST(NoteBurning, WithoutABitmapOrADeviceContextLeavesTextAndImage) {
    const PackedDib dib = pictureOf(8);
    for (const auto failing : {GdiCalls::Fail::Bitmap, GdiCalls::Fail::MemoryDc, GdiCalls::Fail::GetDiBits}) {
        NoteRecord record = {};
        const DibBlock image(dib);
        record.image = image.get();
        {
            const GdiCalls calls(failing);
            EXPECT_EQ(burn(record), 0);
            EXPECT_EQ(GdiCalls::counts().memoryContexts, 0);
            EXPECT_EQ(GdiCalls::counts().contexts, 0);
            EXPECT_EQ(GdiCalls::counts().objects, 0);
            EXPECT_EQ(GdiCalls::tried(GdiCalls::Fail::Brush), 1) << "the dialog's, which goes with it";
        }
        EXPECT_NE(record.text, nullptr);
        EXPECT_EQ(record.image, image.get());
        GlobalFree(record.text);
    }
}

} // namespace
