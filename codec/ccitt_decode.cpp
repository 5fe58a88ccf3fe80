// The drivers of the line decoders: what stands between the lines (EOLs, tag bits, byte boundaries, EOFB) and the
// delivery of the lines.
#include "codec/ccitt_decode.h"

#include "codec/bit_reader.h"
#include "codec/buffers.h"
#include "codec/ccitt_fast_lines.h"
#include "codec/ccitt_lines.h"

#include <utility>

namespace vellum {
namespace {

constexpr int kEolBits = 12;
constexpr unsigned kEol = 1; // 000000000001
constexpr int kZeroPrefixBits = 8;

enum class Kind : BYTE { OneDimensional, TwoDimensional };

// What the decoders of one run work on.
struct CcittRun {
    explicit CcittRun(CodecState &codecState, BitReader::Refill refill)
        : state(codecState), reader(codecState, refill), width(codecState.image.biWidth) {}

    CodecState &state;
    BitReader reader;
    LONG width;
    ChangingElements lists[2];
    ChangingElements *line = &lists[0];      // the line being decoded
    ChangingElements *reference = &lists[1]; // the line before, closed; white at the start of a strip
};

// Ordinary lines go the quick way, which says nothing but that it has done one; all others go the plain way.
bool passOrdinaryLine(CcittRun &run, Kind kind) {
    return kind == Kind::OneDimensional
               ? decodeFastOneDimensionalLine(run.reader, *run.line, run.width)
               : decodeFastTwoDimensionalLine(run.reader, *run.reference, *run.line, run.width);
}
LineResult decodePlainLine(CcittRun &run, Kind kind) {
    return kind == Kind::OneDimensional ? decodeOneDimensionalLine(run.reader, *run.line, run.width)
                                        : decodeTwoDimensionalLine(run.reader, *run.reference, *run.line, run.width);
}

// Reads one bit or a short word. False at the end of the stream.
[[nodiscard]] bool readBits(BitReader &reader, int count, unsigned &value) {
    if (!reader.refill()) {
        return false;
    }
    value = reader.peek(count);
    reader.take(count);
    return !reader.overrun();
}

// Decodes lines with a coding until the image is complete. A coding has startStrip() and nextLine(), which leaves a
// line with data in run.line, and kRefersToLineBefore.
template <class Coding>
Error decodeLines(CcittRun &run, Coding coding) {
    CodecState &state = run.state;
    for (bool stripStarts = true;;) {
        if (stripStarts) {
            run.reader.start();
            if (!run.reference->setWhite(run.width)) {
                return Error::NoMemory;
            }
            coding.startStrip();
        }
        if (const Error error = coding.nextLine(run); error != Error::None) {
            return error;
        }
        drawLine(*run.line, state.lineBuffer, state.bytesPerLine, run.width);
        if (const Error error = flushDataBuffer(state); error != Error::None) {
            return endOfRun(error);
        }
        if constexpr (Coding::kRefersToLineBefore) {
            std::swap(run.line, run.reference);
        }
        stripStarts = state.stripEnd != 0;
    }
}

// Runs of white and black without regard to the line before. Eight zero bits are the start of an EOL, also where no
// EOL belongs: they and the 1 bit behind them are passed over. EOLs with nothing between them make no lines.
struct OneDimensional {
    bool linesStartOnBytes;

    static constexpr bool kRefersToLineBefore = false;

    void startStrip() {}

    Error nextLine(CcittRun &run) {
        for (;;) {
            if (!passZeros(run.reader)) {
                return run.reader.error();
            }
            if (passOrdinaryLine(run, Kind::OneDimensional)) {
                if (linesStartOnBytes) {
                    run.reader.takeRestOfByte();
                }
                return Error::None;
            }
            const LineResult result = decodePlainLine(run, Kind::OneDimensional);
            if (result.end == LineEnd::Failure) {
                return result.error;
            }
            if (result.end == LineEnd::Zeros && !run.reader.takeZerosAndOne()) {
                return run.reader.error();
            }
            if (linesStartOnBytes) {
                run.reader.takeRestOfByte();
            }
            if (result.hasData) {
                return Error::None;
            }
        }
    }

private:
    // Passes over the EOL in front of a line, if there is one.
    [[nodiscard]] bool passZeros(BitReader &reader) const {
        if (!reader.refill()) {
            return false;
        }
        if (reader.peek(kZeroPrefixBits) != 0) {
            return true;
        }
        if (!reader.takeZerosAndOne()) {
            return false;
        }
        if (linesStartOnBytes) {
            reader.takeRestOfByte();
        }
        return true;
    }
};

// Lines behind EOLs with tag bits, 1 for a one-dimensional line and 0 for a two-dimensional one; lines without an EOL
// are of the coding's own kind.
struct Tagged {
    static constexpr bool kRefersToLineBefore = true;

    Kind kindWithoutEol;
    // EOFB (two EOLs without tag bits) ends the data.
    bool hasEofb;

    bool eolPassed = false; // the line before was cut short by an EOL, whose tag bit comes now

    void startStrip() { eolPassed = false; }

    Error nextLine(CcittRun &run) {
        for (;;) {
            Kind kind = kindWithoutEol;
            if (const Error error = passEol(run, kind); error != Error::None) {
                return error;
            }
            if (passOrdinaryLine(run, kind)) {
                return Error::None;
            }
            const LineResult result = decodePlainLine(run, kind);
            if (result.end == LineEnd::Failure) {
                return result.error;
            }
            if (result.end != LineEnd::Width) {
                if (!run.reader.takeZerosAndOne()) {
                    return run.reader.error();
                }
                eolPassed = true;
            }
            if (result.hasData) {
                return Error::None;
            }
        }
    }

private:
    // Passes over an EOL, if one comes, and its tag bit.
    Error passEol(CcittRun &run, Kind &kind) {
        BitReader &reader = run.reader;
        if (!reader.refill()) {
            return reader.error();
        }
        if (!eolPassed) {
            if (reader.peek(kZeroPrefixBits) != 0) {
                return Error::None;
            }
            if (!reader.takeZerosAndOne() || !reader.refill()) {
                return reader.error();
            }
        }
        eolPassed = false;
        unsigned tag = 0;
        if (hasEofb && reader.peek(kEolBits) == kEol && !reader.endsWithin(kEolBits)) {
            return Error::EofbUnexpected;
        }
        if (!readBits(reader, 1, tag)) {
            return reader.error();
        }
        kind = tag == 1 ? Kind::OneDimensional : Kind::TwoDimensional;
        return Error::None;
    }
};

// Two-dimensional lines only, with EOFB behind the last one.
struct Group4 {
    static constexpr bool kRefersToLineBefore = true;

    void startStrip() {}

    static Error nextLine(CcittRun &run) {
        if (passOrdinaryLine(run, Kind::TwoDimensional)) {
            return Error::None;
        }
        const LineResult result = decodePlainLine(run, Kind::TwoDimensional);
        switch (result.end) {
        case LineEnd::Width:
            return Error::None;
        case LineEnd::Zeros:
            return unexpectedEofb(run.reader);
        case LineEnd::RunZeros:
            return run.reader.endsWithin(kZeroPrefixBits) ? run.reader.error() : Error::BadCode;
        case LineEnd::Failure:
            return result.error;
        }
        return Error::BadCode;
    }

    // Eight zero bits before the last line: an EOFB, or damage.
    static Error unexpectedEofb(BitReader &reader) {
        for (int i = 0; i < 2; ++i) {
            unsigned word = 0;
            if (!readBits(reader, kEolBits, word)) {
                return reader.error();
            }
            if (word != kEol) {
                return Error::BadCode;
            }
        }
        return Error::EofbUnexpected;
    }
};

template <class Coding>
Error decodePlain(CodecState &state, Coding coding) {
    if (const Error error = initDecodeBuffers(state); error != Error::None) {
        return endOfRun(error);
    }
    CcittRun run(state, fillCodeBuffer);
    return decodeLines(run, coding);
}

} // namespace

Error decodeModifiedHuffman(CodecState &state) {
    return decodePlain(state, OneDimensional{true});
}

Error decodeGroup3OneDimensional(CodecState &state) {
    return decodePlain(state, OneDimensional{false});
}

Error decodeGroup3TwoDimensional(CodecState &state) {
    return decodePlain(state, Tagged{Kind::OneDimensional, false});
}

Error decodeGroup4(CodecState &state) {
    return decodePlain(state, Group4{});
}

Error decodeBlockFramedMmr(CodecState &state) {
    if (const Error error = initBlockDecodeBuffers(state); error != Error::None) {
        return endOfRun(error);
    }
    CcittRun run(state, fillCodeBlock);
    return decodeLines(run, Tagged{Kind::TwoDimensional, true});
}

} // namespace vellum
