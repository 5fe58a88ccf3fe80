// vellum convert: the command line, and the choice of what is read and what is written.
#include "tools/convert.h"

#include "tools/arguments.h"
#include "tools/bitmap_source.h"
#include "tools/console.h"
#include "tools/tiff_source.h"

#include <array>
#include <charconv>
#include <span>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum convert - turn pages into Windows bitmaps, TIFF or CALS files

Usage: vellum convert [options] IN OUT.bmp
       vellum convert [options] IN OUT.tif
       vellum convert [options] IN OUT.cal

IN is a TIFF, a CALS file or a Windows bitmap, OUT.tif (or .tiff) may have
several pages; OUT.cal (or .cals) takes pages of 1 bit per pixel. Without
options the first page is converted. A TIFF gets the page's samples, colours,
resolution and texts as they are in IN.

The output appears under its name only when it is whole; an existing file is
then replaced. A page whose data end early is written as far as it goes, the
rest in the first colour (black for a page of which 0 means black), with a
warning and exit status 1. A page that cannot be converted is left out.

Options:
      --page N         convert page N; pages are counted from 1
      --all            convert all pages: into one OUT.tif, or to OUT-001.bmp,
                       OUT-002.bmp and so on, and likewise for .cal
  -h, --help           show this help

Options for OUT.tif:
      --compression C  none, packbits, lzw, lzw-diff, jpeg; for pages of 1 bit
                       per pixel also mh, g3, g3-2d, g4. Default: g4 for 1 bit,
                       lzw-diff for samples of 8 bits, otherwise lzw
      --fill-order N   bits of a code byte from the most significant one on (1,
                       the default) or from the least significant one on (2)
      --k N            with g3-2d: every N-th line is coded one-dimensionally;
                       2 (the default) or more
      --title T        the ImageDescription of the pages
      --artist A       the Artist of the pages; an empty text means none
      --append         add the pages to OUT.tif, which is changed in place. When
                       that fails, it gets its old length back

Options for OUT.cal:
      --note KEY=TEXT  a text of the header: KEY is srcdocid, dstdocis,
                       txtfileid, figid, scrgph, doccls or notes. May be given
                       for each; the others are those of IN, or NONE
      --orientation A,B
                       the two angles of the header. Default: those of IN, or
                       90,270

Exit status: 0 all went well, 1 a page could not be converted or not as a whole,
2 wrong usage.
)";

constexpr std::array kOptions = {
    Option{"--page", Option::Kind::Value},        Option{"--all"},
    Option{"--compression", Option::Kind::Value}, Option{"--fill-order", Option::Kind::Value},
    Option{"--k", Option::Kind::Value},           Option{"--title", Option::Kind::Value},
    Option{"--artist", Option::Kind::Value},      Option{"--append"},
    Option{"--note", Option::Kind::List},         Option{"--orientation", Option::Kind::Value}};
constexpr auto kTiffOptions = std::span(kOptions).subspan(2, 6);
constexpr auto kCalsOptions = std::span(kOptions).subspan(8);

LONG parseK(const std::string &text) {
    LONG number = 0;
    const char *const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsedTo != end || number < 2) {
        throw UsageError("option '--k' wants a number from 2 on, not '" + text + "'");
    }
    return number;
}

// The compression and what goes with it. K is the library's own, for all that is encoded from then on.
TiffCoding parseCoding(const Arguments &arguments) {
    TiffCoding coding;
    if (const auto name = arguments.value("--compression")) {
        coding.compression = findCompression(*name);
        if (coding.compression == nullptr) {
            throw UsageError("option '--compression' wants one of " + compressionNames() + ", not '" + *name + "'");
        }
    }
    if (const auto order = arguments.value("--fill-order")) {
        if (*order != "1" && *order != "2") {
            throw UsageError("option '--fill-order' wants 1 or 2, not '" + *order + "'");
        }
        if (coding.compression != nullptr && coding.compression->isJpeg()) {
            throw UsageError("'--fill-order' does not go with '--compression jpeg'");
        }
        coding.fillOrder = *order == "1" ? 1 : 2;
    }
    if (const auto k = arguments.value("--k")) {
        const LONG number = parseK(*k);
        if (coding.compression == nullptr || !coding.compression->isTwoDimensionalGroup3()) {
            throw UsageError("'--k' goes with '--compression g3-2d' only");
        }
        SetKfactor(number);
    }
    return coding;
}

bool isTiffName(const FileName &name) {
    return name.hasExtension(".tif") || name.hasExtension(".tiff");
}

void refuseOptions(const Arguments &arguments, std::span<const Option> options, const char *outputs) {
    for (const Option &option : options) {
        if (arguments.has(option.name)) {
            throw UsageError("'" + std::string(option.name) + "' is for " + outputs + " output only");
        }
    }
}

void refuseInputAsOutput(const FileName &input, const FileName &output) {
    if (output.sameAs(input)) {
        throw UsageError("the output would replace the input");
    }
}

void checkOutput(const Arguments &arguments, const FileName &input, const FileName &output) {
    if (!isTiffName(output) && !isCalsName(output) && !output.hasExtension(".bmp")) {
        throw UsageError("the output's name must end in .bmp, .tif, .tiff, .cal or .cals, not '" + output.shown() +
                         "'");
    }
    if (!isTiffName(output)) {
        refuseOptions(arguments, kTiffOptions, "TIFF");
    }
    if (!isCalsName(output)) {
        refuseOptions(arguments, kCalsOptions, "CALS");
    }
    refuseInputAsOutput(input, output);
}

CalsDescription parseCals(const Arguments &arguments) {
    CalsDescription description;
    for (const std::string &note : arguments.values("--note")) {
        setCalsText(description, note);
    }
    if (const auto angles = arguments.value("--orientation")) {
        description.orientation = parseCalsOrientation(*angles);
    }
    return description;
}

ConvertRequest parseRequest(const Arguments &arguments) {
    if (arguments.operands().size() != 2) {
        throw UsageError("one input file and one output file are needed");
    }
    const auto pageOption = arguments.value("--page");
    if (pageOption && arguments.has("--all")) {
        throw UsageError("'--page' and '--all' exclude each other");
    }
    ConvertRequest request(FileName(arguments.operands()[0]), FileName(arguments.operands()[1]));
    request.page = pageOption ? parsePageNumber("--page", *pageOption) : 1;
    request.all = arguments.has("--all");
    checkOutput(arguments, request.input, request.output);
    request.append = arguments.has("--append");
    request.coding = parseCoding(arguments);
    request.title = arguments.value("--title");
    request.artist = arguments.value("--artist");
    request.cals = parseCals(arguments);
    return request;
}

// Before the first of several files is written, none of them may be the input.
void checkPageFiles(const ConvertRequest &request, DWORD pageCount) {
    if (request.all && !isTiffName(request.output)) {
        for (DWORD index = 0; index < pageCount; ++index) {
            refuseInputAsOutput(request.input, request.outputOf(index));
        }
    }
}

bool hasPage(const ConvertRequest &request, DWORD pageCount) {
    checkPageFiles(request, pageCount);
    if (pageCount == 0) {
        Console::get().complain(request.input.shown() + ": there is no page in the file.");
        return false;
    }
    if (request.all || request.page <= pageCount) {
        return true;
    }
    Console::get().complain(request.input.shown() + ": there is no page " + std::to_string(request.page) +
                            "; the file has " + std::to_string(pageCount) + ".");
    return false;
}

// Pages that come as pictures; not to bitmaps.
Status convertPictures(const PageSource &source, const ConvertRequest &request) {
    return isTiffName(request.output) ? convertToTiff(source, request) : convertToCals(source, request);
}

Status convertBitmap(const ConvertRequest &request) {
    if (request.output.hasExtension(".bmp")) {
        Console::get().complain(request.input.shown() + ": a bitmap is converted to TIFF and CALS only.");
        return Status::Failed;
    }
    const BitmapSource source(request.input);
    return hasPage(request, source.pageCount()) ? convertPictures(source, request) : Status::Failed;
}

// A CALS file that becomes one keeps its texts and its orientation.
Status convertCals(ConvertRequest request) {
    if (request.input.isMissing()) {
        Console::get().complain(request.input.shown() + ": there is no such file.");
        return Status::Failed;
    }
    const CalsSource source(request.input);
    if (!hasPage(request, source.pageCount())) {
        return Status::Failed;
    }
    request.cals.complete(describeCals(request.input));
    return request.output.hasExtension(".bmp") ? convertToBitmap(source, request) : convertPictures(source, request);
}

Status convertTiff(const ConvertRequest &request) {
    const TiffDocument document(request.input);
    if (!document.isOpen()) {
        Console::get().complain(request.input.shown() + ": " + document.openMessage());
        return Status::Failed;
    }
    if (!hasPage(request, document.pageCount())) {
        return Status::Failed;
    }
    Status status = request.output.hasExtension(".bmp") ? convertToBitmaps(document, request)
                                                        : convertPictures(TiffSource(document), request);
    if (const std::string chain = document.chainMessage(); request.all && !chain.empty()) {
        Console::get().complain(request.input.shown() + ": " + chain);
        status = Status::Failed;
    }
    return status;
}

Status run(const std::vector<std::string> &words) {
    const ConvertRequest request = parseRequest(Arguments(words, kOptions));
    if (isBitmapFile(request.input)) {
        return convertBitmap(request);
    }
    return isCalsFile(request.input) ? convertCals(request) : convertTiff(request);
}

} // namespace

std::string sizeText(ULONGLONG width, ULONGLONG height, DWORD bitsPerPixel) {
    return std::to_string(width) + " x " + std::to_string(height) + ", " + std::to_string(bitsPerPixel) +
           (bitsPerPixel == 1 ? " bit" : " bits");
}

constinit const Command convertCommand = {"convert", "turn pages into Windows bitmaps, TIFF or CALS files", kHelp, run};

} // namespace tool
