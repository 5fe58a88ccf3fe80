// Saving a bitmap, the caller's or the clipboard's, as a new image of a TIFF file or as a headerless code stream.
#include "core/stream.h"
#include "support/bitmap_depth.h"
#include "support/gdi_objects.h"
#include "support/row_bytes.h"
#include "support/screen_dc.h"
#include "write/save_dialog.h"
#include "write/saving.h"

#include <iterator>
#include <optional>

namespace vellum {
namespace {

constexpr char kSaveCaption[] = "TIFF error";
constexpr char kSaveFailed[] = "Saving has failed.";
constexpr char kClipboardCaption[] = "VELLUM SDK";
constexpr char kClipboardNotOpened[] = "Could not open clipboard";
constexpr char kNoClipboardBitmap[] = "Could not receive bitmap from clipboard";

constexpr DWORD kClipboardFillOrder = 2;
constexpr DWORD kMostPaletteColours = 256;

void tell(const char *text, const char *caption) {
    MessageBoxA(nullptr, text, caption, MB_ICONEXCLAMATION);
}

DWORD saved(Error error) {
    if (error == Error::None) {
        return 1;
    }
    setError(error);
    tell(kSaveFailed, kSaveCaption);
    return 0;
}

// Size and depth of a bitmap as it is to be stored; nothing for what is no bitmap.
std::optional<SavedPicture> describe(HBITMAP bitmap) {
    BITMAP record{};
    if (GetObjectA(bitmap, sizeof record, &record) == 0 || record.bmWidth <= 0 || record.bmHeight <= 0) {
        return std::nullopt;
    }
    SavedPicture picture;
    picture.width = record.bmWidth;
    picture.height = record.bmHeight;
    picture.bitsPerPixel = depthAsDib(record);
    return picture;
}

// A header and a colour table for up to 256 colours.
struct ColourInfo {
    BITMAPINFOHEADER header = {};
    RGBQUAD colours[kMostPaletteColours] = {};

    explicit ColourInfo(const SavedPicture &picture) {
        header.biSize = sizeof header;
        header.biWidth = picture.width;
        header.biHeight = picture.height;
        header.biPlanes = 1;
        header.biBitCount = picture.bitsPerPixel;
    }
    BITMAPINFO *get() { return reinterpret_cast<BITMAPINFO *>(this); }
};

int brightness(const RGBQUAD &colour) {
    return colour.rgbRed + colour.rgbGreen + colour.rgbBlue;
}

// A bitmap that can be read, with what its lines need. Empty when it cannot: it is selected into another device
// context, or there is no memory for a row.
class ReadableBitmap {
public:
    ReadableBitmap(HBITMAP bitmap, const SavedPicture &described)
        : bitmap_(bitmap), picture_(described), info_(described), readable_(dc_ && readColours()) {
        if (picture_.bitsPerPixel == 1) {
            // Bitmaps of the screen are black first, and stored complemented; a DIB section may be the other way round.
            complement_ = brightness(info_.colours[0]) <= brightness(info_.colours[1]);
            info_.colours[0] = {255, 255, 255, 0};
            info_.colours[1] = {};
        }
        if (picture_.bitsPerPixel <= 8) {
            picture_.colours = info_.colours;
            picture_.colourCount = coloursOfDepth(picture_.bitsPerPixel);
        }
    }
    ReadableBitmap(const ReadableBitmap &) = delete;
    ReadableBitmap &operator=(const ReadableBitmap &) = delete;

    explicit operator bool() const { return readable_; }
    [[nodiscard]] HDC dc() const { return dc_.get(); }
    [[nodiscard]] HBITMAP bitmap() const { return bitmap_; }
    [[nodiscard]] const SavedPicture &picture() const { return picture_; }

    [[nodiscard]] LineFunc lines() const {
        if (picture_.bitsPerPixel > 8) {
            return asLineFunc<DllFillTiffLineBitmap24Bit>;
        }
        return complement_ ? asLineFunc<DllFillMonoTiffLine> : asLineFunc<DllFillTiffLine>;
    }

private:
    // Reads the lowest row: its colours come with it.
    bool readColours() {
        const Size rowBytes = dibRowBytes(static_cast<DWORD>(picture_.width), picture_.bitsPerPixel);
        const GlobalBlock block = GlobalBlock::allocate(rowBytes);
        const GlobalView<BYTE> row(block.get());
        return row && GetDIBits(dc_.get(), bitmap_, 0, 1, row.get(), info_.get(), DIB_RGB_COLORS) != 0;
    }

    ScreenDc dc_;
    HBITMAP bitmap_;
    SavedPicture picture_;
    ColourInfo info_;
    bool readable_;
    bool complement_ = false;
};

// What a bitmap's depth makes of the photometric interpretation, unless the user says otherwise.
DWORD photometricOfDepth(WORD bitsPerPixel) {
    return coloursOfDepth(bitsPerPixel) <= kMostPaletteColours ? kPalette : kRgb;
}

// Encodes a bitmap by the library's save state, which was made for a bitmap of this depth.
Error writeBitmap(const char *fileName, HBITMAP bitmap, WORD askedBitsPerPixel) {
    const auto described = describe(bitmap);
    if (!described) {
        return Error::BadColorFormat;
    }
    // The clipboard may hold another bitmap by now than the one that the user was asked about.
    library.save.colours = coloursOfDepth(described->bitsPerPixel);
    if (described->bitsPerPixel != askedBitsPerPixel) {
        library.save.photometric = photometricOfDepth(described->bitsPerPixel);
    }
    const WaitCursor wait;
    const ReadableBitmap source(bitmap, *described);
    if (!source) {
        return Error::NoMemory;
    }
    if (const Error error = checkSave(source.picture(), library.save.code); error != Error::None) {
        return error;
    }
    const NewImage image(fileName);
    if (!image) {
        return lastError();
    }
    if (const Error error = defineSaveTags(image.tiff(), image.index(), source.picture()); error != Error::None) {
        return error;
    }
    const GlobalBlock block(GetTiffRGBQuad(image.tiff(), image.index()));
    const GlobalView<BITMAPINFO> info(block.get(), sizeof(BITMAPINFOHEADER));
    if (!info) {
        return Error::NoMemory;
    }
    SaveLineContext context{};
    context.dc = source.dc();
    context.bitmap = source.bitmap();
    context.bitmapInfo = info.get();
    context.strideOrUsage = DIB_RGB_COLORS;
    return image.encode(context, source.lines()) ? Error::None : lastError();
}

// Makes the choice, by the dialog if that is asked for.
bool choose(const char *fileName, const SavedPicture &picture, LONG code, bool showDialog, DWORD fillOrder) {
    const DWORD colours = coloursOfDepth(picture.bitsPerPixel);
    chooseToSave(code, fillOrder, photometricOfDepth(picture.bitsPerPixel), colours);
    return !showDialog || askHowToSave(fileName, picture.bitmap());
}

DWORD saveBitmap(const char *fileName, HBITMAP bitmap, LONG code, bool showDialog, DWORD fillOrder) {
    if (bitmap == nullptr || (!showDialog && !isSaveCode(code))) {
        return 0;
    }
    const auto picture = describe(bitmap);
    if (!picture) {
        return saved(Error::BadColorFormat);
    }
    return choose(fileName, *picture, code, showDialog, fillOrder)
               ? saved(writeBitmap(fileName, bitmap, picture->bitsPerPixel))
               : 0;
}

// The clipboard's bitmap, which stays the clipboard's, while the clipboard is open. `problem` tells why there is none.
class ClipboardBitmap {
public:
    ClipboardBitmap() {
        if (clipboard_) {
            bitmap_ = static_cast<HBITMAP>(GetClipboardData(CF_BITMAP));
        }
    }
    [[nodiscard]] HBITMAP get() const { return bitmap_; }
    [[nodiscard]] const char *problem() const { return clipboard_ ? kNoClipboardBitmap : kClipboardNotOpened; }

private:
    Clipboard clipboard_;
    HBITMAP bitmap_ = nullptr;
};

// Does something with the clipboard's bitmap; false, after a message box, when there is none.
template <class Work>
bool withClipboardBitmap(Work work) {
    const char *problem = nullptr;
    {
        const ClipboardBitmap bitmap;
        if (bitmap.get() != nullptr) {
            work(bitmap.get());
        } else {
            problem = bitmap.problem();
        }
    }
    if (problem != nullptr) {
        tell(problem, kClipboardCaption);
    }
    return problem == nullptr;
}

// The clipboard is not kept open while the user thinks: other programs need it, and so does a paste into the dialog.
DWORD saveClipboard(const char *fileName, LONG code, bool showDialog) {
    if (IsClipboardFormatAvailable(CF_BITMAP) == FALSE || (!showDialog && !isSaveCode(code))) {
        return 0;
    }
    std::optional<SavedPicture> picture;
    if (!withClipboardBitmap([&picture](HBITMAP bitmap) { picture = describe(bitmap); })) {
        return 0;
    }
    if (!picture) {
        return saved(Error::BadColorFormat);
    }
    if (!choose(fileName, *picture, code, showDialog, kClipboardFillOrder)) {
        return 0;
    }
    // By design: whatever the dialog says. The programs that take these files over expect it.
    library.save.fillOrder = kClipboardFillOrder;
    Error error = Error::None;
    const WORD asked = picture->bitsPerPixel;
    if (!withClipboardBitmap([&](HBITMAP bitmap) { error = writeBitmap(fileName, bitmap, asked); })) {
        return 0;
    }
    return saved(error);
}

// The compression keys of SaveBitmapInCcittFile's modes.
struct CcittMode {
    LONG mode;
    DWORD key;
};
constexpr CcittMode kCcittModes[] = {
    {VELLUM_CCITT_GROUP3_1D, VELLUM_KEY_GROUP3_1D}, {VELLUM_CCITT_MODIFIED_HUFFMAN, 2},
    {VELLUM_CCITT_GROUP3_2D, VELLUM_KEY_GROUP3_2D}, {VELLUM_CCITT_GROUP4, VELLUM_KEY_GROUP4},
    {VELLUM_CCITT_UNCOMPRESSED, VELLUM_KEY_NONE},
};

constexpr DWORD kCcittFillOrder = 2;

// What DllFillCcittLine works on, for the length of a save.
class CcittBitmapScope {
public:
    explicit CcittBitmapScope(const SavedPicture &picture) {
        BITMAPINFOHEADER &header = library.ccittBitmap.header;
        header.biSize = sizeof header;
        header.biWidth = picture.width;
        header.biHeight = picture.height;
        header.biPlanes = 1;
        header.biBitCount = 1;
    }
    CcittBitmapScope(const CcittBitmapScope &) = delete;
    CcittBitmapScope &operator=(const CcittBitmapScope &) = delete;
    ~CcittBitmapScope() { library.ccittBitmap = {}; }
};

Error writeCcittFile(const char *fileName, HBITMAP bitmap, DWORD key) {
    auto picture = describe(bitmap);
    if (!picture || fileName == nullptr) {
        return picture ? Error::Io : Error::BadColorFormat;
    }
    picture->bitsPerPixel = 1;
    const WaitCursor wait;
    const ReadableBitmap source(bitmap, *picture);
    if (!source) {
        return Error::NoMemory;
    }
    const Stream stream(openFileStream(fileName, OF_CREATE | OF_WRITE));
    if (!stream) {
        return Error::Io;
    }
    const CcittBitmapScope scope(*picture);
    CcittLineContext context{source.dc(), bitmap};
    const DWORD encoded = EncodeCcittImageTo(stream.get(), static_cast<DWORD>(picture->width),
                                             static_cast<DWORD>(picture->height), kCcittFillOrder, VELLUM_BYTE_ORDER_II,
                                             key, userValueOf(context), asLineFunc<DllFillCcittLine>);
    return encoded != 0 ? Error::None : lastError();
}

DWORD saveCcittFile(const char *fileName, HBITMAP bitmap, LONG mode) {
    for (const CcittMode &known : kCcittModes) {
        if (known.mode == mode && bitmap != nullptr) {
            return saved(writeCcittFile(fileName, bitmap, known.key));
        }
    }
    return 0;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI SaveBitmapInTiffFileExt(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog,
                                        LONG fillOrder) {
    return vellum::saveBitmap(fileName, bitmap, compressionCode, showDialog != 0, static_cast<DWORD>(fillOrder));
}

DWORD VELLUMAPI SaveBitmapInTiffFile(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog) {
    return SaveBitmapInTiffFileExt(fileName, bitmap, compressionCode, showDialog, 1);
}

DWORD VELLUMAPI SaveBitmapInTiffFormat(const char *fileName, HBITMAP bitmap, LONG compressionCode, LONG showDialog) {
    return SaveBitmapInTiffFileExt(fileName, bitmap, compressionCode, showDialog, 1);
}

DWORD VELLUMAPI SaveTiffFileFromClipboard(const char *fileName, LONG compressionCode, LONG showDialog) {
    return vellum::saveClipboard(fileName, compressionCode, showDialog != 0);
}

DWORD VELLUMAPI SaveBitmapInCcittFile(const char *fileName, HBITMAP bitmap, LONG mode) {
    return vellum::saveCcittFile(fileName, bitmap, mode);
}

} // extern "C"
