// The encoding side of the buffers: lines come in one at a time, code goes out by buffer-fulls, and the strip tables
// are filled in as strips end.
#include "codec/buffers.h"

#include "core/stream.h"
#include "support/byte_order.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD kByteType = 1;

// Writes entry [strip index] of one of the strip tables; an entry behind the table's end goes nowhere.
void recordStrip(HGLOBAL table, DWORD strip, DWORD value) {
    const GlobalView<BYTE> entries(table, 1);
    if (entries && strip < entries.bytes() / sizeof value) {
        std::memcpy(entries.get() + strip * sizeof value, &value, sizeof value);
    }
}

// Notes the size of the strip that the last line closed and where the next one begins.
void closeStrip(CodecState &state) {
    recordStrip(state.stripOffsets, state.stripIndex, state.streamLimit);
    state.streamPosition += state.bufferBase - state.codeBytesLeft;
    recordStrip(state.stripByteCounts, state.stripIndex, state.streamPosition);
    const DWORD linesBehind = lastLine(state) - state.stripLastLine;
    state.stripLastLine += std::min(state.rowsPerStrip, linesBehind);
    state.streamLimit += state.streamPosition;
    ++state.stripIndex;
    state.streamPosition = 0;
    state.bufferBase = state.codeBytesLeft;
}

DWORD usedBytes(const CodecState &state) {
    return static_cast<DWORD>(state.codeCapacity) - state.codeBytesLeft;
}

bool writeCode(CodecState &state, BYTE *bytes, DWORD count, DWORD fillOrder) {
    // A write of no bytes would cut the file off here.
    return count == 0 || LongWrite(state.stream, static_cast<LONG>(kByteType), count, bytes, kIntelOrder,
                                   static_cast<LONG>(fillOrder)) != 0;
}

void resetCode(CodecState &state) {
    state.streamPosition += state.bufferBase - state.codeBytesLeft;
    state.bufferBase = static_cast<DWORD>(state.codeCapacity);
    state.codePointer = state.codeBuffer;
    state.codeBytesLeft = static_cast<DWORD>(state.codeCapacity);
}

} // namespace

Error initEncodeBuffers(CodecState &state) {
    state.currentLine = 0;
    state.stripIndex = 0;
    state.streamLimit = kPlainCodeCapacity;
    if (const Error error = allocateBuffers(state, kPlainCodeCapacity); error != Error::None) {
        return error;
    }
    state.codeBytesLeft = state.bufferBase = static_cast<DWORD>(state.codeCapacity);
    state.streamLimit = static_cast<DWORD>(tellStream(state.stream));
    return fillDataBuffer(state);
}

Error fillDataBuffer(CodecState &state) {
    if (state.stripEnd != 0) {
        closeStrip(state);
        if (state.currentLine >= static_cast<DWORD>(state.image.biHeight)) {
            return Error::LastLinePassed;
        }
    }
    resetLine(state);
    state.stripEnd = state.currentLine == state.stripLastLine ? 1 : 0;
    const DWORD line = state.currentLine++;
    if (state.lineFunction == nullptr) {
        return Error::None;
    }
    return fromLineFunction(state.lineFunction(state.lineBuffer, line, state.userValue));
}

Error flushCodeBuffer(CodecState &state) {
    if (!writeCode(state, state.codeBuffer, usedBytes(state), state.fillOrder)) {
        return Error::Io;
    }
    resetCode(state);
    return Error::None;
}

Error flushCodeBlock(CodecState &state) {
    const DWORD used = usedBytes(state);
    BYTE header[] = {0xFE, 0x92, static_cast<BYTE>(used >> 8), static_cast<BYTE>(used)};
    if (!writeCode(state, header, sizeof header, 1) || !writeCode(state, state.codeBuffer, used, state.fillOrder)) {
        return Error::Io;
    }
    resetCode(state);
    return Error::None;
}

} // namespace vellum
