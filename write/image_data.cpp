// Gathers an image's data by its tags, gives them new places, and copies them in pieces of 32760 bytes.
#include "write/image_data.h"

#include "core/image_directory.h"
#include "core/typed_transfer.h"
#include "support/byte_order.h"
#include "write/directory_layout.h"
#include "write/image_definition.h"

#include <algorithm>
#include <numeric>

namespace vellum {
namespace {

constexpr DWORD kCompressionJpeg = 6;
// A JPEG stream as a whole, in images of Compression 6.
constexpr auto kJpegInterchange = static_cast<Tag>(513);
constexpr auto kJpegInterchangeBytes = static_cast<Tag>(514);

constexpr DWORD kCopyBytes = 32760;

// Of the tables of JPEG: a quantization table has a byte for each coefficient; a Huffman table the numbers of its codes
// of 1 to 16 bits, and a byte for each code.
constexpr DWORD kQuantizationBytes = 64;
constexpr DWORD kCodeLengths = 16;

// Pieces may share their bytes, but not without end: beyond this many times the file's size, and some more for small
// files, a byte count is taken for damaged.
constexpr std::uint64_t kMostSharing = 16;
constexpr std::uint64_t kSmallImage = 16 * 1024 * 1024;

bool isOffsetType(DWORD type) {
    return type == kShort || type == kLong;
}

// A SHORT or LONG of a record.
DWORD numberAt(const TagRecord &record, DWORD i) {
    return record.head.type == kShort ? load<WORD>(record.data + std::size_t{i} * sizeof(WORD))
                                      : load<DWORD>(record.data + std::size_t{i} * sizeof(DWORD));
}

bool holds(const std::optional<TagRecord> &record, DWORD count) {
    return record && std::uint64_t{count} * typeSize(record->head.type) <= record->dataBytes;
}

Error copyBytes(StreamHandle source, DWORD offset, DWORD count, BYTE *buffer, StreamHandle target) {
    const auto place = static_cast<LONG>(offset);
    if (seekStream(source, place, FILE_BEGIN) != place) {
        return Error::Io;
    }
    while (count > 0) {
        const LONG got = readStream(source, buffer, static_cast<LONG>(std::min(count, kCopyBytes)));
        if (got < 1 || writeStream(target, buffer, static_cast<DWORD>(got)) != got) {
            return Error::Io;
        }
        count -= static_cast<DWORD>(got);
    }
    return Error::None;
}

} // namespace

Error ImageData::find(TiffHandle tiff, DWORD index, StreamHandle source) {
    const Error error = listGroups(tiff, index);
    return error == Error::None ? findPieces(tiff, index, source) : error;
}

Error ImageData::listGroups(TiffHandle tiff, DWORD index) {
    const bool jpeg = firstValue(tiff, index, Tag::Compression) == kCompressionJpeg;
    Error error = addPair(tiff, index, Tag::StripOffsets, Tag::StripByteCounts);
    if (error == Error::None) {
        error = addPair(tiff, index, Tag::TileOffsets, Tag::TileByteCounts);
    }
    if (error == Error::None && jpeg) {
        error = addPair(tiff, index, kJpegInterchange, kJpegInterchangeBytes);
    }
    if (error == Error::None && groupCount_ == 0) {
        error = Error::TagMissing;
    }
    for (const Tag tables : {Tag::JpegQTables, Tag::JpegDcTables, Tag::JpegAcTables}) {
        if (error == Error::None && jpeg) {
            error = addTables(tiff, index, tables);
        }
    }
    return error;
}

// Offsets and their byte counts; nothing when the image has no such offsets.
Error ImageData::addPair(TiffHandle tiff, DWORD index, Tag offsets, Tag byteCounts) {
    const auto shape = tagShape(tiff, index, static_cast<LONG>(offsets));
    if (!shape || (offsets == kJpegInterchange && firstValue(tiff, index, offsets) == 0U)) {
        return Error::None;
    }
    const auto countsShape = tagShape(tiff, index, static_cast<LONG>(byteCounts));
    if (!countsShape) {
        return Error::TagMissing;
    }
    if (!isOffsetType(countsShape->type) || countsShape->count != shape->count) {
        return Error::StripOutOfRange;
    }
    return addGroup(offsets, byteCounts, *shape);
}

Error ImageData::addTables(TiffHandle tiff, DWORD index, Tag tag) {
    const auto shape = tagShape(tiff, index, static_cast<LONG>(tag));
    return shape ? addGroup(tag, tag, *shape) : Error::None;
}

Error ImageData::addGroup(Tag tag, Tag byteCounts, const TagShape &shape) {
    const auto pieces = (Size(pieceCount_) + shape.count).fit();
    if (!isOffsetType(shape.type) || !pieces) {
        return Error::StripOutOfRange;
    }
    groups_[groupCount_++] = {tag, byteCounts, shape.type, pieceCount_, shape.count, 0, 0};
    pieceCount_ = *pieces;
    return Error::None;
}

Error ImageData::findPieces(TiffHandle tiff, DWORD index, StreamHandle source) {
    const ImageDirectory directory(tiff, index);
    pieces_ = GlobalBlock::allocate(Size(std::max<DWORD>(pieceCount_, 1)) * sizeof(Piece));
    const GlobalView<Piece> pieces(pieces_.get());
    if (!directory || !pieces) {
        return Error::NoMemory;
    }
    const LONG size = sizeOfStream(source);
    if (size < 0) {
        return Error::Io;
    }
    const auto bytes = static_cast<DWORD>(size);
    const Source stream{source, bytes, std::min<std::uint64_t>(bytes * kMostSharing + kSmallImage, kLastOffset)};
    for (DWORD g = 0; g < groupCount_; ++g) {
        const Error error = findGroup(groups_[g], directory, stream, pieces.get() + groups_[g].first);
        if (error != Error::None) {
            return error;
        }
    }
    return Error::None;
}

Error ImageData::findGroup(Group &group, const ImageDirectory &directory, const Source &source, Piece *pieces) {
    group.at = totalBytes_;
    group.lastAt = totalBytes_;
    const auto offsets = directory.find(static_cast<DWORD>(group.tag));
    const auto counts = directory.find(static_cast<DWORD>(group.byteCounts));
    if (!holds(offsets, group.count) || !holds(counts, group.count)) {
        return Error::NoMemory;
    }
    std::uint64_t total = totalBytes_;
    for (DWORD i = 0; i < group.count; ++i) {
        Piece &piece = pieces[i];
        piece = {numberAt(*offsets, i), numberAt(*counts, i)};
        if (group.byteCounts == group.tag) {
            if (const Error error = measureTable(group.tag, source.stream, piece); error != Error::None) {
                return error;
            }
        }
        // Data without a size: what other readers make of them would be lost.
        if (piece.bytes == 0 && piece.offset != 0) {
            return Error::StripOutOfRange;
        }
        group.lastAt = static_cast<DWORD>(total);
        total += piece.bytes;
        if (std::uint64_t{piece.offset} + piece.bytes > source.bytes || total > source.most) {
            return Error::Io;
        }
    }
    totalBytes_ = static_cast<DWORD>(total);
    return Error::None;
}

Error ImageData::measureTable(Tag tag, StreamHandle source, Piece &piece) {
    piece.bytes = kQuantizationBytes;
    if (tag == Tag::JpegQTables) {
        return Error::None;
    }
    BYTE codes[kCodeLengths];
    const auto place = static_cast<LONG>(piece.offset);
    if (seekStream(source, place, FILE_BEGIN) != place || !readBytes(source, codes, sizeof codes)) {
        return Error::Io;
    }
    piece.bytes = std::accumulate(codes, codes + kCodeLengths, kCodeLengths);
    return Error::None;
}

Error ImageData::place(TiffHandle tiff, DWORD index, DWORD directoryOffset) {
    for (;;) {
        DWORD directoryBytes = 0;
        if (const Error error = reserveOffsets(tiff, index, directoryBytes); error != Error::None) {
            return error;
        }
        const std::uint64_t dataStart = std::uint64_t{directoryOffset} + directoryBytes;
        if (dataStart + totalBytes_ > kLastOffset) {
            return Error::Io;
        }
        // LONGs take more room than SHORTs, so all is to be measured again.
        if (!widen(static_cast<DWORD>(dataStart))) {
            return defineAllOffsets(tiff, index, static_cast<DWORD>(dataStart));
        }
    }
}

// Gives the offsets their room, as numbers that do not matter yet, and measures the directory.
Error ImageData::reserveOffsets(TiffHandle tiff, DWORD index, DWORD &directoryBytes) const {
    if (const Error error = defineAllOffsets(tiff, index, 0); error != Error::None) {
        return error;
    }
    const ImageDirectory directory(tiff, index);
    if (!directory) {
        return Error::NoMemory;
    }
    DirectoryLayout layout(directory, kIntelOrder, Arrangement::DirectoryFirst);
    const Error error = layout.measure();
    directoryBytes = layout.bytes();
    return error;
}

// Makes LONGs of the SHORT offsets that would not fit. Result: whether there were any.
bool ImageData::widen(DWORD dataStart) {
    bool widened = false;
    for (DWORD g = 0; g < groupCount_; ++g) {
        Group &group = groups_[g];
        if (group.type == kShort && group.count > 0 && dataStart + group.lastAt > 0xFFFF) {
            group.type = kLong;
            widened = true;
        }
    }
    return widened;
}

Error ImageData::defineAllOffsets(TiffHandle tiff, DWORD index, DWORD dataStart) const {
    for (DWORD g = 0; g < groupCount_; ++g) {
        if (const Error error = defineOffsets(tiff, index, groups_[g], dataStart); error != Error::None) {
            return error;
        }
    }
    return Error::None;
}

Error ImageData::defineOffsets(TiffHandle tiff, DWORD index, const Group &group, DWORD dataStart) const {
    GlobalBlock block = GlobalBlock::allocate(Size(std::max<DWORD>(group.count, 1)) * sizeof(DWORD));
    const GlobalView<BYTE> values(block.get());
    const GlobalView<const Piece> pieces(pieces_.get());
    if (!values || !pieces) {
        return Error::NoMemory;
    }
    DWORD offset = dataStart + group.at;
    for (DWORD i = 0; i < group.count; ++i) {
        std::memcpy(values.get() + std::size_t{i} * typeSize(group.type), &offset, typeSize(group.type));
        offset += pieces.get()[group.first + i].bytes;
    }
    return defineTag(tiff, index, static_cast<WORD>(group.tag), values.get(), group.type, group.count)
               ? Error::None
               : Error::NoMemory;
}

Error ImageData::copy(StreamHandle source, StreamHandle target) const {
    GlobalBlock block = GlobalBlock::allocate(kCopyBytes);
    const GlobalView<BYTE> buffer(block.get(), kCopyBytes);
    const GlobalView<const Piece> pieces(pieces_.get());
    if (!buffer || !pieces) {
        return Error::NoMemory;
    }
    for (DWORD i = 0; i < pieceCount_;) {
        // Pieces that lie one behind the other are copied as one.
        Piece run = pieces.get()[i++];
        while (i < pieceCount_ && pieces.get()[i].offset == run.offset + run.bytes) {
            run.bytes += pieces.get()[i++].bytes;
        }
        if (const Error error = copyBytes(source, run.offset, run.bytes, buffer.get(), target); error != Error::None) {
            return error;
        }
    }
    return Error::None;
}

} // namespace vellum
