// Decoding through the public functions for tests: a line function that writes down what it receives, and owners for
// the handles that a decode needs.
#pragma once

#include "support/global_memory.h"
#include "support/paths.h"
#include "vellum32.h"

#include <cstddef>
#include <cstdint>
#include <ostream>
#include <string>

namespace vellum::test {

// What a line function was given. Lines must come without gaps from firstLine on.
struct LineLog {
    std::size_t lineBytes = 0;
    DWORD firstLine = 0;
    bool keepData = true; // false: the lines are counted and forgotten, for pages that would not fit into memory
    DWORD answer = 0;     // what the line function returns for line answerAt
    DWORD answerAt = 0;

    Bytes data;
    DWORD lines = 0;
    bool inOrder = true;

    static DWORD VELLUMAPI receive(BYTE *line, DWORD lineIndex, DWORD userValue) {
        auto &log = *reinterpret_cast<LineLog *>(static_cast<std::uintptr_t>(userValue));
        log.inOrder = log.inOrder && lineIndex == log.firstLine + log.lines;
        ++log.lines;
        if (log.keepData) {
            log.data.insert(log.data.end(), line, line + log.lineBytes);
        }
        return lineIndex == log.answerAt ? log.answer : 0;
    }
    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(this)); }
};

struct Outcome {
    DWORD result = 0;
    DWORD error = 0;
    bool operator==(const Outcome &) const = default;
};
inline constexpr Outcome kDecoded = {1, VELLUM_OK};
inline Outcome failedWith(DWORD error) {
    return {0, error};
}
inline void PrintTo(const Outcome &outcome, std::ostream *out) {
    *out << "result " << outcome.result << ", error " << outcome.error;
}

// An open TIFF, closed with the object; one in memory frees its block too.
class OpenedTiff {
public:
    explicit OpenedTiff(const std::string &path) : handle_(OpenTiffFile(path.c_str(), T_READ)) {}
    explicit OpenedTiff(const Bytes &bytes)
        : block_(makeBlock(bytes)), handle_(OpenTiffInMemory(block_, static_cast<DWORD>(bytes.size()), T_READ)) {}
    OpenedTiff(const OpenedTiff &) = delete;
    OpenedTiff &operator=(const OpenedTiff &) = delete;
    ~OpenedTiff() {
        if (handle_ != nullptr) {
            CloseTiffFile(handle_);
        }
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    [[nodiscard]] TiffHandle get() const { return handle_; }
    explicit operator bool() const { return handle_ != nullptr; }

private:
    HGLOBAL block_ = nullptr;
    TiffHandle handle_;
};

inline std::size_t packedLineBytes(DWORD width, DWORD bitsPerPixel) {
    return static_cast<std::size_t>((std::uint64_t{width} * bitsPerPixel + 7) / 8);
}

// Registers the image; whether that worked is for the caller to see.
inline bool registerImage(TiffHandle tiff, DWORD index) {
    SetTiffError(VELLUM_OK);
    return GetTiffImage(tiff, index) == 1;
}

// Decodes a registered image, or a part of it, into the log. The error number is spoilt beforehand, so that a decode
// that does not set it is found out.
inline Outcome decodeInto(LineLog &log, TiffHandle tiff, DWORD index, DWORD firstStrip = 0, DWORD lineCount = 0) {
    BITMAPINFOHEADER header{};
    if (GetTiffDimensions(tiff, index, &header) == 0) {
        log.lineBytes = packedLineBytes(static_cast<DWORD>(header.biWidth), header.biBitCount);
    }
    SetTiffError(VELLUM_EOFB_MISSING);
    const DWORD result = DecodeTiffImage(tiff, index, firstStrip, lineCount, log.userValue(), &LineLog::receive);
    return {result, TiffError()};
}

// A file opened for reading with a plain handle, as the raw decoders want it.
class RawFile {
public:
    explicit RawFile(const std::string &path) {
        OFSTRUCT name{};
        handle_ = OpenFile(path.c_str(), &name, OF_READ);
    }
    RawFile(const RawFile &) = delete;
    RawFile &operator=(const RawFile &) = delete;
    ~RawFile() {
        if (handle_ != HFILE_ERROR) {
            _lclose(handle_);
        }
    }
    [[nodiscard]] StreamHandle get() const { return handle_; }
    explicit operator bool() const { return handle_ != HFILE_ERROR; }

private:
    HFILE handle_ = HFILE_ERROR;
};

struct RawCode {
    DWORD offset = 0;
    DWORD width = 0;
    DWORD height = 0;
    DWORD key = VELLUM_KEY_GROUP4;
    DWORD fillOrder = 1;
};

inline Outcome decodeRawInto(LineLog &log, StreamHandle stream, const RawCode &code) {
    log.lineBytes = packedLineBytes(code.width, 1);
    SetTiffError(VELLUM_EOFB_MISSING);
    const DWORD result = DecodeCcittImageFrom(stream, code.offset, code.width, code.height, code.key, code.fillOrder,
                                              VELLUM_BYTE_ORDER_II, log.userValue(), &LineLog::receive);
    return {result, TiffError()};
}

inline Outcome decodeMmrInto(LineLog &log, StreamHandle stream, const RawCode &code) {
    log.lineBytes = packedLineBytes(code.width, 1);
    SetTiffError(VELLUM_EOFB_MISSING);
    const DWORD result = DecodeMMRImage(stream, code.offset, code.width, code.height, 0, code.fillOrder,
                                        VELLUM_BYTE_ORDER_II, log.userValue(), &LineLog::receive);
    return {result, TiffError()};
}

} // namespace vellum::test
