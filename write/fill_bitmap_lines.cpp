// The fill functions that take lines out of a device-dependent bitmap with GetDIBits. The line buffer's slack covers
// the rounding of a row to 32 bits. A bitmap that cannot be read leaves the line as it is.
#include "core/library_state.h"
#include "support/pixel_order.h"
#include "support/row_bytes.h"
#include "write/fill_lines.h"

namespace vellum {
namespace {

// Gets the row that holds a line; false for a line outside the bitmap.
bool getLine(BYTE *line, DWORD index, HDC dc, HBITMAP bitmap, BITMAPINFO &info, UINT usage) {
    const LONG height = info.bmiHeader.biHeight;
    if (height <= 0 || index >= static_cast<DWORD>(height)) {
        return false;
    }
    const UINT scanLine = static_cast<UINT>(height) - 1 - index;
    return GetDIBits(dc, bitmap, scanLine, 1, line, &info, usage) != 0;
}

bool getLine(BYTE *line, DWORD index, const SaveLineContext &context) {
    return getLine(line, index, context.dc, context.bitmap, *context.bitmapInfo, context.strideOrUsage);
}

DWORD widthOf(const SaveLineContext &context) {
    return static_cast<DWORD>(context.bitmapInfo->bmiHeader.biWidth);
}

void complement(BYTE *line, DWORD bytes) {
    for (DWORD i = 0; i < bytes; ++i) {
        line[i] = static_cast<BYTE>(~line[i]);
    }
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI DllFillTiffLine(BYTE *line, DWORD row, SaveLineContext *context) {
    vellum::getLine(line, row, *context);
    return 0;
}

DWORD VELLUMAPI DllFillMonoTiffLine(BYTE *line, DWORD row, SaveLineContext *context) {
    if (vellum::getLine(line, row, *context)) {
        // By design: in whole 16-bit words, as rows of bitmaps are.
        vellum::complement(line, vellum::wordRowBytes(vellum::widthOf(*context), 1).fit().value_or(0));
    }
    return 0;
}

DWORD VELLUMAPI DllFillTiffLineBitmap24Bit(BYTE *line, DWORD row, SaveLineContext *context) {
    if (vellum::getLine(line, row, *context)) {
        vellum::exchangeRedAndBlue(line, vellum::widthOf(*context) * vellum::kBytesPerPixel);
    }
    return 0;
}

DWORD VELLUMAPI DllFillCcittLine(BYTE *line, DWORD row, CcittLineContext *context) {
    auto &info = reinterpret_cast<BITMAPINFO &>(vellum::library.ccittBitmap);
    vellum::getLine(line, row, context->dc, context->bitmap, info, DIB_RGB_COLORS);
    return 0;
}

} // extern "C"
