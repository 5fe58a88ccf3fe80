// vellum convert: pages of a TIFF as Windows bitmap files.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/output_file.h"
#include "tools/tiff_document.h"

#include <array>
#include <optional>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum convert - turn pages of a TIFF into Windows bitmaps

Usage: vellum convert [options] IN OUT.bmp

Without options the first page is converted. The bitmap appears under its name
only when it is whole; an existing file is then replaced. A page whose data end
early is written as far as it goes, the rest in the first colour (black for a
page of which 0 means black), with a warning and exit status 1.

Options:
      --page N  convert page N; pages are counted from 1
      --all     convert all pages, to OUT-001.bmp, OUT-002.bmp and so on
  -h, --help    show this help

Exit status: 0 all went well, 1 a page could not be converted or not as a whole,
2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--page", Option::Kind::Value}, Option{"--all"}};

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

std::string pageLabel(const TiffDocument &document, DWORD index) {
    return document.name().shown() + ": page " + std::to_string(index + 1);
}

bool needsMissingModule(const TiffDocument &document, DWORD index) {
    const RegisteredPage page(document, index);
    return page && page.isDelegatedJpeg() && !jpegModuleAvailable();
}

Status convertPage(const TiffDocument &document, DWORD index, const FileName &output) {
    Console &console = Console::get();
    const std::string label = pageLabel(document, index);
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
    console.print(output.shown() + ": " + std::to_string(dib.header().biWidth) + " x " +
                  std::to_string(dib.header().biHeight) + ", " + std::to_string(dib.header().biBitCount) +
                  (dib.header().biBitCount == 1 ? " bit\n" : " bits\n"));
    if (error != VELLUM_OK) {
        console.complain(label + ": warning: only a part was there: " + libraryMessage(error));
        return Status::Failed;
    }
    return Status::Ok;
}

Status convertAll(const TiffDocument &document, const FileName &output) {
    Console &console = Console::get();
    Status status = Status::Ok;
    const std::string count = std::to_string(document.pageCount());
    for (DWORD index = 0; index < document.pageCount(); ++index) {
        console.progress("page " + std::to_string(index + 1) + " of " + count);
        status = worse(status, convertPage(document, index, output.forPage(index + 1)));
    }
    if (const std::string chain = document.chainMessage(); !chain.empty()) {
        console.complain(document.name().shown() + ": " + chain);
        status = Status::Failed;
    }
    return status;
}

Status convertOne(const TiffDocument &document, unsigned long pageNumber, const FileName &output) {
    if (pageNumber > document.pageCount()) {
        const std::string count = std::to_string(document.pageCount());
        Console::get().complain(document.name().shown() + ": there is no page " + std::to_string(pageNumber) +
                                "; the file has " + count + ".");
        return Status::Failed;
    }
    return convertPage(document, static_cast<DWORD>(pageNumber - 1), output);
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    if (arguments.operands().size() != 2) {
        throw UsageError("one input file and one output file are needed");
    }
    const auto pageOption = arguments.value("--page");
    if (pageOption && arguments.has("--all")) {
        throw UsageError("'--page' and '--all' exclude each other");
    }
    const unsigned long pageNumber = pageOption ? parsePageNumber("--page", *pageOption) : 1;
    const FileName input(arguments.operands()[0]);
    const FileName output(arguments.operands()[1]);
    if (!output.hasExtension(".bmp")) {
        throw UsageError("the output's name must end in .bmp, not '" + output.shown() + "'");
    }
    if (output.sameAs(input)) {
        throw UsageError("the output would replace the input");
    }

    const TiffDocument document(input);
    if (!document.isOpen()) {
        Console::get().complain(input.shown() + ": " + document.openMessage());
        return Status::Failed;
    }
    return arguments.has("--all") ? convertAll(document, output) : convertOne(document, pageNumber, output);
}

} // namespace

constinit const Command convertCommand = {"convert", "turn pages into Windows bitmaps", kHelp, run};

} // namespace tool
