// Pages of a TIFF as Windows bitmap files, with the colours that the library gives them.
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

} // namespace

Status convertToBitmaps(const TiffDocument &document, const ConvertRequest &request) {
    Status status = Status::Ok;
    const std::string count = std::to_string(document.pageCount());
    for (DWORD index = request.firstPage(); index < request.endPage(document.pageCount()); ++index) {
        Console::get().progress("page " + std::to_string(index + 1) + " of " + count);
        const FileName output = request.all ? request.output.forPage(index + 1) : request.output;
        status = worse(status, convertPage(document, index, output));
    }
    return status;
}

} // namespace tool
