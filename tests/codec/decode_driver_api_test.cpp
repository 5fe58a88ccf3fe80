// The decode calls from outside: which lines they deliver, what they take for the tags that are not there, and how each
// of them fails.
#include "support/coded_tiff.h"
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// ---------------------------------------------------------------- ranges of lines

// 8-bit lines of 3 bytes, each filled with its number.
Bytes numberedLines(DWORD first, DWORD count) {
    Bytes bytes;
    for (DWORD line = first; line < first + count; ++line) {
        bytes.insert(bytes.end(), 3, static_cast<BYTE>(line));
    }
    return bytes;
}

Bytes numberedTiff(DWORD height, DWORD rowsPerStrip) {
    const CodedPage page{.width = 3, .height = height, .bits = 8, .key = VELLUM_KEY_NONE, .rowsPerStrip = rowsPerStrip};
    return codedTiff(page, encodeStrips(page, numberedLines(0, height)));
}

struct Range {
    DWORD firstStrip;
    DWORD lineCount;
    DWORD firstLine;
    DWORD lines;
};

TEST(DecodeRange, BeginsAtTheStripsFirstLineAndEndsAfterTheCount) {
    const OpenedTiff tiff(numberedTiff(40, 8));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    const Range ranges[] = {{2, 10, 16, 10}, {0, 1, 0, 1},  {0, 40, 0, 40}, {0, 41, 0, 40},         {1, 0, 8, 32},
                            {4, 8, 32, 8},   {4, 9, 32, 8}, {4, 1, 32, 1},  {3, 0xFFFFFFFF, 24, 16}};
    for (const Range &range : ranges) {
        SCOPED_TRACE(std::to_string(range.firstStrip) + ", " + std::to_string(range.lineCount));
        LineLog log;
        log.firstLine = range.firstLine;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0, range.firstStrip, range.lineCount), kDecoded);
        EXPECT_TRUE(log.inOrder);
        EXPECT_EQ(log.data, numberedLines(range.firstLine, range.lines));
    }
}

TEST(DecodeRange, AFirstStripBehindTheLastOneIsOutOfRange) {
    const OpenedTiff tiff(numberedTiff(40, 8));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (const DWORD strip : {DWORD{5}, DWORD{6}, DWORD{0x20000000}, DWORD{0xFFFFFFFF}}) {
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0, strip), failedWith(VELLUM_INDEX_OUT_OF_RANGE)) << strip;
        EXPECT_EQ(log.lines, 0U);
    }
}

TEST(DecodeRange, StripsThatTheTableHasBehindTheImageAreOutOfRangeToo) {
    const CodedPage page{.width = 3, .height = 2, .bits = 8, .key = VELLUM_KEY_NONE, .rowsPerStrip = 1};
    const OpenedTiff tiff(codedTiff(page, {{1, 1, 1}, {2, 2, 2}, {3, 3, 3}}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0, 2), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_EQ(log.lines, 0U);
    log.firstLine = 1;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0, 1), kDecoded);
    EXPECT_EQ(log.data, (Bytes{2, 2, 2}));
}

// ---------------------------------------------------------------- tags

Outcome decodeTags(const std::vector<tiff::Entry> &entries, LineLog &log) {
    tiff::Builder file;
    file.append({0x81, 0x42, 0x24, 0x18, 0x11, 0x22, 0x33, 0x44});
    file.directory(entries);
    const OpenedTiff tiff(file.bytes());
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    return decodeInto(log, tiff.get(), 0);
}

const tiff::Entry kWidth = tiff::shorts(256, {8});
const tiff::Entry kHeight = tiff::shorts(257, {4});
const tiff::Entry kOffsets = tiff::longs(273, {8});

TEST(DecodeTags, TheDefaultsAreOneUncompressedStripOfBits) {
    LineLog log;
    EXPECT_EQ(decodeTags({kWidth, kHeight, kOffsets}, log), kDecoded);
    EXPECT_EQ(log.data, (Bytes{0x81, 0x42, 0x24, 0x18}));
}

TEST(DecodeTags, RowsPerStripOf0OrAboveTheHeightIsOneStrip) {
    for (const std::uint32_t rows : {0U, 4U, 5U, 0xFFFFFFFFU}) {
        LineLog log;
        EXPECT_EQ(decodeTags({kWidth, kHeight, kOffsets, tiff::longs(278, {rows})}, log), kDecoded) << rows;
        EXPECT_EQ(log.lines, 4U);
    }
}

TEST(DecodeTags, FillOrderIs1Or2) {
    LineLog reversed;
    EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(266, {2}), kOffsets}, reversed), kDecoded);
    EXPECT_EQ(reversed.data, (Bytes{0x81, 0x42, 0x24, 0x18}));
    for (const std::uint32_t order : {0U, 3U, 65535U}) {
        LineLog log;
        EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(266, {order}), kOffsets}, log),
                  failedWith(VELLUM_BAD_FILL_ORDER));
        EXPECT_EQ(log.lines, 0U);
    }
}

TEST(DecodeTags, WhatIsMissingOrUnknownHasItsError) {
    LineLog log;
    EXPECT_EQ(decodeTags({kHeight, kOffsets}, log), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(decodeTags({kWidth, kOffsets}, log), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(decodeTags({kWidth, kHeight}, log), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(258, {2}), kOffsets}, log),
              failedWith(VELLUM_BAD_COLOR_FORMAT));
    EXPECT_EQ(decodeTags({kWidth, kHeight, kOffsets, tiff::shorts(284, {2})}, log),
              failedWith(VELLUM_BAD_COLOR_FORMAT));
    for (const std::uint32_t compression : {0U, 7U, 8U, 34712U, 65535U}) {
        EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(259, {compression}), kOffsets}, log),
                  failedWith(VELLUM_UNKNOWN_COMPRESSION));
    }
    EXPECT_EQ(log.lines, 0U);
}

TEST(DecodeTags, TheErrorsComeInTheOrderOfTheTagsReading) {
    LineLog log;
    EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(259, {99}), tiff::shorts(266, {5})}, log),
              failedWith(VELLUM_BAD_FILL_ORDER));
    EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(259, {99})}, log), failedWith(VELLUM_TAG_MISSING));
}

TEST(DecodeTags, OptionsThatNoCodecHasAreUnknown) {
    LineLog log;
    for (const std::uint32_t t4 : {2U, 3U, 6U, 8U, 0x40000U}) {
        EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(259, {3}), kOffsets, tiff::longs(292, {t4})}, log),
                  failedWith(VELLUM_UNKNOWN_COMPRESSION))
            << t4;
    }
    for (const std::uint32_t predictor : {0U, 3U}) {
        EXPECT_EQ(decodeTags({kWidth, kHeight, tiff::shorts(259, {5}), kOffsets, tiff::shorts(317, {predictor})}, log),
                  failedWith(VELLUM_UNKNOWN_COMPRESSION))
            << predictor;
    }
    EXPECT_EQ(log.lines, 0U);
}

TEST(DecodeTags, OptionsOfOtherCompressionsAreNotRead) {
    // T6Options, T4Options and a Predictor beside a compression that has none of them.
    const std::vector<tiff::Entry> options = {tiff::longs(292, {2}), tiff::longs(293, {2}), tiff::shorts(317, {2})};
    for (const DWORD key : {DWORD{VELLUM_KEY_NONE}, DWORD{VELLUM_KEY_PACKBITS}, DWORD{VELLUM_KEY_GROUP4},
                            DWORD{VELLUM_KEY_MODIFIED_HUFFMAN}}) {
        SCOPED_TRACE(keyName(key));
        const CodedPage page{.width = 16, .height = 2, .key = key};
        const Bytes packed = {0x0F, 0xF0, 0x3C, 0x00};
        std::vector<tiff::Entry> entries = entriesOf(page);
        entries.insert(entries.end(), options.begin(), options.end());
        tiff::Builder file;
        file.page(entries, {encodeStrip(page, packed)});
        const OpenedTiff tiff(file.bytes());
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
        EXPECT_EQ(log.data, packed);
    }
}

TEST(DecodeTags, T4OptionsAndPredictorHaveDefaults) {
    const auto without = [](const CodedPage &page, std::uint16_t tag, const Bytes &packed) {
        std::vector<tiff::Entry> entries = entriesOf(page);
        std::erase_if(entries, [tag](const tiff::Entry &entry) { return entry.tag == tag; });
        tiff::Builder file;
        file.page(entries, {encodeStrip(page, packed)});
        const OpenedTiff tiff(file.bytes());
        EXPECT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
        EXPECT_EQ(log.data, packed);
    };
    without({.width = 16, .height = 2, .key = VELLUM_KEY_GROUP3_1D}, 292, {0x0F, 0xF0, 0x3C, 0x01});
    without({.width = 2, .height = 2, .bits = 8, .key = VELLUM_KEY_LZW}, 317, {1, 2, 3, 4});
}

// ---------------------------------------------------------------- images and files

TEST(Decode, NeedsARegisteredImage) {
    const OpenedTiff tiff(numberedTiff(4, 4));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (const DWORD index : {DWORD{1}, DWORD{1000}, DWORD{0xFFFFFFFF}}) {
        EXPECT_EQ(decodeInto(log, tiff.get(), index), failedWith(VELLUM_INDEX_OUT_OF_RANGE)) << index;
    }
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    DropTiffImage(tiff.get(), 0);
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(VELLUM_INDEX_OUT_OF_RANGE));
    EXPECT_EQ(log.lines, 4U);
}

TEST(Decode, AFileThatIsGoneIsAnIoError) {
    const TempFile file(numberedTiff(4, 4));
    const OpenedTiff tiff{std::string(file.path())};
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    ASSERT_TRUE(DeleteFileA(file.path()));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(log.lines, 0U);
}

TEST(Decode, WithoutMemoryItFailsWith1) {
    for (const DWORD key : {DWORD{VELLUM_KEY_NONE}, DWORD{VELLUM_KEY_LZW}, DWORD{VELLUM_KEY_GROUP4}}) {
        SCOPED_TRACE(keyName(key));
        const CodedPage page{.width = 16, .height = 2, .key = key};
        const OpenedTiff tiff(codedTiff(page, {encodeStrip(page, {1, 2, 3, 4})}));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        for (long n = 0;; ++n) {
            ASSERT_LT(n, 50);
            LineLog log;
            Outcome outcome;
            bool happened = false;
            {
                const FailNth fault(Call::Allocate, n);
                outcome = decodeInto(log, tiff.get(), 0);
                happened = fault.happened();
            }
            if (!happened) {
                EXPECT_EQ(outcome, kDecoded);
                EXPECT_GE(n, 2) << "the strip table, and the buffers";
                break;
            }
            EXPECT_EQ(outcome, failedWith(VELLUM_NO_MEMORY)) << n;
            EXPECT_EQ(log.lines, 0U);
        }
    }
}

DWORD VELLUMAPI scribbles(BYTE *line, DWORD, DWORD userValue) {
    auto &log = *reinterpret_cast<LineLog *>(static_cast<std::uintptr_t>(userValue));
    log.data.insert(log.data.end(), line, line + log.lineBytes);
    std::fill_n(line, log.lineBytes, BYTE{0xEE});
    return 0;
}

// A line function may write on its line, as the loaders' for 24 bits do. What it writes must not come back as code.
TEST(Decode, ALineFunctionThatWritesOnItsLinesChangesNoOtherLine) {
    for (const DWORD key : kAllKeys) {
        SCOPED_TRACE(keyName(key));
        const CodedPage page{.width = 16, .height = 4, .key = key, .rowsPerStrip = 2};
        const Bytes code = encodeStrip(page, {0x12, 0x34, 0x0F, 0xF0});
        tiff::Builder file;
        const std::uint32_t at = file.append(code);
        std::vector<tiff::Entry> entries = entriesOf(page);
        // Both strips are the same code.
        entries.insert(std::find_if(entries.begin(), entries.end(), [](const tiff::Entry &e) { return e.tag > 273; }),
                       tiff::longs(273, {at, at}));
        file.directory(entries);
        const OpenedTiff tiff(file.bytes());
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        LineLog log;
        log.lineBytes = 2;
        EXPECT_EQ(DecodeTiffImage(tiff.get(), 0, 0, 0, log.userValue(), &scribbles), 1U);
        EXPECT_EQ(log.data, (Bytes{0x12, 0x34, 0x0F, 0xF0, 0x12, 0x34, 0x0F, 0xF0}));
    }
}

// ---------------------------------------------------------------- raw streams

class RawCall {
public:
    explicit RawCall(const Bytes &content) : file_(content), stream_(file_.path()) {}

    Outcome run(DWORD offset, DWORD height, DWORD fillOrder = 1, DWORD byteOrder = VELLUM_BYTE_ORDER_II,
                DWORD key = VELLUM_KEY_NONE) {
        log = {};
        log.lineBytes = 2;
        SetTiffError(VELLUM_EOFB_MISSING);
        const DWORD result = DecodeCcittImageFrom(stream_.get(), offset, 16, height, key, fillOrder, byteOrder,
                                                  log.userValue(), &LineLog::receive);
        return {result, TiffError()};
    }
    [[nodiscard]] StreamHandle stream() const { return stream_.get(); }

    LineLog log;

private:
    TempFile file_;
    RawFile stream_;
};

TEST(RawDecode, OtherFillOrdersThan2AreOrder1) {
    RawCall call({0x01, 0x02, 0x03, 0x04});
    for (const DWORD order : {DWORD{0}, DWORD{1}, DWORD{3}, DWORD{7}, DWORD{0xFFFFFFFF}}) {
        mSeek(call.stream(), 0, 0);
        EXPECT_EQ(call.run(0, 2, order), kDecoded);
        EXPECT_EQ(call.log.data, (Bytes{0x01, 0x02, 0x03, 0x04})) << order;
    }
    mSeek(call.stream(), 0, 0);
    EXPECT_EQ(call.run(0, 2, 2), kDecoded);
    EXPECT_EQ(call.log.data, (Bytes{0x80, 0x40, 0xC0, 0x20}));
}

TEST(RawDecode, AnyByteOrderIsTaken) {
    RawCall call({0x01, 0x02, 0x03, 0x04});
    for (const DWORD order : {DWORD{VELLUM_BYTE_ORDER_II}, DWORD{VELLUM_BYTE_ORDER_MM}, DWORD{0x1234}, DWORD{0}}) {
        mSeek(call.stream(), 0, 0);
        EXPECT_EQ(call.run(0, 2, 1, order), kDecoded);
        EXPECT_EQ(call.log.data, (Bytes{0x01, 0x02, 0x03, 0x04})) << order;
    }
}

TEST(RawDecode, AnOffsetInsideTheStreamIsGoneTo) {
    RawCall call({1, 2, 3, 4, 5, 6});
    EXPECT_EQ(call.run(2, 2), kDecoded);
    EXPECT_EQ(call.log.data, (Bytes{3, 4, 5, 6}));
    EXPECT_EQ(call.run(1, 1), kDecoded);
    EXPECT_EQ(call.log.data, (Bytes{2, 3}));
    EXPECT_EQ(call.run(5, 1), failedWith(VELLUM_UNEXPECTED_END)) << "what can be read counts from the offset";
    EXPECT_EQ(call.log.lines, 0U);
}

TEST(RawDecode, AnOffsetOf0OrBehindTheStreamLeavesItWhereItIs) {
    RawCall call({1, 2, 3, 4, 5, 6});
    for (const DWORD offset : {DWORD{0}, DWORD{6}, DWORD{7}, DWORD{0xFFFFFFFF}}) {
        mSeek(call.stream(), 2, 0);
        EXPECT_EQ(call.run(offset, 2), kDecoded) << offset;
        EXPECT_EQ(call.log.data, (Bytes{3, 4, 5, 6})) << offset;
    }
}

TEST(RawDecode, BeginsAtTheStreamsPositionAndLeavesItOpen) {
    RawCall call({1, 2, 3, 4, 5, 6});
    mSeek(call.stream(), 4, 0);
    call.log.lineBytes = 2;
    EXPECT_EQ(DecodeCcittImage(call.stream(), 16, 1, VELLUM_KEY_NONE, call.log.userValue(), &LineLog::receive), 1U);
    EXPECT_EQ(call.log.data, (Bytes{5, 6}));
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(mSize(call.stream()), 6);
    SetTiffError(VELLUM_OK);
    EXPECT_EQ(DecodeCcittImage(call.stream(), 16, 1, VELLUM_KEY_NONE, call.log.userValue(), &LineLog::receive), 0U)
        << "nothing is left to read";
    EXPECT_NE(TiffError(), DWORD{VELLUM_OK});
}

TEST(RawDecode, ImagesWithoutLinesSucceed) {
    RawCall call({1, 2});
    EXPECT_EQ(call.run(0, 0), kDecoded);
    EXPECT_EQ(call.log.lines, 0U);
}

TEST(RawDecode, ALineFunctionEndsIt) {
    RawCall call({1, 2, 3, 4, 5, 6});
    LineLog log;
    log.lineBytes = 2;
    log.answer = 99;
    log.answerAt = 1;
    EXPECT_EQ(DecodeCcittImage(call.stream(), 16, 3, VELLUM_KEY_NONE, log.userValue(), &LineLog::receive), 0U);
    EXPECT_EQ(TiffError(), 99U);
    EXPECT_EQ(log.lines, 2U);
}

} // namespace
