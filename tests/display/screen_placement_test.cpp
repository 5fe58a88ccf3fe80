// The arithmetic of where a picture goes on the screen.
#include "display/screen_placement.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum;

TEST(ScaleFactor, IsTheDevicesResolutionOverThePictures) {
    EXPECT_DOUBLE_EQ(scaleFactor(96, 300, 0, 0), 0.32);
    EXPECT_DOUBLE_EQ(scaleFactor(96, 96, 0, 0), 1.0);
}

TEST(ScaleFactor, IsOneForAPictureWithoutResolution) {
    EXPECT_DOUBLE_EQ(scaleFactor(96, 0, 0, 0), 1.0);
    EXPECT_DOUBLE_EQ(scaleFactor(96, -5, 0, 0), 1.0);
}

TEST(ScaleFactor, IsMultipliedByARatioOfTwoNumbersThatAreNotZero) {
    EXPECT_DOUBLE_EQ(scaleFactor(96, 96, 3, 2), 1.5);
    EXPECT_DOUBLE_EQ(scaleFactor(96, 96, 3, 0), 1.0);
    EXPECT_DOUBLE_EQ(scaleFactor(96, 96, 0, 3), 1.0);
    EXPECT_DOUBLE_EQ(scaleFactor(96, 96, 0xFFFFFFFF, 1), 4294967295.0);
}

TEST(TargetLength, IsRounded) {
    EXPECT_EQ(targetLength(1728, 0.32), 553); // 552.96
    EXPECT_EQ(targetLength(100, 0.255), 26);
    EXPECT_EQ(targetLength(100, 0.254), 25);
    EXPECT_EQ(targetLength(1, 0.4), 0);
    EXPECT_EQ(targetLength(0, 5), 0);
}

TEST(TargetLength, EndsWhereGdiWouldOverflow) {
    EXPECT_EQ(targetLength(0x7FFFFFFF, 4e9), kLargestTarget);
}

TEST(ShownSpan, IsAllOfAPictureThatFits) {
    const Span span = shownSpan(100, 100, 100, {50, 0, 100});
    EXPECT_EQ(span.first, 0);
    EXPECT_EQ(span.end, 100);
    EXPECT_EQ(shownSpan(100, 100, 500, {}).end, 100);
}

TEST(ShownSpan, BeginsInProportionToTheScrollPosition) {
    const Span middle = shownSpan(1000, 1000, 200, {50, 0, 100});
    EXPECT_EQ(middle.first, 400);
    EXPECT_EQ(middle.end, 600);
    const Span end = shownSpan(1000, 1000, 200, {100, 0, 100});
    EXPECT_EQ(end.first, 800);
    EXPECT_EQ(end.end, 1000);
}

TEST(ShownSpan, RoundsTheStart) {
    EXPECT_EQ(shownSpan(1000, 1000, 201, {1, 0, 2}).first, 400); // 399.5
    EXPECT_EQ(shownSpan(1000, 1000, 201, {1, 0, 3}).first, 266); // 266.33
}

TEST(ShownSpan, CountsThePositionFromTheLeastOne) {
    EXPECT_EQ(shownSpan(1000, 1000, 200, {-50, -100, 0}).first, 400);
}

TEST(ShownSpan, BeginsAtTheStartWithoutARange) {
    EXPECT_EQ(shownSpan(1000, 1000, 200, {50, 0, 0}).first, 0);
    EXPECT_EQ(shownSpan(1000, 1000, 200, {50, 100, 0}).first, 0);
}

TEST(ShownSpan, StaysInsideForPositionsOutsideTheRange) {
    EXPECT_EQ(shownSpan(1000, 1000, 200, {500, 0, 100}).first, 800);
    EXPECT_EQ(shownSpan(1000, 1000, 200, {-500, 0, 100}).first, 0);
}

TEST(ShownSpan, CoversTheClientAreaWhenScaled) {
    const Span up = shownSpan(100, 300, 100, {1, 0, 2}); // from 100 of 300: pixel 33.3
    EXPECT_EQ(up.first, 33);
    EXPECT_EQ(up.end, 67);
    const Span down = shownSpan(1000, 320, 100, {1, 0, 1}); // the last 100 of 320
    EXPECT_EQ(down.first, 688);
    EXPECT_EQ(down.end, 1000);
}

TEST(ShownSpan, HasAPixelOfThePictureHoweverLargeItIs) {
    const Span span = shownSpan(3, 3000, 10, {60, 0, 100});
    EXPECT_EQ(span.length(), 1);
    EXPECT_LE(span.end, 3);
}

TEST(ShownSpan, IsEmptyWhereNothingIsToBeSeen) {
    EXPECT_EQ(shownSpan(100, 100, 0, {}).length(), 0);
    EXPECT_EQ(shownSpan(100, 0, 50, {}).length(), 0);
    EXPECT_EQ(shownSpan(0, 0, 50, {}).length(), 0);
}

TEST(ShownSpan, HoldsTheLargestNumbers) {
    const Span span = shownSpan(0x7FFFFFFF, kLargestTarget, 0x7FFFFF, {0x7FFFFFFF, 0, 0x7FFFFFFF});
    EXPECT_GT(span.first, 0x70000000);
    EXPECT_EQ(span.end, 0x7FFFFFFF);
}

TEST(Projection, APixelOfTheScreenShowsTheCanvasPixelThatCoversIt) {
    for (const LONG target : {1, 7, 99, 100, 101, 250, 1000}) {
        const Projection along{100, target, {20, 90}, 10000};
        for (LONG place = 0; place < along.length(); ++place) {
            const LONG pixel = along.pixelAt(place);
            EXPECT_LE(along.at(pixel), place) << target;
            EXPECT_GT(along.at(pixel + 1), place) << target;
        }
        EXPECT_FALSE(along.isCut());
    }
}

TEST(Projection, IsCutWhereThereIsNoMoreRoom) {
    const Projection along{100, 300, {0, 34}, 100};
    EXPECT_EQ(along.length(), 100);
    EXPECT_TRUE(along.isCut());
}

TEST(ScrollBarsFor, AreThoseThatThePictureNeeds) {
    const Extent bar{16, 16};
    const Extent room{200, 100};
    const auto needed = [&](LONG width, LONG height) {
        const ScrollBars bars = scrollBarsFor({width, height}, room, bar);
        return (bars.horizontal ? 1 : 0) + (bars.vertical ? 2 : 0);
    };
    EXPECT_EQ(needed(200, 100), 0);
    EXPECT_EQ(needed(201, 84), 1);
    EXPECT_EQ(needed(184, 101), 2);
    EXPECT_EQ(needed(201, 101), 3);
}

TEST(ScrollBarsFor, ABarTakesRoomThatTheOtherDirectionNeeds) {
    const Extent bar{16, 16};
    const ScrollBars byHeight = scrollBarsFor({190, 101}, {200, 100}, bar);
    EXPECT_TRUE(byHeight.horizontal);
    EXPECT_TRUE(byHeight.vertical);
    const ScrollBars byWidth = scrollBarsFor({201, 90}, {200, 100}, bar);
    EXPECT_TRUE(byWidth.horizontal);
    EXPECT_TRUE(byWidth.vertical);
}

TEST(ScrollBarsFor, ABarThatAWindowIsTooSmallForTakesNoRoom) {
    const Extent bar{16, 16};
    const auto needed = [&](const Extent &target, const Extent &room) {
        const ScrollBars bars = scrollBarsFor(target, room, bar);
        return (bars.horizontal ? 1 : 0) + (bars.vertical ? 2 : 0);
    };
    EXPECT_EQ(needed({5, 200}, {15, 100}), 2);
    EXPECT_EQ(needed({5, 200}, {16, 100}), 3) << "a vertical bar takes a window of its own width";
    EXPECT_EQ(needed({200, 5}, {100, 15}), 1);
    EXPECT_EQ(needed({200, 5}, {100, 16}), 1) << "a horizontal one does not take one of its own height";
    EXPECT_EQ(needed({200, 5}, {100, 17}), 3);
    EXPECT_EQ(needed({5, 5}, {0, 0}), 3);
}

} // namespace
