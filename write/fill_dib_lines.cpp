// The fill functions that take lines out of a packed DIB. TIFF lines go top first, DIB rows lie bottom first.
#include "support/pixel_order.h"
#include "write/fill_lines.h"

#include <cstring>

namespace vellum {
namespace {

// The row that holds a line; null for a line outside the DIB.
const BYTE *rowOf(DWORD line, const SaveLineContext &context) {
    if (line >= context.height) {
        return nullptr;
    }
    const std::size_t rowFromBottom = context.height - 1 - line;
    return context.bits + rowFromBottom * context.strideOrUsage;
}

void copyLine(BYTE *line, DWORD index, const SaveLineContext &context) {
    if (const BYTE *row = rowOf(index, context); row != nullptr) {
        std::memcpy(line, row, context.rowBytes);
    }
}

} // namespace

DWORD VELLUMAPI fillComplementedDibLine(BYTE *line, DWORD index, SaveLineContext *context) {
    if (const BYTE *row = rowOf(index, *context); row != nullptr) {
        for (DWORD i = 0; i < context->rowBytes; ++i) {
            line[i] = static_cast<BYTE>(~row[i]);
        }
    }
    return 0;
}

} // namespace vellum

extern "C" {

DWORD VELLUMAPI DllFillTiffLineDIB(BYTE *line, DWORD row, SaveLineContext *context) {
    vellum::copyLine(line, row, *context);
    return 0;
}

DWORD VELLUMAPI DllFillTiffLineDIBforGamma(BYTE *line, DWORD row, SaveLineContext *context) {
    OutputDebugStringA(context->invert != 0 ? "Inverting image\n" : "NOT Inverting image\n");
    return context->invert != 0 ? vellum::fillComplementedDibLine(line, row, context)
                                : DllFillTiffLineDIB(line, row, context);
}

DWORD VELLUMAPI DllFillTiffLineDIB24Bit(BYTE *line, DWORD row, SaveLineContext *context) {
    if (row < context->height) {
        vellum::copyLine(line, row, *context);
        vellum::exchangeRedAndBlue(line, context->rowBytes);
    }
    return 0;
}

} // extern "C"
