// The rules of T.4 and T.6 for one line.
#include "codec/ccitt_lines.h"

#include "codec/ccitt_codes.h"

#include <algorithm>

namespace vellum {
namespace {

enum class RunEnd : BYTE { Terminated, Zeros, Failure };

// One run: adds the pixels of its make-up codes and its terminating code to the position. A position counts as reaching
// the width at most, so that sums of make-up codes cannot wrap.
inline RunEnd passRun(BitReader &bits, const RunLookup &lookup, LONG &position, LONG width, bool &hasData) {
    for (;;) {
        if (!bits.refill()) {
            return RunEnd::Failure;
        }
        const RunEntry entry = lookup[bits.peek(kRunLookupBits)];
        if (entry.kind == RunKind::Zeros) [[unlikely]] {
            return RunEnd::Zeros;
        }
        bits.take(entry.bits);
        hasData = true;
        position += entry.run;
        if (position > width) {
            position = width;
        }
        if (entry.kind == RunKind::Terminating) {
            return RunEnd::Terminated;
        }
    }
}

constexpr LineResult failure(Error error) {
    return {LineEnd::Failure, false, error};
}

// The end of a line whose last position has been added.
LineResult finished(const BitReader &bits, ChangingElements &line, LONG width) {
    if (bits.overrun()) {
        return failure(bits.error());
    }
    line.close(width);
    return {LineEnd::Width, true, Error::None};
}

// The end of a line that eight zero bits cut short.
LineResult cutShort(LineEnd end, ChangingElements &line, LONG width, bool hasData) {
    if (!line.add(width)) {
        return failure(Error::NoMemory);
    }
    line.close(width);
    return {end, hasData, Error::None};
}

// The reference line during a two-dimensional line: finds b1, the first changing element to the right of a0 whose
// colour is opposite to the run's.
class ReferenceCursor {
public:
    ReferenceCursor(const ChangingElements &reference, LONG width)
        : b1_(reference.positions()), start_(b1_), width_(width) {}

    [[nodiscard]] LONG b1() const { return b1_[0]; }
    [[nodiscard]] LONG b2() const { return b1_[1]; }

    void afterPass() { b1_ += 2; }

    // The colour has changed at a1, a vertical mode's position, which a shift to the left may have put before elements
    // already passed.
    void afterVertical(LONG a1, int shift) {
        ++b1_;
        if (shift < 0) {
            while (b1_ - start_ >= 2 && b1_[-2] > a1) {
                b1_ -= 2;
            }
        }
        afterHorizontal(a1);
    }

    void afterHorizontal(LONG a2) {
        while (b1_[0] <= a2 && b1_[0] < width_) {
            b1_ += 2;
        }
    }

private:
    const LONG *b1_;
    const LONG *start_;
    LONG width_;
};

LineResult oneDimensionalLine(BitReader &bits, ChangingElements &line, LONG width) {
    line.clear();
    bool hasData = false;
    LONG position = 0;
    for (unsigned colour = 0; position < width; colour ^= 1) {
        const RunEnd end = passRun(bits, kRunLookups[colour], position, width, hasData);
        if (end == RunEnd::Failure) {
            return failure(bits.error());
        }
        if (end == RunEnd::Zeros) {
            return cutShort(LineEnd::Zeros, line, width, hasData);
        }
        if (!line.add(position)) {
            return failure(Error::NoMemory);
        }
    }
    return finished(bits, line, width);
}

LineResult twoDimensionalLine(BitReader &bits, const ChangingElements &reference, ChangingElements &line, LONG width) {
    line.clear();
    ReferenceCursor cursor(reference, width);
    LONG a0 = 0;
    bool hasData = false;
    while (a0 < width) {
        if (!bits.refill()) {
            return failure(bits.error());
        }
        const ModeEntry code = kModeLookup[bits.peek(kModeLookupBits)];
        bits.take(code.bits);
        bool added = true;
        switch (code.mode) {
        case Mode::Vertical:
            a0 = std::min<LONG>(cursor.b1() + code.shift, width);
            added = line.add(a0);
            cursor.afterVertical(a0, code.shift);
            break;
        case Mode::Horizontal:
            for (int i = 0; i < 2 && added; ++i) {
                const RunEnd end = passRun(bits, kRunLookups[line.colour()], a0, width, hasData);
                if (end == RunEnd::Failure) {
                    return failure(bits.error());
                }
                if (end == RunEnd::Zeros) {
                    return cutShort(LineEnd::RunZeros, line, width, true);
                }
                added = line.add(a0);
            }
            cursor.afterHorizontal(a0);
            break;
        case Mode::Pass:
            a0 = cursor.b2();
            cursor.afterPass();
            if (a0 >= width) {
                added = line.add(width);
            }
            break;
        case Mode::Invalid:
            return failure(bits.overrun() ? bits.error() : Error::BadCode);
        case Mode::Zeros:
            return cutShort(LineEnd::Zeros, line, width, hasData);
        }
        if (!added) {
            return failure(Error::NoMemory);
        }
        hasData = true;
    }
    return finished(bits, line, width);
}

} // namespace

// Both work on a copy of the reader, which can then live in registers.

LineResult decodeOneDimensionalLine(BitReader &reader, ChangingElements &line, LONG width) {
    BitReader bits(reader);
    const LineResult result = oneDimensionalLine(bits, line, width);
    reader = bits;
    return result;
}

LineResult decodeTwoDimensionalLine(BitReader &reader, const ChangingElements &reference, ChangingElements &line,
                                    LONG width) {
    BitReader bits(reader);
    const LineResult result = twoDimensionalLine(bits, reference, line, width);
    reader = bits;
    return result;
}

} // namespace vellum
