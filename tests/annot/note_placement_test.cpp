// Where notes lie, in numbers worked out by hand.
#include "annot/note_placement.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// 1000 x 500 pixels at 200 x 100 dots per inch, in a window of 300 x 200 on a screen of 96 dots per inch.
NotedImage fax() {
    NotedImage image;
    image.pixels = {1000, 500};
    image.xPelsPerMeter = 7874;
    image.yPelsPerMeter = 3937;
    image.deviceDotsPerInchX = 96;
    image.deviceDotsPerInchY = 96;
    image.client = {300, 200};
    return image;
}

void expectPoint(const POINT &point, LONG x, LONG y) {
    EXPECT_EQ(point.x, x);
    EXPECT_EQ(point.y, y);
}

constexpr DWORD kByResolution = VELLUM_NOTE_BY_RESOLUTION;
constexpr DWORD kCentered = VELLUM_NOTE_CENTERED;
constexpr POINT kNoOffset = {0, 0};

// Programs have them compiled in.
TEST(NotePlace, ItsFlagsAre4And0x80) {
    EXPECT_EQ(VELLUM_NOTE_BY_RESOLUTION, 4);
    EXPECT_EQ(VELLUM_NOTE_CENTERED, 0x80);
}

// ---------------------------------------------------------------- the scale

TEST(NoteScale, IsAPixelForAPixelWithoutTheFlag) {
    EXPECT_EQ(noteScale(fax(), nullptr, 0xFFFFFFFF & ~kByResolution).x, 1.0);
    EXPECT_EQ(noteScale(fax(), nullptr, 0).y, 1.0);
}

TEST(NoteScale, ByResolutionIsThatOfTheDeviceOverThatOfTheImage) {
    const NoteScale scale = noteScale(fax(), nullptr, kByResolution);
    EXPECT_NEAR(scale.x, 0.48, 1e-6);
    EXPECT_NEAR(scale.y, 0.96, 1e-6);
    EXPECT_EQ(scale.x, 96 / (7874 * 0.0254000508001016));
}

TEST(NoteScale, OfAnImageOf40PixelsPerMetreOrLessIsOne) {
    NotedImage image = fax();
    for (const LONG none : {LONG{40}, LONG{0}, LONG{-7874}}) {
        image.xPelsPerMeter = none;
        image.yPelsPerMeter = 41;
        EXPECT_EQ(noteScale(image, nullptr, kByResolution).x, 1.0) << none;
        EXPECT_NEAR(noteScale(image, nullptr, kByResolution).y, 92.18, 0.01);
    }
}

TEST(NoteScale, IsMultipliedByEachPairOfTheZoomThatIsAboveZero) {
    const LONG zoom[] = {3, 2, 1, 4};
    EXPECT_EQ(noteScale(fax(), zoom, 0).x, 1.5);
    EXPECT_EQ(noteScale(fax(), zoom, 0).y, 0.25);
    EXPECT_NEAR(noteScale(fax(), zoom, kByResolution).x, 0.72, 1e-6);
    const LONG useless[][4] = {{0, 2, 1, 4}, {3, 0, 1, 4}, {-3, 2, 1, 4}, {3, -2, 1, 4}, {-3, -2, 1, 4}};
    for (const auto &pairs : useless) {
        EXPECT_EQ(noteScale(fax(), pairs, 0).x, 1.0);
        EXPECT_EQ(noteScale(fax(), pairs, 0).y, 0.25);
    }
}

// ---------------------------------------------------------------- the offset by the scroll bars

TEST(NoteOffset, IsTheScrollPositionTimesTheHiddenPartOfTheImage) {
    NotedImage image = fax();
    image.scrollX = 100;
    image.scrollY = 50;
    // 100 * (1000 - 300) / 1000, 50 * (500 - 200) / 500.
    expectPoint(scrolledOffset(image, {}), 70, 30);
}

// By design: 50 * 2, not 50 * 3.
TEST(NoteOffset, ScalesTheVerticalPositionByTheHorizontalScale) {
    NotedImage image = fax();
    image.scrollX = 100;
    image.scrollY = 50;
    // 200 * (2000 - 300) / 2000, 100 * (1500 - 200) / 1500 = 86.67.
    expectPoint(scrolledOffset(image, {2.0, 3.0}), 170, 87);
}

TEST(NoteOffset, RoundsAHalfUpAtEveryStep) {
    NotedImage image = fax();
    image.pixels = {5, 5};
    image.client = {4, 0};
    image.scrollX = 3; // 1.5 becomes 2; of 2.5 pixels, that is 3, nothing is hidden
    image.scrollY = 3; // 2 * 3 / 3
    expectPoint(scrolledOffset(image, {0.5, 0.5}), 0, 2);
    image.client = {2, 2};
    expectPoint(scrolledOffset(image, {0.5, 0.5}), 1, 1); // 2 * 1 / 3 = 0.67
}

TEST(NoteOffset, IsNothingWithoutAHiddenPartAnImageOrAPosition) {
    NotedImage image = fax();
    image.scrollX = 100;
    image.scrollY = -100;
    expectPoint(scrolledOffset(image, {}), 70, 0);
    image.client = {1000, 500};
    image.scrollY = 100;
    expectPoint(scrolledOffset(image, {}), 0, 0);
    image.client = {300, 200};
    image.pixels = {};
    expectPoint(scrolledOffset(image, {}), 0, 0);
    image.pixels = {1000, 500};
    expectPoint(scrolledOffset(image, {1e-6, 1e-6}), 0, 0);
}

TEST(NoteOffset, OfTheLargestNumbersIsOneOfThem) {
    NotedImage image = fax();
    image.pixels = {2147483647, 2147483647};
    image.scrollX = image.scrollY = 2147483647;
    const POINT offset = scrolledOffset(image, {1e9, 1e9});
    EXPECT_GT(offset.x, 2147470000);
    EXPECT_GT(offset.y, 2147470000);
}

// ---------------------------------------------------------------- the place

TEST(NotePlace, WithoutAClickIsMovedByTheOffset) {
    NotedImage image = fax();
    image.scrollX = 100;
    expectPoint(notePlace(image, {}, {10, 20}), 80, 20);
    const POINT offset = {5, 6};
    expectPoint(notePlace(image, {nullptr, &offset, nullptr, 0}, {10, 20}), 15, 26);
}

TEST(NotePlace, OfAClickIsTheClickOverTheScaleAndTheOffset) {
    const POINT click = {101, 51};
    const POINT offset = {1000, 2000};
    const LONG zoom[] = {2, 1, 1, 2};
    // 50.5 becomes 51.
    expectPoint(notePlace(fax(), {&click, &offset, zoom, 0}, {7, 7}), 1051, 2102);
    expectPoint(notePlace(fax(), {&click, &offset, nullptr, kByResolution}, {7, 7}), 1210, 2053);
    expectPoint(notePlace(fax(), {&click, nullptr, nullptr, 0}, {7, 7}), 101, 51);
}

TEST(NotePlace, InACenteredImageCountsFromItsCorner) {
    NotedImage image = fax();
    image.pixels = {99, 500};
    const POINT click = {110, 51};
    // (300 - 99) / 2 = 100; the image is higher than the window.
    expectPoint(notePlace(image, {&click, &kNoOffset, nullptr, kCentered}, {}), 10, 51);
    const POINT beside = {99, -5};
    expectPoint(notePlace(image, {&beside, &kNoOffset, nullptr, kCentered}, {}), 0, 0);
    expectPoint(notePlace(image, {&click, &kNoOffset, nullptr, 0}, {}), 110, 51);
}

TEST(NotePlace, InAnImageCenteredInBothDirectionsEachHasItsOwnMargin) {
    NotedImage image = fax();
    image.pixels = {100, 80};
    const POINT click = {110, 70};
    // (300 - 100) / 2 = 100; (200 - 80) / 2 = 60.
    expectPoint(notePlace(image, {&click, &kNoOffset, nullptr, kCentered}, {}), 10, 10);
}

TEST(NotePlace, TheMarginsOfACenteredImageAreThoseOfItsScaledSize) {
    NotedImage image = fax();
    image.pixels = {100, 80};
    const POINT click = {120, 85};
    const LONG zoom[] = {2, 1, 1, 2};
    // 200 x 40: margins of 50 and 80; 70 / 2 and 5 * 2.
    expectPoint(notePlace(image, {&click, &kNoOffset, zoom, kCentered}, {}), 35, 10);
}

TEST(NotePlace, OfAClickOutsideIsLeftAsItIsUnlessTheImageIsCentered) {
    const POINT click = {-10, -20};
    const POINT offset = {100, 100};
    // -10 + 0.5 without its fraction is -9.
    expectPoint(notePlace(fax(), {&click, &offset, nullptr, 0}, {}), 91, 81);
}

TEST(NotePlace, OfTheLargestNumbersStaysANumber) {
    constexpr LONG kMost = 2147483647;
    constexpr LONG kLeast = -kMost - 1;
    const POINT most = {kMost, kMost};
    const POINT least = {kLeast, kLeast};
    const LONG tiny[] = {1, kMost, 1, kMost};
    expectPoint(notePlace(fax(), {&most, &most, tiny, kCentered}, most), kMost, kMost);
    expectPoint(notePlace(fax(), {&least, &least, tiny, 0}, least), kLeast, kLeast);
    expectPoint(notePlace(fax(), {nullptr, &most, nullptr, 0}, most), kMost, kMost);
    expectPoint(notePlace(fax(), {nullptr, &least, nullptr, 0}, least), kLeast, kLeast);
}

// ---------------------------------------------------------------- the rectangle on the device

NoteRecord noteAt(LONG left, LONG top, LONG right, LONG bottom) {
    return {1, 0, nullptr, left, top, right, bottom, nullptr};
}

void expectRectangle(const std::optional<RECT> &found, const RECT &expected) {
    ASSERT_TRUE(found);
    EXPECT_EQ(found->left, expected.left);
    EXPECT_EQ(found->top, expected.top);
    EXPECT_EQ(found->right, expected.right);
    EXPECT_EQ(found->bottom, expected.bottom);
}

TEST(NoteOnDevice, IsScaledInItsPlaceAndNotInItsSize) {
    const NoteCanvas canvas = {{10, 20}, {0.5, 2.0}, {100, 200}};
    // 15 * 0.5 = 7.5 becomes 8.
    expectRectangle(noteOnDevice(noteAt(25, 23, 65, 33), canvas, {}), {108, 206, 148, 216});
    expectRectangle(noteOnDevice(noteAt(25, 23, 65, 33), canvas, {0.5, 0.25}), {108, 206, 128, 209});
}

// By design.
TEST(NoteOnDevice, IsNowhereWhenItBeginsLeftOfTheOffsetOrAboveIt) {
    const NoteCanvas canvas = {{10, 20}, {}, {}};
    EXPECT_TRUE(noteOnDevice(noteAt(10, 20, 900, 900), canvas, {}));
    EXPECT_FALSE(noteOnDevice(noteAt(9, 20, 900, 900), canvas, {}));
    EXPECT_FALSE(noteOnDevice(noteAt(10, 19, 900, 900), canvas, {}));
}

TEST(NoteOnDevice, OfTheLargestNumbersStaysWithinTheDevice) {
    constexpr LONG kMost = 2147483647;
    const NoteCanvas canvas = {{-kMost, -kMost}, {1e30, 1e30}, {kMost, kMost}};
    expectRectangle(noteOnDevice(noteAt(kMost, kMost, -kMost, kMost), canvas, {1e30, 1.0}),
                    {0x3FFFFFF, 0x3FFFFFF, 0x3FFFFFF, 0x3FFFFFF});
}

} // namespace
} // namespace vellum::test
