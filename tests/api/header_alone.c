/* The public header alone, in every language and with every compiler that programs use it with. It is compiled, as C
 * and as C++, by tests/api/CMakeLists.txt, and not run. */
#include "vellum32.h"

/* Declarations that only fit the header's own. */
DWORD VELLUMAPI takeLine(BYTE *line, DWORD lineIndex, DWORD userValue);
DWORD useHeader(const char *path);

DWORD useHeader(const char *path) {
    TiffFileInfo info;
    LoadLineContext context;
    JpegCodecState state;
    LineFunc line = takeLine;
    TiffHandle tiff = OpenTiffFile(path, T_READ);
    GetTiffFileInfo(tiff, &info);
    context.height = info.imageCount;
    state.codec.compressionKey = VELLUM_KEY_LZW_DIFFERENCING;
    DecodeTiffImage(tiff, 0, 0, 0, context.height + state.codec.compressionKey, line);
    return CloseTiffFile(tiff) != 0 ? VELLUM_OK : TiffError();
}
