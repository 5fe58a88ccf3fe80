// PackBits encoding: the packets of every kind of line, byte for byte, and beside a second, naive encoder.
#include "byte_encoding.h"
#include "support/ccitt_writer.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// Line by line, byte by byte, as the packets are defined.
Bytes naivePackBits(const Bytes &line) {
    Bytes out;
    for (std::size_t at = 0; at < line.size();) {
        const std::size_t behind = line.size() - at - 1;
        const std::size_t most = std::min<std::size_t>(behind, 127);
        std::size_t n = 0;
        if (behind == 0) {
            out.push_back(0);
            out.push_back(line[at]);
        } else if (line[at + 1] == line[at]) {
            while (n < most && line[at + n + 1] == line[at]) {
                ++n;
            }
            out.push_back(static_cast<BYTE>(256 - n));
            out.push_back(line[at]);
        } else {
            while (n < most && line[at + n] != line[at + n + 1]) {
                ++n;
            }
            out.push_back(static_cast<BYTE>(n));
            for (std::size_t i = 0; i <= n; ++i) {
                out.push_back(line[at + i]);
            }
        }
        at += n + 1;
    }
    return out;
}

ByteImage imageOf(const Bytes &data, DWORD lineBytes, DWORD rowsPerStrip = 0xFFFFFFFF) {
    return {data, lineBytes, rowsPerStrip, VELLUM_KEY_PACKBITS};
}

Bytes packed(const Bytes &line) {
    const ByteCode code = encodeBytesOf(imageOf(line, static_cast<DWORD>(line.size())), encodePackBits);
    EXPECT_EQ(code.error, Error::None);
    return code.stream;
}

Bytes repeated(std::size_t count, BYTE value) {
    return Bytes(count, value);
}

Bytes behind(Bytes first, const Bytes &second) {
    first.insert(first.end(), second.begin(), second.end());
    return first;
}

Bytes rising(std::size_t count) {
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes.push_back(static_cast<BYTE>(i));
    }
    return bytes;
}

// Encodes an image and compares every strip with the naive encoder's and the whole with the decoder's.
void expectNaive(const ByteImage &image, const char *what) {
    const ByteCode code = encodeBytesOf(image, encodePackBits);
    ASSERT_EQ(code.error, Error::None) << what;
    ASSERT_EQ(code.closed, image.strips()) << what;
    DWORD offset = static_cast<DWORD>(image.before.size());
    for (DWORD strip = 0; strip < image.strips(); ++strip) {
        Bytes expected;
        const DWORD first = strip * image.rowsPerStrip;
        for (DWORD y = first; y < image.height() && y - first < image.rowsPerStrip; ++y) {
            expected = behind(expected, naivePackBits(image.lines(y, 1)));
        }
        ASSERT_EQ(code.offsets[strip], offset) << what;
        ASSERT_EQ(code.counts[strip], expected.size()) << what << ", strip " << strip;
        ASSERT_TRUE(code.strip(strip) == (image.fillOrder == 2 ? reverseBits(expected) : expected)) << what;
        offset += code.counts[strip];
    }
    EXPECT_EQ(code.stream.size(), offset) << what;
    EXPECT_TRUE(decodeBytesOf(image, code, decodePackBits) == image.data) << what;
}

TEST(PackBitsEncoding, ALastSingleByteIsALiteralOfOne) {
    EXPECT_EQ(packed({0x55}), (Bytes{0, 0x55}));
    EXPECT_EQ(packed({1, 1, 2}), (Bytes{0xFF, 1, 0, 2}));
}

TEST(PackBitsEncoding, APairIsARunAlready) {
    EXPECT_EQ(packed({7, 7}), (Bytes{0xFF, 7}));
    EXPECT_EQ(packed({7, 7, 8, 8}), (Bytes{0xFF, 7, 0xFF, 8}));
}

TEST(PackBitsEncoding, ALiteralKeepsTheFirstByteOfThePairThatEndsIt) {
    EXPECT_EQ(packed({1, 2, 3, 3, 3}), (Bytes{2, 1, 2, 3, 0xFF, 3}));
    EXPECT_EQ(packed({1, 2, 2}), (Bytes{1, 1, 2, 0, 2}));
    EXPECT_EQ(packed({1, 2, 2, 3}), (Bytes{1, 1, 2, 1, 2, 3}));
}

TEST(PackBitsEncoding, RunsEndAt128Bytes) {
    EXPECT_EQ(packed(repeated(200, 9)), (Bytes{0x81, 9, 0xB9, 9}));
    EXPECT_EQ(packed(repeated(128, 9)), (Bytes{0x81, 9}));
    EXPECT_EQ(packed(repeated(129, 9)), (Bytes{0x81, 9, 0, 9}));
    EXPECT_EQ(packed(behind(repeated(128, 9), {5})), (Bytes{0x81, 9, 0, 5}));
    EXPECT_EQ(packed(behind(repeated(127, 9), {5})), (Bytes{0x82, 9, 0, 5}));
}

TEST(PackBitsEncoding, LiteralsEndAt128Bytes) {
    const Bytes bytes = rising(256);
    const Bytes first(bytes.begin(), bytes.begin() + 128);
    const Bytes second(bytes.begin() + 128, bytes.end());
    EXPECT_EQ(packed(first), behind({127}, first));
    EXPECT_EQ(packed(bytes), behind(behind({127}, first), behind({127}, second)));
    // The 128th byte begins a pair: it closes the literal all the same.
    EXPECT_EQ(packed(behind(first, {127})), behind(behind({127}, first), {0, 127}));
}

TEST(PackBitsEncoding, PacketsOfEveryLengthAtEveryPlaceAreTheNaiveOnes) {
    for (std::size_t before = 0; before < 20; ++before) {
        for (std::size_t length = 0; length < 150; length += length < 40 ? 1 : 7) {
            const Bytes head = rising(before);
            ASSERT_EQ(packed(behind(head, repeated(length + 1, 200))),
                      naivePackBits(behind(head, repeated(length + 1, 200))));
            const Bytes literal = behind(repeated(before + 1, 77), rising(length));
            ASSERT_EQ(packed(literal), naivePackBits(literal)) << before << ' ' << length;
        }
    }
}

TEST(PackBitsEncoding, PacketsDoNotCrossLinesWhateverLiesBehindALine) {
    for (const DWORD lineBytes : {1U, 2U, 3U, 15U, 16U, 17U, 18U, 127U, 128U, 129U, 130U, 300U}) {
        expectNaive(imageOf(repeated(std::size_t{lineBytes} * 6, 4), lineBytes, 4), "constant");
        expectNaive(imageOf(noiseBytes(std::size_t{lineBytes} * 40, lineBytes, 2), lineBytes, 7), "two values");
    }
}

TEST(PackBitsEncoding, PicturesOfEveryKindAreTheNaiveOnes) {
    for (const DWORD rowsPerStrip : {1U, 5U, 0xFFFFU}) {
        expectNaive(imageOf(noiseBytes(500 * 120, 1), 500, rowsPerStrip), "noise");
        expectNaive(imageOf(noiseBytes(500 * 120, 2, 3), 500, rowsPerStrip), "three values");
        expectNaive(imageOf(photographBytes(333, 200, 3), 333, rowsPerStrip), "photograph");
        expectNaive(imageOf(pageBytes(207 * 300, 4), 207, rowsPerStrip), "page");
    }
}

TEST(PackBitsEncoding, CodeThatCrossesTheEndsOfTheCodeBufferIsWhole) {
    for (unsigned shift = 0; shift < 12; ++shift) {
        ByteImage image = imageOf(behind(rising(shift + 1), noiseBytes(70000, shift, 2 + shift * 20)), 1);
        image.lineBytes = 1000;
        image.data.resize(70000);
        image.rowsPerStrip = 9;
        expectNaive(image, "long");
    }
    // A line that needs several code buffers.
    expectNaive(imageOf(noiseBytes(100000 * 2, 5), 100000), "long lines");
    expectNaive(imageOf(pageBytes(100000 * 2, 6), 100000), "long lines of runs");
}

TEST(PackBitsEncoding, StripsBeginWhereTheStreamStands) {
    ByteImage image = imageOf(pageBytes(50 * 20, 7), 50, 3);
    image.before = rising(9);
    expectNaive(image, "behind others");
}

TEST(PackBitsEncoding, FillOrder2ReversesTheBitsOfEveryByte) {
    ByteImage image = imageOf(noiseBytes(40000, 8, 17), 40, 100);
    image.fillOrder = 2;
    expectNaive(image, "reversed");
}

TEST(PackBitsEncoding, AnImageWithoutLinesOrBytesIsNothing) {
    for (const LONG lineBytes : {0L, 5L}) {
        CodecState state{};
        state.bytesPerLine = lineBytes;
        state.image.biHeight = lineBytes == 0 ? 4 : 0;
        EXPECT_EQ(encodePackBits(state), Error::None);
        EXPECT_EQ(state.bufferBlock, nullptr);
    }
}

TEST(PackBitsEncoding, ALineFunctionMayEndTheImageEarly) {
    ByteImage image = imageOf(pageBytes(50 * 20, 9), 50, 6);
    for (const DWORD lines : {0U, 1U, 5U, 6U, 7U, 19U}) {
        image.answerAt = lines;
        const ByteCode code = encodeBytesOf(image, encodePackBits);
        EXPECT_EQ(code.error, Error::None);
        EXPECT_EQ(code.asked, lines);
        Bytes expected;
        for (DWORD y = 0; y < lines; ++y) {
            expected = behind(expected, naivePackBits(image.lines(y, 1)));
        }
        EXPECT_EQ(code.stream, expected) << lines;
    }
}

TEST(PackBitsEncoding, AnErrorOfTheLineFunctionEndsTheRun) {
    ByteImage image = imageOf(pageBytes(50 * 20, 10), 50, 6);
    image.answer = 77;
    for (const DWORD lines : {0U, 3U, 6U}) {
        image.answerAt = lines;
        const ByteCode code = encodeBytesOf(image, encodePackBits);
        EXPECT_EQ(code.error, fromLineFunction(77));
        EXPECT_EQ(code.asked, lines);
    }
}

TEST(PackBitsEncoding, AFailedWriteEndsTheRunWith6) {
    const ByteImage image = imageOf(noiseBytes(1000 * 100, 11), 1000, 10);
    const TempFile file;
    for (long nth = 0; nth < 6; ++nth) {
        const FailNth fault(Call::Write, nth);
        const ByteCode code = encodeBytesToFile(file.path(), image, encodePackBits);
        ASSERT_TRUE(fault.happened()) << nth;
        EXPECT_EQ(code.error, Error::Io) << nth;
        EXPECT_LE(code.asked, 34u * (static_cast<DWORD>(nth) / 2 + 1)) << "no line is asked for behind the failure";
    }
}

TEST(PackBitsEncoding, WithoutMemoryItEndsWith1) {
    const ByteImage image = imageOf(noiseBytes(1000, 12), 100);
    const HGLOBAL block = makeBlock({});
    const StreamHandle stream = openMemoryStream(block, 0);
    CodecState state = byteState(stream, image);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(encodePackBits(state), Error::NoMemory);
        EXPECT_TRUE(fault.happened());
    }
    freeCodecBuffers(state);
    closeStream(stream);
    GlobalFree(block);
}

} // namespace
} // namespace vellum::test
