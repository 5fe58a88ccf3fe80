// A record's lengths in pixels.
#include "annot/fax_layout.h"

#include <gtest/gtest.h>

#include <memory>

namespace vellum::test {
namespace {

constexpr DWORD kMost = 0xFFFFFFFF;

FaxPageParams params(DWORD horizontal, DWORD vertical, DWORD flags = 0) {
    FaxPageParams made{};
    made.horizontalResolution = horizontal;
    made.verticalResolution = vertical;
    made.flags = flags;
    return made;
}

TEST(FaxUnits, MillimetresBecomeWholeHundredthsOfAnInchAndThenWholePixels) {
    // 210 mm are 826.77 hundredths; 826 hundredths at 204 dots per inch are 1685.04 pixels.
    EXPECT_EQ(faxColumns(params(204, 98), 210), 1685);
    EXPECT_EQ(faxRows(params(204, 98), 297), 1145) << "1169 hundredths";
    EXPECT_EQ(faxColumns(params(100, 100), 1), 3);
    EXPECT_EQ(faxColumns(params(10, 10), 1), 0);
}

TEST(FaxUnits, HundredthsOfAnInchAreTakenAsTheyAre) {
    const FaxPageParams inches = params(204, 98, VELLUM_FAX_HUNDREDTHS | VELLUM_FAX_BOLD);
    EXPECT_EQ(faxColumns(inches, 850), 1734);
    EXPECT_EQ(faxRows(inches, 1100), 1078);
    EXPECT_EQ(faxColumns(params(204, 98, VELLUM_FAX_BOLD | VELLUM_FAX_ITALIC), 850), 6825) << "millimetres";
}

TEST(FaxUnits, NothingHasNoPixels) {
    EXPECT_EQ(faxColumns(params(0, 200), 210), 0);
    EXPECT_EQ(faxRows(params(200, 0), 210), 0);
    EXPECT_EQ(faxColumns(params(200, 200), 0), 0);
}

TEST(FaxUnits, LengthsThatDoNotFitStickAt32Bits) {
    EXPECT_EQ(faxColumns(params(kMost, 1), kMost), Pixels{kMost});
    EXPECT_EQ(faxRows(params(1, kMost, VELLUM_FAX_HUNDREDTHS), kMost), Pixels{kMost});
    EXPECT_EQ(faxColumns(params(1, 1), kMost), 169093200) << "16909320059 hundredths, which do fit as pixels";
    EXPECT_EQ(faxColumns(params(100, 1, VELLUM_FAX_HUNDREDTHS), kMost), Pixels{kMost});
    EXPECT_EQ(faxColumns(params(100, 1, VELLUM_FAX_HUNDREDTHS), kMost - 1), Pixels{kMost - 1});
}

TEST(FaxUnits, TheFrameHasTheMarginsOnBothSidesAndTheTabsBehindTheLeftOne) {
    FaxPageParams page = params(200, 100, VELLUM_FAX_HUNDREDTHS);
    page.pageWidth = 850;
    page.pageHeight = 1100;
    page.leftMargin = 50;
    page.topMargin = 70;
    page.lineSpacing = 5;
    for (DWORD i = 0; i < kTabStops; ++i) {
        page.tabStops[i] = 10 * (i + 1);
    }
    const FaxFrame frame = faxFrame(page);
    EXPECT_EQ(frame.left, 100);
    EXPECT_EQ(frame.right, 1600);
    EXPECT_EQ(frame.top, 70);
    EXPECT_EQ(frame.bottom, 1030);
    EXPECT_EQ(frame.lineSpacing, 5);
    EXPECT_EQ(frame.tabStops[0], 120);
    EXPECT_EQ(frame.tabStops[15], 420);
}

TEST(FaxUnits, MarginsWiderThanThePageLeaveNoRoomAndDoNotWrapAround) {
    FaxPageParams page = params(200, 200);
    page.pageWidth = 10;
    page.pageHeight = 10;
    page.leftMargin = kMost;
    page.topMargin = kMost;
    const FaxFrame frame = faxFrame(page);
    EXPECT_LT(frame.right, 0);
    EXPECT_LT(frame.bottom, 0);
    EXPECT_GT(frame.left, 0);
}

} // namespace
} // namespace vellum::test
