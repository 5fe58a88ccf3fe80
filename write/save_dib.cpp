// Saving a packed DIB as a new image of a TIFF file.
#include "support/dib_view.h"
#include "write/save_dialog.h"
#include "write/saving.h"

namespace vellum {
namespace {

// What the fax savers do differently: a bilevel picture is always stored as white is zero.
enum class Storing { AsItIs, ForGamma };

struct SaveRequest {
    const char *fileName;
    HGLOBAL dib;
    LONG code;
    bool showDialog;
    DWORD fillOrder;
    Storing storing;
};

SavedPicture pictureOf(const DibView &dib) {
    SavedPicture picture;
    picture.width = dib.header().biWidth;
    picture.height = dib.header().biHeight;
    picture.bitsPerPixel = dib.bitsPerPixel();
    picture.xPelsPerMeter = dib.header().biXPelsPerMeter;
    picture.yPelsPerMeter = dib.header().biYPelsPerMeter;
    picture.colours = dib.colours();
    picture.colourCount = dib.colourCount();
    return picture;
}

// A bilevel picture as it is stored with its colours, and its pixels, exchanged: the first colour, which was black, is
// the second one then, and the first is never black.
SavedPicture exchanged(const SavedPicture &picture, RGBQUAD (&colours)[2]) {
    const bool hasOther = picture.colourCount == 2 && !isBlack(picture.colours[1]);
    colours[0] = hasOther ? picture.colours[1] : RGBQUAD{255, 255, 255, 0};
    colours[1] = picture.colours[0];
    SavedPicture stored = picture;
    stored.colours = colours;
    stored.colourCount = 2;
    return stored;
}

// By design: bilevel palette images are stored light colour first, because the loaders take every one of them for white
// and black in this order; a picture for fax receivers is stored so because they expect it.
bool mustExchange(const SavedPicture &picture, Storing storing) {
    return picture.bitsPerPixel == 1 && picture.firstColourIsBlack() &&
           (storing == Storing::ForGamma || photometricOf(picture) == kPalette);
}

LineFunc fillFor(const SavedPicture &picture, Storing storing, bool exchange) {
    if (picture.bitsPerPixel > 8) {
        return asLineFunc<DllFillTiffLineDIB24Bit>;
    }
    if (storing == Storing::ForGamma) {
        return asLineFunc<DllFillTiffLineDIBforGamma>;
    }
    return exchange ? asLineFunc<fillComplementedDibLine> : asLineFunc<DllFillTiffLineDIB>;
}

SaveLineContext contextOver(const DibView &dib, bool invert) {
    SaveLineContext context{};
    context.bits = dib.bits();
    context.height = dib.height();
    const bool whole = dib.bitsPerPixel() <= 8;
    const Size rowBytes =
        whole ? lineBytes(dib.width(), dib.bitsPerPixel()) : wordRowBytes(dib.width(), dib.bitsPerPixel());
    context.rowBytes = rowBytes.fit().value_or(0);
    context.strideOrUsage = dib.stride();
    context.invert = invert ? 1 : 0;
    return context;
}

bool writeImage(const SaveRequest &request, const DibView &dib, const SavedPicture &picture) {
    const WaitCursor wait;
    const NewImage image(request.fileName);
    if (!image) {
        return false;
    }
    const bool exchange = mustExchange(picture, request.storing);
    RGBQUAD colours[2];
    const SavedPicture stored = exchange ? exchanged(picture, colours) : picture;
    if (const Error error = defineSaveTags(image.tiff(), image.index(), stored); error != Error::None) {
        setError(error);
        return false;
    }
    SaveLineContext context = contextOver(dib, exchange);
    return image.encode(context, fillFor(picture, request.storing, exchange));
}

DWORD photometricWithoutDialog(WORD bitsPerPixel) {
    if (bitsPerPixel == 1) {
        return kWhiteIsZero;
    }
    return bitsPerPixel <= 8 ? kPalette : kRgb;
}

// Makes the choice, by the dialog if that is asked for.
bool choose(const SaveRequest &request, const SavedPicture &picture) {
    const WORD bits = picture.bitsPerPixel;
    chooseToSave(request.code, request.fillOrder, photometricWithoutDialog(bits),
                 bits <= 8 ? picture.colourCount : coloursOfDepth(bits));
    if (request.showDialog && !askHowToSave(request.fileName, picture.bitmap())) {
        return false;
    }
    if (request.storing == Storing::ForGamma && bits == 1) {
        library.save.photometric = kWhiteIsZero;
    }
    return true;
}

DWORD saveDib(const SaveRequest &request) {
    const DibView dib(request.dib);
    if (!dib) {
        return failed(dib.locked() ? Error::BadColorFormat : Error::NoMemory);
    }
    const SavedPicture picture = pictureOf(dib);
    // A picture that no code saves is not asked about.
    const LONG firstCode = request.showDialog ? VELLUM_SAVE_UNCOMPRESSED : request.code;
    if (const Error error = checkSave(picture, firstCode); error != Error::None) {
        return failed(error);
    }
    if (!choose(request, picture)) {
        return 0;
    }
    if (const Error error = checkSave(picture, library.save.code); error != Error::None) {
        return failed(error);
    }
    if (request.storing == Storing::ForGamma) {
        OutputDebugStringA(picture.bitsPerPixel == 1 ? "MONO Gamma save \n" : "Color Gamma save \n");
    }
    return writeImage(request, dib, picture) ? 1 : 0;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI SaveDIBInTiffFileExt(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog,
                                     LONG fillOrder) {
    return vellum::saveDib(
        {fileName, dib, compressionCode, showDialog != 0, static_cast<DWORD>(fillOrder), vellum::Storing::AsItIs});
}

DWORD VELLUMAPI SaveDIBInTiffFile(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog) {
    return SaveDIBInTiffFileExt(fileName, dib, compressionCode, showDialog, 1);
}

DWORD VELLUMAPI SaveDIBInTiffFormat(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog) {
    return SaveDIBInTiffFileExt(fileName, dib, compressionCode, showDialog, 1);
}

DWORD VELLUMAPI SaveDIBInGammaTiffFile(const char *fileName, HGLOBAL dib, LONG compressionCode, LONG showDialog,
                                       LONG fillOrder) {
    return vellum::saveDib(
        {fileName, dib, compressionCode, showDialog != 0, static_cast<DWORD>(fillOrder), vellum::Storing::ForGamma});
}

} // extern "C"
