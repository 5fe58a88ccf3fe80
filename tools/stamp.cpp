// vellum stamp: some lines of text on a page.
#include "tools/ansi_text.h"
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/lengths.h"
#include "tools/page_selection.h"
#include "vellum32.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum stamp - print some lines of text on a page

Usage: vellum stamp [options] IN.tif[:PAGE] OUT.tif

Prints a text on a page (the first, or PAGE) and writes the result as a TIFF of
one page, in the page's own colours and resolution. OUT.tif appears under its
name only when it is whole; an existing file is then replaced. Lines are not
wrapped; what lies outside the page is cut off.

Options:
      --text TEXT         what to print; \n begins a new line, \\ is a backslash
      --at X,Y            where, in whole millimetres from the upper left
                          corner. Default: 10,10. It has to lie on the page
      --font NAME         Default: Arial
      --size N            of the font, in points, from 1 to 1000. Default: 12
      --compression NAME  g4 (default), g3, g3-2d, mh, lzw, packbits or none;
                          for other pages than black and white ones lzw
                          (default), packbits or none
  -h, --help              show this help

Exit status: 0 the page was written, 1 it was not, 2 wrong usage.
)";

using enum Option::Kind;
constexpr std::array kOptions = {
    Option{"--text", Value}, Option{"--at", Value},          Option{"--font", Value},
    Option{"--size", Value}, Option{"--compression", Value},
};

struct StampRequest {
    std::string text;
    long x = 0; // millimetres
    long y = 0;
    std::string font;
    DWORD points = 0;
    std::optional<std::string> compression;
};

// The two characters \n as a line end, two backslashes as one.
std::string linesOf(const std::string &text) {
    std::string lines;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text.compare(i, 2, "\\n") == 0) {
            lines += "\r\n";
            ++i;
        } else if (text.compare(i, 2, R"(\\)") == 0) {
            lines += '\\';
            ++i;
        } else {
            lines += text[i];
        }
    }
    return lines;
}

constexpr double kMillimetresPerInch = 25.4;

POINT screenDotsPerInch() {
    const HDC screen = GetDC(nullptr);
    const POINT dots = {GetDeviceCaps(screen, LOGPIXELSX), GetDeviceCaps(screen, LOGPIXELSY)};
    ReleaseDC(nullptr, screen);
    return dots;
}

// A picture and the screen in dots per inch; a picture that does not tell its resolution has the screen's.
struct Scale {
    explicit Scale(POINT pictureDots) : screen(screenDotsPerInch()), picture(pictureDots) {
        picture = {picture.x > 0 ? picture.x : screen.x, picture.y > 0 ? picture.y : screen.y};
    }
    [[nodiscard]] bool isCoarse() const { return picture.x < screen.x || picture.y < screen.y; }
    // What the library is told places in: it counts in pixels of the screen and scales them. In a picture coarser than
    // the screen it would cut the text's beginning off, so there it is given pixels of the picture.
    [[nodiscard]] POINT told() const { return isCoarse() ? picture : screen; }

    POINT screen;
    POINT picture;
};

// Where the text begins, as the library is told.
POINT placeOf(const StampRequest &request, const Scale &scale) {
    return {std::lround(request.x * scale.told().x / kMillimetresPerInch),
            std::lround(request.y * scale.told().y / kMillimetresPerInch)};
}

bool isOnPage(const StampRequest &request, const Scale &scale, const BITMAPINFOHEADER &page) {
    const POINT place = placeOf(request, scale);
    const auto pixel = [](LONG told, LONG pictureDots, LONG toldDots) {
        return std::lround(static_cast<double>(told) * pictureDots / toldDots);
    };
    return pixel(place.x, scale.picture.x, scale.told().x) < page.biWidth &&
           pixel(place.y, scale.picture.y, scale.told().y) < page.biHeight;
}

std::string sizeInMillimetres(const BITMAPINFOHEADER &page, const Scale &scale) {
    char text[64];
    std::snprintf(text, sizeof text, "%.1f x %.1f millimetres", page.biWidth * kMillimetresPerInch / scale.picture.x,
                  page.biHeight * kMillimetresPerInch / scale.picture.y);
    return text;
}

// The text on the DIB; coarse ones are given their size, too, in pixels of the picture, without a resolution.
OwnedDib printOn(const OwnedDib &dib, const Scale &scale, const StampRequest &request) {
    const auto size = static_cast<int>(request.points);
    DWORD points = request.points;
    if (scale.isCoarse()) {
        dib.setDotsPerInch({});
        points = static_cast<DWORD>(MulDiv(size, scale.picture.y, scale.screen.y));
    }
    const POINT place = placeOf(request, scale);
    return OwnedDib(DIBTextOverlay(dib.get(), place.x, place.y, request.text.c_str(), request.font.c_str(),
                                   std::max<DWORD>(points, 1)));
}

StampRequest parse(const Arguments &arguments) {
    constexpr long kMostMillimetres = 10000;
    constexpr const char *kPlace = "two whole numbers of millimetres from 0 to 10000, as 10,10";
    StampRequest request;
    const auto text = arguments.value("--text");
    if (!text) {
        throw UsageError("option '--text' is needed");
    }
    request.text = ansiText("the text", linesOf(*text));
    if (request.text.find_first_not_of("\r\n") == std::string::npos) {
        throw UsageError("the text is empty");
    }
    const std::string place = arguments.value("--at").value_or("10,10");
    const std::vector<std::string> parts = splitAt(place, ',');
    if (parts.size() != 2) {
        throw UsageError("option '--at' wants " + std::string(kPlace) + ", not '" + place + "'");
    }
    request.x = parseNumber("--at", parts[0], 0, kMostMillimetres, kPlace);
    request.y = parseNumber("--at", parts[1], 0, kMostMillimetres, kPlace);
    request.font = ansiText("the font", arguments.value("--font").value_or("Arial"));
    request.points = static_cast<DWORD>(parseNumber("--size", arguments.value("--size").value_or("12"), 1, 1000,
                                                    "a whole number of points from 1 to 1000"));
    request.compression = arguments.value("--compression");
    dibCoding(request.compression, 1);
    return request;
}

Status complain(const std::string &label, const std::string &reason) {
    Console::get().complain(label + ": " + reason);
    return Status::Failed;
}

Status stamp(const SelectedPages &pages, const StampRequest &request, const FileName &output) {
    const DWORD index = pages.indices.front();
    if (const RegisteredPage page(pages.document, index); page && page.isDelegatedJpeg() && !jpegModuleAvailable()) {
        return complain(pages.label(index), kNoJpegModule);
    }
    SetTiffError(VELLUM_OK);
    const OwnedDib dib(LoadTiffIntoDIB(pages.document.name().forLibrary().c_str(), index, 0));
    if (!dib || TiffError() != VELLUM_OK) {
        return complain(pages.label(index), libraryMessage(TiffError()));
    }
    const POINT dotsPerInch = dib.dotsPerInch();
    const Scale scale(dotsPerInch);
    if (!isOnPage(request, scale, dib.header())) {
        return complain(pages.label(index), "the place " + placeText(request.x, request.y) +
                                                " lies outside the page of " + sizeInMillimetres(dib.header(), scale) +
                                                ".");
    }
    const OwnedDib stamped = printOn(dib, scale, request);
    if (!stamped) {
        return complain(pages.label(index), libraryMessage(VELLUM_NO_MEMORY));
    }
    DibOutput tiff(output);
    if (!tiff.add(stamped, dibCoding(request.compression, stamped.header().biBitCount), dotsPerInch) ||
        !tiff.commit()) {
        return complain(output.shown(), tiff.failure());
    }
    Console::get().print(tiff.report());
    return Status::Ok;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    if (operands.size() != 2) {
        throw UsageError("one input file and one output file are needed");
    }
    const StampRequest request = parse(arguments);
    const PageSelection input = PageSelection::onePage(operands[0]);
    const FileName output(operands[1]);
    if (output.sameAs(input.file())) {
        throw UsageError("the output would replace the input");
    }
    const auto pages = openPages(input);
    return pages == nullptr ? Status::Failed : stamp(*pages, request, output);
}

} // namespace

constinit const Command stampCommand = {"stamp", "print some lines of text on a page", kHelp, run};

} // namespace tool
