// Loading into a packed DIB: the header and colour table grow into the whole DIB, and the lines are copied into it.
#include "display/loading.h"

#include "support/row_bytes.h"
#include "support/wait_cursor.h"

namespace vellum {
namespace {

// A packed DIB in the making: the block and where its rows begin.
struct DibLayout {
    BITMAPINFOHEADER header;
    DWORD bitsOffset;
    DWORD stride;
    Size imageBytes;
};

std::optional<DibLayout> layoutOf(HGLOBAL block) {
    const GlobalView<BITMAPINFOHEADER> header(block);
    if (!header) {
        return std::nullopt;
    }
    const Size stride = dibRowBytes(static_cast<DWORD>(header->biWidth), header->biBitCount);
    const Size imageBytes = stride * Size(static_cast<DWORD>(header->biHeight));
    header->biSizeImage = imageBytes.fit().value_or(0);
    return DibLayout{*header, static_cast<DWORD>(header->biSize + header->biClrUsed * sizeof(RGBQUAD)),
                     stride.fit().value_or(0), imageBytes};
}

// Grows a header and colour table to the whole DIB. An empty block when there is no memory for it.
GlobalBlock grownToDib(TiffHandle tiff, DWORD index, GlobalBlock block, const DibLayout &layout) {
    const bool grown = worthLoading(tiff, index, layout.header, layout.header.biBitCount) &&
                       block.grow(Size(layout.bitsOffset) + layout.imageBytes);
    if (!grown) {
        block.reset();
    }
    return block;
}

bool decodeIntoDib(TiffHandle tiff, DWORD index, HGLOBAL dib, const DibLayout &layout) {
    const GlobalView<BYTE> bytes(dib, layout.bitsOffset);
    if (!bytes) {
        return false;
    }
    const auto width = static_cast<DWORD>(layout.header.biWidth);
    LoadLineContext context{};
    context.hInfo = dib;
    context.bits = bytes.get() + layout.bitsOffset;
    context.height = static_cast<DWORD>(layout.header.biHeight);
    context.lineBytes = lineBytes(width, layout.header.biBitCount).fit().value_or(0);
    context.strideOrUsage = layout.stride;
    return decodeInto(tiff, index, context,
                      layout.header.biBitCount <= 8 ? asLineFunc<DllFlushTiffLineDIB>
                                                    : asLineFunc<DllFlushTiffLine24DIB>);
}

} // namespace

HGLOBAL loadDib(TiffHandle tiff, DWORD index) {
    const WaitCursor wait;
    GlobalBlock dib(GetTiffRGBQuad(tiff, index));
    const auto layout = layoutOf(dib.get());
    if (!layout) {
        return nullptr;
    }
    dib = grownToDib(tiff, index, std::move(dib), *layout);
    // A load that never reaches the decoder ends for want of memory.
    setError(Error::NoMemory);
    if (!dib) {
        return nullptr;
    }
    if (!decodeIntoDib(tiff, index, dib.get(), *layout) && !leavesPartOfThePicture(lastError())) {
        return nullptr;
    }
    return dib.release();
}

} // namespace vellum

extern "C" HGLOBAL VELLUMAPI LoadTiffIntoDIB(const char *path, DWORD index, LONG showInfo) {
    return vellum::loadImage<HGLOBAL>(path, index, showInfo, nullptr, vellum::loadDib);
}
