// The choice of the encoder, and the raw front ends that write a stream without any file format around it.
#include "codec/encode_driver.h"

#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/ccitt_encode.h"
#include "codec/jpeg_module.h"
#include "support/global_block.h"
#include "support/row_bytes.h"

namespace vellum {
namespace {

using Encoder = Error (*)(CodecState &);

// Bytes behind the entries of a strip table.
constexpr DWORD kTableSlack = 110;

// The encoder of a key; null for keys that there is none for, a bare 5 among them.
Encoder encoderOf(DWORD compressionKey) {
    switch (compressionKey) {
    case VELLUM_KEY_NONE:
        return writeUncompressed;
    case 2:
    case VELLUM_KEY_MODIFIED_HUFFMAN:
    case VELLUM_KEY_GROUP3_1D:
    case VELLUM_KEY_GROUP3_1D_FILL:
        return encodeOneDimensional;
    case VELLUM_KEY_GROUP3_2D:
    case VELLUM_KEY_GROUP3_2D_FILL:
        return encodeGroup3TwoDimensional;
    case VELLUM_KEY_GROUP4:
        return encodeGroup4;
    case VELLUM_KEY_JPEG:
        return encodeByJpegModule;
    case VELLUM_KEY_PACKBITS:
        return encodePackBits;
    case VELLUM_KEY_LZW:
    case VELLUM_KEY_LZW_DIFFERENCING:
        return encodeLzw;
    default:
        return nullptr;
    }
}

Error runAndFlush(CodecState &state, Encoder encode) {
    if (const Error error = endOfRun(encode(state)); error != Error::None) {
        return error;
    }
    // A codec that ended without asking for buffers has nothing to flush.
    return state.codeBuffer != nullptr ? flushCodeBuffer(state) : Error::None;
}

bool isCcitt(Encoder encode) {
    return encode == encodeOneDimensional || encode == encodeGroup3TwoDimensional || encode == encodeGroup4;
}

bool tooWideForCcitt(const RawImage &image) {
    return lineBytes(image.width, 1).fit().value_or(0xFFFFFFFF) > static_cast<DWORD>(kWidestCcittLine);
}

Error encodeRaw(const RawImage &image, Error (*encode)(CodecState &)) {
    JpegCodecState jpeg{};
    CodecState &state = jpeg.codec;
    const CodecBuffers buffers(state);
    if (const Error error = setUpRawRun(state, image); error != Error::None) {
        return error;
    }
    state.stripCount = 1;
    if (const Error error = allocateStripTables(state); error != Error::None) {
        return error;
    }
    return encode(state);
}

} // namespace

Error checkEncodable(const CodecState &state) {
    const Encoder encode = encoderOf(state.compressionKey);
    if (encode == nullptr) {
        return Error::UnknownCompression;
    }
    return isCcitt(encode) && state.bytesPerLine > kWidestCcittLine ? Error::BadCode : Error::None;
}

Error encodeImageData(CodecState &state) {
    if (const Error error = checkEncodable(state); error != Error::None) {
        return error;
    }
    return runAndFlush(state, encoderOf(state.compressionKey));
}

Error allocateStripTables(CodecState &state) {
    const Size bytes = Size(state.stripCount) * sizeof(DWORD) + kTableSlack;
    state.stripOffsets = GlobalBlock::allocate(bytes).release();
    state.stripByteCounts = GlobalBlock::allocate(bytes).release();
    return state.stripOffsets != nullptr && state.stripByteCounts != nullptr ? Error::None : Error::NoMemory;
}

Error encodeRawImage(const RawImage &image) {
    const bool tooWide = isCcitt(encoderOf(image.compressionKey)) && tooWideForCcitt(image);
    return tooWide ? Error::BadCode : encodeRaw(image, encodeImageData);
}

Error encodeMmrImage(const RawImage &image) {
    return tooWideForCcitt(image) ? Error::BadCode : encodeRaw(image, encodeBlockFramedMmr);
}

} // namespace vellum
