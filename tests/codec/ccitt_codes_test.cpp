// The library's code words beside a second list of them that was typed independently.
#include "codec/ccitt_codes.h"
#include "codec/ccitt_words.h"

#include "support/ccitt_writer.h"

#include <gtest/gtest.h>

namespace vellum {
namespace {

unsigned indexOf(std::string_view word, int lookupBits, unsigned rest) {
    unsigned index = 0;
    for (const char bit : word) {
        index = index * 2 + (bit == '1' ? 1U : 0U);
    }
    const int spare = lookupBits - static_cast<int>(word.size());
    return index << spare | (rest & ((1U << spare) - 1));
}

void expectRun(unsigned colour, std::string_view word, unsigned run, RunKind kind) {
    for (const unsigned rest : {0U, 0x1FFFU, 0xAAAU}) {
        const RunEntry entry = kRunLookups[colour][indexOf(word, kRunLookupBits, rest)];
        EXPECT_EQ(entry.run, run) << word;
        EXPECT_EQ(entry.bits, word.size()) << word;
        EXPECT_EQ(entry.kind, kind) << word;
    }
}

TEST(CcittCodes, TerminatingWordsAreThoseOfT4) {
    for (unsigned run = 0; run < 64; ++run) {
        EXPECT_EQ(kTerminatingWords[0][run], test::kWhiteTerminating[run]) << run;
        EXPECT_EQ(kTerminatingWords[1][run], test::kBlackTerminating[run]) << run;
        expectRun(0, test::kWhiteTerminating[run], run, RunKind::Terminating);
        expectRun(1, test::kBlackTerminating[run], run, RunKind::Terminating);
    }
}

TEST(CcittCodes, MakeUpWordsAreThoseOfT4) {
    for (unsigned i = 0; i < 27; ++i) {
        EXPECT_EQ(kMakeUpWords[0][i], test::kWhiteMakeup[i]) << i;
        EXPECT_EQ(kMakeUpWords[1][i], test::kBlackMakeup[i]) << i;
        expectRun(0, test::kWhiteMakeup[i], 64 * (i + 1), RunKind::MakeUp);
        expectRun(1, test::kBlackMakeup[i], 64 * (i + 1), RunKind::MakeUp);
    }
    for (unsigned i = 0; i < 13; ++i) {
        EXPECT_EQ(kSharedMakeUpWords[i], test::kExtendedMakeup[i]) << i;
        expectRun(0, test::kExtendedMakeup[i], 1792 + 64 * i, RunKind::MakeUp);
        expectRun(1, test::kExtendedMakeup[i], 1792 + 64 * i, RunKind::MakeUp);
    }
}

TEST(CcittCodes, EightZeroBitsAreNoRun) {
    for (unsigned rest = 0; rest < 32; ++rest) {
        EXPECT_EQ(kRunLookups[0][rest].kind, RunKind::Zeros);
        EXPECT_EQ(kRunLookups[1][rest].kind, RunKind::Zeros);
    }
}

TEST(CcittCodes, ModeWordsAreThoseOfT6) {
    const auto expectMode = [](std::string_view word, Mode mode, int shift) {
        for (const unsigned rest : {0U, 0xFFU}) {
            const ModeEntry entry = kModeLookup[indexOf(word, kModeLookupBits, rest)];
            EXPECT_EQ(entry.mode, mode) << word;
            EXPECT_EQ(entry.bits, word.size()) << word;
            EXPECT_EQ(entry.shift, shift) << word;
        }
    };
    for (int shift = -3; shift <= 3; ++shift) {
        expectMode(test::kVertical[shift + 3], Mode::Vertical, shift);
    }
    expectMode(test::kHorizontal, Mode::Horizontal, 0);
    expectMode(test::kPass, Mode::Pass, 0);
    expectMode("0000001", Mode::Invalid, 0);
    expectMode("00000001", Mode::Invalid, 0);
    EXPECT_EQ(kModeLookup[0].mode, Mode::Zeros);
}

} // namespace
} // namespace vellum
