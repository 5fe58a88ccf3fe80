// Line functions that call back into the library, and the odder corners of what is written.
#include "support/decode_lines.h"
#include "support/encode_lines.h"
#include "support/faults.h"
#include "support/read_tags.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

#include <functional>

namespace {

using namespace vellum::test;

// What a line function does besides filling its line.
struct Doer {
    std::function<void(DWORD)> act;
    static DWORD VELLUMAPI line(BYTE *bytes, DWORD lineIndex, DWORD userValue) {
        std::memset(bytes, 0x5A, 2);
        reinterpret_cast<Doer *>(static_cast<std::uintptr_t>(userValue))->act(lineIndex);
        return 0;
    }
    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(this)); }
};

DWORD encode(TiffHandle tiff, Doer &doer) {
    return EncodeTiffImage(tiff, 0, doer.userValue(), Doer::line);
}

const std::vector<TagValue> &tags() {
    static const auto kTags = pictureTags(16, 4, 1, 2);
    return kTags;
}

DWORD pagesOf(const Bytes &bytes) {
    const OpenedTiff tiff(bytes);
    return static_cast<DWORD>(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES));
}

TEST(LineFunctionThatCallsBack, MayAskForTagsErrorsAndOtherFiles) {
    const WrittenTiff tiff;
    ASSERT_EQ(tiff.define(tags()), 0);
    Doer doer;
    doer.act = [&](DWORD) {
        DWORD width = 0;
        EXPECT_EQ(GetTiffImageInfo(tiff.get(), 0, 256, &width), 1);
        EXPECT_EQ(width, 16u);
        SetTiffError(VELLUM_BAD_TAG);
        EXPECT_EQ(SetKfactor(2), 1u);
        const TempFile other;
        LineSource source;
        source.lineBytes = 2;
        EXPECT_EQ(WrittenTiff(other.path()).add(tags(), source), 1u);
    };
    EXPECT_EQ(encode(tiff.get(), doer), 1u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(pagesOf(tiff.memory()), 1u);
}

TEST(LineFunctionThatCallsBack, MayCloseTheTiffBeingWritten) {
    const HGLOBAL block = makeBlock({'I', 'I', 42, 0, 0, 0, 0, 0});
    TiffHandle tiff = OpenTiffInMemory(block, 8, T_CREAT);
    const LONG index = DefineTiffImage(tiff);
    for (const TagValue &tag : tags()) {
        ASSERT_TRUE(define(tiff, index, tag));
    }
    Doer doer;
    doer.act = [&](DWORD line) {
        if (line == 1) {
            CloseTiffFile(tiff);
        }
    };
    EXPECT_EQ(encode(tiff, doer), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    GlobalFree(block);
}

TEST(LineFunctionThatCallsBack, MayDropTheImageBeingWritten) {
    const WrittenTiff tiff;
    ASSERT_EQ(tiff.define(tags()), 0);
    Doer doer;
    doer.act = [&](DWORD) { DropTiffImage(tiff.get(), 0); };
    EXPECT_EQ(encode(tiff.get(), doer), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_NO_MEMORY});
    EXPECT_EQ(pagesOf(tiff.memory()), 0u);
}

TEST(LineFunctionThatCallsBack, MaySetKForTheNextRunOnly) {
    const auto encoded = [](bool changes) {
        const WrittenTiff tiff;
        auto all = pictureTags(16, 8, 1, 8, {{259, 3, {3}}, {292, 4, {1}}});
        EXPECT_EQ(tiff.define(all), 0);
        Doer doer;
        doer.act = [&](DWORD line) {
            if (changes && line == 1) {
                SetKfactor(4);
            }
        };
        EXPECT_EQ(encode(tiff.get(), doer), 1u);
        SetKfactor(2);
        return tiff.memory();
    };
    EXPECT_EQ(encoded(true), encoded(false));
}

TEST(WrittenDirectory, HasInlineValuesLeftJustifiedInBothOrders) {
    for (const LONG order : {VELLUM_BYTE_ORDER_II, VELLUM_BYTE_ORDER_MM}) {
        const TempFile file;
        LineSource source;
        source.lineBytes = 2;
        {
            const WrittenTiff tiff(file.path());
            ModiTiffFileInfo(tiff.get(), nullptr, order);
            EXPECT_EQ(tiff.add({{256, 3, {16}},
                                {257, 3, {1}},
                                {40001, 3, {0x1234, 0x5678}},
                                {40002, 1, {1, 2, 3}},
                                {40003, 9, {0x01020304}}},
                               source),
                      1u);
        }
        const Bytes bytes = readFile(file.path()).value_or(Bytes{});
        ASSERT_GT(bytes.size(), 100u);
        const Bytes shorts =
            order == VELLUM_BYTE_ORDER_II ? Bytes{0x34, 0x12, 0x78, 0x56} : Bytes{0x12, 0x34, 0x56, 0x78};
        EXPECT_NE(std::search(bytes.begin(), bytes.end(), shorts.begin(), shorts.end()), bytes.end());
        const Bytes three = {1, 2, 3, 0};
        EXPECT_NE(std::search(bytes.begin(), bytes.end(), three.begin(), three.end()), bytes.end());
        const OpenedTiff written{std::string(file.path())};
        ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
        EXPECT_EQ(storedTag(written.get(), 0, 40001), (StoredTag{{0x34, 0x12, 0x78, 0x56}, 3, 2}));
        EXPECT_EQ(storedTag(written.get(), 0, 40003), (StoredTag{{4, 3, 2, 1}, 9, 1})) << "a lone SLONG";
    }
}

TEST(WrittenDirectory, KeepsEqualTagsInTheirOrder) {
    tiff::Builder builder;
    builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::shorts(40001, {11}), tiff::shorts(40001, {22}),
                  tiff::shorts(40001, {33})},
                 {{0x77}});
    const TempFile file(builder.bytes());
    {
        const WrittenTiff tiff(file.path(), T_APPEND);
        ASSERT_EQ(GetTiffImage(tiff.get(), 0), 1u);
        EXPECT_EQ(WriteTiffImageDirectory(tiff.get(), 0), 0u);
    }
    const Bytes bytes = readFile(file.path()).value_or(Bytes{});
    const Bytes entries = {0x41, 0x9C, 3,  0, 1, 0, 0,    0,    11, 0, 0, 0, 0x41, 0x9C, 3,  0, 1, 0,
                           0,    0,    22, 0, 0, 0, 0x41, 0x9C, 3,  0, 1, 0, 0,    0,    33, 0, 0, 0};
    const auto first = std::search(bytes.begin(), bytes.end(), entries.begin(), entries.end());
    ASSERT_NE(first, bytes.end());
    EXPECT_NE(std::search(first + 1, bytes.end(), entries.begin(), entries.end()), bytes.end()) << "in the copy, too";
}

TEST(WriteTiffImageDirectoryCall, WorksInMemoryAndFailsCleanly) {
    const WrittenTiff tiff;
    ASSERT_EQ(tiff.define({{256, 3, {16}}, {257, 3, {1}}, {270, 2, {1, 2, 3, 4, 5}}, {273, 4, {4}}, {279, 4, {2}}}), 0);
    const Bytes before = tiff.memory();
    for (long nth = 0;; ++nth) {
        ASSERT_LT(nth, 50);
        const FailNth fault(Call::Allocate, nth);
        const DWORD result = WriteTiffImageDirectory(tiff.get(), 0);
        if (!fault.happened()) {
            EXPECT_EQ(result, 0u);
            EXPECT_GT(nth, 0);
            break;
        }
        EXPECT_EQ(result, DWORD{VELLUM_NO_MEMORY});
        EXPECT_EQ(tiff.memory(), before);
    }
    EXPECT_GT(tiff.memory().size(), before.size()) << "block and size are stored back";
    EXPECT_EQ(pagesOf(tiff.memory()), 1u);
    EXPECT_EQ(WriteTiffImageDirectory(tiff.get(), 0), 0u) << "again, in the first one's place";
    EXPECT_EQ(pagesOf(tiff.memory()), 1u);
}

TEST(WrittenDirectory, TellsTheByteOrderToTheCodec) {
    // The uncompressed codec does not look at it; the companion module does.
    static DWORD seen = 0;
    struct Module {
        static DWORD VELLUMAPI encode(CodecState *state) {
            seen = state->byteOrder;
            return VELLUM_CODE_ERROR;
        }
    };
    const CompanionModule module("DCTLIB32.DLL", "JPEGEncoder",
                                 reinterpret_cast<FARPROC>(reinterpret_cast<void *>(&Module::encode)));
    const TempFile file;
    const WrittenTiff tiff(file.path());
    ModiTiffFileInfo(tiff.get(), nullptr, VELLUM_BYTE_ORDER_MM);
    LineSource source;
    EXPECT_EQ(tiff.add({{256, 3, {16}},
                        {257, 3, {4}},
                        {258, 3, {8}},
                        {259, 3, {6}},
                        {322, 3, {16}},
                        {323, 3, {16}},
                        {512, 3, {1}}},
                       source),
              0u);
    EXPECT_EQ(seen, DWORD{VELLUM_BYTE_ORDER_MM});
}

TEST(EncodeTiffTypes, TakesTheTypeForA16BitNumber) {
    const WrittenTiff tiff;
    ASSERT_EQ(DefineTiffImage(tiff.get()), 0);
    const DWORD values[] = {1, 2};
    EXPECT_EQ(DefineTiffImageInfoBuffer(tiff.get(), 0, 40000, values, 0x10004, 2), 1);
    EXPECT_EQ(storedTag(tiff.get(), 0, 40000), (StoredTag{{1, 0, 0, 0, 2, 0, 0, 0}, 4, 2}));
}

TEST(EncodeTiffWithoutLines, LinksNoImage) {
    LineSource source;
    source.lineBytes = 2;
    source.answer = VELLUM_INDEX_OUT_OF_RANGE;
    const WrittenTiff tiff;
    EXPECT_EQ(tiff.add(tags(), source), 1u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_EQ(pagesOf(tiff.memory()), 0u);
}

TEST(EncodeRawWidths, AreHeldAgainstTheCcittLimitFirst) {
    LineSource source;
    for (const DWORD key : {2UL, 3UL, 0x10003UL, 4UL}) {
        EXPECT_EQ(EncodeCcittImage(1, 0x7FFF0001, 1, key, source.userValue(), LineSource::supply), 0u);
        EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR}) << key;
    }
    EXPECT_EQ(EncodeMMRImage(1, 33281, 1, 0, source.userValue(), LineSource::supply), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR});
}

TEST(EncodeRawJpeg, HandsTheModuleATwoColourHeader) {
    static DWORD colours = 0;
    struct Module {
        static DWORD VELLUMAPI encode(CodecState *state) {
            colours = state->image.biClrUsed;
            return VELLUM_CODE_ERROR;
        }
    };
    const CompanionModule module("DCTLIB32.DLL", "JPEGEncoder",
                                 reinterpret_cast<FARPROC>(reinterpret_cast<void *>(&Module::encode)));
    LineSource source;
    EXPECT_EQ(EncodeCcittImage(1, 16, 4, VELLUM_KEY_JPEG, source.userValue(), LineSource::supply), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_CODE_ERROR});
    EXPECT_EQ(colours, 2u);
    const WrittenTiff unloads;
}

TEST(EncodeRawJpeg, WithoutTheModuleTellsTheUserAndSucceeds) {
    const MessageBoxes boxes;
    const CompanionModule other("OTHER.DLL", "JPEGEncoder", nullptr);
    LineSource source;
    const TempFile file;
    const HFILE stream = _lcreat(file.path(), 0);
    EXPECT_EQ(EncodeCcittImage(stream, 16, 4, VELLUM_KEY_JPEG, source.userValue(), LineSource::supply), 1u);
    _lclose(stream);
    EXPECT_EQ(boxes.count(), 1);
    EXPECT_EQ(source.calls, 0u);
}

// The JPEG tiles of an image, as the module is told.
struct TileCount {
    DWORD width;
    DWORD height;
    DWORD tileWidth; // 0: no tile tags
    DWORD tileLength;
    DWORD rowsPerStrip; // 0: no such tag
    DWORD expected;
};

TEST(EncodeTiffTiles, AreCountedIn16BitsElseTheStripsCount) {
    static DWORD seen = 0;
    struct Module {
        static DWORD VELLUMAPI encode(CodecState *state) {
            seen = state->stripCount;
            return VELLUM_CODE_ERROR;
        }
    };
    const CompanionModule module("DCTLIB32.DLL", "JPEGEncoder",
                                 reinterpret_cast<FARPROC>(reinterpret_cast<void *>(&Module::encode)));
    for (const TileCount &count :
         {TileCount{20, 10, 16, 4, 0, 6}, TileCount{300, 300, 1, 1, 0, 300 * 300 & 0xFFFF},
          TileCount{256, 256, 1, 1, 0, 256}, TileCount{16, 40, 0, 0, 8, 5}, TileCount{16, 40, 0, 0, 0, 40}}) {
        std::vector<TagValue> all = {
            {256, 3, {count.width}}, {257, 3, {count.height}}, {258, 3, {8}}, {259, 3, {6}}, {512, 3, {1}}};
        if (count.tileWidth != 0) {
            all.push_back({322, 3, {count.tileWidth}});
            all.push_back({323, 3, {count.tileLength}});
        }
        if (count.rowsPerStrip != 0) {
            all.push_back({278, 3, {count.rowsPerStrip}});
        }
        const WrittenTiff tiff;
        LineSource source;
        EXPECT_EQ(tiff.add(all, source), 0u);
        EXPECT_EQ(seen, count.expected) << count.width << " x " << count.height;
    }
}

TEST(EncodeTiffTiles, MeanNothingToOtherCompressions) {
    LineSource source;
    source.lineBytes = 8;
    const WrittenTiff tiff;
    auto all = pictureTags(64, 40, 1, 8, {{322, 3, {16}}, {323, 3, {16}}});
    EXPECT_EQ(tiff.add(all, source), 1u);
    const OpenedTiff written(tiff.memory());
    ASSERT_EQ(GetTiffImage(written.get(), 0), 1u);
    EXPECT_EQ(longValues(written.get(), 0, 273).size(), 5u);
}

// Several handles, other programs.

std::vector<DWORD> offsetsOf(const char *path) {
    std::vector<DWORD> offsets;
    const OpenedTiff tiff{std::string(path)};
    for (LONG page = 0; page < NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES); ++page) {
        GetTiffImage(tiff.get(), static_cast<DWORD>(page));
        offsets.push_back(firstNumber(tiff.get(), static_cast<DWORD>(page), 273));
    }
    return offsets;
}

TEST(ChainEnd, ThatAnotherHandleHasExtendedIsLeftAlone) {
    const TempFile file;
    LineSource first;
    first.lineBytes = 2;
    LineSource second = first;
    LineSource third = first;
    ASSERT_EQ(WrittenTiff(file.path()).add(tags(), first), 1u);
    const WrittenTiff early(file.path(), T_APPEND);
    ASSERT_EQ(WrittenTiff(file.path(), T_APPEND).add(tags(), second), 1u);
    const auto before = readFile(file.path());
    EXPECT_EQ(early.add(tags(), third), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(third.calls, 0u);
    EXPECT_EQ(readFile(file.path()), before);
    EXPECT_EQ(offsetsOf(file.path()).size(), 2u);
}

TEST(ChainEnd, OfAFileThatWasReplacedIsNotPatched) {
    tiff::Builder builder;
    builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1})}, {{0x77}});
    const TempFile file(builder.bytes());
    const WrittenTiff early(file.path(), T_APPEND);
    ASSERT_TRUE(writeFile(file.path(), Bytes(10, 0x41)));
    LineSource source;
    source.lineBytes = 2;
    EXPECT_EQ(early.add(tags(), source), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_IO_ERROR});
    EXPECT_EQ(readFile(file.path()), Bytes(10, 0x41));
}

TEST(ChainEnd, InAnotherByteOrderThanTheHandlesIsAnError) {
    const TempFile file;
    LineSource first;
    first.lineBytes = 2;
    LineSource second = first;
    ASSERT_EQ(WrittenTiff(file.path()).add(tags(), first), 1u);
    const auto before = readFile(file.path());
    const WrittenTiff tiff(file.path(), T_APPEND);
    ModiTiffFileInfo(tiff.get(), nullptr, VELLUM_BYTE_ORDER_MM);
    EXPECT_EQ(tiff.add(tags(), second), 0u);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_BYTE_ORDER});
    EXPECT_EQ(readFile(file.path()), before);
}

TEST(ChainEnd, ThatLeadsNowhereIsMended) {
    tiff::Builder broken;
    broken.page({tiff::shorts(256, {8}), tiff::shorts(257, {1})}, {{0x77}});
    broken.linkTo(0x00FFFFFF);
    const TempFile file(broken.bytes());
    LineSource source;
    source.lineBytes = 2;
    EXPECT_EQ(WrittenTiff(file.path(), T_APPEND).add(tags(), source), 1u) << TiffError();
    EXPECT_EQ(offsetsOf(file.path()).size(), 2u);
}

TEST(WrittenImage, CanBeRegisteredAndExtendedOnTheSameHandle) {
    for (const bool existing : {false, true}) {
        const TempFile file;
        if (existing) {
            tiff::Builder builder;
            builder.page({tiff::shorts(256, {8}), tiff::shorts(257, {1}), tiff::ascii(270, std::string(500, 'x'))},
                         {{0x77}});
            ASSERT_TRUE(writeFile(file.path(), builder.bytes()));
        }
        const WrittenTiff tiff(file.path(), T_APPEND);
        LineSource source;
        source.lineBytes = 2;
        ASSERT_EQ(tiff.add(tags(), source), 1u);
        SetTiffError(VELLUM_OK);
        ASSERT_EQ(GetTiffImage(tiff.get(), 0), 1u) << TiffError();
        const auto before = longValues(tiff.get(), 0, 0);
        EXPECT_EQ(before, (std::vector<DWORD>{256, 257, 258, 262, 273, 278, 279}));
        EXPECT_EQ(DefineTiffImageInfo(tiff.get(), 0, 305, 3, 7), 1);
        EXPECT_EQ(firstNumber(tiff.get(), 0, 305), 7u);
        EXPECT_EQ(longValues(tiff.get(), 0, 0).size(), before.size() + 1);
    }
}

} // namespace
