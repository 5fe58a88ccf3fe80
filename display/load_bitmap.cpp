// Loading into a bitmap for the screen, and onto the clipboard.
#include "display/loading.h"

#include "display/palette.h"
#include "support/pixel_order.h"
#include "support/row_bytes.h"
#include "support/screen_dc.h"
#include "support/wait_cursor.h"

namespace vellum {
namespace {

// Hands one line to a bitmap. The line buffer's slack covers the row's rounding to 32 bits.
void placeInBitmap(const BYTE *line, DWORD row, const LoadLineContext &context) {
    const GlobalView<BITMAPINFOHEADER> header(context.hInfo);
    if (!header || row >= static_cast<DWORD>(header->biHeight)) {
        return;
    }
    const UINT scanLine = static_cast<UINT>(header->biHeight) - 1 - row;
    SetDIBits(context.dc, context.bitmap, scanLine, 1, line, reinterpret_cast<const BITMAPINFO *>(header.get()),
              context.strideOrUsage);
}

// Bilevel pictures stay so, others have the screen's depth.
bool isBilevel(const BITMAPINFOHEADER &header) {
    return header.biClrUsed == 2;
}

DWORD bitsInBitmap(HDC dc, const BITMAPINFOHEADER &header) {
    return isBilevel(header) ? 1 : static_cast<DWORD>(GetDeviceCaps(dc, PLANES) * GetDeviceCaps(dc, BITSPIXEL));
}

HBITMAP createBitmap(HDC dc, const BITMAPINFOHEADER &header) {
    return isBilevel(header) ? CreateBitmap(header.biWidth, header.biHeight, 1, 1, nullptr)
                             : CreateCompatibleBitmap(dc, header.biWidth, header.biHeight);
}

} // namespace

HBITMAP loadBitmap(TiffHandle tiff, DWORD index) {
    const ScreenDc dc;
    if (tiff == nullptr || !dc) {
        return nullptr;
    }
    const WaitCursor wait;
    const GlobalBlock info(GetTiffRGBQuad(tiff, index));
    const GlobalView<const BITMAPINFOHEADER> header(info.get());
    if (!header) {
        return nullptr;
    }
    const bool worthIt = worthLoading(tiff, index, *header, bitsInBitmap(dc.get(), *header));
    // A load that never reaches the decoder ends for want of memory.
    setError(Error::NoMemory);
    if (!worthIt) {
        return nullptr;
    }
    const OwnedPalette palette = makePalette(info.get());
    const RealizedPalette realized(dc.get(), palette.get());
    OwnedBitmap bitmap(createBitmap(dc.get(), *header));
    if (!bitmap) {
        return nullptr;
    }
    // The bitmap is selected nowhere: a screen's device context takes none, and SetDIBits wants it free.
    LoadLineContext context{};
    context.dc = dc.get();
    context.bitmap = bitmap.get();
    context.hInfo = info.get();
    context.lineBytes = wordRowBytes(static_cast<DWORD>(header->biWidth), header->biBitCount).fit().value_or(0);
    context.strideOrUsage = DIB_RGB_COLORS;
    const bool decoded = decodeInto(
        tiff, index, context, header->biBitCount == 24 ? asLineFunc<DllFlushTiffLine24> : asLineFunc<DllFlushTiffLine>);
    if (!decoded && lastError() != Error::UnexpectedEnd) {
        return nullptr;
    }
    return bitmap.release();
}

namespace {

// Puts the bitmap of a registered image onto the clipboard, which owns it from then on. Result: 1 or 0.
DWORD putOnClipboard(TiffHandle tiff, DWORD index) {
    OwnedBitmap bitmap(loadBitmap(tiff, index));
    if (!bitmap) {
        return 0;
    }
    const Clipboard clipboard;
    if (!clipboard) {
        return 0;
    }
    EmptyClipboard();
    if (SetClipboardData(CF_BITMAP, bitmap.get()) == nullptr) {
        return 0;
    }
    (void)bitmap.release();
    return 1;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI DllFlushTiffLine(BYTE *line, DWORD row, LoadLineContext *context) {
    vellum::placeInBitmap(line, row, *context);
    return 0;
}

DWORD VELLUMAPI DllFlushTiffLine24(BYTE *line, DWORD row, LoadLineContext *context) {
    vellum::exchangeRedAndBlue(line, context->lineBytes);
    LoadLineContext rgb = *context;
    rgb.strideOrUsage = DIB_RGB_COLORS;
    vellum::placeInBitmap(line, row, rgb);
    return 0;
}

HBITMAP VELLUMAPI LoadTiffChainIntoBitmap(TiffHandle tiff, DWORD index) {
    return vellum::loadBitmap(tiff, index);
}

HBITMAP VELLUMAPI LoadTiffIntoBitmap(const char *path, DWORD index, LONG showInfo) {
    return vellum::loadImage<HBITMAP>(path, index, showInfo, nullptr, vellum::loadBitmap);
}

DWORD VELLUMAPI LoadTiffFileIntoClipboard(const char *path, DWORD index, LONG showInfo) {
    // By design: 1 for a missing file, too. Callers tell it from a failed load by TiffError, not by the result.
    constexpr DWORD kUnopened = 1;
    return vellum::loadImage<DWORD>(path, index, showInfo, kUnopened, vellum::putOnClipboard);
}

} // extern "C"
