// Ordinary lines, with everything that changes in registers. Whatever is not ordinary ends the attempt.
#include "codec/ccitt_fast_lines.h"

#include "codec/ccitt_codes.h"

namespace vellum {
namespace {

// Lengths that are known without a look at the code's entry.
constexpr int kHorizontalBits = 3;
constexpr int kPassBits = 4;
static_assert(kHorizontalBits + kRunLookupBits <= BitWindow::kRefilledBits);

// One run of a colour; the bits of its first word are there already. False for code that is odd, at the end of the
// buffer, or leads beyond the width.
inline bool passVisibleRun(BitWindow &bits, unsigned colour, LONG &position, LONG width) {
    for (;;) {
        RunEntry entry = kShortRunLookups[colour][bits.peek(kShortRunLookupBits)];
        if (entry.bits == 0) {
            entry = kRunLookups[colour][bits.peek(kRunLookupBits)];
            if (entry.kind == RunKind::Zeros) {
                return false;
            }
        }
        bits.take(entry.bits);
        position += entry.run;
        if (position > width) {
            return false;
        }
        if (entry.kind == RunKind::Terminating) [[likely]] {
            return true;
        }
        if (!bits.refillLoaded()) {
            return false;
        }
    }
}

inline bool passRun(BitWindow &bits, unsigned colour, LONG &position, LONG width) {
    return bits.refillLoaded() && passVisibleRun(bits, colour, position, width);
}

// Moves b1 to the first position right of a0 among those of its colour, from wherever it stands. The reference is
// ordered, and the sentinels on both sides stop the search.
inline const LONG *searched(const LONG *b1, LONG a0) {
    // The first step of each without a branch: in dense lines nothing tells whether there will be one.
    b1 += b1[0] <= a0 ? 2 : 0;
    while (b1[0] <= a0) {
        b1 += 2;
    }
    b1 -= b1[-2] > a0 ? 2 : 0;
    while (b1[-2] > a0) {
        b1 -= 2;
    }
    return b1;
}

} // namespace

bool decodeFastOneDimensionalLine(BitReader &reader, ChangingElements &line, LONG width) {
    const DWORD room = line.room();
    BitWindow bits = reader.window();
    LONG position = 0;
    DWORD count = 0;
    do {
        if (count + 2 > room || !passRun(bits, 0, position, width)) {
            return false;
        }
        line.first()[count++] = position;
        if (position == width) {
            break;
        }
        if (!passRun(bits, 1, position, width)) {
            return false;
        }
        line.first()[count++] = position;
    } while (position < width);
    line.closeOrdered(count, width);
    reader.resume(bits);
    return true;
}

bool decodeFastTwoDimensionalLine(BitReader &reader, const ChangingElements &reference, ChangingElements &line,
                                  LONG width) {
    const DWORD room = line.room();
    if (room == 0 || !reference.ordered()) {
        return false;
    }
    BitWindow bits = reader.window();
    const LONG *b1 = reference.positions();
    LONG *const first = line.first();
    LONG *const last = first + room - 2;
    LONG *next = first;
    LONG a0 = 0;
    for (;;) {
        if (next > last || !bits.refillLoaded()) {
            return false;
        }
        const ModeEntry &code = kModeLookup[bits.peek(kModeLookupBits)];
        if (code.mode == Mode::Vertical) [[likely]] {
            bits.take(code.bits);
            const LONG a1 = b1[0] + code.shift;
            if (a1 < a0 || a1 > width) {
                return false;
            }
            *next++ = a0 = a1;
            ++b1;
        } else if (code.mode == Mode::Horizontal) {
            bits.take(kHorizontalBits);
            const unsigned colour = static_cast<unsigned>(next - first) & 1;
            if (!passVisibleRun(bits, colour, a0, width)) {
                return false;
            }
            next[0] = a0;
            if (!passRun(bits, colour ^ 1, a0, width)) {
                return false;
            }
            next[1] = a0;
            next += 2;
        } else if (code.mode == Mode::Pass) {
            bits.take(kPassBits);
            a0 = b1[1];
            b1 += 2;
            if (a0 < width) {
                continue;
            }
            *next++ = width;
        } else {
            return false;
        }
        if (a0 >= width) {
            break;
        }
        b1 = searched(b1, a0);
    }
    line.closeOrdered(static_cast<DWORD>(next - first), width);
    reader.resume(bits);
    return true;
}

} // namespace vellum
