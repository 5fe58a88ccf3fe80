// vellum fax: a text file as the pages of a fax.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/fax_lines.h"
#include "tools/fax_paper.h"
#include "tools/fax_request.h"
#include "tools/fax_text.h"
#include "tools/tiff_document.h"
#include "vellum32.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum fax - draw a text file on the pages of a fax

Usage: vellum fax [options] TEXT OUT.tif

Draws TEXT on black and white pages and writes them as a TIFF. TEXT is in the
letters of the ANSI code page, or in UTF-8 or UTF-16 with none but these. Lines
end with CR LF, LF or CR; a line that is too long goes on below, behind its last
blank or punctuation mark. Form feeds begin no page. OUT.tif appears under its
name only when it is whole; an existing file is then replaced.

Options:
      --paper NAME        a4 (default), letter or legal
      --dpi N | NxM       whole dots per inch up to 1200, across and down.
                          Default: 204x196
      --width N           pixels across, up to 20000, instead of the paper's
                          width; 1728 is what fax machines take
      --margin N | NxM    left and right, top and bottom, in whole millimetres.
                          Default: 20
      --font NAME         Default: Courier New
      --size N            of the font, in whole points up to 1000. Default: 10
      --bold, --italic
      --spacing N         whole millimetres between the lines. Default: 0
      --tabs N,N,...      tab stops, up to 16, in whole millimetres from the
                          left margin. Default: every 20
      --form FORM.tif     print on the first page of FORM.tif instead of paper;
                          a text that does not fit on it gives exit status 1
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
    Option{"--width", Value},
};

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

// The pages of the text, and how far the library came.
struct DrawnPages {
    std::vector<OwnedDib> pages;
    DWORD status = VELLUM_FAX_COMPLETE;
};

// A bitmap is drawn on page after page.
DrawnPages drawPages(const FaxRequest &request, HBITMAP bitmap) {
    std::vector<HANDLE> handles(request.mostPages);
    DrawnPages drawn;
    const DWORD count = CreateFaxPageFromASCII(&request.page, request.mostPages, handles.data(), VELLUM_FAX_DIBS,
                                               bitmap, &drawn.status);
    for (DWORD i = 0; i < count; ++i) {
        drawn.pages.emplace_back(handles[i]);
    }
    return drawn;
}

// Why there is text that is on no page.
std::string pageLimitMessage(const FaxRequest &request) {
    if (request.form) {
        return "the text goes on behind the form.";
    }
    const DWORD most = mostFaxPages(request);
    const std::string limit = "the text goes on behind page " + std::to_string(request.mostPages) + "; ";
    if (request.mostPages < most) {
        return limit + "--pages allows more.";
    }
    if (most < kMostFaxPages) {
        return limit + "memory holds no more of these pages, a lower --dpi makes them smaller.";
    }
    return limit + "no text gets more pages.";
}

Status complainOfMemory(const FaxRequest &request, std::size_t pagesBefore, const FileName &output) {
    return request.form ? complain(*request.form, libraryMessage(VELLUM_NO_MEMORY))
                        : complain(output, "page " + std::to_string(pagesBefore + 1) +
                                               " cannot be drawn: there is not enough memory.");
}

// On a bitmap, or on none.
Status faxOn(HBITMAP bitmap, const FaxRequest &request, const FileName &text, const FileName &output) {
    Console::get().announce("drawing the pages of " + text.shown());
    const DrawnPages drawn = drawPages(request, bitmap);
    switch (drawn.status) {
    case VELLUM_FAX_COMPLETE:
        return writePages(drawn.pages, request, output);
    case VELLUM_FAX_PAGE_LIMIT: {
        const Status written = writePages(drawn.pages, request, output);
        return worse(written, complain(text, pageLimitMessage(request)));
    }
    case VELLUM_FAX_NO_MEMORY:
        return complainOfMemory(request, drawn.pages.size(), output);
    default:
        return complain(text, "cannot be read.");
    }
}

Status faxOnForm(FaxRequest &request, const FileName &text, const FileName &output) {
    const FaxForm form = loadForm(*request.form, request.page);
    return form.bitmap != nullptr ? faxOn(form.bitmap.get(), request, text, output)
                                  : complain(*request.form, form.failure);
}

Status faxOnPaper(const FaxRequest &request, const FileName &text, const FileName &output) {
    if (request.columns == 0) {
        return faxOn(nullptr, request, text, output);
    }
    const OwnedBitmap paper = whitePaper(request.columns, request.rows());
    return paper != nullptr ? faxOn(paper.get(), request, text, output) : complainOfMemory(request, 0, output);
}

void checkOutput(const FaxRequest &request, const FileName &text, const FileName &output) {
    if (output.sameAs(text) || (request.form && output.sameAs(*request.form))) {
        throw UsageError("the output would replace the input");
    }
}

// The text goes to the library by way of a file with the line ends that it knows. A form has no next page on which a
// broken line could go on.
Status draw(FaxRequest &request, const FileName &text, const FileName &output) {
    const FaxText lines = readFaxText(text);
    if (!lines.failure.empty()) {
        return complain(text, lines.failure);
    }
    const TemporaryFile copy;
    if (!writeText(copy.name(), request.form ? lines.text : breakLines(lines.text, request.page))) {
        return complain(text, "there is no folder for temporary files.");
    }
    const std::string path = copy.name().forLibrary();
    std::memcpy(request.page.textFile, path.data(), std::min(path.size(), sizeof request.page.textFile - 1));
    return request.form ? faxOnForm(request, text, output) : faxOnPaper(request, text, output);
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
