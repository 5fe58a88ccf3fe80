// Reading bitmap files.
#include "tools/bitmap_source.h"

#include "vellum32.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tool {

namespace {

constexpr WORD kBitmapType = 0x4D42;     // "BM"
constexpr DWORD kCoreHeaderBytes = 12;   // BITMAPCOREHEADER, whose colours have 3 bytes
constexpr DWORD kMasksOffset = 14 + 40;  // behind or in the header, whatever its size
constexpr DWORD kMostHeaderBytes = 4096; // more than any header has

// A bitmap that is not what it should be; the text says why.
struct Unusable {
    const char *why;
};

constexpr const char *kDamaged = "the bitmap's header is damaged.";
constexpr const char *kCut = "the bitmap file ends before its picture does.";

} // namespace

// The file, kept open for reading.
class BitmapFile {
public:
    explicit BitmapFile(const FileName &name)
        : file_(CreateFileW(name.forSystem().c_str(), GENERIC_READ, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr,
                            OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr)) {}
    BitmapFile(const BitmapFile &) = delete;
    BitmapFile &operator=(const BitmapFile &) = delete;
    ~BitmapFile() {
        if (file_ != INVALID_HANDLE_VALUE) {
            CloseHandle(file_);
        }
    }

    [[nodiscard]] bool read(ULONGLONG offset, void *to, DWORD bytes) const {
        OVERLAPPED position{};
        position.Offset = static_cast<DWORD>(offset);
        position.OffsetHigh = static_cast<DWORD>(offset >> 32);
        DWORD got = 0;
        return file_ != INVALID_HANDLE_VALUE && ReadFile(file_, to, bytes, &got, &position) != 0 && got == bytes;
    }

    [[nodiscard]] ULONGLONG size() const {
        LARGE_INTEGER size{};
        return GetFileSizeEx(file_, &size) != 0 ? static_cast<ULONGLONG>(size.QuadPart) : 0;
    }

private:
    HANDLE file_;
};

namespace {

// What the headers say, checked.
struct Layout {
    DWORD width = 0;
    DWORD height = 0;
    DWORD bits = 1;
    bool topDown = false;
    ULONGLONG rowsOffset = 0;
    ULONGLONG stride = 0; // bytes from row to row
    DWORD colorsOffset = 0;
    DWORD colorBytes = 4; // of an entry of the colour table
    DWORD colors = 0;     // entries that are there
    LONG xPixelsPerMeter = 0;
    LONG yPixelsPerMeter = 0;

    [[nodiscard]] ULONGLONG rowOffset(DWORD line) const {
        return rowsOffset + stride * (topDown ? line : height - 1 - line);
    }
};

template <class T>
T readAt(const BitmapFile &file, ULONGLONG offset) {
    T value{};
    if (!file.read(offset, &value, sizeof value)) {
        throw Unusable{kCut};
    }
    return value;
}

// The old header with 16-bit sizes, as the one of today.
BITMAPINFOHEADER readCoreHeader(const BitmapFile &file) {
    const auto core = readAt<BITMAPCOREHEADER>(file, sizeof(BITMAPFILEHEADER));
    BITMAPINFOHEADER header{};
    header.biSize = core.bcSize;
    header.biWidth = core.bcWidth;
    header.biHeight = core.bcHeight;
    header.biPlanes = core.bcPlanes;
    header.biBitCount = core.bcBitCount;
    return header;
}

BITMAPINFOHEADER readHeader(const BitmapFile &file) {
    const auto size = readAt<DWORD>(file, sizeof(BITMAPFILEHEADER));
    if (size == kCoreHeaderBytes) {
        return readCoreHeader(file);
    }
    if (size < sizeof(BITMAPINFOHEADER) || size > kMostHeaderBytes) {
        throw Unusable{kDamaged};
    }
    return readAt<BITMAPINFOHEADER>(file, sizeof(BITMAPFILEHEADER));
}

void checkCoding(const BitmapFile &file, const BITMAPINFOHEADER &header) {
    const WORD bits = header.biBitCount;
    if (bits != 1 && bits != 4 && bits != 8 && bits != 24 && bits != 32) {
        throw Unusable{"only bitmaps of 1, 4, 8, 24 and 32 bits per pixel can be read."};
    }
    if (header.biCompression == BI_BITFIELDS && bits == 32) {
        using Masks = std::array<DWORD, 3>;
        if (readAt<Masks>(file, kMasksOffset) != Masks{0xFF0000, 0xFF00, 0xFF}) {
            throw Unusable{"bitmaps with colour masks of their own cannot be read."};
        }
    } else if (header.biCompression != BI_RGB) {
        throw Unusable{"compressed bitmaps cannot be read."};
    }
}

void readColorLayout(const BITMAPINFOHEADER &header, DWORD rowsOffset, Layout &layout) {
    if (layout.bits > 8) {
        return;
    }
    const DWORD most = DWORD{1} << layout.bits;
    if (header.biClrUsed > most) {
        throw Unusable{kDamaged};
    }
    layout.colorsOffset = static_cast<DWORD>(sizeof(BITMAPFILEHEADER)) + header.biSize;
    layout.colorBytes = header.biSize == kCoreHeaderBytes ? sizeof(RGBTRIPLE) : sizeof(RGBQUAD);
    const DWORD declared = header.biClrUsed == 0 ? most : header.biClrUsed;
    layout.colors = std::min(declared, (rowsOffset - layout.colorsOffset) / layout.colorBytes);
    if (layout.colors == 0) {
        throw Unusable{"the bitmap has no colours."};
    }
}

Layout readLayout(const BitmapFile &file) {
    const auto fileHeader = readAt<BITMAPFILEHEADER>(file, 0);
    const BITMAPINFOHEADER header = readHeader(file);
    const bool topDown = header.biHeight < 0;
    Layout layout;
    layout.width = static_cast<DWORD>(header.biWidth);
    layout.height = topDown ? 0U - static_cast<DWORD>(header.biHeight) : static_cast<DWORD>(header.biHeight);
    layout.topDown = topDown;
    if (header.biWidth <= 0 || layout.height == 0 || header.biPlanes != 1 ||
        fileHeader.bfOffBits < sizeof fileHeader + header.biSize) {
        throw Unusable{kDamaged};
    }
    checkCoding(file, header);
    layout.bits = header.biBitCount;
    layout.stride = (ULONGLONG{layout.width} * layout.bits + 31) / 32 * 4;
    if (layout.stride > MAXLONG) {
        throw Unusable{"the bitmap is too wide."};
    }
    layout.rowsOffset = fileHeader.bfOffBits;
    layout.xPixelsPerMeter = header.biXPelsPerMeter;
    layout.yPixelsPerMeter = header.biYPelsPerMeter;
    readColorLayout(header, fileHeader.bfOffBits, layout);
    const ULONGLONG size = file.size();
    if (size < layout.rowsOffset || (size - layout.rowsOffset) / layout.stride < layout.height) {
        throw Unusable{kCut};
    }
    return layout;
}

// Colours that are not in the file are black.
using Colors = std::vector<RGBQUAD>;

Colors readColors(const BitmapFile &file, const Layout &layout) {
    Colors colors(std::size_t{1} << layout.bits);
    for (DWORD i = 0; i < layout.colors; ++i) {
        if (!file.read(layout.colorsOffset + i * layout.colorBytes, &colors[i], sizeof(RGBTRIPLE))) {
            throw Unusable{kCut};
        }
    }
    return colors;
}

bool isGrey(RGBQUAD color, DWORD level) {
    return color.rgbRed == level && color.rgbGreen == level && color.rgbBlue == level;
}

bool isGreyRamp(const Colors &colors) {
    DWORD level = 0;
    return std::ranges::all_of(colors, [&level](RGBQUAD color) { return isGrey(color, level++); });
}

TagValues colorMap(Colors colors, DWORD bits) {
    constexpr WORD kWidened = 257; // 255 becomes 65535
    const std::size_t count = std::size_t{1} << bits;
    colors.resize(count);
    std::vector<WORD> values(count * 3);
    for (std::size_t i = 0; i < count; ++i) {
        values[i] = static_cast<WORD>(colors[i].rgbRed * kWidened);
        values[count + i] = static_cast<WORD>(colors[i].rgbGreen * kWidened);
        values[2 * count + i] = static_cast<WORD>(colors[i].rgbBlue * kWidened);
    }
    return shortsTag(tag::kColorMap, values);
}

// Two colours that are not black and white need a colour map, and readers of bilevel pictures go by none: they become
// pictures of 4 bits.
void setMeaning(const BitmapFile &file, const Layout &layout, Picture &picture) {
    if (layout.bits > 8) {
        picture.bitsPerSample = 8;
        picture.samplesPerPixel = 3;
        picture.photometric = kRgb;
        return;
    }
    const Colors colors = readColors(file, layout);
    picture.bitsPerSample = layout.bits;
    if (layout.bits == 1 && isGrey(colors[0], 255) && isGrey(colors[1], 0)) {
        picture.photometric = kWhiteIsZero;
    } else if ((layout.bits == 1 && isGrey(colors[0], 0) && isGrey(colors[1], 255)) ||
               (layout.bits == 8 && isGreyRamp(colors))) {
        picture.photometric = kBlackIsZero;
    } else {
        picture.bitsPerSample = std::max<DWORD>(layout.bits, 4);
        picture.photometric = kPalette;
        picture.set(colorMap(colors, picture.bitsPerSample));
    }
}

// In dots per inch where that is a whole number, give or take what rounding to metres has left.
TagValues resolutionTag(DWORD tag, LONG pixelsPerMeter) {
    constexpr DWORD kTenthsOfMillimetresPerInch = 254;
    constexpr DWORD kTenthsOfMillimetresPerMeter = 10000;
    const ULONGLONG scaled = ULONGLONG{static_cast<DWORD>(pixelsPerMeter)} * kTenthsOfMillimetresPerInch;
    const ULONGLONG dots = (scaled + kTenthsOfMillimetresPerMeter / 2) / kTenthsOfMillimetresPerMeter;
    const ULONGLONG exact = dots * kTenthsOfMillimetresPerMeter;
    const ULONGLONG difference = exact > scaled ? exact - scaled : scaled - exact;
    if ((dots > 0 && difference < kTenthsOfMillimetresPerInch) || scaled > MAXDWORD) {
        return rationalTag(tag, static_cast<DWORD>(dots), 1);
    }
    return rationalTag(tag, static_cast<DWORD>(scaled), kTenthsOfMillimetresPerMeter);
}

void setResolution(const Layout &layout, Picture &picture) {
    if (layout.xPixelsPerMeter <= 0 || layout.yPixelsPerMeter <= 0) {
        return;
    }
    const WORD unit = kInch;
    picture.set(resolutionTag(tag::kXResolution, layout.xPixelsPerMeter));
    picture.set(resolutionTag(tag::kYResolution, layout.yPixelsPerMeter));
    picture.set(shortsTag(tag::kResolutionUnit, {&unit, 1}));
}

// Rows have blue first; what stands behind the last pixel is not looked at.
void copyColors(const BYTE *row, DWORD pixelBytes, BYTE *line, DWORD width) {
    for (DWORD x = 0; x < width; ++x, row += pixelBytes, line += sizeof(RGBTRIPLE)) {
        line[0] = row[2];
        line[1] = row[1];
        line[2] = row[0];
    }
}

void spreadBits(const BYTE *row, BYTE *line, DWORD width) {
    std::memset(line, 0, (std::size_t{width} + 1) / 2);
    for (DWORD x = 0; x < width; ++x) {
        if ((row[x / 8] & (0x80 >> x % 8)) != 0) {
            line[x / 2] = static_cast<BYTE>(line[x / 2] | (x % 2 == 0 ? 0x10 : 0x01));
        }
    }
}

void copyPixels(const BYTE *row, BYTE *line, DWORD width, DWORD bits) {
    const ULONGLONG pixelBits = ULONGLONG{width} * bits;
    const auto bytes = static_cast<std::size_t>((pixelBits + 7) / 8);
    std::memcpy(line, row, bytes);
    if (const auto used = static_cast<unsigned>(pixelBits % 8); used != 0) {
        line[bytes - 1] = static_cast<BYTE>(line[bytes - 1] & (0xFF00U >> used));
    }
}

// Fetches rows one by one and turns each into a line.
struct RowReader {
    std::shared_ptr<BitmapFile> file;
    Layout layout;
    DWORD bitsPerPixel; // of the picture
    std::vector<BYTE> row;

    DWORD operator()(BYTE *line, DWORD index) {
        row.resize(static_cast<std::size_t>(layout.stride));
        if (!file->read(layout.rowOffset(index), row.data(), static_cast<DWORD>(row.size()))) {
            return VELLUM_IO_ERROR;
        }
        if (layout.bits > 8) {
            copyColors(row.data(), layout.bits / 8, line, layout.width);
        } else if (layout.bits != bitsPerPixel) {
            spreadBits(row.data(), line, layout.width);
        } else {
            copyPixels(row.data(), line, layout.width, layout.bits);
        }
        return VELLUM_OK;
    }
};

Picture readPicture(const std::shared_ptr<BitmapFile> &file) {
    const Layout layout = readLayout(*file);
    Picture picture;
    picture.width = layout.width;
    picture.height = layout.height;
    setMeaning(*file, layout, picture);
    setResolution(layout, picture);
    picture.fillLine = RowReader{file, layout, picture.bitsPerPixel(), {}};
    return picture;
}

} // namespace

bool isBitmapFile(const FileName &name) {
    WORD type = 0;
    return BitmapFile(name).read(0, &type, sizeof type) && type == kBitmapType;
}

BitmapSource::BitmapSource(const FileName &name) : name_(name), file_(std::make_shared<BitmapFile>(name)) {}

PageReading BitmapSource::read(DWORD) const {
    PageReading reading;
    try {
        reading.picture = readPicture(file_);
    } catch (const Unusable &unusable) {
        reading.failure = unusable.why;
    }
    return reading;
}

} // namespace tool
