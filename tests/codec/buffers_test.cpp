// The buffer operations as a codec module calls them: what they leave in the state, step by step.
#include "code_stream.h"
#include "codec/buffers.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <numeric>

namespace vellum::test {
namespace {

static_assert(sizeof(CodecState) == 176 && offsetof(CodecState, image) == 28);
static_assert(offsetof(CodecState, bytesPerLine) == 68 && offsetof(CodecState, stream) == 84);
static_assert(offsetof(CodecState, codeBuffer) == 96 && offsetof(CodecState, stripOffsets) == 132);
static_assert(offsetof(CodecState, lineFunction) == 144 && offsetof(CodecState, jpegProcess) == 156);
static_assert(offsetof(CodecState, workBlocks) == 160);

Bytes counting(std::size_t count) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), BYTE{0});
    return bytes;
}

// A state over a memory stream, as a front end sets it up.
class BufferRun {
public:
    explicit BufferRun(const Bytes &content, DWORD height = 4, DWORD rowsPerStrip = 2) : block_(makeBlock(content)) {
        state.stream = openMemoryStream(block_, static_cast<DWORD>(content.size()));
        state.streamLimit = static_cast<DWORD>(content.size());
        state.image.biWidth = 16;
        state.image.biHeight = static_cast<LONG>(height);
        state.image.biBitCount = 1;
        state.bytesPerLine = 2;
        state.fillOrder = 1;
        state.rowsPerStrip = rowsPerStrip;
        log.lineBytes = 2;
        state.userValue = log.userValue();
        state.lineFunction = &LineLog::receive;
    }
    BufferRun(const BufferRun &) = delete;
    BufferRun &operator=(const BufferRun &) = delete;
    ~BufferRun() {
        freeCodecBuffers(state);
        mClose(state.stream);
        GlobalFree(block_);
    }

    void strips(std::initializer_list<DWORD> offsets) {
        Bytes bytes;
        for (const DWORD offset : offsets) {
            for (int shift = 0; shift < 32; shift += 8) {
                bytes.push_back(static_cast<BYTE>(offset >> shift));
            }
        }
        state.stripOffsets = makeBlock(bytes);
        state.offsetsType = 4;
        state.stripCount = static_cast<DWORD>(offsets.size());
    }

    CodecState state{};
    LineLog log;

private:
    HGLOBAL block_;
};

TEST(DecodeBuffers, AShortStreamGetsACodeBufferOfItsSize) {
    BufferRun run(counting(500));
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(run.state.codeCapacity, 500);
    EXPECT_EQ(run.state.codeBytesLeft, 500u);
    EXPECT_EQ(run.state.lineBufferSize, 2u + 256u);
    EXPECT_EQ(GlobalSize(run.state.bufferBlock), 258u + 500u + 100u);
    EXPECT_EQ(run.state.codeBuffer, run.state.lineBuffer + 258);
    EXPECT_EQ(run.state.codePointer, run.state.codeBuffer);
    EXPECT_EQ(run.state.lineBytesLeft, 2);
    EXPECT_EQ(run.state.pixelsLeft, 16u);
    EXPECT_EQ(run.state.stripLastLine, 1u);
    EXPECT_EQ(run.state.stripEnd, 0u);
}

TEST(DecodeBuffers, ALongStreamIsReadBySpansOf32767Bytes) {
    BufferRun run(counting(70000));
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(run.state.codeCapacity, 32767);
    EXPECT_EQ(run.state.codeBytesLeft, 32767u);
    ASSERT_EQ(FillCodeBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.bufferBase, 32767u);
    EXPECT_EQ(run.state.codeBuffer[0], static_cast<BYTE>(32767));
    ASSERT_EQ(FillCodeBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.codeBytesLeft, 70000u - 2 * 32767u);
    EXPECT_EQ(run.state.streamPosition, 70000u);
    EXPECT_EQ(FillCodeBuffer(&run.state), DWORD{VELLUM_UNEXPECTED_END});
    EXPECT_EQ(run.state.codeBytesLeft, 0u);
}

TEST(DecodeBuffers, AnEmptyStreamCannotBeStarted) {
    BufferRun run({});
    EXPECT_EQ(InitDecodeBuffers(&run.state), DWORD{VELLUM_IO_ERROR});
}

TEST(DecodeBuffers, FillOrder2ReachesTheCodecReversed) {
    BufferRun run({0x01, 0x80, 0x12});
    run.state.fillOrder = 2;
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(run.state.codeBuffer[0], 0x80);
    EXPECT_EQ(run.state.codeBuffer[1], 0x01);
    EXPECT_EQ(run.state.codeBuffer[2], 0x48);
}

TEST(DecodeBuffers, AStripInsideTheCodeBufferIsEnteredWithoutARead) {
    BufferRun run(counting(200));
    run.strips({10, 50});
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(run.state.bufferBase, 10u);
    EXPECT_EQ(*run.state.codePointer, 10);
    const DWORD position = run.state.streamPosition;
    ASSERT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.stripEnd, 0u);
    ASSERT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.stripEnd, 1u);
    EXPECT_EQ(run.state.stripIndex, 1u);
    EXPECT_EQ(run.state.bufferBase, 10u);
    EXPECT_EQ(run.state.streamPosition, position);
    EXPECT_EQ(*run.state.codePointer, 50);
    EXPECT_EQ(run.state.codeBytesLeft, 150u) << "what was loaded bounds the strip";
}

TEST(DecodeBuffers, AStripOutsideTheCodeBufferIsReadFromItsOffset) {
    BufferRun run(counting(70000));
    run.strips({60000, 20});
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(*run.state.codePointer, static_cast<BYTE>(60000));
    EXPECT_EQ(run.state.codeBytesLeft, 10000u);
    FlushDataBuffer(&run.state);
    ASSERT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(*run.state.codePointer, 20);
    EXPECT_EQ(run.state.codeBytesLeft, 32767u);
}

TEST(DecodeBuffers, OffsetsMayBeShorts) {
    BufferRun run(counting(70000));
    run.state.stripOffsets = makeBlock({10, 0, 0x60, 0xEA});
    run.state.offsetsType = 3;
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(*run.state.codePointer, 10);
    FlushDataBuffer(&run.state);
    ASSERT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(*run.state.codePointer, static_cast<BYTE>(60000));
}

TEST(DecodeBuffers, TheEndOfTheImageIsSaidBy3) {
    BufferRun run(counting(10), 3, 2);
    run.strips({0, 5});
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(FlushDataBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.stripLastLine, 2u) << "the last strip is short";
    EXPECT_EQ(FlushDataBuffer(&run.state), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(run.log.lines, 3u);
}

TEST(DecodeBuffers, ALineFunctionsResultLeavesTheStateAsItWas) {
    BufferRun run(counting(10));
    run.log.answer = 77;
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    run.state.lineBytesLeft = 1;
    EXPECT_EQ(FlushDataBuffer(&run.state), 77u);
    EXPECT_EQ(run.state.currentLine, 0u);
    EXPECT_EQ(run.state.lineBytesLeft, 1);
}

TEST(DecodeBuffers, StripsThatAreNotThereFailWith6) {
    BufferRun outside(counting(10));
    outside.strips({11, 0});
    EXPECT_EQ(InitDecodeBuffers(&outside.state), DWORD{VELLUM_IO_ERROR});
    BufferRun short_(counting(10));
    short_.strips({2});
    ASSERT_EQ(InitDecodeBuffers(&short_.state), 0u);
    EXPECT_EQ(FlushDataBuffer(&short_.state), 0u);
    EXPECT_EQ(FlushDataBuffer(&short_.state), DWORD{VELLUM_IO_ERROR}) << "the table ends before the image";
}

TEST(DecodeBuffers, OldJpegStripsBeginBehindEightBytes) {
    BufferRun run(counting(100));
    run.strips({10, 40});
    run.state.compressionKey = VELLUM_KEY_JPEG;
    ASSERT_EQ(InitDecodeBuffers(&run.state), 0u);
    EXPECT_EQ(*run.state.codePointer, 18);
    BufferRun newer(counting(100));
    newer.strips({10, 40});
    newer.state.compressionKey = VELLUM_KEY_JPEG;
    newer.state.jpegProcess = 1;
    ASSERT_EQ(InitDecodeBuffers(&newer.state), 0u);
    EXPECT_EQ(*newer.state.codePointer, 10);
}

// A run that starts in a later strip.
struct Later {
    Later(std::size_t bytes, std::initializer_list<DWORD> offsets, DWORD strip) : run(counting(bytes), 8, 2) {
        run.strips(offsets);
        run.state.stripIndex = strip;
        run.state.currentLine = 2 * strip;
        result = InitDecodeBuffers(&run.state);
    }
    BufferRun run;
    DWORD result;
};

TEST(StartStrip, ANearStripIsReachedThroughTheFirstStripsSpan) {
    const Later later(40000, {100, 20000, 30000}, 1);
    EXPECT_EQ(later.result, 0u);
    EXPECT_EQ(later.run.state.bufferBase, 100u);
    EXPECT_EQ(*later.run.state.codePointer, static_cast<BYTE>(20000));
    EXPECT_EQ(later.run.state.codeBytesLeft, 32767u - 19900u);
    EXPECT_EQ(later.run.state.stripLastLine, 3u);
}

TEST(StartStrip, AFarStripIsReachedThroughTheSpanBehindOneCapacity) {
    const Later later(70000, {100, 40000}, 1);
    EXPECT_EQ(later.result, 0u);
    EXPECT_EQ(later.run.state.bufferBase, 32767u);
    EXPECT_EQ(*later.run.state.codePointer, static_cast<BYTE>(40000));
    EXPECT_EQ(later.run.state.codeBytesLeft, 32767u - (40000u - 32767u));
}

TEST(StartStrip, StripsOutsideThoseSpansArePositionedOnDirectly) {
    const Later distant(100000, {100, 90000}, 1);
    EXPECT_EQ(distant.result, 0u);
    EXPECT_EQ(distant.run.state.bufferBase, 90000u);
    EXPECT_EQ(*distant.run.state.codePointer, static_cast<BYTE>(90000));
    const Later before(40000, {30000, 50}, 1);
    EXPECT_EQ(before.result, 0u);
    EXPECT_EQ(*before.run.state.codePointer, 50);
    const Later small(900, {8, 899}, 1);
    EXPECT_EQ(small.result, 0u);
    EXPECT_EQ(*small.run.state.codePointer, static_cast<BYTE>(899));
    EXPECT_EQ(small.run.state.codeBytesLeft, 1u);
}

TEST(EncodeBuffers, LinesComeInAndStripsAreRecorded) {
    BufferRun run({}, 3, 2);
    run.state.stripOffsets = makeBlock(Bytes(8));
    run.state.stripByteCounts = makeBlock(Bytes(8));
    mWrite(run.state.stream, counting(5).data(), 5);
    ASSERT_EQ(InitEncodeBuffers(&run.state), 0u);
    EXPECT_EQ(run.state.codeCapacity, 32767);
    EXPECT_EQ(run.state.codeBytesLeft, 32767u);
    EXPECT_EQ(run.state.streamLimit, 5u);
    EXPECT_EQ(run.log.lines, 1u);
    const auto put = [&run](DWORD count) {
        run.state.codePointer += count;
        run.state.codeBytesLeft -= count;
    };
    put(10);
    ASSERT_EQ(FillDataBuffer(&run.state), 0u);
    EXPECT_EQ(run.state.stripEnd, 1u);
    put(20);
    ASSERT_EQ(FlushCodeBuffer(&run.state), 0u);
    put(3);
    ASSERT_EQ(FillDataBuffer(&run.state), 0u);
    put(7);
    EXPECT_EQ(FillDataBuffer(&run.state), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(FlushCodeBuffer(&run.state), 0u);
    EXPECT_EQ(blockBytes(run.state.stripOffsets), (Bytes{5, 0, 0, 0, 38, 0, 0, 0}));
    EXPECT_EQ(blockBytes(run.state.stripByteCounts), (Bytes{33, 0, 0, 0, 7, 0, 0, 0}));
    EXPECT_EQ(mSize(run.state.stream), 45);
    EXPECT_EQ(run.log.lines, 3u);
}

} // namespace
} // namespace vellum::test
