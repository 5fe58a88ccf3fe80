// GetDIBits, GetBitmapBits, and DIB sections in the layout of packed DIBs.
#include "display/dib_bitmap.h"

#include "support/bitmap_depth.h"
#include "support/numeric.h"
#include "support/screen_dc.h"

#include <algorithm>
#include <iterator>

namespace vellum {
namespace {

constexpr DWORD kMostColours = 256;
constexpr double kInchesPerMeter = 39.37;

struct ColourInfo {
    BITMAPINFOHEADER header = {};
    RGBQUAD colours[kMostColours] = {};

    BITMAPINFO *get() { return reinterpret_cast<BITMAPINFO *>(this); }
};

// Colours of a table that has them all; 0 where there is no table.
DWORD allColours(WORD bitsPerPixel) {
    return bitsPerPixel <= 8 ? 1u << bitsPerPixel : 0;
}

BITMAPINFOHEADER packedHeader(const BITMAP &bitmap) {
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = bitmap.bmWidth;
    header.biHeight = bitmap.bmHeight;
    header.biPlanes = 1;
    header.biBitCount = depthAsDib(bitmap);
    return header;
}

Size imageBytes(const BITMAPINFOHEADER &header) {
    return dibRowBytes(static_cast<DWORD>(header.biWidth), header.biBitCount) *
           Size(static_cast<DWORD>(header.biHeight));
}

// The DIB's header and colours for a DIB section. A short table is filled up with its first colour, so that nothing
// that is drawn gets a value behind the table's end.
ColourInfo sectionInfo(const DibView &dib) {
    ColourInfo info;
    info.header.biSize = sizeof info.header;
    info.header.biWidth = dib.header().biWidth;
    info.header.biHeight = dib.header().biHeight;
    info.header.biPlanes = 1;
    info.header.biBitCount = dib.bitsPerPixel();
    if (dib.bitsPerPixel() <= 8) {
        std::fill(std::begin(info.colours), std::end(info.colours), *dib.colours());
        std::copy_n(dib.colours(), std::min(dib.colourCount(), kMostColours), info.colours);
    }
    return info;
}

// Everything before the rows.
std::size_t bytesBeforeRows(const DibView &dib) {
    return static_cast<std::size_t>(dib.bits() - reinterpret_cast<const BYTE *>(dib.colours())) + dib.header().biSize;
}

// Whether a bitmap's bits are those of a DIB of one bit per pixel: the colours of a DIB section are its own.
bool isPlainBilevel(const BITMAP &bitmap) {
    return bitmap.bmPlanes == 1 && bitmap.bmBitsPixel == 1 && bitmap.bmBits == nullptr;
}

// The rows of a bilevel bitmap, which come from the top at multiples of two bytes, into a DIB's. Bit for bit they are
// the same; the system looks up the colours of every single one.
bool copyBilevelRows(HBITMAP bitmap, const BITMAP &record, BYTE *rows) {
    const auto width = static_cast<DWORD>(record.bmWidth);
    const auto height = static_cast<std::size_t>(record.bmHeight);
    const std::size_t rowBytes = wordRowBytes(width, 1).fit().value_or(0);
    const std::size_t stride = dibRowBytes(width, 1).fit().value_or(0);
    const GlobalBlock block = GlobalBlock::allocate(Size(rowBytes) * Size(height));
    const GlobalView<BYTE> bits(block.get());
    const auto bytes = static_cast<LONG>(rowBytes * height);
    if (!bits || GetBitmapBits(bitmap, bytes, bits.get()) != bytes) {
        return false;
    }
    const std::size_t pixelBytes = lineBytes(width, 1).fit().value_or(0);
    const auto lastPixels = static_cast<BYTE>(0xFF << (7 - (width - 1) % 8));
    for (std::size_t row = 0; row < height; ++row) {
        BYTE *const to = rows + (height - 1 - row) * stride;
        std::memcpy(to, bits.get() + row * rowBytes, pixelBytes);
        to[pixelBytes - 1] &= lastPixels;
    }
    return true;
}

// The colours come as well.
bool copyRows(HBITMAP bitmap, const BITMAP &record, BYTE *rows, ColourInfo &info) {
    if (isPlainBilevel(record)) {
        info.colours[0] = {0, 0, 0, 0};
        info.colours[1] = {255, 255, 255, 0};
        return copyBilevelRows(bitmap, record, rows);
    }
    const ScreenDc screen;
    return screen && GetDIBits(screen.get(), bitmap, 0, static_cast<UINT>(record.bmHeight), rows, info.get(),
                               DIB_RGB_COLORS) == record.bmHeight;
}

} // namespace

BITMAP describeBitmap(HBITMAP bitmap) {
    BITMAP record{};
    if (GetObjectA(bitmap, sizeof record, &record) == 0 || record.bmWidth <= 0 || record.bmHeight <= 0) {
        return {};
    }
    return record;
}

GlobalBlock packBitmap(HBITMAP bitmap) {
    const BITMAP record = describeBitmap(bitmap);
    if (record.bmWidth == 0) {
        return {};
    }
    ColourInfo info;
    info.header = packedHeader(record);
    const DWORD colourBytes = allColours(info.header.biBitCount) * static_cast<DWORD>(sizeof(RGBQUAD));
    const Size rowsBytes = imageBytes(info.header);
    GlobalBlock block = GlobalBlock::allocate(Size(sizeof info.header) + Size(colourBytes) + rowsBytes);
    const GlobalView<BYTE> packed(block.get());
    if (!packed || !copyRows(bitmap, record, packed.get() + sizeof info.header + colourBytes, info)) {
        return {};
    }
    info.header = packedHeader(record);
    info.header.biSizeImage = rowsBytes.fit().value_or(0);
    info.header.biClrUsed = allColours(info.header.biBitCount);
    std::memcpy(packed.get(), &info, sizeof info.header + colourBytes);
    return block;
}

OwnedBitmap copyBitmap(HBITMAP bitmap) {
    const BITMAP record = describeBitmap(bitmap);
    if (record.bmWidth == 0) {
        return OwnedBitmap();
    }
    if (record.bmBits != nullptr) {
        // A DIB section: its colours belong to it.
        return OwnedBitmap(static_cast<HBITMAP>(CopyImage(bitmap, IMAGE_BITMAP, 0, 0, LR_CREATEDIBSECTION)));
    }
    const Size rowBytes = wordRowBytes(static_cast<DWORD>(record.bmWidth), record.bmBitsPixel);
    const Size bytes = rowBytes * Size(static_cast<DWORD>(record.bmHeight)) * Size(record.bmPlanes);
    const GlobalBlock block = GlobalBlock::allocate(bytes);
    const GlobalView<BYTE> bits(block.get());
    const auto count = static_cast<LONG>(bytes.fit().value_or(0));
    if (!bits || GetBitmapBits(bitmap, count, bits.get()) == 0) {
        return OwnedBitmap();
    }
    return OwnedBitmap(CreateBitmap(record.bmWidth, record.bmHeight, record.bmPlanes, record.bmBitsPixel, bits.get()));
}

DrawableDib::DrawableDib(const DibView &dib) {
    ColourInfo info = sectionInfo(dib);
    const std::size_t rowsOffset = bytesBeforeRows(dib);
    const Size rowsBytes = imageBytes(info.header);
    packed_ = GlobalBlock::allocate(Size(rowsOffset) + rowsBytes);
    const GlobalView<BYTE> packed(packed_.get());
    void *pixels = nullptr;
    bitmap_ = OwnedBitmap(CreateDIBSection(nullptr, info.get(), DIB_RGB_COLORS, &pixels, nullptr, 0));
    if (!packed || !bitmap_) {
        return;
    }
    pixels_ = static_cast<BYTE *>(pixels);
    std::memcpy(packed.get(), &dib.header(), sizeof dib.header());
    std::memcpy(packed.get() + sizeof dib.header(), dib.bits() - rowsOffset + sizeof dib.header(),
                rowsOffset - sizeof dib.header());
    std::memcpy(pixels_, dib.bits(), rowsBytes.fit().value_or(0));
}

GlobalBlock DrawableDib::pack() && {
    GdiFlush();
    if (const DibView packed(packed_.get()); packed) {
        std::memcpy(packed.bits(), pixels_, std::size_t{packed.stride()} * packed.height());
    }
    return std::move(packed_);
}

void setResolution(HGLOBAL dib, DWORD xDotsPerInch, DWORD yDotsPerInch) {
    const GlobalView<BITMAPINFOHEADER> header(dib);
    if (header) {
        header->biXPelsPerMeter = truncateToLong(xDotsPerInch * kInchesPerMeter);
        header->biYPelsPerMeter = truncateToLong(yDotsPerInch * kInchesPerMeter);
    }
}

} // namespace vellum
