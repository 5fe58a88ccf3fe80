// The life of a TiffHandle: opening, closing, and the register of images whose tags are in memory. The exported
// functions of the same purpose say what each call does.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

// Null on failure, with the error set.
TiffHandle openTiffFile(const char *path, DWORD mode);
TiffHandle openTiffInMemory(HGLOBAL memory, DWORD size, DWORD mode);

bool closeTiffFile(TiffHandle tiff);

// Stores the path unless it is null and the byte order unless it is 0.
bool modifyTiffFile(TiffHandle tiff, const char *path, LONG byteOrder);

// Sets error 3 for an index outside the table of slots.
bool isImageRegistered(TiffHandle tiff, DWORD index);
bool registerImage(TiffHandle tiff, DWORD index);
bool dropImage(TiffHandle tiff, DWORD index);

DWORD countImages(TiffHandle tiff, DWORD subfileType);

} // namespace vellum
