// What the loaders share: whether the user wants a picture, whether it is worth its memory, and which errors leave part
// of one.
#include "display/loading.h"

#include "codec/decode_driver.h"
#include "core/image_info.h"
#include "core/stream.h"
#include "display/info_dialog.h"
#include "support/row_bytes.h"

namespace vellum {
namespace {

DWORD streamBytes(TiffHandle tiff) {
    const TiffFileView file(tiff);
    if (!file) {
        return 0;
    }
    const Stream stream(openForReading(*file));
    const LONG size = stream ? sizeOfStream(stream.get()) : -1;
    return size < 0 ? 0 : static_cast<DWORD>(size);
}

} // namespace

bool userWants(TiffHandle tiff, DWORD index) {
    const INT_PTR answer = showInfoDialog(tiff, index);
    if (answer != IDOK) {
        setError(answer == IDCANCEL ? Error::None : Error::NoMemory);
    }
    return answer == IDOK;
}

bool worthLoading(TiffHandle tiff, DWORD index, const BITMAPINFOHEADER &header, DWORD bitsInMemory) {
    const auto width = static_cast<DWORD>(header.biWidth);
    const Size height(static_cast<DWORD>(header.biHeight));
    const auto memoryBytes = (dibRowBytes(width, bitsInMemory) * height).fit();
    if (!memoryBytes || *memoryBytes <= kNeedsNoProof) {
        return memoryBytes.has_value();
    }
    const DWORD compression = firstValue(tiff, index, Tag::Compression).value_or(1);
    const DWORD rowBytes = lineBytes(width, header.biBitCount).fit().value_or(0);
    return canFill(dibRowBytes(width, header.biBitCount) * height, compression, rowBytes, streamBytes(tiff));
}

bool leavesPartOfThePicture(Error error) {
    return error == Error::UnexpectedEnd || error == Error::EofbMissing || error == Error::EofbUnexpected;
}

} // namespace vellum
