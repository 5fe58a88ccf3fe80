// The code and line buffers of a CodecState: what the exported buffer operations do.
//
// All of them return an error number; Error::LastLinePassed says that the image is complete.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

constexpr DWORD kPlainCodeCapacity = 32767;
constexpr DWORD kFramedCodeCapacity = 65520;
// A codec may write this far past the end of a line: PackBits packets are not split at line ends.
constexpr DWORD kLineSlack = 256;
// A codec may read this far past the end of the code.
constexpr DWORD kCodeSlack = 100;

// What both init operations begin with: one locked block for both buffers, and the bounds of the first strip.
Error allocateBuffers(CodecState &state, DWORD largestCapacity);

// Starts the line buffer afresh.
inline void resetLine(CodecState &state) {
    state.lineBytesLeft = state.bytesPerLine;
    state.pixelsLeft = static_cast<DWORD>(state.image.biWidth);
    state.linePointer = state.lineBuffer;
}

// Index of the image's last line.
DWORD lastLine(const CodecState &state);

Error initDecodeBuffers(CodecState &state);
Error initBlockDecodeBuffers(CodecState &state);
Error fillCodeBuffer(CodecState &state);
// The same with at most so many bytes, for codecs that know how much they can use.
Error fillCodeBufferUpTo(CodecState &state, DWORD mostBytes);
Error fillCodeBlock(CodecState &state);

// Delivers a finished line, which lies in the line buffer or, whole, in the code buffer; then moves to the next strip
// if the line closed one. A result of the line function leaves the state as it was.
Error enterNextStrip(CodecState &state);
inline Error deliverLine(CodecState &state, BYTE *line) {
    if (state.lineFunction != nullptr) {
        const DWORD result = state.lineFunction(line, state.currentLine, state.userValue);
        if (result != 0) {
            return fromLineFunction(result);
        }
    }
    resetLine(state);
    state.stripEnd = state.currentLine == state.stripLastLine ? 1 : 0;
    ++state.currentLine;
    return state.stripEnd == 0 ? Error::None : enterNextStrip(state);
}
inline Error flushDataBuffer(CodecState &state) {
    return deliverLine(state, state.lineBuffer);
}

Error initEncodeBuffers(CodecState &state);
Error fillDataBuffer(CodecState &state);
Error flushCodeBuffer(CodecState &state);
Error flushCodeBlock(CodecState &state);

// Behind the closing flush of a run: the strip that a line function broke off gets its entries, and code that came
// behind the last strip's end is counted to it.
void finishStrips(CodecState &state);

// Moves the code buffer to the start of the current strip.
Error seekStripData(CodecState &state);

// Reads the current strip from its start, whatever the code buffer holds.
Error reloadStrip(CodecState &state);

// The same as seekStripData for a run that starts behind the first strip.
Error seekStartStrip(CodecState &state);

// Unlocks and frees everything that the run has allocated.
void freeCodecBuffers(CodecState &state);

// Frees a state's buffers at the end of a run, whichever way it ends.
class CodecBuffers {
public:
    explicit CodecBuffers(CodecState &state) : state_(state) {}
    CodecBuffers(const CodecBuffers &) = delete;
    CodecBuffers &operator=(const CodecBuffers &) = delete;
    ~CodecBuffers() { freeCodecBuffers(state_); }

private:
    CodecState &state_;
};

// What a codec returns for the error that ended its run: the end of the image is success.
constexpr Error endOfRun(Error error) {
    return error == Error::LastLinePassed ? Error::None : error;
}

} // namespace vellum
