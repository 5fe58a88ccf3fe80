// The table of an open TIFF's images: which are registered, and how many of a kind there are.
#include "opened_tiff.h"

namespace vellum::test {
namespace {

// A TIFF of full-resolution images without any tags but ImageWidth.
Bytes plainTiff(unsigned images, std::uint16_t byteOrder = tiff::kII) {
    tiff::Builder file(byteOrder);
    for (unsigned i = 0; i < images; ++i) {
        file.directory({tiff::shorts(256, {i + 1})});
    }
    return file.bytes();
}

class Registered : public ::testing::TestWithParam<Variant> {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};
INSTANTIATE_TEST_SUITE_P(, Registered, allVariants(), variantName);

TEST_P(Registered, ImagesComeAndGo) {
    const OpenedTiff tiff(plainTiff(3, GetParam().byteOrder), GetParam().place);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 1), 0u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 1u);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 1), 1u);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 0), 0u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 1u) << "once more changes nothing";
    EXPECT_EQ(DropTiffImage(tiff.get(), 1), 1u);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 1), 0u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 1u);
    EXPECT_EQ(TiffError(), 0u);
    DWORD width = 0;
    EXPECT_EQ(GetTiffImageInfo(tiff.get(), 1, 256, &width), 1);
    EXPECT_EQ(width, 2u);
}

TEST_P(Registered, ImagesAreDroppedByClosing) {
    const OpenedTiff tiff(plainTiff(3, GetParam().byteOrder), GetParam().place);
    for (DWORD index = 0; index < 3; ++index) {
        EXPECT_EQ(GetTiffImage(tiff.get(), index), 1u);
    }
    // The blocks are counted by whatever runs the test.
}

class ImageTable : public ::testing::Test {
protected:
    void SetUp() override { SetTiffError(VELLUM_OK); }
    void TearDown() override { SetTiffError(VELLUM_OK); }
};

TEST_F(ImageTable, AnswersForIndexesOfTheWholeTableOnly) {
    const OpenedTiff tiff(plainTiff(1), Place::Memory);
    EXPECT_EQ(IsTiffImageRegistered(tiff.get(), 999), 0u) << "no image, but inside the table";
    EXPECT_EQ(TiffError(), 0u);
    for (const LONG index : {1000, 0x7FFFFFFF, -1, -0x7FFFFFFF - 1}) {
        SetTiffError(0);
        EXPECT_EQ(IsTiffImageRegistered(tiff.get(), index), 0u) << index;
        EXPECT_EQ(TiffError(), 3u);
        SetTiffError(0);
        EXPECT_EQ(DropTiffImage(tiff.get(), static_cast<DWORD>(index)), 0u);
        EXPECT_EQ(TiffError(), 3u);
        SetTiffError(0);
        EXPECT_EQ(GetTiffImage(tiff.get(), static_cast<DWORD>(index)), 0u);
        EXPECT_EQ(TiffError(), 3u);
    }
}

// By design.
TEST_F(ImageTable, DropsAnUnregisteredImageUnlessAnErrorIsPending) {
    const OpenedTiff tiff(plainTiff(1), Place::Memory);
    EXPECT_EQ(DropTiffImage(tiff.get(), 0), 1u);
    SetTiffError(5);
    EXPECT_EQ(DropTiffImage(tiff.get(), 0), 0u);
    EXPECT_EQ(TiffError(), 5u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    EXPECT_EQ(DropTiffImage(tiff.get(), 0), 1u) << "a registered image is dropped all the same";
}

// By design.
TEST_F(ImageTable, DoesNotRegisterAnImageWhileError3IsPending) {
    const OpenedTiff tiff(plainTiff(2), Place::Memory);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u);
    SetTiffError(3);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 0u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 0), 1u) << "it is registered already";
    EXPECT_EQ(SetTiffError(6), 3u);
    EXPECT_EQ(GetTiffImage(tiff.get(), 1), 1u) << "other errors do not matter";
    EXPECT_EQ(TiffError(), 6u) << "and stay";
}

// By design.
TEST_F(ImageTable, CountsImagesOfAKindByTheirWholeFlagsOverTheWholeTable) {
    tiff::Builder file;
    for (const std::uint32_t kind : {0u, 1u, 2u, 2u}) {
        file.directory({tiff::longs(254, {kind}), tiff::shorts(256, {1})});
    }
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    const auto count = [&tiff](DWORD kind) { return NumberOfTiffImages(tiff.get(), kind); };
    EXPECT_EQ(count(VELLUM_ALL_IMAGES), 4);
    EXPECT_EQ(count(VELLUM_ALL_IMAGES | 2), 4);
    EXPECT_EQ(count(0xFFFFFFFF), 4);
    EXPECT_EQ(count(0), 997) << "996 unused entries and the full-resolution image";
    EXPECT_EQ(count(1), 1);
    EXPECT_EQ(count(2), 2);
    EXPECT_EQ(count(3), 0);
    EXPECT_EQ(count(0x4002), 0);
    GetTiffImage(tiff.get(), 2);
    EXPECT_EQ(count(2), 1) << "the registered one does not count";
    EXPECT_EQ(count(0x4002), 1);
    EXPECT_EQ(count(0x10002), 0) << "all 32 bits are compared";
    EXPECT_EQ(count(VELLUM_ALL_IMAGES), 4);
    DropTiffImage(tiff.get(), 2);
    EXPECT_EQ(count(2), 2);
}

TEST_F(ImageTable, HasAThousandFullResolutionImagesWhenAllOfItsOwnAre) {
    const OpenedTiff tiff(plainTiff(3), Place::Memory);
    EXPECT_EQ(NumberOfTiffImages(tiff.get(), 0), 1000);
    EXPECT_EQ(NumberOfTiffImages(tiff.get(), VELLUM_ALL_IMAGES), 3);
}

} // namespace
} // namespace vellum::test
