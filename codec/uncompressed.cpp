// Compression 1: lines as they lie in the strips.
#include "codec/buffers.h"
#include "codec/byte_codecs.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

void passCode(CodecState &state, DWORD bytes) {
    state.codePointer += bytes;
    state.codeBytesLeft -= bytes;
}

// Delivers loaded lines up to the strip's last one, without it: all that deliverLine does for lines inside a strip.
Error deliverLinesInsideStrip(CodecState &state) {
    const auto bytes = static_cast<DWORD>(state.bytesPerLine);
    const LineFunc receive = state.lineFunction;
    const DWORD last = state.stripLastLine;
    DWORD current = state.currentLine;
    DWORD left = state.codeBytesLeft;
    DWORD result = 0;
    for (BYTE *line = state.codePointer; current < last && left >= bytes; line += bytes, ++current) {
        left -= bytes;
        result = receive != nullptr ? receive(line, current, state.userValue) : 0;
        if (result != 0) {
            break;
        }
    }
    passCode(state, state.codeBytesLeft - left);
    state.currentLine = current;
    return fromLineFunction(result);
}

// Delivers lines straight from the code buffer, as long as it holds whole ones. A line function may have changed the
// lines that it was given, so a strip that begins before the unread code is read again.
Error deliverLoadedLines(CodecState &state) {
    const auto bytes = static_cast<DWORD>(state.bytesPerLine);
    Error error = Error::None;
    while (error == Error::None && state.codeBytesLeft >= bytes) {
        error = deliverLinesInsideStrip(state);
        if (error == Error::None && state.codeBytesLeft >= bytes) {
            BYTE *line = state.codePointer;
            passCode(state, bytes);
            const BYTE *unread = state.codePointer;
            const DWORD span = state.bufferBase;
            error = deliverLine(state, line);
            if (error == Error::None && state.bufferBase == span && state.codePointer < unread) {
                error = reloadStrip(state);
            }
        }
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
