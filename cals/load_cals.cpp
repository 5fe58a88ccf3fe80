// Loading of a CALS file into a packed DIB of 1 bit per pixel.
#include "cals/cals_dialogs.h"
#include "cals/cals_header.h"
#include "codec/decode_driver.h"
#include "core/stream.h"
#include "display/loading.h"
#include "support/numeric.h"
#include "support/row_bytes.h"
#include "support/wait_cursor.h"

namespace vellum {
namespace {

// Header and colour table of the DIB.
struct BilevelDib {
    BITMAPINFOHEADER header;
    RGBQUAD colours[2];
};
static_assert(sizeof(BilevelDib) == 48);

constexpr DWORD kSpareBytes = 100;

struct Picture {
    DWORD width;
    DWORD height;
    LONG pelsPerMeter;

    [[nodiscard]] Size stride() const { return dibRowBytes(width, 1); }
    [[nodiscard]] Size imageBytes() const { return stride() * Size(height); }
    [[nodiscard]] DWORD lineSize() const { return lineBytes(width, 1).fit().value_or(0); }
};

// A header may claim any number of pixels. Error 1 for numbers that no picture has.
Error measure(const CalsInfo &info, Picture &picture) {
    if (info.rpelcnt[0] < 1 || info.rpelcnt[1] < 1) {
        return Error::NoMemory;
    }
    picture.width = static_cast<DWORD>(info.rpelcnt[0]);
    picture.height = static_cast<DWORD>(info.rpelcnt[1]);
    picture.pelsPerMeter = truncateToLong(info.rdensty * 39.37 + 0.5);
    return Error::None;
}

// Decodes the picture through a line function.
Error decode(StreamHandle file, const Picture &picture, DWORD userValue, LineFunc lineFunction) {
    // A decoder that is sent behind the end starts where the file is, which would be at the header.
    if (const LONG size = sizeOfStream(file); size <= VELLUM_CALS_HEADER) {
        return size < 0 ? Error::Io : Error::UnexpectedEnd;
    }
    return decodeRawImage(
        {{file, picture.width, picture.height, VELLUM_KEY_GROUP4, 1, VELLUM_BYTE_ORDER_II, userValue, lineFunction},
         VELLUM_CALS_HEADER});
}

DWORD VELLUMAPI countLine(BYTE *, DWORD, DWORD *lines) {
    ++*lines;
    return 0;
}

// Decodes a picture to nowhere: of one that is kept at least a sixteenth must be there.
Error checkLines(StreamHandle file, const Picture &picture) {
    constexpr DWORD kLeastPart = 16;
    const WaitCursor wait;
    DWORD lines = 0;
    const Error error = decode(file, picture, userValueOf(lines), asLineFunc<countLine>);
    if (error != Error::None && !leavesPartOfThePicture(error)) {
        return error;
    }
    return error == Error::None || lines >= picture.height / kLeastPart ? Error::None : Error::NoMemory;
}

// A small file may claim a huge picture: such a one gets its memory only when the file can fill it. What is denser than
// any drawing must prove it.
Error checkWorth(const char *path, const Picture &picture) {
    constexpr std::uint64_t kDensestDrawing = 1000;
    const auto bytes = picture.imageBytes().fit();
    if (bytes && *bytes <= kNeedsNoProof) {
        return Error::None;
    }
    const Stream file(openFileStream(path, kOpenRead));
    const LONG size = file ? sizeOfStream(file.get()) : -1;
    if (size < 0) {
        return Error::Io;
    }
    const auto whole = static_cast<DWORD>(size);
    const DWORD code = whole > VELLUM_CALS_HEADER ? whole - VELLUM_CALS_HEADER : 0;
    if (!bytes || !worthAllocating(picture.imageBytes(), VELLUM_KEY_GROUP4, picture.lineSize(), code)) {
        return Error::NoMemory;
    }
    return *bytes <= kDensestDrawing * code ? Error::None : checkLines(file.get(), picture);
}

BilevelDib describe(const Picture &picture) {
    BilevelDib dib{};
    dib.header.biSize = sizeof dib.header;
    dib.header.biWidth = static_cast<LONG>(picture.width);
    dib.header.biHeight = static_cast<LONG>(picture.height);
    dib.header.biPlanes = 1;
    dib.header.biBitCount = 1;
    dib.header.biCompression = BI_RGB;
    dib.header.biSizeImage = picture.imageBytes().fit().value_or(0);
    dib.header.biXPelsPerMeter = picture.pelsPerMeter;
    dib.header.biYPelsPerMeter = picture.pelsPerMeter;
    dib.header.biClrUsed = 2;
    dib.header.biClrImportant = 2;
    dib.colours[0] = {255, 255, 255, 0};
    return dib;
}

Error decodeInto(BYTE *bits, const char *path, const Picture &picture) {
    const Stream file(openFileStream(path, kOpenRead));
    if (!file) {
        return Error::Io;
    }
    const WaitCursor wait;
    CalsLineContext context{bits, picture.height, picture.lineSize(), picture.stride().fit().value_or(0), 0};
    return decode(file.get(), picture, userValueOf(context), asLineFunc<DllFlushCALSLineDIB>);
}

// The DIB stays empty when there is none to decode into.
Error loadInto(GlobalBlock &dib, const char *path, const CalsInfo &info) {
    Picture picture{};
    if (const Error error = measure(info, picture); error != Error::None) {
        return error;
    }
    if (const Error error = checkWorth(path, picture); error != Error::None) {
        return error;
    }
    dib = GlobalBlock::allocate(Size(sizeof(BilevelDib) + kSpareBytes) + picture.imageBytes());
    const GlobalView<BilevelDib> view(dib.get());
    if (!view) {
        return Error::NoMemory;
    }
    *view = describe(picture);
    return decodeInto(reinterpret_cast<BYTE *>(view.get() + 1), path, picture);
}

void warn(Error error) {
    MessageBoxA(nullptr, errorMessage(number(error)), "CALS warning", MB_TASKMODAL | MB_ICONEXCLAMATION);
}

HGLOBAL loadCals(const char *path) {
    CalsInfo info;
    if (!readCalsInfo(path, info)) {
        return nullptr;
    }
    GlobalBlock dib;
    const Error error = loadInto(dib, path, info);
    if (leavesPartOfThePicture(error) && dib) {
        // By design: what there is of a picture is worth having, but whoever sees it is told.
        warn(error);
    } else if (error != Error::None) {
        dib.reset();
    }
    setError(error);
    return dib.release();
}

} // namespace
} // namespace vellum

extern "C" HGLOBAL VELLUMAPI LoadCALSIntoDIB(const char *path, LONG showInfo) {
    if (showInfo != 0) {
        if (const LONG answer = vellum::askCalsInfo(path); answer != vellum::kCalsDialogOk) {
            vellum::setError(vellum::errorOfCalsDialog(answer));
            return nullptr;
        }
    }
    return vellum::loadCals(path);
}
