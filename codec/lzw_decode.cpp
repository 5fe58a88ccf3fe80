// LZW as TIFF 6.0 has it: Clear 256, EndOfInformation 257, codes of 9 to 12 bits, most significant bit first.
//
// A string is kept in chunks of eight bytes: an entry holds the string's last, partly filled chunk and the code whose
// string is everything before it. Writing a string takes one move a chunk. Strings of the old, bit-reversed LZW are not
// supported: such data fail, or yield garbage.
#include "codec/bit_reader.h"
#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/differencing.h"
#include "codec/wide_moves.h"
#include "support/global_block.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr unsigned kClear = 256;
constexpr unsigned kEndOfInformation = 257;
constexpr unsigned kFirstFree = 258;
constexpr unsigned kCodes = 4096;
constexpr int kLeastWidth = 9;
constexpr unsigned kLeastLargest = 511;
constexpr int kMostWidth = 12;
constexpr DWORD kChunk = 8;
// From this length on, filling beats writing a uniform string chunk by chunk.
constexpr LONG kLongString = 64;
static_assert(kChunk <= kMovePiece);

struct LzwEntry {
    BYTE chunk[kChunk]; // bytes of the string from a multiple of kChunk on; 1 to kChunk of them
    WORD before;        // code of the string up to there; meaningful for more than kChunk bytes
    WORD length;        // of the whole string
    BYTE first;         // its first byte
    bool uniform;       // all its bytes are the first one
    BYTE padding[2];
};
static_assert(sizeof(LzwEntry) == 16);

struct LzwTable {
    LzwEntry entries[kCodes];

    LzwTable(const LzwTable &) = delete;

    void setLiterals() {
        for (unsigned code = 0; code < kClear; ++code) {
            LzwEntry &entry = entries[code];
            entry.chunk[0] = entry.first = static_cast<BYTE>(code);
            entry.length = 1;
            entry.uniform = true;
        }
    }

    // Makes an entry of a string and the byte behind it.
    void extend(unsigned code, unsigned prefix, BYTE last) {
        const LzwEntry &from = entries[prefix];
        LzwEntry &to = entries[code];
        const DWORD inChunk = from.length % kChunk;
        if (inChunk == 0) {
            to.before = static_cast<WORD>(prefix);
        } else {
            std::memcpy(to.chunk, from.chunk, kChunk);
            to.before = from.before;
        }
        to.chunk[inChunk] = last;
        to.length = static_cast<WORD>(from.length + 1);
        to.first = from.first;
        to.uniform = from.uniform && last == from.first;
    }

    // Writes a string, and up to kChunk - 1 bytes of anything behind it.
    void write(unsigned code, BYTE *to) const {
        DWORD offset = (entries[code].length - 1u) & ~(kChunk - 1);
        for (;; offset -= kChunk) {
            std::memcpy(to + offset, entries[code].chunk, kChunk);
            if (offset == 0) {
                return;
            }
            code = entries[code].before;
        }
    }
};

// Where a run stands between two codes.
struct LzwCursor {
    unsigned next = kFirstFree;      // entries of the table, with the one whose last byte the next code brings
    unsigned previous = kCodes;      // the code that this entry extends; kCodes when there is no such entry
    int width = kLeastWidth;         // bits of the next code
    unsigned widest = kLeastLargest; // largest code of this width

    // Before each code. By design of TIFF's LZW the width grows one code earlier than the table needs: `next` counts
    // an entry that is not complete yet.
    void widen() {
        if (next > widest && width < kMostWidth) {
            ++width;
            widest = 2 * widest + 1;
        }
    }

    // An entry begins with each code, until the table is full.
    void extendBy(unsigned code) {
        previous = next < kCodes ? code : kCodes;
        next += next < kCodes ? 1 : 0;
    }
};

class LzwRun {
public:
    LzwRun(CodecState &state, LzwTable &table)
        : state_(state), table_(table), differencing_(state.compressionKey == VELLUM_KEY_LZW_DIFFERENCING) {
        table_.setLiterals();
    }

    // Decodes strip after strip; LastLinePassed at the end of the image.
    Error decode() {
        for (;;) {
            if (const Error error = decodeStrip(); error != Error::None) {
                return error;
            }
        }
    }

private:
    Error decodeStrip();
    void savePosition(BYTE *to, const BYTE *lineEnd) {
        state_.linePointer = to;
        state_.lineBytesLeft = static_cast<LONG>(lineEnd - to);
    }
    Error deliverString(unsigned code);
    Error deliverLine();
    Error endOfInformation();

    CodecState &state_;
    LzwTable &table_;
    bool differencing_;
    // Strings that do not end with the line.
    BYTE overlong_[kCodes + kMovePiece];
};

Error LzwRun::decodeStrip() {
    BitReader bits(state_, fillCodeBuffer);
    bits.start();
    LzwCursor cursor;
    BYTE *to = state_.linePointer;
    BYTE *lineEnd = to + state_.lineBytesLeft;
    for (;;) {
        cursor.widen();
        if (!bits.refill()) {
            return bits.error();
        }
        const unsigned code = bits.peek(cursor.width);
        bits.take(cursor.width);
        if (code - kClear <= kEndOfInformation - kClear || code >= cursor.next) [[unlikely]] {
            if (code == kClear) {
                cursor = LzwCursor{};
                continue;
            }
            savePosition(to, lineEnd);
            return bits.overrun() ? bits.error() : code == kEndOfInformation ? endOfInformation() : Error::BadCode;
        }
        if (cursor.previous != kCodes) {
            const unsigned firstFrom = code == cursor.next - 1 ? cursor.previous : code;
            table_.extend(cursor.next - 1, cursor.previous, table_.entries[firstFrom].first);
        }
        cursor.extendBy(code);
        const LzwEntry &entry = table_.entries[code];
        const LONG length = entry.length;
        if (length < lineEnd - to) [[likely]] {
            if (length > kLongString && entry.uniform) {
                fillLine(to, entry.first, static_cast<DWORD>(length));
            } else {
                table_.write(code, to);
            }
            to += length;
            continue;
        }
        if (bits.overrun()) {
            return bits.error();
        }
        savePosition(to, lineEnd);
        if (const Error error = deliverString(code); error != Error::None || state_.stripEnd != 0) {
            return error;
        }
        to = state_.linePointer;
        lineEnd = to + state_.lineBytesLeft;
    }
}

// Delivers a string that reaches the end of the line, or goes beyond it, line by line. What is left of it when a line
// closes a strip is dropped.
Error LzwRun::deliverString(unsigned code) {
    const LzwEntry &entry = table_.entries[code];
    DWORD left = entry.length;
    if (!entry.uniform) {
        table_.write(code, overlong_);
    }
    for (const BYTE *from = overlong_;;) {
        const DWORD piece = std::min(left, static_cast<DWORD>(state_.lineBytesLeft));
        if (entry.uniform) {
            fillLine(state_.linePointer, entry.first, piece);
        } else {
            copyInPieces(state_.linePointer, from, piece);
        }
        state_.linePointer += piece;
        state_.lineBytesLeft -= static_cast<LONG>(piece);
        from += piece;
        left -= piece;
        if (state_.lineBytesLeft > 0) {
            return Error::None;
        }
        if (const Error error = deliverLine(); error != Error::None) {
            return error;
        }
        if (state_.lineBytesLeft <= 0) {
            return Error::BadCode;
        }
        if (state_.stripEnd != 0 || left == 0) {
            return Error::None;
        }
    }
}

Error LzwRun::deliverLine() {
    if (differencing_) {
        undoHorizontalDifferencing(state_.lineBuffer, static_cast<std::size_t>(state_.bytesPerLine),
                                   state_.image.biBitCount);
    }
    return flushDataBuffer(state_);
}

// The line comes out even if it is incomplete, its rest zero. Only the last line of a strip may end so.
Error LzwRun::endOfInformation() {
    std::memset(state_.linePointer, 0, static_cast<std::size_t>(state_.lineBytesLeft));
    if (const Error error = deliverLine(); error != Error::None) {
        return error;
    }
    return state_.stripEnd != 0 ? Error::None : Error::BadCode;
}

} // namespace

Error decodeLzw(CodecState &state) {
    if (const Error error = initDecodeBuffers(state); error != Error::None) {
        return endOfRun(error);
    }
    const GlobalBlock block = GlobalBlock::allocate(Size(sizeof(LzwTable)));
    const GlobalView<LzwTable> table(block.get());
    if (!table) {
        return Error::NoMemory;
    }
    return endOfRun(LzwRun(state, *table).decode());
}

} // namespace vellum
