// The validated view of a packed DIB: what it takes, where colours and rows lie, and every promise that a header can
// break.
#include "support/dib_view.h"

#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

TEST(DibView, ShowsColoursAndRowsOfEveryDepth) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{16}, WORD{24}, WORD{32}}) {
        const PackedDib dib(5, 3, bits);
        const DibBlock block(dib);
        const DibView view(block.get());
        ASSERT_TRUE(view) << bits;
        EXPECT_EQ(view.width(), 5U);
        EXPECT_EQ(view.height(), 3U);
        EXPECT_EQ(view.bitsPerPixel(), bits);
        EXPECT_EQ(view.stride(), dib.stride());
        EXPECT_EQ(view.colourCount(), dib.colours.size());
        EXPECT_EQ(view.bits()[0], dib.at(2, 0)) << "the lowest row comes first";
        if (bits <= 8) {
            EXPECT_EQ(view.colours()[1].rgbGreen, dib.colours[1].rgbGreen);
        }
        EXPECT_EQ(lockCount(block.get()), 1U);
    }
}

TEST(DibView, UnlocksTheBlockWhetherItTakesItOrNot) {
    const DibBlock good(PackedDib(5, 3, 8));
    { const DibView view(good.get()); }
    EXPECT_EQ(lockCount(good.get()), 0U);
    const DibBlock bad(Bytes(100));
    {
        const DibView view(bad.get());
        EXPECT_FALSE(view);
        EXPECT_TRUE(view.locked());
    }
    EXPECT_EQ(lockCount(bad.get()), 0U);
}

TEST(DibView, AHandleThatCannotBeLockedIsNoDib) {
    const DibView view(nullptr);
    EXPECT_FALSE(view);
    EXPECT_FALSE(view.locked());
}

TEST(DibView, ACountOfNoColoursStandsForAllOfTheDepth) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}}) {
        PackedDib dib(5, 3, bits);
        dib.header.biClrUsed = 0;
        const DibBlock block(dib);
        const DibView view(block.get());
        ASSERT_TRUE(view) << bits;
        EXPECT_EQ(view.colourCount(), 1U << bits);
        EXPECT_EQ(view.bits()[0], dib.at(2, 0));
    }
}

TEST(DibView, FewerColoursThanTheDepthAndColoursOfTrueColourDibsAreTaken) {
    const PackedDib few(5, 3, 8, manyColours(3));
    const DibBlock fewBlock(few);
    const DibView fewView(fewBlock.get());
    ASSERT_TRUE(fewView);
    EXPECT_EQ(fewView.bits()[0], few.at(2, 0));
    const PackedDib hinted(5, 3, 24, manyColours(300));
    const DibBlock hintedBlock(hinted);
    const DibView hintedView(hintedBlock.get());
    ASSERT_TRUE(hintedView);
    EXPECT_EQ(hintedView.colourCount(), 300U);
    EXPECT_EQ(hintedView.bits()[0], hinted.at(2, 0));
}

TEST(DibView, ALongerHeaderIsTaken) {
    PackedDib dib(5, 3, 4);
    dib.header.biSize = 124;
    const DibBlock block(dib);
    const DibView view(block.get());
    ASSERT_TRUE(view);
    EXPECT_EQ(view.colours()[0].rgbRed, dib.colours[0].rgbRed);
    EXPECT_EQ(view.bits()[0], dib.at(2, 0));
}

// What happens to a good DIB before the view sees it.
struct Damage {
    const char *name;
    void (*apply)(BITMAPINFOHEADER &);
};
constexpr Damage kDamages[] = {
    {"a header of 12 bytes", [](BITMAPINFOHEADER &h) { h.biSize = 12; }},
    {"a header of 39 bytes", [](BITMAPINFOHEADER &h) { h.biSize = 39; }},
    {"a header of no bytes", [](BITMAPINFOHEADER &h) { h.biSize = 0; }},
    {"a header longer than the block", [](BITMAPINFOHEADER &h) { h.biSize = 100000; }},
    {"the longest header", [](BITMAPINFOHEADER &h) { h.biSize = 0xFFFFFFFF; }},
    {"no width", [](BITMAPINFOHEADER &h) { h.biWidth = 0; }},
    {"a negative width", [](BITMAPINFOHEADER &h) { h.biWidth = -5; }},
    {"a width that is too large", [](BITMAPINFOHEADER &h) { h.biWidth = 9; }},
    {"the largest width", [](BITMAPINFOHEADER &h) { h.biWidth = 0x7FFFFFFF; }},
    {"no height", [](BITMAPINFOHEADER &h) { h.biHeight = 0; }},
    {"a negative height", [](BITMAPINFOHEADER &h) { h.biHeight = -3; }},
    {"the least height", [](BITMAPINFOHEADER &h) { h.biHeight = -0x7FFFFFFF - 1; }},
    {"one row too many", [](BITMAPINFOHEADER &h) { h.biHeight = 4; }},
    {"rows for more than 4 GB", [](BITMAPINFOHEADER &h) { h.biHeight = 0x20000000; }},
    {"no planes", [](BITMAPINFOHEADER &h) { h.biPlanes = 0; }},
    {"three planes", [](BITMAPINFOHEADER &h) { h.biPlanes = 3; }},
    {"no depth", [](BITMAPINFOHEADER &h) { h.biBitCount = 0; }},
    {"2 bits", [](BITMAPINFOHEADER &h) { h.biBitCount = 2; }},
    {"a depth that is too large", [](BITMAPINFOHEADER &h) { h.biBitCount = 24; }},
    {"the largest depth", [](BITMAPINFOHEADER &h) { h.biBitCount = 0xFFFF; }},
    {"run-length coding", [](BITMAPINFOHEADER &h) { h.biCompression = 1; }},
    {"bit fields", [](BITMAPINFOHEADER &h) { h.biCompression = 3; }},
    {"257 colours", [](BITMAPINFOHEADER &h) { h.biClrUsed = 257; }},
    {"colours for more than 4 GB", [](BITMAPINFOHEADER &h) { h.biClrUsed = 0x40000001; }},
};

TEST(DibView, EveryPromiseThatAHeaderBreaksIsFound) {
    for (const Damage &damage : kDamages) {
        PackedDib dib(5, 3, 8);
        Bytes bytes = dib.bytes();
        damage.apply(dib.header);
        std::memcpy(bytes.data(), &dib.header, sizeof dib.header);
        const DibBlock block(bytes);
        EXPECT_FALSE(DibView(block.get())) << damage.name;
    }
}

TEST(DibView, EveryCutOfTheBlockIsFound) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{24}}) {
        const Bytes bytes = PackedDib(5, 3, bits).bytes();
        for (std::size_t size = 1; size < bytes.size(); ++size) {
            const DibBlock cut(Bytes(bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)));
            EXPECT_FALSE(DibView(cut.get())) << bits << " bits, " << size;
        }
    }
}

TEST(DibView, WhatTheOwnerWritesLaterMovesNoBound) {
    const DibBlock block(PackedDib(5, 3, 8));
    const DibView view(block.get());
    auto *header = static_cast<BITMAPINFOHEADER *>(GlobalLock(block.get()));
    header->biHeight = 3000;
    header->biClrUsed = 3000;
    GlobalUnlock(block.get());
    EXPECT_EQ(view.height(), 3U);
    EXPECT_EQ(view.colourCount(), 256U);
}

} // namespace
} // namespace vellum::test
