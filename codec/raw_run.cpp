// The state of a raw run.
#include "codec/raw_run.h"

#include "codec/image_parameters.h"
#include "support/byte_order.h"
#include "support/row_bytes.h"

namespace vellum {
namespace {

// A bilevel image's header as the raw front ends have it.
BITMAPINFOHEADER bilevelHeader(DWORD width, DWORD height) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = static_cast<LONG>(width);
    header.biHeight = static_cast<LONG>(height);
    header.biPlanes = 1;
    header.biBitCount = 1;
    header.biClrUsed = 2;
    header.biClrImportant = 2;
    return header;
}

} // namespace

Error setUpRawRun(CodecState &state, const RawImage &image) {
    if (image.width > kWidestLine) {
        return Error::NoMemory;
    }
    state.image = bilevelHeader(image.width, image.height);
    state.bytesPerLine = static_cast<LONG>(lineBytes(image.width, 1).fit().value_or(0));
    state.rowsPerStrip = image.height;
    state.stream = image.stream;
    state.fillOrder = image.fillOrder == 2 ? 2 : 1;
    state.byteOrder = image.byteOrder == kMotorolaOrder ? kMotorolaOrder : kIntelOrder;
    state.compressionKey = image.compressionKey;
    state.userValue = image.userValue;
    state.lineFunction = image.lineFunction;
    return Error::None;
}

} // namespace vellum
