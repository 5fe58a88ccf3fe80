// Compression 6, encoding: what the companion module is handed, what becomes of its work, and what happens without it.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/jpeg_tiff.h"
#include "support/read_tags.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr char kEncoderEntry[] = "JPEGEncoder";

std::vector<TagValue> jpegTags(DWORD width, DWORD height, DWORD samples, std::initializer_list<TagValue> more = {}) {
    std::vector<TagValue> tags = {
        {259, 3, {6}},       {256, 3, {width}}, {257, 3, {height}}, {258, 3, std::vector<DWORD>(samples, 8)},
        {277, 3, {samples}}, {322, 3, {16}},    {323, 3, {4}},      {512, 3, {1}},
        {515, 3, {7}}};
    tags.insert(tags.end(), more.begin(), more.end());
    return tags;
}

struct Module {
    int calls = 0;
    JpegCodecState handed{};
    Bytes reference;
    DWORD answer = 0;
    bool leavesTables = true;
    DWORD tableCount = 3;
} module;

HGLOBAL tableOf(DWORD first) {
    Bytes bytes;
    for (DWORD i = 0; i < module.tableCount; ++i) {
        for (unsigned shift = 0; shift < 32; shift += 8) {
            bytes.push_back(static_cast<BYTE>((first + i) >> shift));
        }
    }
    return makeBlock(bytes);
}

// Its code is the lines themselves.
DWORD VELLUMAPI encodeAsIs(CodecState *state) {
    ++module.calls;
    std::memcpy(&module.handed, state, sizeof module.handed);
    module.reference = state->workBlocks[3] != nullptr ? blockBytes(state->workBlocks[3]) : Bytes{};
    if (module.answer != 0) {
        return module.answer;
    }
    if (module.leavesTables) {
        state->workBlocks[0] = tableOf(1000);
        state->workBlocks[1] = tableOf(2000);
        state->workBlocks[2] = tableOf(3000);
    }
    DWORD error = InitEncodeBuffers(state);
    while (error == 0) {
        while (state->lineBytesLeft > 0) {
            if (state->codeBytesLeft == 0 && FlushCodeBuffer(state) != 0) {
                return VELLUM_IO_ERROR;
            }
            *state->codePointer++ = *state->linePointer++;
            --state->codeBytesLeft;
            --state->lineBytesLeft;
        }
        error = FillDataBuffer(state);
    }
    return error;
}

LineSource sourceOf(DWORD lineBytes, DWORD lines) {
    LineSource source;
    source.lineBytes = lineBytes;
    for (DWORD i = 0; i < lineBytes * lines; ++i) {
        source.data.push_back(static_cast<BYTE>(i * 7 + 1));
    }
    return source;
}

class JpegEncode : public ::testing::Test {
protected:
    JpegEncode() {
        module = Module{};
        SetTiffError(VELLUM_OK);
    }
    TempFile file_;
};

TEST_F(JpegEncode, HandsTheModuleTheWholeRecord) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    const WrittenTiff tiff;
    LineSource source = sourceOf(60, 10);
    EXPECT_EQ(tiff.add(jpegTags(20, 10, 3, {{530, 3, {2, 1}}, {266, 3, {1}}, {284, 3, {1}}}), source), 1u)
        << TiffError();
    EXPECT_EQ(module.calls, 1);
    const JpegCodecState &handed = module.handed;
    EXPECT_EQ(handed.codec.image.biWidth, 20);
    EXPECT_EQ(handed.codec.image.biHeight, 10);
    EXPECT_EQ(handed.codec.image.biBitCount, 24);
    EXPECT_EQ(handed.codec.bytesPerLine, 60);
    EXPECT_EQ(handed.codec.compressionKey, 6u);
    EXPECT_EQ(handed.codec.fillOrder, 1u);
    EXPECT_EQ(handed.codec.byteOrder, DWORD{VELLUM_BYTE_ORDER_II});
    EXPECT_EQ(handed.codec.stripCount, 6u) << "2 tiles across, 3 down";
    EXPECT_EQ(handed.codec.rowsPerStrip, 4u);
    EXPECT_EQ(handed.codec.userValue, source.userValue());
    EXPECT_EQ(handed.codec.lineFunction, &LineSource::supply);
    EXPECT_EQ(handed.codec.jpegProcess, 1);
    EXPECT_NE(handed.codec.stripOffsets, nullptr);
    EXPECT_NE(handed.codec.stripByteCounts, nullptr);
    EXPECT_EQ(handed.tileWidth, 16u);
    EXPECT_EQ(handed.tileLength, 4u);
    EXPECT_EQ(handed.tilesAcross, 2u);
    EXPECT_EQ(handed.tilesDown, 3u);
    EXPECT_EQ(handed.planarConfiguration, 1u);
    EXPECT_EQ(handed.restartInterval, 7u);
    EXPECT_EQ(handed.subsamplingHorizontal, 2u);
    EXPECT_EQ(handed.subsamplingVertical, 1u);
    EXPECT_EQ(module.reference.size(), 48u) << "the default ReferenceBlackWhite";
    EXPECT_EQ(source.calls, 10u);
}

TEST_F(JpegEncode, TakesTwoForSubsamplingThatIsAbsentOrZero) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    for (const bool zero : {false, true}) {
        const WrittenTiff tiff;
        LineSource source = sourceOf(60, 10);
        auto tags = jpegTags(20, 10, 3);
        if (zero) {
            tags.push_back({530, 3, {0, 0}});
        }
        EXPECT_EQ(tiff.add(tags, source), 1u);
        EXPECT_EQ(module.handed.subsamplingHorizontal, 2u);
        EXPECT_EQ(module.handed.subsamplingVertical, 2u);
    }
}

TEST_F(JpegEncode, DefinesTileAndTableTagsFromTheModulesWork) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    const WrittenTiff tiff;
    LineSource source = sourceOf(60, 10);
    ASSERT_EQ(tiff.add(jpegTags(20, 10, 3), source), 1u) << TiffError();
    const OpenedTiff written(tiff.memory());
    ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
    EXPECT_EQ(longValues(written.get(), 0, 324), (std::vector<DWORD>{8, 248, 488, 0, 0, 0}))
        << "the module made three pieces";
    EXPECT_EQ(longValues(written.get(), 0, 325), (std::vector<DWORD>{240, 240, 120, 0, 0, 0}));
    EXPECT_EQ(longValues(written.get(), 0, 519), (std::vector<DWORD>{1000, 1001, 1002}));
    EXPECT_EQ(longValues(written.get(), 0, 521), (std::vector<DWORD>{2000, 2001, 2002}));
    EXPECT_EQ(longValues(written.get(), 0, 520), (std::vector<DWORD>{3000, 3001, 3002}));
    EXPECT_EQ(GetTiffImageInfo(written.get(), 0, 273, nullptr), 0) << "no strips";
    const Bytes bytes = tiff.memory();
    EXPECT_TRUE(std::equal(source.data.begin(), source.data.end(), bytes.begin() + 8));
}

TEST_F(JpegEncode, DefinesOneTableEachForGrey) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    module.tableCount = 1;
    const WrittenTiff tiff;
    LineSource source = sourceOf(20, 4);
    ASSERT_EQ(tiff.add(jpegTags(20, 4, 1), source), 1u) << TiffError();
    const OpenedTiff written(tiff.memory());
    ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
    EXPECT_EQ(longValues(written.get(), 0, 519), (std::vector<DWORD>{1000}));
    EXPECT_EQ(module.handed.subsamplingHorizontal, 2u);
    EXPECT_TRUE(module.reference.empty());
}

TEST_F(JpegEncode, FailsWithoutTablesAndLeavesTheChain) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    for (const bool tooSmall : {false, true}) {
        module.leavesTables = tooSmall;
        module.tableCount = 2;
        const WrittenTiff tiff;
        LineSource source = sourceOf(60, 10);
        EXPECT_EQ(tiff.add(jpegTags(20, 10, 3), source), 0u);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
        const OpenedTiff written(tiff.memory());
        EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 0);
    }
}

TEST_F(JpegEncode, PassesTheModulesErrorOn) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    module.answer = 55;
    const WrittenTiff tiff;
    LineSource source = sourceOf(60, 10);
    EXPECT_EQ(tiff.add(jpegTags(20, 10, 3), source), 0u);
    EXPECT_EQ(TiffError(), 55u);
}

TEST_F(JpegEncode, KeepsTheModuleUntilTheTiffIsClosed) {
    const CompanionModule companion(kCompanionName, kEncoderEntry, asEntry(encodeAsIs));
    {
        const WrittenTiff tiff;
        LineSource source = sourceOf(60, 10);
        EXPECT_EQ(tiff.add(jpegTags(20, 10, 3), source), 1u);
        EXPECT_EQ(companion.loads(), 1);
    }
    EXPECT_EQ(companion.loads(), 0);
}

TEST_F(JpegEncode, WithoutTheModuleTellsTheUserAndWritesNothing) {
    const Bytes old = {'o', 'l', 'd'};
    ASSERT_TRUE(writeFile(file_.path(), old));
    const struct {
        const char *module;
        const char *entry;
        const char *text;
    } kCases[] = {{"OTHER.DLL", kEncoderEntry, "'DCTLIB.DLL' module is not found"},
                  {kCompanionName, kCompanionEntry, "'JPEGEncoder' function is not found"}};
    for (const auto &[name, entry, text] : kCases) {
        const CompanionModule companion(name, entry, asEntry(encodeAsIs));
        const MessageBoxes boxes;
        const WrittenTiff tiff(file_.path());
        LineSource source = sourceOf(60, 10);
        EXPECT_EQ(tiff.add(jpegTags(20, 10, 3), source), 1u);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
        EXPECT_EQ(source.calls, 0u);
        EXPECT_EQ(boxes.count(), 1);
        EXPECT_EQ(boxes.text(), text);
        EXPECT_EQ(boxes.caption(), "VELLUMSDK");
        EXPECT_EQ(boxes.style(), UINT{MB_TASKMODAL});
        EXPECT_EQ(readFile(file_.path()), old) << "not even an older file is touched";
    }
    const TempFile fresh;
    const CompanionModule companion("OTHER.DLL", kEncoderEntry, nullptr);
    const MessageBoxes boxes;
    LineSource source = sourceOf(60, 10);
    EXPECT_EQ(WrittenTiff(fresh.path()).add(jpegTags(20, 10, 3), source), 1u);
    EXPECT_FALSE(readFile(fresh.path())) << "no half file";
}

} // namespace
