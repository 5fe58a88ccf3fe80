// The line functions that put decoded lines into a packed DIB. TIFF lines come top first, DIB rows lie bottom first.
#include "support/pixel_order.h"
#include "vellum32.h"

#include <cstring>

namespace vellum {
namespace {

void placeInDib(const BYTE *line, DWORD row, const LoadLineContext &context) {
    if (row < context.height) {
        const std::size_t dibRow = context.height - 1 - row;
        std::memcpy(context.bits + dibRow * context.strideOrUsage, line, context.lineBytes);
    }
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI DllFlushTiffLineDIB(BYTE *line, DWORD row, LoadLineContext *context) {
    vellum::placeInDib(line, row, *context);
    return 0;
}

DWORD VELLUMAPI DllFlushTiffLine24DIB(BYTE *line, DWORD row, LoadLineContext *context) {
    vellum::exchangeRedAndBlue(line, context->lineBytes);
    vellum::placeInDib(line, row, *context);
    return 0;
}

} // extern "C"
