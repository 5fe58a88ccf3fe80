// The exported decode calls: each runs one decode and records how it ended.
#include "codec/decode_driver.h"

namespace vellum {
namespace {

// The error number of a decode is recorded on success, too: the loaders rely on finding 0.
DWORD recorded(Error error) {
    setError(error);
    return error == Error::None ? 1 : 0;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI DecodeTiffImage(TiffHandle tiff, DWORD index, DWORD firstStrip, DWORD lineCount, DWORD userValue,
                                LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeTiffImage({tiff, index, firstStrip, lineCount, userValue, lineFunction}));
}

DWORD VELLUMAPI DecodeCcittImage(StreamHandle stream, DWORD width, DWORD height, DWORD compressionKey, DWORD userValue,
                                 LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeRawImage(
        {stream, 0, width, height, compressionKey, 1, VELLUM_BYTE_ORDER_II, userValue, lineFunction}));
}

DWORD VELLUMAPI DecodeCcittImageFrom(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD compressionKey,
                                     DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeRawImage(
        {stream, offset, width, height, compressionKey, fillOrder, byteOrder, userValue, lineFunction}));
}

DWORD VELLUMAPI DecodeMMRImage(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD /*reserved*/,
                               DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeMmrImage(
        {stream, offset, width, height, VELLUM_KEY_GROUP4, fillOrder, byteOrder, userValue, lineFunction}));
}

} // extern "C"
