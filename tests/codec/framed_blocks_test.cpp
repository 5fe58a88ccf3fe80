// MMR code in blocks with headers: the blocks, what stands between the lines, and the encoder's side of the blocks.
#include "code_stream.h"
#include "codec/buffers.h"
#include "core/library_state.h"
#include "support/coded_tiff.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

constexpr DWORD kWidth = 20;

Decoded decodeBlocks(const Bytes &file, DWORD height, DWORD fillOrder = 1, DWORD offset = 0) {
    const TempFile temp(file);
    const RawFile opened(temp.path());
    LineLog log;
    const Outcome outcome = decodeMmrInto(log, opened.get(), {offset, kWidth, height, 0, fillOrder});
    EXPECT_TRUE(log.inOrder);
    return {outcome, log.data, log.lines};
}

const Row kFirst = rowFromRuns({3, 5, 12});
const Row kSecond = rowFromRuns({4, 5, 11});
const Row kThird = rowFromRuns({7, 2, 11});

BitWriter twoDimensional(const Row &reference, const Row &row) {
    BitWriter out;
    appendTwoDimensional(out, reference, row);
    return out;
}
BitWriter oneDimensional(const Row &row) {
    BitWriter out;
    appendRuns(out, row);
    return out;
}

TEST(FramedMmr, EveryBlockHasAHeader) {
    const Bytes code = encodeGroup4({kFirst, kSecond, kThird});
    Bytes file = frameBlocks(code, 2);
    EXPECT_EQ(decodeBlocks(file, 3).lines, packRows({kFirst, kSecond, kThird}));
    for (const std::size_t spoilt : {std::size_t{0}, std::size_t{1}}) {
        Bytes bad = file;
        bad[spoilt] ^= 1;
        EXPECT_EQ(decodeBlocks(bad, 3).outcome, failedWith(VELLUM_UNEXPECTED_END)) << "the first header";
        bad = file;
        bad[6 + spoilt] ^= 1;
        const Decoded decoded = decodeBlocks(bad, 3);
        EXPECT_EQ(decoded.outcome, failedWith(VELLUM_UNEXPECTED_END)) << "the second header";
        EXPECT_LT(decoded.lineCount, 3U);
    }
}

TEST(FramedMmr, ALengthOf0IsAWholeCapacity) {
    const Bytes code = encodeGroup4({kFirst, kSecond});
    Bytes file = {0xFE, 0x92, 0, 0};
    file.insert(file.end(), code.begin(), code.end());
    const Decoded decoded = decodeBlocks(file, 2);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRows({kFirst, kSecond}));
}

TEST(FramedMmr, FillOrder2ReversesTheCodeAndNotTheHeaders) {
    const Bytes file = frameBlocks(reverseBits(encodeGroup4({kFirst, kSecond, kThird})), 3);
    const Decoded decoded = decodeBlocks(file, 3, 2);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRows({kFirst, kSecond, kThird}));
}

TEST(FramedMmr, LinesBehindEolsHaveATagBitAndLinesWithoutOneAreTwoDimensional) {
    const Row white(kWidth);
    BitWriter code = twoDimensional(white, kFirst);
    code.bits(kEol).bits("1").bits(oneDimensional(kSecond));
    code.bits(kEol).bits("0").bits(twoDimensional(kSecond, kThird));
    code.bits(twoDimensional(kThird, kFirst));
    const Decoded decoded = decodeBlocks(frameBlocks(code.bytes(), 100), 4);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRows({kFirst, kSecond, kThird, kFirst}));
}

TEST(FramedMmr, AnEolInFrontOfTheFirstLineIsPassedOver) {
    const BitWriter code = BitWriter().bits("0000").bits(kEol).bits("1").bits(oneDimensional(kFirst));
    const Decoded decoded = decodeBlocks(frameBlocks(code.bytes(), 100), 1);
    EXPECT_EQ(decoded.outcome, kDecoded);
    EXPECT_EQ(decoded.lines, packRow(kFirst));
}

TEST(FramedMmr, AnEofbBeforeTheLastLineIsUnexpected) {
    const Decoded decoded = decodeBlocks(frameBlocks(encodeGroup4({kFirst, kSecond}), 100), 5);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_EOFB_UNEXPECTED));
    EXPECT_EQ(decoded.lines, packRows({kFirst, kSecond}));
}

TEST(FramedMmr, DamagedModesAreErrors) {
    const BitWriter code = twoDimensional(Row(kWidth), kFirst).bits("0000001111");
    const Decoded decoded = decodeBlocks(frameBlocks(code.bytes(), 100), 3);
    EXPECT_EQ(decoded.outcome, failedWith(VELLUM_CODE_ERROR));
    EXPECT_EQ(decoded.lines, packRow(kFirst));
}

TEST(FramedMmr, BlocksMayBeginBehindAnOffset) {
    Bytes file = {9, 9, 9};
    const Bytes blocks = frameBlocks(encodeGroup4({kFirst}), 100);
    file.insert(file.end(), blocks.begin(), blocks.end());
    EXPECT_EQ(decodeBlocks(file, 1, 1, 3).lines, packRow(kFirst));
    EXPECT_EQ(decodeBlocks(file, 1).outcome, failedWith(VELLUM_UNEXPECTED_END)) << "no header at the start";
}

TEST(FramedMmr, IsReadFromFilesOnly) {
    const Bytes blocks = frameBlocks(encodeGroup4({kFirst}), 100);
    const HGLOBAL block = makeBlock(blocks);
    const StreamHandle stream = openMemoryStream(block, static_cast<DWORD>(blocks.size()));
    LineLog log;
    EXPECT_EQ(decodeMmrInto(log, stream, {0, kWidth, 1}), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(log.lines, 0U);
    mClose(stream);
    GlobalFree(block);
}

// ---------------------------------------------------------------- the encoder's side

// A state that encodes lines of two bytes to a memory stream.
class EncodeRun {
public:
    EncodeRun() : block_(makeBlock({})) {
        state.stream = openMemoryStream(block_, 0);
        state.image.biWidth = 16;
        state.image.biHeight = 4;
        state.image.biBitCount = 1;
        state.bytesPerLine = 2;
        state.fillOrder = 1;
        state.rowsPerStrip = 4;
    }
    EncodeRun(const EncodeRun &) = delete;
    EncodeRun &operator=(const EncodeRun &) = delete;
    ~EncodeRun() {
        freeCodecBuffers(state);
        GlobalFree(library.memoryStreams[-state.stream].block);
        mClose(state.stream);
    }

    void put(const Bytes &bytes) {
        std::copy(bytes.begin(), bytes.end(), state.codePointer);
        state.codePointer += bytes.size();
        state.codeBytesLeft -= static_cast<DWORD>(bytes.size());
    }
    [[nodiscard]] Bytes written() const { return blockBytes(library.memoryStreams[-state.stream].block); }

    CodecState state{};

private:
    HGLOBAL block_;
};

TEST(EncodedBlocks, HaveTheHeaderAndTheUsedBytes) {
    EncodeRun run;
    ASSERT_EQ(InitEncodeBuffers(&run.state), 0U);
    run.put({1, 2, 3});
    EXPECT_EQ(flushCodeBlock(run.state), Error::None);
    EXPECT_EQ(run.written(), (Bytes{0xFE, 0x92, 0, 3, 1, 2, 3}));
    EXPECT_EQ(run.state.codeBytesLeft, 32767U);
    EXPECT_EQ(run.state.codePointer, run.state.codeBuffer);
    EXPECT_EQ(run.state.streamPosition, 3U);
    run.put(Bytes(0x1234, BYTE{7}));
    EXPECT_EQ(flushCodeBlock(run.state), Error::None);
    const Bytes file = run.written();
    ASSERT_EQ(file.size(), 7U + 4U + 0x1234U);
    EXPECT_EQ(file[9], 0x12);
    EXPECT_EQ(file[10], 0x34);
}

TEST(EncodedBlocks, FillOrder2ReversesTheCodeAndNotTheHeader) {
    EncodeRun run;
    run.state.fillOrder = 2;
    ASSERT_EQ(InitEncodeBuffers(&run.state), 0U);
    run.put({0x01, 0x80});
    EXPECT_EQ(flushCodeBlock(run.state), Error::None);
    EXPECT_EQ(run.written(), (Bytes{0xFE, 0x92, 0, 2, 0x80, 0x01}));
    run.put({0x03});
    EXPECT_EQ(FlushCodeBuffer(&run.state), 0U);
    EXPECT_EQ(run.written(), (Bytes{0xFE, 0x92, 0, 2, 0x80, 0x01, 0xC0}));
}

TEST(EncodedBlocks, AStreamThatTakesNothingIsAnIoError) {
    EncodeRun run;
    ASSERT_EQ(InitEncodeBuffers(&run.state), 0U);
    run.put({1});
    const StreamHandle stream = run.state.stream;
    run.state.stream = -29;
    EXPECT_EQ(FlushCodeBuffer(&run.state), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(flushCodeBlock(run.state), Error::Io);
    run.state.stream = stream;
}

DWORD VELLUMAPI refuses(BYTE *, DWORD line, DWORD) {
    return line == 1 ? 55 : 0;
}

TEST(EncodeLines, ALineFunctionsResultComesThrough) {
    EncodeRun run;
    run.state.lineFunction = &refuses;
    ASSERT_EQ(InitEncodeBuffers(&run.state), 0U);
    EXPECT_EQ(FillDataBuffer(&run.state), 55U);
}

// ---------------------------------------------------------------- the state's end, and the library's flag

TEST(CodecBuffersEnd, EveryBlockIsFreedAndItsHandleForgotten) {
    CodecState state{};
    state.bytesPerLine = 2;
    state.image.biHeight = 1;
    state.rowsPerStrip = 1;
    state.streamLimit = 10;
    ASSERT_EQ(allocateBuffers(state, kPlainCodeCapacity), Error::None);
    EXPECT_EQ(lockCount(state.bufferBlock), 1U) << "locked for the whole run";
    state.stripOffsets = makeBlock({1});
    state.stripByteCounts = makeBlock({2});
    for (HGLOBAL &block : state.workBlocks) {
        block = makeBlock({3});
    }
    freeCodecBuffers(state);
    EXPECT_EQ(state.bufferBlock, nullptr);
    EXPECT_EQ(state.stripOffsets, nullptr);
    EXPECT_EQ(state.stripByteCounts, nullptr);
    for (const HGLOBAL block : state.workBlocks) {
        EXPECT_EQ(block, nullptr);
    }
    freeCodecBuffers(state);
}

TEST(CodecBuffersStart, FreshBuffersAreZeros) {
    CodecState state{};
    state.bytesPerLine = 3;
    state.image.biHeight = 1;
    state.rowsPerStrip = 1;
    state.streamLimit = 10;
    ASSERT_EQ(allocateBuffers(state, kPlainCodeCapacity), Error::None);
    EXPECT_EQ(blockBytes(state.bufferBlock), Bytes(3 + 256 + 10 + 100));
    freeCodecBuffers(state);
}

DWORD flagDuringRun = 0;
DWORD VELLUMAPI looksAtTheFlag(BYTE *, DWORD, DWORD) {
    flagDuringRun = library.partialDecode;
    return 0;
}

TEST(PartialDecodeFlag, IsSetDuringRunsThatStartInALaterStripAndAfterEveryRun) {
    const CodedPage page{.width = 16, .height = 2, .key = VELLUM_KEY_NONE, .rowsPerStrip = 1};
    const OpenedTiff tiff(codedTiff(page, {{1, 2}, {3, 4}}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (const DWORD strip : {DWORD{0}, DWORD{1}}) {
        flagDuringRun = 7;
        EXPECT_EQ(DecodeTiffImage(tiff.get(), 0, strip, 0, 0, &looksAtTheFlag), 1U);
        EXPECT_EQ(flagDuringRun, strip);
        EXPECT_EQ(library.partialDecode, 1U);
    }
}

} // namespace
} // namespace vellum::test
