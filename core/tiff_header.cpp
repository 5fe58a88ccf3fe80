// Writes TIFF headers and recognises them.
#include "core/tiff_header.h"

#include "core/typed_transfer.h"
#include "support/byte_order.h"

namespace vellum {
namespace {

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
    WORD byteOrder = file->byteOrder;
    WORD magic = 42;
    // By design: the offset is written in machine order whatever the file's is. It only holds the place: the link is
    // overwritten, in the file's order, when the first directory is there.
    const bool written =
        writeStream(stream, bytesOf(byteOrder), sizeof byteOrder) == sizeof byteOrder &&
        writeValues(stream, kShort, 1, bytesOf(magic), byteOrder, 0) == Error::None &&
        writeStream(stream, bytesOf(firstDirectoryOffset), sizeof firstDirectoryOffset) == sizeof firstDirectoryOffset;
    return written ? Error::None : Error::Io;
}

bool looksLikeTiff(const char *path) {
    const Stream stream(openFileStream(path, kOpenRead));
    WORD mark = 0;
    return stream && readStream(stream.get(), bytesOf(mark), sizeof mark) == sizeof mark &&
           (mark == kIntelOrder || mark == kMotorolaOrder);
}

} // namespace vellum
