// Image objects in trouble: files that cannot be written, read or positioned, and streams that are cut or damaged,
// which must leave record and file as reading byte by byte leaves them.
#include "image_object.h"
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr DWORD kErrorBefore = VELLUM_EOFB_MISSING;

// ---------------------------------------------------------------- writing

// Result and error number of a writer on a file whose n-th write or seek fails.
template <class Writer>
Outcome writeWithFault(Call call, long nth, Writer writer, Bytes *content = nullptr) {
    const TempFile file(Bytes(100, 5));
    Outcome outcome;
    {
        const PlainFile opened(file.path(), OF_READWRITE);
        opened.seek(60);
        SetTiffError(kErrorBefore);
        const FailNth fault(call, nth);
        outcome.result = writer(opened.get());
        outcome.error = TiffError();
        EXPECT_TRUE(fault.happened()) << "there is no such call";
    }
    if (content != nullptr) {
        *content = readFile(file.path()).value_or(Bytes());
    }
    return outcome;
}

TEST(IocaWriteFaults, AHeaderThatCannotBeWrittenIsError6) {
    const IocaHeader header = pageHeader();
    EXPECT_EQ(writeWithFault(Call::Write, 0, [&](HFILE file) { return WriteIOCAHeader(file, &header); }),
              failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(writeWithFault(Call::Write, 0, [&](HFILE file) { return WriteMODCAHeader(file, &header); }),
              failedWith(VELLUM_IO_ERROR));
}

TEST(IocaWriteFaults, AFileForReadingTakesNothing) {
    const IocaHeader header = pageHeader();
    const TempFile file(Bytes(40, 5));
    {
        const PlainFile opened(file.path());
        SetTiffError(kErrorBefore);
        EXPECT_EQ(WriteIOCATail(opened.get()), 0U);
        EXPECT_EQ(TiffError(), kErrorBefore);
        EXPECT_EQ(WriteIOCAHeader(opened.get(), &header), 0U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        SetTiffError(kErrorBefore);
        EXPECT_EQ(WriteMODCAHeader(opened.get(), &header), 0U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
        SetTiffError(kErrorBefore);
        EXPECT_EQ(WriteMODCATail(opened.get()), 0U);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    }
    EXPECT_EQ(readFile(file.path()), Bytes(40, 5));
}

TEST(IocaWriteFaults, ATailThatCannotBeWrittenSetsNoError) {
    EXPECT_EQ(writeWithFault(Call::Write, 0, [](HFILE file) { return WriteIOCATail(file); }), failedWith(kErrorBefore));
}

// By design: only the last of the four writes counts.
TEST(IocaWriteFaults, OfTheModcaTailOnlyTheLastWriteCounts) {
    const auto tail = [](HFILE file) { return WriteMODCATail(file); };
    for (long nth = 0; nth < 3; ++nth) {
        EXPECT_EQ(writeWithFault(Call::Write, nth, tail), (Outcome{1, kErrorBefore})) << nth;
    }
    EXPECT_EQ(writeWithFault(Call::Write, 3, tail), failedWith(VELLUM_IO_ERROR));
}

TEST(IocaWriteFaults, TheModcaTailGoesOnWhenAFileCannotBePositioned) {
    const auto tail = [](HFILE file) { return WriteMODCATail(file); };
    const Bytes end = {0x93, 0, 0x71, 0, 0xD3, 0xA9, 0xC7};
    Bytes content;
    EXPECT_EQ(writeWithFault(Call::Seek, 0, tail, &content), failedWith(VELLUM_IO_ERROR)) << "no position to go by";
    EXPECT_EQ(content, Bytes(100, 5));
    EXPECT_EQ(writeWithFault(Call::Seek, 1, tail, &content), (Outcome{1, kErrorBefore}));
    EXPECT_EQ(content, Bytes(60, 5) + end + Bytes(33, 5)) << "no length, but the tail in its place";
    EXPECT_EQ(writeWithFault(Call::Seek, 2, tail, &content), (Outcome{1, kErrorBefore}));
    EXPECT_EQ(content, (Bytes(28, 5) + Bytes{0, 32} + end + Bytes(63, 5)));
}

// ---------------------------------------------------------------- streams that are cut, damaged or unreadable

std::vector<ImageObject> manyObjects() {
    return {
        ImageObject(),
        {.before = {1, 2}, .segment = {0x70, 4, 1, 2, 3, 4}, .content = {0x91, 3, 1, 2, 3}},
        {.element = {}, .lookUp = {0x97, 5, 1, 2, 3, 4, 5}},
        {.element = {}, .lookUp = {}, .data = {0x93, 0, 0x71, 0}},
        {.before = Bytes{9} + kIntroducer + Bytes{0}},
        {.before = Bytes(2044, 3) + kIntroducer},
        {.before = Bytes(2030, 3), .segment = {0x70, 200}},
    };
}

TEST(IocaDamage, EveryCutLeavesWhatReadingByteByByteLeaves) {
    for (const ImageObject &object : manyObjects()) {
        const Bytes whole = object.bytes();
        for (std::size_t size = whole.size() > 100 ? whole.size() - 100 : 0; size <= whole.size(); ++size) {
            const Bytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
            for (const Framing framing : {Framing::Ioca, Framing::Modca}) {
                ASSERT_EQ(readHeader(cut, framing), readNaively(cut, framing)) << size << " bytes";
            }
        }
    }
}

TEST(IocaDamage, EveryDamageLeavesWhatReadingByteByByteLeaves) {
    constexpr BYTE kTelling[] = {0, 1, 4, 5, 8, 9, 0x70, 0x91, 0x94, 0x95, 0x96, 0x97, 0xFE, 0x92, 0xD3, 0xFF};
    Random random(4);
    const std::vector<ImageObject> objects = manyObjects();
    for (int run = 0; run < 1500; ++run) {
        Bytes bytes = objects[random.below(static_cast<std::uint32_t>(objects.size()))].bytes();
        for (std::uint32_t change = random.below(4) + 1; change > 0; --change) {
            const std::uint32_t last = static_cast<std::uint32_t>(bytes.size() < 60 ? bytes.size() : 60);
            bytes[bytes.size() - 1 - random.below(last)] = kTelling[random.below(sizeof kTelling)];
        }
        for (const Framing framing : {Framing::Ioca, Framing::Modca}) {
            ASSERT_EQ(readHeader(bytes, framing), readNaively(bytes, framing)) << "run " << run;
        }
    }
}

// Reads with the n-th call of a kind failing. Result: how many such calls there were.
unsigned long readWithFault(const Bytes &content, Framing framing, Call call, long nth, HeaderRead &read) {
    const TempFile file(content);
    const PlainFile opened(file.path());
    IocaHeader header = {};
    unsigned long calls = 0;
    {
        const FailNth fault(call, nth);
        read.result = callReader(framing, opened.get(), &header);
        calls = fault.calls();
    }
    read.position = opened.position();
    read.fields = fieldsOf(header);
    return calls;
}

TEST(IocaDamage, WhatCannotBeReadIsNoEndOfTheFile) {
    ImageObject object;
    object.before = kIntroducer + Bytes(5000, 1);
    for (const Framing framing : {Framing::Ioca, Framing::Modca}) {
        HeaderRead read;
        const unsigned long reads = readWithFault(object.bytes(), framing, Call::Read, FailNth::kNever, read);
        ASSERT_EQ(read.result, 1U);
        ASSERT_GE(reads, 3U);
        for (unsigned long nth = 0; nth < reads; ++nth) {
            readWithFault(object.bytes(), framing, Call::Read, static_cast<long>(nth), read);
            EXPECT_EQ(read.result, 0U) << nth;
            EXPECT_NE(read.position, -1) << nth << ": the file is still the caller's";
        }
    }
}

TEST(IocaDamage, WhatCannotBePositionedIsNotRead) {
    HeaderRead read;
    const Bytes bytes = ImageObject().bytes();
    const unsigned long seeks = readWithFault(bytes, Framing::Ioca, Call::Seek, FailNth::kNever, read);
    ASSERT_EQ(read.result, 1U);
    ASSERT_EQ(seeks, 2U) << "where it is, and back to the first byte that was not used";
    for (long nth = 0; nth < 2; ++nth) {
        readWithFault(bytes, Framing::Ioca, Call::Seek, nth, read);
        EXPECT_EQ(read.result, 0U);
        EXPECT_NE(read.position, -1);
    }
}

} // namespace
