// The line functions of the CALS calls: those of the TIFF loaders and savers, for another context.
#include "write/fill_lines.h"

extern "C" {

DWORD VELLUMAPI DllFlushCALSLineDIB(BYTE *line, DWORD row, CalsLineContext *context) {
    LoadLineContext dib{};
    dib.bits = context->bits;
    dib.height = context->height;
    dib.lineBytes = context->lineBytes;
    dib.strideOrUsage = context->stride;
    return DllFlushTiffLineDIB(line, row, &dib);
}

DWORD VELLUMAPI DllFillCALSLineDIB(BYTE *line, DWORD row, CalsLineContext *context) {
    SaveLineContext dib{};
    dib.bits = context->bits;
    dib.height = context->height;
    dib.rowBytes = context->lineBytes;
    dib.strideOrUsage = context->stride;
    return context->invert != 0 ? vellum::fillComplementedDibLine(line, row, &dib)
                                : DllFillTiffLineDIB(line, row, &dib);
}

} // extern "C"
