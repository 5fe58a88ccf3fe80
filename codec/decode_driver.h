// From an image's parameters to its lines: picks the codec by the compression key and runs it.
#pragma once

#include "codec/raw_run.h"
#include "core/tiff_file.h"

namespace vellum {

// Runs the codec that the state's compression key asks for. An image without lines succeeds at once.
Error decodeImageData(CodecState &state);

// Decodes a registered image, or lineCount lines of it (0: all) from a strip on.
struct DecodeRequest {
    TiffHandle tiff;
    DWORD index;
    DWORD firstStrip;
    DWORD lineCount;
    DWORD userValue;
    LineFunc lineFunction;
};
Error decodeTiffImage(const DecodeRequest &request);

// Decodes a headerless code stream. An offset of 0, or one outside the stream, means the stream's current position.
struct RawRequest : RawImage {
    DWORD offset;
};
Error decodeRawImage(const RawRequest &request);
// The same for block-framed MMR code; the key is not used.
Error decodeMmrImage(const RawRequest &request);

// Blocks up to this size need no proof that there is code for them.
constexpr DWORD kNeedsNoProof = 16u << 20;

// Whether code of a stream can fill this many image bytes at all, with room for damage: beyond kNeedsNoProof a picture
// of gigabytes in a file of a kilobyte is not worth its memory.
bool worthAllocating(Size imageBytes, DWORD compressionKey, DWORD bytesPerLine, DWORD streamBytes);
// Whether it can, however few they are.
bool canFill(Size imageBytes, DWORD compressionKey, DWORD bytesPerLine, DWORD streamBytes);

} // namespace vellum
