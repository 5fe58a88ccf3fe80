// The encoding side of the buffers: lines come in one at a time, code goes out by buffer-fulls, and the strip tables
// are filled in as strips end.
#include "codec/buffers.h"

#include "core/typed_transfer.h"
#include "support/byte_order.h"

#include <algorithm>

namespace vellum {
namespace {

// Writes entry [strip index] of one of the strip tables; an entry behind the table's end goes nowhere.
void recordStrip(HGLOBAL table, DWORD strip, DWORD value) {
    const GlobalView<BYTE> entries(table, 1);
    if (entries && strip < entries.bytes() / sizeof value) {
        std::memcpy(entries.get() + strip * sizeof value, &value, sizeof value);
    }
}

// Adds to an entry of the strip byte counts.
void addToStripBytes(const CodecState &state, DWORD strip, DWORD bytes) {
    const GlobalView<BYTE> entries(state.stripByteCounts, (std::size_t{strip} + 1) * sizeof bytes);
    if (entries) {
        bytes += load<DWORD>(entries.get() + strip * sizeof bytes);
        std::memcpy(entries.get() + strip * sizeof bytes, &bytes, sizeof bytes);
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

// The bytes are not used any more afterwards, so their bits are reversed in place.
bool writeCode(CodecState &state, BYTE *bytes, DWORD count, DWORD fillOrder) {
    if (fillOrder == static_cast<DWORD>(kReversedBits)) {
        reverseBits(bytes, count);
    }
    // A write of no bytes would cut the file off here; none is made.
    const Error error = writeValues(state.stream, kByte, count, bytes, kIntelOrder, 0);
    if (error != Error::None) {
        setError(error);
    }
    return error == Error::None;
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
    const LONG position = tellStream(state.stream);
    if (position == -1) {
        return Error::Io;
    }
    state.streamLimit = static_cast<DWORD>(position);
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

void finishStrips(CodecState &state) {
    const DWORD openBytes = state.streamPosition + state.bufferBase - state.codeBytesLeft;
    if (openBytes == 0) {
        return;
    }
    if (state.stripIndex < state.stripCount) {
        closeStrip(state);
    } else if (state.stripIndex > 0) {
        addToStripBytes(state, state.stripIndex - 1, openBytes);
    }
}

} // namespace vellum
