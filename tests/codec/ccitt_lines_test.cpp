// Group 4 and modified Huffman lines, code word by code word: what every mode does, and what odd code gives.
#include "code_stream.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

std::string group4(const BitWriter &code, DWORD width, DWORD height) {
    const Decoded decoded = decodeRaw(code.bytes(), {width, height});
    EXPECT_EQ(decoded.outcome, kDecoded);
    return drawn(decoded.lines, width);
}

Outcome group4Error(const BitWriter &code, DWORD width, DWORD height) {
    return decodeRaw(code.bytes(), {width, height}).outcome;
}

// A first line that the tests' second lines refer to: 5 white, 6 black, the rest white.
BitWriter referenceLine() {
    return BitWriter().horizontal(Colour::White, 5, 6).vertical(0);
}

TEST(Group4Line, FirstReferenceLineIsWhite) {
    EXPECT_EQ(group4(BitWriter().vertical(0), 12, 1), "............");
}

TEST(Group4Line, HorizontalModeCodesTwoRuns) {
    EXPECT_EQ(group4(referenceLine(), 16, 1), ".....######.....");
}

TEST(Group4Line, HorizontalRunsReadBothColoursAlsoWhenTheFirstReachesTheWidth) {
    EXPECT_EQ(group4(BitWriter().horizontal(Colour::White, 16, 0).vertical(0), 16, 2),
              "................\n................");
}

TEST(Group4Line, VerticalModesShiftTheEdgesOfTheReference) {
    for (int shift = -3; shift <= 3; ++shift) {
        const BitWriter code = referenceLine().vertical(shift).vertical(-shift).vertical(0);
        const std::string start(static_cast<std::size_t>(5 + shift), '.');
        const std::string black(static_cast<std::size_t>(6 - 2 * shift), '#');
        EXPECT_EQ(group4(code, 16, 2), ".....######.....\n" + start + black + start) << shift;
    }
}

TEST(Group4Line, PassModeSkipsARunOfTheReference) {
    EXPECT_EQ(group4(referenceLine().pass().vertical(0), 16, 2), ".....######.....\n................");
}

TEST(Group4Line, PassModeKeepsTheColour) {
    // 14 white and 1 black, counted from the b2 that the pass mode left.
    EXPECT_EQ(group4(referenceLine().pass().horizontal(Colour::White, 3, 1).vertical(0), 16, 2),
              ".....######.....\n..............#.");
}

TEST(Group4Line, AShiftToTheLeftLooksBackOnTheReference) {
    // The reference has edges at 4, 5, 6, 7; a1 = 3 by VL1 from 4, then b1 for the black run is the white edge at 5.
    const BitWriter code = BitWriter()
                               .horizontal(Colour::White, 4, 1)
                               .horizontal(Colour::White, 1, 1)
                               .vertical(0)
                               .vertical(-1)
                               .vertical(0)
                               .vertical(0)
                               .vertical(0)
                               .vertical(0);
    EXPECT_EQ(group4(code, 10, 2), "....#.#...\n...##.#...");
}

TEST(Group4Line, ABlackRunThatEndsBeforeItsStartIsOnePixelLong) {
    // Reference edges at 5 and 6; a1 = 5 + 3, then b1 = 16 (nothing right of 8) ... so lead back by a reference that
    // ends at 9: VL3 from 9 gives 6, left of the start at 8.
    const BitWriter code = BitWriter()
                               .horizontal(Colour::White, 5, 4) // edges 5, 9
                               .vertical(0)
                               .vertical(3)  // black from 8
                               .vertical(-3) // to 6
                               .vertical(0);
    const Decoded decoded = decodeRaw(code.bytes(), {16, 2});
    EXPECT_EQ(drawn(decoded.lines, 16).substr(0, 33 - 6), ".....####.......\n........#.");
}

TEST(Group4Line, RunsBeyondTheWidthEndAtTheWidth) {
    const Decoded decoded =
        decodeRaw(BitWriter().horizontal(Colour::White, 3, 2560).vertical(0).vertical(0).bytes(), {11, 2});
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, (Bytes{0x1F, 0xE0, 0x1F, 0xE0})) << "bits behind the width stay 0";
}

TEST(Group4Line, PositionsLeftOfTheLineAreDrawnFromItsStart) {
    // The reference begins black at 0; VL1 leads to -1.
    const BitWriter code = BitWriter().horizontal(Colour::White, 0, 4).vertical(0).vertical(-1).vertical(0).vertical(0);
    EXPECT_EQ(group4(code, 8, 2), "####....\n####....");
}

TEST(Group4Line, EmptyRunsStayChangingElementsOfTheReference) {
    // Line 1 is white all over, but with an empty black run at 4: V0 twice finds both of its edges there.
    const BitWriter code = BitWriter()
                               .horizontal(Colour::White, 4, 0)
                               .vertical(0)
                               .vertical(0) // black from 4
                               .vertical(3) // the white edge right of 4 is the width's
        ;
    const Decoded decoded = decodeRaw(code.bytes(), {12, 2});
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(drawn(decoded.lines, 12), "............\n....########");
}

TEST(Group4Line, ExtensionsAreErrors) {
    EXPECT_EQ(group4Error(referenceLine().bits("0000001111"), 16, 2), failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(group4Error(referenceLine().bits("0000001000"), 16, 2), failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(group4Error(referenceLine().bits("00000001").byte(0), 16, 2), failedWith(VELLUM_CODE_ERROR));
}

TEST(Group4Line, EightZeroBitsInARunAreAnError) {
    EXPECT_EQ(group4Error(referenceLine().bits("001").zeros(40), 16, 2), failedWith(VELLUM_CODE_ERROR));
}

TEST(Group4Line, CodeThatEndsInsideARunIsAnEarlyEnd) {
    EXPECT_EQ(group4Error(referenceLine().bits("001"), 16, 2), failedWith(VELLUM_UNEXPECTED_END));
}

TEST(Group4Line, AnyNumberOfChangingElementsDecodes) {
    // Far more than the 5008 of an ordinary page: a line of single pixels, then empty runs without end.
    constexpr unsigned kWidth = 20001;
    BitWriter code;
    for (unsigned x = 0; x + 1 < kWidth; x += 2) {
        code.horizontal(Colour::White, 1, 1);
    }
    code.vertical(0);
    BitWriter empties;
    for (int i = 0; i < 30000; ++i) {
        empties.horizontal(Colour::White, 0, 0);
    }
    empties.horizontal(Colour::White, kWidth, 0);
    const Decoded decoded = decodeRaw(code.bits(empties).bytes(), {kWidth, 2});
    ASSERT_EQ(decoded.outcome, kDecoded);
    const std::string text = drawn(decoded.lines, kWidth);
    for (unsigned x = 0; x < kWidth; ++x) {
        ASSERT_EQ(text[x], x % 2 == 1 ? '#' : '.') << x;
    }
    EXPECT_EQ(text.find('#', kWidth), std::string::npos);
}

TEST(Group4Line, TheNaiveEncodersPicturesComeBack) {
    for (const unsigned width : {1U, 2U, 7U, 8U, 9U, 31U, 33U, 64U, 131U, 1727U, 2561U, 5200U}) {
        const Rows rows = textLikeRows(width, 40, width * 7 + 1);
        const Decoded decoded = decodeRaw(encodeGroup4(rows), {width, 40});
        EXPECT_EQ(decoded.outcome, kDecoded) << width;
        EXPECT_EQ(decoded.lines, packRows(rows)) << width;
    }
}

TEST(OneDimensionalLine, MakeUpCodesAddUp) {
    // 2561 = 2560 + 1; 5200 takes two make-up codes of 2560.
    Row row(5200 + 2561);
    row.resize(5200, false);
    row.resize(5200 + 2561, true);
    const auto width = static_cast<DWORD>(row.size());
    const Decoded decoded = decodeRaw(encodeModifiedHuffman({row, row}), {width, 2, VELLUM_KEY_MODIFIED_HUFFMAN});
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRows({row, row}));
}

TEST(OneDimensionalLine, ARunOfMoreThanTheWidthEndsAtTheWidth) {
    BitWriter code;
    code.white(3);
    for (int i = 0; i < 2000; ++i) {
        code.makeup(Colour::Black, 2560);
    }
    code.black(1);
    const Decoded decoded = decodeRaw(code.bytes(), {10, 1, VELLUM_KEY_GROUP3_1D});
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(drawn(decoded.lines, 10), "...#######");
}

} // namespace
} // namespace vellum::test
