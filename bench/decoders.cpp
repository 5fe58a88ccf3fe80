// How each library is driven; nothing here does any work that a program decoding pages would not do.
#include "bench/decoders.h"

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace bench {
namespace {

DWORD VELLUMAPI ignoreLine(BYTE *, DWORD, DWORD) {
    return 0;
}

// Both libraries call it through this, so that no compiler can tell that it does nothing.
volatile LineFunc receiver = ignoreLine;

// The user value of a line function has 32 bits, as an address has in the programs that this is built for.
DWORD VELLUMAPI passLine(BYTE *line, DWORD y, DWORD userValue) {
    (*reinterpret_cast<const LineSink *>(userValue))(line, y);
    return 0;
}

} // namespace

VellumDecoder::VellumDecoder(const Bytes &bytes, unsigned image)
    : block_(GlobalAlloc(GMEM_MOVEABLE, static_cast<SIZE_T>(bytes.size()))), size_(static_cast<DWORD>(bytes.size())),
      image_(image) {
    void *to = block_ == nullptr ? nullptr : GlobalLock(block_);
    if (to == nullptr) {
        throw std::bad_alloc();
    }
    std::memcpy(to, bytes.data(), bytes.size());
    GlobalUnlock(block_);
}

VellumDecoder::~VellumDecoder() {
    GlobalFree(block_);
}

bool VellumDecoder::open() {
    SetTiffError(VELLUM_OK);
    tiff_ = OpenTiffInMemory(block_, size_, T_READ);
    return tiff_ != nullptr && GetTiffImage(tiff_, image_) != 0;
}

bool VellumDecoder::decode() {
    return DecodeTiffImage(tiff_, image_, 0, 0, 0, receiver) != 0;
}

void VellumDecoder::close() {
    if (tiff_ != nullptr) {
        CloseTiffFile(tiff_);
        tiff_ = nullptr;
    }
}

bool VellumDecoder::decodeTo(const LineSink &sink) {
    return DecodeTiffImage(tiff_, image_, 0, 0, reinterpret_cast<DWORD>(&sink), passLine) != 0;
}

LibtiffDecoder::LibtiffDecoder(const Bytes &bytes, unsigned image, By by, bool mapped) : image_(image), by_(by) {
    file_.bytes = &bytes;
    file_.mapped = mapped;
}

bool LibtiffDecoder::open() {
    file_.position = 0;
    tiff_ = openForReading(file_);
    if (tiff_ == nullptr || (image_ > 0 && TIFFSetDirectory(tiff_.get(), static_cast<tdir_t>(image_)) != 1) ||
        TIFFIsTiled(tiff_.get()) != 0) {
        return false;
    }
    std::uint32_t height = 0;
    std::uint32_t rows = 0;
    TIFFGetField(tiff_.get(), TIFFTAG_IMAGELENGTH, &height);
    TIFFGetFieldDefaulted(tiff_.get(), TIFFTAG_ROWSPERSTRIP, &rows);
    height_ = height;
    rowsPerStrip_ = std::min(rows, height);
    rowBytes_ = static_cast<std::size_t>(TIFFScanlineSize(tiff_.get()));
    const auto bytes = by_ == By::Strip ? static_cast<std::size_t>(TIFFStripSize(tiff_.get())) : rowBytes_;
    if (buffer_.size() < bytes) {
        buffer_.resize(bytes);
    }
    return height_ > 0 && rowsPerStrip_ > 0;
}

// Hands every line to a line function, as VELLUM does: what a program wants of a decoder are lines.
bool LibtiffDecoder::decode() {
    const LineFunc receive = receiver;
    if (by_ == By::Line) {
        for (unsigned y = 0; y < height_; ++y) {
            if (TIFFReadScanline(tiff_.get(), buffer_.data(), y, 0) != 1) {
                return false;
            }
            receive(buffer_.data(), y, 0);
        }
        return true;
    }
    const std::uint32_t strips = TIFFNumberOfStrips(tiff_.get());
    for (std::uint32_t strip = 0; strip < strips; ++strip) {
        if (TIFFReadEncodedStrip(tiff_.get(), strip, buffer_.data(), -1) < 0) {
            return false;
        }
        const std::uint32_t first = strip * rowsPerStrip_;
        const std::uint32_t lines = std::min(rowsPerStrip_, height_ - first);
        for (std::uint32_t y = 0; y < lines; ++y) {
            receive(buffer_.data() + y * rowBytes_, first + y, 0);
        }
    }
    return true;
}

void LibtiffDecoder::close() {
    tiff_.reset();
}

bool LibtiffDecoder::decodeTo(const LineSink &sink) {
    for (unsigned y = 0; y < height_; ++y) {
        if (by_ == By::Line) {
            if (TIFFReadScanline(tiff_.get(), buffer_.data(), y, 0) != 1) {
                return false;
            }
            sink(buffer_.data(), y);
        } else {
            const unsigned inStrip = y % rowsPerStrip_;
            if (inStrip == 0 && TIFFReadEncodedStrip(tiff_.get(), y / rowsPerStrip_, buffer_.data(), -1) < 0) {
                return false;
            }
            sink(buffer_.data() + inStrip * rowBytes_, y);
        }
    }
    return true;
}

Bytes decodeAll(Decoder &decoder, std::size_t rowBytes) {
    Bytes picture;
    const bool good = decoder.open() && decoder.decodeTo([&](const std::uint8_t *line, unsigned) {
        picture.insert(picture.end(), line, line + rowBytes);
    });
    decoder.close();
    return good ? picture : Bytes();
}

std::size_t rowBytesOf(const Bytes &file, unsigned image) {
    MemoryFile source;
    source.bytes = &file;
    const TiffPointer tiff = openForReading(source);
    if (tiff == nullptr || TIFFSetDirectory(tiff.get(), static_cast<tdir_t>(image)) != 1) {
        return 0;
    }
    return static_cast<std::size_t>(TIFFScanlineSize(tiff.get()));
}

} // namespace bench
