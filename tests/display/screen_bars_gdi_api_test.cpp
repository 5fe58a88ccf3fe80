// The scroll bars of the window that is painted on: when they are there, where they stand, and what they say about the
// part that is shown.
#include "support/screen_painting.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {120, 100};

int barWidth() {
    return GetSystemMetrics(SM_CXVSCROLL);
}
int barHeight() {
    return GetSystemMetrics(SM_CYHSCROLL);
}

struct Bars {
    bool horizontal = false;
    bool vertical = false;
    bool operator==(const Bars &) const = default;
};
void PrintTo(const Bars &bars, std::ostream *out) {
    *out << (bars.horizontal ? "horizontal " : "") << (bars.vertical ? "vertical" : "");
}

// The bars after a painting, whatever was there before.
class ScreenBars : public testing::Test {
protected:
    Bars after(int width, int height, const Look &look = {}) {
        const TempFile file(screenPicture(width, height, 1, 50).tiff());
        std::vector<Bars> found;
        for (const bool first : {false, true}) {
            for (const bool second : {false, true}) {
                host_.reset({0, 100, 0, first}, {0, 100, 0, second});
                EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), look), kDecoded);
                found.push_back({host_.hasBar(SB_HORZ), host_.hasBar(SB_VERT)});
            }
        }
        for (const Bars &bars : found) {
            EXPECT_EQ(bars, found.front()) << "what was there before makes a difference";
        }
        return found.front();
    }

    Easel easel_{kWindow};
    Host &host_ = easel_.host;
};

constexpr Bars kNone = {false, false};
constexpr Bars kHorizontal = {true, false};
constexpr Bars kVertical = {false, true};
constexpr Bars kBoth = {true, true};

// ---------------------------------------------------------------- when they are there

TEST_F(ScreenBars, AreNotThereForAPictureThatFits) {
    EXPECT_EQ(after(1, 1), kNone);
    EXPECT_EQ(after(kWindow.cx - 1, kWindow.cy - 1), kNone);
}

TEST_F(ScreenBars, AreNotThereForAPictureThatJustFitsWithoutThemEvenIfTheyWereAtFirst) {
    EXPECT_EQ(after(kWindow.cx, kWindow.cy), kNone);
    EXPECT_EQ(after(kWindow.cy, kWindow.cx, {VELLUM_ROTATE_90}), kNone);
    EXPECT_EQ(after(kWindow.cx, kWindow.cy, {VELLUM_ROTATE_180}), kNone);
}

TEST_F(ScreenBars, AreThereWhereThePictureIsLarger) {
    EXPECT_EQ(after(kWindow.cx + 1, 10), kHorizontal);
    EXPECT_EQ(after(10, kWindow.cy + 1), kVertical);
    EXPECT_EQ(after(kWindow.cx + 1, kWindow.cy + 1), kBoth);
    EXPECT_EQ(after(kWindow.cy + 1, 10, {VELLUM_ROTATE_90}), kVertical);
    EXPECT_EQ(after(10, kWindow.cx + 1, {VELLUM_ROTATE_270}), kHorizontal);
}

TEST_F(ScreenBars, TakeRoomSoThatOneBringsTheOther) {
    EXPECT_EQ(after(kWindow.cx + 1, kWindow.cy - barHeight()), kHorizontal);
    EXPECT_EQ(after(kWindow.cx + 1, kWindow.cy - barHeight() + 1), kBoth);
    EXPECT_EQ(after(kWindow.cx - barWidth(), kWindow.cy + 1), kVertical);
    EXPECT_EQ(after(kWindow.cx - barWidth() + 1, kWindow.cy + 1), kBoth);
    EXPECT_EQ(after(kWindow.cx, kWindow.cy + 1), kBoth);
    EXPECT_EQ(after(kWindow.cx + 1, kWindow.cy), kBoth);
}

TEST_F(ScreenBars, GoByTheSizeOnTheScreen) {
    ScreenPicture large = screenPicture(300, 200, 1, 50);
    large.xDpi = 300;
    large.yDpi = 300;
    const TempFile file(large.tiff());
    const auto barsFor = [this, &file](const Look &look) {
        host_.reset();
        EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), look), kDecoded);
        return Bars{host_.hasBar(SB_HORZ), host_.hasBar(SB_VERT)};
    };
    EXPECT_EQ(barsFor({0}), kBoth);
    EXPECT_EQ(barsFor({VELLUM_SHOW_BY_RESOLUTION}), kNone) << "96 x 64";
    EXPECT_EQ(barsFor({VELLUM_SHOW_BY_RESOLUTION, {2, 1, 1, 1}}), kHorizontal) << "192 x 64";
    EXPECT_EQ(barsFor({VELLUM_SHOW_BY_RESOLUTION, {1, 1, 2, 1}}), kVertical) << "96 x 128";
    EXPECT_EQ(barsFor({VELLUM_SHOW_FIT}), kNone);
}

// ---------------------------------------------------------------- where they stand

TEST_F(ScreenBars, KeepTheirPositionsWhileTheyAreThereAndAreSetTo0WhenTheyGo) {
    const TempFile wide(screenPicture(300, 10, 1).tiff());
    const TempFile high(screenPicture(10, 300, 1).tiff());
    const TempFile small(screenPicture(10, 10, 1).tiff());
    const auto positions = [this](const char *path, const Look &look = {}) {
        host_.reset({0, 100, 30, true}, {0, 100, 70, true});
        EXPECT_EQ(paint(host_.window(), host_.dc(), path, look), kDecoded);
        return std::pair(GetScrollPos(host_.window(), SB_HORZ), GetScrollPos(host_.window(), SB_VERT));
    };
    EXPECT_EQ(positions(wide.path()), std::pair(30, 0));
    EXPECT_EQ(positions(high.path()), std::pair(0, 70));
    EXPECT_EQ(positions(small.path()), std::pair(0, 0));
    EXPECT_EQ(positions(wide.path(), {VELLUM_ROTATE_90}), std::pair(0, 70));
    EXPECT_EQ(positions(wide.path(), {VELLUM_SHOW_FIT}), std::pair(0, 0));
}

TEST_F(ScreenBars, KeepTheirRanges) {
    const TempFile file(screenPicture(300, 10, 1).tiff());
    host_.reset({-7, 93, 30, true}, {5, 17, 9, true});
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
    int least = 0;
    int most = 0;
    EXPECT_TRUE(GetScrollRange(host_.window(), SB_HORZ, &least, &most));
    EXPECT_EQ(std::pair(least, most), std::pair(-7, 93));
    EXPECT_TRUE(GetScrollRange(host_.window(), SB_VERT, &least, &most));
    EXPECT_EQ(std::pair(least, most), std::pair(5, 17));
}

// ---------------------------------------------------------------- the part that they name

class ScreenScrolling : public ScreenBars {
protected:
    void expectScrolled(const ScrollState &horizontal, const ScrollState &vertical = {}) {
        easel_.expectPainted(picture_, fourTurns(), {}, horizontal, vertical);
    }

    const ScreenPicture picture_ = screenPicture(253, 231, 8);
};

TEST_F(ScreenScrolling, GoesFromTheBeginningToTheEnd) {
    for (const int position : {0, 1, 2, 3, 4, 5}) {
        expectScrolled({0, 5, position, true}, {0, 5, 5 - position, true});
    }
}

TEST_F(ScreenScrolling, CountsFromTheRangesLeast) {
    for (const int position : {0, 20, 50, 100}) {
        expectScrolled({-50, 50, position - 50, true}, {1000, 1100, 1000 + position, true});
    }
}

TEST_F(ScreenScrolling, ARangeOf0MeansTheBeginning) {
    for (const int only : {0, 5, -5}) {
        expectScrolled({only, only, only, true}, {only, only, only, true});
    }
}

TEST_F(ScreenScrolling, LargeRangesDoNotOverflow) {
    constexpr int kMost = 0x7FFFFFFF;
    for (const int position : {0, 1, kMost / 3, kMost / 2, kMost - 1, kMost}) {
        expectScrolled({0, kMost, position, true}, {0, kMost, kMost - position, true});
    }
    expectScrolled({-0x40000000, 0x3FFFFFFF, 0x10000000, true}, {-0x40000000, 0x3FFFFFFF, -0x40000000, true});
}

// A page keeps the position from the end of the range: the part follows the position alone.
TEST_F(ScreenScrolling, WithAPageThePartFollowsThePosition) {
    const TempFile file(picture_.tiff());
    host_.reset();
    for (const int bar : {SB_HORZ, SB_VERT}) {
        SCROLLINFO info{sizeof info, SIF_RANGE | SIF_PAGE | SIF_POS, 0, 100, 41, 100, 0};
        SetScrollInfo(host_.window(), bar, &info, FALSE);
        ASSERT_EQ(GetScrollPos(host_.window(), bar), 60);
    }
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
    const ScrollState at60{0, 100, 60};
    EXPECT_TRUE(shows(host_.pixels(), ScreenModel(picture_, {}, {kWindow, at60, at60})));
}

TEST_F(ScreenScrolling, TheClientAreaThatCountsIsTheOneWithTheNewBars) {
    const TempFile file(picture_.tiff());
    const ScrollState end{0, 10, 10};
    for (const bool shown : {false, true}) {
        host_.reset({0, 10, 10, shown}, {0, 10, 10, shown});
        EXPECT_EQ(paint(host_.window(), host_.dc(), file.path()), kDecoded);
        const SIZE client = host_.client();
        ASSERT_EQ(client.cx, kWindow.cx - barWidth());
        ASSERT_EQ(client.cy, kWindow.cy - barHeight());
        EXPECT_TRUE(shows(host_.pixels(), ScreenModel(picture_, {}, {kWindow, end, end})));
        EXPECT_EQ(host_.pixels().back(), picture_.color(252, 230)) << "the last pixel is in the corner";
    }
}

// ---------------------------------------------------------------- windows that have hardly any room

TEST(ScreenSmallWindow, IsPaintedAsFarAsItGoes) {
    const TempFile file(screenPicture(200, 200, 8).tiff());
    for (const SIZE size : {SIZE{0, 0}, SIZE{1, 1}, SIZE{5, 40}, SIZE{40, 5}, SIZE{17, 17}, SIZE{18, 18}}) {
        Host host(size.cx, size.cy);
        for (const DWORD mode : {DWORD{0}, DWORD{VELLUM_SHOW_BY_RESOLUTION}, DWORD{VELLUM_SHOW_FIT}}) {
            for (const DWORD flags : fourTurns(mode)) {
                SCOPED_TRACE(std::to_string(size.cx) + " x " + std::to_string(size.cy) + ", " + std::to_string(flags));
                host.reset({0, 10, 10}, {0, 10, 10});
                EXPECT_EQ(paint(host.window(), host.dc(), file.path(), {flags}), kDecoded);
                EXPECT_FALSE(host.needsPainting());
            }
        }
    }
}

// The room and the bars after a painting.
struct Arrangement {
    SIZE client;
    Bars bars;
    bool operator==(const Arrangement &other) const {
        return client.cx == other.client.cx && client.cy == other.client.cy && bars == other.bars;
    }
};
void PrintTo(const Arrangement &arrangement, std::ostream *out) {
    *out << arrangement.client.cx << " x " << arrangement.client.cy << " ";
    PrintTo(arrangement.bars, out);
}

Arrangement arrangedBy(Host &host, const char *path) {
    EXPECT_EQ(paint(host.window(), host.dc(), path), kDecoded);
    return {host.client(), {host.hasBar(SB_HORZ), host.hasBar(SB_VERT)}};
}

// Whatever bars were there before: those of a picture that is larger than the client area which they leave, and the
// same again.
void expectSteadyBars(Host &host, const SIZE &picture, const char *path) {
    for (const bool shown : {false, true}) {
        SCOPED_TRACE(shown ? "with bars at first" : "without bars at first");
        host.reset({0, 100, 0, shown}, {0, 100, 0, shown});
        const Arrangement first = arrangedBy(host, path);
        EXPECT_EQ(first.bars, (Bars{picture.cx > first.client.cx, picture.cy > first.client.cy}))
            << "the client area is " << first.client.cx << " x " << first.client.cy;
        EXPECT_EQ(arrangedBy(host, path), first) << "the second painting";
    }
}

TEST(ScreenSmallWindow, HasTheBarsThatThePictureNeedsAndKeepsThem) {
    for (const SIZE picture : {SIZE{5, 14}, SIZE{5, 200}, SIZE{20, 90}, SIZE{295, 20}}) {
        const TempFile file(screenPicture(picture.cx, picture.cy, 1).tiff());
        for (const int narrow : {0, 5, 14, 16, 17, 18}) {
            for (const int other : {0, 5, 17, 18, 40, 300}) {
                for (const SIZE size : {SIZE{narrow, other}, SIZE{other, narrow}}) {
                    SCOPED_TRACE(std::to_string(picture.cx) + " x " + std::to_string(picture.cy) + " in " +
                                 std::to_string(size.cx) + " x " + std::to_string(size.cy));
                    Host host(size.cx, size.cy);
                    expectSteadyBars(host, picture, file.path());
                }
            }
        }
    }
}

TEST(ScreenSmallWindow, OfOnePixelShowsTheFirst) {
    Easel easel({1, 1});
    const ScreenPicture picture = screenPicture(1, 1, 24);
    easel.expectPainted(picture, Look{});
    EXPECT_EQ(easel.host.pixels(), Pixels{picture.color(0, 0)});
}

} // namespace
