// The two libraries behind one interface: each writes a page as the only image of a new file.
#pragma once

#include "bench/memory_tiff.h"
#include "vellum32.h"

#include <string>

namespace bench {

class Encoder {
public:
    Encoder() = default;
    Encoder(const Encoder &) = delete;
    Encoder &operator=(const Encoder &) = delete;
    virtual ~Encoder() = default;

    // From opening the file to closing it. False when the library refuses the page.
    virtual bool encode() = 0;
};

// What both write.
struct EncodeTask {
    const Page *page = nullptr;
    Codec codec = Codec::None;
    unsigned rowsPerStrip = 0;
    std::string path;
    bool wholePages = false; // libtiff takes its strips from the page itself instead of having lines supplied
};

// VELLUM through its public functions: OpenTiffFile, DefineTiffImage, DefineTiffImageInfoBuffer for every tag,
// EncodeTiffImage with a line function that copies the page's lines, DropTiffImage, CloseTiffFile.
class VellumEncoder : public Encoder {
public:
    explicit VellumEncoder(EncodeTask task) : task_(std::move(task)) {}
    bool encode() override { return write(T_CREAT); }
    // One image more.
    bool append() { return write(T_APPEND); }

private:
    bool write(DWORD mode);
    bool define(TiffHandle tiff, DWORD index) const;

    EncodeTask task_;
};

// libtiff: a strip is put together from lines and given to TIFFWriteEncodedStrip, or each line to TIFFWriteScanline.
// Which is faster depends on the codec and the strips; the measurement tries both.
class LibtiffEncoder : public Encoder {
public:
    enum class By { Strip, Line };

    LibtiffEncoder(EncodeTask task, By by) : task_(std::move(task)), by_(by) {}
    bool encode() override;

private:
    bool writeStrips(TIFF *tiff);
    bool writeLines(TIFF *tiff);

    EncodeTask task_;
    By by_;
    Bytes buffer_; // kept from run to run
};

} // namespace bench
