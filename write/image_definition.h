// Building a new image's directory in memory, tag by tag.
#pragma once

#include "core/image_directory.h"
#include "core/image_info.h"

namespace vellum {

// Reserves a slot with an empty directory. Result: its index, or -1 with error 1.
LONG defineImage(TiffHandle tiff);

// Defines a tag of a registered image in place of any that it had; the new record goes behind all others. False with
// error 1 when there is no memory (or no values are given), or when the image is not registered.
bool defineTag(TiffHandle tiff, DWORD index, WORD tag, const void *values, DWORD type, DWORD count);

// The same for a tag of one number.
inline bool defineNumber(TiffHandle tiff, DWORD index, Tag tag, DWORD type, DWORD value) {
    return defineTag(tiff, index, static_cast<WORD>(tag), &value, type, 1);
}

// Removes a tag from a registered image; one that it does not have is removed already. False when the image is not
// registered.
bool removeTag(TiffHandle tiff, DWORD index, WORD tag);

// The same for all records that a caller does not want.
bool removeRecords(TiffHandle tiff, DWORD index, bool (*unwanted)(const RecordHead &record));

// Gives a registered image a copy of another registered image's directory in place of its own. False with error 1 when
// there is no memory.
bool copyDirectory(TiffHandle from, DWORD fromIndex, TiffHandle to, DWORD toIndex);

// Takes the definition of an image back, as if it had never been.
void undefineImage(TiffHandle tiff, DWORD index);

} // namespace vellum
