// From packed DIBs to bitmaps that can be drawn on, and from bitmaps to packed DIBs. Pixel values and colour tables
// stay as they are, in either direction.
#pragma once

#include "support/dib_view.h"
#include "support/gdi_objects.h"

namespace vellum {

// A bitmap's record. Empty (width 0) for what is no bitmap.
BITMAP describeBitmap(HBITMAP bitmap);

// A bitmap as a packed DIB without a resolution: 1, 4 and 8 bits per pixel stay, all others become 24. The bitmap must
// not be selected into a device context. Empty without memory for it.
GlobalBlock packBitmap(HBITMAP bitmap);

// A copy of a bitmap: the same size, planes and bits per pixel, the same pixels. Empty when there is none.
OwnedBitmap copyBitmap(HBITMAP bitmap);

// A copy of a DIB that can be drawn on: what is drawn gets the nearest of the DIB's own colours. It looks at the DIB
// only while it is made.
class DrawableDib {
public:
    explicit DrawableDib(const DibView &dib);

    // False without memory for it.
    explicit operator bool() const { return static_cast<bool>(bitmap_) && static_cast<bool>(packed_); }
    // To select into a device context, and to take out of it again before pack() is called.
    [[nodiscard]] HBITMAP bitmap() const { return bitmap_.get(); }
    // The DIB as it is now: header, colour table and resolution are those of the original.
    [[nodiscard]] GlobalBlock pack() &&;

private:
    OwnedBitmap bitmap_;
    BYTE *pixels_ = nullptr; // of bitmap_
    GlobalBlock packed_;
};

// Gives a packed DIB a resolution. By design the pixels per metre are truncated, not rounded: 200 dots per inch are
// 7873, which is what programs that compare them have seen.
void setResolution(HGLOBAL dib, DWORD xDotsPerInch, DWORD yDotsPerInch);

} // namespace vellum
