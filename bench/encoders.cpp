// How each library is driven; nothing here does any work that a program writing pages would not do.
#include "bench/encoders.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace bench {
namespace {

// Field types of TIFF.
constexpr DWORD kShort = 3;
constexpr DWORD kLong = 4;

// The user value of a line function has 32 bits, as an address has in the programs that this is built for.
DWORD VELLUMAPI copyLine(BYTE *line, DWORD y, DWORD userValue) {
    const Page &page = *reinterpret_cast<const Page *>(userValue);
    std::memcpy(line, page.row(y), page.rowBytes);
    return 0;
}

// Both libraries get their lines through this.
volatile LineFunc supplier = copyLine;

bool defineShorts(TiffHandle tiff, DWORD index, DWORD tag, const std::vector<std::uint16_t> &values) {
    return DefineTiffImageInfoBuffer(tiff, index, tag, values.data(), kShort, static_cast<DWORD>(values.size())) != 0;
}

bool defineCodec(TiffHandle tiff, DWORD index, Codec codec) {
    const auto define = [&](DWORD tag, DWORD type, DWORD value) {
        return DefineTiffImageInfo(tiff, index, tag, type, value) != 0;
    };
    switch (codec) {
    case Codec::Group4:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_CCITTFAX4);
    case Codec::Group3OneDimensional:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_CCITTFAX3) && define(TIFFTAG_GROUP3OPTIONS, kLong, 0);
    case Codec::Group3TwoDimensional:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_CCITTFAX3) &&
               define(TIFFTAG_GROUP3OPTIONS, kLong, GROUP3OPT_2DENCODING);
    case Codec::ModifiedHuffman:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_CCITTRLE);
    case Codec::PackBits:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_PACKBITS);
    case Codec::Lzw:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_LZW);
    case Codec::LzwDifferencing:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_LZW) && define(TIFFTAG_PREDICTOR, kShort, 2);
    case Codec::None:
        return define(TIFFTAG_COMPRESSION, kShort, COMPRESSION_NONE);
    }
    return false;
}

} // namespace

bool VellumEncoder::define(TiffHandle tiff, DWORD index) const {
    const Page &page = *task_.page;
    const auto define = [&](DWORD tag, DWORD type, DWORD value) {
        return DefineTiffImageInfo(tiff, index, tag, type, value) != 0;
    };
    const std::vector<std::uint16_t> bits(page.samplesPerPixel, static_cast<std::uint16_t>(page.bitsPerSample));
    return define(TIFFTAG_IMAGEWIDTH, kLong, page.width) && define(TIFFTAG_IMAGELENGTH, kLong, page.height) &&
           defineShorts(tiff, index, TIFFTAG_BITSPERSAMPLE, bits) &&
           define(TIFFTAG_SAMPLESPERPIXEL, kShort, page.samplesPerPixel) && define(TIFFTAG_PLANARCONFIG, kShort, 1) &&
           define(TIFFTAG_PHOTOMETRIC, kShort, static_cast<DWORD>(photometricOf(page))) &&
           define(TIFFTAG_FILLORDER, kShort, 1) &&
           define(TIFFTAG_ROWSPERSTRIP, kLong, std::min(task_.rowsPerStrip, page.height)) &&
           defineCodec(tiff, index, task_.codec) &&
           (!page.palette || defineShorts(tiff, index, TIFFTAG_COLORMAP, std::vector<std::uint16_t>(3 * 256)));
}

bool VellumEncoder::write(DWORD mode) {
    SetTiffError(VELLUM_OK);
    const TiffHandle tiff = OpenTiffFile(task_.path.c_str(), mode);
    if (tiff == nullptr) {
        return false;
    }
    const LONG defined = DefineTiffImage(tiff);
    const auto index = static_cast<DWORD>(defined);
    const bool good = defined >= 0 && define(tiff, index) &&
                      EncodeTiffImage(tiff, index, reinterpret_cast<DWORD>(task_.page), supplier) != 0;
    if (defined >= 0) {
        DropTiffImage(tiff, index);
    }
    CloseTiffFile(tiff);
    return good;
}

bool LibtiffEncoder::encode() {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    const TiffPointer tiff(TIFFOpen(task_.path.c_str(), "wl"));
    if (tiff == nullptr) {
        return false;
    }
    setTags(tiff.get(), *task_.page, task_.codec, task_.rowsPerStrip);
    return (by_ == By::Strip ? writeStrips(tiff.get()) : writeLines(tiff.get())) && TIFFWriteDirectory(tiff.get()) == 1;
}

bool LibtiffEncoder::writeStrips(TIFF *tiff) {
    const Page &page = *task_.page;
    const LineFunc supply = supplier;
    const unsigned rows = std::min(task_.rowsPerStrip, page.height);
    buffer_.resize(rows * page.rowBytes);
    for (unsigned y = 0, strip = 0; y < page.height; y += rows, ++strip) {
        const unsigned lines = std::min(rows, page.height - y);
        const auto bytes = static_cast<tmsize_t>(lines * page.rowBytes);
        std::uint8_t *data = buffer_.data();
        if (task_.wholePages) {
            // It is not changed: with a predictor libtiff works on a copy, and the bit order is the machine's own.
            data = const_cast<std::uint8_t *>(page.row(y));
        } else {
            for (unsigned line = 0; line < lines; ++line) {
                supply(data + line * page.rowBytes, y + line, reinterpret_cast<DWORD>(&page));
            }
        }
        if (TIFFWriteEncodedStrip(tiff, strip, data, bytes) != bytes) {
            return false;
        }
    }
    return true;
}

bool LibtiffEncoder::writeLines(TIFF *tiff) {
    const Page &page = *task_.page;
    const LineFunc supply = supplier;
    const bool inPlace = task_.wholePages && task_.codec != Codec::LzwDifferencing;
    buffer_.resize(page.rowBytes);
    for (unsigned y = 0; y < page.height; ++y) {
        auto *line = inPlace ? const_cast<std::uint8_t *>(page.row(y)) : buffer_.data();
        if (!inPlace) {
            supply(line, y, reinterpret_cast<DWORD>(&page));
        }
        if (TIFFWriteScanline(tiff, line, y, 0) != 1) {
            return false;
        }
    }
    return true;
}

} // namespace bench
