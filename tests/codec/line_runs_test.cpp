// Changing elements taken from lines beside a search pixel by pixel, and the words of runs.
#include "codec/line_runs.h"

#include "codec/run_codes.h"
#include "support/ccitt_writer.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

std::vector<LONG> changesOf(const Row &row) {
    std::vector<LONG> changes;
    for (std::size_t at = 0; at < row.size(); ++at) {
        if (row[at] != (at > 0 && row[at - 1])) {
            changes.push_back(static_cast<LONG>(at));
        }
    }
    changes.insert(changes.end(), LineRuns::kSentinels, static_cast<LONG>(row.size()));
    return changes;
}

// Measures a row in a block of just the bytes that may be read; spare bits and bytes are of the given value.
std::vector<LONG> measured(const Row &row, BYTE spare) {
    Bytes line = packRow(row);
    if (row.size() % 8 != 0) {
        line.back() = static_cast<BYTE>(line.back() | (spare & (0xFF >> row.size() % 8)));
    }
    line.insert(line.end(), 3, spare);
    LineRuns runs;
    EXPECT_TRUE(runs.allocate(static_cast<LONG>(row.size())));
    runs.measure(line.data());
    EXPECT_LT(runs.positions()[-1], 0);
    return {runs.positions(), runs.positions() + changesOf(row).size()};
}

TEST(LineRuns, AreThePixelsThatDifferFromTheirLeftNeighbour) {
    EXPECT_EQ(measured(rowFromRuns({3, 2, 4}), 0), (std::vector<LONG>{3, 5, 9, 9, 9, 9}));
    EXPECT_EQ(measured(rowFromRuns({0, 2, 7}), 0), (std::vector<LONG>{0, 2, 9, 9, 9, 9}));
    EXPECT_EQ(measured(rowFromRuns({0, 9}), 0), (std::vector<LONG>{0, 9, 9, 9, 9}));
    EXPECT_EQ(measured(Row(9), 0), (std::vector<LONG>{9, 9, 9, 9}));
}

TEST(LineRuns, AreFoundAtEveryWidthWhateverStandsBehindTheLine) {
    for (DWORD width = 1; width <= 1200; width += width < 600 ? 1 : 37) {
        Random random(width);
        for (const Row &row : {Row(width), Row(width, true), randomRow(random, width, 1), randomRow(random, width, 3),
                               randomRow(random, width, 40), randomRow(random, width, 700)}) {
            for (const BYTE spare : {BYTE{0x00}, BYTE{0xFF}, BYTE{0x55}}) {
                ASSERT_EQ(measured(row, spare), changesOf(row)) << width;
            }
        }
    }
}

TEST(LineRuns, OneChangeIsFoundWhereverItStands) {
    for (const DWORD width : {600U, 641U}) {
        for (DWORD at = 0; at < width; ++at) {
            Row row(width, true);
            std::fill_n(row.begin(), at, false);
            ASSERT_EQ(measured(row, 0xFF), changesOf(row));
            row.flip();
            ASSERT_EQ(measured(row, 0x00), changesOf(row));
            row.assign(width, false);
            row[at] = true;
            ASSERT_EQ(measured(row, 0xFF), changesOf(row));
        }
    }
}

TEST(LineRuns, OfANewListAreWhite) {
    LineRuns runs;
    ASSERT_TRUE(runs.allocate(100));
    EXPECT_EQ(runs.width(), 100);
    EXPECT_EQ(runs.positions()[0], 100);
    const Bytes black(16, BYTE{0xFF});
    runs.measure(black.data());
    EXPECT_EQ(runs.positions()[0], 0);
    runs.setWhite();
    EXPECT_EQ(runs.positions()[0], 100);
}

std::string textOf(CodeWord word) {
    std::string text;
    for (unsigned i = 0; i < word.count(); ++i) {
        text += (word.bits() << i & 0x80000000U) != 0 ? '1' : '0';
    }
    EXPECT_EQ(word.bits() << (word.count() - 1) << 1, 0U) << "nothing below the word";
    return text;
}

TEST(RunWords, AreTheMakeUpAndTheTerminatingCode) {
    for (unsigned colour = 0; colour < 2; ++colour) {
        const auto *terminating = colour == 0 ? test::kWhiteTerminating : test::kBlackTerminating;
        for (unsigned run = 0; run <= 2560; ++run) {
            std::string expected = terminating[run % 64];
            if (run >= 64) {
                expected.insert(0, makeupWord(colour == 0 ? Colour::White : Colour::Black, run));
            }
            ASSERT_EQ(textOf(kRunWords[colour][run]), expected) << run;
        }
    }
    EXPECT_EQ(textOf(kLongestMakeUpWord), "000000011111");
}

TEST(ModeAndEolWords, AreThoseOfT4AndT6) {
    for (unsigned i = 0; i < 7; ++i) {
        EXPECT_EQ(textOf(kVerticalCodeWords[i]), kVertical[i]);
    }
    EXPECT_EQ(textOf(kHorizontalCodeWord), kHorizontal);
    EXPECT_EQ(textOf(kPassCodeWord), kPass);
    EXPECT_EQ(textOf(kEolCodeWord), "000000000001");
    EXPECT_EQ(textOf(kEolAnd1), "0000000000011");
    EXPECT_EQ(textOf(kEolAnd0), "0000000000010");
}

} // namespace
} // namespace vellum::test
