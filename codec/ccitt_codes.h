// The decoders' lookups of the code words of ITU-T T.4 and T.6.
//
// They are made at compile time from the bit strings in codec/ccitt_words.h, which also proves that the codes are
// prefix-free and complete.
#pragma once

#include <windows.h>

#include <array>

namespace vellum {

// Bits that a run lookup is indexed by: the longest black code word has 13.
constexpr int kRunLookupBits = 13;
// Bits that the lookup of the frequent, short words is indexed by: small enough to stay in the processor's first cache.
constexpr int kShortRunLookupBits = 8;
// Bits that a mode lookup is indexed by.
constexpr int kModeLookupBits = 8;

enum class RunKind : BYTE {
    Terminating, // ends the run
    MakeUp,      // the run goes on in the same colour
    Zeros,       // eight or more zero bits: fill, or the start of an EOL; no run code begins so
};

struct RunEntry {
    WORD run;  // pixels that the code word adds
    BYTE bits; // its length
    RunKind kind;
};
static_assert(sizeof(RunEntry) == 4);

enum class Mode : BYTE {
    Vertical,
    Horizontal,
    Pass,
    Invalid, // 0000001 (extensions, uncompressed mode) and 00000001
    Zeros,   // eight zero bits: the start of an EOL
};

struct ModeEntry {
    Mode mode;
    BYTE bits;
    signed char shift; // of a vertical mode: a1 - b1
};

using RunLookup = std::array<RunEntry, 1u << kRunLookupBits>;
using ShortRunLookup = std::array<RunEntry, 1u << kShortRunLookupBits>;
using ModeLookup = std::array<ModeEntry, 1u << kModeLookupBits>;

// Runs by colour: index 0 white, 1 black.
extern const std::array<RunLookup, 2> kRunLookups;
extern const ModeLookup kModeLookup;
// The same entries for words that the short index holds whole; all others have 0 bits.
extern const std::array<ShortRunLookup, 2> kShortRunLookups;

} // namespace vellum
