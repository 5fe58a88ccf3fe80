// The fill functions that take lines out of a packed DIB, with records as programs make them.
#include "write/packed_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// Three rows of 8 bytes, bottom first; the byte at (row from the top, column) is 16 * row + column.
const Bytes kRows = {0x20, 0x21, 0x22, 0x23, 0x24, 0x25, 0x26, 0x27, 0x10, 0x11, 0x12, 0x13,
                     0x14, 0x15, 0x16, 0x17, 0x00, 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07};

struct Filling {
    Bytes rows = kRows;
    SaveLineContext context{};
    Bytes line = Bytes(10, BYTE{0xAA});

    explicit Filling(DWORD rowBytes) {
        context.bits = rows.data();
        context.height = 3;
        context.rowBytes = rowBytes;
        context.strideOrUsage = 8;
    }
};

TEST(FillDibLines, TheTopLineIsTheLastRow) {
    Filling filling(3);
    EXPECT_EQ(DllFillTiffLineDIB(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0, 1, 2, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
    EXPECT_EQ(DllFillTiffLineDIB(filling.line.data(), 2, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0x20, 0x21, 0x22, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
    EXPECT_EQ(filling.rows, kRows);
}

TEST(FillDibLines, ThreeByteGroupsChangeFromBlueFirstToRedFirst) {
    Filling filling(6);
    EXPECT_EQ(DllFillTiffLineDIB24Bit(filling.line.data(), 1, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0x12, 0x11, 0x10, 0x15, 0x14, 0x13, 0xAA, 0xAA, 0xAA, 0xAA}));
    EXPECT_EQ(filling.rows, kRows);
}

TEST(FillDibLines, OfSevenBytesTwoPixelsAreExchangedAndTheSeventhIsCopied) {
    Filling filling(7);
    EXPECT_EQ(DllFillTiffLineDIB24Bit(filling.line.data(), 1, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0x12, 0x11, 0x10, 0x15, 0x14, 0x13, 0x16, 0xAA, 0xAA, 0xAA}));
}

TEST(FillDibLines, ForGammaComplementsWhenAskedTo) {
    Filling filling(3);
    filling.context.invert = 7;
    EXPECT_EQ(DllFillTiffLineDIBforGamma(filling.line.data(), 2, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0xDF, 0xDE, 0xDD, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
    filling.context.invert = 0;
    EXPECT_EQ(DllFillTiffLineDIBforGamma(filling.line.data(), 2, &filling.context), 0U);
    EXPECT_EQ(filling.line, (Bytes{0x20, 0x21, 0x22, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA, 0xAA}));
}

TEST(FillDibLines, TheOthersDoNotLookAtInvert) {
    Filling filling(3);
    filling.context.invert = 1;
    DllFillTiffLineDIB(filling.line.data(), 2, &filling.context);
    EXPECT_EQ(filling.line[0], 0x20);
    DllFillTiffLineDIB24Bit(filling.line.data(), 2, &filling.context);
    EXPECT_EQ(filling.line[2], 0x20);
}

TEST(FillDibLines, ALineOutsideTheDibStaysAsItIs) {
    Filling filling(6);
    filling.context.invert = 1;
    const Bytes untouched = filling.line = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    for (const DWORD row : {DWORD{3}, DWORD{4}, DWORD{0x80000000}, DWORD{0xFFFFFFFF}}) {
        EXPECT_EQ(DllFillTiffLineDIB(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(DllFillTiffLineDIBforGamma(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(DllFillTiffLineDIB24Bit(filling.line.data(), row, &filling.context), 0U);
        EXPECT_EQ(filling.line, untouched) << row;
    }
    filling.context.height = 0;
    EXPECT_EQ(DllFillTiffLineDIB24Bit(filling.line.data(), 0, &filling.context), 0U);
    EXPECT_EQ(filling.line, untouched);
}

} // namespace
