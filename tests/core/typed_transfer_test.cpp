// Typed transfers: field type sizes, byte order, bit order, pieces and failures.
#include "core/typed_transfer.h"

#include "support/faults.h"
#include "support/global_memory.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace vellum::test {
namespace {

constexpr LONG kII = VELLUM_BYTE_ORDER_II;
constexpr LONG kMM = VELLUM_BYTE_ORDER_MM;

// A memory stream over some bytes.
class Memory {
public:
    explicit Memory(const Bytes &content)
        : block_(makeBlock(content)), stream_(openMemoryStream(block_, static_cast<DWORD>(content.size()))) {}
    Memory(const Memory &) = delete;
    Memory &operator=(const Memory &) = delete;
    ~Memory() {
        GlobalFree(memoryStreamBlock(stream_));
        mClose(stream_);
    }

    [[nodiscard]] StreamHandle stream() const { return stream_; }
    [[nodiscard]] Bytes content() const { return blockBytes(memoryStreamBlock(stream_)); }

private:
    HGLOBAL block_;
    StreamHandle stream_;
};

Bytes readAs(DWORD type, DWORD count, const Bytes &content, LONG byteOrder, LONG fillOrder = 1) {
    const Memory memory(content);
    Bytes values(content.size());
    EXPECT_EQ(LongRead(memory.stream(), type, count, values.data(), byteOrder, fillOrder), 1u);
    EXPECT_EQ(mTell(memory.stream()), static_cast<LONG>(content.size())) << "bytes taken";
    return values;
}

Bytes writtenAs(LONG type, DWORD count, const Bytes &values, LONG byteOrder, LONG fillOrder = 1) {
    const Memory memory({});
    Bytes mine = values;
    EXPECT_EQ(LongWrite(memory.stream(), type, count, mine.data(), byteOrder, fillOrder), 1u);
    EXPECT_EQ(mine, values) << "the caller's values stay as they are";
    return memory.content();
}

TEST(FieldTypes, HaveTheirSizes) {
    EXPECT_EQ(typeSize(3), 2u);
    EXPECT_EQ(typeSize(4), 4u);
    EXPECT_EQ(typeSize(5), 8u);
    EXPECT_EQ(typeSize(9), 4u);
    for (const DWORD type : {0u, 1u, 2u, 6u, 7u, 8u, 10u, 11u, 12u, 13u, 0xFFFFu, 0xFFFFFFFFu}) {
        EXPECT_EQ(typeSize(type), 1u) << type;
    }
}

// By design.
TEST(FieldTypes, OfSignedShortsAndRationalsAreMovedByteForByte) {
    EXPECT_EQ(readAs(8, 2, {1, 2}, kMM), (Bytes{1, 2}));
    EXPECT_EQ(readAs(10, 2, {1, 2}, kMM), (Bytes{1, 2}));
    EXPECT_EQ(writtenAs(8, 2, {1, 2}, kMM), (Bytes{1, 2}));
}

TEST(SwappingValues, ReversesEachByItsType) {
    const Bytes counting = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto swapAs = [&counting](DWORD type, DWORD count) {
        Bytes values = counting;
        swapValues(values.data(), type, count);
        return values;
    };
    EXPECT_EQ(swapAs(3, 2), (Bytes{2, 1, 4, 3, 5, 6, 7, 8}));
    EXPECT_EQ(swapAs(4, 2), (Bytes{4, 3, 2, 1, 8, 7, 6, 5}));
    EXPECT_EQ(swapAs(9, 1), (Bytes{4, 3, 2, 1, 5, 6, 7, 8}));
    EXPECT_EQ(swapAs(5, 1), (Bytes{8, 7, 6, 5, 4, 3, 2, 1})) << "all 8 bytes as one unit";
    for (const DWORD type : {0u, 1u, 2u, 6u, 7u, 8u, 10u, 12u}) {
        EXPECT_EQ(swapAs(type, 8), counting) << type;
    }
    EXPECT_EQ(swapAs(4, 0), counting);
}

TEST(TypedReads, PutNumbersIntoMachineOrder) {
    EXPECT_EQ(readAs(3, 2, {1, 2, 3, 4}, kMM), (Bytes{2, 1, 4, 3})) << "0x0102 and 0x0304";
    EXPECT_EQ(readAs(3, 2, {1, 2, 3, 4}, kII), (Bytes{1, 2, 3, 4})) << "0x0201 and 0x0403";
    EXPECT_EQ(readAs(4, 1, {1, 2, 3, 4}, kMM), (Bytes{4, 3, 2, 1}));
    EXPECT_EQ(readAs(9, 1, {1, 2, 3, 4}, kMM), (Bytes{4, 3, 2, 1}));
    EXPECT_EQ(readAs(2, 4, {1, 2, 3, 4}, kMM), (Bytes{1, 2, 3, 4}));
}

TEST(TypedReads, SwapNumeratorAndDenominatorByThemselves) {
    EXPECT_EQ(readAs(5, 1, {1, 2, 3, 4, 5, 6, 7, 8}, kMM), (Bytes{4, 3, 2, 1, 8, 7, 6, 5}));
    EXPECT_EQ(writtenAs(5, 1, {1, 2, 3, 4, 5, 6, 7, 8}, kMM), (Bytes{4, 3, 2, 1, 8, 7, 6, 5}));
}

TEST(TypedReads, TakeEveryOtherByteOrderForIntel) {
    EXPECT_EQ(readAs(3, 1, {1, 2}, 0), (Bytes{1, 2}));
    EXPECT_EQ(readAs(3, 1, {1, 2}, -1), (Bytes{1, 2}));
    EXPECT_EQ(readAs(3, 1, {1, 2}, 0x14D4D), (Bytes{1, 2}));
}

TEST(TypedReads, ReverseBitsForFillOrder2Only) {
    EXPECT_EQ(readAs(1, 1, {0x01}, kII, 2), (Bytes{0x80}));
    EXPECT_EQ(readAs(1, 1, {0x01}, kII, 1), (Bytes{0x01}));
    EXPECT_EQ(readAs(1, 1, {0x01}, kII, 0), (Bytes{0x01}));
    EXPECT_EQ(readAs(1, 1, {0x01}, kII, 3), (Bytes{0x01}));
    EXPECT_EQ(readAs(3, 3, {0x01, 0x02, 0x03, 0x04, 0x05, 0xF0}, kMM, 2), (Bytes{0x40, 0x80, 0x20, 0xC0, 0x0F, 0xA0}));
}

TEST(TypedReads, OfNothingSucceed) {
    BYTE byte = 7;
    for (const DWORD type : {1u, 3u, 4u, 5u}) {
        EXPECT_EQ(LongRead(0, type, 0, &byte, kMM, 2), 1u) << "not even a stream is needed";
    }
    EXPECT_EQ(LongRead(0, 1, 0, nullptr, kII, 1), 1u);
    EXPECT_EQ(byte, 7);
}

TEST(TypedReads, ThatComeUpShortAreError6) {
    const TempFile file({1, 2, 3});
    const Stream stream(openFileStream(file.path(), kOpenRead));
    ASSERT_TRUE(stream);
    BYTE buffer[8] = {};
    SetTiffError(0);
    EXPECT_EQ(LongRead(stream.get(), 3, 1, buffer, kII, 1), 1u);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(LongRead(stream.get(), 3, 1, buffer, kII, 1), 0u);
    EXPECT_EQ(TiffError(), 6u);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(LongRead(kNoStream, 1, 1, buffer, kII, 1), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(LongRead(stream.get(), 1, 1, nullptr, kII, 1), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
}

TEST(TypedReads, OfMoreThanABufferCanHoldAreError6) {
    const Memory memory({1, 2, 3, 4});
    BYTE buffer[4] = {9, 9, 9, 9};
    for (const DWORD type : {3u, 4u, 5u, 9u}) {
        SetTiffError(0);
        EXPECT_EQ(LongRead(memory.stream(), type, 0x80000001, buffer, kII, 1), 0u) << type;
        EXPECT_EQ(SetTiffError(0), 6u);
    }
    EXPECT_EQ(buffer[0], 9) << "nothing was read";
    EXPECT_EQ(mTell(memory.stream()), 0);
}

TEST(TypedTransfers, AreDoneInPiecesOf32000Bytes) {
    Bytes content(70000);
    std::generate(content.begin(), content.end(), [n = 0u]() mutable { return static_cast<BYTE>(n++ * 7 >> 3); });
    const TempFile file;
    {
        const Stream stream(openFileStream(file.path(), kOpenCreate));
        Bytes mine = content;
        const FailNth counter(Call::Write, FailNth::kNever);
        EXPECT_EQ(LongWrite(stream.get(), 1, 70000, mine.data(), kII, 1), 1u);
        EXPECT_EQ(counter.calls(), 3u);
    }
    EXPECT_EQ(readFile(file.path()), content);
    const Stream stream(openFileStream(file.path(), kOpenRead));
    Bytes read(70000);
    {
        const FailNth counter(Call::Read, FailNth::kNever);
        EXPECT_EQ(LongRead(stream.get(), 1, 70000, read.data(), kII, 1), 1u);
        EXPECT_EQ(counter.calls(), 3u);
    }
    EXPECT_EQ(read, content);
    {
        mSeek(stream.get(), 0, 0);
        const FailNth fault(Call::Read, 1);
        EXPECT_EQ(LongRead(stream.get(), 1, 70000, read.data(), kII, 1), 0u);
        EXPECT_EQ(mTell(stream.get()), 32000) << "the first piece was read";
    }
    EXPECT_EQ(SetTiffError(0), 6u);
}

TEST(TypedWrites, PutNumbersIntoTheFilesOrder) {
    EXPECT_EQ(writtenAs(3, 2, {1, 2, 3, 4}, kMM), (Bytes{2, 1, 4, 3}));
    EXPECT_EQ(writtenAs(3, 2, {1, 2, 3, 4}, kII), (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(writtenAs(4, 1, {1, 2, 3, 4}, kMM), (Bytes{4, 3, 2, 1}));
    EXPECT_EQ(writtenAs(9, 1, {1, 2, 3, 4}, kMM), (Bytes{4, 3, 2, 1}));
    EXPECT_EQ(writtenAs(7, 4, {1, 2, 3, 4}, kMM), (Bytes{1, 2, 3, 4}));
}

TEST(TypedWrites, ReverseBits) {
    EXPECT_EQ(writtenAs(1, 2, {0x01, 0xF0}, kII, 2), (Bytes{0x80, 0x0F}));
    EXPECT_EQ(writtenAs(3, 1, {0x01, 0x02}, kMM, 2), (Bytes{0x40, 0x80}));
}

TEST(TypedWrites, OfNothingSucceed) {
    EXPECT_EQ(LongWrite(0, 4, 0, nullptr, kMM, 2), 1u);
}

TEST(TypedWrites, ThatComeUpShortAreError6) {
    const TempFile file;
    const Stream stream(openFileStream(file.path(), kOpenCreate));
    Bytes values = {1, 2, 3, 4};
    SetTiffError(0);
    {
        const FailNth fault(Call::Write, 0);
        EXPECT_EQ(LongWrite(stream.get(), 4, 1, values.data(), kMM, 1), 0u);
    }
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(values, (Bytes{1, 2, 3, 4}));
    EXPECT_EQ(LongWrite(kNoStream, 4, 1, values.data(), kII, 1), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(LongWrite(stream.get(), 4, 1, nullptr, kII, 1), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
    EXPECT_EQ(LongWrite(stream.get(), 4, 0x40000000, values.data(), kMM, 1), 0u);
    EXPECT_EQ(SetTiffError(0), 6u);
}

// By design: a write must not fail for want of memory.
TEST(TypedWrites, ConvertTheCallersBufferWhenThereIsNoMemoryForACopy) {
    const TempFile file;
    const Stream stream(openFileStream(file.path(), kOpenCreate));
    Bytes values = {0x01, 0x02, 0x03, 0x04};
    SetTiffError(0);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(LongWrite(stream.get(), 3, 2, values.data(), kMM, 1), 1u);
        EXPECT_TRUE(fault.happened());
    }
    EXPECT_EQ(values, (Bytes{0x02, 0x01, 0x04, 0x03})) << "left swapped";
    EXPECT_EQ(TiffError(), 0u);
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(LongWrite(stream.get(), 1, 1, values.data(), kII, 2), 1u);
    }
    EXPECT_EQ(values[0], 0x40) << "left reversed";
    mSeek(stream.get(), 0, 0);
    Bytes written(5);
    EXPECT_EQ(mRead(stream.get(), written.data(), 5), 5);
    EXPECT_EQ(written, (Bytes{0x02, 0x01, 0x04, 0x03, 0x40}));
}

TEST(TypedWrites, AskForACopyAgainWhenOnlyTheFirstAttemptFailed) {
    const TempFile file;
    const Stream stream(openFileStream(file.path(), kOpenCreate));
    Bytes values = {0x01, 0x02};
    {
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(LongWrite(stream.get(), 3, 1, values.data(), kMM, 2), 1u);
    }
    EXPECT_EQ(values, (Bytes{0x02, 0x01})) << "swapped in place, but reversed in the copy";
    mSeek(stream.get(), 0, 0);
    Bytes written(2);
    EXPECT_EQ(mRead(stream.get(), written.data(), 2), 2);
    EXPECT_EQ(written, (Bytes{0x40, 0x80}));
}

} // namespace
} // namespace vellum::test
