// A bilevel picture put on a packed DIB in black and white, or in black alone.
#pragma once

#include "support/dib_view.h"

namespace vellum {

enum class Ink {
    BlackAndWhite,
    BlackOnly, // white pixels leave what is there
};

// Puts a picture of 1 bit per pixel, whose set bits are white, on a DIB, with its upper left corner there. What lies
// beside the DIB is cut off. In a DIB with a colour table the nearest colours stand for black and white.
void stamp(const DibView &dib, LONG left, LONG top, const DibView &bilevel, Ink ink);

} // namespace vellum
