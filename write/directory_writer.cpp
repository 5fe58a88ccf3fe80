// Puts a directory behind what a stream holds, its values before it, and links it to the chain.
#include "write/directory_writer.h"

#include "core/directory_entries.h"
#include "core/typed_transfer.h"
#include "support/byte_order.h"
#include "write/chain_end.h"
#include "write/directory_layout.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace vellum {
namespace {

constexpr DWORD kEntryBytes = 12;

Error writeAtEnd(StreamHandle stream, DirectoryLayout &directory, DWORD &directoryOffset) {
    const LONG end = seekStream(stream, 0, FILE_END);
    if (end < 0) {
        return Error::Io;
    }
    if (const Error error = directory.layOut(static_cast<DWORD>(end)); error != Error::None) {
        return error;
    }
    directoryOffset = static_cast<DWORD>(end) + directory.directoryAt();
    return directory.write(stream);
}

// Reads bytes at a position; false when they are not all there.
bool readAt(StreamHandle stream, DWORD position, BYTE *bytes, DWORD count) {
    const LONG size = sizeOfStream(stream);
    if (size < 0 || position > static_cast<DWORD>(size) || count > static_cast<DWORD>(size) - position) {
        return false;
    }
    const auto place = static_cast<LONG>(position);
    return seekStream(stream, place, FILE_BEGIN) == place && readBytes(stream, bytes, count);
}

// The link leads to an image that this handle wrote before, in whose place the next one comes, and to none behind it.
bool leadsToOwnImage(const TiffFileBlock &file, StreamHandle stream, DWORD link) {
    const auto writtenHere = [link](const TiffImageSlot &slot) { return slot.directoryOffset == link; };
    DWORD position = file.lastLinkPos;
    return file.openFlags == OF_READWRITE && std::ranges::any_of(file.images, writtenHere) &&
           findLastLink(stream, file.byteOrder, 1, position) == Error::None;
}

bool leadsToDirectory(const TiffFileBlock &file, StreamHandle stream, DWORD link) {
    const LONG size = sizeOfStream(stream);
    EntryReader entries(stream, file.byteOrder);
    if (size < 0 || link >= static_cast<DWORD>(size) || !entries.open(link) || entries.count() == 0) {
        return false;
    }
    while (entries.next()) {
    }
    return entries.left() == 0;
}

// Whether the link that led to an image of the table when the file was scanned still does.
bool isStillLinked(const TiffFileBlock &file, StreamHandle stream, DWORD index) {
    DWORD position = kFirstLinkPosition;
    if (index > 0) {
        EntryReader before(stream, file.byteOrder);
        if (!before.open(file.images[index - 1].directoryOffset)) {
            return false;
        }
        position = static_cast<DWORD>(tellStream(stream)) + before.count() * kEntryBytes;
    }
    BYTE link[4];
    return readAt(stream, position, link, sizeof link) &&
           load<DWORD>(link, file.byteOrder) == file.images[index].directoryOffset;
}

// Whether the last directory that the scan saw is still there and linked, as long as it was and with the chain's last
// link behind it: then there is no need to follow the chain.
bool lastDirectoryIsInPlace(const TiffFileBlock &file, StreamHandle stream) {
    const auto last = std::find_if(std::rbegin(file.images), std::rend(file.images),
                                   [](const TiffImageSlot &slot) { return slot.directoryOffset != 0; });
    EntryReader entries(stream, file.byteOrder);
    if (last == std::rend(file.images) || !entries.open(last->directoryOffset)) {
        return false;
    }
    std::uint64_t bytes = 0;
    while (const auto entry = entries.next()) {
        bytes += entry->recordLength();
    }
    const auto index = static_cast<DWORD>(std::rend(file.images) - last - 1);
    return entries.left() == 0 && bytes == last->directorySize &&
           tellStream(stream) == static_cast<LONG>(file.lastLinkPos) && isStillLinked(file, stream, index);
}

} // namespace

Error checkByteOrder(WORD byteOrder, StreamHandle stream) {
    BYTE header[8];
    if (!readAt(stream, 0, header, sizeof header)) {
        return Error::Io;
    }
    const auto order = load<WORD>(header);
    const bool another = (order == kIntelOrder || order == kMotorolaOrder) && order != byteOrder;
    return another ? Error::BadByteOrder : Error::None;
}

StreamHandle openForWriting(const TiffFileBlock &file, DWORD flags) {
    return file.pathName[0] != '\0' ? openFileStream(file.pathName, flags)
                                    : openMemoryStream(file.memHandle, file.memSize);
}

bool chainIsFull(const TiffFileBlock &file, DWORD index) {
    constexpr DWORD kLast = kMaxImages - 1;
    return index != kLast && file.images[kLast].directoryOffset != 0;
}

DWORD scannedBytes(const ImageDirectory &directory) {
    Size total = 0;
    for (auto record = directory ? directory.first() : std::nullopt; record; record = directory.next(*record)) {
        const DirectoryEntry entry{record->head.tag, record->head.type, record->head.count, {}, kIntelOrder};
        total = total + Size(entry.recordLength());
    }
    return total.fit().value_or(0);
}

Error writeLink(StreamHandle stream, DWORD position, DWORD directoryOffset, WORD byteOrder) {
    const auto place = static_cast<LONG>(position);
    if (seekStream(stream, place, FILE_BEGIN) != place) {
        return Error::Io;
    }
    auto *bytes = reinterpret_cast<BYTE *>(&directoryOffset);
    return writeValues(stream, kLong, 1, bytes, byteOrder, 0);
}

Error checkChain(const TiffFileBlock &file, StreamHandle stream) {
    if (const Error error = checkByteOrder(file.byteOrder, stream); error != Error::None) {
        return error;
    }
    BYTE link[4];
    if (!readAt(stream, file.lastLinkPos, link, sizeof link)) {
        return Error::Io;
    }
    const auto offset = load<DWORD>(link, file.byteOrder);
    if (offset != 0 && !leadsToOwnImage(file, stream, offset) && leadsToDirectory(file, stream, offset)) {
        return Error::Io;
    }
    // A file that was rebuilt since has its links elsewhere, and pixels where they were.
    const bool inPlace =
        lastDirectoryIsInPlace(file, stream) || isLinkOfChain(stream, file.byteOrder, kMaxImages, file.lastLinkPos);
    return inPlace ? Error::None : Error::Io;
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
    if (const Error error = checkByteOrder(file->byteOrder, stream); error != Error::None) {
        return error;
    }
    DWORD directoryOffset = 0;
    {
        DirectoryLayout directory(records, file->byteOrder, Arrangement::ValuesFirst);
        if (const Error error = writeAtEnd(stream, directory, directoryOffset); error != Error::None) {
            return error;
        }
    }
    if (const Error error = writeLink(stream, file->lastLinkPos, directoryOffset, file->byteOrder);
        error != Error::None) {
        return error;
    }
    file->images[index].directoryOffset = directoryOffset;
    file->images[index].directorySize = scannedBytes(records);
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
    vellum::Error error =
        vellum::chainIsFull(*file, index) ? vellum::Error::IndexOutOfRange : vellum::checkChain(*file, stream.get());
    if (error == vellum::Error::None) {
        error = vellum::writeDirectory(tiff, index, stream.get());
    }
    vellum::storeBackMemoryTiff(*file, stream.get());
    return number(error);
}
