// Options of vellum fax.
#include "tools/fax_request.h"

#include "tools/ansi_text.h"
#include "tools/dib_output.h"
#include "tools/lengths.h"

#include <algorithm>
#include <array>
#include <cstring>

namespace tool {

namespace {

constexpr long kMostDots = 1200;
constexpr long kMostMillimetres = 1000;
constexpr ULONGLONG kHundredths = 100;

struct Paper {
    std::string_view name;
    DWORD width; // hundredths of an inch
    DWORD height;
};
constexpr std::array kPapers = {Paper{"a4", 827, 1169}, Paper{"letter", 850, 1100}, Paper{"legal", 850, 1400}};

const Paper &findPaper(const std::string &name) {
    const auto found = std::ranges::find_if(kPapers, [&name](const Paper &paper) { return isNamed(name, paper.name); });
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
                       "whole millimetres from 0 to 1000");
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
        page.tabStops[i] = inHundredths(parseNumber("--tabs", stops[i], 0, kMostMillimetres,
                                                    "whole millimetres from 0 to 1000, with commas between them"));
    }
}

void setPaper(const Arguments &arguments, FaxPageParams &page) {
    const Paper &paper = findPaper(arguments.value("--paper").value_or("a4"));
    const POINT dots = parsePair("--dpi", arguments.value("--dpi").value_or("204x196"), 1, kMostDots,
                                 "whole dots per inch from 1 to 1200, as 200 or 204x196");
    page.pageWidth = paper.width;
    page.pageHeight = paper.height;
    page.horizontalResolution = static_cast<DWORD>(dots.x);
    page.verticalResolution = static_cast<DWORD>(dots.y);
}

// By design: the width that lines are laid out in is one in hundredths of an inch, the last one that does not lead
// beyond the pixels.
void setWidth(const Arguments &arguments, FaxRequest &request) {
    constexpr long kWidest = 20000;
    if (const auto width = arguments.value("--width")) {
        request.columns =
            static_cast<DWORD>(parseNumber("--width", *width, 1, kWidest, "a whole number of pixels from 1 to 20000"));
        request.page.pageWidth = static_cast<DWORD>(request.columns * kHundredths / request.page.horizontalResolution);
    }
}

void setMargins(const Arguments &arguments, FaxPageParams &page) {
    const POINT margin = parsePair("--margin", arguments.value("--margin").value_or("20"), 0, kMostMillimetres,
                                   "whole millimetres from 0 to 1000, as 20 or 15x20");
    page.leftMargin = inHundredths(margin.x);
    page.topMargin = inHundredths(margin.y);
    if (!arguments.has("--form") && (2 * page.leftMargin >= page.pageWidth || 2 * page.topMargin >= page.pageHeight)) {
        throw UsageError("option '--margin' leaves no room on the paper");
    }
}

void setFont(const Arguments &arguments, FaxPageParams &page) {
    constexpr long kMostPoints = 1000;
    const std::string font = ansiText("the font", arguments.value("--font").value_or("Courier New"));
    std::memcpy(page.fontFace, font.data(), std::min(font.size(), sizeof page.fontFace - 1));
    page.fontSize = static_cast<DWORD>(parseNumber("--size", arguments.value("--size").value_or("10"), 1, kMostPoints,
                                                   "a whole number of points from 1 to 1000"));
    page.flags |= (arguments.has("--bold") ? VELLUM_FAX_BOLD : 0) | (arguments.has("--italic") ? VELLUM_FAX_ITALIC : 0);
}

void setPage(const Arguments &arguments, FaxRequest &request) {
    FaxPageParams &page = request.page;
    page.flags = VELLUM_FAX_HUNDREDTHS;
    setPaper(arguments, page);
    setWidth(arguments, request);
    setMargins(arguments, page);
    setFont(arguments, page);
    page.lineSpacing = inHundredths(millimetres(arguments, "--spacing", "0"));
    setTabs(arguments, page);
}

// Without the option as many as a letter may have, or as there is memory for.
DWORD parsePages(const Arguments &arguments, const FaxRequest &request) {
    constexpr DWORD kDefault = 200;
    const DWORD most = mostFaxPages(request);
    const auto option = arguments.value("--pages");
    if (!option) {
        return std::min(kDefault, most);
    }
    const auto pages = static_cast<DWORD>(
        parseNumber("--pages", *option, 1, static_cast<long>(kMostFaxPages), "a number of pages from 1 to 1000"));
    if (pages > most) {
        throw UsageError("option '--pages' wants at most " + std::to_string(most) + " of these pages, at " +
                         std::to_string(request.page.horizontalResolution) + "x" +
                         std::to_string(request.page.verticalResolution) + " dpi, not '" + *option +
                         "': memory holds no more");
    }
    return pages;
}

std::optional<FileName> parseForm(const Arguments &arguments) {
    const auto form = arguments.value("--form");
    if (!form) {
        return std::nullopt;
    }
    for (const std::string_view option : {"--paper", "--dpi", "--width", "--pages"}) {
        if (arguments.has(option)) {
            throw UsageError("'--form' does not go with '" + std::string(option) + "': the form is the page");
        }
    }
    return FileName(*form);
}

// A bilevel DIB of the page, with its header and two colours.
ULONGLONG pageBytes(const FaxRequest &request) {
    constexpr ULONGLONG kHeaderAndColours = sizeof(BITMAPINFOHEADER) + 2 * sizeof(RGBQUAD);
    const FaxPageParams &page = request.page;
    const ULONGLONG columns =
        request.columns != 0 ? request.columns : page.pageWidth * ULONGLONG{page.horizontalResolution} / kHundredths;
    return kHeaderAndColours + (columns + 31) / 32 * 4 * request.rows();
}

} // namespace

DWORD FaxRequest::rows() const {
    return static_cast<DWORD>(page.pageHeight * ULONGLONG{page.verticalResolution} / kHundredths);
}

DWORD mostFaxPages(const FaxRequest &request) {
    constexpr ULONGLONG kMostBytes = 1ULL << 30; // of all pages together
    return static_cast<DWORD>(std::min<ULONGLONG>(kMostBytes / pageBytes(request), kMostFaxPages));
}

FaxRequest parseFaxRequest(const Arguments &arguments) {
    FaxRequest request;
    setPage(arguments, request);
    request.compression = arguments.value("--compression");
    dibCoding(request.compression, 1);
    request.form = parseForm(arguments);
    request.mostPages = request.form ? 1 : parsePages(arguments, request);
    return request;
}

} // namespace tool
