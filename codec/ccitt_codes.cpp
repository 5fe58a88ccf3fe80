// The decoders' lookups, made from the bit strings of the code words. A lookup's index is the next bits of the code,
// first bit on top; every index that begins with a code word holds that word's entry.
#include "codec/ccitt_codes.h"

#include "codec/ccitt_words.h"

namespace vellum {
namespace {

struct ModeWord {
    std::string_view bits;
    ModeEntry entry;
};

constexpr std::string_view verticalWord(int shift) {
    return kVerticalWords[static_cast<unsigned>(shift + kFarthestVertical)];
}

constexpr ModeWord kModeWords[] = {
    {verticalWord(0), {Mode::Vertical, 1, 0}},
    {verticalWord(1), {Mode::Vertical, 3, 1}},
    {verticalWord(-1), {Mode::Vertical, 3, -1}},
    {verticalWord(2), {Mode::Vertical, 6, 2}},
    {verticalWord(-2), {Mode::Vertical, 6, -2}},
    {verticalWord(3), {Mode::Vertical, 7, 3}},
    {verticalWord(-3), {Mode::Vertical, 7, -3}},
    {kHorizontalWord, {Mode::Horizontal, 3, 0}},
    {kPassWord, {Mode::Pass, 4, 0}},
    {"0000001", {Mode::Invalid, 7, 0}},
    {"00000001", {Mode::Invalid, 8, 0}},
    {"00000000", {Mode::Zeros, 0, 0}},
};

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

constexpr Built<RunLookup> buildRuns(const TerminatingWords &terminating, const MakeUpWords &makeUp) {
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
        add(kSharedMakeUpWords[static_cast<unsigned>(i)], 64 * (i + 1 + kColourMakeUpCodes), RunKind::MakeUp);
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

} // namespace vellum
