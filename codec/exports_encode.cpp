// The exported raw encode calls: each runs one encode and records how it ended.
#include "codec/encode_driver.h"

extern "C" {

DWORD VELLUMAPI EncodeCcittImage(StreamHandle stream, DWORD width, DWORD height, DWORD compressionKey, DWORD userValue,
                                 LineFunc lineFunction) {
    return vellum::recorded(vellum::encodeRawImage(
        {stream, width, height, compressionKey, 1, VELLUM_BYTE_ORDER_II, userValue, lineFunction}));
}

DWORD VELLUMAPI EncodeCcittImageTo(StreamHandle stream, DWORD width, DWORD height, DWORD fillOrder, DWORD byteOrder,
                                   DWORD compressionKey, DWORD userValue, LineFunc lineFunction) {
    return vellum::recorded(
        vellum::encodeRawImage({stream, width, height, compressionKey, fillOrder, byteOrder, userValue, lineFunction}));
}

DWORD VELLUMAPI EncodeMMRImage(StreamHandle stream, DWORD width, DWORD height, DWORD /*reserved*/, DWORD userValue,
                               LineFunc lineFunction) {
    return vellum::recorded(
        vellum::encodeMmrImage({stream, width, height, 0, 1, VELLUM_BYTE_ORDER_II, userValue, lineFunction}));
}

} // extern "C"
