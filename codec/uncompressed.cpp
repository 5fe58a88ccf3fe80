// Compression 1: lines as they lie in the strips.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

// Delivers lines straight from the code buffer, as long as it holds whole ones and the strip lasts.
Error deliverLoadedLines(CodecState &state) {
    const auto bytes = static_cast<DWORD>(state.bytesPerLine);
    Error error = Error::None;
    while (error == Error::None && state.codeBytesLeft >= bytes) {
        BYTE *line = state.codePointer;
        state.codePointer += bytes;
        state.codeBytesLeft -= bytes;
        error = deliverLine(state, line);
    }
    return error;
}

// How much to read when a line lacks so many bytes: these, and whole lines behind them, so that the next lines are not
// divided. Code from memory is moved in spans that leave room for other things in the processor's first cache.
DWORD usefulBytes(const CodecState &state, DWORD lacking) {
    constexpr DWORD kMemorySpan = 6144;
    const auto capacity = static_cast<DWORD>(state.codeCapacity);
    const auto bytes = static_cast<DWORD>(state.bytesPerLine);
    const DWORD span = state.stream < 0 ? std::min(capacity, std::max(bytes, kMemorySpan)) : capacity;
    const DWORD useful = lacking < span ? lacking + (span - lacking) / bytes * bytes : lacking;
    return useful == 0 ? capacity : useful;
}

// Puts a line together that the end of the code buffer divides.
Error deliverDividedLine(CodecState &state) {
    while (state.lineBytesLeft > 0) {
        const DWORD piece = std::min(static_cast<DWORD>(state.lineBytesLeft), state.codeBytesLeft);
        std::memcpy(state.linePointer, state.codePointer, piece);
        state.linePointer += piece;
        state.lineBytesLeft -= static_cast<LONG>(piece);
        state.codePointer += piece;
        state.codeBytesLeft -= piece;
        if (state.lineBytesLeft > 0) {
            const DWORD useful = usefulBytes(state, static_cast<DWORD>(state.lineBytesLeft));
            if (const Error error = fillCodeBufferUpTo(state, useful); error != Error::None) {
                return error;
            }
        }
    }
    return flushDataBuffer(state);
}

} // namespace

Error readUncompressed(CodecState &state) {
    Error error = initDecodeBuffers(state);
    while (error == Error::None) {
        error = deliverLoadedLines(state);
        if (error == Error::None && state.codeBytesLeft == 0) {
            error = fillCodeBufferUpTo(state, usefulBytes(state, 0));
        } else if (error == Error::None) {
            error = deliverDividedLine(state);
        }
    }
    return endOfRun(error);
}

} // namespace vellum
