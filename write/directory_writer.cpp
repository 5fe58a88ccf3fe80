// A directory in memory, in the form that it has in a file. Values that need more than 4 bytes go first, in ascending
// order of tags, then the entries; nothing is padded, so a directory may begin at an odd offset.
#include "write/directory_writer.h"

#include "core/image_directory.h"
#include "core/typed_transfer.h"
#include "support/byte_order.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kEntryBytes = 12;
constexpr DWORD kFieldBytes = 4;
// Nothing can be found again behind this.
constexpr DWORD kLastOffset = 0x7FFFFFFF;

// Where a record of the directory lies, in the order of the file: by tag, and of equal tags the first one first.
struct SortKey {
    DWORD tagAndOrdinal;
    DWORD position;

    friend bool operator<(const SortKey &a, const SortKey &b) { return a.tagAndOrdinal < b.tagAndOrdinal; }
};

std::uint64_t valueBytes(const RecordHead &record) {
    return std::uint64_t{record.count} * typeSize(record.type);
}

// Values that fit into the field stand there.
Size outsideBytes(const RecordHead &record) {
    const std::uint64_t bytes = valueBytes(record);
    return bytes > kFieldBytes ? Size(bytes) : Size(0);
}

class DirectoryBytes {
public:
    DirectoryBytes(const ImageDirectory &directory, WORD byteOrder) : directory_(directory), byteOrder_(byteOrder) {}

    // Lays the directory out for a place in the stream.
    Error layOut(DWORD start) {
        if (const Error error = sortRecords(); error != Error::None) {
            return error;
        }
        const Size size = outside_ + Size(sizeof(WORD)) + Size(count_) * kEntryBytes + Size(sizeof(DWORD));
        block_ = GlobalBlock::allocate(size);
        const GlobalView<BYTE> bytes(block_.get(), 1);
        const GlobalView<SortKey> keys(keys_.get(), 0);
        if (!bytes || !keys) {
            return Error::NoMemory;
        }
        bytes_ = size.fit().value_or(0);
        directoryAt_ = outside_.fit().value_or(0);
        if (bytes_ > kLastOffset - start) {
            return Error::Io;
        }
        put(bytes.get() + directoryAt_, static_cast<WORD>(count_));
        BYTE *values = bytes.get();
        BYTE *entry = bytes.get() + directoryAt_ + sizeof(WORD);
        for (DWORD i = 0; i < count_; ++i, entry += kEntryBytes) {
            const auto record = directory_.at(keys.get()[i].position);
            if (!record) {
                return Error::NoMemory;
            }
            values = addEntry(entry, *record, values, start + static_cast<DWORD>(values - bytes.get()));
        }
        return Error::None;
    }

    [[nodiscard]] HGLOBAL block() const { return block_.get(); }
    [[nodiscard]] DWORD bytes() const { return bytes_; }
    // Of the directory behind its values.
    [[nodiscard]] DWORD directoryAt() const { return directoryAt_; }

private:
    Error sortRecords() {
        keys_ = GlobalBlock::allocate(Size(std::max<DWORD>(directory_.entryCount(), 1)) * sizeof(SortKey));
        const GlobalView<SortKey> keys(keys_.get());
        if (!keys) {
            return Error::NoMemory;
        }
        for (auto record = directory_.first(); record; record = directory_.next(*record)) {
            // What a record claims and does not have would be read from behind it.
            if (valueBytes(record->head) > record->dataBytes) {
                return Error::NoMemory;
            }
            keys.get()[count_++] = {DWORD{record->head.tag} << 16 | record->ordinal, record->position};
            outside_ = outside_ + outsideBytes(record->head);
        }
        std::sort(keys.get(), keys.get() + count_);
        return Error::None;
    }

    template <class Number>
    void put(BYTE *to, Number number) const {
        const Number stored = byteOrder_ == kMotorolaOrder ? swapped(number) : number;
        std::memcpy(to, &stored, sizeof stored);
    }

    // Values in the file's order. A RATIONAL is two LONGs.
    void putValues(BYTE *to, const TagRecord &record) const {
        const auto bytes = static_cast<DWORD>(valueBytes(record.head));
        std::memcpy(to, record.data, bytes);
        if (byteOrder_ == kMotorolaOrder) {
            const DWORD type = record.head.type == kRational ? kLong : DWORD{record.head.type};
            swapValues(to, type, bytes / typeSize(type));
        }
    }

    // Fills an entry; its values go into the field (what they do not use of it stays zero) or to the place outside.
    // Result: where the next values outside go.
    BYTE *addEntry(BYTE *entry, const TagRecord &record, BYTE *outside, DWORD outsideOffset) const {
        put(entry, record.head.tag);
        put(entry + 2, record.head.type);
        put(entry + 4, record.head.count);
        const std::uint64_t bytes = valueBytes(record.head);
        if (bytes <= kFieldBytes) {
            putValues(entry + 8, record);
            return outside;
        }
        put(entry + 8, outsideOffset);
        putValues(outside, record);
        return outside + bytes;
    }

    const ImageDirectory &directory_;
    WORD byteOrder_;
    DWORD count_ = 0;
    Size outside_ = 0; // bytes of the values outside
    GlobalBlock keys_;
    GlobalBlock block_;
    DWORD bytes_ = 0;
    DWORD directoryAt_ = 0;
};

Error writeAtEnd(StreamHandle stream, DirectoryBytes &directory, DWORD &directoryOffset) {
    const LONG end = seekStream(stream, 0, FILE_END);
    if (end < 0) {
        return Error::Io;
    }
    if (const Error error = directory.layOut(static_cast<DWORD>(end)); error != Error::None) {
        return error;
    }
    const GlobalView<BYTE> bytes(directory.block(), directory.bytes());
    if (!bytes) {
        return Error::NoMemory;
    }
    directoryOffset = static_cast<DWORD>(end) + directory.directoryAt();
    return writeValues(stream, kByte, directory.bytes(), bytes.get(), kIntelOrder, 0);
}

Error writeLink(TiffFileBlock &file, StreamHandle stream, DWORD directoryOffset) {
    const auto position = static_cast<LONG>(file.lastLinkPos);
    if (seekStream(stream, position, FILE_BEGIN) != position) {
        return Error::Io;
    }
    auto *bytes = reinterpret_cast<BYTE *>(&directoryOffset);
    return writeValues(stream, kLong, 1, bytes, file.byteOrder, 0);
}

} // namespace

StreamHandle openForWriting(const TiffFileBlock &file, DWORD flags) {
    return file.pathName[0] != '\0' ? openFileStream(file.pathName, flags)
                                    : openMemoryStream(file.memHandle, file.memSize);
}

bool chainIsFull(const TiffFileBlock &file, DWORD index) {
    constexpr DWORD kLast = kMaxImages - 1;
    return index != kLast && file.images[kLast].directoryOffset != 0;
}

Error writeDirectory(TiffHandle tiff, DWORD index, StreamHandle stream) {
    const ImageDirectory records(tiff, index);
    const TiffFileView file(tiff);
    if (!records || !file) {
        return Error::NoMemory;
    }
    if (chainIsFull(*file, index)) {
        return Error::IndexOutOfRange;
    }
    DWORD directoryOffset = 0;
    {
        DirectoryBytes directory(records, file->byteOrder);
        if (const Error error = writeAtEnd(stream, directory, directoryOffset); error != Error::None) {
            return error;
        }
    }
    if (const Error error = writeLink(*file, stream, directoryOffset); error != Error::None) {
        return error;
    }
    file->images[index].directoryOffset = directoryOffset;
    // By design: the link position stays. An image encoded next on the same handle takes this one's place in the chain;
    // who wants a chain opens the file again for appending.
    file->openFlags = OF_READWRITE;
    return Error::None;
}

} // namespace vellum

extern "C" DWORD VELLUMAPI WriteTiffImageDirectory(TiffHandle tiff, DWORD index) {
    const vellum::TiffFileView file(tiff);
    if (!file) {
        return number(vellum::Error::NoMemory);
    }
    // The image's data are in the file already, so it is not created anew.
    const vellum::Stream stream(vellum::openForWriting(*file, file->openFlags & ~DWORD{OF_CREATE}));
    if (!stream) {
        return number(vellum::Error::Io);
    }
    const vellum::Error error = vellum::writeDirectory(tiff, index, stream.get());
    vellum::storeBackMemoryTiff(*file, stream.get());
    return number(error);
}
