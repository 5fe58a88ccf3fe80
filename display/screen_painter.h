// Paints a picture on a window while it is being decoded: scroll bars, scale, rotation, background. Where the picture
// comes from is the source's business.
#pragma once

#include "display/screen_band.h"
#include "support/global_block.h"
#include "vellum32.h"

namespace vellum {

// How a picture is to be painted, and where: see DecompressTiffToScreen.
struct ScreenRequest {
    HWND window;
    HDC dc;
    const DWORD *ratios;
    DWORD flags;
};

struct ScreenPicture {
    GlobalBlock info;        // BITMAPINFOHEADER and colour table: 1, 4, 8 or 24 bits per pixel
    double dotsPerInchX = 0; // 0: the device's
    double dotsPerInchY = 0;
    bool inverted = false; // painted with NOTSRCCOPY, unless it is asked for inverted
};

class ScreenSource {
public:
    ScreenSource() = default;
    ScreenSource(const ScreenSource &) = delete;
    ScreenSource &operator=(const ScreenSource &) = delete;
    virtual ~ScreenSource() = default;

    [[nodiscard]] virtual LineFunc lineFunction(Rotation rotation) const = 0;
    // Decodes the picture through one of its line functions. The user value is a ScreenLineContext's address. Sets the
    // error, to none on success.
    virtual void decode(LineFunc forEachLine, DWORD userValue) const = 0;
};

// False with the error set: 1, or that of decoding.
bool paintOnScreen(const ScreenPicture &picture, const ScreenSource &source, const ScreenRequest &request);

} // namespace vellum
