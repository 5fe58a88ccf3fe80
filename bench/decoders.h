// The two libraries behind one interface: each opens a TIFF in memory, decodes one of its images from top to bottom to
// nowhere, and closes it again.
#pragma once

#include "bench/memory_tiff.h"
#include "vellum32.h"

#include <functional>

namespace bench {

// Receives the bytes of whole lines, top line first.
using LineSink = std::function<void(const std::uint8_t *line, unsigned y)>;

class Decoder {
public:
    Decoder() = default;
    Decoder(const Decoder &) = delete;
    Decoder &operator=(const Decoder &) = delete;
    virtual ~Decoder() = default;

    // False when the library refuses the file or the image.
    virtual bool open() = 0;
    // Decodes all lines and looks at none of them. False when the data are damaged.
    virtual bool decode() = 0;
    virtual void close() = 0;
    // As decode(), for comparing what comes out.
    virtual bool decodeTo(const LineSink &sink) = 0;
};

// VELLUM through its public functions: OpenTiffInMemory, GetTiffImage, DecodeTiffImage with a line function that does
// nothing, CloseTiffFile.
class VellumDecoder : public Decoder {
public:
    VellumDecoder(const Bytes &bytes, unsigned image);
    ~VellumDecoder() override;
    bool open() override;
    bool decode() override;
    void close() override;
    bool decodeTo(const LineSink &sink) override;

private:
    HGLOBAL block_;
    DWORD size_;
    DWORD image_;
    TiffHandle tiff_ = nullptr;
};

// libtiff: by strips into a buffer for one strip, or line by line into a buffer for one line. Which is faster depends
// on the codec and the strips; the measurement tries both.
class LibtiffDecoder : public Decoder {
public:
    enum class By { Strip, Line };

    LibtiffDecoder(const Bytes &bytes, unsigned image, By by, bool mapped);
    bool open() override;
    bool decode() override;
    void close() override;
    bool decodeTo(const LineSink &sink) override;

private:
    MemoryFile file_;
    unsigned image_;
    By by_;
    TiffPointer tiff_;
    Bytes buffer_; // kept from run to run
    unsigned height_ = 0;
    unsigned rowsPerStrip_ = 0;
    std::size_t rowBytes_ = 0;
};

// The picture as one library sees it; empty when it cannot decode the image.
Bytes decodeAll(Decoder &decoder, std::size_t rowBytes);

// Of an image of a file; 0 when there is none.
std::size_t rowBytesOf(const Bytes &file, unsigned image);

} // namespace bench
