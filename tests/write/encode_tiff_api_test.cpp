// Whole images written to files and to memory: the bytes, the guards, and what a failure leaves.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

// 4 lines of 16 pixels.
Bytes smallPicture() {
    return {0x11, 0x12, 0x21, 0x22, 0x31, 0x32, 0x41, 0x42};
}

LineSource smallSource() {
    LineSource source;
    source.lineBytes = 2;
    source.data = smallPicture();
    return source;
}

std::vector<TagValue> smallTags(DWORD rowsPerStrip, std::initializer_list<TagValue> more = {}) {
    return pictureTags(16, 4, 1, rowsPerStrip, more);
}

DWORD encode(TiffHandle tiff, LONG index, LineSource &source) {
    return EncodeTiffImage(tiff, static_cast<DWORD>(index), source.userValue(), LineSource::supply);
}

Bytes decoded(TiffHandle tiff, DWORD index, std::size_t lineBytes) {
    LineLog log;
    log.lineBytes = lineBytes;
    GetTiffImage(tiff, index);
    EXPECT_EQ(DecodeTiffImage(tiff, index, 0, 0, log.userValue(), LineLog::receive), 1u) << TiffError();
    return log.data;
}

Bytes decoded(const char *path, DWORD index, std::size_t lineBytes) {
    const OpenedTiff tiff{std::string(path)};
    return decoded(tiff.get(), index, lineBytes);
}

DWORD lastUserValue = 0;
DWORD VELLUMAPI noteUserValue(BYTE * /*line*/, DWORD /*lineIndex*/, DWORD userValue) {
    lastUserValue = userValue;
    return 0;
}

class EncodeTiff : public ::testing::Test {
protected:
    EncodeTiff() { SetTiffError(VELLUM_OK); }
    TempFile file_;
};

TEST_F(EncodeTiff, LaysANewFileOutAsHeaderStripsValuesDirectory) {
    LineSource source = smallSource();
    {
        const WrittenTiff tiff(file_.path());
        EXPECT_EQ(tiff.add({{270, 2, {'h', 'e', 'l', 'l', 'o'}}, {257, 3, {4}}, {256, 4, {16}}, {278, 3, {2}}}, source),
                  1u);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    }
    EXPECT_EQ(source.calls, 4u);
    EXPECT_TRUE(source.inOrder);
    const Bytes expected = {'I',  'I',  42,   0,    37,   0,    0,    0,    // header, link
                            0x11, 0x12, 0x21, 0x22, 0x31, 0x32, 0x41, 0x42, // strips
                            'h',  'e',  'l',  'l',  'o',                    // 270
                            8,    0,    0,    0,    12,   0,    0,    0,    // 273
                            4,    0,    0,    0,    4,    0,    0,    0,    // 279
                            6,    0,                                        // the directory, at an odd offset
                            0,    1,    4,    0,    1,    0,    0,    0,    16, 0, 0, 0, // 256 LONG 16
                            1,    1,    3,    0,    1,    0,    0,    0,    4,  0, 0, 0, // 257 SHORT 4
                            14,   1,    2,    0,    5,    0,    0,    0,    16, 0, 0, 0, // 270 ASCII at 16
                            17,   1,    4,    0,    2,    0,    0,    0,    21, 0, 0, 0, // 273 LONG at 21
                            22,   1,    3,    0,    1,    0,    0,    0,    2,  0, 0, 0, // 278 SHORT 2
                            23,   1,    4,    0,    2,    0,    0,    0,    29, 0, 0, 0, // 279 LONG at 29
                            0,    0,    0,    0};
    EXPECT_EQ(readFile(file_.path()), expected);
}

TEST_F(EncodeTiff, WritesMotorolaOrderWhenAskedTo) {
    LineSource source = smallSource();
    {
        const WrittenTiff tiff(file_.path());
        EXPECT_EQ(ModiTiffFileInfo(tiff.get(), nullptr, VELLUM_BYTE_ORDER_MM), 1);
        EXPECT_EQ(
            tiff.add({{256, 3, {16}}, {257, 3, {4}}, {278, 3, {4}}, {282, 5, {204, 1}}, {320, 3, {1, 2, 3}}}, source),
            1u);
    }
    const Bytes expected = {'M',  'M',  0,    42,   0,    0,    0,    30,                      // header, link
                            0x11, 0x12, 0x21, 0x22, 0x31, 0x32, 0x41, 0x42,                    // strip
                            0,    0,    0,    204,  0,    0,    0,    1,                       // 282: two LONGs
                            0,    1,    0,    2,    0,    3,                                   // 320
                            0,    7,    1,    0,    0,    3,    0,    0,    0, 1, 0, 16, 0, 0, // 256, left-justified
                            1,    1,    0,    3,    0,    0,    0,    1,    0, 4, 0, 0,        // 257
                            1,    17,   0,    4,    0,    0,    0,    1,    0, 0, 0, 8,        // 273
                            1,    22,   0,    3,    0,    0,    0,    1,    0, 4, 0, 0,        // 278
                            1,    23,   0,    4,    0,    0,    0,    1,    0, 0, 0, 8,        // 279
                            1,    26,   0,    5,    0,    0,    0,    1,    0, 0, 0, 16,       // 282 at 16
                            1,    64,   0,    3,    0,    0,    0,    3,    0, 0, 0, 24,       // 320 at 24
                            0,    0,    0,    0};
    EXPECT_EQ(readFile(file_.path()), expected);
    EXPECT_EQ(decoded(file_.path(), 0, 2), smallPicture());
}

TEST_F(EncodeTiff, GivesAnImageWithoutRowsPerStripAStripALine) {
    LineSource source = smallSource();
    {
        const WrittenTiff tiff(file_.path());
        EXPECT_EQ(tiff.add({{256, 3, {16}}, {257, 3, {4}}}, source), 1u);
    }
    const OpenedTiff tiff{std::string(file_.path())};
    ASSERT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    EXPECT_EQ(longValues(tiff.get(), 0, 273), (std::vector<DWORD>{8, 10, 12, 14}));
    EXPECT_EQ(longValues(tiff.get(), 0, 279), (std::vector<DWORD>{2, 2, 2, 2}));
}

TEST_F(EncodeTiff, TakesRowsPerStripZeroOrTooLargeForTheHeight) {
    for (const DWORD rows : {0u, 4u, 5u, 0xFFFFFFFFu}) {
        LineSource source = smallSource();
        const WrittenTiff tiff;
        EXPECT_EQ(tiff.add(smallTags(rows), source), 1u);
        const Bytes bytes = tiff.memory();
        const OpenedTiff written(bytes);
        ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
        EXPECT_EQ(longValues(written.get(), 0, 273), (std::vector<DWORD>{8})) << rows;
        EXPECT_EQ(longValues(written.get(), 0, 279), (std::vector<DWORD>{8})) << rows;
    }
}

TEST_F(EncodeTiff, EndsWithAShorterStripWhereTheRowsDoNotDivide) {
    LineSource source = smallSource();
    const WrittenTiff tiff;
    EXPECT_EQ(tiff.add(smallTags(3), source), 1u);
    const OpenedTiff written(tiff.memory());
    ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
    EXPECT_EQ(longValues(written.get(), 0, 279), (std::vector<DWORD>{6, 2}));
    EXPECT_EQ(decoded(written.get(), 0, 2), smallPicture());
}

TEST_F(EncodeTiff, AppendsToAnExistingFileOfEitherOrder) {
    for (const std::uint16_t order : {tiff::kII, tiff::kMM}) {
        tiff::Builder builder(order);
        builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(278, {1})}, {{0x77}});
        const Bytes before = builder.bytes();
        const TempFile existing(before);
        for (DWORD page = 1; page <= 3; ++page) {
            LineSource source = smallSource();
            const WrittenTiff tiff(existing.path(), T_APPEND);
            EXPECT_EQ(tiff.add(smallTags(4), source), 1u) << TiffError();
        }
        const OpenedTiff written{std::string(existing.path())};
        EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 4);
        EXPECT_EQ(decoded(written.get(), 0, 1), (Bytes{0x77}));
        EXPECT_EQ(decoded(written.get(), 3, 2), smallPicture());
        TiffFileInfo info{};
        GetTiffFileInfo(written.get(), &info);
        EXPECT_EQ(info.byteOrder, order);
    }
}

TEST_F(EncodeTiff, PutsASecondImageOfTheSameHandleInTheFirstOnesPlace) {
    LineSource first = smallSource();
    LineSource second = smallSource();
    second.data.assign(8, 0xAB);
    {
        const WrittenTiff tiff(file_.path());
        EXPECT_EQ(tiff.add(smallTags(4), first), 1u);
        EXPECT_EQ(tiff.add(smallTags(4), second), 1u);
    }
    const OpenedTiff written{std::string(file_.path())};
    EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 1);
    EXPECT_EQ(decoded(written.get(), 0, 2), second.data);
    const auto bytes = readFile(file_.path());
    ASSERT_TRUE(bytes);
    EXPECT_EQ((*bytes)[8], 0x11) << "the first image's data are still there";
}

TEST_F(EncodeTiff, RefusesAnImageWhileAnotherOneIsDefined) {
    const WrittenTiff tiff(file_.path());
    LineSource source = smallSource();
    ASSERT_EQ(tiff.define(smallTags(4)), 0);
    ASSERT_EQ(tiff.define(smallTags(4)), 1);
    EXPECT_EQ(encode(tiff.get(), 1, source), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(encode(tiff.get(), 0, source), 0u) << "image 1 is defined";
    EXPECT_FALSE(readFile(file_.path())) << "nothing was written";
    EXPECT_EQ(source.calls, 0u);
    SetTiffError(VELLUM_OK);
    DropTiffImage(tiff.get(), 0);
    EXPECT_EQ(encode(tiff.get(), 1, source), 1u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(decoded(file_.path(), 0, 2), smallPicture());
}

TEST_F(EncodeTiff, DoesNotMindImagesOtherThanZeroAndOne) {
    const WrittenTiff tiff(file_.path());
    LineSource source = smallSource();
    for (LONG index = 0; index < 4; ++index) {
        ASSERT_EQ(tiff.define(smallTags(4)), index);
    }
    DropTiffImage(tiff.get(), 0);
    EXPECT_EQ(encode(tiff.get(), 2, source), 1u) << "images 1 and 3 are defined";
}

TEST_F(EncodeTiff, ReportsWhatIsWrongWithTheTagsBeforeTouchingTheFile) {
    const struct {
        std::vector<TagValue> tags;
        DWORD error;
    } kCases[] = {
        {{}, VELLUM_TAG_MISSING},
        {{{256, 3, {16}}}, VELLUM_TAG_MISSING},
        {{{256, 3, {0}}, {257, 3, {4}}}, VELLUM_TAG_MISSING},
        {smallTags(4, {{258, 3, {2}}}), VELLUM_BAD_COLOR_FORMAT},
        {smallTags(4, {{258, 3, {16}}}), VELLUM_BAD_COLOR_FORMAT},
        {smallTags(4, {{284, 3, {2}}}), VELLUM_BAD_COLOR_FORMAT},
        {smallTags(4, {{259, 3, {7}}}), VELLUM_UNKNOWN_COMPRESSION},
        {smallTags(4, {{259, 3, {0}}}), VELLUM_UNKNOWN_COMPRESSION},
        {smallTags(4, {{259, 3, {3}}, {292, 4, {2}}}), VELLUM_UNKNOWN_COMPRESSION},
        {smallTags(4, {{259, 3, {5}}, {317, 3, {3}}}), VELLUM_UNKNOWN_COMPRESSION},
        {smallTags(4, {{266, 3, {3}}}), VELLUM_BAD_FILL_ORDER},
        {smallTags(4, {{266, 3, {0}}}), VELLUM_BAD_FILL_ORDER},
        {smallTags(4, {{256, 4, {4160 * 8 + 1}}, {259, 3, {4}}}), VELLUM_CODE_ERROR},
        {smallTags(4, {{256, 4, {0x7FFFFFFF}}}), VELLUM_NO_MEMORY},
        {smallTags(1, {{257, 4, {0xFFFFFFFF}}}), VELLUM_NO_MEMORY},
        {smallTags(4, {{259, 3, {6}}}), VELLUM_TAG_MISSING},
        {smallTags(4, {{259, 3, {6}}, {512, 3, {2}}}), VELLUM_UNKNOWN_COMPRESSION},
    };
    for (const auto &[tags, error] : kCases) {
        const WrittenTiff tiff(file_.path());
        LineSource source = smallSource();
        EXPECT_EQ(tiff.add(tags, source), 0u);
        EXPECT_EQ(TiffError(), error) << "case " << &tags - &kCases[0].tags;
        EXPECT_EQ(source.calls, 0u);
        EXPECT_FALSE(readFile(file_.path())) << "nothing was written";
    }
    LineSource source = smallSource();
    EXPECT_EQ(EncodeTiffImage(nullptr, 0, source.userValue(), LineSource::supply), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    const WrittenTiff tiff(file_.path());
    EXPECT_EQ(encode(tiff.get(), 0, source), 0u) << "no image is defined";
    EXPECT_EQ(TiffError(), DWORD{VELLUM_TAG_MISSING});
}

TEST_F(EncodeTiff, TakesAnAbsentPredictorForOne) {
    LineSource plain = smallSource();
    LineSource explicitly = smallSource();
    const WrittenTiff one;
    const WrittenTiff two;
    EXPECT_EQ(one.add(smallTags(4, {{259, 3, {5}}}), plain), 1u);
    EXPECT_EQ(two.add(smallTags(4, {{259, 3, {5}}, {317, 3, {1}}}), explicitly), 1u);
    EXPECT_EQ(decoded(OpenedTiff(one.memory()).get(), 0, 2), smallPicture());
    EXPECT_EQ(decoded(OpenedTiff(two.memory()).get(), 0, 2), smallPicture());
}

TEST_F(EncodeTiff, PassesALineFunctionsErrorOnAndLeavesTheChain) {
    LineSource first = smallSource();
    WrittenTiff(file_.path()).add(smallTags(4), first);
    const auto before = readFile(file_.path());
    ASSERT_TRUE(before);
    LineSource failing = smallSource();
    failing.answer = 99;
    failing.answerAt = 2;
    {
        const WrittenTiff tiff(file_.path(), T_APPEND);
        EXPECT_EQ(tiff.add(smallTags(4), failing), 0u);
        EXPECT_EQ(TiffError(), 99u);
    }
    EXPECT_EQ(failing.calls, 3u);
    const auto after = readFile(file_.path());
    ASSERT_TRUE(after);
    ASSERT_GE(after->size(), before->size());
    EXPECT_TRUE(std::equal(before->begin(), before->end(), after->begin()));
    LineSource again = smallSource();
    EXPECT_EQ(WrittenTiff(file_.path(), T_APPEND).add(smallTags(4), again), 1u);
    EXPECT_EQ(GetNumberOfImagesInTiffFile(file_.path()), 2u);
    EXPECT_EQ(decoded(file_.path(), 1, 2), smallPicture());
}

TEST_F(EncodeTiff, EndsAnImageEarlyWithTheLinesThatThereAre) {
    const std::vector<std::vector<TagValue>> kinds = {
        {{259, 3, {1}}}, {{259, 3, {2}}}, {{259, 3, {3}}},    {{259, 3, {3}}, {292, 4, {1}}},
        {{259, 3, {4}}}, {{259, 3, {5}}}, {{259, 3, {32773}}}};
    for (const auto &kind : kinds) {
        for (const DWORD rows : {1u, 2u, 3u, 4u}) {
            for (const DWORD stopAt : {1u, 2u, 3u}) {
                LineSource source = smallSource();
                source.answer = VELLUM_INDEX_OUT_OF_RANGE;
                source.answerAt = stopAt;
                auto tags = smallTags(rows);
                tags.insert(tags.end(), kind.begin(), kind.end());
                const WrittenTiff tiff;
                ASSERT_EQ(tiff.add(tags, source), 1u) << TiffError();
                EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
                const OpenedTiff written(tiff.memory());
                ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
                EXPECT_EQ(firstNumber(written.get(), 0, 257), stopAt);
                EXPECT_EQ(longValues(written.get(), 0, 273).size(), (stopAt + rows - 1) / rows);
                const Bytes whole = smallPicture();
                EXPECT_EQ(decoded(written.get(), 0, 2),
                          Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(2 * stopAt)))
                    << "compression " << kind[0].numbers[0] << ", " << rows << " rows a strip, stopped at " << stopAt;
            }
        }
    }
}

TEST_F(EncodeTiff, SucceedsWithoutLinesWhenTheFirstOneSaysStop) {
    LineSource source = smallSource();
    source.answer = VELLUM_INDEX_OUT_OF_RANGE;
    const WrittenTiff tiff;
    EXPECT_EQ(tiff.add(smallTags(4), source), 1u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(source.calls, 1u);
}

TEST_F(EncodeTiff, WritesTiffsInMemoryPageBehindPage) {
    LineSource first = smallSource();
    LineSource second = smallSource();
    second.data.assign(8, 0x3C);
    const WrittenTiff tiff;
    ASSERT_EQ(tiff.add(smallTags(2), first), 1u);
    const Bytes onePage = tiff.memory();
    EXPECT_EQ(decoded(OpenedTiff(onePage).get(), 0, 2), smallPicture());
    // The next page: the grown block is opened for appending.
    const HGLOBAL block = makeBlock(onePage);
    const TiffHandle appending = OpenTiffInMemory(block, static_cast<DWORD>(onePage.size()), T_APPEND);
    ASSERT_NE(appending, nullptr);
    const LONG index = DefineTiffImage(appending);
    for (const TagValue &tag : smallTags(2)) {
        ASSERT_TRUE(define(appending, index, tag));
    }
    EXPECT_EQ(encode(appending, index, second), 1u) << TiffError();
    const OpenedTiff written(blockBytes(GetMemoryTiffHandle(appending)));
    EXPECT_EQ(NumberOfTiffImages(written.get(), VELLUM_ALL_IMAGES), 2);
    EXPECT_EQ(decoded(written.get(), 0, 2), smallPicture());
    EXPECT_EQ(decoded(written.get(), 1, 2), second.data);
    GlobalFree(GetMemoryTiffHandle(appending));
    CloseTiffFile(appending);
}

TEST_F(EncodeTiff, KeepsTheSizeOfAMemoryTiffSoThatASecondPageFollowsTheFirst) {
    LineSource first = smallSource();
    LineSource second = smallSource();
    const WrittenTiff tiff;
    ASSERT_EQ(tiff.add(smallTags(4), first), 1u);
    const std::size_t onePage = tiff.memory().size();
    ASSERT_EQ(tiff.add(smallTags(4), second), 1u);
    EXPECT_GT(tiff.memory().size(), onePage + 8) << "the second page lies behind the first";
}

TEST_F(EncodeTiff, FailsOnFilesThatCannotBeWritten) {
    LineSource source = smallSource();
    const std::string missing = tempFolder() + "/no-such-folder/x.tif";
    const WrittenTiff nowhere(missing.c_str());
    EXPECT_EQ(nowhere.add(smallTags(4), source), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    LineSource written = smallSource();
    WrittenTiff(file_.path()).add(smallTags(4), written);
    const auto before = readFile(file_.path());
    const WrittenTiff reading(file_.path(), T_READ);
    EXPECT_EQ(reading.add(smallTags(4), source), 0u) << "opened for reading only";
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(readFile(file_.path()), before);
}

TEST_F(EncodeTiff, ReversesTheBitsOfFillOrderTwo) {
    LineSource source = smallSource();
    {
        const WrittenTiff tiff(file_.path());
        EXPECT_EQ(tiff.add(smallTags(4, {{266, 3, {2}}}), source), 1u);
    }
    const auto bytes = readFile(file_.path());
    ASSERT_TRUE(bytes);
    EXPECT_EQ(Bytes(bytes->begin() + 8, bytes->begin() + 16), (Bytes{0x88, 0x48, 0x84, 0x44, 0x8C, 0x4C, 0x82, 0x42}));
    EXPECT_EQ(decoded(file_.path(), 0, 2), smallPicture());
}

TEST_F(EncodeTiff, CarriesUserValueAndIndicesToTheLineFunction) {
    const WrittenTiff tiff;
    const LONG index = tiff.define(smallTags(4));
    EXPECT_EQ(EncodeTiffImage(tiff.get(), static_cast<DWORD>(index), 0xCAFEF00D, noteUserValue), 1u);
    EXPECT_EQ(lastUserValue, 0xCAFEF00Du);
}

TEST_F(EncodeTiff, WriteTiffImageDirectoryLinksAnImageWhoseDataAreThere) {
    LineSource source = smallSource();
    WrittenTiff(file_.path()).add(smallTags(4), source);
    {
        const WrittenTiff tiff(file_.path(), T_APPEND);
        const LONG index = tiff.define(smallTags(4, {{273, 4, {8}}, {279, 4, {8}}}));
        EXPECT_EQ(WriteTiffImageDirectory(tiff.get(), static_cast<DWORD>(index)), 0u);
    }
    EXPECT_EQ(GetNumberOfImagesInTiffFile(file_.path()), 2u);
    EXPECT_EQ(decoded(file_.path(), 1, 2), smallPicture());
}

TEST_F(EncodeTiff, WriteTiffImageDirectoryReturnsErrorNumbersAndCreatesNoFile) {
    const WrittenTiff tiff(file_.path());
    EXPECT_EQ(WriteTiffImageDirectory(tiff.get(), 0), DWORD{VELLUM_IO_ERROR}) << "there is no such file";
    EXPECT_FALSE(readFile(file_.path()));
    const TempFile other(Bytes{'I', 'I', 42, 0, 0, 0, 0, 0});
    const WrittenTiff existing(other.path(), T_APPEND);
    EXPECT_EQ(WriteTiffImageDirectory(existing.get(), 0), DWORD{VELLUM_NO_MEMORY}) << "no image is defined";
    EXPECT_EQ(WriteTiffImageDirectory(nullptr, 0), DWORD{VELLUM_NO_MEMORY});
}

TEST_F(EncodeTiff, RefusesTheThousandAndFirstPageAndLeavesTheThousand) {
    tiff::Builder builder;
    for (int page = 0; page < 1000; ++page) {
        builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1})}, {{0x77}});
    }
    const Bytes before = builder.bytes();
    ASSERT_TRUE(writeFile(file_.path(), before));
    LineSource source = smallSource();
    const WrittenTiff tiff(file_.path(), T_APPEND);
    EXPECT_EQ(tiff.add(smallTags(4), source), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(readFile(file_.path()), before);
    const LONG index = tiff.define(smallTags(4));
    EXPECT_EQ(WriteTiffImageDirectory(tiff.get(), static_cast<DWORD>(index)), DWORD{VELLUM_INDEX_OUT_OF_RANGE});
    EXPECT_EQ(readFile(file_.path()), before);
}

TEST_F(EncodeTiff, DoesNotReplaceAFileThatCouldNotBeOpenedForAppending) {
    LineSource source = smallSource();
    WrittenTiff(file_.path()).add(smallTags(4), source);
    const auto before = readFile(file_.path());
    TiffHandle tiff = nullptr;
    {
        const FailNth locked(Call::Open, 0);
        tiff = OpenTiffFile(file_.path(), T_APPEND);
    }
    ASSERT_NE(tiff, nullptr) << "treated as new";
    const LONG index = DefineTiffImage(tiff);
    for (const TagValue &tag : smallTags(4)) {
        ASSERT_TRUE(define(tiff, index, tag));
    }
    LineSource more = smallSource();
    EXPECT_EQ(encode(tiff, index, more), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    CloseTiffFile(tiff);
    EXPECT_EQ(readFile(file_.path()), before);
}

// Raw streams.

struct RawFile {
    TempFile file;
    HFILE handle = _lcreat(file.path(), 0);
    ~RawFile() { close(); }
    void close() {
        if (handle > 0) {
            _lclose(handle);
            handle = 0;
        }
    }
    Bytes bytes() {
        close();
        return readFile(file.path()).value_or(Bytes{});
    }
};

TEST(EncodeRaw, WritesBareCodeAtTheStreamsPosition) {
    RawFile raw;
    _lwrite(raw.handle, "abc", 3);
    LineSource source = smallSource();
    EXPECT_EQ(EncodeCcittImage(raw.handle, 16, 4, VELLUM_KEY_NONE, source.userValue(), LineSource::supply), 1u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    Bytes expected = {'a', 'b', 'c'};
    const Bytes picture = smallPicture();
    expected.insert(expected.end(), picture.begin(), picture.end());
    EXPECT_EQ(raw.bytes(), expected);
}

TEST(EncodeRaw, TakesUnknownOrdersForTheUsualOnes) {
    const struct {
        DWORD fillOrder;
        DWORD byteOrder;
        bool reversed;
    } kCases[] = {{1, VELLUM_BYTE_ORDER_II, false}, {2, VELLUM_BYTE_ORDER_MM, true}, {7, 0x1234, false}, {0, 0, false}};
    for (const auto &[fillOrder, byteOrder, reversed] : kCases) {
        RawFile raw;
        LineSource source = smallSource();
        EXPECT_EQ(EncodeCcittImageTo(raw.handle, 16, 4, fillOrder, byteOrder, VELLUM_KEY_NONE, source.userValue(),
                                     LineSource::supply),
                  1u);
        EXPECT_EQ(raw.bytes()[0], reversed ? 0x88 : 0x11) << fillOrder;
    }
}

TEST(EncodeRaw, RoundTripsEveryKey) {
    for (const DWORD key :
         {0x1UL, 0x2UL, 0x40002UL, 0x3UL, 0x40003UL, 0x10003UL, 0x50003UL, 0x4UL, 0x10005UL, 0x20005UL, 0x8005UL}) {
        RawFile raw;
        LineSource source = smallSource();
        ASSERT_EQ(EncodeCcittImage(raw.handle, 16, 4, key, source.userValue(), LineSource::supply), 1u) << key;
        _llseek(raw.handle, 0, 0);
        LineLog log;
        log.lineBytes = 2;
        EXPECT_EQ(DecodeCcittImage(raw.handle, 16, 4, key, log.userValue(), LineLog::receive), 1u) << key;
        EXPECT_EQ(log.data, smallPicture()) << key;
    }
}

TEST(EncodeRaw, RoundTripsFramedMmr) {
    RawFile raw;
    LineSource source = smallSource();
    ASSERT_EQ(EncodeMMRImage(raw.handle, 16, 4, 77, source.userValue(), LineSource::supply), 1u);
    LineLog log;
    log.lineBytes = 2;
    EXPECT_EQ(DecodeMMRImage(raw.handle, 0, 16, 4, 0, 1, VELLUM_BYTE_ORDER_II, log.userValue(), LineLog::receive), 0u)
        << "the stream stands at its end";
    _llseek(raw.handle, 0, 0);
    log = LineLog{};
    log.lineBytes = 2;
    EXPECT_EQ(DecodeMMRImage(raw.handle, 0, 16, 4, 0, 1, VELLUM_BYTE_ORDER_II, log.userValue(), LineLog::receive), 1u);
    EXPECT_EQ(log.data, smallPicture());
}

TEST(EncodeRaw, RefusesKeysAndSizesBeforeAskingForALine) {
    RawFile raw;
    LineSource source = smallSource();
    const auto result = [&](DWORD width, DWORD key) {
        SetTiffError(VELLUM_OK);
        EXPECT_EQ(EncodeCcittImage(raw.handle, width, 4, key, source.userValue(), LineSource::supply), 0u);
        return TiffError();
    };
    EXPECT_EQ(result(16, 5), DWORD{VELLUM_UNKNOWN_COMPRESSION}) << "a bare 5";
    EXPECT_EQ(result(16, 0), DWORD{VELLUM_UNKNOWN_COMPRESSION});
    EXPECT_EQ(result(16, 0x40004), DWORD{VELLUM_UNKNOWN_COMPRESSION});
    EXPECT_EQ(result(16, 0x30005), DWORD{VELLUM_UNKNOWN_COMPRESSION});
    EXPECT_EQ(result(33281, 4), DWORD{VELLUM_CODE_ERROR});
    EXPECT_EQ(result(0x7FFF0001, 1), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(source.calls, 0u);
    EXPECT_TRUE(raw.bytes().empty());
}

TEST(EncodeRaw, PassesALineFunctionsErrorOn) {
    RawFile raw;
    LineSource source = smallSource();
    source.answer = 77;
    source.answerAt = 1;
    EXPECT_EQ(EncodeCcittImage(raw.handle, 16, 4, 4, source.userValue(), LineSource::supply), 0u);
    EXPECT_EQ(TiffError(), 77u);
    EXPECT_EQ(EncodeCcittImage(-1, 16, 4, VELLUM_KEY_NONE, smallSource().userValue(), nullptr), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
}

} // namespace
