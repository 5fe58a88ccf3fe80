// Memory and file streams through the exported primitives.
#include "core/stream.h"

#include "core/library_state.h"
#include "support/faults.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

#include <numeric>

namespace vellum::test {
namespace {

constexpr LONG kMost = 0x7FFFFFFF;

// The bytes 0, 1, 2 ...
Bytes countingBytes(std::size_t count) {
    Bytes bytes(count);
    std::iota(bytes.begin(), bytes.end(), BYTE{0});
    return bytes;
}

// A memory stream over 100 counting bytes; it closes itself.
class MemoryStream : public ::testing::Test {
protected:
    MemoryStream() : block_(makeBlock(countingBytes(100))), stream_(openMemoryStream(block_, 100)) {}
    ~MemoryStream() override {
        mClose(stream_);
        GlobalFree(block_);
    }

    Bytes read(LONG count) const {
        Bytes bytes(static_cast<std::size_t>(count), BYTE{0xEE});
        EXPECT_EQ(mRead(stream_, bytes.data(), count), count);
        return bytes;
    }

    HGLOBAL block_;
    StreamHandle stream_;
};

TEST_F(MemoryStream, IsSlot2AndBeginsAtItsStart) {
    EXPECT_EQ(stream_, -2);
    EXPECT_EQ(mTell(stream_), 0);
    EXPECT_EQ(mSize(stream_), 100);
    EXPECT_EQ(memoryStreamBlock(stream_), block_);
}

TEST_F(MemoryStream, SeeksFromTheStartUpToItsSize) {
    EXPECT_EQ(mSeek(stream_, 100, 0), 100);
    EXPECT_EQ(mSeek(stream_, 101, 0), -1);
    EXPECT_EQ(mTell(stream_), 100) << "a refused seek leaves the position";
    EXPECT_EQ(mSeek(stream_, 7, 0), 7);
}

TEST_F(MemoryStream, SeeksFromTheCurrentPosition) {
    mSeek(stream_, 50, 0);
    EXPECT_EQ(mSeek(stream_, -20, 1), 30);
    EXPECT_EQ(mSeek(stream_, 70, 1), 100);
    EXPECT_EQ(mSeek(stream_, 1, 1), -1);
    EXPECT_EQ(mSeek(stream_, kMost, 1), -1);
    EXPECT_EQ(mTell(stream_), 100);
}

// By design.
TEST_F(MemoryStream, SeeksBackwardsFromTheEnd) {
    EXPECT_EQ(mSeek(stream_, 10, 2), 90);
    EXPECT_EQ(mSeek(stream_, 0, 2), 100);
    EXPECT_EQ(mSeek(stream_, 100, 2), 0);
    EXPECT_EQ(mSeek(stream_, 101, 2), -1);
    EXPECT_EQ(mTell(stream_), 0);
}

// By design: from the end only positions before the start are refused.
TEST_F(MemoryStream, SeeksBehindItsEndWithANegativeOffsetFromTheEnd) {
    EXPECT_EQ(mSeek(stream_, -10, 2), 110);
    EXPECT_EQ(mSeek(stream_, -kMost, 2), -1) << "no such position";
    EXPECT_EQ(mSeek(stream_, -kMost - 1, 2), -1);
    EXPECT_EQ(mTell(stream_), 110);
}

// By design.
TEST_F(MemoryStream, MayStandBeforeItsStart) {
    EXPECT_EQ(mSeek(stream_, -5, 0), -5);
    EXPECT_EQ(mTell(stream_), -5);
    EXPECT_EQ(read(8), (Bytes{0, 0, 0, 0, 0, 0, 1, 2}));
    EXPECT_EQ(mSeek(stream_, -10, 1), -7);
    const BYTE byte = 1;
    EXPECT_EQ(mWrite(stream_, &byte, 1), -1) << "nothing can be written there";
    EXPECT_EQ(mTell(stream_), -7);
    EXPECT_EQ(mSeek(stream_, -kMost - 1, 0), -kMost - 1);
    EXPECT_EQ(mSeek(stream_, -1, 1), -1) << "no position is that low";
    EXPECT_EQ(read(3), (Bytes{0, 0, 0}));
}

TEST_F(MemoryStream, KeepsItsPositionForAnUnknownOrigin) {
    mSeek(stream_, 42, 0);
    EXPECT_EQ(mSeek(stream_, 5, 3), 42);
    EXPECT_EQ(mSeek(stream_, 5, -1), 42);
    EXPECT_EQ(mTell(stream_), 42);
}

TEST_F(MemoryStream, ReadsWhatIsThere) {
    EXPECT_EQ(read(3), (Bytes{0, 1, 2}));
    EXPECT_EQ(read(2), (Bytes{3, 4}));
    EXPECT_EQ(mTell(stream_), 5);
    EXPECT_EQ(lockCount(block_), 0u);
}

// By design.
TEST_F(MemoryStream, AlwaysDeliversWhatItIsAskedForWithZerosBehindTheBlock) {
    mSeek(stream_, 80, 0);
    Bytes expected = countingBytes(100);
    expected.erase(expected.begin(), expected.begin() + 80);
    expected.resize(50);
    EXPECT_EQ(read(50), expected);
    EXPECT_EQ(mTell(stream_), 130);
    EXPECT_EQ(read(4), Bytes(4));
    EXPECT_EQ(mTell(stream_), 134);
}

TEST_F(MemoryStream, ReadsTheBlockAlsoBehindTheStreamsOwnSize) {
    const StreamHandle shorter = openMemoryStream(block_, 10);
    EXPECT_EQ(mSeek(shorter, 8, 0), 8);
    EXPECT_EQ(read(4), (Bytes{8, 9, 10, 11}));
}

TEST_F(MemoryStream, RefusesToReadANegativeCountOrBehindTheLastPosition) {
    BYTE byte = 7;
    EXPECT_EQ(mRead(stream_, &byte, -1), -1);
    EXPECT_EQ(mRead(stream_, &byte, -kMost - 1), -1);
    mSeek(stream_, 50, 0);
    EXPECT_EQ(mRead(stream_, &byte, kMost - 49), -1);
    EXPECT_EQ(mRead(stream_, nullptr, 1), -1);
    EXPECT_EQ(byte, 7);
    EXPECT_EQ(mTell(stream_), 50);
    EXPECT_EQ(mRead(stream_, nullptr, 0), 0);
}

TEST_F(MemoryStream, WritesInPlace) {
    mSeek(stream_, 98, 0);
    const Bytes bytes = {0xAA, 0xBB};
    EXPECT_EQ(mWrite(stream_, bytes.data(), 2), 2);
    EXPECT_EQ(mTell(stream_), 100);
    EXPECT_EQ(mSize(stream_), 100);
    const Bytes content = blockBytes(memoryStreamBlock(stream_));
    ASSERT_EQ(content.size(), 100u);
    EXPECT_EQ(content[97], 97);
    EXPECT_EQ(content[98], 0xAA);
    EXPECT_EQ(content[99], 0xBB);
}

TEST_F(MemoryStream, GrowsByExactlyWhatIsWritten) {
    mSeek(stream_, 95, 0);
    EXPECT_EQ(mWrite(stream_, Bytes(10, 0xCC).data(), 10), 10);
    EXPECT_EQ(mSize(stream_), 105);
    EXPECT_EQ(mTell(stream_), 105);
    block_ = memoryStreamBlock(stream_);
    const Bytes content = blockBytes(block_);
    ASSERT_EQ(content.size(), 105u);
    EXPECT_EQ(content[94], 94);
    EXPECT_EQ(content[95], 0xCC);
    EXPECT_EQ(content[104], 0xCC);
    EXPECT_EQ(lockCount(block_), 0u);
}

TEST_F(MemoryStream, FillsTheGapBehindItsEndWithZeros) {
    mSeek(stream_, -3, 2);
    EXPECT_EQ(mWrite(stream_, Bytes{1}.data(), 1), 1);
    block_ = memoryStreamBlock(stream_);
    const Bytes content = blockBytes(block_);
    ASSERT_EQ(content.size(), 104u);
    EXPECT_EQ(content[99], 99);
    EXPECT_EQ(Bytes(content.begin() + 100, content.end()), (Bytes{0, 0, 0, 1}));
}

TEST_F(MemoryStream, MakesTheBlockOfAShorterStreamAsLongAsTheStream) {
    openMemoryStream(block_, 10);
    mSeek(stream_, 10, 0);
    EXPECT_EQ(mWrite(stream_, Bytes{1, 2}.data(), 2), 2);
    block_ = memoryStreamBlock(stream_);
    EXPECT_EQ(blockBytes(block_), (Bytes{0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 1, 2}));
}

TEST_F(MemoryStream, WritesNothing) {
    EXPECT_EQ(mWrite(stream_, nullptr, 0), 0);
    EXPECT_EQ(mWrite(stream_, nullptr, 1), -1);
    EXPECT_EQ(mTell(stream_), 0);
}

TEST_F(MemoryStream, RefusesToWriteBehindTheLastPosition) {
    const BYTE byte = 1;
    mSeek(stream_, 100, 0);
    EXPECT_EQ(mWrite(stream_, &byte, 0x7FFFFFFF), -1);
    EXPECT_EQ(mWrite(stream_, &byte, 0xFFFFFFFF), -1);
    EXPECT_EQ(mTell(stream_), 100);
    EXPECT_EQ(mSize(stream_), 100);
    EXPECT_EQ(memoryStreamBlock(stream_), block_);
}

TEST_F(MemoryStream, RefusesToWriteInsideItsSizeButBehindItsBlock) {
    openMemoryStream(block_, 200);
    EXPECT_EQ(mSeek(stream_, 150, 0), 150);
    EXPECT_EQ(mWrite(stream_, Bytes(10, 1).data(), 10), -1);
    EXPECT_EQ(mSeek(stream_, 95, 0), 95);
    EXPECT_EQ(mWrite(stream_, Bytes(10, 1).data(), 10), -1);
    EXPECT_EQ(blockBytes(block_), countingBytes(100));
}

TEST_F(MemoryStream, HasNoBlockAfterItCouldNotGrow) {
    mSeek(stream_, 100, 0);
    {
        const FailNth fault(Call::Reallocate, 0);
        EXPECT_EQ(mWrite(stream_, Bytes(10, 1).data(), 10), -1);
    }
    EXPECT_EQ(memoryStreamBlock(stream_), nullptr);
    EXPECT_EQ(blockBytes(block_), countingBytes(100)) << "the block is still its owner's";
    BYTE byte = 0;
    EXPECT_EQ(mRead(stream_, &byte, 1), -1);
    EXPECT_EQ(TiffError(), 0u) << "the primitives set no error";
}

TEST_F(MemoryStream, NeverMovesABlockThatItsOwnerHoldsLocked) {
    const void *address = GlobalLock(block_);
    mSeek(stream_, 100, 0);
    EXPECT_EQ(mWrite(stream_, Bytes(1000000, 1).data(), 1000000), -1);
    EXPECT_EQ(memoryStreamBlock(stream_), nullptr);
    EXPECT_EQ(GlobalLock(block_), address);
    EXPECT_EQ(lockCount(block_), 2u);
    GlobalUnlock(block_);
    GlobalUnlock(block_);
    EXPECT_EQ(blockBytes(block_), countingBytes(100));
}

// By design.
TEST_F(MemoryStream, IsTakenOverByTheNextOneThatIsOpened) {
    mSeek(stream_, 50, 0);
    HGLOBAL second = makeBlock({9, 8, 7});
    EXPECT_EQ(openMemoryStream(second, 3), -2);
    EXPECT_EQ(mSize(stream_), 3);
    EXPECT_EQ(mTell(stream_), 0);
    EXPECT_EQ(read(3), (Bytes{9, 8, 7}));
    GlobalFree(second);
}

TEST_F(MemoryStream, IsForgottenByClosingAndItsBlockKept) {
    EXPECT_EQ(mClose(stream_), 0);
    EXPECT_EQ(memoryStreamBlock(stream_), nullptr);
    EXPECT_EQ(mTell(stream_), -1);
    EXPECT_EQ(mSize(stream_), -1);
    BYTE byte = 0;
    EXPECT_EQ(mRead(stream_, &byte, 1), -1);
    EXPECT_EQ(mWrite(stream_, &byte, 1), -1);
    EXPECT_EQ(mSeek(stream_, 0, 0), -1);
    EXPECT_EQ(mClose(stream_), 0);
    EXPECT_EQ(blockBytes(block_), countingBytes(100));
}

TEST(MemoryStreams, StartWithAllSlotsFree) {
    for (StreamHandle stream = -30; stream <= -2; ++stream) {
        EXPECT_EQ(mTell(stream), -1) << stream;
        EXPECT_EQ(mSize(stream), -1) << stream;
        EXPECT_EQ(memoryStreamBlock(stream), nullptr) << stream;
        EXPECT_EQ(mClose(stream), 0) << stream;
    }
}

TEST(MemoryStreams, WorkInEverySlotThatAHandleCanName) {
    // No call opens these, but a slot that was given a block serves as any other.
    HGLOBAL block = makeBlock(countingBytes(4));
    library.memoryStreams[30] = {block, 1, 4};
    BYTE bytes[2] = {};
    EXPECT_EQ(mRead(-30, bytes, 2), 2);
    EXPECT_EQ(bytes[1], 2);
    EXPECT_EQ(mSize(-30), 4);
    EXPECT_EQ(mSeek(-30, 4, 0), 4);
    EXPECT_EQ(mClose(-30), 0);
    EXPECT_EQ(library.memoryStreams[30].block, nullptr);
    GlobalFree(block);
}

TEST(MemoryStreams, GetABlockByTheFirstWrite) {
    const StreamHandle stream = openMemoryStream(nullptr, 0);
    BYTE byte = 0;
    EXPECT_EQ(mRead(stream, &byte, 1), -1);
    EXPECT_EQ(mWrite(stream, Bytes{5, 6, 7}.data(), 3), 3);
    EXPECT_EQ(mSize(stream), 3);
    HGLOBAL block = memoryStreamBlock(stream);
    EXPECT_EQ(blockBytes(block), (Bytes{5, 6, 7}));
    EXPECT_EQ(mClose(stream), 0);
    GlobalFree(block);
}

TEST(MemoryStreams, StayWithoutABlockWhenThereIsNoMemoryForTheFirstWrite) {
    const StreamHandle stream = openMemoryStream(nullptr, 0);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(mWrite(stream, Bytes{5, 6, 7}.data(), 3), -1);
    }
    EXPECT_EQ(memoryStreamBlock(stream), nullptr);
    mClose(stream);
}

TEST(StreamHandles, ThatNameNothingFailEveryOperation) {
    for (const StreamHandle stream : {0, -1, -31, -32, -1000, -0x7FFFFFFF - 1}) {
        BYTE byte = 7;
        EXPECT_EQ(mRead(stream, &byte, 1), -1) << stream;
        EXPECT_EQ(mRead(stream, &byte, 0), -1) << stream;
        EXPECT_EQ(mWrite(stream, &byte, 1), -1) << stream;
        EXPECT_EQ(mSeek(stream, 0, 0), -1) << stream;
        EXPECT_EQ(mSeek(stream, 0, 1), -1) << stream;
        EXPECT_EQ(mTell(stream), -1) << stream;
        EXPECT_EQ(mSize(stream), -1) << stream;
        EXPECT_EQ(memoryStreamBlock(stream), nullptr) << stream;
        EXPECT_EQ(byte, 7);
    }
}

// By design.
TEST(StreamHandles, BelowTheTableComeBackFromClosing) {
    EXPECT_EQ(mClose(-31), -31);
    EXPECT_EQ(mClose(-1000), -1000);
    EXPECT_EQ(mClose(0), -1);
    EXPECT_EQ(mClose(-1), 0) << "slot 1 is always free";
}

TEST(FileStream, ReadsSeeksAndTells) {
    const TempFile file(countingBytes(100));
    const StreamHandle stream = openFileStream(file.path(), kOpenRead);
    ASSERT_GT(stream, 0);
    EXPECT_EQ(memoryStreamBlock(stream), nullptr);
    EXPECT_EQ(mSize(stream), 100);
    BYTE bytes[20] = {};
    EXPECT_EQ(mRead(stream, bytes, 3), 3);
    EXPECT_EQ(bytes[2], 2);
    EXPECT_EQ(mTell(stream), 3);
    EXPECT_EQ(mSize(stream), 100);
    EXPECT_EQ(mTell(stream), 3) << "asking for the size keeps the position";
    EXPECT_EQ(mSeek(stream, 90, 0), 90);
    EXPECT_EQ(mSeek(stream, -5, 1), 85);
    EXPECT_EQ(mSeek(stream, -10, 2), 90) << "from a file's end the offset is added";
    EXPECT_EQ(mRead(stream, bytes, 20), 10) << "a file ends";
    EXPECT_EQ(mRead(stream, bytes, 20), 0);
    EXPECT_EQ(mSeek(stream, -1, 0), -1);
    EXPECT_EQ(mRead(stream, bytes, -1), -1);
    EXPECT_EQ(mClose(stream), 0);
}

TEST(FileStream, WritesAndGrows) {
    const TempFile file;
    const StreamHandle stream = openFileStream(file.path(), kOpenCreate);
    ASSERT_GT(stream, 0);
    EXPECT_EQ(mSize(stream), 0);
    EXPECT_EQ(mWrite(stream, Bytes{1, 2, 3}.data(), 3), 3);
    EXPECT_EQ(mSeek(stream, 1, 0), 1);
    EXPECT_EQ(mWrite(stream, Bytes{9}.data(), 1), 1);
    EXPECT_EQ(mSize(stream), 3);
    EXPECT_EQ(mClose(stream), 0);
    EXPECT_EQ(readFile(file.path()), (Bytes{1, 9, 3}));
}

TEST(FileStream, AnswersFailuresOfTheSystemWithMinus1) {
    const TempFile file(countingBytes(10));
    const StreamHandle stream = openFileStream(file.path(), kOpenAppend);
    ASSERT_GT(stream, 0);
    BYTE byte = 0;
    {
        const FailNth fault(Call::Read, 0);
        EXPECT_EQ(mRead(stream, &byte, 1), -1);
    }
    {
        const FailNth fault(Call::Write, 0);
        EXPECT_EQ(mWrite(stream, &byte, 1), -1);
    }
    {
        const FailNth fault(Call::Seek, 0);
        EXPECT_EQ(mSeek(stream, 1, 0), -1);
    }
    {
        const FailNth fault(Call::Seek, 0);
        EXPECT_EQ(mSize(stream), -1);
    }
    EXPECT_EQ(mClose(stream), 0);
    EXPECT_EQ(TiffError(), 0u) << "the primitives set no error";
}

TEST(FileStream, DoesNotOpenWhatIsNotThere) {
    const TempFile missing;
    EXPECT_EQ(openFileStream(missing.path(), kOpenRead), kNoStream);
    EXPECT_EQ(openFileStream(missing.path(), kOpenAppend), kNoStream);
    EXPECT_EQ(openFileStream(tempFolder().c_str(), kOpenRead), kNoStream) << "a folder";
    EXPECT_EQ(openFileStream("", kOpenRead), kNoStream);
    EXPECT_EQ(openFileStream(nullptr, kOpenRead), kNoStream);
}

} // namespace
} // namespace vellum::test
