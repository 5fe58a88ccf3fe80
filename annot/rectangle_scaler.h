// A rectangle of a packed DIB, scaled to another size, as a DIB of its own: 1, 4, 8 or 24 bits per pixel, with the
// nearest pixel for every one of the new picture.
#pragma once

#include "support/dib_view.h"

namespace vellum {

// In pixels, counted from the top row. It may reach beyond the picture on the right and below.
struct PixelRectangle {
    LONG x = 0;
    LONG y = 0;
    LONG width = 0;
    LONG height = 0;
};

// Empty for a rectangle that does not begin in the picture, for lengths below 1, other depths, and without memory.
GlobalBlock scaleRectangle(const DibView &dib, const PixelRectangle &source, LONG width, LONG height);

} // namespace vellum
