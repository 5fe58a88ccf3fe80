// Painting of an image of a TIFF file, and of a file of any kind. What paints the others is called as a program would.
#include "core/image_info.h"
#include "core/message_box.h"
#include "core/tiff_header.h"
#include "display/loading.h"
#include "display/screen_lines.h"
#include "display/screen_painter.h"
#include "support/wait_cursor.h"

namespace vellum {
namespace {

constexpr char kCaption[] = "VELLUMSDK";
constexpr char kUnsupported[] = "Color format is not supported.";
// By design: the international inch, where the conversions of files use the survey inch; sizes on the screen have been
// these.
constexpr double kMetersPerInchOnScreen = 0.0254;

class TiffOnScreen : public ScreenSource {
public:
    TiffOnScreen(TiffHandle tiff, DWORD index, WORD bitsPerPixel)
        : tiff_(tiff), index_(index), bitsPerPixel_(bitsPerPixel) {}

    [[nodiscard]] LineFunc lineFunction(Rotation rotation) const override {
        return screenLineFunction(rotation, bitsPerPixel_);
    }
    void decode(LineFunc forEachLine, DWORD userValue) const override {
        DecodeTiffImage(tiff_, index_, 0, 0, userValue, forEachLine);
    }

private:
    TiffHandle tiff_;
    DWORD index_;
    WORD bitsPerPixel_;
};

// A bilevel image without the tag is shown as those are whose zeros are white.
bool isInverted(TiffHandle tiff, DWORD index, const BITMAPINFOHEADER &header) {
    return header.biBitCount == 1 && firstValue(tiff, index, Tag::Photometric).value_or(kWhiteIsZero) == kWhiteIsZero;
}

// Tells the user when the image has a number of bits per pixel that is not supported, which is error 16; so are
// separate planes, of which the user is not told.
void tellOfUnsupportedDepth(TiffHandle tiff, DWORD index) {
    if (lastError() != Error::BadColorFormat) {
        return;
    }
    BITMAPINFOHEADER header{};
    header.biBitCount = 1; // stays so for separate planes
    GetTiffDimensions(tiff, index, &header);
    if (header.biBitCount != 1) {
        tellUser(kUnsupported, kCaption, MB_TASKMODAL);
        // The program may have painted another picture meanwhile.
        setError(Error::BadColorFormat);
    }
}

bool paintImage(TiffHandle tiff, DWORD index, const ScreenRequest &request) {
    ScreenPicture picture;
    picture.info = GlobalBlock(GetTiffRGBQuad(tiff, index));
    if (!picture.info) {
        tellOfUnsupportedDepth(tiff, index);
        return false;
    }
    const GlobalView<const BITMAPINFOHEADER> header(picture.info.get());
    if (!header || !worthLoading(tiff, index, *header, header->biBitCount)) {
        return recorded(Error::NoMemory) != 0;
    }
    picture.dotsPerInchX = header->biXPelsPerMeter * kMetersPerInchOnScreen;
    picture.dotsPerInchY = header->biYPelsPerMeter * kMetersPerInchOnScreen;
    picture.inverted = isInverted(tiff, index, *header);
    return paintOnScreen(picture, TiffOnScreen(tiff, index, header->biBitCount), request);
}

LONG paintTiff(const char *path, DWORD index, const ScreenRequest &request) {
    if (path == nullptr || *path == '\0' || request.dc == nullptr) {
        return 0;
    }
    const LoadedImage image(path, index);
    if (!image) {
        return 0;
    }
    const WaitCursor wait;
    return paintImage(image.tiff(), index, request) ? 1 : 0;
}

// VELLUM_SHOW_ANY for a file of no kind that can be painted.
LONG kindOf(const char *path) {
    if (path != nullptr && looksLikeTiff(path)) {
        return VELLUM_SHOW_TIFF;
    }
    return GlobalBlock(ReadCALSHead(path)) ? VELLUM_SHOW_CALS : VELLUM_SHOW_ANY;
}

} // namespace
} // namespace vellum

extern "C" {

LONG VELLUMAPI DecompressTiffToScreen(HWND window, HDC dc, const char *path, DWORD index, const DWORD *ratios,
                                      DWORD flags) {
    return vellum::paintTiff(path, index, {window, dc, ratios, flags});
}

DWORD VELLUMAPI DecompressToScreen(LONG kind, HWND window, HDC dc, const char *path, DWORD index, const DWORD *ratios,
                                   DWORD flags) {
    switch (kind == VELLUM_SHOW_ANY ? vellum::kindOf(path) : kind) {
    case VELLUM_SHOW_TIFF:
        return static_cast<DWORD>(DecompressTiffToScreen(window, dc, path, index, ratios, flags));
    case VELLUM_SHOW_CALS:
        return DecompressCALSToScreen(window, dc, path, reinterpret_cast<const LONG *>(ratios),
                                      static_cast<BYTE>(flags));
    default:
        return 0;
    }
}

} // extern "C"
