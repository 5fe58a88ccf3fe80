// Small files that promise huge pictures, sizes of nothing, and resolutions and ratios beyond reason: painted or
// refused, at once and in little memory.
#include "hostile/orderly.h"
#include "support/screen_painting.h"

#include <gtest/gtest.h>
#include <psapi.h>

#include <limits>

namespace {

using namespace vellum::test;

constexpr SIZE kWindow = {121, 103};
constexpr DWORD kModes[] = {0, VELLUM_SHOW_BY_RESOLUTION, VELLUM_SHOW_FIT};

// The most memory that the program has had so far.
SIZE_T peakMemory() {
    using Query = BOOL(WINAPI *)(HANDLE, PROCESS_MEMORY_COUNTERS *, DWORD);
    const auto query = reinterpret_cast<Query>(
        reinterpret_cast<void *>(GetProcAddress(GetModuleHandleA("kernel32.dll"), "K32GetProcessMemoryInfo")));
    PROCESS_MEMORY_COUNTERS counters{};
    counters.cb = sizeof counters;
    EXPECT_TRUE(query != nullptr && query(GetCurrentProcess(), &counters, sizeof counters));
    return counters.PeakWorkingSetSize;
}

// In every rotation and mode: 1 exactly when there is no error.
class ScreenHostile : public testing::Test {
protected:
    void expectPrompt(const Bytes &content, const Ratios &ratios = {}) {
        const TempFile file(content);
        const SIZE_T before = peakMemory();
        for (const DWORD mode : kModes) {
            for (const DWORD rotation : {VELLUM_ROTATE_0, VELLUM_ROTATE_90, VELLUM_ROTATE_180, VELLUM_ROTATE_270}) {
                SCOPED_TRACE("flags " + std::to_string(mode | rotation));
                const Stopwatch watch;
                host_.reset({0, 0x7FFFFFFF, 0x7FFFFFFE}, {0, 0x7FFFFFFF, 0x7FFFFFFE});
                last_ = paint(host_.window(), host_.dc(), file.path(), {mode | rotation, ratios});
                EXPECT_EQ(last_.result == 1, last_.error == VELLUM_OK);
                EXPECT_LT(watch.seconds(), kPromptSeconds);
            }
        }
        EXPECT_LT(peakMemory() - before, kLittleMemory);
    }
    void TearDown() override { easel_.expectPainted(screenPicture(33, 21, 8), Look{VELLUM_ROTATE_270}); }

    Easel easel_{kWindow};
    Host &host_ = easel_.host;
    Outcome last_{};
};

Bytes claiming(DWORD width, DWORD height, DWORD bits, DWORD key) {
    const CodedPage page{
        .width = width, .height = height, .bits = bits == 24 ? 8 : bits, .samples = bits == 24 ? 3U : 1U, .key = key};
    Random random(width + height + bits);
    Bytes code;
    while (code.size() < 600) {
        code.push_back(static_cast<BYTE>(random.below(256)));
    }
    return codedTiff(page, {code});
}

constexpr DWORD kSizes[] = {65535, 0x15555556, 0x7FFFFFFF, 0xFFFFFFFF};

TEST_F(ScreenHostile, HugeHeightsEndWithTheirData) {
    for (const DWORD bits : kScreenDepths) {
        for (const DWORD height : kSizes) {
            SCOPED_TRACE(std::to_string(bits) + " bits, height " + std::to_string(height));
            expectPrompt(claiming(100, height, bits, VELLUM_KEY_NONE));
            EXPECT_EQ(last_.result, 0U);
        }
    }
}

TEST_F(ScreenHostile, HugeWidthsAreRefused) {
    for (const DWORD bits : kScreenDepths) {
        for (const DWORD width : kSizes) {
            SCOPED_TRACE(std::to_string(bits) + " bits, width " + std::to_string(width));
            expectPrompt(claiming(width, 3, bits, VELLUM_KEY_NONE));
            EXPECT_EQ(last_.result, 0U);
        }
    }
}

TEST_F(ScreenHostile, HugePicturesOfEveryCodeAreAnsweredAtOnce) {
    for (const DWORD key : kAllKeys) {
        SCOPED_TRACE(keyName(key));
        const bool bilevel = (key & 0xFFFF) >= 2 && (key & 0xFFFF) <= 4;
        for (const DWORD bits : {1U, 24U}) {
            if (bits == 1 || !bilevel) {
                expectPrompt(claiming(65535, 65535, bits, key));
                EXPECT_EQ(last_.result, 0U);
            }
        }
    }
}

// A blank line of Group 4 is one bit: this page is whole, and larger than any scanner's.
TEST_F(ScreenHostile, ATallBlankPageIsPainted) {
    const CodedPage page{.width = 64, .height = 4000, .key = VELLUM_KEY_GROUP4};
    expectPrompt(codedTiff(page, {Bytes(520, BYTE{0xFF})}));
    EXPECT_EQ(last_, kDecoded);
}

// Blank lines of Group 4, one bit each: enough of them for all lines, but no scanner makes lines so long.
TEST_F(ScreenHostile, LinesTooLongForAnyScannerProveNothing) {
    for (const DWORD width : {8000000U, 120000000U}) {
        SCOPED_TRACE(width);
        const CodedPage page{.width = width, .height = 20000, .key = VELLUM_KEY_GROUP4};
        const TempFile file(codedTiff(page, {Bytes(2508, BYTE{0xFF})}));
        const SIZE_T before = peakMemory();
        for (const DWORD mode : kModes) {
            for (const DWORD flags : allTurns(mode)) {
                SCOPED_TRACE("flags " + std::to_string(flags));
                const Stopwatch watch;
                host_.reset({0, 100, 30}, {0, 100, 70});
                EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), {flags}), failedWith(VELLUM_NO_MEMORY));
                EXPECT_LT(watch.seconds(), 1);
                EXPECT_EQ(GetScrollPos(host_.window(), SB_HORZ), 30);
                EXPECT_EQ(GetScrollPos(host_.window(), SB_VERT), 70);
                EXPECT_TRUE(host_.needsPainting());
            }
        }
        EXPECT_LT(peakMemory() - before, kLittleMemory);
    }
}

TEST_F(ScreenHostile, ALargeBlankPageWhoseCodeIsThereIsPainted) {
    const CodedPage page{.width = 32000, .height = 16000, .key = VELLUM_KEY_GROUP4};
    expectPrompt(codedTiff(page, {Bytes(2000, BYTE{0xFF})}));
    EXPECT_EQ(last_, kDecoded);
}

TEST_F(ScreenHostile, NoWidthIsError10) {
    for (const DWORD bits : kScreenDepths) {
        for (const DWORD height : {0U, 65535U}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, height " + std::to_string(height));
            expectPrompt(claiming(0, height, bits, VELLUM_KEY_NONE));
            EXPECT_EQ(last_, failedWith(VELLUM_TAG_MISSING));
        }
    }
}

TEST_F(ScreenHostile, NoHeightMeans1000Lines) {
    for (const DWORD bits : kScreenDepths) {
        SCOPED_TRACE(bits);
        expectPrompt(claiming(100, 0, bits, VELLUM_KEY_NONE));
        EXPECT_EQ(last_, failedWith(VELLUM_UNEXPECTED_END));
        SIZE canvas{};
        GetWindowExtEx(host_.dc(), &canvas);
        EXPECT_EQ(canvas.cx, 1000) << "the last one is turned by 270 degrees";
        EXPECT_EQ(canvas.cy, 100);
    }
}

// ---------------------------------------------------------------- resolutions and ratios

Bytes resolved(std::vector<std::uint32_t> x, std::vector<std::uint32_t> y, DWORD bits) {
    const ScreenPicture picture = screenPicture(40, 30, bits);
    std::vector<tiff::Entry> entries = picture.entries();
    entries.insert(entries.begin() + 6, {tiff::rationals(282, std::move(x)), tiff::rationals(283, std::move(y))});
    tiff::Builder builder;
    builder.page(entries, {picture.packed()});
    return builder.bytes();
}

TEST_F(ScreenHostile, ResolutionsBeyondReasonArePainted) {
    constexpr std::uint32_t kMost = 0xFFFFFFFF;
    for (const DWORD bits : {1U, 8U}) {
        SCOPED_TRACE(bits);
        for (const auto &[numerator, denominator] :
             {std::pair{kMost, 1U}, std::pair{1U, kMost}, std::pair{0U, 1U}, std::pair{1U, 0U}, std::pair{0U, 0U},
              std::pair{kMost, kMost}, std::pair{1U, 1U}, std::pair{54542481U, 1U}, std::pair{1U, 79U}}) {
            SCOPED_TRACE(std::to_string(numerator) + " / " + std::to_string(denominator));
            expectPrompt(resolved({numerator, denominator}, {96, 1}, bits));
            EXPECT_EQ(last_, kDecoded);
            expectPrompt(resolved({numerator, denominator}, {numerator, denominator}, bits));
            EXPECT_EQ(last_, kDecoded);
        }
    }
}

TEST_F(ScreenHostile, RatiosBeyondReasonArePainted) {
    constexpr DWORD kMost = 0xFFFFFFFF;
    for (const DWORD bits : kScreenDepths) {
        const Bytes picture = screenPicture(40, 30, bits).tiff();
        for (const Ratios &ratios : {Ratios{kMost, 1, kMost, 1}, Ratios{1, kMost, 1, kMost}, Ratios{kMost, 1, 1, kMost},
                                     Ratios{1, kMost, kMost, 1}, Ratios{kMost, kMost, kMost, kMost}}) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + std::to_string(ratios[0]) + " / " +
                         std::to_string(ratios[1]) + ", " + std::to_string(ratios[2]) + " / " +
                         std::to_string(ratios[3]));
            expectPrompt(picture, ratios);
            EXPECT_EQ(last_, kDecoded);
        }
    }
}

// Enlarged so that one pixel is larger than the window, scrolled to any place: its colour everywhere.
TEST_F(ScreenHostile, APixelLargerThanTheWindowFillsIt) {
    const ScreenPicture picture = screenPicture(40, 30, 24);
    const TempFile file(picture.tiff());
    for (const int position : {0, 500, 1000}) {
        for (const DWORD flags : allTurns(VELLUM_SHOW_BY_RESOLUTION)) {
            SCOPED_TRACE(std::to_string(position) + ", flags " + std::to_string(flags));
            host_.reset({0, 1000, position}, {0, 1000, position});
            EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), {flags, {1000, 1, 1000, 1}}), kDecoded);
            const Pixels pixels = host_.pixels();
            EXPECT_EQ(pixels, Pixels(pixels.size(), pixels.front()));
            EXPECT_NE(pixels.front(), kBackground);
            EXPECT_NE(pixels.front(), kUntouched);
        }
    }
}

TEST_F(ScreenHostile, FlagsThatNobodyHasDefinedAreIgnored) {
    const ScreenPicture picture = screenPicture(33, 21, 8);
    const TempFile file(picture.tiff());
    host_.reset();
    EXPECT_EQ(paint(host_.window(), host_.dc(), file.path(), {0xFFFFFFD0U}), kDecoded);
    EXPECT_TRUE(shows(host_.pixels(), ScreenModel(picture, {}, {kWindow})));
}

} // namespace
