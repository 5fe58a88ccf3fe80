// TIFF files as bytes in memory, written and read with libtiff.
#pragma once

#include "bench/pages.h"

#include <tiffio.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace bench {

using Bytes = std::vector<std::uint8_t>;

enum class Codec {
    Group4,
    Group3OneDimensional,
    Group3TwoDimensional,
    ModifiedHuffman,
    PackBits,
    Lzw,
    LzwDifferencing,
    None
};

const char *codecName(Codec codec);

// The codec of an image by its tags, as a name for tables.
std::string codecNameOf(TIFF *tiff);

struct CloseTiff {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
};
using TiffPointer = std::unique_ptr<TIFF, CloseTiff>;

// A place in a file held in memory; it must outlive the TIFF that reads it.
struct MemoryFile {
    const Bytes *bytes = nullptr; // what is read
    Bytes written;                // what has been written
    bool mapped = true;           // reading: offer the bytes in place
    std::size_t position = 0;
};

// Opens a file in memory for reading. libtiff is given the bytes themselves (as if mapped), so it copies nothing that
// it can use in place. Null when it is not a TIFF.
TiffPointer openForReading(MemoryFile &file);

// PhotometricInterpretation of a page.
int photometricOf(const Page &page);

// All tags of a page that is written with libtiff.
void setTags(TIFF *tiff, const Page &page, Codec codec, unsigned rowsPerStrip);

// A page as a TIFF of one image.
Bytes writeTiff(const Page &page, Codec codec, unsigned rowsPerStrip);

} // namespace bench
