// The LZW encoder's strings: from a string's code and a byte to the code of the string one byte longer.
//
// An open-addressed table of codes, twice and more as large as it gets full, beside the key of each code. Both lie in
// the processor's first cache, and on the way from a code to the next one there is a single load. Strings that end in
// a repeated byte can be followed by eight bytes at a time.
#pragma once

#include <windows.h>

#include <algorithm>
#include <cstring>

namespace vellum {

constexpr DWORD kFirstEntry = 258;
constexpr DWORD kEntries = 4096;
constexpr DWORD kLeap = 8;
// No code: what has been matched at the start of a strip, and behind an early Clear.
constexpr DWORD kEmptyString = kEntries;

struct LzwTable {
    struct Place {
        DWORD code; // 0: the string is not there
        DWORD slot; // where it belongs then
    };

    LzwTable(const LzwTable &) = delete;

    // Once, in zeroed memory.
    void prepare() { keys[0] = kNoKey; }

    // Forgets all strings of more than a byte; the entries up to `next` have been made.
    void clear(DWORD next) {
        constexpr DWORD kFew = 1200;
        if (next < kFew) {
            for (DWORD code = kFirstEntry; code < next; ++code) {
                slots[slotOf[code]] = 0;
            }
        } else {
            std::memset(slots, 0, sizeof slots);
        }
        std::memset(leaps, 0, next * sizeof *leaps);
        std::memset(repeats, 0, next);
    }

    [[nodiscard]] Place find(DWORD prefix, DWORD byte) const {
        constexpr DWORD kSpread = 10125; // the golden section of kSlotCount: neighbouring bytes come far apart
        const DWORD key = prefix << 8 | byte;
        DWORD slot = prefix ^ (byte * kSpread % kSlotCount);
        DWORD code = slots[slot];
        while (keys[code] != key) {
            if (code == 0) {
                return {0, slot};
            }
            slot = (slot + kStep) % kSlotCount;
            code = slots[slot];
        }
        return {code, slot};
    }

    void insert(DWORD code, DWORD prefix, DWORD byte, DWORD slot) {
        slots[slot] = static_cast<WORD>(code);
        slotOf[code] = static_cast<WORD>(slot);
        keys[code] = prefix << 8 | byte;
    }

    // A new string is its prefix with the prefix's last byte once more.
    void noteRepeat(DWORD code, DWORD prefix) {
        repeats[code] = static_cast<BYTE>(std::min(repeats[prefix] + 1U, static_cast<unsigned>(kLeap)));
        if (repeats[code] == kLeap) {
            for (DWORD i = 1; i < kLeap; ++i) {
                prefix = keys[prefix] >> 8;
            }
            leaps[prefix] = static_cast<WORD>(code);
        }
    }

    // The code of a string with its last byte kLeap times more, if that is known; else 0.
    [[nodiscard]] DWORD leap(DWORD code) const { return leaps[code]; }

private:
    static constexpr DWORD kSlotCount = 16384;
    static constexpr DWORD kStep = 6625;
    static constexpr DWORD kNoKey = ~DWORD{0};

    WORD slots[kSlotCount]; // codes; 0 where there is none
    DWORD keys[kEntries];   // prefix and last byte of each code
    WORD slotOf[kEntries];
    WORD leaps[kEntries];
    BYTE repeats[kEntries]; // how often the last byte is known to repeat what is before it, up to kLeap
};

} // namespace vellum
