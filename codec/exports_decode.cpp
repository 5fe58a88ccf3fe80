// The exported decode calls: each runs one decode and records how it ended.
#include "codec/decode_driver.h"

extern "C" {

DWORD VELLUMAPI DecodeTiffImage(TiffHandle tiff, DWORD index, DWORD firstStrip, DWORD lineCount, DWORD userValue,
                                LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeTiffImage({tiff, index, firstStrip, lineCount, userValue, lineFunction}));
}

DWORD VELLUMAPI DecodeCcittImage(StreamHandle stream, DWORD width, DWORD height, DWORD compressionKey, DWORD userValue,
                                 LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeRawImage(
        {{stream, width, height, compressionKey, 1, VELLUM_BYTE_ORDER_II, userValue, lineFunction}, 0}));
}

DWORD VELLUMAPI DecodeCcittImageFrom(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD compressionKey,
                                     DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeRawImage(
        {{stream, width, height, compressionKey, fillOrder, byteOrder, userValue, lineFunction}, offset}));
}

DWORD VELLUMAPI DecodeMMRImage(StreamHandle stream, DWORD offset, DWORD width, DWORD height, DWORD /*reserved*/,
                               DWORD fillOrder, DWORD byteOrder, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(vellum::decodeMmrImage(
        {{stream, width, height, VELLUM_KEY_GROUP4, fillOrder, byteOrder, userValue, lineFunction}, offset}));
}

} // extern "C"
