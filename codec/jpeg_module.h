// The companion JPEG module: loaded by the first image that needs it, handed the codec state, unloaded when a TIFF is
// closed.
#pragma once

#include "core/error.h"
#include "vellum32.h"

namespace vellum {

// Lets the module decode. The state is the first member of a JpegCodecState. Without the module, or without its entry,
// a message box is shown and the decode counts as success without lines.
Error decodeByJpegModule(CodecState &state);

// The same for encoding.
Error encodeByJpegModule(CodecState &state);

// Whether the module can encode; if not, the message box has been shown.
bool jpegModuleEncodes();

} // namespace vellum
