// The decoding side of the buffers: code comes in by spans, lines go out one at a time, and a strip that starts inside
// the loaded span is entered without a new read.
#include "codec/buffers.h"

#include "codec/strip_table.h"
#include "core/stream.h"
#include "support/byte_order.h"

#include <algorithm>
#include <optional>

namespace vellum {
namespace {

// What the buffer base is set to before anything is loaded: no offset can be taken for one inside the empty buffer.
constexpr DWORD kNothingLoaded = 0xFFFFFF;

constexpr DWORD kByteType = 1;
constexpr DWORD kBlockHeaderBytes = 4;

// Offsets from here on are entered by the code capacity's own span (see seekStartStrip).
constexpr DWORD kFarOffset = 32768;

// The compression 6 strips with JPEGProc 0 begin with 8 bytes that are no code.
constexpr DWORD kOldJpegPrefix = 8;

std::optional<DWORD> currentStripOffset(const CodecState &state) {
    auto offset = stripOffset(state, state.stripIndex);
    if (offset && state.compressionKey == VELLUM_KEY_JPEG && state.jpegProcess == 0) {
        *offset += kOldJpegPrefix;
    }
    return offset;
}

// Bytes of the code buffer that hold code.
DWORD loadedBytes(const CodecState &state) {
    return state.streamPosition >= state.bufferBase ? state.streamPosition - state.bufferBase : 0;
}

// Points into the loaded span, if the offset lies in it or just behind it.
bool enterLoadedSpan(CodecState &state, DWORD offset) {
    const DWORD loaded = loadedBytes(state);
    if (loaded == 0 || offset < state.bufferBase || offset - state.bufferBase > loaded) {
        return false;
    }
    const DWORD delta = offset - state.bufferBase;
    state.codePointer = state.codeBuffer + delta;
    state.codeBytesLeft = loaded - delta;
    return true;
}

// Loads the span that begins at an offset of the stream.
Error loadSpan(CodecState &state, DWORD offset) {
    state.streamPosition = offset;
    if (seekStream(state.stream, static_cast<LONG>(offset), 0) == -1) {
        return Error::Io;
    }
    return fillCodeBuffer(state) == Error::None ? Error::None : Error::Io;
}

} // namespace

DWORD lastLine(const CodecState &state) {
    return static_cast<DWORD>(state.image.biHeight) - 1;
}

Error allocateBuffers(CodecState &state, DWORD largestCapacity) {
    if (state.bytesPerLine < 0) {
        return Error::NoMemory;
    }
    const DWORD capacity = std::min(state.streamLimit, largestCapacity);
    const Size lineBufferSize = Size(static_cast<DWORD>(state.bytesPerLine)) + Size(kLineSlack);
    GlobalBlock block = GlobalBlock::allocate(lineBufferSize + Size(capacity) + Size(kCodeSlack));
    BYTE *start = block ? static_cast<BYTE *>(lockBlock(block.get())) : nullptr;
    if (start == nullptr) {
        return Error::NoMemory;
    }
    state.bufferBlock = block.release();
    state.codeCapacity = static_cast<LONG>(capacity);
    state.lineBufferSize = static_cast<DWORD>(state.bytesPerLine) + kLineSlack;
    state.lineBuffer = start;
    state.codeBuffer = start + state.lineBufferSize;
    state.codePointer = state.codeBuffer;
    state.codeBytesLeft = 0;
    state.streamPosition = 0;
    state.stripLastLine = std::min(state.currentLine + state.rowsPerStrip - 1, lastLine(state));
    state.stripEnd = 0;
    return Error::None;
}

Error initDecodeBuffers(CodecState &state) {
    if (const Error error = allocateBuffers(state, kPlainCodeCapacity); error != Error::None) {
        return error;
    }
    if (state.stripOffsets != nullptr) {
        state.bufferBase = kNothingLoaded;
        if ((state.stripIndex == 0 ? seekStripData(state) : seekStartStrip(state)) != Error::None) {
            return Error::Io;
        }
    } else if (fillCodeBuffer(state) != Error::None) {
        return Error::Io;
    }
    resetLine(state);
    return Error::None;
}

Error initBlockDecodeBuffers(CodecState &state) {
    if (const Error error = allocateBuffers(state, kFramedCodeCapacity); error != Error::None) {
        return error;
    }
    if (const Error error = fillCodeBlock(state); error != Error::None) {
        return error;
    }
    resetLine(state);
    return Error::None;
}

Error fillCodeBuffer(CodecState &state) {
    return fillCodeBufferUpTo(state, static_cast<DWORD>(state.codeCapacity));
}

Error fillCodeBufferUpTo(CodecState &state, DWORD mostBytes) {
    const DWORD readable = state.streamLimit > state.streamPosition ? state.streamLimit - state.streamPosition : 0;
    const DWORD count = std::min({static_cast<DWORD>(state.codeCapacity), mostBytes, readable});
    state.bufferBase = state.streamPosition;
    state.codeBytesLeft = count;
    state.streamPosition += count;
    state.codePointer = state.codeBuffer;
    if (count == 0) {
        return Error::UnexpectedEnd;
    }
    const bool read = LongRead(state.stream, kByteType, count, state.codeBuffer, kIntelOrder,
                               static_cast<LONG>(state.fillOrder)) != 0;
    return read ? Error::None : Error::Io;
}

Error fillCodeBlock(CodecState &state) {
    state.codeBytesLeft = 0;
    state.codePointer = state.codeBuffer;
    BYTE header[kBlockHeaderBytes] = {};
    if (state.stream <= 0 || !readBytes(state.stream, header, kBlockHeaderBytes)) {
        return Error::UnexpectedEnd;
    }
    if (header[0] != 0xFE || header[1] != 0x92) {
        return Error::UnexpectedEnd;
    }
    const auto capacity = static_cast<DWORD>(state.codeCapacity);
    const DWORD stated = header[2] * 256u + header[3];
    const DWORD length = stated == 0 ? capacity : std::min(stated, capacity);
    state.bufferBase = state.streamPosition;
    if (length == 0) {
        return Error::UnexpectedEnd;
    }
    state.codeBytesLeft = length;
    state.streamPosition += length;
    // By design: a last block may promise more than the file holds; what is missing reads as zeros.
    std::fill_n(state.codeBuffer, length, BYTE{0});
    (void)readBytes(state.stream, state.codeBuffer, length);
    if (state.fillOrder == 2) {
        reverseBits(state.codeBuffer, length);
    }
    return Error::None;
}

Error seekStripData(CodecState &state) {
    const auto offset = currentStripOffset(state);
    if (!offset) {
        return Error::Io;
    }
    return enterLoadedSpan(state, *offset) ? Error::None : loadSpan(state, *offset);
}

Error reloadStrip(CodecState &state) {
    const auto offset = currentStripOffset(state);
    return offset ? loadSpan(state, *offset) : Error::Io;
}

Error seekStartStrip(CodecState &state) {
    const auto offset = currentStripOffset(state);
    if (!offset) {
        return Error::Io;
    }
    // By design: a run that starts behind the first strip loads the span that the file's first strip begins, or for far
    // strips the span behind one capacity of code: files of ordinary pages are read from the same places, whichever
    // strip a program asks for. A strip outside that span is positioned on directly.
    const auto capacity = static_cast<DWORD>(state.codeCapacity);
    const DWORD spanStart = *offset < kFarOffset ? stripOffset(state, 0).value_or(*offset) : capacity;
    const bool inSpan = spanStart <= *offset && *offset - spanStart < capacity;
    if (inSpan && loadSpan(state, spanStart) == Error::None && enterLoadedSpan(state, *offset)) {
        return Error::None;
    }
    return seekStripData(state);
}

Error enterNextStrip(CodecState &state) {
    if (state.currentLine >= static_cast<DWORD>(state.image.biHeight)) {
        return Error::LastLinePassed;
    }
    ++state.stripIndex;
    const DWORD linesBehind = lastLine(state) - state.stripLastLine;
    state.stripLastLine += std::min(state.rowsPerStrip, linesBehind);
    return seekStripData(state) == Error::None ? Error::None : Error::Io;
}

void freeCodecBuffers(CodecState &state) {
    freeLockedBlock(state.bufferBlock);
    freeBlock(state.stripOffsets);
    freeBlock(state.stripByteCounts);
    for (HGLOBAL &block : state.workBlocks) {
        freeBlock(block);
    }
}

} // namespace vellum
