// Pages of a TIFF as Windows bitmap files, with the colours that the library gives them, and bilevel pictures in black
// and white.
#include "tools/bilevel_code.h"
#include "tools/console.h"
#include "tools/convert.h"
#include "tools/output_file.h"

namespace tool {

namespace {

constexpr WORD kBitmapType = 0x4D42; // "BM"

// Looks into a packed DIB and frees it at the end.
class LoadedDib {
public:
    explicit LoadedDib(HGLOBAL block) : block_(block) {
        if (block_ != nullptr) {
            header_ = static_cast<const BITMAPINFOHEADER *>(GlobalLock(block_));
        }
    }
    LoadedDib(const LoadedDib &) = delete;
    LoadedDib &operator=(const LoadedDib &) = delete;
    ~LoadedDib() {
        if (header_ != nullptr) {
            GlobalUnlock(block_);
        }
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return header_ != nullptr; }
    const BITMAPINFOHEADER &header() const { return *header_; }
    DWORD bitsOffset() const { return header_->biSize + header_->biClrUsed * static_cast<DWORD>(sizeof(RGBQUAD)); }
    DWORD bytes() const { return bitsOffset() + header_->biSizeImage; }

private:
    HGLOBAL block_;
    const BITMAPINFOHEADER *header_ = nullptr;
};

bool writeBitmapFile(const LoadedDib &dib, OutputFile &file) {
    BITMAPFILEHEADER header{};
    header.bfType = kBitmapType;
    header.bfOffBits = static_cast<DWORD>(sizeof header) + dib.bitsOffset();
    header.bfSize = static_cast<DWORD>(sizeof header) + dib.bytes();
    file.write(&header, sizeof header);
    file.write(&dib.header(), dib.bytes());
    return file.commit();
}

bool needsMissingModule(const TiffDocument &document, DWORD index) {
    const RegisteredPage page(document, index);
    return page && page.isDelegatedJpeg() && !jpegModuleAvailable();
}

Status convertPage(const TiffDocument &document, DWORD index, const FileName &output) {
    Console &console = Console::get();
    const std::string label = document.name().shown() + ": page " + std::to_string(index + 1);
    if (needsMissingModule(document, index)) {
        console.complain(label + ": " + kNoJpegModule);
        return Status::Failed;
    }
    SetTiffError(VELLUM_OK);
    const LoadedDib dib(LoadTiffIntoDIB(document.name().forLibrary().c_str(), index, 0));
    const DWORD error = TiffError();
    if (!dib) {
        console.complain(label + ": " + libraryMessage(error));
        return Status::Failed;
    }
    OutputFile file(output);
    if (!writeBitmapFile(dib, file)) {
        console.complain(output.shown() + ": " + file.failure());
        return Status::Failed;
    }
    const BITMAPINFOHEADER &header = dib.header();
    console.print(output.shown() + ": " +
                  sizeText(static_cast<DWORD>(header.biWidth), static_cast<DWORD>(header.biHeight), header.biBitCount) +
                  "\n");
    if (error != VELLUM_OK) {
        console.complain(label + ": warning: only a part was there: " + libraryMessage(error));
        return Status::Failed;
    }
    return Status::Ok;
}

// Pixels per metre; 0 for a resolution that is not told.
LONG pelsPerMeter(const Picture &picture, DWORD tag) {
    constexpr double kInchesPerMeter = 39.37;
    const double pels = dotsPerInch(picture, tag) * kInchesPerMeter + 0.5;
    return pels <= MAXLONG ? static_cast<LONG>(pels) : 0;
}

// Writes a bilevel picture row by row, the lowest one first. Result: why that failed.
std::string writeBilevel(const Picture &picture, OutputFile &file) {
    constexpr RGBQUAD kColours[] = {{255, 255, 255, 0}, {0, 0, 0, 0}};
    const ULONGLONG stride = (ULONGLONG{picture.width} + 31) / 32 * 4;
    const ULONGLONG headers = sizeof(BITMAPFILEHEADER) + sizeof(BITMAPINFOHEADER) + sizeof kColours;
    if (stride * picture.height > MAXLONG - headers) {
        return "the page is too large for a bitmap.";
    }
    BITMAPFILEHEADER fileHeader{};
    fileHeader.bfType = kBitmapType;
    fileHeader.bfOffBits = static_cast<DWORD>(headers);
    fileHeader.bfSize = static_cast<DWORD>(headers + stride * picture.height);
    BITMAPINFOHEADER header{};
    header.biSize = sizeof header;
    header.biWidth = static_cast<LONG>(picture.width);
    header.biHeight = static_cast<LONG>(picture.height);
    header.biPlanes = 1;
    header.biBitCount = 1;
    header.biSizeImage = static_cast<DWORD>(stride * picture.height);
    header.biXPelsPerMeter = pelsPerMeter(picture, tag::kXResolution);
    header.biYPelsPerMeter = pelsPerMeter(picture, tag::kYResolution);
    header.biClrUsed = header.biClrImportant = 2;
    file.write(&fileHeader, sizeof fileHeader);
    file.write(&header, sizeof header);
    file.write(kColours, sizeof kColours);
    std::vector<BYTE> row(static_cast<std::size_t>(stride));
    for (DWORD line = picture.height; line-- > 0 && file.failure().empty();) {
        if (const DWORD error = picture.fillLine(row.data(), line); error != VELLUM_OK) {
            return libraryMessage(error);
        }
        file.write(row.data(), row.size());
    }
    return file.commit() ? "" : file.failure();
}

} // namespace

Status convertToBitmap(const PageSource &source, const ConvertRequest &request) {
    Console &console = Console::get();
    const PageReading reading = source.read(0);
    if (!reading.picture) {
        console.complain(source.pageLabel(0) + ": " + reading.failure);
        return Status::Failed;
    }
    const FileName output = request.outputOf(0);
    OutputFile file(output);
    if (const std::string failure = writeBilevel(*reading.picture, file); !failure.empty()) {
        console.complain(output.shown() + ": " + failure);
        return Status::Failed;
    }
    console.print(output.shown() + ": " + sizeText(reading.picture->width, reading.picture->height, 1) + "\n");
    if (!reading.warning.empty()) {
        console.complain(source.pageLabel(0) + ": warning: " + reading.warning);
        return Status::Failed;
    }
    return Status::Ok;
}

Status convertToBitmaps(const TiffDocument &document, const ConvertRequest &request) {
    Status status = Status::Ok;
    const std::string count = std::to_string(document.pageCount());
    for (DWORD index = request.firstPage(); index < request.endPage(document.pageCount()); ++index) {
        Console::get().progress("page " + std::to_string(index + 1) + " of " + count);
        const FileName output = request.outputOf(index);
        status = worse(status, convertPage(document, index, output));
    }
    return status;
}

} // namespace tool
