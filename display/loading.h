// Loading of whole images: what the loaders share, and their inner functions. A loader opens its file, registers the
// image and asks the user if it is told to (loadImage), then decodes.
#pragma once

#include "codec/context_lines.h"
#include "core/loaded_image.h"

namespace vellum {

// Whether the image's file can fill a picture of this size, which has so many bits per pixel in memory: a small file
// may claim a huge one. The file is looked at only for large pictures.
bool worthLoading(TiffHandle tiff, DWORD index, const BITMAPINFOHEADER &header, DWORD bitsInMemory);

// Decodes a whole registered image through a line function that works on a context.
inline bool decodeInto(TiffHandle tiff, DWORD index, LoadLineContext &context, LineFunc lineFunction) {
    return DecodeTiffImage(tiff, index, 0, 0, userValueOf(context), lineFunction) != 0;
}

// True for the errors that leave a picture worth having: the data end early, or an end-of-facsimile code is missing or
// comes too soon.
bool leavesPartOfThePicture(Error error);

// Shows the information dialog of a registered image. False when the user cancelled, with error 0, and when the dialog
// could not be shown, with error 1.
bool userWants(TiffHandle tiff, DWORD index);

// Runs a loader on an image of a file. Result: the loader's; unopened when the file does not open or the image cannot
// be registered; 0 when the user is to be asked and does not want the image.
template <class Result>
Result loadImage(const char *path, DWORD index, LONG showInfo, Result unopened, Result (*load)(TiffHandle, DWORD)) {
    const LoadedImage image(path, index);
    if (!image) {
        return unopened;
    }
    return showInfo == 0 || userWants(image.tiff(), index) ? load(image.tiff(), index) : Result{};
}

// The packed DIB of a registered image; null when there is none, with the error set.
HGLOBAL loadDib(TiffHandle tiff, DWORD index);

// The bitmap of a registered image, for the screen; null when there is none.
HBITMAP loadBitmap(TiffHandle tiff, DWORD index);

} // namespace vellum
