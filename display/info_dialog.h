// The dialog that tells what an image is before it is loaded.
#pragma once

#include "core/tiff_file.h"

namespace vellum {

// Shows the dialog of a registered image; it is modal and has no owner. Result: IDOK to load the image, IDCANCEL not
// to; any other number means that the dialog could not be shown.
INT_PTR showInfoDialog(TiffHandle tiff, DWORD index);

} // namespace vellum
