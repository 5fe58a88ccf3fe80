// The tables of the encoders' words.
#include "codec/run_codes.h"

namespace vellum {
namespace {

constexpr int kPixelsOfMakeUpStep = 64;

constexpr CodeWord makeUpWord(const MakeUpWords &ofColour, int step) {
    return CodeWord(step <= kColourMakeUpCodes
                        ? ofColour[static_cast<unsigned>(step - 1)]
                        : kSharedMakeUpWords[static_cast<unsigned>(step - 1 - kColourMakeUpCodes)]);
}

constexpr RunWords buildRuns(const TerminatingWords &terminating, const MakeUpWords &makeUp) {
    std::array<CodeWord, kTerminatingCodes> ends{};
    for (unsigned i = 0; i < ends.size(); ++i) {
        ends[i] = CodeWord(terminating[i]);
    }
    RunWords words{};
    for (int step = 0; step * kPixelsOfMakeUpStep <= kLongestMakeUp; ++step) {
        const CodeWord start = step == 0 ? CodeWord() : makeUpWord(makeUp, step);
        const auto first = static_cast<unsigned>(step * kPixelsOfMakeUpStep);
        for (unsigned i = 0; i < ends.size() && first + i < words.size(); ++i) {
            words[first + i] = start.followedBy(ends[i]);
        }
    }
    return words;
}

constexpr bool allFit(const RunWords &words) {
    for (const CodeWord word : words) {
        if (word.count() == 0 || word.count() > CodeWord::kMostBits) {
            return false;
        }
    }
    return true;
}

constexpr auto buildVertical() {
    std::array<CodeWord, kVerticalWords.size()> words{};
    for (unsigned i = 0; i < words.size(); ++i) {
        words[i] = CodeWord(kVerticalWords[i]);
    }
    return words;
}

constexpr RunWords kWhiteRuns = buildRuns(kTerminatingWords[0], kMakeUpWords[0]);
constexpr RunWords kBlackRuns = buildRuns(kTerminatingWords[1], kMakeUpWords[1]);
static_assert(allFit(kWhiteRuns) && allFit(kBlackRuns), "every run must fit into one piece");

} // namespace

constinit const std::array<RunWords, 2> kRunWords = {kWhiteRuns, kBlackRuns};
constinit const std::array<CodeWord, kVerticalWords.size()> kVerticalCodeWords = buildVertical();

} // namespace vellum
