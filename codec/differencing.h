// Horizontal differencing (Predictor 2) of one line, in place, by bits per pixel: 4 (nibbles, high one first), 8 and 24
// (three interleaved channels). Lines of any other depth are left unchanged.
#pragma once

#include <windows.h>

#include <cstddef>

namespace vellum {

// Samples from differences: each is the sum of the one before it (of its channel) and itself, modulo its size.
void undoHorizontalDifferencing(BYTE *line, std::size_t bytes, unsigned bitsPerPixel);

// Differences from samples; the first sample of every channel is kept.
void applyHorizontalDifferencing(BYTE *line, std::size_t bytes, unsigned bitsPerPixel);

} // namespace vellum
