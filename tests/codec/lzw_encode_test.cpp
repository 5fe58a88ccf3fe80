// LZW encoding: the codes of small strips, the ends of generations and strips, and everything beside a second, naive
// encoder.
#include "byte_encoding.h"
#include "naive_lzw.h"
#include "support/byte_coders.h"
#include "support/ccitt_writer.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

ByteImage imageOf(const Bytes &data, DWORD lineBytes, DWORD rowsPerStrip = 0xFFFFFFFF) {
    return {data, lineBytes, rowsPerStrip, VELLUM_KEY_LZW};
}

// One strip.
Bytes coded(const Bytes &data, DWORD lineBytes) {
    const ByteCode code = encodeBytesOf(imageOf(data, lineBytes), vellum::encodeLzw);
    EXPECT_EQ(code.error, Error::None);
    EXPECT_EQ(code.counts.at(0), code.stream.size());
    return code.stream;
}
Bytes coded(const Bytes &line) {
    return coded(line, static_cast<DWORD>(line.size()));
}

// The codes of a strip: Clear, these, EndOfInformation, three zeros, in widths that grow with the slot; then zero bits.
Bytes strip(const std::vector<unsigned> &codes) {
    LzwCodes out;
    unsigned slot = 257;
    const auto put = [&](unsigned code) {
        out.code(code, slot < 512 ? 9 : slot < 1024 ? 10 : slot < 2048 ? 11 : 12);
        slot = code == 256 ? 258 : slot + 1;
    };
    put(256);
    for (const unsigned code : codes) {
        put(code);
    }
    for (const unsigned code : {257U, 0U, 0U, 0U}) {
        put(code);
    }
    Bytes bytes = out.bytes();
    bytes.resize((bytes.size() + 1) / 2 * 2);
    return bytes;
}

// So many bytes no two of which follow each other twice: every byte becomes a code.
Bytes withoutRepeats(std::size_t count) {
    Bytes bytes;
    for (unsigned step = 1; bytes.size() < count; ++step) {
        for (unsigned i = 0; i < 256 && bytes.size() < count; ++i) {
            bytes.push_back(static_cast<BYTE>(i * (2 * step - 1) + step));
        }
    }
    return bytes;
}

// Encodes an image; strips must be the naive encoder's, and the decoder must find the image in them.
void expectNaive(const ByteImage &image, const char *what) {
    const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
    ASSERT_EQ(code.error, Error::None) << what;
    ASSERT_EQ(code.closed, image.strips()) << what;
    const std::vector<Bytes> expected = NaiveLzw().encode(image);
    ASSERT_EQ(expected.size(), code.closed) << what;
    auto offset = static_cast<DWORD>(image.before.size());
    for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_EQ(code.offsets[i], offset) << what << ", strip " << i;
        ASSERT_EQ(code.counts[i], expected[i].size()) << what << ", strip " << i;
        ASSERT_TRUE(code.strip(i) == (image.fillOrder == 2 ? reverseBits(expected[i]) : expected[i]))
            << what << ' ' << i;
        offset += code.counts[i];
    }
    EXPECT_EQ(code.stream.size(), offset) << what;
    EXPECT_TRUE(decodeBytesOf(image, code, decodeLzw) == image.data) << what;
}

// ------------------------------------------------------------------------------------------------ codes

TEST(LzwEncoding, AStripIsClearCodesEndAndThreeZeros) {
    EXPECT_EQ(coded({7}), strip({7}));
    EXPECT_EQ(coded({1, 2, 3}), strip({1, 2, 3}));
    EXPECT_EQ(coded({7, 7, 7, 7, 7, 7}), strip({7, 258, 259}));
    EXPECT_EQ(coded({1, 2, 1, 2, 1, 2, 1}), strip({1, 2, 258, 260}));
}

TEST(LzwEncoding, ZeroBitsFillTheLastPairOfBytes) {
    // 6 codes of 9 bits are 54, 10 are 90: up to 64 and 96.
    EXPECT_EQ(coded({7}).size(), 8u);
    EXPECT_EQ(coded({1, 2, 3, 4, 5}).size(), 12u);
    // 16 codes are 144 bits: nothing to fill.
    EXPECT_EQ(coded(withoutRepeats(11)).size(), 18u);
}

TEST(LzwEncoding, StringsGoOnFromLineToLine) {
    EXPECT_EQ(coded(Bytes(24, 7), 4), coded(Bytes(24, 7), 24));
    EXPECT_EQ(coded({1, 2, 1, 2, 1, 2, 1, 2}, 2), coded({1, 2, 1, 2, 1, 2, 1, 2}, 8));
}

TEST(LzwEncoding, EveryStripStartsAfresh) {
    const ByteCode code = encodeBytesOf(imageOf({7, 7, 7, 7, 7, 7, 7, 7}, 3, 1), vellum::encodeLzw);
    ASSERT_EQ(code.closed, 2u);
    EXPECT_EQ(code.strip(0), strip({7, 258}));
    EXPECT_EQ(code.strip(1), strip({7, 258}));
    EXPECT_EQ(code.offsets, (std::vector<DWORD>{0, 8}));
}

TEST(LzwEncoding, TheSlotDecidesTheWidthOfEndAndZerosToo) {
    // Around the slots 512, 1024 and 2048 the codes at the end of the strip get wider one by one.
    for (const std::size_t step : {512U, 1024U, 2048U}) {
        for (std::size_t codes = step - 258 - 8; codes < step - 258 + 4; ++codes) {
            const Bytes data = withoutRepeats(codes);
            const std::vector<unsigned> expected(data.begin(), data.end());
            ASSERT_EQ(coded(data), strip(expected)) << codes;
        }
    }
}

TEST(LzwEncoding, AFullTableIsClearedAtSlot4095AndTheStringGoesOn) {
    constexpr std::size_t kFull = 4095 - 258;
    for (const std::size_t count :
         {kFull, kFull + 1, kFull + 2, kFull + 100, 2 * kFull, 2 * kFull + 1, 2 * kFull + 2}) {
        const Bytes data = withoutRepeats(count);
        std::vector<unsigned> expected;
        for (std::size_t i = 0; i < count; ++i) {
            expected.push_back(data[i]);
            // The entry 4094 is made by the byte behind the one that is given out with it.
            if ((i + 1) % kFull == 0 && i + 1 < count) {
                expected.push_back(256);
            }
        }
        ASSERT_EQ(coded(data), strip(expected)) << count;
    }
}

// ------------------------------------------------------------------------------------------------ early Clears

TEST(LzwEncoding, CodeLongerThanItsLineClearsTheTableFromTheThirdLineOn) {
    // Lines of 4 bytes make 4 codes of 9 bits: 36 for 32. The first line makes 3 (27 bits).
    const Bytes data = withoutRepeats(4 * 8);
    std::vector<unsigned> expected(data.begin(), data.end());
    expected.insert(expected.begin() + 12, 256);
    // The string is empty behind a Clear, so the first byte of the fourth line makes no entry.
    expected.insert(expected.begin() + 25, 256);
    EXPECT_EQ(coded(data, 4), strip(expected));
}

TEST(LzwEncoding, CodeThatPaysKeepsTheTable) {
    // 3 codes of 9 bits for 32.
    Bytes data;
    for (unsigned i = 0; i < 20; ++i) {
        const Bytes line = {static_cast<BYTE>(i * 5), static_cast<BYTE>(i * 5), static_cast<BYTE>(i * 5), 1};
        data.insert(data.end(), line.begin(), line.end());
    }
    NaiveLzw naive;
    const std::vector<Bytes> expected = naive.encode(imageOf(data, 4));
    EXPECT_EQ(naive.clears, 0);
    EXPECT_EQ(coded(data, 4), expected[0]);
}

TEST(LzwEncoding, TheLastLineOfAStripIsNotJudged) {
    const Bytes data = withoutRepeats(12);
    const std::vector<unsigned> expected(data.begin(), data.end());
    EXPECT_EQ(coded(data, 4), strip(expected)) << "three lines only";
    expectNaive(imageOf(withoutRepeats(240), 4, 3), "strips of three lines");
    expectNaive(imageOf(withoutRepeats(240), 4, 4), "strips of four lines");
}

TEST(LzwEncoding, TheBitsOfALineAreCountedModulo65536) {
    // 8192 bytes count as 0 bits, so every third line that makes a code clears the table, however well it does.
    for (const DWORD lineBytes : {8191U, 8192U, 8193U}) {
        const ByteImage image = imageOf(Bytes(std::size_t{lineBytes} * 10, 3), lineBytes);
        NaiveLzw naive;
        (void)naive.encode(image);
        EXPECT_EQ(naive.earlyClears, lineBytes == 8191 ? 0 : 3) << lineBytes;
        expectNaive(image, "constant");
    }
}

TEST(LzwEncoding, ATableThatFillsInsideALineHasServedThatLine) {
    // 1000 bytes of noise a line: the table fills in every fourth line, and lines make more code than they are long.
    const ByteImage image = imageOf(noiseBytes(1000 * 60, 5), 1000);
    NaiveLzw naive;
    (void)naive.encode(image);
    EXPECT_GT(naive.earlyClears, 0);
    expectNaive(image, "noise");
    const ByteImage filling = imageOf(noiseBytes(1500 * 60, 6), 1500);
    NaiveLzw other;
    (void)other.encode(filling);
    EXPECT_GT(other.clears, other.earlyClears);
    expectNaive(filling, "noise that fills tables");
}

// ------------------------------------------------------------------------------------------------ pictures

TEST(LzwEncoding, PicturesOfEveryKindAreTheNaiveOnes) {
    for (const DWORD rowsPerStrip : {1U, 5U, 0xFFFFU}) {
        expectNaive(imageOf(noiseBytes(500 * 60, 1), 500, rowsPerStrip), "noise");
        expectNaive(imageOf(noiseBytes(500 * 60, 2, 3), 500, rowsPerStrip), "three values");
        expectNaive(imageOf(photographBytes(333, 100, 3), 333, rowsPerStrip), "photograph");
        expectNaive(imageOf(pageBytes(207 * 300, 4), 207, rowsPerStrip), "page");
        expectNaive(imageOf(Bytes(207 * 300), 207, rowsPerStrip), "constant");
    }
}

TEST(LzwEncoding, LinesOfEveryLengthAreTheNaiveOnes) {
    for (DWORD lineBytes = 1; lineBytes < 50; ++lineBytes) {
        expectNaive(imageOf(Bytes(std::size_t{lineBytes} * 60, 9), lineBytes, 40), "constant");
        expectNaive(imageOf(pageBytes(std::size_t{lineBytes} * 60, lineBytes), lineBytes, 25), "page");
    }
}

TEST(LzwEncoding, RunsOfEveryLengthBehindEveryStringAreTheNaiveOnes) {
    // Runs grow and shrink, so that strings of repeats are known to every length, and behind different bytes.
    Bytes data;
    for (unsigned round = 0; round < 3; ++round) {
        for (unsigned length = 1; length < 120; length += 1 + round) {
            data.insert(data.end(), length * (round + 1), 0);
            data.push_back(static_cast<BYTE>(1 + length % (round + 2)));
            data.insert(data.end(), (120 - length) / (round + 1), static_cast<BYTE>(length % 2 == 0 ? 0xFF : 1));
        }
    }
    for (const std::size_t lineLength : {std::size_t{40}, std::size_t{1000}, data.size()}) {
        const Bytes lines(data.begin(),
                          data.begin() + static_cast<std::ptrdiff_t>(data.size() / lineLength * lineLength));
        expectNaive(imageOf(lines, static_cast<DWORD>(lineLength)), "runs");
    }
    // Enough to fill several tables: every string is a run.
    expectNaive(imageOf(Bytes(9 * 1000 * 1000), 100000), "one long run");
}

TEST(LzwEncoding, CodeThatCrossesTheEndsOfTheCodeBufferIsWhole) {
    expectNaive(imageOf(noiseBytes(100 * 2000, 7), 100), "noise");
    expectNaive(imageOf(noiseBytes(70000 * 3, 8), 70000), "long lines");
}

TEST(LzwEncoding, AByteThatLeavesAloneShiftsTheEndsOfStrips) {
    // The code buffer has an odd number of bytes. The strip in which it gets full has an odd number of bytes then, too.
    const ByteImage image = imageOf(noiseBytes(100 * 2000, 9), 100, 100);
    const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
    ASSERT_EQ(code.closed, 20u);
    EXPECT_GT(code.stream.size(), 6 * kCodeBufferBytes);
    EXPECT_GE(std::count_if(code.counts.begin(), code.counts.end(), [](DWORD count) { return count % 2 != 0; }), 3);
    expectNaive(image, "strips of noise");
}

TEST(LzwEncoding, StripsEndAtEveryPlaceAroundTheEndOfTheCodeBuffer) {
    // Short strips of several lengths, until the code buffer has been full many times.
    Bytes data = noiseBytes(3 * 60000, 10);
    const ByteImage shortest = imageOf(data, 3, 1);
    expectNaive(shortest, "3 bytes");
    // A strip whose last pair is divided by the end of the code buffer begins the next one with a single byte.
    const std::vector<DWORD> offsets = encodeBytesOf(shortest, vellum::encodeLzw).offsets;
    EXPECT_TRUE(std::any_of(offsets.begin(), offsets.end(), [](DWORD at) { return at % kCodeBufferBytes == 1; }));
    for (std::size_t i = 0; i < data.size(); i += 2) {
        data[i] = 0;
    }
    expectNaive(imageOf(data, 18, 1), "18 bytes");
    expectNaive(imageOf(data, 5, 3), "5 bytes");
}

TEST(LzwEncoding, TheEndOfTheCodeBufferMayComeAnywhereInAStrip) {
    // Strips of 12 bytes of code and more, moved along by a first strip.
    for (unsigned first = 1; first < 40; ++first) {
        Bytes data = withoutRepeats(4 * std::size_t{first});
        const Bytes rest = noiseBytes(4 * 3000, first, 200);
        data.insert(data.end(), rest.begin(), rest.end());
        expectNaive(imageOf(data, 4, first), "moved along");
    }
}

TEST(LzwEncoding, StripsBeginWhereTheStreamStands) {
    ByteImage image = imageOf(pageBytes(50 * 20, 7), 50, 3);
    image.before = {1, 2, 3};
    expectNaive(image, "behind others");
}

TEST(LzwEncoding, FillOrder2ReversesTheBitsOfEveryByte) {
    ByteImage image = imageOf(noiseBytes(40000, 8), 40, 100);
    image.fillOrder = 2;
    expectNaive(image, "reversed");
}

// ------------------------------------------------------------------------------------------------ differencing

TEST(LzwEncoding, DifferencesOfEachLineAreEncodedByTheKey) {
    ByteImage image = imageOf({10, 12, 11, 1, 3, 6}, 3);
    EXPECT_EQ(encodeBytesOf(image, vellum::encodeLzw).stream, strip({10, 12, 11, 1, 3, 6}));
    image.key = VELLUM_KEY_LZW_DIFFERENCING;
    const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
    EXPECT_EQ(code.stream, strip({10, 2, 255, 1, 2, 3}));
    EXPECT_EQ(decodeBytesOf(image, code, decodeLzw), image.data);
    image.key = VELLUM_KEY_LZW;
    EXPECT_EQ(encodeBytesOf(image, vellum::encodeLzw).stream, strip({10, 12, 11, 1, 3, 6})) << "nothing stays behind";
}

TEST(LzwEncoding, EveryDepthHasItsOwnDifferences) {
    for (const WORD bits : {WORD{1}, WORD{4}, WORD{8}, WORD{24}}) {
        for (const DWORD lineBytes : {3U, 15U, 48U, 51U, 300U}) {
            ByteImage image = imageOf(photographBytes(lineBytes, 30, bits), lineBytes, 7);
            image.bits = bits;
            image.key = VELLUM_KEY_LZW_DIFFERENCING;
            ByteImage differing = image;
            differing.data.clear();
            for (DWORD y = 0; y < image.height(); ++y) {
                const Bytes line = image.lines(y, 1);
                const Bytes changed = bits == 4    ? nibbleDifferences(line)
                                      : bits == 8  ? differences(line, 1)
                                      : bits == 24 ? differences(line, 3)
                                                   : line;
                differing.data.insert(differing.data.end(), changed.begin(), changed.end());
            }
            const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
            const std::vector<Bytes> expected = NaiveLzw().encode(differing);
            for (std::size_t i = 0; i < expected.size(); ++i) {
                ASSERT_EQ(code.strip(i), expected[i]) << bits << ' ' << lineBytes;
            }
            EXPECT_EQ(decodeBytesOf(image, code, decodeLzw), image.data) << bits << ' ' << lineBytes;
        }
    }
}

// ------------------------------------------------------------------------------------------------ ends of runs

TEST(LzwEncoding, AnImageWithoutLinesOrBytesIsNothing) {
    for (const LONG lineBytes : {0L, 5L}) {
        CodecState state{};
        state.bytesPerLine = lineBytes;
        state.image.biHeight = lineBytes == 0 ? 4 : 0;
        EXPECT_EQ(vellum::encodeLzw(state), Error::None);
        EXPECT_EQ(state.bufferBlock, nullptr);
    }
}

TEST(LzwEncoding, AnImageThatEndsEarlyHasWholeStrips) {
    ByteImage image = imageOf(noiseBytes(50 * 20, 9), 50, 6);
    for (const DWORD lines : {0U, 1U, 5U, 6U, 7U, 19U}) {
        image.answerAt = lines;
        const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
        EXPECT_EQ(code.error, Error::None);
        EXPECT_EQ(code.asked, lines);
        Bytes expected;
        if (lines > 0) {
            for (const Bytes &part : NaiveLzw().encode(imageOf(image.lines(0, lines), 50, 6))) {
                expected.insert(expected.end(), part.begin(), part.end());
            }
        }
        EXPECT_EQ(code.stream, expected) << lines;
    }
}

TEST(LzwEncoding, AnErrorOfTheLineFunctionEndsTheRun) {
    ByteImage image = imageOf(pageBytes(50 * 20, 10), 50, 6);
    image.answer = 77;
    for (const DWORD lines : {0U, 3U, 6U}) {
        image.answerAt = lines;
        const ByteCode code = encodeBytesOf(image, vellum::encodeLzw);
        EXPECT_EQ(code.error, fromLineFunction(77));
        EXPECT_EQ(code.asked, lines);
    }
}

TEST(LzwEncoding, AFailedWriteEndsTheRunWith6) {
    const ByteImage image = imageOf(noiseBytes(1000 * 100, 11), 1000, 10);
    // Noise that nearly fills the code buffer, then a run that fills a table.
    Bytes nearly = noiseBytes(1000 * 26, 12);
    nearly.resize(8 * 1000 * 1000);
    const ByteImage run = imageOf(nearly, 1000);
    const TempFile file;
    for (long nth = 0; nth < 6; ++nth) {
        const FailNth fault(Call::Write, nth);
        const ByteCode code = encodeBytesToFile(file.path(), image, vellum::encodeLzw);
        ASSERT_TRUE(fault.happened()) << nth;
        EXPECT_EQ(code.error, Error::Io) << nth;
        EXPECT_LE(code.asked, 34u * (static_cast<DWORD>(nth) / 2 + 1)) << "no line is asked for behind the failure";
    }
    const FailNth fault(Call::Write, 0);
    EXPECT_EQ(encodeBytesToFile(file.path(), run, vellum::encodeLzw).error, Error::Io);
}

TEST(LzwEncoding, WithoutMemoryItEndsWith1) {
    const ByteImage image = imageOf(noiseBytes(1000, 12), 100);
    const HGLOBAL block = makeBlock({});
    const StreamHandle stream = openMemoryStream(block, 0);
    for (long nth = 0; nth < 2; ++nth) { // the buffers, the table
        CodecState state = byteState(stream, image);
        state.lineFunction = nullptr;
        {
            const FailNth fault(Call::Allocate, nth);
            EXPECT_EQ(vellum::encodeLzw(state), Error::NoMemory);
            EXPECT_TRUE(fault.happened());
        }
        freeCodecBuffers(state);
    }
    closeStream(stream);
    GlobalFree(block);
}

} // namespace
} // namespace vellum::test
