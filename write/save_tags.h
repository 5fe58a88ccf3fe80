// What a saved picture is tagged with, whichever front end saves it: compression by the code of the save interface,
// resolution, texts, colours. The choice itself is the library's save state, made by the caller or in the dialog.
#pragma once

#include "core/image_info.h"
#include "core/library_state.h"

namespace vellum {

// The picture as it will be stored.
struct SavedPicture {
    LONG width = 0;
    LONG height = 0;
    WORD bitsPerPixel = 0;
    LONG xPelsPerMeter = 0; // 0: the screen's resolution
    LONG yPelsPerMeter = 0;
    const RGBQUAD *colours = nullptr;
    DWORD colourCount = 0;

    [[nodiscard]] BITMAP bitmap() const;
    [[nodiscard]] bool firstColourIsBlack() const;
};

bool isBlack(const RGBQUAD &colour);

// 2 to the power of the depth; what has no 32 bits becomes the largest number.
DWORD coloursOfDepth(DWORD bitsPerPixel);

bool isSaveCode(LONG code);
bool isCcittCode(LONG code);

// Whether a picture can be saved with a code: Error::UnknownCompression for what is no code, Error::BadColorFormat for
// a depth that is not 1, 4, 8 or 24, CCITT codes with more than 1 bit per pixel, and JPEG with other than 24 bits or
// greys, or with a side of more than 65535 pixels.
Error checkSave(const SavedPicture &picture, LONG code);

// The choice of a save without the dialog. The texts stay as they are.
void chooseToSave(LONG code, DWORD fillOrder, DWORD photometric, DWORD colours);

// The PhotometricInterpretation that the library's save state comes to for a picture.
DWORD photometricOf(const SavedPicture &picture);

// Defines all tags of a picture on a newly defined image, as the library's save state has it.
Error defineSaveTags(TiffHandle tiff, DWORD index, const SavedPicture &picture);

} // namespace vellum
