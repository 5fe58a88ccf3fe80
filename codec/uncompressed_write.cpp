// Compression 1: lines as they come, one behind the other.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "core/stream.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace vellum {
namespace {

void passCode(CodecState &state, DWORD bytes) {
    state.codePointer += bytes;
    state.codeBytesLeft -= bytes;
}

// Fetches lines into the line buffer and cuts them where the code buffer ends: for lines that it cannot hold.
Error writeLongLines(CodecState &state) {
    Error error = initEncodeBuffers(state);
    while (error == Error::None) {
        const DWORD piece = std::min(static_cast<DWORD>(state.lineBytesLeft), state.codeBytesLeft);
        std::memcpy(state.codePointer, state.linePointer, piece);
        passCode(state, piece);
        state.linePointer += piece;
        state.lineBytesLeft -= static_cast<LONG>(piece);
        error = state.codeBytesLeft == 0 ? flushCodeBuffer(state) : fillDataBuffer(state);
    }
    return error;
}

// Has the next line written where it belongs in the code buffer: a line function sees of the line buffer only the
// address that it is given.
Error fetchIntoCode(CodecState &state) {
    BYTE *lineBuffer = std::exchange(state.lineBuffer, state.codePointer);
    const Error error = fillDataBuffer(state);
    state.lineBuffer = lineBuffer;
    return error;
}

// The code goes out in whole lines, and in one piece of a stream's transfers if it can.
bool roomForLine(const CodecState &state, DWORD bytes) {
    const DWORD used = static_cast<DWORD>(state.codeCapacity) - state.codeBytesLeft;
    return used == 0 || used + bytes <= kTransferPiece;
}

// Fetches lines up to the strip's last one, without it, as long as there is room: all that fillDataBuffer does for
// lines inside a strip.
Error fetchInsideStrip(CodecState &state, DWORD bytes) {
    const LineFunc supply = state.lineFunction;
    const DWORD last = supply != nullptr ? state.stripLastLine : 0;
    DWORD result = 0;
    while (state.currentLine < last && roomForLine(state, bytes)) {
        result = supply(state.codePointer, state.currentLine++, state.userValue);
        if (result != 0) {
            break;
        }
        passCode(state, bytes);
    }
    return fromLineFunction(result);
}

Error writeShortLines(CodecState &state) {
    const auto bytes = static_cast<DWORD>(state.bytesPerLine);
    Error error = initEncodeBuffers(state);
    if (error == Error::None) {
        std::memcpy(state.codePointer, state.lineBuffer, bytes);
    }
    while (error == Error::None) {
        passCode(state, bytes);
        if (state.stripEnd == 0) {
            error = fetchInsideStrip(state, bytes);
        }
        if (error == Error::None && !roomForLine(state, bytes)) {
            error = flushCodeBuffer(state);
        }
        if (error == Error::None) {
            error = fetchIntoCode(state);
        }
    }
    return error;
}

} // namespace

Error writeUncompressed(CodecState &state) {
    if (state.image.biHeight == 0 || state.bytesPerLine == 0) {
        return Error::None;
    }
    const bool fits = static_cast<DWORD>(state.bytesPerLine) <= kPlainCodeCapacity - kLineSlack;
    return endOfRun(fits ? writeShortLines(state) : writeLongLines(state));
}

} // namespace vellum
