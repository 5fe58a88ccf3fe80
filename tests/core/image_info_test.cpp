// Typed tag access for the rest of the library.
#include "core/image_info.h"

#include "opened_tiff.h"

namespace vellum::test {
namespace {

TEST(TypedTagAccess, GivesNumbersAsNumbers) {
    const OneImage image({tiff::longs(256, {100000}), tiff::byteValues(257, {200, 9, 9}), tiff::shorts(258, {8, 9, 10}),
                          tiff::ascii(270, "text"), tiff::rationals(282, {300, 7})},
                         tiff::kMM);
    SetTiffError(0);
    EXPECT_EQ(firstValue(image.get(), 0, Tag::ImageWidth), 100000u);
    EXPECT_EQ(firstValue(image.get(), 0, Tag::ImageLength), 200u);
    EXPECT_EQ(firstValue(image.get(), 0, Tag::BitsPerSample), 8u);
    EXPECT_EQ(firstValue(image.get(), 0, Tag::XResolution), 300u) << "the numerator";
    EXPECT_EQ(firstValue(image.get(), 0, static_cast<Tag>(270)), std::nullopt) << "a text";
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_TRUE(hasTag(image.get(), 0, static_cast<Tag>(270)));
    EXPECT_EQ(TiffError(), 0u);
    EXPECT_EQ(firstValue(image.get(), 0, Tag::Compression), std::nullopt);
    EXPECT_EQ(SetTiffError(0), 13u);
    EXPECT_FALSE(hasTag(image.get(), 0, Tag::Compression));
    EXPECT_EQ(SetTiffError(0), 13u);
}

TEST(TypedTagAccess, GivesShapeAndValues) {
    const OneImage image({tiff::shorts(258, {8, 9, 10})}, tiff::kMM);
    const auto shape = tagShape(image.get(), 0, 258);
    ASSERT_TRUE(shape);
    EXPECT_EQ(shape->type, 3u);
    EXPECT_EQ(shape->count, 3u);
    const auto values = allValues(image.get(), 0, Tag::BitsPerSample);
    ASSERT_TRUE(values);
    EXPECT_EQ(values->type, 3u);
    EXPECT_EQ(values->count, 3u);
    EXPECT_EQ(blockBytes(values->data.get()), (Bytes{8, 0, 9, 0, 10, 0}));
    SetTiffError(0);
    EXPECT_FALSE(allValues(image.get(), 0, Tag::ColorMap));
    EXPECT_EQ(SetTiffError(0), 13u);
    EXPECT_FALSE(tagShape(image.get(), 0, 320));
    EXPECT_EQ(SetTiffError(0), 13u);
}

} // namespace
} // namespace vellum::test
