// From a CALS header's numbers to a picture, and from the code behind the header to its lines.
#include "cals/cals_picture.h"

#include "codec/decode_driver.h"
#include "core/stream.h"
#include "support/numeric.h"
#include "support/row_bytes.h"

namespace vellum {

Size CalsPicture::stride() const {
    return dibRowBytes(width, 1);
}

Size CalsPicture::imageBytes() const {
    return stride() * Size(height);
}

DWORD CalsPicture::bytesPerLine() const {
    return lineBytes(width, 1).fit().value_or(0);
}

BilevelInfo CalsPicture::describe() const {
    BilevelInfo info{};
    info.header.biSize = sizeof info.header;
    info.header.biWidth = static_cast<LONG>(width);
    info.header.biHeight = static_cast<LONG>(height);
    info.header.biPlanes = 1;
    info.header.biBitCount = 1;
    info.header.biCompression = BI_RGB;
    info.header.biSizeImage = imageBytes().fit().value_or(0);
    info.header.biXPelsPerMeter = truncateToLong(dotsPerInch * 39.37 + 0.5);
    info.header.biYPelsPerMeter = info.header.biXPelsPerMeter;
    info.header.biClrUsed = 2;
    info.header.biClrImportant = 2;
    info.colours[0] = {255, 255, 255, 0};
    return info;
}

Error measureCals(const CalsInfo &info, CalsPicture &picture) {
    if (info.rpelcnt[0] < 1 || info.rpelcnt[1] < 1) {
        return Error::NoMemory;
    }
    picture.width = static_cast<DWORD>(info.rpelcnt[0]);
    picture.height = static_cast<DWORD>(info.rpelcnt[1]);
    picture.dotsPerInch = info.rdensty;
    return Error::None;
}

std::optional<DWORD> calsCodeBytes(const char *path) {
    const Stream file(openFileStream(path, kOpenRead));
    const LONG size = file ? sizeOfStream(file.get()) : -1;
    if (size < 0) {
        return std::nullopt;
    }
    return size > VELLUM_CALS_HEADER ? static_cast<DWORD>(size) - VELLUM_CALS_HEADER : 0;
}

bool CalsPicture::isWiderThanDrawings() const {
    return width > 65536;
}

// A drawing of 44 x 34 inches at 400 dots per inch has 30 MB.
bool CalsPicture::needsProof() const {
    constexpr DWORD kLargestDrawing = 64u << 20;
    const auto bytes = imageBytes().fit();
    return !bytes || *bytes > (isWiderThanDrawings() ? kNeedsNoProof : kLargestDrawing);
}

Error checkCalsWorth(const char *path, const CalsPicture &picture) {
    if (!picture.needsProof()) {
        return Error::None;
    }
    const auto code = calsCodeBytes(path);
    if (!code) {
        return Error::Io;
    }
    return worthAllocating(picture.imageBytes(), VELLUM_KEY_GROUP4, picture.bytesPerLine(), *code) ? Error::None
                                                                                                   : Error::NoMemory;
}

Error decodeCals(const char *path, const CalsPicture &picture, LineFunc lineFunction, DWORD userValue) {
    const Stream file(openFileStream(path, kOpenRead));
    const LONG size = file ? sizeOfStream(file.get()) : -1;
    if (size < 0) {
        return Error::Io;
    }
    // A decoder that is sent behind the end starts where the file is, which would be at the header.
    if (size <= VELLUM_CALS_HEADER) {
        return Error::UnexpectedEnd;
    }
    return decodeRawImage({{file.get(), picture.width, picture.height, VELLUM_KEY_GROUP4, 1, VELLUM_BYTE_ORDER_II,
                            userValue, lineFunction},
                           VELLUM_CALS_HEADER});
}

} // namespace vellum
