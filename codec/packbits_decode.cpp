// PackBits: packets of a header byte and either the bytes themselves or one byte to repeat.
//
// By design: every header byte carries data. -128 repeats its byte 129 times, so that a run of 129 needs two bytes and
// no header value is spent on "do nothing". By design: packets do not end at line ends; what a packet has left over at
// the end of a line goes into the line buffer's slack and is dropped.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/wide_moves.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// The longest packet, a run of header -128, must fit behind a line with one byte to go.
constexpr int kLongestPacket = 129;
static_assert(kLongestPacket <= kLineSlack);

// Makes sure that there is a code byte.
[[nodiscard]] Error needCode(CodecState &state) {
    return state.codeBytesLeft > 0 ? Error::None : fillCodeBuffer(state);
}

BYTE nextByte(CodecState &state) {
    --state.codeBytesLeft;
    return *state.codePointer++;
}

Error copyLiterals(CodecState &state, DWORD count) {
    while (count > 0) {
        if (const Error error = needCode(state); error != Error::None) {
            return error;
        }
        const DWORD piece = std::min(count, state.codeBytesLeft);
        std::memcpy(state.linePointer, state.codePointer, piece);
        state.linePointer += piece;
        state.codePointer += piece;
        state.codeBytesLeft -= piece;
        count -= piece;
    }
    return Error::None;
}

Error repeatByte(CodecState &state, DWORD count) {
    if (const Error error = needCode(state); error != Error::None) {
        return error;
    }
    std::memset(state.linePointer, nextByte(state), count);
    state.linePointer += count;
    return Error::None;
}

static_assert(kLongestPacket + static_cast<int>(kMovePiece) <= static_cast<int>(kLineSlack));

// Decodes packets that lie whole in the code buffer, up to the end of the line.
void decodeLoadedPackets(CodecState &state) {
    const BYTE *code = state.codePointer;
    const BYTE *end = code + state.codeBytesLeft;
    BYTE *to = state.linePointer;
    BYTE *lineEnd = to + state.lineBytesLeft;
    while (to < lineEnd && end - code > kLongestPacket) {
        const auto header = static_cast<signed char>(*code++);
        if (header >= 0) {
            const DWORD count = static_cast<DWORD>(header) + 1;
            copyInPieces(to, code, count);
            to += count;
            code += count;
        } else {
            const auto count = static_cast<DWORD>(1 - header);
            fillInPieces(to, *code++, count);
            to += count;
        }
    }
    state.codeBytesLeft = static_cast<DWORD>(end - code);
    state.codePointer += code - state.codePointer;
    state.linePointer = to;
    state.lineBytesLeft = static_cast<LONG>(lineEnd - to);
}

// Decodes one packet, wherever it lies.
Error decodePacket(CodecState &state) {
    if (const Error error = needCode(state); error != Error::None) {
        return error;
    }
    const auto header = static_cast<signed char>(nextByte(state));
    const int count = header >= 0 ? header + 1 : 1 - header;
    state.lineBytesLeft -= count;
    return header >= 0 ? copyLiterals(state, static_cast<DWORD>(count)) : repeatByte(state, static_cast<DWORD>(count));
}

} // namespace

Error decodePackBits(CodecState &state) {
    Error error = initDecodeBuffers(state);
    while (error == Error::None) {
        decodeLoadedPackets(state);
        if (state.lineBytesLeft > 0) {
            error = decodePacket(state);
        }
        if (error == Error::None && state.lineBytesLeft <= 0) {
            error = flushDataBuffer(state);
        }
    }
    return endOfRun(error);
}

} // namespace vellum
