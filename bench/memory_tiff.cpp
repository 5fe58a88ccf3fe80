// Writing the TIFFs that are decoded, and libtiff's way to bytes in memory.
#include "bench/memory_tiff.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

MemoryFile &fileOf(thandle_t handle) {
    return *static_cast<MemoryFile *>(handle);
}

const Bytes &contents(const MemoryFile &file) {
    return file.bytes != nullptr ? *file.bytes : file.written;
}

tmsize_t readBytes(thandle_t handle, void *to, tmsize_t count) {
    MemoryFile &file = fileOf(handle);
    const Bytes &bytes = contents(file);
    const std::size_t there = file.position < bytes.size() ? bytes.size() - file.position : 0;
    const std::size_t part = std::min(there, static_cast<std::size_t>(count));
    if (part > 0) {
        std::memcpy(to, bytes.data() + file.position, part);
    }
    file.position += part;
    return static_cast<tmsize_t>(part);
}

tmsize_t writeBytes(thandle_t handle, void *from, tmsize_t count) {
    MemoryFile &file = fileOf(handle);
    const std::size_t end = file.position + static_cast<std::size_t>(count);
    if (end > file.written.size()) {
        file.written.resize(end);
    }
    std::memcpy(file.written.data() + file.position, from, static_cast<std::size_t>(count));
    file.position = end;
    return count;
}

toff_t seek(thandle_t handle, toff_t offset, int origin) {
    MemoryFile &file = fileOf(handle);
    if (origin == SEEK_CUR) {
        offset += file.position;
    } else if (origin == SEEK_END) {
        offset += contents(file).size();
    }
    file.position = static_cast<std::size_t>(offset);
    return offset;
}

int close(thandle_t) {
    return 0;
}

toff_t size(thandle_t handle) {
    return contents(fileOf(handle)).size();
}

int map(thandle_t handle, void **start, toff_t *length) {
    const MemoryFile &file = fileOf(handle);
    if (file.bytes == nullptr || !file.mapped) {
        return 0;
    }
    *start = const_cast<std::uint8_t *>(file.bytes->data());
    *length = file.bytes->size();
    return 1;
}

void unmap(thandle_t, void *, toff_t) {}

TiffPointer open(MemoryFile &file, const char *mode) {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
    return TiffPointer(TIFFClientOpen("memory", mode, &file, readBytes, writeBytes, seek, close, size, map, unmap));
}

void setColorMap(TIFF *tiff) {
    std::array<std::vector<std::uint16_t>, 3> channels;
    for (unsigned i = 0; i < 256; ++i) {
        channels[0].push_back(static_cast<std::uint16_t>(i * 257));
        channels[1].push_back(static_cast<std::uint16_t>((i * 7 & 255) * 257));
        channels[2].push_back(static_cast<std::uint16_t>((i * 29 & 255) * 257));
    }
    TIFFSetField(tiff, TIFFTAG_COLORMAP, channels[0].data(), channels[1].data(), channels[2].data());
}

void setCodec(TIFF *tiff, Codec codec) {
    switch (codec) {
    case Codec::Group4:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX4);
        break;
    case Codec::Group3OneDimensional:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
        break;
    case Codec::Group3TwoDimensional:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTFAX3);
        TIFFSetField(tiff, TIFFTAG_GROUP3OPTIONS, GROUP3OPT_2DENCODING);
        break;
    case Codec::ModifiedHuffman:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_CCITTRLE);
        break;
    case Codec::PackBits:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_PACKBITS);
        break;
    case Codec::Lzw:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        break;
    case Codec::LzwDifferencing:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
        TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
        break;
    case Codec::None:
        TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_NONE);
        break;
    }
}

} // namespace

const char *codecName(Codec codec) {
    switch (codec) {
    case Codec::Group4:
        return "group4";
    case Codec::Group3OneDimensional:
        return "group3-1d";
    case Codec::Group3TwoDimensional:
        return "group3-2d";
    case Codec::ModifiedHuffman:
        return "modified-huffman";
    case Codec::PackBits:
        return "packbits";
    case Codec::Lzw:
        return "lzw";
    case Codec::LzwDifferencing:
        return "lzw-differencing";
    case Codec::None:
        return "uncompressed";
    }
    return "?";
}

std::string codecNameOf(TIFF *tiff) {
    std::uint16_t compression = COMPRESSION_NONE;
    std::uint16_t predictor = PREDICTOR_NONE;
    std::uint32_t options = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &compression);
    switch (compression) {
    case COMPRESSION_NONE:
        return codecName(Codec::None);
    case COMPRESSION_CCITTRLE:
        return codecName(Codec::ModifiedHuffman);
    case COMPRESSION_CCITTFAX3:
        TIFFGetField(tiff, TIFFTAG_GROUP3OPTIONS, &options);
        return codecName((options & GROUP3OPT_2DENCODING) != 0 ? Codec::Group3TwoDimensional
                                                               : Codec::Group3OneDimensional);
    case COMPRESSION_CCITTFAX4:
        return codecName(Codec::Group4);
    case COMPRESSION_LZW:
        TIFFGetFieldDefaulted(tiff, TIFFTAG_PREDICTOR, &predictor);
        return codecName(predictor == PREDICTOR_HORIZONTAL ? Codec::LzwDifferencing : Codec::Lzw);
    case COMPRESSION_PACKBITS:
        return codecName(Codec::PackBits);
    default:
        return "compression-" + std::to_string(compression);
    }
}

int photometricOf(const Page &page) {
    if (page.palette) {
        return PHOTOMETRIC_PALETTE;
    }
    if (page.samplesPerPixel == 3) {
        return PHOTOMETRIC_RGB;
    }
    return page.bitsPerSample == 1 ? PHOTOMETRIC_MINISWHITE : PHOTOMETRIC_MINISBLACK;
}

void setTags(TIFF *tiff, const Page &page, Codec codec, unsigned rowsPerStrip) {
    TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, page.width);
    TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, page.height);
    TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, page.bitsPerSample);
    TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, page.samplesPerPixel);
    TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, photometricOf(page));
    TIFFSetField(tiff, TIFFTAG_FILLORDER, FILLORDER_MSB2LSB);
    TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, std::min(rowsPerStrip, page.height));
    setCodec(tiff, codec);
    if (page.palette) {
        setColorMap(tiff);
    }
}

TiffPointer openForReading(MemoryFile &file) {
    return open(file, "r");
}

Bytes writeTiff(const Page &page, Codec codec, unsigned rowsPerStrip) {
    MemoryFile file;
    TiffPointer tiff = open(file, "wl");
    if (tiff == nullptr) {
        throw std::runtime_error("libtiff does not open a TIFF for writing");
    }
    setTags(tiff.get(), page, codec, rowsPerStrip);
    Bytes line(page.rowBytes);
    for (unsigned y = 0; y < page.height; ++y) {
        // Encoding with differencing changes the line it is given.
        std::memcpy(line.data(), page.row(y), line.size());
        if (TIFFWriteScanline(tiff.get(), line.data(), y, 0) != 1) {
            throw std::runtime_error("libtiff does not write " + page.name);
        }
    }
    tiff.reset();
    return std::move(file.written);
}

} // namespace bench
