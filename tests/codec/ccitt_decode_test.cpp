// What stands between the lines of a CCITT stream: byte boundaries, EOLs, tag bits, fill, EOFB, strips, and the ends of
// streams.
#include "code_stream.h"
#include "support/coded_tiff.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr DWORD kWidth = 20;

BitWriter line(unsigned white, unsigned black) {
    return BitWriter().white(white).black(black).white(kWidth - white - black);
}

std::string picture(std::initializer_list<std::pair<unsigned, unsigned>> rows) {
    std::string text;
    for (const auto &[white, black] : rows) {
        text += (text.empty() ? "" : "\n") + std::string(white, '.') + std::string(black, '#') +
                std::string(kWidth - white - black, '.');
    }
    return text;
}

Decoded decode(const BitWriter &code, DWORD key, DWORD height) {
    return decodeRaw(code.bytes(), {kWidth, height, key});
}

void expectLines(const Decoded &decoded, const std::string &text) {
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(drawn(decoded.lines, kWidth), text);
}

// ------------------------------------------------------------------------------------------------ modified Huffman

TEST(ModifiedHuffman, EveryLineStartsOnAByte) {
    const BitWriter code = line(3, 5).fillToByte().bits(line(7, 2).fillToByte());
    for (const DWORD key : {2UL, VELLUM_KEY_MODIFIED_HUFFMAN}) {
        expectLines(decode(code, key, 2), picture({{3, 5}, {7, 2}}));
    }
}

TEST(ModifiedHuffman, ALineThatFillsItsLastByteIsFollowedByTheNextByte) {
    BitWriter code = line(3, 5); // white 3, black 5, white 12: 4 + 4 + 6 bits
    EXPECT_EQ(code.bitCount(), 14u);
    // white 4 (4 bits), black 4 (3), white 12 (6), white... a line of 16 bits: white 2 (4), black 6 (4), white 12 (6),
    // needs 2 more; so take white 1 (6), black 2 (2), white 17 (6) = 14 and white 1, black 3, white 16 (6+2+6).
    code.fillToByte().bits(line(2, 6)).fillToByte().bits(line(1, 2));
    expectLines(decode(code, VELLUM_KEY_MODIFIED_HUFFMAN, 3), picture({{3, 5}, {2, 6}, {1, 2}}));
}

TEST(ModifiedHuffman, ZerosAndEolsBetweenLinesArePassedOver) {
    const BitWriter code = BitWriter().byte(0).byte(1).bits(line(3, 5).fillToByte()).byte(0).byte(1).bits(line(4, 4));
    expectLines(decode(code, VELLUM_KEY_MODIFIED_HUFFMAN, 2), picture({{3, 5}, {4, 4}}));
}

// ------------------------------------------------------------------------------------------------ Group 3, 1D

TEST(Group3OneDimensional, EolsAndRtcMakeNoLines) {
    BitWriter code;
    code.eol().bits(line(3, 5)).eol().bits(line(7, 2)).eol();
    for (int i = 0; i < 5; ++i) {
        code.eol();
    }
    for (const DWORD key : {VELLUM_KEY_GROUP3_1D, VELLUM_KEY_GROUP3_1D_FILL}) {
        expectLines(decode(code, key, 2), picture({{3, 5}, {7, 2}}));
        // One line more is not there.
        const Decoded longer = decode(code, key, 3);
        EXPECT_EQ(longer.outcome, failedWith(VELLUM_UNEXPECTED_END));
        EXPECT_EQ(drawn(longer.lines, kWidth), picture({{3, 5}, {7, 2}}));
    }
}

TEST(Group3OneDimensional, FillBitsArePartOfTheEolWhateverTheKeySays) {
    BitWriter code;
    code.eolEndingOnByte().bits(line(3, 5)).zeros(37).eol().bits(line(7, 2)).eolEndingOnByte();
    for (const DWORD key : {VELLUM_KEY_GROUP3_1D, VELLUM_KEY_GROUP3_1D_FILL}) {
        expectLines(decode(code, key, 2), picture({{3, 5}, {7, 2}}));
    }
}

TEST(Group3OneDimensional, AStreamWithoutEolsIsDecodedByWidth) {
    expectLines(decode(line(3, 5).bits(line(7, 2)).bits(line(0, 20)), VELLUM_KEY_GROUP3_1D, 3),
                picture({{3, 5}, {7, 2}, {0, 20}}));
}

TEST(Group3OneDimensional, ALineCutShortInABlackRunEndsBlack) {
    const BitWriter code = BitWriter().eol().white(6).eol().bits(line(7, 2)).eol();
    expectLines(decode(code, VELLUM_KEY_GROUP3_1D, 2), picture({{6, 14}, {7, 2}}));
}

TEST(Group3OneDimensional, ALineCutShortInAWhiteRunEndsWhite) {
    const BitWriter code = BitWriter().eol().white(6).black(3).eol().bits(line(7, 2)).eol();
    expectLines(decode(code, VELLUM_KEY_GROUP3_1D, 2), picture({{6, 3}, {7, 2}}));
}

TEST(Group3OneDimensional, AMakeUpCodeAloneIsALine) {
    const BitWriter code = BitWriter().eol().makeup(Colour::White, 64).eol().bits(line(7, 2)).eol();
    expectLines(decode(code, VELLUM_KEY_GROUP3_1D, 2), picture({{0, 0}, {7, 2}}));
}

TEST(Group3OneDimensional, EightZeroBitsBeforeAOneCountAsAnEol) {
    const BitWriter code = BitWriter().white(6).bits("000000001").bits(line(7, 2));
    expectLines(decode(code, VELLUM_KEY_GROUP3_1D, 2), picture({{6, 14}, {7, 2}}));
}

TEST(Group3OneDimensional, ALineCutShortByTheEndOfTheStreamIsNotDelivered) {
    const Decoded decoded = decode(line(3, 5).white(6), VELLUM_KEY_GROUP3_1D, 2);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_UNEXPECTED_END));
    EXPECT_EQ(drawn(decoded.lines, kWidth), picture({{3, 5}}));
}

// ------------------------------------------------------------------------------------------------ Group 3, 2D

TEST(Group3TwoDimensional, TheTagBitTellsTheNextLinesKind) {
    BitWriter code;
    code.eol().bits("1").bits(line(3, 5));
    code.eol().bits("0").vertical(1).vertical(0).vertical(0);
    code.eol().bits("1").bits(line(7, 2));
    code.eol().bits("0").vertical(0).vertical(-1).vertical(0);
    for (int i = 0; i < 6; ++i) {
        code.eol().bits("1");
    }
    for (const DWORD key : {VELLUM_KEY_GROUP3_2D, VELLUM_KEY_GROUP3_2D_FILL}) {
        expectLines(decode(code, key, 4), picture({{3, 5}, {4, 4}, {7, 2}, {7, 1}}));
        EXPECT_EQ(decode(code, key, 5).outcome, failedWith(VELLUM_UNEXPECTED_END));
    }
}

TEST(Group3TwoDimensional, TheFirstLineNeedsNoEol) {
    const BitWriter code = line(3, 5).eol().bits("0").vertical(1).vertical(0).vertical(0);
    expectLines(decode(code, VELLUM_KEY_GROUP3_2D, 2), picture({{3, 5}, {4, 4}}));
}

TEST(Group3TwoDimensional, LinesWithoutEolsAreOneDimensional) {
    expectLines(decode(line(3, 5).bits(line(7, 2)), VELLUM_KEY_GROUP3_2D, 2), picture({{3, 5}, {7, 2}}));
}

TEST(Group3TwoDimensional, TheLastLineNeedsNoEolBehindIt) {
    const BitWriter code =
        BitWriter().eol().bits("1").bits(line(3, 5)).eol().bits("0").vertical(0).vertical(2).bits("1");
    expectLines(decode(code, VELLUM_KEY_GROUP3_2D, 2), picture({{3, 5}, {3, 7}}));
}

TEST(Group3TwoDimensional, AnEolEndsATwoDimensionalLineAtTheWidth) {
    const BitWriter code = BitWriter()
                               .eol()
                               .bits("1")
                               .bits(line(3, 5))
                               .eol()
                               .bits("0")
                               .vertical(0)
                               .eol() // in the black run
                               .bits("1")
                               .bits(line(7, 2));
    expectLines(decode(code, VELLUM_KEY_GROUP3_2D, 3), picture({{3, 5}, {3, 17}, {7, 2}}));
}

TEST(Group3TwoDimensional, AnEolInAHorizontalRunEndsTheLineToo) {
    const BitWriter code = BitWriter()
                               .eol()
                               .bits("1")
                               .bits(line(3, 5))
                               .eol()
                               .bits("0")
                               .bits(kHorizontal)
                               .white(2)
                               .eol()
                               .bits("1")
                               .bits(line(7, 2));
    expectLines(decode(code, VELLUM_KEY_GROUP3_2D, 3), picture({{3, 5}, {2, 18}, {7, 2}}));
}

TEST(Group3TwoDimensional, EmptyLinesAreNotDeliveredAndLeaveTheReference) {
    BitWriter code;
    code.eol().bits("1").bits(line(3, 5)).eol().bits("1").eol().bits("0").eol().bits("0");
    code.vertical(1).vertical(0).vertical(0);
    expectLines(decode(code, VELLUM_KEY_GROUP3_2D, 2), picture({{3, 5}, {4, 4}}));
}

TEST(Group3TwoDimensional, SevenZerosAndAOneAreAnError) {
    const BitWriter code = BitWriter().eol().bits("1").bits(line(3, 5)).eol().bits("0").bits("00000001").byte(0xFF);
    EXPECT_EQ(decode(code, VELLUM_KEY_GROUP3_2D, 2).outcome, failedWith(VELLUM_CODE_ERROR));
}

// ------------------------------------------------------------------------------------------------ Group 4

TEST(Group4, AnEofbBeforeTheLastLineIsUnexpected) {
    BitWriter code;
    for (int i = 0; i < 10; ++i) {
        code.vertical(0);
    }
    const Decoded decoded = decode(code.eofb(), VELLUM_KEY_GROUP4, 20);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_EOFB_UNEXPECTED));
    EXPECT_EQ(decoded.lineCount, 10u);
}

TEST(Group4, AnEofbInsideALineIsUnexpectedToo) {
    const BitWriter code = BitWriter().horizontal(Colour::White, 3, 2).eofb();
    EXPECT_EQ(decode(code, VELLUM_KEY_GROUP4, 2).outcome, failedWith(VELLUM_EOFB_UNEXPECTED));
}

TEST(Group4, HalfAnEofbIsDamage) {
    EXPECT_EQ(decode(BitWriter().vertical(0).eol().bits("111111111111"), VELLUM_KEY_GROUP4, 2).outcome,
              failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(decode(BitWriter().vertical(0).bits("000000000010").byte(0xFF), VELLUM_KEY_GROUP4, 2).outcome,
              failedWith(VELLUM_CODE_ERROR));
}

TEST(Group4, AMissingEofbBehindTheLastLineIsNoError) {
    expectLines(decode(BitWriter().vertical(0).vertical(0), VELLUM_KEY_GROUP4, 2), picture({{0, 0}, {0, 0}}));
}

TEST(Group4, TheLastCodeMayEndInTheLastByte) {
    BitWriter code;
    for (int i = 0; i < 16; ++i) {
        code.vertical(0);
    }
    EXPECT_EQ(code.bytes().size(), 2u);
    const Decoded whole = decode(code, VELLUM_KEY_GROUP4, 16);
    EXPECT_EQ(whole.outcome, kDecoded);
    EXPECT_EQ(whole.lineCount, 16u);
    const Decoded longer = decode(code, VELLUM_KEY_GROUP4, 17);
    EXPECT_EQ(longer.outcome, failedWith(VELLUM_UNEXPECTED_END));
    EXPECT_EQ(longer.lineCount, 16u);
}

// ------------------------------------------------------------------------------------------------ all codings

struct Coding {
    DWORD key;
    Bytes (*encode)(const Rows &);
};

const Coding kCodings[] = {
    {VELLUM_KEY_MODIFIED_HUFFMAN, [](const Rows &rows) { return encodeModifiedHuffman(rows); }},
    {VELLUM_KEY_GROUP3_1D, [](const Rows &rows) { return encodeGroup3(rows); }},
    {VELLUM_KEY_GROUP3_1D_FILL, [](const Rows &rows) { return encodeGroup3(rows, {.fill = true}); }},
    {VELLUM_KEY_GROUP3_2D, [](const Rows &rows) { return encodeGroup3TwoDimensional(rows, 4); }},
    {VELLUM_KEY_GROUP3_2D_FILL, [](const Rows &rows) { return encodeGroup3TwoDimensional(rows, 2, {.fill = true}); }},
    {VELLUM_KEY_GROUP4, [](const Rows &rows) { return encodeGroup4(rows); }},
};

class EveryCoding : public testing::TestWithParam<Coding> {};

TEST_P(EveryCoding, PicturesOfOddWidthsComeBackInBothBitOrders) {
    for (const unsigned width : {1U, 9U, 33U, 131U, 1727U, 6001U}) {
        const Rows rows = textLikeRows(width, 60, width + 3);
        const Bytes code = GetParam().encode(rows);
        const Decoded decoded = decodeRaw(code, {width, 60, GetParam().key});
        EXPECT_EQ(decoded.outcome, kDecoded) << width;
        EXPECT_EQ(decoded.lines, packRows(rows)) << width;
        const Decoded reversed = decodeRaw(reverseBits(code), {width, 60, GetParam().key, 2});
        EXPECT_EQ(reversed.outcome, kDecoded) << width;
        EXPECT_EQ(reversed.lines, packRows(rows)) << width;
    }
}

TEST_P(EveryCoding, CodeLongerThanTheCodeBufferIsReadOn) {
    const Rows rows = textLikeRows(2500, 900, 77);
    const Bytes code = GetParam().encode(rows);
    ASSERT_GT(code.size(), 2u * 32767u);
    const Decoded decoded = decodeRaw(code, {2500, 900, GetParam().key});
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRows(rows));
}

TEST_P(EveryCoding, EveryStripStandsByItself) {
    // Seven lines a strip, each strip with garbage bits behind its last code word.
    const Rows rows = textLikeRows(131, 31, 5);
    std::vector<std::vector<BYTE>> strips;
    for (std::size_t from = 0; from < rows.size(); from += 7) {
        const std::size_t to = std::min(rows.size(), from + 7);
        Bytes code = GetParam().encode(
            Rows(rows.begin() + static_cast<std::ptrdiff_t>(from), rows.begin() + static_cast<std::ptrdiff_t>(to)));
        code.insert(code.end(), {0x5A, 0xFF, 0x00});
        strips.push_back(code);
    }
    CodedPage page;
    page.width = 131;
    page.height = 31;
    page.key = GetParam().key;
    page.rowsPerStrip = 7;
    const OpenedTiff tiff(codedTiff(page, strips));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_EQ(log.data, packRows(rows));
}

TEST_P(EveryCoding, EveryCutGivesTheLinesBeforeIt) {
    const Rows rows = textLikeRows(131, 12, 9);
    const Bytes code = GetParam().encode(rows);
    const Bytes expected = packRows(rows);
    DWORD most = 0;
    for (std::size_t length = 0; length <= code.size(); ++length) {
        const Bytes cut(code.begin(), code.begin() + static_cast<std::ptrdiff_t>(length));
        const Decoded decoded = decodeRaw(cut, {131, 12, GetParam().key});
        ASSERT_GE(decoded.lineCount, most) << length;
        most = decoded.lineCount;
        const Bytes start(expected.begin(), expected.begin() + static_cast<std::ptrdiff_t>(decoded.lines.size()));
        ASSERT_EQ(decoded.lines, start) << length;
        if (decoded.lineCount < 12) {
            ASSERT_EQ(decoded.outcome, failedWith(length == 0 ? VELLUM_IO_ERROR : VELLUM_UNEXPECTED_END)) << length;
        } else {
            ASSERT_EQ(decoded.outcome, kDecoded) << length;
        }
    }
    EXPECT_EQ(most, 12u);
}

INSTANTIATE_TEST_SUITE_P(Ccitt, EveryCoding, testing::ValuesIn(kCodings),
                         [](const auto &coding) { return "Key" + std::to_string(coding.param.key); });

} // namespace
} // namespace vellum::test
