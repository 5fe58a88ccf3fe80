// Compression 6: what the companion module is handed, how its answers come out, and what happens without it. Fakes
// stand in for the module.
#include "support/decode_lines.h"
#include "support/faults.h"
#include "support/jpeg_tiff.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

using namespace vellum::test;

// ---------------------------------------------------------------- without the module

TEST(JpegWithoutModule, EveryAttemptShowsTheMessageOnceAndSucceedsWithoutLines) {
    const OpenedTiff tiff(jpegTiff({}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (int attempt = 0; attempt < 3; ++attempt) {
        const MessageBoxes boxes;
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
        EXPECT_EQ(log.lines, 0U);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.text(), "'DCTLIB.DLL' module is not found");
        EXPECT_EQ(boxes.caption(), "VELLUMSDK");
        EXPECT_EQ(boxes.style(), UINT{MB_TASKMODAL});
    }
}

// By design: the message names the module without the 32; only the name with it is loaded.
TEST(JpegWithoutModule, AModuleOfTheNameInTheMessageIsNotTaken) {
    const MessageBoxes boxes;
    const CompanionModule module("DCTLIB.DLL", kCompanionEntry, nullptr);
    const OpenedTiff tiff(jpegTiff({}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(module.loads(), 0);
}

TEST(JpegWithoutModule, AModuleWithoutTheEntryIsTheOtherMessage) {
    const CompanionModule module(kCompanionName, "JPEGEncoder", nullptr);
    const OpenedTiff tiff(jpegTiff({}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (int attempt = 0; attempt < 2; ++attempt) {
        const MessageBoxes boxes;
        LineLog log;
        EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
        EXPECT_EQ(log.lines, 0U);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.text(), "'JPEGDecoder' function is not found");
        EXPECT_EQ(boxes.caption(), "VELLUMSDK");
        EXPECT_EQ(boxes.style(), UINT{MB_TASKMODAL});
    }
}

// ---------------------------------------------------------------- the record the module sees

struct Seen {
    int calls = 0;
    Bytes state; // the whole record, as bytes
    std::vector<Bytes> work;
    Bytes offsets;
    Bytes byteCounts;
    LONG streamSize = -1;
    DWORD answer = 0;

    [[nodiscard]] DWORD word(std::size_t offset) const {
        DWORD value = 0;
        std::memcpy(&value, state.data() + offset, sizeof value);
        return value;
    }
    [[nodiscard]] WORD half(std::size_t offset) const { return static_cast<WORD>(word(offset)); }
} seen;

Bytes contentOf(HGLOBAL block) {
    return block == nullptr ? Bytes() : blockBytes(block);
}

DWORD VELLUMAPI looks(CodecState *state) {
    ++seen.calls;
    const auto *bytes = reinterpret_cast<const BYTE *>(state);
    seen.state.assign(bytes, bytes + 208);
    seen.work.clear();
    for (const HGLOBAL block : state->workBlocks) {
        seen.work.push_back(contentOf(block));
    }
    seen.offsets = contentOf(state->stripOffsets);
    seen.byteCounts = contentOf(state->stripByteCounts);
    seen.streamSize = mSize(state->stream);
    return seen.answer;
}

// Lets the module have a look. Result: how the decode ended.
Outcome look(const JpegPage &page, DWORD answer = 0, DWORD firstStrip = 0, DWORD lineCount = 0) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&looks));
    seen = {};
    seen.answer = answer;
    const OpenedTiff tiff(jpegTiff(page));
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    return decodeInto(log, tiff.get(), 0, firstStrip, lineCount);
}

Bytes longWords(std::initializer_list<DWORD> values) {
    Bytes bytes;
    for (const DWORD value : values) {
        for (int shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<BYTE>(value >> shift));
        }
    }
    return bytes;
}

TEST(JpegRecord, HasTheImageAtTheOffsetsThatModulesWereCompiledWith) {
    ASSERT_EQ(look({.width = 20, .height = 10}), kDecoded);
    ASSERT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.word(28), 40U) << "biSize";
    EXPECT_EQ(seen.word(32), 20U) << "biWidth";
    EXPECT_EQ(seen.word(36), 10U) << "biHeight";
    EXPECT_EQ(seen.half(40), 1U) << "biPlanes";
    EXPECT_EQ(seen.half(42), 8U) << "biBitCount";
    EXPECT_EQ(seen.word(68), 20U) << "bytes per line";
    EXPECT_EQ(seen.word(72), 6U) << "compression key";
    EXPECT_EQ(seen.word(76), 0U) << "current line";
    EXPECT_EQ(seen.word(80), 0U) << "no buffers yet";
    EXPECT_EQ(seen.word(88), 1U) << "fill order";
    EXPECT_EQ(seen.word(92), 0x4949U) << "byte order";
    EXPECT_EQ(static_cast<DWORD>(seen.streamSize), seen.word(108)) << "stream limit";
    EXPECT_EQ(seen.word(112), 0U) << "strip index";
    EXPECT_NE(seen.word(144), 0U) << "line function";
    EXPECT_EQ(seen.half(156), 1U) << "JPEGProc";
}

TEST(JpegRecord, HasTilesForStrips) {
    // 20 x 10 pixels in tiles of 16 x 4: two across, three down.
    ASSERT_EQ(look({.width = 20, .height = 10}), kDecoded);
    EXPECT_EQ(seen.word(120), 6U) << "strip count";
    EXPECT_EQ(seen.word(124), 4U) << "rows per strip";
    EXPECT_EQ(seen.word(136), 4U) << "type of the offsets";
    EXPECT_EQ(seen.offsets, longWords({8, 12, 16, 20, 24, 28}));
    EXPECT_EQ(seen.word(176), 16U) << "tile width";
    EXPECT_EQ(seen.word(180), 4U) << "tile length";
    EXPECT_EQ(seen.word(184), 2U) << "tiles across";
    EXPECT_EQ(seen.word(188), 3U) << "tiles down";
    EXPECT_EQ(seen.word(192), 1U) << "planar configuration";
    EXPECT_EQ(seen.word(196), 7U) << "restart interval";
}

TEST(JpegRecord, TilesThatFitExactlyAreNotCountedTwice) {
    ASSERT_EQ(look({.width = 32, .height = 8}), kDecoded);
    EXPECT_EQ(seen.word(184), 2U);
    EXPECT_EQ(seen.word(188), 2U);
    EXPECT_EQ(seen.word(120), 4U);
}

TEST(JpegRecord, TileSizesOf0AreOneTileOfTheWholeImage) {
    ASSERT_EQ(look({.width = 20, .height = 10, .tileWidth = 0, .tileLength = 0}), kDecoded);
    EXPECT_EQ(seen.word(184), 1U);
    EXPECT_EQ(seen.word(188), 1U);
    EXPECT_EQ(seen.word(120), 1U);
    EXPECT_EQ(seen.word(124), 10U) << "rows per strip";
}

// By design: the module finds the TileLength values where the byte counts stand.
TEST(JpegRecord, TheByteCountsAreTheTileLengths) {
    ASSERT_EQ(look({}), kDecoded);
    EXPECT_EQ(seen.byteCounts, longWords({4}));
}

TEST(JpegRecord, TheWorkBlocksAreTheTables) {
    ASSERT_EQ(look({}), kDecoded);
    ASSERT_EQ(seen.work.size(), 4U);
    EXPECT_EQ(seen.work[0], longWords({1900, 1901, 1902})) << "JPEGQTables";
    EXPECT_EQ(seen.work[1], longWords({2100})) << "JPEGACTables";
    EXPECT_EQ(seen.work[2], longWords({2000, 2001})) << "JPEGDCTables";
    EXPECT_EQ(seen.work[3], Bytes()) << "ReferenceBlackWhite is for colours";
    EXPECT_EQ(seen.word(200), 0U);
    EXPECT_EQ(seen.word(204), 0U);
}

TEST(JpegRecord, ColoursBringTheirSubsamplingAndTheFullRanges) {
    ASSERT_EQ(look({.samples = 3}), kDecoded);
    EXPECT_EQ(seen.half(42), 24U) << "biBitCount";
    EXPECT_EQ(seen.word(68), 60U) << "bytes per line";
    EXPECT_EQ(seen.word(200), 2U) << "horizontal subsampling";
    EXPECT_EQ(seen.word(204), 1U) << "vertical subsampling";
    EXPECT_EQ(seen.work[3], longWords({0, 1, 255, 1, 128, 1, 255, 1, 128, 1, 255, 1}));
}

TEST(JpegRecord, AFilesOwnReferenceBlackWhiteIsTaken) {
    JpegPage page{.samples = 3};
    page.more = {tiff::rationals(532, {16, 1, 235, 1, 128, 1, 240, 1, 128, 1, 240, 1})};
    ASSERT_EQ(look(page), kDecoded);
    EXPECT_EQ(seen.work[3], longWords({16, 1, 235, 1, 128, 1, 240, 1, 128, 1, 240, 1}));
}

TEST(JpegRecord, OldFilesHaveProcess0) {
    ASSERT_EQ(look({.process = 0}), kDecoded);
    EXPECT_EQ(seen.half(156), 0U);
}

TEST(JpegRecord, ARestartIntervalMayBeAbsent) {
    ASSERT_EQ(look({.left = {515}}), kDecoded);
    EXPECT_EQ(seen.word(196), 0U);
}

TEST(JpegRecord, AnImageInMemoryIsReadThroughItsStream) {
    ASSERT_EQ(look({}), kDecoded);
    EXPECT_LE(static_cast<LONG>(seen.word(84)), -2) << "a memory stream";
}

TEST(JpegRecord, AFileIsOpenedForTheRun) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&looks));
    seen = {};
    const Bytes bytes = jpegTiff({});
    const TempFile file(bytes);
    const OpenedTiff tiff{std::string(file.path())};
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), kDecoded);
    EXPECT_GT(static_cast<LONG>(seen.word(84)), 0);
    EXPECT_EQ(seen.word(108), bytes.size());
}

// ---------------------------------------------------------------- what fails before the module is asked

TEST(JpegTags, EveryRequiredOneIsMissed) {
    const std::uint32_t required[] = {323, 324, 512, 519, 520, 521};
    for (const std::uint32_t tag : required) {
        SCOPED_TRACE(tag);
        EXPECT_EQ(look({.left = {tag}}), failedWith(VELLUM_TAG_MISSING));
        EXPECT_EQ(seen.calls, 0);
    }
    EXPECT_EQ(look({.samples = 3, .left = {530}}), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(seen.calls, 0);
    EXPECT_EQ(look({.samples = 1, .left = {530}}), kDecoded) << "subsampling is for colours";
}

TEST(JpegTags, StripOffsetsAreNotAskedFor) {
    EXPECT_EQ(look({}), kDecoded);
    EXPECT_EQ(seen.calls, 1);
}

TEST(JpegTags, OtherProcessesThan0And1AreUnknown) {
    for (const DWORD process : {DWORD{2}, DWORD{14}, DWORD{65535}}) {
        EXPECT_EQ(look({.process = process}), failedWith(VELLUM_UNKNOWN_COMPRESSION));
        EXPECT_EQ(seen.calls, 0);
    }
}

TEST(JpegTags, AMissingTagShowsNoMessage) {
    const MessageBoxes boxes;
    const OpenedTiff tiff(jpegTiff({.left = {519}}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    LineLog log;
    EXPECT_EQ(decodeInto(log, tiff.get(), 0), failedWith(VELLUM_TAG_MISSING));
    EXPECT_EQ(boxes.count(), 0);
}

// ---------------------------------------------------------------- the module's run

TEST(JpegModule, ItsAnswerIsTheErrorOfTheRun) {
    for (const DWORD answer : {DWORD{1}, DWORD{5}, DWORD{12}, DWORD{19}, DWORD{77}}) {
        EXPECT_EQ(look({}, answer), failedWith(answer));
        EXPECT_EQ(seen.calls, 1);
    }
}

// Decodes as a codec does: the code bytes are the pixels, a tile's worth of lines to a strip.
DWORD VELLUMAPI copiesCode(CodecState *state) {
    if (const DWORD error = InitDecodeBuffers(state); error != 0) {
        return error;
    }
    for (;;) {
        while (state->lineBytesLeft > 0) {
            if (state->codeBytesLeft == 0) {
                if (const DWORD error = FillCodeBuffer(state); error != 0) {
                    return error;
                }
            }
            *state->linePointer++ = *state->codePointer++;
            --state->codeBytesLeft;
            --state->lineBytesLeft;
        }
        if (const DWORD error = FlushDataBuffer(state); error != 0) {
            return error == VELLUM_INDEX_OUT_OF_RANGE ? 0 : error;
        }
    }
}

struct ModuleRun {
    Outcome outcome;
    LineLog log;
};
ModuleRun runModule(const JpegPage &page, DWORD answer = 0, DWORD answerAt = 0) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&copiesCode));
    const OpenedTiff tiff(jpegTiff(page));
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    ModuleRun run;
    run.log.answer = answer;
    run.log.answerAt = answerAt;
    run.outcome = decodeInto(run.log, tiff.get(), 0);
    return run;
}

TEST(JpegModule, DeliversLinesThroughTheBufferOperations) {
    // Lines of 4 bytes, two to a strip; the strips lie at 20, 40 and 8, where the bytes are 12, 32 and 0.
    const ModuleRun run =
        runModule({.width = 4, .height = 5, .tileWidth = 4, .tileLength = 2, .tileOffsets = {20, 40, 8}});
    EXPECT_EQ(run.outcome, kDecoded);
    EXPECT_TRUE(run.log.inOrder);
    EXPECT_EQ(run.log.data, (Bytes{12, 13, 14, 15, 16, 17, 18, 19, 32, 33, 34, 35, 36, 37, 38, 39, 0, 1, 2, 3}));
}

// By design: strips of process 0 begin with 8 bytes that are no code.
TEST(JpegModule, StripsOfProcess0BeginBehindEightBytes) {
    const ModuleRun run =
        runModule({.width = 4, .height = 2, .process = 0, .tileWidth = 4, .tileLength = 1, .tileOffsets = {8, 24}});
    EXPECT_EQ(run.outcome, kDecoded);
    EXPECT_EQ(run.log.data, (Bytes{8, 9, 10, 11, 24, 25, 26, 27}));
}

TEST(JpegModule, ALineFunctionStopsItToo) {
    const ModuleRun failed =
        runModule({.width = 4, .height = 4, .tileWidth = 4, .tileLength = 4, .tileOffsets = {8}}, 42, 2);
    EXPECT_EQ(failed.outcome, failedWith(42));
    EXPECT_EQ(failed.log.lines, 3U);
    const ModuleRun stopped =
        runModule({.width = 4, .height = 4, .tileWidth = 4, .tileLength = 4, .tileOffsets = {8}}, 3, 0);
    EXPECT_EQ(stopped.outcome, kDecoded);
    EXPECT_EQ(stopped.log.lines, 1U);
}

TEST(JpegModule, OffsetsOutsideTheFileAreItsIoErrors) {
    const ModuleRun run =
        runModule({.width = 4, .height = 2, .tileWidth = 4, .tileLength = 2, .tileOffsets = {0x10000000}});
    EXPECT_EQ(run.outcome, failedWith(VELLUM_IO_ERROR));
    EXPECT_EQ(run.log.lines, 0U);
}

// ---------------------------------------------------------------- its lifetime

TEST(JpegModule, StaysLoadedUntilATiffIsClosed) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&looks));
    {
        const OpenedTiff tiff(jpegTiff({}));
        ASSERT_TRUE(registerImage(tiff.get(), 0));
        EXPECT_EQ(module.loads(), 0) << "opening a file needs no module";
        LineLog log;
        decodeInto(log, tiff.get(), 0);
        EXPECT_EQ(module.loads(), 1);
        decodeInto(log, tiff.get(), 0);
        EXPECT_EQ(module.loads(), 1) << "loaded once";
    }
    EXPECT_EQ(module.loads(), 0);
    const OpenedTiff again(jpegTiff({}));
    ASSERT_TRUE(registerImage(again.get(), 0));
    LineLog log;
    seen = {};
    EXPECT_EQ(decodeInto(log, again.get(), 0), kDecoded);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(module.loads(), 1) << "loaded anew";
}

TEST(JpegModule, DecodesRawStreamsOfKey6) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&looks));
    seen = {};
    const TempFile code(Bytes(40, BYTE{0xAB}));
    const RawFile file(code.path());
    ASSERT_TRUE(file);
    LineLog log;
    EXPECT_EQ(decodeRawInto(log, file.get(), {.width = 16, .height = 3, .key = VELLUM_KEY_JPEG}), kDecoded);
    EXPECT_EQ(seen.calls, 1);
    EXPECT_EQ(seen.word(32), 16U);
    EXPECT_EQ(seen.word(108), 40U);
    EXPECT_TRUE(std::all_of(seen.state.begin() + 176, seen.state.end(), [](BYTE byte) { return byte == 0; }))
        << "no tiles";
    // Orders that are none become 1 and II.
    EXPECT_EQ(DecodeCcittImageFrom(file.get(), 10, 16, 3, VELLUM_KEY_JPEG, 7, 0x1234, 0, nullptr), 1U);
    EXPECT_EQ(seen.word(88), 1U);
    EXPECT_EQ(seen.word(92), 0x4949U);
    EXPECT_EQ(seen.word(108), 30U) << "counted from the offset";
    EXPECT_EQ(DecodeCcittImageFrom(file.get(), 10, 16, 3, VELLUM_KEY_JPEG, 2, VELLUM_BYTE_ORDER_MM, 0, nullptr), 1U);
    EXPECT_EQ(seen.word(88), 2U);
    EXPECT_EQ(seen.word(92), 0x4D4DU);
    // The module stays with the library until a TIFF is closed.
    const OpenedTiff tiff(jpegTiff({}));
    EXPECT_EQ(module.loads(), 1);
}

// ---------------------------------------------------------------- without memory

TEST(JpegModule, WithoutMemoryTheRunFailsWith1) {
    const CompanionModule module(kCompanionName, kCompanionEntry, asEntry(&copiesCode));
    const OpenedTiff tiff(
        jpegTiff({.width = 4, .height = 5, .samples = 3, .tileWidth = 4, .tileLength = 5, .tileOffsets = {4}}));
    ASSERT_TRUE(registerImage(tiff.get(), 0));
    for (long n = 0;; ++n) {
        ASSERT_LT(n, 100);
        SCOPED_TRACE(n);
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
            EXPECT_EQ(log.lines, 5U);
            EXPECT_GE(n, 6);
            break;
        }
        EXPECT_EQ(outcome, failedWith(VELLUM_NO_MEMORY));
        EXPECT_EQ(log.lines, 0U);
    }
}

} // namespace
