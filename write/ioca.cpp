// The framing of a bilevel image as an IOCA image segment, alone or behind a MO:DCA structured field introducer:
// headers and tails are written around, and headers read from in front of, the MMR blocks of an image. Works on files
// of the operating system, at their current position; every number in the stream has its high byte first.
#include "core/error.h"
#include "core/stream.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <initializer_list>
#include <optional>
#include <utility>

namespace vellum {
namespace {

// The fields of a segment, each followed by the length of its parameters.
enum Field : BYTE {
    kBeginSegment = 0x70,
    kEndSegment = 0x71,
    kBeginContent = 0x91,
    kEndContent = 0x93,
    kImageSize = 0x94,
    kImageEncoding = 0x95,
    kElementSize = 0x96,
    kLookUpTable = 0x97,
};

// A data block begins with these two and its length in 16 bits.
constexpr BYTE kDataBlock = 0xFE;
constexpr BYTE kDataBlockKind = 0x92;
constexpr DWORD kDataBlockHeader = 4;

constexpr BYTE kBeginPicture[] = {0xD3, 0xEE, 0xFB};
constexpr BYTE kEndPicture[] = {0xD3, 0xA9, 0xC7};
constexpr DWORD kSearchedForPicture = 2048;

constexpr DWORD kLongestName = 4;
constexpr DWORD kImageSizeBytes = 9;

// Where WriteMODCATail puts the length, and from where that counts.
constexpr LONG kLengthAt = 28;

// Memory streams have other handles, and no end that a search could come to.
bool isFile(HFILE file) {
    return file > 0;
}

// ---------------------------------------------------------------- reading

// Hands out a file's bytes one by one without a system call for each; putBack() then leaves the file where reading them
// singly would have left it.
class ReadAhead {
public:
    explicit ReadAhead(HFILE file) : file_(file) {}

    // Nothing at the end of the file, and when it cannot be read.
    std::optional<BYTE> next() {
        if (taken_ == filled_ && !fill()) {
            return std::nullopt;
        }
        return buffer_[taken_++];
    }

    // A big-endian number of this many bytes, 4 at most.
    std::optional<DWORD> number(DWORD bytes) {
        DWORD value = 0;
        for (; bytes > 0; --bytes) {
            const auto byte = next();
            if (!byte) {
                return std::nullopt;
            }
            value = value << 8 | *byte;
        }
        return value;
    }

    bool skip(DWORD bytes) {
        for (; bytes > 0; --bytes) {
            if (!next()) {
                return false;
            }
        }
        return true;
    }

    // Takes bytes until one has this value, that one too. False when the file ends or fails before.
    bool skipBehind(BYTE value) {
        do {
            const BYTE *from = buffer_.data() + taken_;
            if (const void *found = std::memchr(from, value, filled_ - taken_); found != nullptr) {
                taken_ += static_cast<DWORD>(static_cast<const BYTE *>(found) - from) + 1;
                return true;
            }
        } while (fill());
        return false;
    }

    // Whether the last byte that was not to be had lies behind the end, and not in a place that cannot be read.
    [[nodiscard]] bool ended() const { return ended_; }

    // Where the next byte lies in the file.
    [[nodiscard]] std::optional<DWORD> position() const {
        const LONG ahead = tellStream(file_);
        return ahead == kFailed ? std::nullopt : std::optional(static_cast<DWORD>(ahead) - (filled_ - taken_));
    }

    bool putBack() {
        const DWORD unread = std::exchange(filled_, 0) - std::exchange(taken_, 0);
        return unread == 0 || seekStream(file_, -static_cast<LONG>(unread), FILE_CURRENT) != kFailed;
    }

private:
    static constexpr LONG kFailed = -1;

    bool fill() {
        const LONG read = readStream(file_, buffer_.data(), static_cast<LONG>(buffer_.size()));
        ended_ = read == 0;
        taken_ = 0;
        filled_ = read > 0 ? static_cast<DWORD>(read) : 0;
        return filled_ > 0;
    }

    HFILE file_;
    DWORD taken_ = 0;
    DWORD filled_ = 0;
    bool ended_ = false;
    std::array<BYTE, 2048> buffer_;
};

// Enters a field that must come next and have at least so many bytes of parameters. Result: how many it has.
std::optional<DWORD> enterField(ReadAhead &bytes, Field field, DWORD leastBytes) {
    if (bytes.next() != field) {
        return std::nullopt;
    }
    const auto length = bytes.next();
    return length && *length >= leastBytes ? std::optional<DWORD>(*length) : std::nullopt;
}

// By design: a name of more than 4 bytes is not stepped over, so that a segment which has one is not read.
bool readName(ReadAhead &bytes, IocaHeader &header) {
    const auto length = bytes.next();
    if (!length || *length == 0 || *length > kLongestName) {
        return length.has_value();
    }
    const auto name = bytes.number(*length);
    header.segmentName = name.value_or(0);
    return name.has_value();
}

// A field of which the first byte counts.
bool readFirstParameter(ReadAhead &bytes, Field field, WORD &value) {
    const auto length = enterField(bytes, field, 1);
    const auto first = length ? bytes.next() : std::nullopt;
    if (!first) {
        return false;
    }
    value = *first;
    return bytes.skip(*length - 1);
}

bool readWord(ReadAhead &bytes, WORD &value) {
    const auto number = bytes.number(sizeof value);
    value = static_cast<WORD>(number.value_or(0));
    return number.has_value();
}

bool readImageSize(ReadAhead &bytes, IocaHeader &header) {
    const auto length = enterField(bytes, kImageSize, kImageSizeBytes);
    if (!length || !bytes.skip(1)) { // the unit base
        return false;
    }
    WORD resolutionX = 0;
    WORD resolutionY = 0;
    WORD width = 0;
    WORD height = 0;
    if (!readWord(bytes, resolutionX) || !readWord(bytes, resolutionY) || !readWord(bytes, width) ||
        !readWord(bytes, height)) {
        return false;
    }
    header.horizontalResolution = resolutionX;
    header.verticalResolution = resolutionY;
    header.width = width;
    header.height = height;
    return bytes.skip(*length - kImageSizeBytes);
}

// Steps over a field that may be there. Result: the first byte of what follows.
std::optional<BYTE> passOptional(ReadAhead &bytes, std::optional<BYTE> found, Field field) {
    if (found != field) {
        return found;
    }
    const auto length = bytes.next();
    return length && bytes.skip(*length) ? bytes.next() : std::nullopt;
}

bool readDataBlock(ReadAhead &bytes, IocaHeader &header) {
    if (bytes.next() != kDataBlockKind) {
        return false;
    }
    const auto length = bytes.number(sizeof header.firstBlockLength);
    const auto position = length ? bytes.position() : std::nullopt;
    if (!position) {
        return false;
    }
    header.firstBlockLength = static_cast<WORD>(*length);
    header.firstBlockPosition = *position - kDataBlockHeader;
    return true;
}

bool readFields(ReadAhead &bytes, IocaHeader &header) {
    if (!readName(bytes, header) || !readFirstParameter(bytes, kBeginContent, header.contentParameter) ||
        !readImageSize(bytes, header) || !readFirstParameter(bytes, kImageEncoding, header.compression)) {
        return false;
    }
    auto behind = passOptional(bytes, bytes.next(), kElementSize);
    behind = passOptional(bytes, behind, kLookUpTable);
    if (!behind) {
        return false;
    }
    // By design: a segment without data is a header too; its caller finds the position 0.
    return *behind != kDataBlock || readDataBlock(bytes, header);
}

bool readSegment(HFILE file, ReadAhead &bytes, IocaHeader &header) {
    if (!bytes.skipBehind(kBeginSegment)) {
        if (bytes.ended()) {
            // By design: callers that look for a segment in vain rely on having nothing left to close.
            closeStream(file);
        }
        return false;
    }
    const bool complete = readFields(bytes, header);
    return bytes.putBack() && complete;
}

// Takes bytes up to the end of the introducer.
bool findPicture(ReadAhead &bytes) {
    DWORD matched = 0;
    for (DWORD searched = 0; searched < kSearchedForPicture; ++searched) {
        const auto byte = bytes.next();
        if (!byte) {
            return false;
        }
        matched = *byte == kBeginPicture[matched] ? matched + 1 : *byte == kBeginPicture[0] ? 1 : 0;
        if (matched == sizeof kBeginPicture) {
            return true;
        }
    }
    return false;
}

// ---------------------------------------------------------------- writing

// Puts a header together.
class HeaderBytes {
public:
    HeaderBytes &add(std::initializer_list<BYTE> bytes) {
        std::copy(bytes.begin(), bytes.end(), bytes_.begin() + size_);
        size_ += bytes.size();
        return *this;
    }
    HeaderBytes &addWord(WORD value) { return add({static_cast<BYTE>(value >> 8), static_cast<BYTE>(value)}); }

    HeaderBytes &addSegment(const IocaHeader &header) {
        return add({kBeginSegment, 0})
            .add({kBeginContent, 1, 0xFF})
            .add({kImageSize, kImageSizeBytes, 0}) // the unit base: ten inches
            .addWord(header.horizontalResolution)
            .addWord(header.verticalResolution)
            .addWord(header.width)
            .addWord(header.height)
            .add({kImageEncoding, 2, 1, 1}) // MMR, top to bottom
            .add({kElementSize, 1, 1})
            .add({kLookUpTable, 1, 0});
    }

    [[nodiscard]] const BYTE *data() const { return bytes_.data(); }
    [[nodiscard]] DWORD size() const { return static_cast<DWORD>(size_); }

private:
    std::array<BYTE, 29> bytes_ = {};
    std::size_t size_ = 0;
};

bool write(HFILE file, const BYTE *bytes, DWORD count) {
    return isFile(file) && writeStream(file, bytes, count) == static_cast<LONG>(count);
}

DWORD writeHeader(HFILE file, const HeaderBytes &bytes) {
    return write(file, bytes.data(), bytes.size()) ? 1 : failed(Error::Io);
}

bool writeSegmentEnd(HFILE file) {
    constexpr BYTE kEnd[] = {kEndContent, 0, kEndSegment, 0};
    return write(file, kEnd, sizeof kEnd);
}

} // namespace
} // namespace vellum

using namespace vellum;

extern "C" {

DWORD VELLUMAPI ReadIOCAHeader(HFILE file, IocaHeader *header) {
    if (header == nullptr) {
        return 0;
    }
    *header = {};
    ReadAhead bytes(file);
    return isFile(file) && readSegment(file, bytes, *header) ? 1 : 0;
}

DWORD VELLUMAPI ReadMODCAHeader(HFILE file, IocaHeader *header) {
    if (header == nullptr) {
        return 0;
    }
    *header = {};
    ReadAhead bytes(file);
    if (!isFile(file)) {
        return 0;
    }
    if (!findPicture(bytes)) {
        bytes.putBack();
        return 0;
    }
    return readSegment(file, bytes, *header) ? 1 : 0;
}

DWORD VELLUMAPI WriteIOCAHeader(HFILE file, const IocaHeader *header) {
    return header != nullptr ? writeHeader(file, HeaderBytes().addSegment(*header)) : failed(Error::Io);
}

DWORD VELLUMAPI WriteMODCAHeader(HFILE file, const IocaHeader *header) {
    if (header == nullptr) {
        return failed(Error::Io);
    }
    return writeHeader(file,
                       HeaderBytes().add({kBeginPicture[0], kBeginPicture[1], kBeginPicture[2]}).addSegment(*header));
}

DWORD VELLUMAPI WriteIOCATail(HFILE file) {
    return writeSegmentEnd(file) ? 1 : 0;
}

DWORD VELLUMAPI WriteMODCATail(HFILE file) {
    const LONG end = isFile(file) ? tellStream(file) : -1;
    if (end == -1) {
        return failed(Error::Io);
    }
    // By design: only the last write counts. The place for the length may be one that the file does not have.
    const WORD length = static_cast<WORD>(end - kLengthAt);
    const BYTE high = static_cast<BYTE>(length >> 8);
    const BYTE low = static_cast<BYTE>(length);
    seekStream(file, kLengthAt, FILE_BEGIN);
    write(file, &high, 1);
    write(file, &low, 1);
    seekStream(file, end, FILE_BEGIN);
    writeSegmentEnd(file);
    return write(file, kEndPicture, sizeof kEndPicture) ? 1 : failed(Error::Io);
}

} // extern "C"
