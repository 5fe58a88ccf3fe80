// The CCITT encoders: every bit that they write between lines, around strips and at the end of an image, on small
// pages; then random pages beside a naive writer and back through the decoders.
#include "encoded_page.h"

#include "code_stream.h"
#include "support/coded_tiff.h"
#include "support/faults.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <utility>

namespace vellum::test {
namespace {

// Two lines, ten pixels: 3 white, 4 black, 3 white; then 2 white, 5 black, 3 white.
const Row kFirst = rowFromRuns({3, 4, 3});
const Row kSecond = rowFromRuns({2, 5, 3});
constexpr const char *kFirstRuns = "1000 011 1000";
constexpr const char *kSecondRuns = "0111 0011 1000";
constexpr const char *kSecondBelowFirst = "010 1 1";         // VL1, V0, V0
constexpr const char *kFirstBelowWhite = "001 1000 011 1";   // horizontal 3 white, 4 black; V0
constexpr const char *kSecondBelowWhite = "001 0111 0011 1"; // horizontal 2 white, 5 black; V0
constexpr const char *kFirstBelowSecond = "011 1 1";         // VR1, V0, V0
constexpr const char *kEolText = "000000000001";

Bytes bits(std::initializer_list<std::string_view> texts) {
    BitWriter out;
    for (const std::string_view text : texts) {
        out.bits(text);
    }
    return out.bytes();
}

Encoded encodeRows(const Rows &rows, DWORD key, DWORD rowsPerStrip = 0) {
    return encodePage({.rows = rows, .key = key, .rowsPerStrip = rowsPerStrip});
}

// ---------------------------------------------------------------- modified Huffman

TEST(ModifiedHuffmanEncoder, EveryLineStartsOnAByteAndThereAreNoEols) {
    for (const DWORD key : {DWORD{2}, DWORD{VELLUM_KEY_MODIFIED_HUFFMAN}}) {
        const Encoded encoded = encodeRows({kFirst, kSecond}, key);
        EXPECT_EQ(encoded.error, Error::None);
        EXPECT_EQ(encoded.stream, bits({kFirstRuns, "00000", kSecondRuns}));
        EXPECT_EQ(encoded.counts, std::vector<DWORD>{4});
    }
}

TEST(ModifiedHuffmanEncoder, ALineOfWidth1TakesAWholeByte) {
    EXPECT_EQ(encodeRows({{false}, {true}, {false}}, 2).stream, bits({"000111 00", "00110101 010 00000", "000111 00"}));
}

TEST(ModifiedHuffmanEncoder, ALineThatBeginsBlackHasAWhiteRunOf0InFront) {
    EXPECT_EQ(encodeRows({rowFromRuns({0, 8})}, 2).stream, bits({"00110101", "000101"}));
}

TEST(ModifiedHuffmanEncoder, RunsBeyond2560RepeatItsMakeUpCode) {
    const auto white = [](unsigned width) { return encodeRows({Row(width)}, 2).stream; };
    EXPECT_EQ(white(63), bits({"00110100"}));
    EXPECT_EQ(white(64), bits({"11011 00110101"}));
    EXPECT_EQ(white(1728), bits({"010011011 00110101"}));
    EXPECT_EQ(white(1792), bits({"00000001000 00110101"}));
    EXPECT_EQ(white(2559), bits({"000000011110 00110100"}));
    EXPECT_EQ(white(2560), bits({"000000011111 00110101"}));
    EXPECT_EQ(white(2561), bits({"000000011111 000111"}));
    EXPECT_EQ(white(2560 + 64), bits({"000000011111 11011 00110101"}));
    EXPECT_EQ(white(5120), bits({"000000011111 000000011111 00110101"}));
    EXPECT_EQ(white(5121), bits({"000000011111 000000011111 000111"}));
    EXPECT_EQ(encodeRows({rowFromRuns({0, 2561})}, 2).stream, bits({"00110101 000000011111 010"}));
}

// ---------------------------------------------------------------- Group 3, one-dimensional

TEST(Group3OneDimensionalEncoder, HasAnEolBeforeEveryLineAndFiveBehindTheLast) {
    const Encoded encoded = encodeRows({kFirst, kSecond}, VELLUM_KEY_GROUP3_1D);
    EXPECT_EQ(encoded.stream,
              bits({kEolText, kFirstRuns, kEolText, kSecondRuns, kEolText, kEolText, kEolText, kEolText, kEolText}));
    EXPECT_EQ(encoded.counts, std::vector<DWORD>{DWORD{(12 + 11 + 12 + 12 + 60 + 7) / 8}});
}

TEST(Group3OneDimensionalEncoder, FillBitsMakeEveryEolEndOnAByte) {
    const std::string_view padded = "0000 000000000001";
    EXPECT_EQ(encodeRows({kFirst, kSecond}, VELLUM_KEY_GROUP3_1D_FILL).stream,
              // 11 bits of runs use 3 of a byte, which leaves room for the EOL's first 4; 12 bits use 4, just so.
              bits({padded, kFirstRuns, "0", kEolText, kSecondRuns, kEolText, padded, padded, padded, padded}));
}

TEST(Group3OneDimensionalEncoder, MoreThanFourUsedBitsMoveTheEolToTheNextByte) {
    // 5 bits of runs: 7 zeros in front of the EOL.
    const Row row = rowFromRuns({17});
    EXPECT_EQ(encodeRows({row}, VELLUM_KEY_GROUP3_1D_FILL).stream,
              bits({"0000 000000000001", "101011", "000000 000000000001", "0000 000000000001", "0000 000000000001",
                    "0000 000000000001", "0000 000000000001"}));
}

TEST(Group3OneDimensionalEncoder, AStripThatIsNotTheLastEndsOnAByteWithoutEols) {
    const Encoded encoded = encodeRows({kFirst, kSecond, kFirst}, VELLUM_KEY_GROUP3_1D, 2);
    ASSERT_EQ(encoded.closed, 2U);
    EXPECT_EQ(encoded.strip(0), bits({kEolText, kFirstRuns, kEolText, kSecondRuns}));
    EXPECT_EQ(encoded.strip(1), bits({kEolText, kFirstRuns, kEolText, kEolText, kEolText, kEolText, kEolText}));
    EXPECT_EQ(encoded.stream, joined(encoded.strips()));
}

// ---------------------------------------------------------------- Group 3, two-dimensional

std::string ends(const char *tagged) {
    std::string text;
    for (int i = 0; i < 6; ++i) {
        text += tagged;
    }
    return text;
}
constexpr const char *kEol1 = "0000000000011";
constexpr const char *kEol0 = "0000000000010";

TEST(Group3TwoDimensionalEncoder, TagsSayHowTheNextLineIsCodedAndSixEndThePageOnAFreshByte) {
    const Encoded encoded = encodeRows({kFirst, kSecond, kFirst}, VELLUM_KEY_GROUP3_2D);
    // 13 + 11 + 13 + 5 + 13 + 11 + 13 = 79 bits
    EXPECT_EQ(encoded.stream,
              bits({kEol1, kFirstRuns, kEol0, kSecondBelowFirst, kEol1, kFirstRuns, kEol0, "0", ends(kEol1)}));
    EXPECT_EQ(encoded.counts, std::vector<DWORD>{10 + 10});
}

TEST(Group3TwoDimensionalEncoder, FillBitsMakeEveryEolAndTagEndOnAByte) {
    // Before the tagged EOL 3 bits of a byte are used: none to add behind 11 bits, 6 behind 5 bits.
    EXPECT_EQ(encodeRows({kFirst, kSecond}, VELLUM_KEY_GROUP3_2D_FILL).stream,
              bits({"000", kEol1, kFirstRuns, kEol0, kSecondBelowFirst, "000000", kEol1, ends("000 0000000000011")}));
}

TEST(Group3TwoDimensionalEncoder, EveryStripBeginsWithAnEolAndAOneDimensionalLine) {
    const Encoded encoded = encodeRows({kFirst, kSecond, kFirst}, VELLUM_KEY_GROUP3_2D, 1);
    ASSERT_EQ(encoded.closed, 3U);
    EXPECT_EQ(encoded.strip(0), bits({kEol1, kFirstRuns}));
    EXPECT_EQ(encoded.strip(1), bits({kEol1, kSecondRuns}));
    EXPECT_EQ(encoded.strip(2), bits({kEol1, kFirstRuns, kEol0, "000", ends(kEol1)}));
    EXPECT_EQ(encoded.stream, joined(encoded.strips()));

    const Encoded pairs = encodeRows({kFirst, kSecond, kFirst}, VELLUM_KEY_GROUP3_2D_FILL, 2);
    ASSERT_EQ(pairs.closed, 2U);
    EXPECT_EQ(pairs.strip(0), bits({"000", kEol1, kFirstRuns, kEol0, kSecondBelowFirst}));
    EXPECT_EQ(pairs.strip(1), bits({"000", kEol1, kFirstRuns, kEol0, ends("000 0000000000011")}));
}

TEST(Group3TwoDimensionalEncoder, EveryKthLineOfAStripIsOneDimensional) {
    const KFactor k(4);
    const Encoded encoded = encodeRows({kFirst, kSecond, kFirst, kSecond, kFirst, kSecond}, VELLUM_KEY_GROUP3_2D);
    EXPECT_EQ(encoded.stream,
              bits({kEol1, kFirstRuns, kEol0, kSecondBelowFirst, kEol0, kFirstBelowSecond, kEol0, kSecondBelowFirst,
                    kEol1, kFirstRuns, kEol0, kSecondBelowFirst, kEol0, "000", ends(kEol1)}));
}

TEST(SetKfactor, TakesNothingBelow2) {
    EXPECT_EQ(library.kFactor, 2) << "before it is set";
    const KFactor k(3);
    EXPECT_EQ(library.kFactor, 3);
    for (const LONG refused : {1L, 0L, -1L, -2147483647L}) {
        EXPECT_EQ(SetKfactor(static_cast<LONG>(refused)), 0U);
        EXPECT_EQ(library.kFactor, 3);
    }
    EXPECT_EQ(SetKfactor(2), 1U);
    EXPECT_EQ(library.kFactor, 2);
    EXPECT_EQ(SetKfactor(0x7FFFFFFF), 1U);
    EXPECT_EQ(library.kFactor, 0x7FFFFFFF);
}

// ---------------------------------------------------------------- Group 4

TEST(Group4Encoder, CodesEveryLineBelowTheOneBeforeAndEndsWithEofb) {
    const Encoded encoded = encodeRows({kFirst, kSecond}, VELLUM_KEY_GROUP4);
    EXPECT_EQ(encoded.stream, bits({kFirstBelowWhite, kSecondBelowFirst, kEolText, kEolText}));
    EXPECT_EQ(encoded.counts, std::vector<DWORD>{5});
}

TEST(Group4Encoder, EveryStripBeginsBelowAWhiteLineAndHasItsOwnEofb) {
    const Encoded encoded = encodeRows({kFirst, kSecond}, VELLUM_KEY_GROUP4, 1);
    ASSERT_EQ(encoded.closed, 2U);
    EXPECT_EQ(encoded.strip(0), bits({kFirstBelowWhite, kEolText, kEolText}));
    EXPECT_EQ(encoded.strip(1), bits({kSecondBelowWhite, kEolText, kEolText}));
    EXPECT_EQ(encoded.stream, joined(encoded.strips()));
}

// The code of one line below another one.
Bytes below(const Row &reference, const Row &row) {
    return encodeRows({reference, row}, VELLUM_KEY_GROUP4).stream;
}
Bytes horizontalThen(std::string_view first, std::string_view second) {
    return bits({first, second, kEolText, kEolText});
}

TEST(Group4Encoder, ChoosesTheModesOfT6) {
    const Row reference = rowFromRuns({10, 5, 15});
    const std::string_view top = "001 00111 0011 1"; // horizontal 10 white, 5 black; V0
    EXPECT_EQ(below(reference, Row(30)), horizontalThen(top, "0001 1")) << "pass, V0 at the end";
    EXPECT_EQ(below(reference, rowFromRuns({7, 11, 12})), horizontalThen(top, "0000010 0000011 1")) << "VL3, VR3";
    EXPECT_EQ(below(reference, rowFromRuns({13, 0, 17})), horizontalThen(top, "0001 1"));
    EXPECT_EQ(below(reference, rowFromRuns({13, 4, 13})), horizontalThen(top, "0000011 000011 1")) << "VR3, VR2";
    EXPECT_EQ(below(reference, rowFromRuns({6, 8, 16})), horizontalThen(top, "001 1110 000101 1"))
        << "four pixels are too far";
    EXPECT_EQ(below(reference, rowFromRuns({15, 5, 10})), horizontalThen(top, "001 110101 0011 1"))
        << "b2 at a1 is no pass";
    EXPECT_EQ(below(reference, rowFromRuns({16, 5, 9})), horizontalThen(top, "0001 001 000111 0011 1"))
        << "b2 left of a1 is one; the run goes on behind it";
    EXPECT_EQ(below(reference, rowFromRuns({0, 30})), horizontalThen(top, "001 00110101 000001101000"))
        << "the run to the end of the line is the second one";
    EXPECT_EQ(below(rowFromRuns({0, 3, 27}), rowFromRuns({0, 4, 26})), horizontalThen("001 00110101 10 1", "1 011 1"))
        << "the first pixel may be b1";
    EXPECT_EQ(below(Row(30), rowFromRuns({2, 1, 27})), horizontalThen("1", "001 0111 010 1"));
}

TEST(Group4Encoder, LinesThatBeginBlackMayBeCodedVertically) {
    EXPECT_EQ(below(Row(9, true), Row(9, true)), horizontalThen("001 00110101 000100", "1 1"));
    EXPECT_EQ(below(rowFromRuns({2, 7}), Row(9, true)), horizontalThen("001 0111 00011", "000010 1"));
}

// ---------------------------------------------------------------- all of them

TEST(CcittEncoders, AgreeWithTheNaiveWriterAtEveryWidth) {
    for (DWORD width = 1; width <= 300; ++width) {
        Random random(width);
        const Rows rows = randomRows(random, width, 5);
        for (const DWORD key : kCcittKeys) {
            const EncodePage page{.rows = rows, .key = key, .rowsPerStrip = width % 6};
            const Encoded encoded = encodePage(page);
            ASSERT_EQ(encoded.error, Error::None);
            ASSERT_EQ(encoded.strips(), expectedStrips(page)) << keyName(key) << ", width " << width;
            ASSERT_EQ(encoded.stream, joined(encoded.strips()));
            ASSERT_EQ(encoded.asked, rows.size());
        }
    }
}

TEST(CcittEncoders, AgreeWithTheNaiveWriterOnRandomPages) {
    for (DWORD seed = 0; seed < 40; ++seed) {
        Random random(seed);
        const DWORD width = 500 + random.below(3000);
        const Rows rows = randomRows(random, width, 12);
        const KFactor k(static_cast<LONG>(2 + seed % 3));
        for (const DWORD key : kCcittKeys) {
            const EncodePage page{.rows = rows,
                                  .key = key,
                                  .rowsPerStrip = random.below(13),
                                  .fillOrder = 1 + seed % 2,
                                  .before = Bytes(seed % 5, BYTE{9})};
            const Encoded encoded = encodePage(page);
            ASSERT_EQ(encoded.error, Error::None);
            ASSERT_EQ(encoded.strips(), expectedStrips(page, 2 + seed % 3)) << keyName(key) << ", seed " << seed;
            ASSERT_EQ(encoded.offsets[0], page.before.size());
        }
    }
}

TEST(CcittEncoders, TheDecodersGiveEveryPageBack) {
    for (DWORD seed = 0; seed < 24; ++seed) {
        Random random(1000 + seed);
        const DWORD width = 1 + random.below(seed % 2 == 0 ? 70 : 1800);
        const Rows rows = randomRows(random, width, 20);
        for (const DWORD key : kCcittKeys) {
            const DWORD rowsPerStrip = seed % 4 == 3 ? 0 : 1 + random.below(20);
            const DWORD fillOrder = 1 + random.below(2);
            const Encoded encoded =
                encodePage({.rows = rows, .key = key, .rowsPerStrip = rowsPerStrip, .fillOrder = fillOrder});
            const OpenedTiff tiff(codedTiff({.width = width,
                                             .height = static_cast<DWORD>(rows.size()),
                                             .key = key,
                                             .rowsPerStrip = rowsPerStrip == 0 ? 20 : rowsPerStrip,
                                             .fillOrder = fillOrder},
                                            encoded.strips()));
            ASSERT_TRUE(registerImage(tiff.get(), 0));
            LineLog log;
            ASSERT_EQ(decodeInto(log, tiff.get(), 0), kDecoded) << keyName(key) << ", seed " << seed;
            ASSERT_EQ(log.data, packRows(rows)) << keyName(key) << ", seed " << seed;
        }
    }
}

TEST(CcittEncoders, TheWidestLineHas33280Pixels) {
    Random random(7);
    const Rows rows = {Row(33280), Row(33280, true), randomRow(random, 33280, 300), randomRow(random, 33280, 9000)};
    for (const DWORD key : kCcittKeys) {
        const EncodePage page{.rows = rows, .key = key};
        EXPECT_EQ(encodePage(page).strips(), expectedStrips(page)) << keyName(key);
    }
    const EncodePage dense{.rows = {randomRow(random, 33280, 1), randomRow(random, 33280, 2)}, .key = 2};
    EXPECT_EQ(encodePage(dense).strips(), expectedStrips(dense)) << "a change at every pixel";
}

constexpr CcittEncoder kEncoders[] = {vellum::encodeOneDimensional, vellum::encodeGroup3TwoDimensional,
                                      vellum::encodeGroup4, vellum::encodeBlockFramedMmr};

TEST(CcittEncoders, WiderLinesAreRefusedBeforeOneIsFetched) {
    for (const CcittEncoder encoder : kEncoders) {
        const Encoded encoded = encodePage({.rows = {Row(33281)}, .key = VELLUM_KEY_GROUP3_1D}, encoder);
        EXPECT_EQ(encoded.error, Error::BadCode);
        EXPECT_EQ(encoded.asked, 0U);
        EXPECT_TRUE(encoded.stream.empty());
    }
}

TEST(CcittEncoders, AWidthThatItsLinesDoNotHoldIsRefused) {
    for (const CcittEncoder encoder : kEncoders) {
        for (const auto &[width, bytes] : {std::pair{17, 2}, std::pair{-1, 2}, std::pair{8, -1}}) {
            CodecState state{};
            state.image.biWidth = width;
            state.image.biHeight = 1;
            state.bytesPerLine = bytes;
            EXPECT_EQ(encoder(state), Error::BadCode);
            EXPECT_EQ(state.bufferBlock, nullptr);
        }
    }
}

TEST(CcittEncoders, AnImageWithoutPixelsIsDoneWithoutALine) {
    for (const CcittEncoder encoder : kEncoders) {
        for (const Rows &rows : {Rows{}, Rows{Row(), Row()}}) {
            const Encoded encoded = encodePage({.rows = rows, .key = VELLUM_KEY_GROUP3_1D}, encoder);
            EXPECT_EQ(encoded.error, Error::None);
            EXPECT_EQ(encoded.asked, 0U);
            EXPECT_TRUE(encoded.stream.empty());
        }
    }
}

// ---------------------------------------------------------------- ends before the end

TEST(EncodersEndingEarly, AnImageMayHaveFewerLines) {
    Random random(3);
    const Rows rows = randomRows(random, 100, 6);
    for (const DWORD key : kCcittKeys) {
        for (DWORD there = 1; there < 6; ++there) {
            const Rows shorter(rows.begin(), rows.begin() + static_cast<std::ptrdiff_t>(there));
            const Encoded encoded = encodePage({.rows = rows, .key = key, .linesThere = there});
            EXPECT_EQ(encoded.error, Error::None);
            EXPECT_EQ(encoded.stream, expectedStrip(shorter, key, true)) << keyName(key) << ", lines " << there;
            EXPECT_EQ(encoded.asked, there + 1);
        }
    }
}

TEST(EncodersEndingEarly, NothingFollowsAStripThatTurnsOutToBeTheLast) {
    Random random(4);
    const Rows rows = randomRows(random, 100, 6);
    const Rows half(rows.begin(), rows.begin() + 3);
    for (const DWORD key : kCcittKeys) {
        const Encoded encoded = encodePage({.rows = rows, .key = key, .rowsPerStrip = 3, .linesThere = 3});
        EXPECT_EQ(encoded.error, Error::None);
        EXPECT_EQ(encoded.closed, 1U);
        EXPECT_EQ(encoded.stream, expectedStrip(half, key, false)) << keyName(key);
        EXPECT_EQ(encoded.counts[0], encoded.stream.size());
    }
}

TEST(EncodersEndingEarly, AnImageMayHaveNoLinesAtAll) {
    for (const DWORD key : kCcittKeys) {
        const Encoded encoded = encodePage({.rows = {kFirst}, .key = key, .linesThere = 0});
        EXPECT_EQ(encoded.error, Error::None);
        EXPECT_TRUE(encoded.stream.empty()) << keyName(key);
    }
}

TEST(EncodersEndingEarly, AnyOtherNumberOfTheLineFunctionIsTheResult) {
    for (const DWORD key : kCcittKeys) {
        for (DWORD there = 0; there < 3; ++there) {
            const Encoded encoded = encodePage(
                {.rows = {kFirst, kSecond, kFirst}, .key = key, .rowsPerStrip = 2, .linesThere = there, .answer = 77});
            EXPECT_EQ(number(encoded.error), 77U);
            EXPECT_EQ(encoded.asked, there + 1);
            EXPECT_TRUE(encoded.stream.empty()) << "nothing is written before the buffer is full";
        }
    }
}

} // namespace
} // namespace vellum::test
