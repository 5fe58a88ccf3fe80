// PackBits encoding, line by line: a pair of equal bytes always becomes a run. A packet is found by comparing sixteen
// bytes with their right-hand neighbours at once: it ends where what the first comparison said changes.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/wide_moves.h"

#include <algorithm>
#include <bit>
#include <emmintrin.h>

namespace vellum {
namespace {

constexpr DWORD kHalfWindow = 16;
constexpr DWORD kWindow = 2 * kHalfWindow; // a bit of a mask each
constexpr DWORD kMostSteps = 127;          // a packet has a byte more
constexpr DWORD kLongestPacket = kMostSteps + 2;
// What a packet may write, with the last of its pieces.
constexpr DWORD kPacketRoom = kLongestPacket + kMovePiece;
// Windows begin inside the line.
static_assert(kMostSteps + kWindow + 1 <= kLineSlack);

unsigned equalNeighboursOfHalf(const BYTE *from) {
    const __m128i bytes = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from));
    const __m128i neighbours = _mm_loadu_si128(reinterpret_cast<const __m128i *>(from + 1));
    return static_cast<unsigned>(_mm_movemask_epi8(_mm_cmpeq_epi8(bytes, neighbours)));
}

// Bit i: the i-th byte from there equals the one behind it.
unsigned equalNeighbours(const BYTE *from) {
    return equalNeighboursOfHalf(from) | equalNeighboursOfHalf(from + kHalfWindow) << kHalfWindow;
}

// Where a line is read and its code is written.
struct Places {
    const BYTE *from;
    BYTE *to;
};

// Encodes packets as long as there is room for the longest one, behind which up to a piece of anything is written.
Places putPackets(Places at, const BYTE *lineEnd, const BYTE *roomEnd) {
    const BYTE *from = at.from;
    BYTE *to = at.to;
    while (from < lineEnd && static_cast<DWORD>(roomEnd - to) >= kPacketRoom) {
        const unsigned equal = equalNeighbours(from);
        const unsigned run = 0U - (equal & 1); // all ones for a run, 0 for a literal
        unsigned changes = equal ^ run;
        DWORD steps = 0;
        while (changes == 0 && steps < kMostSteps) {
            steps += kWindow;
            changes = equalNeighbours(from + steps) ^ run;
        }
        steps += static_cast<DWORD>(std::countr_zero(changes));
        steps = std::min({steps, kMostSteps, static_cast<DWORD>(lineEnd - from) - 1});
        *to = static_cast<BYTE>((steps ^ run) - run);
        std::memcpy(to + 1, from, kMovePiece);
        if (steps >= kMovePiece && run == 0) {
            copyInPieces(to + 1 + kMovePiece, from + kMovePiece, steps + 1 - kMovePiece);
        }
        to += 2 + (steps & ~run);
        from += steps + 1;
    }
    return {from, to};
}

// Moves finished code into the code buffer, and the code buffer out whenever it is full.
Error putCode(CodecState &state, const BYTE *code, DWORD count) {
    while (count > 0) {
        const DWORD piece = std::min(count, state.codeBytesLeft);
        std::memcpy(state.codePointer, code, piece);
        state.codePointer += piece;
        state.codeBytesLeft -= piece;
        code += piece;
        count -= piece;
        if (state.codeBytesLeft == 0) {
            if (const Error error = flushCodeBuffer(state); error != Error::None) {
                return error;
            }
        }
    }
    return Error::None;
}

Error encodeLine(CodecState &state) {
    const BYTE *lineEnd = state.lineBuffer + state.bytesPerLine;
    const BYTE *from = state.lineBuffer;
    for (;;) {
        const Places done = putPackets({from, state.codePointer}, lineEnd, state.codePointer + state.codeBytesLeft);
        state.codeBytesLeft -= static_cast<DWORD>(done.to - state.codePointer);
        state.codePointer = done.to;
        if (done.from == lineEnd) {
            return Error::None;
        }
        // Near the end of the code buffer packets are made beside it, one at a time.
        BYTE code[kPacketRoom];
        const Places next = putPackets({done.from, code}, lineEnd, code + kPacketRoom);
        if (const Error error = putCode(state, code, static_cast<DWORD>(next.to - code)); error != Error::None) {
            return error;
        }
        from = next.from;
    }
}

} // namespace

Error encodePackBits(CodecState &state) {
    if (state.image.biHeight == 0 || state.bytesPerLine == 0) {
        return Error::None;
    }
    Error error = initEncodeBuffers(state);
    while (error == Error::None) {
        error = encodeLine(state);
        if (error == Error::None) {
            error = fillDataBuffer(state);
        }
    }
    return error == Error::LastLinePassed ? flushCodeBuffer(state) : error;
}

} // namespace vellum
