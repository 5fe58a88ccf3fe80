// vellum fax: a text file as the pages of a fax.
#include "tools/ansi_text.h"
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/lengths.h"
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
      --pages N           at most so many pages, up to 1000. Default: 200
      --compression NAME  g4 (default), g3, g3-2d, mh, lzw, packbits or none;
                          for forms in colour lzw (default), packbits or none
  -h, --help              show this help

Exit status: 0 all went well, 1 a file could not be read or written or the text
has more pages, 2 wrong usage.
)";

using enum Option::Kind;
constexpr std::array kOptions = {
    Option{"--paper", Value}, Option{"--dpi", Value},  Option{"--margin", Value}, Option{"--font", Value},
    Option{"--size", Value},  Option{"--bold"},        Option{"--italic"},        Option{"--spacing", Value},
    Option{"--tabs", Value},  Option{"--form", Value}, Option{"--pages", Value},  Option{"--compression", Value},
};

constexpr long kMostDots = 1200;
constexpr long kMostMillimetres = 1000;

struct Paper {
    std::string_view name;
    DWORD width; // hundredths of an inch
    DWORD height;
};
constexpr std::array kPapers = {Paper{"a4", 827, 1169}, Paper{"letter", 850, 1100}, Paper{"legal", 850, 1400}};

const Paper &findPaper(const std::string &name) {
    const auto found = std::ranges::find(kPapers, name, &Paper::name);
    if (found == kPapers.end()) {
        throw UsageError("option '--paper' wants a4, letter or legal, not '" + name + "'");
    }
    return *found;
}

DWORD inHundredths(long millimetres) {
    return static_cast<DWORD>((millimetres * 1000 + 127) / 254);
}

// "204x196", or "200" for both.
POINT parsePair(std::string_view option, const std::string &text, long least, long most, const char *wants) {
    const std::vector<std::string> parts = splitAt(text, 'x');
    const std::string across = parts.size() <= 2 ? parts.front() : text;
    return {parseNumber(option, across, least, most, wants), parseNumber(option, parts.back(), least, most, wants)};
}

long millimetres(const Arguments &arguments, std::string_view option, const char *otherwise) {
    return parseNumber(option, arguments.value(option).value_or(otherwise), 0, kMostMillimetres,
                       "a number of millimetres");
}

void setTabs(const Arguments &arguments, FaxPageParams &page) {
    constexpr long kDefaultMillimetres = 20;
    for (std::size_t i = 0; i < std::size(page.tabStops); ++i) {
        page.tabStops[i] = inHundredths(kDefaultMillimetres * static_cast<long>(i + 1));
    }
    const auto list = arguments.value("--tabs");
    if (!list) {
        return;
    }
    const std::vector<std::string> stops = splitAt(*list, ',');
    if (stops.size() > std::size(page.tabStops)) {
        throw UsageError("option '--tabs' wants up to 16 numbers");
    }
    std::fill(std::begin(page.tabStops), std::end(page.tabStops), 0);
    for (std::size_t i = 0; i < stops.size(); ++i) {
        page.tabStops[i] =
            inHundredths(parseNumber("--tabs", stops[i], 0, kMostMillimetres, "millimetres, with commas between them"));
    }
}

struct FaxRequest {
    FaxPageParams page{};
    DWORD mostPages = 0;
    std::optional<FileName> form;
    std::optional<std::string> compression;

    [[nodiscard]] POINT dotsPerInch() const {
        return {static_cast<LONG>(page.horizontalResolution), static_cast<LONG>(page.verticalResolution)};
    }
};

void setPaper(const Arguments &arguments, FaxPageParams &page) {
    const Paper &paper = findPaper(arguments.value("--paper").value_or("a4"));
    const POINT dots = parsePair("--dpi", arguments.value("--dpi").value_or("204x196"), 1, kMostDots,
                                 "dots per inch up to 1200, as 200 or 204x196");
    page.pageWidth = paper.width;
    page.pageHeight = paper.height;
    page.horizontalResolution = static_cast<DWORD>(dots.x);
    page.verticalResolution = static_cast<DWORD>(dots.y);
}

FaxRequest parse(const Arguments &arguments) {
    constexpr long kMostPages = 1000;
    constexpr long kMostPoints = 1000;
    FaxRequest request;
    FaxPageParams &page = request.page;
    setPaper(arguments, page);
    const POINT margin = parsePair("--margin", arguments.value("--margin").value_or("20"), 0, kMostMillimetres,
                                   "millimetres, as 20 or 15x20");
    page.leftMargin = inHundredths(margin.x);
    page.topMargin = inHundredths(margin.y);
    if (!arguments.has("--form") && (2 * page.leftMargin >= page.pageWidth || 2 * page.topMargin >= page.pageHeight)) {
        throw UsageError("option '--margin' leaves no room on the paper");
    }
    const std::string font = ansiText("the font", arguments.value("--font").value_or("Courier New"));
    std::memcpy(page.fontFace, font.data(), std::min(font.size(), sizeof page.fontFace - 1));
    page.fontSize = static_cast<DWORD>(
        parseNumber("--size", arguments.value("--size").value_or("10"), 1, kMostPoints, "a number of points"));
    page.lineSpacing = inHundredths(millimetres(arguments, "--spacing", "0"));
    setTabs(arguments, page);
    page.flags = VELLUM_FAX_HUNDREDTHS | (arguments.has("--bold") ? VELLUM_FAX_BOLD : 0) |
                 (arguments.has("--italic") ? VELLUM_FAX_ITALIC : 0);
    request.mostPages = static_cast<DWORD>(parseNumber("--pages", arguments.value("--pages").value_or("200"), 1,
                                                       kMostPages, "a number of pages from 1 to 1000"));
    request.compression = arguments.value("--compression");
    dibCoding(request.compression, 1);
    if (const auto form = arguments.value("--form")) {
        if (arguments.has("--paper") || arguments.has("--dpi") || arguments.has("--pages")) {
            throw UsageError("'--form' does not go with '--paper', '--dpi' and '--pages': the form is the page");
        }
        request.form = FileName(*form);
    }
    return request;
}

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
    std::vector<OwnedDib> pages;
    pages.emplace_back(DIBFormOverlay(form.forLibrary().c_str(), &request.page));
    if (!pages.front()) {
        return complain(form, libraryMessage(TiffError()));
    }
    return writePages(pages, request, output);
}

Status faxOnPaper(const FaxRequest &request, const FileName &text, const FileName &output) {
    std::vector<HANDLE> handles(request.mostPages);
    DWORD status = 0;
    const DWORD count = CreateDIBFaxPageFromASCII(&request.page, request.mostPages, handles.data(), &status);
    std::vector<OwnedDib> pages;
    for (DWORD i = 0; i < count; ++i) {
        pages.emplace_back(handles[i]);
    }
    if (status != VELLUM_FAX_COMPLETE && status != VELLUM_FAX_PAGE_LIMIT) {
        return complain(text, status == VELLUM_FAX_NO_TEXT ? "cannot be read." : libraryMessage(VELLUM_NO_MEMORY));
    }
    const Status written = writePages(pages, request, output);
    if (status == VELLUM_FAX_PAGE_LIMIT) {
        return complain(text, "the text goes on behind page " + std::to_string(count) + "; --pages allows more.");
    }
    return written;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    if (arguments.operands().size() != 2) {
        throw UsageError("a text file and an output file are needed");
    }
    const FileName text(arguments.operands()[0]);
    const FileName output(arguments.operands()[1]);
    FaxRequest request = parse(arguments);
    if (output.sameAs(text) || (request.form && output.sameAs(*request.form))) {
        throw UsageError("the output would replace the input");
    }
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

} // namespace

constinit const Command faxCommand = {"fax", "draw a text file on the pages of a fax", kHelp, run};

} // namespace tool
