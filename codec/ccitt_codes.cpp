// The run and mode code words of ITU-T T.4 and T.6 as bit strings, in the order of the published tables, and the
// lookups made from them. A lookup's index is the next bits of the code, first bit on top; every index that begins with
// a code word holds that word's entry.
#include "codec/ccitt_codes.h"

namespace vellum {
namespace {

using Terminating = std::array<std::string_view, kTerminatingCodes>;
using MakeUp = std::array<std::string_view, kColourMakeUpCodes>;
using SharedMakeUp = std::array<std::string_view, kSharedMakeUpCodes>;

// Runs of 0, 1, ... 63 white pixels.
constexpr Terminating kWhiteTerminating = {
    "00110101", "000111",   "0111",     "1000",     "1011",     "1100",     "1110",     "1111",
    "10011",    "10100",    "00111",    "01000",    "001000",   "000011",   "110100",   "110101",
    "101010",   "101011",   "0100111",  "0001100",  "0001000",  "0010111",  "0000011",  "0000100",
    "0101000",  "0101011",  "0010011",  "0100100",  "0011000",  "00000010", "00000011", "00011010",
    "00011011", "00010010", "00010011", "00010100", "00010101", "00010110", "00010111", "00101000",
    "00101001", "00101010", "00101011", "00101100", "00101101", "00000100", "00000101", "00001010",
    "00001011", "01010010", "01010011", "01010100", "01010101", "00100100", "00100101", "01011000",
    "01011001", "01011010", "01011011", "01001010", "01001011", "00110010", "00110011", "00110100",
};

// Runs of 0, 1, ... 63 black pixels.
constexpr Terminating kBlackTerminating = {
    "0000110111",   "010",          "11",           "10",           "011",          "0011",         "0010",
    "00011",        "000101",       "000100",       "0000100",      "0000101",      "0000111",      "00000100",
    "00000111",     "000011000",    "0000010111",   "0000011000",   "0000001000",   "00001100111",  "00001101000",
    "00001101100",  "00000110111",  "00000101000",  "00000010111",  "00000011000",  "000011001010", "000011001011",
    "000011001100", "000011001101", "000001101000", "000001101001", "000001101010", "000001101011", "000011010010",
    "000011010011", "000011010100", "000011010101", "000011010110", "000011010111", "000001101100", "000001101101",
    "000011011010", "000011011011", "000001010100", "000001010101", "000001010110", "000001010111", "000001100100",
    "000001100101", "000001010010", "000001010011", "000000100100", "000000110111", "000000111000", "000000100111",
    "000000101000", "000001011000", "000001011001", "000000101011", "000000101100", "000001011010", "000001100110",
    "000001100111",
};

// Runs of 64, 128, ... 1728 white pixels.
constexpr MakeUp kWhiteMakeUp = {
    "11011",     "10010",     "010111",    "0110111",   "00110110",  "00110111",  "01100100",  "01100101",  "01101000",
    "01100111",  "011001100", "011001101", "011010010", "011010011", "011010100", "011010101", "011010110", "011010111",
    "011011000", "011011001", "011011010", "011011011", "010011000", "010011001", "010011010", "011000",    "010011011",
};

// Runs of 64, 128, ... 1728 black pixels.
constexpr MakeUp kBlackMakeUp = {
    "0000001111",    "000011001000",  "000011001001",  "000001011011",  "000000110011",  "000000110100",
    "000000110101",  "0000001101100", "0000001101101", "0000001001010", "0000001001011", "0000001001100",
    "0000001001101", "0000001110010", "0000001110011", "0000001110100", "0000001110101", "0000001110110",
    "0000001110111", "0000001010010", "0000001010011", "0000001010100", "0000001010101", "0000001011010",
    "0000001011011", "0000001100100", "0000001100101",
};

// Runs of 1792, 1856, ... 2560 pixels of either colour.
constexpr SharedMakeUp kShared = {
    "00000001000",  "00000001100",  "00000001101",  "000000010010", "000000010011", "000000010100", "000000010101",
    "000000010110", "000000010111", "000000011100", "000000011101", "000000011110", "000000011111",
};

struct ModeWord {
    std::string_view bits;
    ModeEntry entry;
};

constexpr ModeWord kModeWords[] = {
    {"1", {Mode::Vertical, 1, 0}},        {"011", {Mode::Vertical, 3, 1}},     {"010", {Mode::Vertical, 3, -1}},
    {"000011", {Mode::Vertical, 6, 2}},   {"000010", {Mode::Vertical, 6, -2}}, {"0000011", {Mode::Vertical, 7, 3}},
    {"0000010", {Mode::Vertical, 7, -3}}, {"001", {Mode::Horizontal, 3, 0}},   {"0001", {Mode::Pass, 4, 0}},
    {"0000001", {Mode::Invalid, 7, 0}},   {"00000001", {Mode::Invalid, 8, 0}}, {"00000000", {Mode::Zeros, 0, 0}},
};

constexpr unsigned valueOf(std::string_view bits) {
    unsigned value = 0;
    for (const char bit : bits) {
        value = value * 2 + (bit == '1' ? 1u : 0u);
    }
    return value;
}

// Writes the entry at every index that begins with the word and returns how many of them held an entry already.
template <class Lookup, class Entry>
constexpr unsigned place(Lookup &lookup, int lookupBits, std::string_view word, Entry entry, bool (*isFree)(Entry)) {
    const int spare = lookupBits - static_cast<int>(word.size());
    const unsigned first = valueOf(word) << spare;
    unsigned taken = 0;
    for (unsigned i = first; i < first + (1u << spare); ++i) {
        taken += isFree(lookup[i]) ? 0u : 1u;
        lookup[i] = entry;
    }
    return taken;
}

template <class Lookup>
struct Built {
    Lookup lookup{};
    unsigned taken = 0; // indices that two words claim: 0 for a prefix-free code
};

constexpr bool runEntryIsFree(RunEntry entry) {
    return entry.bits == 0;
}
constexpr bool modeEntryIsFree(ModeEntry entry) {
    return entry.bits == 0 && entry.mode == Mode::Vertical;
}

constexpr Built<RunLookup> buildRuns(const Terminating &terminating, const MakeUp &makeUp) {
    Built<RunLookup> built;
    const auto add = [&built](std::string_view word, int run, RunKind kind) {
        const RunEntry entry{static_cast<WORD>(run), static_cast<BYTE>(word.size()), kind};
        built.taken += place(built.lookup, kRunLookupBits, word, entry, runEntryIsFree);
    };
    for (int i = 0; i < kTerminatingCodes; ++i) {
        add(terminating[static_cast<unsigned>(i)], i, RunKind::Terminating);
    }
    for (int i = 0; i < kColourMakeUpCodes; ++i) {
        add(makeUp[static_cast<unsigned>(i)], 64 * (i + 1), RunKind::MakeUp);
    }
    for (int i = 0; i < kSharedMakeUpCodes; ++i) {
        add(kShared[static_cast<unsigned>(i)], 64 * (i + 1 + kColourMakeUpCodes), RunKind::MakeUp);
    }
    add("00000000", 0, RunKind::Zeros);
    return built;
}

constexpr Built<ModeLookup> buildModes() {
    Built<ModeLookup> built;
    for (const ModeWord &word : kModeWords) {
        built.taken += place(built.lookup, kModeLookupBits, word.bits, word.entry, modeEntryIsFree);
    }
    return built;
}

template <class Entry, std::size_t N>
constexpr bool complete(const std::array<Entry, N> &lookup, bool (*isFree)(Entry)) {
    for (const Entry &entry : lookup) {
        if (isFree(entry)) {
            return false;
        }
    }
    return true;
}

constexpr ShortRunLookup shortened(const RunLookup &runs) {
    ShortRunLookup lookup{};
    for (unsigned i = 0; i < lookup.size(); ++i) {
        const RunEntry entry = runs[i << (kRunLookupBits - kShortRunLookupBits)];
        if (entry.bits <= kShortRunLookupBits && entry.kind != RunKind::Zeros) {
            lookup[i] = entry;
        }
    }
    return lookup;
}

constexpr auto kWhite = buildRuns(kWhiteTerminating, kWhiteMakeUp);
constexpr auto kBlack = buildRuns(kBlackTerminating, kBlackMakeUp);
constexpr auto kModes = buildModes();

static_assert(kWhite.taken == 0 && kBlack.taken == 0 && kModes.taken == 0, "the codes must be prefix-free");
static_assert(complete(kWhite.lookup, runEntryIsFree) && complete(kBlack.lookup, runEntryIsFree),
              "every pattern of bits must begin with a run code or with eight zeros");
static_assert(complete(kModes.lookup, modeEntryIsFree), "every pattern of eight bits must begin with a mode code");

} // namespace

constinit const std::array<RunLookup, 2> kRunLookups = {kWhite.lookup, kBlack.lookup};
constinit const ModeLookup kModeLookup = kModes.lookup;
constinit const std::array<ShortRunLookup, 2> kShortRunLookups = {shortened(kWhite.lookup), shortened(kBlack.lookup)};

constinit const std::array<Terminating, 2> kTerminatingWords = {kWhiteTerminating, kBlackTerminating};
constinit const std::array<MakeUp, 2> kMakeUpWords = {kWhiteMakeUp, kBlackMakeUp};
constinit const SharedMakeUp kSharedMakeUpWords = kShared;

} // namespace vellum
