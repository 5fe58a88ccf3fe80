// Image objects for tests: their fields byte by byte, files opened by plain handles, and a second reader of the
// headers, which takes one byte after the other.
#pragma once

#include "support/paths.h"
#include "vellum32.h"

#include <cstddef>
#include <cstring>
#include <optional>
#include <ostream>
#include <vector>

namespace vellum::test {

inline Bytes operator+(Bytes one, const Bytes &other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

// What a writer of headers is given.
inline IocaHeader pageHeader(WORD width = 1728, WORD height = 2268) {
    IocaHeader header;
    // What the writers do not take from the record they do not look at either.
    std::memset(&header, 0xAA, sizeof header);
    header.horizontalResolution = 3000;
    header.verticalResolution = 2000;
    header.width = width;
    header.height = height;
    return header;
}

// What stands before an image object in a MO:DCA stream.
inline const Bytes kIntroducer = {0xD3, 0xEE, 0xFB};

// The fields of an image object in the order in which they stand in it.
struct ImageObject {
    Bytes before = {};
    Bytes segment = {0x70, 0};
    Bytes content = {0x91, 1, 0xFF};
    Bytes size = {0x94, 9, 0, 0x0B, 0xB8, 0x07, 0xD0, 0x06, 0xC0, 0x08, 0xDC};
    Bytes encoding = {0x95, 2, 1, 1};
    Bytes element = {0x96, 1, 1};
    Bytes lookUp = {0x97, 1, 0};
    Bytes data = {0xFE, 0x92, 0x12, 0x34, 0x55, 0x66};

    [[nodiscard]] Bytes bytes() const {
        Bytes all;
        for (const Bytes *field : {&before, &segment, &content, &size, &encoding, &element, &lookUp, &data}) {
            all.insert(all.end(), field->begin(), field->end());
        }
        return all;
    }
};

// A file under a plain handle. Who closes the handle takes it over.
class PlainFile {
public:
    explicit PlainFile(const char *path, UINT flags = OF_READ) {
        OFSTRUCT opened = {};
        handle_ = OpenFile(path, &opened, flags);
    }
    PlainFile(const PlainFile &) = delete;
    PlainFile &operator=(const PlainFile &) = delete;
    ~PlainFile() {
        if (isOpen()) {
            _lclose(handle_);
        }
    }

    [[nodiscard]] HFILE get() const { return handle_; }
    [[nodiscard]] LONG position() const { return _llseek(handle_, 0, FILE_CURRENT); }
    [[nodiscard]] bool isOpen() const { return position() != -1; }
    void seek(LONG position) const { _llseek(handle_, position, FILE_BEGIN); }

private:
    HFILE handle_;
};

// How a reader left the record and the file.
struct HeaderRead {
    DWORD result = 0;
    std::vector<DWORD> fields; // as they stand in the record
    LONG position = -1;        // -1 when the file was closed
    bool operator==(const HeaderRead &) const = default;
};

inline void PrintTo(const HeaderRead &read, std::ostream *out) {
    *out << "result " << read.result << ", position " << read.position << ", fields";
    for (const DWORD field : read.fields) {
        *out << " " << field;
    }
}

inline std::vector<DWORD> fieldsOf(const IocaHeader &header) {
    return {header.segmentName,
            header.contentParameter,
            header.horizontalResolution,
            header.verticalResolution,
            header.width,
            header.height,
            header.compression,
            header.firstBlockLength,
            header.firstBlockPosition};
}

enum class Framing { Ioca, Modca };

inline DWORD callReader(Framing framing, HFILE file, IocaHeader *header) {
    return framing == Framing::Ioca ? ReadIOCAHeader(file, header) : ReadMODCAHeader(file, header);
}

// Reads the header in a file of these bytes, from this position on. The record is full of something else before.
inline HeaderRead readHeader(const Bytes &content, Framing framing = Framing::Ioca, LONG from = 0) {
    const TempFile file(content);
    const PlainFile opened(file.path());
    opened.seek(from);
    IocaHeader header;
    std::memset(&header, 0xAA, sizeof header);
    const DWORD result = callReader(framing, opened.get(), &header);
    return {result, fieldsOf(header), opened.position()};
}

// The second reader.
class NaiveReader {
public:
    NaiveReader(const Bytes &content, std::size_t from) : content_(content), at_(from) {}

    HeaderRead read(Framing framing) {
        bool closed = false;
        bool complete = framing == Framing::Ioca || findPicture();
        if (complete) {
            complete = findSegment();
            closed = !complete;
        }
        complete = complete && readFields();
        return {complete ? 1UL : 0UL, fieldsOf(header_), closed ? -1 : static_cast<LONG>(at_)};
    }

private:
    std::optional<DWORD> next() { return at_ < content_.size() ? std::optional<DWORD>(content_[at_++]) : std::nullopt; }

    bool findPicture() {
        Bytes last;
        for (int i = 0; i < 2048; ++i) {
            const auto byte = next();
            if (!byte) {
                return false;
            }
            last.push_back(static_cast<BYTE>(*byte));
            if (last.size() >= 3 && Bytes(last.end() - 3, last.end()) == Bytes{0xD3, 0xEE, 0xFB}) {
                return true;
            }
        }
        return false;
    }

    bool findSegment() {
        for (;;) {
            const auto byte = next();
            if (!byte || *byte == 0x70) {
                return byte.has_value();
            }
        }
    }

    // Reads so many bytes; nothing when the content ends before.
    std::optional<Bytes> take(DWORD count) {
        Bytes taken;
        while (taken.size() < count) {
            const auto byte = next();
            if (!byte) {
                return std::nullopt;
            }
            taken.push_back(static_cast<BYTE>(*byte));
        }
        return taken;
    }

    std::optional<DWORD> enter(DWORD identifier, DWORD least) {
        if (next() != identifier) {
            return std::nullopt;
        }
        const auto length = next();
        return length && *length >= least ? length : std::nullopt;
    }

    bool readName() {
        const auto length = next();
        if (!length) {
            return false;
        }
        if (*length >= 1 && *length <= 4) {
            const auto name = take(*length);
            if (!name) {
                return false;
            }
            for (const BYTE byte : *name) {
                header_.segmentName = header_.segmentName * 256 + byte;
            }
        }
        return true;
    }

    bool readContent() {
        const auto length = enter(0x91, 1);
        const auto first = length ? next() : std::nullopt;
        if (!first) {
            return false;
        }
        header_.contentParameter = static_cast<WORD>(*first);
        return take(*length - 1).has_value();
    }

    bool readSize() {
        const auto length = enter(0x94, 9);
        const auto first = length ? take(9) : std::nullopt;
        if (!first) {
            return false;
        }
        const auto word = [&first](std::size_t at) { return static_cast<WORD>((*first)[at] * 256 + (*first)[at + 1]); };
        header_.horizontalResolution = word(1);
        header_.verticalResolution = word(3);
        header_.width = word(5);
        header_.height = word(7);
        return take(*length - 9).has_value();
    }

    bool readEncoding() {
        const auto length = enter(0x95, 1);
        const auto first = length ? next() : std::nullopt;
        if (!first) {
            return false;
        }
        header_.compression = static_cast<WORD>(*first);
        return take(*length - 1).has_value();
    }

    bool readFields() {
        if (!readName() || !readContent() || !readSize() || !readEncoding()) {
            return false;
        }
        auto byte = next();
        for (const DWORD optional : {DWORD{0x96}, DWORD{0x97}}) {
            if (byte == optional) {
                const auto length = next();
                byte = length && take(*length) ? next() : std::nullopt;
            }
        }
        if (byte != DWORD{0xFE}) {
            return byte.has_value();
        }
        if (next() != DWORD{0x92}) {
            return false;
        }
        const auto length = take(2);
        if (!length) {
            return false;
        }
        header_.firstBlockLength = static_cast<WORD>((*length)[0] * 256 + (*length)[1]);
        header_.firstBlockPosition = static_cast<DWORD>(at_ - 4);
        return true;
    }

    const Bytes &content_;
    std::size_t at_;
    IocaHeader header_ = {};
};

inline HeaderRead readNaively(const Bytes &content, Framing framing = Framing::Ioca, std::size_t from = 0) {
    return NaiveReader(content, from).read(framing);
}

} // namespace vellum::test
