// The drivers of the line coders: what stands between the lines (EOLs, tag bits, byte boundaries, EOFB), around strips
// and at the end of the image. Everything that belongs to a strip is in the code buffer, down to its last whole byte,
// before the next line is fetched: that is when the strip's bytes are counted.
#include "codec/ccitt_encode.h"

#include "codec/buffers.h"
#include "codec/ccitt_encode_lines.h"
#include "core/library_state.h"

#include <utility>

namespace vellum {
namespace {

// By design: five EOLs end a page of one-dimensional Group 3 code, six tagged ones a page of two-dimensional code.
constexpr int kEndingEols = 5;
constexpr int kEndingTaggedEols = 6;

constexpr unsigned kWholeByte = 0;
// Where in a byte the word begins that is to end on a byte boundary.
constexpr unsigned kEolStart = 4;       // 12 bits
constexpr unsigned kTaggedEolStart = 3; // 13 bits

// The option of a Group 3 key that has EOLs end on byte boundaries.
constexpr DWORD kFillBits = 0x40000;

constexpr LONG kLeastKFactor = 2;

// Where the current line stands.
enum class Place : BYTE { InStrip, EndsStrip, EndsImage };

// What the encoders of one run work on.
struct EncodeRun {
    EncodeRun(CodecState &codecState, CodeWriter::Flush flush) : state(codecState), writer(codecState, flush) {}

    [[nodiscard]] Place place() const {
        if (state.stripEnd == 0) {
            return Place::InStrip;
        }
        return state.currentLine < static_cast<DWORD>(state.image.biHeight) ? Place::EndsStrip : Place::EndsImage;
    }
    // An EOL of Group 3, with fill bits before it if the key has that option; start is where in a byte it begins then.
    void putEol(CodeWord eol, unsigned start) {
        if ((state.compressionKey & kFillBits) != 0) {
            writer.alignTo(start);
        }
        writer.put(eol);
        writer.makeRoom();
    }
    void putEols(int count, CodeWord eol, unsigned start) {
        for (int i = 0; i < count; ++i) {
            putEol(eol, start);
        }
    }

    CodecState &state;
    CodeWriter writer;
    LineRuns lists[2];
    LineRuns *line = &lists[0];      // the line being encoded
    LineRuns *reference = &lists[1]; // the line before
};

// Puts what a coding has behind the current line. Whether it ended its strip, whose code is handed over whole then.
template <class Coding>
bool endLine(EncodeRun &run, Coding &coding) {
    switch (run.place()) {
    case Place::InStrip:
        return false;
    case Place::EndsStrip:
        coding.endStrip(run);
        break;
    case Place::EndsImage:
        coding.endImage(run);
        break;
    }
    run.writer.handOver();
    return true;
}

// Encodes lines with a coding until the image is complete; the first one is in the line buffer. A coding has
// startStrip(), putLine(), and what comes behind the last line of a strip and of the image.
template <class Coding>
Error encodeLines(EncodeRun &run, Coding coding) {
    CodecState &state = run.state;
    for (bool stripStarts = true;;) {
        if (stripStarts) {
            coding.startStrip(run);
        }
        run.line->measure(state.lineBuffer);
        coding.putLine(run);
        std::swap(run.line, run.reference);
        stripStarts = endLine(run, coding);
        if (run.writer.error() != Error::None) {
            return run.writer.error();
        }
        const Error error = fillDataBuffer(state);
        if (error == Error::LastLinePassed && !stripStarts) {
            // The line function has no more lines: the one before was the last.
            coding.endImage(run);
            run.writer.handOver();
            return run.writer.error();
        }
        if (error != Error::None) {
            return endOfRun(error);
        }
    }
}

// Runs of white and black, every line on a byte boundary, nothing between them.
struct ModifiedHuffman {
    static void startStrip(EncodeRun &) {}
    static void putLine(EncodeRun &run) {
        encodeOneDimensionalLine(run.writer, *run.line);
        run.writer.alignTo(kWholeByte);
    }
    static void endStrip(EncodeRun &) {}
    static void endImage(EncodeRun &) {}
};

// The same behind EOLs, on byte boundaries only where strips begin.
struct Group3OneDimensional {
    static void startStrip(EncodeRun &) {}
    static void putLine(EncodeRun &run) {
        run.putEol(kEolCodeWord, kEolStart);
        encodeOneDimensionalLine(run.writer, *run.line);
    }
    static void endStrip(EncodeRun &run) { run.writer.alignTo(kWholeByte); }
    static void endImage(EncodeRun &run) {
        run.putEols(kEndingEols, kEolCodeWord, kEolStart);
        run.writer.alignTo(kWholeByte);
    }
};

// Lines behind EOLs with tag bits. Every strip can be decoded by itself: it begins with an EOL of its own and a
// one-dimensional line.
struct Group3TwoDimensional {
    LONG kFactor;
    LONG linesSinceOneDimensional = 0;

    void startStrip(EncodeRun &run) {
        linesSinceOneDimensional = 0;
        putTaggedEol(run);
    }
    void putLine(EncodeRun &run) {
        if (linesSinceOneDimensional == 0) {
            encodeOneDimensionalLine(run.writer, *run.line);
        } else {
            encodeTwoDimensionalLine(run.writer, *run.reference, *run.line);
        }
        linesSinceOneDimensional = (linesSinceOneDimensional + 1) % kFactor;
        if (run.place() != Place::EndsStrip) {
            putTaggedEol(run);
        }
    }
    static void endStrip(EncodeRun &run) { run.writer.alignTo(kWholeByte); }
    // By design: the EOL and tag of a line that does not come stay in front, then six begin on a fresh byte.
    static void endImage(EncodeRun &run) {
        run.writer.alignTo(kWholeByte);
        run.putEols(kEndingTaggedEols, kEolAnd1, kTaggedEolStart);
        run.writer.alignTo(kWholeByte);
    }

private:
    void putTaggedEol(EncodeRun &run) const {
        run.putEol(linesSinceOneDimensional == 0 ? kEolAnd1 : kEolAnd0, kTaggedEolStart);
    }
};

// Two-dimensional lines only; every strip begins below a white line and ends with EOFB.
struct Group4 {
    static void startStrip(EncodeRun &run) { run.reference->setWhite(); }
    static void putLine(EncodeRun &run) { encodeTwoDimensionalLine(run.writer, *run.reference, *run.line); }
    static void endStrip(EncodeRun &run) {
        run.writer.put(kEolCodeWord);
        run.writer.put(kEolCodeWord);
        run.writer.alignTo(kWholeByte);
    }
    static void endImage(EncodeRun &run) { endStrip(run); }
};

// A one-dimensional line between two EOLs, then two-dimensional ones without any. What ends the image comes when its
// strip has been closed (see endBlocks).
struct FramedMmr {
    bool firstLine = true;

    static void startStrip(EncodeRun &) {}
    void putLine(EncodeRun &run) {
        if (!firstLine) {
            encodeTwoDimensionalLine(run.writer, *run.reference, *run.line);
            return;
        }
        run.writer.put(kEolAnd1);
        encodeOneDimensionalLine(run.writer, *run.line);
        run.writer.put(kEolAnd0);
        firstLine = false;
    }
    static void endStrip(EncodeRun &) {}
    static void endImage(EncodeRun &) {}
};

bool isEmpty(const CodecState &state) {
    return state.image.biHeight == 0 || state.image.biWidth == 0;
}

bool isTooWide(const CodecState &state) {
    const LONG bytes = state.bytesPerLine;
    return bytes < 0 || bytes > kWidestCcittLine || state.image.biWidth < 0 || state.image.biWidth > bytes * 8;
}

// Fetches the first line and makes everything ready for it.
Error begin(EncodeRun &run) {
    if (isTooWide(run.state)) {
        return Error::BadCode;
    }
    for (LineRuns &runs : run.lists) {
        if (!runs.allocate(run.state.image.biWidth)) {
            return Error::NoMemory;
        }
    }
    const Error error = initEncodeBuffers(run.state);
    if (error == Error::None) {
        run.writer.start();
    }
    return error;
}

template <class Coding>
Error encodePlain(CodecState &state, Coding coding) {
    if (isEmpty(state)) {
        return Error::None;
    }
    EncodeRun run(state, flushCodeBuffer);
    const Error error = begin(run);
    return error == Error::None ? encodeLines(run, coding) : endOfRun(error);
}

// The six EOLs behind the last line, and the last block.
Error endBlocks(EncodeRun &run) {
    for (int i = 0; i < kEndingTaggedEols; ++i) {
        run.writer.put(kEolAnd1);
    }
    run.writer.alignTo(kWholeByte);
    run.writer.handOver();
    Error error = run.writer.error();
    if (error == Error::None && run.state.codePointer != run.state.codeBuffer) {
        error = flushCodeBlock(run.state);
    }
    if (error == Error::None) {
        // The strip was closed behind its last line; these bytes are its own, too.
        finishStrips(run.state);
    }
    return error;
}

} // namespace

Error encodeOneDimensional(CodecState &state) {
    const bool modifiedHuffman = (state.compressionKey & 0xFFFF) == (VELLUM_KEY_MODIFIED_HUFFMAN & 0xFFFF);
    return modifiedHuffman ? encodePlain(state, ModifiedHuffman{}) : encodePlain(state, Group3OneDimensional{});
}

Error encodeGroup3TwoDimensional(CodecState &state) {
    return encodePlain(state, Group3TwoDimensional{library.kFactor});
}

Error encodeGroup4(CodecState &state) {
    return encodePlain(state, Group4{});
}

Error encodeBlockFramedMmr(CodecState &state) {
    if (isEmpty(state)) {
        return Error::None;
    }
    EncodeRun run(state, flushCodeBlock);
    Error error = begin(run);
    if (error == Error::None) {
        error = encodeLines(run, FramedMmr{});
        return error == Error::None ? endBlocks(run) : error;
    }
    return endOfRun(error);
}

} // namespace vellum

extern "C" DWORD VELLUMAPI SetKfactor(LONG k) {
    if (k < vellum::kLeastKFactor) {
        return 0;
    }
    vellum::library.kFactor = k;
    return 1;
}
