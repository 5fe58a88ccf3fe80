// Which of the screen line functions a picture needs.
#pragma once

#include "display/screen_band.h"

namespace vellum {

// For an image in a TIFF file.
LineFunc screenLineFunction(Rotation rotation, WORD bitsPerPixel);

} // namespace vellum
