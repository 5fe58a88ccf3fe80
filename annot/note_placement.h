// Where a note lies: from the window to the image when it is made, and back when it is painted. Numbers only; rounding
// adds a half and drops the fraction.
#pragma once

#include "display/screen_placement.h"
#include "vellum32.h"

#include <optional>

namespace vellum {

// Pixels of the screen for one of the image.
struct NoteScale {
    double x = 1.0;
    double y = 1.0;
};

// The image that a note is placed on, and the window that shows it.
struct NotedImage {
    Extent pixels; // empty without an image
    LONG xPelsPerMeter = 0;
    LONG yPelsPerMeter = 0;
    LONG deviceDotsPerInchX = 0;
    LONG deviceDotsPerInchY = 0;
    Extent client;
    LONG scrollX = 0;
    LONG scrollY = 0;
};

// How the caller shows the image, and where the user clicked: see NotePlus.
struct NoteView {
    const POINT *clickPoint = nullptr;
    const POINT *imageOffset = nullptr;
    const LONG *zoom = nullptr;
    DWORD flags = 0;
};

NoteScale noteScale(const NotedImage &image, const LONG *zoom, DWORD flags);

// The image pixel in the corner of the client area, by the scroll bars.
POINT scrolledOffset(const NotedImage &image, const NoteScale &scale);

// The image pixel that the note begins at. `place` is where it was.
POINT notePlace(const NotedImage &image, const NoteView &view, const POINT &place);

// Where the image stands when a note is painted.
struct NoteCanvas {
    POINT imageOffset = {};
    NoteScale scale;
    POINT origin = {}; // where the image offset is, on the device
};

// The rectangle on the device that a note is drawn in, its size times `sizeScale`. Nothing for a note that begins left
// of the image offset or above it.
std::optional<RECT> noteOnDevice(const NoteRecord &note, const NoteCanvas &canvas, const NoteScale &sizeScale);

} // namespace vellum
