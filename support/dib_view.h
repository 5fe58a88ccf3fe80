// One validated view of a packed DIB in a global block: header, colour table, bottom-up rows padded to 32 bits. The
// block stays locked as long as the view lives, and everything that the header promises lies inside it.
//
// Taken: headers of 40 bytes and more, one plane, 1, 4, 8, 16, 24 or 32 bits per pixel, uncompressed, bottom-up.
// Colours by masks are taken where only the system looks at pixels.
#pragma once

#include "support/global_block.h"
#include "support/row_bytes.h"

#include <cstring>

namespace vellum {

// The entries that a header says its colour table has: up to 8 bits per pixel a count of 0 stands for all of them.
constexpr DWORD colourTableEntries(const BITMAPINFOHEADER &header) {
    if (header.biClrUsed != 0) {
        return header.biClrUsed;
    }
    return header.biBitCount == 1 || header.biBitCount == 4 || header.biBitCount == 8 ? 1u << header.biBitCount : 0;
}

enum class ColourMasks { Refused, Taken };

class DibView {
public:
    explicit DibView(HGLOBAL dib, ColourMasks masks = ColourMasks::Refused)
        : block_(dib, 0), valid_(locked() && measure(masks)) {}

    // False for a handle that cannot be locked.
    [[nodiscard]] bool locked() const { return static_cast<bool>(block_); }
    // False also for a header that is not taken or that promises more than the block holds. Nothing below may then be
    // asked.
    explicit operator bool() const { return valid_; }

    // As it was when the view was made: what the owner writes into the block later moves no bound.
    [[nodiscard]] const BITMAPINFOHEADER &header() const { return header_; }
    [[nodiscard]] DWORD width() const { return static_cast<DWORD>(header_.biWidth); }
    [[nodiscard]] DWORD height() const { return static_cast<DWORD>(header_.biHeight); }
    [[nodiscard]] WORD bitsPerPixel() const { return header_.biBitCount; }

    // Bytes from row to row.
    [[nodiscard]] DWORD stride() const { return stride_; }
    // The lowest row.
    [[nodiscard]] BYTE *bits() const { return block_.get() + bitsOffset_; }

    // At most 2 to the power of the depth where the depth is 8 or less.
    [[nodiscard]] DWORD colourCount() const { return colourTableEntries(header_); }
    // What stands behind the header: of a DIB with masks, these.
    [[nodiscard]] const RGBQUAD *colours() const {
        return reinterpret_cast<const RGBQUAD *>(block_.get() + header_.biSize);
    }

private:
    static constexpr DWORD kMaskBytes = 3 * sizeof(DWORD);

    static constexpr bool isDepth(WORD bits) {
        return bits == 1 || bits == 4 || bits == 8 || bits == 16 || bits == 24 || bits == 32;
    }

    static constexpr bool isTaken(const BITMAPINFOHEADER &header) {
        return header.biSize >= sizeof header && header.biWidth > 0 && header.biHeight > 0 && header.biPlanes == 1 &&
               isDepth(header.biBitCount) && (header.biBitCount > 8 || header.biClrUsed <= 1u << header.biBitCount);
    }
    static constexpr bool hasMasks(const BITMAPINFOHEADER &header) {
        return header.biCompression == BI_BITFIELDS && (header.biBitCount == 16 || header.biBitCount == 32) &&
               (header.biSize == sizeof header || header.biSize >= sizeof header + kMaskBytes);
    }
    // Longer headers have fields for the masks.
    static constexpr Size masksBehind(const BITMAPINFOHEADER &header) {
        return Size(hasMasks(header) && header.biSize == sizeof header ? kMaskBytes : 0);
    }

    bool measure(ColourMasks masks) {
        if (block_.bytes() < sizeof header_) {
            return false;
        }
        std::memcpy(&header_, block_.get(), sizeof header_);
        const bool knownPixels = header_.biCompression == BI_RGB || (masks == ColourMasks::Taken && hasMasks(header_));
        if (!isTaken(header_) || !knownPixels) {
            return false;
        }
        const Size offset = Size(header_.biSize) + masksBehind(header_) + Size(colourCount()) * Size(sizeof(RGBQUAD));
        const Size stride = dibRowBytes(width(), bitsPerPixel());
        const auto end = (offset + stride * Size(height())).fit();
        if (!end || *end > block_.bytes()) {
            return false;
        }
        stride_ = stride.fit().value_or(0);
        bitsOffset_ = offset.fit().value_or(0);
        return true;
    }

    GlobalView<BYTE> block_;
    BITMAPINFOHEADER header_ = {};
    DWORD stride_ = 0;
    DWORD bitsOffset_ = 0;
    bool valid_;
};

} // namespace vellum
