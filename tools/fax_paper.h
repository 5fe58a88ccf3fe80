// The bitmaps that the pages of a fax are drawn on: the form out of a TIFF, and white paper of a size in pixels.
#pragma once

#include "tools/file_name.h"
#include "vellum32.h"

#include <memory>
#include <string>

namespace tool {

struct BitmapDeleter {
    using pointer = HBITMAP;
    void operator()(HBITMAP bitmap) const { DeleteObject(bitmap); }
};
using OwnedBitmap = std::unique_ptr<HBITMAP, BitmapDeleter>;

struct FaxForm {
    OwnedBitmap bitmap;
    std::string failure; // why there is none; empty when there is
};

// The first page of a TIFF, whose size and resolution become those of the record.
FaxForm loadForm(const FileName &name, FaxPageParams &page);

// 1 bit per pixel. Null without memory for it.
OwnedBitmap whitePaper(DWORD columns, DWORD rows);

} // namespace tool
