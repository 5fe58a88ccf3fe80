// Writes TIFF headers and recognises them.
#include "core/tiff_header.h"

#include "core/typed_transfer.h"
#include "support/byte_order.h"

namespace vellum {
namespace {

constexpr WORD kMagic = 42;

template <class Number>
BYTE *bytesOf(Number &number) {
    return reinterpret_cast<BYTE *>(&number);
}

} // namespace

Error writeTiffHeader(TiffHandle tiff, StreamHandle stream, DWORD firstDirectoryOffset) {
    const TiffFileView file(tiff);
    if (!file) {
        return Error::NoMemory;
    }
    if ((file->openFlags & OF_CREATE) == 0) {
        // Not being at the end would mean writing over what is there.
        return seekStream(stream, 0, FILE_END) == -1 ? Error::Io : Error::None;
    }
    return writeNewHeader(stream, file->byteOrder, firstDirectoryOffset);
}

Error writeNewHeader(StreamHandle stream, WORD byteOrder, DWORD firstDirectoryOffset) {
    const WORD magic = byteOrder == kMotorolaOrder ? swapped(kMagic) : kMagic;
    BYTE header[8];
    std::memcpy(header, &byteOrder, sizeof byteOrder);
    std::memcpy(header + 2, &magic, sizeof magic);
    // By design: the offset is written in machine order whatever the file's is. It only holds the place: the link is
    // overwritten, in the file's order, when the first directory is there.
    std::memcpy(header + 4, &firstDirectoryOffset, sizeof firstDirectoryOffset);
    const bool written = writeStream(stream, header, sizeof header) == sizeof header;
    return written ? Error::None : Error::Io;
}

bool looksLikeTiff(const char *path) {
    const Stream stream(openFileStream(path, kOpenRead));
    WORD mark = 0;
    return stream && readStream(stream.get(), bytesOf(mark), sizeof mark) == sizeof mark &&
           (mark == kIntelOrder || mark == kMotorolaOrder);
}

} // namespace vellum
