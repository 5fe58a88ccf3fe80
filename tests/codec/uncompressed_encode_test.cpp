// Uncompressed strips: the lines behind each other whatever their length, and how a run ends.
#include "byte_encoding.h"
#include "support/ccitt_writer.h"
#include "support/faults.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

ByteImage imageOf(DWORD lineBytes, DWORD height, DWORD rowsPerStrip = 0xFFFFFFFF) {
    return {noiseBytes(std::size_t{lineBytes} * height, lineBytes + height), lineBytes, rowsPerStrip, VELLUM_KEY_NONE};
}

void expectStored(const ByteImage &image) {
    const ByteCode code = encodeBytesOf(image, writeUncompressed);
    ASSERT_EQ(code.error, Error::None) << image.lineBytes;
    Bytes expected = image.before;
    const Bytes data = image.fillOrder == 2 ? reverseBits(image.data) : image.data;
    expected.insert(expected.end(), data.begin(), data.end());
    ASSERT_TRUE(code.stream == expected) << image.lineBytes;
    ASSERT_EQ(code.closed, image.strips());
    EXPECT_EQ(code.asked, image.height());
    auto offset = static_cast<DWORD>(image.before.size());
    for (DWORD strip = 0; strip < image.strips(); ++strip) {
        const DWORD count = static_cast<DWORD>(image.lines(strip * image.rowsPerStrip, image.rowsPerStrip).size());
        ASSERT_EQ(code.offsets[strip], offset) << image.lineBytes;
        ASSERT_EQ(code.counts[strip], count) << image.lineBytes;
        offset += count;
    }
    EXPECT_TRUE(decodeBytesOf(image, code, readUncompressed) == image.data) << image.lineBytes;
}

TEST(UncompressedWriting, LinesOfEveryLengthAreStoredWhole) {
    for (const DWORD lineBytes :
         {1U,     2U,     7U,     255U,   256U,   4000U,  5000U,  15999U, 16000U, 16001U, 16383U,
          16384U, 31999U, 32000U, 32001U, 32510U, 32511U, 32512U, 32766U, 32767U, 32768U, 70001U}) {
        expectStored(imageOf(lineBytes, 9));
        expectStored(imageOf(lineBytes, 9, 1));
        expectStored(imageOf(lineBytes, 9, 4));
    }
}

TEST(UncompressedWriting, ManyShortLinesFillManyCodeBuffers) {
    expectStored(imageOf(1, 100000));
    expectStored(imageOf(33, 4000));
    expectStored(imageOf(33, 4000, 1));
    expectStored(imageOf(1000, 200, 7));
}

TEST(UncompressedWriting, StripsBeginWhereTheStreamStands) {
    ByteImage image = imageOf(100, 10, 3);
    image.before = {1, 2, 3};
    expectStored(image);
}

TEST(UncompressedWriting, FillOrder2ReversesTheBitsOfEveryByte) {
    for (const DWORD lineBytes : {10U, 33000U}) {
        ByteImage image = imageOf(lineBytes, 5, 2);
        image.fillOrder = 2;
        expectStored(image);
    }
}

TEST(UncompressedWriting, WithoutALineFunctionLinesAreZeros) {
    const ByteImage image = imageOf(100, 3);
    const StreamHandle stream = openMemoryStream(makeBlock({}), 0);
    CodecState state = byteState(stream, image);
    EXPECT_EQ(writeUncompressed(state), Error::None);
    EXPECT_EQ(flushCodeBuffer(state), Error::None);
    freeCodecBuffers(state);
    const HGLOBAL block = memoryStreamBlock(stream);
    EXPECT_EQ(blockBytes(block), Bytes(300));
    closeStream(stream);
    GlobalFree(block);
}

TEST(UncompressedWriting, AnImageWithoutLinesOrBytesIsNothing) {
    for (const LONG lineBytes : {0L, 5L}) {
        CodecState state{};
        state.bytesPerLine = lineBytes;
        state.image.biHeight = lineBytes == 0 ? 4 : 0;
        EXPECT_EQ(writeUncompressed(state), Error::None);
        EXPECT_EQ(state.bufferBlock, nullptr);
    }
}

TEST(UncompressedWriting, ALineFunctionMayEndTheImageEarly) {
    for (const DWORD lineBytes : {50U, 40000U}) {
        ByteImage image = imageOf(lineBytes, 20, 6);
        for (const DWORD lines : {0U, 1U, 5U, 6U, 7U, 19U}) {
            image.answerAt = lines;
            const ByteCode code = encodeBytesOf(image, writeUncompressed);
            EXPECT_EQ(code.error, Error::None);
            EXPECT_EQ(code.asked, lines);
            EXPECT_TRUE(code.stream == image.lines(0, lines)) << lineBytes << ' ' << lines;
        }
    }
}

TEST(UncompressedWriting, AnErrorOfTheLineFunctionEndsTheRun) {
    ByteImage image = imageOf(50, 20, 6);
    image.answer = 77;
    for (const DWORD lines : {0U, 3U, 6U}) {
        image.answerAt = lines;
        const ByteCode code = encodeBytesOf(image, writeUncompressed);
        EXPECT_EQ(code.error, fromLineFunction(77));
        EXPECT_EQ(code.asked, lines);
    }
}

TEST(UncompressedWriting, AFailedWriteEndsTheRunWith6) {
    const TempFile file;
    for (const DWORD lineBytes : {1000U, 40000U}) {
        const ByteImage image = imageOf(lineBytes, 100000 / lineBytes, 10);
        for (long nth = 0; nth < 3; ++nth) {
            const FailNth fault(Call::Write, nth);
            const ByteCode code = encodeBytesToFile(file.path(), image, writeUncompressed);
            ASSERT_TRUE(fault.happened()) << nth;
            EXPECT_EQ(code.error, Error::Io) << nth;
        }
    }
}

TEST(UncompressedWriting, WithoutMemoryItEndsWith1) {
    const ByteImage image = imageOf(100, 10);
    CodecState state = byteState(kNoStream, image);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(writeUncompressed(state), Error::NoMemory);
        EXPECT_TRUE(fault.happened());
    }
    freeCodecBuffers(state);
}

} // namespace
} // namespace vellum::test
