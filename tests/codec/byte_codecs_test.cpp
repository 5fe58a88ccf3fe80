// PackBits, LZW with and without differencing, and uncompressed lines.
#include "code_stream.h"
#include "codec/differencing.h"
#include "support/byte_coders.h"
#include "support/coded_tiff.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

// Decodes as a bilevel image, a line of width / 8 bytes.
Decoded decodeLines(const Bytes &code, DWORD lineBytes, DWORD height, DWORD key) {
    return decodeRaw(code, {lineBytes * 8, height, key});
}

Bytes noise(std::size_t count, unsigned seed, unsigned below = 256) {
    Bytes out(count);
    for (auto &byte : out) {
        seed = seed * 1664525U + 1013904223U;
        byte = static_cast<BYTE>((seed >> 16) % below);
    }
    return out;
}

Bytes joined(std::initializer_list<Bytes> parts) {
    Bytes all;
    for (const Bytes &part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

// ------------------------------------------------------------------------------------------------ PackBits

TEST(PackBits, LiteralsAndRuns) {
    const Decoded decoded = decodeLines({2, 1, 2, 3, 0xFC, 9}, 8, 1, VELLUM_KEY_PACKBITS);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, (Bytes{1, 2, 3, 9, 9, 9, 9, 9}));
}

TEST(PackBits, Minus128RepeatsItsByte129Times) {
    const Decoded decoded = decodeLines({0x80, 0x55}, 129, 1, VELLUM_KEY_PACKBITS);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, Bytes(129, 0x55));
}

TEST(PackBits, AHeaderOf127BringsTheLongestLiteral) {
    const Bytes bytes = noise(128, 1);
    EXPECT_EQ(decodeLines(joined({{127}, bytes}), 128, 1, VELLUM_KEY_PACKBITS).lines, bytes);
}

TEST(PackBits, WhatAPacketHasLeftOverAtTheLinesEndIsDropped) {
    const Decoded decoded = decodeLines({0x80, 0x11, 4, 1, 2, 3, 4, 5, 0xFF, 7}, 2, 3, VELLUM_KEY_PACKBITS);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, (Bytes{0x11, 0x11, 1, 2, 7, 7}));
}

TEST(PackBits, CodeThatEndsEarlyGivesTheLinesBefore) {
    for (const Bytes &tail : {Bytes{}, Bytes{0xFF}, Bytes{1}, Bytes{1, 5}}) {
        const Decoded decoded = decodeLines(joined({{0xFF, 3}, tail}), 2, 2, VELLUM_KEY_PACKBITS);
        EXPECT_EQ(decoded.outcome, failedWith(VELLUM_UNEXPECTED_END));
        EXPECT_EQ(decoded.lines, (Bytes{3, 3}));
    }
}

TEST(PackBits, PacketsCrossTheEndsOfTheCodeBuffer) {
    constexpr DWORD kLine = 1000;
    Bytes all;
    Bytes code;
    for (unsigned y = 0; y < 120; ++y) {
        const Bytes row = noise(kLine, y, 3 + y % 200);
        const Bytes packed = packBits(row);
        all.insert(all.end(), row.begin(), row.end());
        code.insert(code.end(), packed.begin(), packed.end());
    }
    ASSERT_GT(code.size(), 2u * 32767u);
    const Decoded decoded = decodeLines(code, kLine, 120, VELLUM_KEY_PACKBITS);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, all);
}

// ------------------------------------------------------------------------------------------------ LZW

TEST(Lzw, AStringThatIsStillBeingDefinedDecodes) {
    // 7, then 258 before it is complete: 7 7; then 259, again incomplete: 7 7 7.
    const Bytes code = LzwCodes().code(256, 9).code(7, 9).code(258, 9).code(259, 9).code(257, 9).bytes();
    const Decoded decoded = decodeLines(code, 6, 1, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, Bytes(6, 7));
}

TEST(Lzw, StreamsOfEveryKindComeBack) {
    for (const unsigned below : {1U, 2U, 4U, 30U, 256U}) {
        const Bytes data = noise(300 * 250, below + 11, below);
        const Decoded decoded = decodeLines(encodeLzw(data), 300, 250, VELLUM_KEY_LZW);
        EXPECT_EQ(decoded.outcome, kDecoded) << below;
        EXPECT_EQ(decoded.lines, data) << below;
    }
}

TEST(Lzw, LinesShorterThanAStringAreCutFromIt) {
    const Bytes data(5000, 9);
    const Decoded decoded = decodeLines(encodeLzw(data), 1, 5000, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, data);
}

TEST(Lzw, AClearInsideAStreamStartsTheTableAnew) {
    const Bytes code = LzwCodes()
                           .code(256, 9)
                           .code(1, 9)
                           .code(2, 9)
                           .code(256, 9)
                           .code(256, 9)
                           .code(3, 9)
                           .code(258, 9)
                           .code(257, 9)
                           .bytes();
    const Decoded decoded = decodeLines(code, 5, 1, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, (Bytes{1, 2, 3, 3, 3}));
}

TEST(Lzw, AFullTableGoesOnWithoutNewEntriesUntilAClear) {
    // 3838 codes fill the table with pairs; then old codes are used at 12 bits. The last entry, 4095, is the pair of
    // the last filling code and the first code behind it, and stays so.
    LzwCodes code;
    Bytes expected;
    code.code(256, 9);
    unsigned next = 258;
    unsigned width = 9;
    const auto put = [&](unsigned value) {
        width = next > 2047 ? 12 : next > 1023 ? 11 : next > 511 ? 10 : 9;
        code.code(value, width);
        next = next < 4096 ? next + 1 : next;
    };
    for (unsigned i = 0; i < 4096 - 258; ++i) {
        put(i % 251);
        expected.push_back(static_cast<BYTE>(i % 251));
    }
    ASSERT_EQ(next, 4096u);
    const BYTE last = expected.back();
    for (const unsigned value : {200U, 4095U, 100U, 4095U, 50U}) {
        put(value);
        if (value == 4095) {
            expected.insert(expected.end(), {last, 200});
        } else {
            expected.push_back(static_cast<BYTE>(value));
        }
    }
    const auto lineBytes = static_cast<DWORD>(expected.size());
    const Decoded decoded = decodeLines(code.code(257, 12).bytes(), lineBytes, 1, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, expected);
}

TEST(Lzw, ACodeThatIsNotYetDefinedIsAnError) {
    for (const unsigned bad : {258U, 300U, 511U}) {
        const Bytes code = LzwCodes().code(256, 9).code(bad, 9).code(0, 9).bytes();
        EXPECT_EQ(decodeLines(code, 4, 1, VELLUM_KEY_LZW).outcome, failedWith(VELLUM_CODE_ERROR)) << bad;
    }
    const Bytes code = LzwCodes().code(256, 9).code(1, 9).code(259, 9).code(0, 9).bytes();
    EXPECT_EQ(decodeLines(code, 4, 1, VELLUM_KEY_LZW).outcome, failedWith(VELLUM_CODE_ERROR));
}

TEST(Lzw, AnEarlyEndOfInformationDeliversThePartialLineAndFails) {
    const Bytes code = LzwCodes().code(256, 9).code(1, 9).code(2, 9).code(3, 9).code(257, 9).bytes();
    const Decoded decoded = decodeLines(code, 2, 3, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(decoded.lines, (Bytes{1, 2, 3, 0})) << "the rest of the line is zero";
}

TEST(Lzw, AnEndOfInformationInTheLastLineCompletesIt) {
    const Bytes code = LzwCodes().code(256, 9).code(1, 9).code(2, 9).code(3, 9).code(257, 9).bytes();
    const Decoded decoded = decodeLines(code, 2, 2, VELLUM_KEY_LZW);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, (Bytes{1, 2, 3, 0}));
}

TEST(Lzw, StripsStartAfreshAndMayEndInAnIncompleteLine) {
    const std::vector<BYTE> whole = LzwCodes().code(256, 9).code(1, 9).code(2, 9).code(257, 9).bytes();
    const std::vector<BYTE> cut = LzwCodes().code(256, 9).code(5, 9).code(257, 9).bytes();
    CodedPage page;
    page.width = 2;
    page.height = 3;
    page.bits = 8;
    page.key = VELLUM_KEY_LZW;
    page.rowsPerStrip = 1;
    const OpenedTiff tiff(codedTiff(page, {whole, cut, whole}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_EQ(log.data, (Bytes{1, 2, 5, 0, 1, 2}));
}

TEST(Lzw, CodeThatEndsEarlyGivesTheLinesBefore) {
    const Bytes data = noise(40 * 10, 4, 20);
    const Bytes code = encodeLzw(data);
    DWORD most = 0;
    for (std::size_t length = 1; length < code.size(); ++length) {
        const Decoded decoded = decodeLines(Bytes(code.begin(), code.begin() + static_cast<std::ptrdiff_t>(length)), 40,
                                            10, VELLUM_KEY_LZW);
        ASSERT_TRUE(std::equal(decoded.lines.begin(), decoded.lines.end(), data.begin())) << length;
        ASSERT_GE(decoded.lineCount, most);
        most = decoded.lineCount;
        ASSERT_EQ(decoded.outcome, decoded.lineCount == 10 ? kDecoded : failedWith(VELLUM_UNEXPECTED_END)) << length;
    }
    EXPECT_EQ(most, 10u) << "the end-of-information code is not needed";
}

TEST(Lzw, DifferencingIsUndoneLineByLine) {
    CodedPage page;
    page.width = 3;
    page.height = 2;
    page.bits = 8;
    page.key = VELLUM_KEY_LZW_DIFFERENCING;
    const OpenedTiff tiff(codedTiff(page, {encodeLzw({10, 2, 255, 1, 1, 1})}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_EQ(log.data, (Bytes{10, 12, 11, 1, 2, 3}));
}

// ------------------------------------------------------------------------------------------------ differencing

Bytes undone(Bytes line, unsigned bits) {
    undoHorizontalDifferencing(line.data(), line.size(), bits);
    return line;
}

Bytes applied(Bytes line, unsigned bits) {
    applyHorizontalDifferencing(line.data(), line.size(), bits);
    return line;
}

TEST(Differencing, BytesAreDifferencesFromTheByteBefore) {
    EXPECT_EQ(applied({10, 12, 11}, 8), (Bytes{10, 2, 255}));
    EXPECT_EQ(undone({10, 2, 255}, 8), (Bytes{10, 12, 11}));
}

TEST(Differencing, NibblesAreDifferencesFromTheNibbleBefore) {
    // Samples 1 4 2 2 15 0: differences 1 3 14 0 13 1.
    EXPECT_EQ(applied({0x14, 0x22, 0xF0}, 4), (Bytes{0x13, 0xE0, 0xD1}));
    EXPECT_EQ(undone({0x13, 0xE0, 0xD1}, 4), (Bytes{0x14, 0x22, 0xF0}));
}

TEST(Differencing, PixelsAreDifferencesFromThePixelBefore) {
    EXPECT_EQ(applied({1, 2, 3, 5, 1, 3, 4, 1, 2}, 24), (Bytes{1, 2, 3, 4, 255, 0, 255, 0, 255}));
    EXPECT_EQ(undone({1, 2, 3, 4, 255, 0, 255, 0, 255}, 24), (Bytes{1, 2, 3, 5, 1, 3, 4, 1, 2}));
}

TEST(Differencing, OtherDepthsAreLeftAlone) {
    EXPECT_EQ(applied({1, 2, 3}, 1), (Bytes{1, 2, 3}));
    EXPECT_EQ(undone({1, 2, 3}, 1), (Bytes{1, 2, 3}));
    EXPECT_EQ(undone({1, 2, 3}, 16), (Bytes{1, 2, 3}));
}

TEST(Differencing, BothDirectionsCancelOutAtEveryLength) {
    for (const unsigned bits : {4U, 8U, 24U}) {
        for (std::size_t length = 0; length < 40; ++length) {
            const Bytes line = noise(length, static_cast<unsigned>(length) + bits);
            EXPECT_EQ(undone(applied(line, bits), bits), line) << bits << ' ' << length;
        }
    }
}

// ------------------------------------------------------------------------------------------------ uncompressed

TEST(Uncompressed, LinesComeAsStored) {
    const Bytes data = noise(300 * 400, 3);
    const Decoded decoded = decodeLines(data, 300, 400, VELLUM_KEY_NONE);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, data);
}

TEST(Uncompressed, LinesOfEveryLengthComeWhole) {
    for (const DWORD lineBytes : {1U, 7U, 5000U, 16383U, 16384U, 16385U, 20000U, 32767U, 32768U, 70001U}) {
        const Bytes data = noise(lineBytes * std::size_t{9}, lineBytes);
        const Decoded decoded = decodeLines(data, lineBytes, 9, VELLUM_KEY_NONE);
        EXPECT_EQ(decoded.outcome, kDecoded) << lineBytes;
        EXPECT_EQ(decoded.lines, data) << lineBytes;
    }
}

TEST(Uncompressed, FillOrder2ReversesTheBitsOfEveryByte) {
    const Decoded decoded = decodeRaw({0x01, 0xF0, 0x80}, {24, 1, VELLUM_KEY_NONE, 2});
    EXPECT_EQ(decoded.lines, (Bytes{0x80, 0x0F, 0x01}));
}

TEST(Uncompressed, AnEarlyEndGivesTheLinesBefore) {
    const Decoded decoded = decodeLines({1, 2, 3, 4, 5}, 2, 3, VELLUM_KEY_NONE);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_UNEXPECTED_END));
    EXPECT_EQ(decoded.lines, (Bytes{1, 2, 3, 4}));
}

} // namespace
} // namespace vellum::test
