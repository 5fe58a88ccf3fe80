// The encoders' words, computed from the bit strings of codec/ccitt_words.h: one for every run up to the longest
// make-up code, and those of modes and EOLs.
#pragma once

#include "codec/ccitt_words.h"

#include <windows.h>

#include <array>

namespace vellum {

// Up to 25 bits of code and their number, in one piece of 32 bits.
class CodeWord {
public:
    static constexpr unsigned kMostBits = 25;

    constexpr CodeWord() = default;
    // The bits lie on top, the first one highest; all below them are 0.
    constexpr CodeWord(DWORD bits, unsigned count) : packed_(bits | count) {}
    constexpr explicit CodeWord(std::string_view word)
        : CodeWord(valueOf(word) << (32 - word.size()), static_cast<unsigned>(word.size())) {}

    // This word and another one behind it, together at most kMostBits.
    [[nodiscard]] constexpr CodeWord followedBy(CodeWord next) const {
        return {bits() | (next.bits() >> count()), count() + next.count()};
    }

    [[nodiscard]] constexpr DWORD bits() const { return packed_ & ~kCountMask; }
    [[nodiscard]] constexpr unsigned count() const { return packed_ & kCountMask; }

private:
    static constexpr DWORD kCountMask = 31;

    DWORD packed_ = 0;
};
static_assert(sizeof(CodeWord) == 4);

// The longest run that a make-up code and a terminating code can say. A longer one has make-up codes of kLongestMakeUp
// pixels in front until at most kLongestMakeUp are left.
constexpr LONG kLongestMakeUp = 2560;

// Every run from 0 to kLongestMakeUp: its make-up code, if it has 64 pixels or more, and its terminating code.
using RunWords = std::array<CodeWord, kLongestMakeUp + 1>;
// By colour: index 0 white, 1 black.
extern const std::array<RunWords, 2> kRunWords;
// The make-up code of kLongestMakeUp pixels alone, the same in both colours.
inline constexpr CodeWord kLongestMakeUpWord{kSharedMakeUpWords.back()};

// Vertical modes by a1 - b1 + kFarthestVertical.
extern const std::array<CodeWord, kVerticalWords.size()> kVerticalCodeWords;

inline constexpr CodeWord kHorizontalCodeWord{kHorizontalWord};
inline constexpr CodeWord kPassCodeWord{kPassWord};
inline constexpr CodeWord kEolCodeWord{kEolWord};
inline constexpr CodeWord kEolAnd1 = kEolCodeWord.followedBy(CodeWord("1"));
inline constexpr CodeWord kEolAnd0 = kEolCodeWord.followedBy(CodeWord("0"));

} // namespace vellum
