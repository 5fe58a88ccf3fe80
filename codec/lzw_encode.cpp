// LZW as TIFF 6.0 has it, encoding: Clear 256, EndOfInformation 257, codes of 9 to 12 bits, most significant bit first.
//
// Every code has a slot: the number of the table entry that was made when it was given out, from 258 on behind a Clear.
// The slot alone decides the code's width. Codes are collected by slot and become bits when their generation of the
// table ends.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/differencing.h"
#include "codec/lzw_table.h"
#include "support/byte_order.h"
#include "support/global_block.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <emmintrin.h>

namespace vellum {
namespace {

constexpr WORD kClear = 256;
constexpr WORD kEndOfInformation = 257;
constexpr DWORD kStripStartSlot = 257; // the Clear that a strip begins with
constexpr DWORD kClearSlot = 4095;     // the Clear of a full table
constexpr int kLeastWidth = 9;
constexpr int kMostWidth = 12;
constexpr DWORD kWindow = 16;

// By design: behind EndOfInformation a strip has three codes of 0, so that a reader which takes codes ahead finds some.
constexpr DWORD kZeroCodes = 3;
// A table is thrown away early only when it has served so many lines.
constexpr DWORD kLeastLines = 3;

// The slots of a generation, and behind the largest one EndOfInformation and the zeros.
constexpr DWORD kSlots = kClearSlot + 1 + kZeroCodes;

// The code stream of a run. Bits leave in pairs of bytes, counted from where a strip or a filled code buffer began; a
// byte leaves alone only when the code buffer has room for just one.
class LzwBits {
public:
    explicit LzwBits(CodecState &state) : state_(state), pairs_(state.codePointer) {}

    void startStrip() {
        pairs_ = state_.codePointer;
        splitPair_ = false;
    }

    // Slots from `slot` on, up to `end`, each in its width.
    Error put(const WORD *codes, DWORD slot, DWORD end) {
        for (int width = kLeastWidth; width <= kMostWidth; ++width) {
            const DWORD widthEnd = width == kMostWidth ? end : std::min(end, DWORD{1} << width);
            while (slot < widthEnd) {
                const DWORD count = std::min(widthEnd - slot, codesThatFit(width));
                if (const Error error = advance(putCodes(codes + slot, count, width)); error != Error::None) {
                    return error;
                }
                slot += count;
            }
        }
        return Error::None;
    }

    // Fills the last pair of a strip with zeros.
    Error finishStrip() {
        const auto bytes = static_cast<DWORD>(state_.codePointer - pairs_);
        const DWORD whole = (bytes * 8 + static_cast<DWORD>(pending_) + 15) / 16 * 2;
        // The code may end in the pair that the end of the code buffer divides.
        const DWORD filled = bytes == 0 && splitPair_ ? 1 : whole - bytes;
        storePending(state_.codePointer);
        bits_ = 0;
        pending_ = 0;
        return advance(state_.codePointer + filled);
    }

private:
    static constexpr DWORD kStore = 4;

    // The code buffer may be overrun by its slack.
    [[nodiscard]] DWORD codesThatFit(int width) const {
        return (state_.codeBytesLeft + kCodeSlack - 2 * kStore) * 8 / static_cast<DWORD>(width);
    }

    void storePending(BYTE *to) const {
        const DWORD bytes = swapped(bits_);
        std::memcpy(to, &bytes, kStore);
    }

    BYTE *putCodes(const WORD *codes, DWORD count, int width) {
        BYTE *to = state_.codePointer;
        DWORD bits = bits_;
        int pending = pending_;
        for (const WORD *end = codes + count; codes != end; ++codes) {
            bits |= DWORD{*codes} << (32 - width - pending);
            pending += width;
            const DWORD bytes = swapped(bits);
            std::memcpy(to, &bytes, kStore);
            to += pending >> 3;
            bits <<= pending & ~7;
            pending &= 7;
        }
        bits_ = bits;
        pending_ = pending;
        return to;
    }

    // The code buffer is filled up to there, or beyond its end.
    Error advance(const BYTE *to) {
        auto count = static_cast<DWORD>(to - state_.codePointer);
        if (count >= state_.codeBytesLeft) {
            const BYTE *end = state_.codePointer + state_.codeBytesLeft;
            count -= state_.codeBytesLeft;
            splitPair_ = (end - pairs_) % 2 != 0;
            state_.codeBytesLeft = 0;
            if (const Error error = flushCodeBuffer(state_); error != Error::None) {
                return error;
            }
            std::memcpy(state_.codePointer, end, count);
            pairs_ = state_.codePointer;
        }
        state_.codePointer += count;
        state_.codeBytesLeft -= count;
        return Error::None;
    }

    CodecState &state_;
    const BYTE *pairs_;      // where pairs of bytes are counted from
    bool splitPair_ = false; // whether the last filled code buffer of the strip divided a pair
    DWORD bits_ = 0;         // from the top: bits that do not fill a byte yet
    int pending_ = 0;        // how many, below 8
};

struct LzwMemory {
    LzwTable table;
    WORD codes[kSlots]; // by slot
};

class LzwRun {
public:
    LzwRun(CodecState &state, LzwMemory &memory)
        : state_(state), bits_(state), table_(memory.table), codes_(memory.codes) {
        table_.prepare();
    }

    // Encodes from the line that is in the line buffer to the last one.
    Error encode();

private:
    void startStrip();
    void startGeneration();
    Error endFullGeneration();
    Error finishStrip();
    Error encodeLine();
    Error encodeBytes(const BYTE *from, const BYTE *end);
    Error encodeRun(const BYTE *from, const BYTE *end);
    Error judgeGeneration(DWORD nextBefore);

    CodecState &state_;
    LzwBits bits_;
    LzwTable &table_;
    WORD *codes_;
    DWORD firstSlot_ = 0;         // of the generation
    DWORD next_ = kFirstEntry;    // the entry that is made next
    DWORD prefix_ = kEmptyString; // the string that has been matched
    DWORD lines_ = 0;             // that the generation has had a part in
};

void LzwRun::startStrip() {
    bits_.startStrip();
    startGeneration();
    firstSlot_ = kStripStartSlot;
    codes_[kStripStartSlot] = kClear;
    prefix_ = kEmptyString;
}

void LzwRun::startGeneration() {
    table_.clear(next_);
    next_ = firstSlot_ = kFirstEntry;
    lines_ = 0;
}

// The string that was matched last goes on into the next generation.
Error LzwRun::endFullGeneration() {
    codes_[kClearSlot] = kClear;
    const Error error = bits_.put(codes_, firstSlot_, kClearSlot + 1);
    startGeneration();
    return error;
}

Error LzwRun::finishStrip() {
    DWORD end = next_;
    if (prefix_ != kEmptyString) {
        codes_[end++] = static_cast<WORD>(prefix_);
    }
    codes_[end++] = kEndOfInformation;
    for (DWORD i = 0; i < kZeroCodes; ++i) {
        codes_[end++] = 0;
    }
    const Error error = bits_.put(codes_, firstSlot_, end);
    return error == Error::None ? bits_.finishStrip() : error;
}

// Bytes that may be anything.
Error LzwRun::encodeBytes(const BYTE *from, const BYTE *end) {
    DWORD prefix = prefix_;
    DWORD next = next_;
    if (prefix == kEmptyString && from != end) {
        prefix = *from++;
    }
    while (from != end) {
        const DWORD byte = *from++;
        const LzwTable::Place place = table_.find(prefix, byte);
        if (place.code != 0) [[likely]] {
            prefix = place.code;
            continue;
        }
        table_.insert(next, prefix, byte, place.slot);
        codes_[next++] = static_cast<WORD>(prefix);
        prefix = byte;
        if (next == kClearSlot) [[unlikely]] {
            next_ = next;
            if (const Error error = endFullGeneration(); error != Error::None) {
                return error;
            }
            next = next_;
        }
    }
    prefix_ = prefix;
    next_ = next;
    return Error::None;
}

// Bytes that equal the one before them, which has been encoded: taken by leaps where strings are long enough.
Error LzwRun::encodeRun(const BYTE *from, const BYTE *end) {
    const DWORD byte = *from;
    auto left = static_cast<DWORD>(end - from);
    while (left > 0) {
        if (const DWORD farther = left >= kLeap ? table_.leap(prefix_) : 0; farther != 0) {
            prefix_ = farther;
            left -= kLeap;
            continue;
        }
        --left;
        const LzwTable::Place place = table_.find(prefix_, byte);
        if (place.code != 0) {
            prefix_ = place.code;
            continue;
        }
        table_.insert(next_, prefix_, byte, place.slot);
        table_.noteRepeat(next_, prefix_);
        codes_[next_++] = static_cast<WORD>(prefix_);
        prefix_ = byte;
        if (next_ == kClearSlot) {
            if (const Error error = endFullGeneration(); error != Error::None) {
                return error;
            }
        }
    }
    return Error::None;
}

// Bit i: the i-th byte from there equals the one before it.
unsigned repeats(const BYTE *from) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
    const __m128i before = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from - 1));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, before)));
}

constexpr unsigned kAllRepeats = (1U << kWindow) - 1;
static_assert(kWindow <= kLineSlack);

const BYTE *endOfRepeats(const BYTE *from, const BYTE *lineEnd) {
    while (from < lineEnd) {
        if (const unsigned same = repeats(from); same != kAllRepeats) {
            return std::min(from + std::countr_one(same), lineEnd);
        }
        from += kWindow;
    }
    return lineEnd;
}

Error LzwRun::encodeLine() {
    const BYTE *from = state_.lineBuffer;
    const BYTE *lineEnd = from + state_.bytesPerLine;
    for (const BYTE *at = from + 1; lineEnd - at >= static_cast<LONG>(kWindow);) {
        if (repeats(at) != kAllRepeats) {
            at += kWindow / 2;
            continue;
        }
        const BYTE *runEnd = endOfRepeats(at + kWindow, lineEnd);
        if (const Error error = encodeBytes(from, at); error != Error::None) {
            return error;
        }
        if (const Error error = encodeRun(at, runEnd); error != Error::None) {
            return error;
        }
        from = runEnd;
        at = runEnd + 1;
    }
    return encodeBytes(from, lineEnd);
}

// Behind a line: a table that makes the line's code longer than the line is thrown away.
Error LzwRun::judgeGeneration(DWORD nextBefore) {
    const DWORD lineBits = static_cast<WORD>(static_cast<DWORD>(state_.bytesPerLine) * 8);
    // A generation that began in this line is too young to be judged.
    const bool pays = (next_ - nextBefore) * static_cast<DWORD>(std::bit_width(next_)) <= lineBits;
    if (lines_ < kLeastLines || pays) {
        return Error::None;
    }
    codes_[next_] = static_cast<WORD>(prefix_);
    codes_[next_ + 1] = kClear;
    const Error error = bits_.put(codes_, firstSlot_, next_ + 2);
    startGeneration();
    prefix_ = kEmptyString;
    return error;
}

Error LzwRun::encode() {
    const bool differencing = state_.compressionKey == VELLUM_KEY_LZW_DIFFERENCING;
    startStrip();
    for (;;) {
        if (differencing) {
            applyHorizontalDifferencing(state_.lineBuffer, static_cast<std::size_t>(state_.bytesPerLine),
                                        state_.image.biBitCount);
        }
        const DWORD nextBefore = next_;
        Error error = encodeLine();
        ++lines_;
        const bool closesStrip = state_.stripEnd != 0;
        if (error == Error::None && closesStrip) {
            error = finishStrip();
        }
        if (error != Error::None) {
            return error;
        }
        error = fillDataBuffer(state_);
        if (error == Error::LastLinePassed && !closesStrip) {
            // The line function has ended the image early; what it gave makes a whole strip.
            return finishStrip();
        }
        if (error != Error::None) {
            return error;
        }
        if (closesStrip) {
            startStrip();
        } else if (error = judgeGeneration(nextBefore); error != Error::None) {
            return error;
        }
    }
}

} // namespace

Error encodeLzw(CodecState &state) {
    if (state.image.biHeight == 0 || state.bytesPerLine == 0) {
        return Error::None;
    }
    if (const Error error = initEncodeBuffers(state); error != Error::None) {
        return endOfRun(error);
    }
    const GlobalBlock block = GlobalBlock::allocate(Size(sizeof(LzwMemory)));
    const GlobalView<LzwMemory> memory(block.get());
    if (!memory) {
        return Error::NoMemory;
    }
    return endOfRun(LzwRun(state, *memory).encode());
}

} // namespace vellum
