// Looking up records in a loaded directory.
#include "core/image_directory.h"

#include "opened_tiff.h"

namespace vellum::test {
namespace {

TEST(ImageDirectory, TellsWhereARecordLiesAndTheHowManiethItIs) {
    const OneImage image(
        {tiff::shorts(256, {7}), tiff::shorts(258, {8, 9, 10}), tiff::longs(257, {1}), tiff::longs(258, {5})});
    const ImageDirectory directory(image.get(), 0);
    ASSERT_TRUE(directory);
    EXPECT_EQ(directory.entryCount(), 4);

    const auto first = directory.find(256);
    ASSERT_TRUE(first);
    EXPECT_EQ(first->position, 10u) << "behind the head";
    EXPECT_EQ(first->ordinal, 0);

    const auto second = directory.find(258);
    ASSERT_TRUE(second);
    EXPECT_EQ(second->position, 10u + 16);
    EXPECT_EQ(second->ordinal, 1) << "the first of two";
    EXPECT_EQ(second->dataBytes, 6u);
    EXPECT_EQ(second->data[0], 8);
    const DWORD length = second->head.length;
    EXPECT_EQ(length, 18u);

    const auto third = directory.find(257);
    ASSERT_TRUE(third);
    EXPECT_EQ(third->position, 10u + 16 + 18);
    EXPECT_EQ(third->ordinal, 2);
}

TEST(ImageDirectory, IsEmptyForAnImageThatIsNotRegistered) {
    tiff::Builder file;
    file.directory({tiff::shorts(256, {1})});
    const OpenedTiff tiff(file.bytes(), Place::Memory);
    SetTiffError(0);
    EXPECT_FALSE(ImageDirectory(tiff.get(), 0));
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_FALSE(ImageDirectory(tiff.get(), 1000));
    EXPECT_EQ(SetTiffError(0), 3u);
}

} // namespace
} // namespace vellum::test
