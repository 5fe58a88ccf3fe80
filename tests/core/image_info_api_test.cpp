// Tag values of a registered image.
#include "opened_tiff.h"
#include "support/faults.h"

#include <array>

namespace vellum::test {
namespace {

constexpr DWORD kUntouched = 0xEEEEEEEE;

// What a query for a tag's first value leaves in a variable of 12 bytes.
struct FirstValue {
    LONG result;
    std::array<DWORD, 3> words;
};

FirstValue firstValueOf(TiffHandle tiff, LONG tag) {
    FirstValue value = {0, {kUntouched, kUntouched, kUntouched}};
    value.result = GetTiffImageInfo(tiff, 0, tag, value.words.data());
    return value;
}

class ImageInfo : public ::testing::TestWithParam<Variant> {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }

    [[nodiscard]] static FirstValue firstOf(const tiff::Entry &entry) {
        const OneImage image({entry}, GetParam().byteOrder, GetParam().place);
        return firstValueOf(image.get(), entry.tag);
    }
};
INSTANTIATE_TEST_SUITE_P(, ImageInfo, allVariants(), variantName);

using Words = std::array<DWORD, 3>;

TEST_P(ImageInfo, GivesTheFirstValueInTheSizeOfItsType) {
    EXPECT_EQ(firstOf(tiff::byteValues(300, {0x81, 2})).words, (Words{0xEEEEEE81, kUntouched, kUntouched}));
    EXPECT_EQ(firstOf(tiff::shorts(300, {0x8102, 3})).words, (Words{0x8102, kUntouched, kUntouched}))
        << "extended with zeros";
    EXPECT_EQ(firstOf(tiff::shorts(300, {0x8102, 3, 4})).words, (Words{0x8102, kUntouched, kUntouched}));
    EXPECT_EQ(firstOf(tiff::longs(300, {0x81020304})).words, (Words{0x81020304, kUntouched, kUntouched}));
    EXPECT_EQ(firstOf(tiff::longs(300, {0x81020304, 5})).words, (Words{0x81020304, kUntouched, kUntouched}));
    EXPECT_EQ(firstOf(tiff::rationals(300, {300, 7})).words, (Words{300, 7, kUntouched}));
    EXPECT_EQ(firstOf(tiff::rationals(300, {300, 7, 9, 9})).words, (Words{300, 7, kUntouched}));
}

TEST_P(ImageInfo, LeavesTheVariableForOtherTypes) {
    const Words untouched = {kUntouched, kUntouched, kUntouched};
    for (const auto &entry : {tiff::ascii(300, "abc"), tiff::ascii(300, "abcdef"), tiff::typed(300, 6, 1, 1, {5}),
                              tiff::typed(300, 7, 4, 1, {1, 2, 3, 4}), tiff::typed(300, 8, 2, 1, {1, 2}),
                              tiff::typed(300, 9, 2, 4, {1, 2}), tiff::typed(300, 12, 1, 1, {1})}) {
        const FirstValue value = firstOf(entry);
        EXPECT_EQ(value.result, 1) << entry.type << ": the tag is there";
        EXPECT_EQ(value.words, untouched) << entry.type;
    }
    EXPECT_EQ(TiffError(), 0u);
}

TEST_P(ImageInfo, GivesWhatTheFieldHoldsForATagWithoutValues) {
    EXPECT_EQ(firstOf(tiff::field(300, 4, 0, 77)).words, (Words{77, kUntouched, kUntouched}));
    const bool mm = GetParam().byteOrder == tiff::kMM;
    EXPECT_EQ(firstOf(tiff::field(300, 5, 0, 0x01020304)).words, (Words{mm ? 0x04030201 : 0x01020304u, 0, kUntouched}))
        << "and 0 for the denominator that is not there";
}

TEST_P(ImageInfo, TellsWhetherATagIsThere) {
    const OneImage image({tiff::shorts(256, {1}), tiff::ascii(270, "x")}, GetParam().byteOrder, GetParam().place);
    EXPECT_EQ(GetTiffImageInfo(image.get(), 0, 256, nullptr), 1);
    EXPECT_EQ(GetTiffImageInfo(image.get(), 0, 270, nullptr), 1);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(GetTiffImageInfo(image.get(), 0, 257, nullptr), 0);
    EXPECT_EQ(TiffError(), 13u);
}

class ImageInfoOfOne : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(ImageInfoOfOne, WithoutATagIsError13AndLeavesTheVariable) {
    const OneImage image({tiff::shorts(256, {1})});
    for (const LONG tag : {0, 255, 257, 65535, 65536 + 256, -1, -65280}) {
        SetTiffError(0);
        const FirstValue value = firstValueOf(image.get(), tag);
        EXPECT_EQ(value.result, 0) << tag;
        EXPECT_EQ(value.words[0], kUntouched);
        EXPECT_EQ(TiffError(), 13u);
        if (tag != 0) {
            EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, tag, nullptr, nullptr, nullptr), 0) << tag;
        }
    }
}

TEST_F(ImageInfoOfOne, StaysQuietForAnImageThatIsNotRegistered) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    HGLOBAL data = nullptr;
    DWORD number = kUntouched;
    EXPECT_EQ(GetTiffImageInfo(tiff.get(), 0, 256, &number), 0);
    EXPECT_EQ(GetTiffImageInfoBuffer(tiff.get(), 0, 256, &data, &number, &number), 0);
    EXPECT_EQ(GetTiffImageInfoBuffer(tiff.get(), 0, 0, &data, &number, &number), 0);
    EXPECT_EQ(data, nullptr);
    EXPECT_EQ(number, kUntouched);
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(GetTiffImageInfo(tiff.get(), 1000, 256, &number), 0);
    EXPECT_EQ(SetTiffError(0), 3u);
    EXPECT_EQ(GetTiffImageInfoBuffer(tiff.get(), 0xFFFFFFFF, 256, &data, &number, &number), 0);
    EXPECT_EQ(SetTiffError(0), 3u);
}

TEST_F(ImageInfoOfOne, LeavesAPendingErrorOnSuccess) {
    const OneImage image({tiff::shorts(256, {1})});
    SetTiffError(5);
    EXPECT_EQ(firstValueOf(image.get(), 256).result, 1);
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 256, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(TiffError(), 5u);
}

TEST_F(ImageInfoOfOne, GivesAllValuesInANewBlock) {
    const OneImage image({tiff::shorts(256, {1}), tiff::shorts(258, {8, 8, 8})}, tiff::kMM);
    HGLOBAL data = nullptr;
    DWORD type = 0;
    DWORD count = 0;
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 258, &data, &type, &count), 1);
    EXPECT_EQ(type, 3u);
    EXPECT_EQ(count, 3u);
    EXPECT_EQ(blockBytes(data), (Bytes{8, 0, 8, 0, 8, 0}));
    EXPECT_EQ(lockCount(data), 0u);
    EXPECT_EQ(GlobalFree(data), nullptr);
    data = nullptr;
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 256, &data, nullptr, nullptr), 1);
    EXPECT_EQ(blockBytes(data), (Bytes{1, 0, 0, 0})) << "the whole field";
    GlobalFree(data);
}

TEST_F(ImageInfoOfOne, GivesOnlyWhatIsAskedFor) {
    const OneImage image({tiff::shorts(258, {8, 8, 8})});
    DWORD number = 0;
    const FailNth counter(Call::Allocate, FailNth::kNever);
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 258, nullptr, &number, nullptr), 1);
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 258, nullptr, nullptr, &number), 1);
    EXPECT_EQ(number, 3u);
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 0, nullptr, nullptr, &number), 1);
    EXPECT_EQ(number, 1u);
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 0, nullptr, nullptr, nullptr), 1);
    EXPECT_EQ(counter.calls(), 0u);
}

TEST_F(ImageInfoOfOne, ListsItsTags) {
    std::vector<tiff::Entry> entries;
    for (unsigned tag = 256; tag < 268; ++tag) {
        entries.push_back(tiff::shorts(tag, {tag, tag, tag}));
    }
    const OneImage image(entries, tiff::kMM);
    HGLOBAL data = nullptr;
    DWORD type = 0;
    DWORD count = 0;
    EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, 0, &data, &type, &count), 1);
    EXPECT_EQ(type, 4u);
    EXPECT_EQ(count, 12u);
    Bytes expected;
    for (unsigned tag = 256; tag < 268; ++tag) {
        expected.insert(expected.end(), {static_cast<BYTE>(tag), static_cast<BYTE>(tag >> 8), 0, 0});
    }
    EXPECT_EQ(blockBytes(data), expected) << "48 bytes";
    GlobalFree(data);
}

TEST_F(ImageInfoOfOne, NeedsMemoryForTheValues) {
    const OneImage image({tiff::shorts(258, {8, 8, 8})});
    for (const LONG tag : {258, 0}) {
        HGLOBAL data = nullptr;
        const FailNth fault(Call::Allocate, 0);
        EXPECT_EQ(GetTiffImageInfoBuffer(image.get(), 0, tag, &data, nullptr, nullptr), 0);
        EXPECT_EQ(data, nullptr);
        EXPECT_EQ(SetTiffError(0), 1u);
    }
}

} // namespace
} // namespace vellum::test
