// The choice of the codec, and the raw front ends that decode a stream without any file format around it.
#include "codec/decode_driver.h"

#include "codec/buffers.h"
#include "codec/byte_codecs.h"
#include "codec/ccitt_decode.h"
#include "codec/jpeg_module.h"
#include "codec/raw_run.h"
#include "core/stream.h"

namespace vellum {
namespace {

// Sets the state up and positions the stream; the readable size counts from there.
Error prepareRaw(CodecState &state, const RawRequest &request) {
    if (const Error error = setUpRawRun(state, request); error != Error::None) {
        return error;
    }
    const LONG size = sizeOfStream(request.stream);
    if (size < 0) {
        return Error::Io;
    }
    const auto bytes = static_cast<DWORD>(size);
    const bool moves = request.offset >= 1 && request.offset < bytes;
    const LONG start =
        moves ? seekStream(request.stream, static_cast<LONG>(request.offset), 0) : tellStream(request.stream);
    if (start == -1) {
        return Error::Io;
    }
    state.streamLimit = start >= 0 && static_cast<DWORD>(start) < bytes ? bytes - static_cast<DWORD>(start) : 0;
    const auto lineSize = static_cast<DWORD>(state.bytesPerLine);
    return worthAllocating(Size(lineSize), request.compressionKey, lineSize, state.streamLimit) ? Error::None
                                                                                                : Error::NoMemory;
}

Error decodeRaw(const RawRequest &request, Error (*decode)(CodecState &)) {
    JpegCodecState jpeg{};
    CodecState &state = jpeg.codec;
    const CodecBuffers buffers(state);
    if (const Error error = prepareRaw(state, request); error != Error::None) {
        return error;
    }
    return decode(state);
}

Error decodeMmr(CodecState &state) {
    return state.image.biWidth == 0 || state.image.biHeight == 0 ? Error::None : decodeBlockFramedMmr(state);
}

} // namespace

Error decodeImageData(CodecState &state) {
    if (state.image.biWidth == 0 || state.image.biHeight == 0) {
        return Error::None;
    }
    switch (state.compressionKey) {
    case VELLUM_KEY_NONE:
        return readUncompressed(state);
    case 2:
        state.compressionKey = VELLUM_KEY_MODIFIED_HUFFMAN;
        return decodeModifiedHuffman(state);
    case VELLUM_KEY_MODIFIED_HUFFMAN:
        return decodeModifiedHuffman(state);
    case VELLUM_KEY_GROUP3_1D:
    case VELLUM_KEY_GROUP3_1D_FILL:
        return decodeGroup3OneDimensional(state);
    case VELLUM_KEY_GROUP3_2D:
    case VELLUM_KEY_GROUP3_2D_FILL:
        return decodeGroup3TwoDimensional(state);
    case VELLUM_KEY_GROUP4:
        return decodeGroup4(state);
    case VELLUM_KEY_LZW:
    case VELLUM_KEY_LZW_DIFFERENCING:
        return decodeLzw(state);
    case VELLUM_KEY_JPEG:
        return decodeByJpegModule(state);
    case VELLUM_KEY_PACKBITS:
        return decodePackBits(state);
    default:
        return Error::UnknownCompression;
    }
}

Error decodeRawImage(const RawRequest &request) {
    return decodeRaw(request, decodeImageData);
}

Error decodeMmrImage(const RawRequest &request) {
    // Framed code is read from files only.
    return request.stream > 0 ? decodeRaw(request, decodeMmr) : Error::Io;
}

bool worthAllocating(Size imageBytes, DWORD compressionKey, DWORD bytesPerLine, DWORD streamBytes) {
    const auto bytes = imageBytes.fit();
    return bytes && (*bytes <= kNeedsNoProof || canFill(imageBytes, compressionKey, bytesPerLine, streamBytes));
}

bool canFill(Size imageBytes, DWORD compressionKey, DWORD bytesPerLine, DWORD streamBytes) {
    const auto bytes = imageBytes.fit();
    if (!bytes) {
        return false;
    }
    // Image bytes that a byte of code can stand for at most: a blank line is one bit of Group 4, but lines so long that
    // no scanner makes them prove nothing; runs, packets and strings have their limits.
    std::uint64_t expansion = 0;
    switch (compressionKey & 0xFFFF) {
    case 4:
        expansion = 8 * std::uint64_t{bytesPerLine < kNeedsNoProof / 16 ? bytesPerLine : 1};
        break;
    case 3:
        // Two-dimensional lines may be one bit, too.
        expansion = 8 * std::uint64_t{bytesPerLine < kNeedsNoProof / 16 ? bytesPerLine : 1};
        break;
    case 1:
        expansion = 16;
        break;
    default:
        expansion = 4096;
        break;
    }
    return *bytes <= expansion * streamBytes;
}

} // namespace vellum
