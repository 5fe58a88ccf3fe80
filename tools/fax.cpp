// vellum fax: a text file as the pages of a fax.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/fax_request.h"
#include "tools/tiff_document.h"
#include "vellum32.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum fax - draw a text file on the pages of a fax

Usage: vellum fax [options] TEXT OUT.tif

Draws TEXT, in the letters of the ANSI code page, on black and white pages and
writes them as a TIFF. Lines end with CR LF, LF or CR; a line that is too long
goes on below, behind its last blank or punctuation mark. OUT.tif appears under
its name only when it is whole; an existing file is then replaced.

Options:
      --paper NAME        a4 (default), letter or legal
      --dpi N | NxM       dots per inch, across and down. Default: 204x196
      --margin N | NxM    left and right, top and bottom, in millimetres.
                          Default: 20
      --font NAME         Default: Courier New
      --size N            of the font, in points. Default: 10
      --bold, --italic
      --spacing N         millimetres between the lines. Default: 0
      --tabs N,N,...      tab stops, up to 16, in millimetres from the left
                          margin. Default: every 20
      --form FORM.tif     print on the first page of FORM.tif instead of paper;
                          text that does not fit on it is left out
      --pages N           at most so many pages, up to 1000 and 1 GB of memory:
                          at 600 dpi some 250 pages, at 1200 dpi some 60.
                          Default: 200, or what there is memory for
      --compression NAME  g4 (default), g3, g3-2d, mh, lzw, packbits or none;
                          for forms in colour lzw (default), packbits or none
  -h, --help              show this help

All pages are held in memory until the text is drawn, and nothing is written
when there is too little of it.

Exit status: 0 all went well, 1 a file could not be read or written, a page
could not be drawn or the text has more pages, 2 wrong usage.
)";

using enum Option::Kind;
constexpr std::array kOptions = {
    Option{"--paper", Value}, Option{"--dpi", Value},  Option{"--margin", Value}, Option{"--font", Value},
    Option{"--size", Value},  Option{"--bold"},        Option{"--italic"},        Option{"--spacing", Value},
    Option{"--tabs", Value},  Option{"--form", Value}, Option{"--pages", Value},  Option{"--compression", Value},
};

// The text with CR LF between its lines, as the library wants it; nothing when it cannot be read. Behind the last line
// it would begin another page when the one before is full.
std::optional<std::string> readText(const FileName &name) {
    std::ifstream file(std::filesystem::path(name.forSystem()), std::ios::binary);
    const std::string bytes{std::istreambuf_iterator<char>(file), {}};
    if (!file.is_open() || file.bad()) {
        return std::nullopt;
    }
    std::string text;
    for (std::size_t i = 0; i < bytes.size(); ++i) {
        if (bytes[i] == '\r' || bytes[i] == '\n') {
            text += "\r\n";
            i += bytes.compare(i, 2, "\r\n") == 0 ? 1 : 0;
        } else {
            text += bytes[i];
        }
    }
    if (text.ends_with("\r\n")) {
        text.resize(text.size() - 2);
    }
    return text;
}

bool writeText(const FileName &name, const std::string &text) {
    std::ofstream file(std::filesystem::path(name.forSystem()), std::ios::binary);
    file << text << std::flush;
    return file.good();
}

Status complain(const FileName &name, const std::string &reason) {
    Console::get().complain(name.shown() + ": " + reason);
    return Status::Failed;
}

Status writePages(const std::vector<OwnedDib> &pages, const FaxRequest &request, const FileName &output) {
    DibOutput tiff(output);
    for (std::size_t i = 0; i < pages.size(); ++i) {
        Console::get().progress("page " + std::to_string(i + 1) + " of " + std::to_string(pages.size()));
        const DibCoding &coding = dibCoding(request.compression, pages[i].header().biBitCount);
        if (!tiff.add(pages[i], coding, request.dotsPerInch())) {
            return complain(output, tiff.failure());
        }
    }
    if (!tiff.commit()) {
        return complain(output, tiff.failure());
    }
    Console::get().print(tiff.report());
    return Status::Ok;
}

// Makes the form the page, by its own resolution. Result: why it cannot be one; empty when it can.
std::string useForm(const TiffDocument &document, FaxPageParams &page) {
    constexpr ULONGLONG kHundredths = 100;
    const RegisteredPage form(document, 0);
    BITMAPINFOHEADER header{};
    if (!form || GetTiffDimensions(form.handle(), 0, &header) != VELLUM_OK) {
        return libraryMessage(TiffError());
    }
    if (form.isDelegatedJpeg() && !jpegModuleAvailable()) {
        return kNoJpegModule;
    }
    DWORD dots = 0;
    GetTiffImageDPI(form.handle(), 0, &dots);
    page.horizontalResolution = std::max<DWORD>(LOWORD(dots), 1);
    page.verticalResolution = std::max<DWORD>(HIWORD(dots), 1);
    page.pageWidth = static_cast<DWORD>(static_cast<DWORD>(header.biWidth) * kHundredths / page.horizontalResolution);
    page.pageHeight = static_cast<DWORD>(static_cast<DWORD>(header.biHeight) * kHundredths / page.verticalResolution);
    return "";
}

Status faxOnForm(FaxRequest &request, const FileName &form, const FileName &output) {
    const TiffDocument document(form);
    if (!document.isOpen()) {
        return complain(form, document.openMessage());
    }
    if (const std::string obstacle = useForm(document, request.page); !obstacle.empty()) {
        return complain(form, obstacle);
    }
    SetTiffError(VELLUM_OK);
    std::vector<OwnedDib> pages;
    pages.emplace_back(DIBFormOverlay(form.forLibrary().c_str(), &request.page));
    if (!pages.front()) {
        // The form could not be read, or its page not be made.
        const DWORD error = TiffError();
        return complain(form, libraryMessage(error != VELLUM_OK ? error : DWORD{VELLUM_NO_MEMORY}));
    }
    return writePages(pages, request, output);
}

// The pages of the text, and how far the library came.
struct DrawnPages {
    std::vector<OwnedDib> pages;
    DWORD status = VELLUM_FAX_COMPLETE;
};

DrawnPages drawPages(const FaxRequest &request) {
    std::vector<HANDLE> handles(request.mostPages);
    DrawnPages drawn;
    const DWORD count = CreateDIBFaxPageFromASCII(&request.page, request.mostPages, handles.data(), &drawn.status);
    for (DWORD i = 0; i < count; ++i) {
        drawn.pages.emplace_back(handles[i]);
    }
    return drawn;
}

// Why there is text that is on no page.
std::string pageLimitMessage(const FaxRequest &request) {
    const DWORD most = mostFaxPages(request.page);
    const std::string limit = "the text goes on behind page " + std::to_string(request.mostPages) + "; ";
    if (request.mostPages < most) {
        return limit + "--pages allows more.";
    }
    if (most < kMostFaxPages) {
        return limit + "memory holds no more of these pages, a lower --dpi makes them smaller.";
    }
    return limit + "no text gets more pages.";
}

Status faxOnPaper(const FaxRequest &request, const FileName &text, const FileName &output) {
    Console::get().announce("drawing the pages of " + text.shown());
    const DrawnPages drawn = drawPages(request);
    switch (drawn.status) {
    case VELLUM_FAX_COMPLETE:
        return writePages(drawn.pages, request, output);
    case VELLUM_FAX_PAGE_LIMIT: {
        const Status written = writePages(drawn.pages, request, output);
        return worse(written, complain(text, pageLimitMessage(request)));
    }
    case VELLUM_FAX_NO_MEMORY:
        return complain(output, "page " + std::to_string(drawn.pages.size() + 1) +
                                    " cannot be drawn: there is not enough memory.");
    default:
        return complain(text, "cannot be read.");
    }
}

void checkOutput(const FaxRequest &request, const FileName &text, const FileName &output) {
    if (output.sameAs(text) || (request.form && output.sameAs(*request.form))) {
        throw UsageError("the output would replace the input");
    }
}

// The text goes to the library by way of a file with the line ends that it knows.
Status draw(FaxRequest &request, const FileName &text, const FileName &output) {
    const auto lines = readText(text);
    if (!lines) {
        return complain(text, text.isMissing() ? "there is no such file." : "cannot be read.");
    }
    const TemporaryFile copy;
    if (!writeText(copy.name(), *lines)) {
        return complain(text, "there is no folder for temporary files.");
    }
    const std::string path = copy.name().forLibrary();
    std::memcpy(request.page.textFile, path.data(), std::min(path.size(), sizeof request.page.textFile - 1));
    return request.form ? faxOnForm(request, *request.form, output) : faxOnPaper(request, text, output);
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    if (arguments.operands().size() != 2) {
        throw UsageError("a text file and an output file are needed");
    }
    const FileName text(arguments.operands()[0]);
    const FileName output(arguments.operands()[1]);
    FaxRequest request = parseFaxRequest(arguments);
    checkOutput(request, text, output);
    return draw(request, text, output);
}

} // namespace

constinit const Command faxCommand = {"fax", "draw a text file on the pages of a fax", kHelp, run};

} // namespace tool
