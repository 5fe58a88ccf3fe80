// vellum ioca: bilevel pages into IOCA image segments and back.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/convert.h"
#include "tools/ioca_file.h"
#include "tools/output_file.h"
#include "tools/page_selection.h"
#include "tools/table.h"
#include "tools/tiff_output.h"
#include "tools/tiff_source.h"

#include <array>
#include <cstdio>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum ioca - wrap bilevel pages as IOCA images, and unwrap them

Usage: vellum ioca wrap   [--modca] IN.tif[:PAGE] OUT
       vellum ioca unwrap IN OUT.tif
       vellum ioca info   FILE

'wrap' codes a bilevel page (the first, or PAGE) as MMR and writes it as an IOCA
image segment. 'unwrap' writes the picture as a TIFF of one page, Group 4;
'info' shows what the headers tell. Both find out by themselves whether there is
MO:DCA before the segment. Nothing is written of a picture that is not whole;
OUT appears under its name only when it is, an existing file is then replaced.

Options:
      --modca  wrap: write MO:DCA structured fields before the segment. The
               code must fit one field of 65535 bytes
  -h, --help   show this help

Exit status: 0 all went well, 1 a file could not be read or written, 2 wrong
usage.
)";

constexpr std::array kOptions = {Option{"--modca"}};

Status complain(const std::string &label, const std::string &reason) {
    Console::get().complain(label + ": " + reason);
    return Status::Failed;
}

const char *kindName(IocaKind kind) {
    return kind == IocaKind::Modca ? "MO:DCA" : "IOCA";
}

Status wrap(const PageSelection &input, const FileName &output, IocaKind kind) {
    const auto pages = openPages(input);
    if (pages == nullptr) {
        return Status::Failed;
    }
    const TiffSource source(pages->document);
    const DWORD index = pages->indices.front();
    const PageReading reading = source.read(index);
    if (!reading.picture || !reading.warning.empty()) {
        return complain(pages->label(index), reading.picture ? reading.warning : reading.failure);
    }
    if (const std::string obstacle = wrapObstacle(*reading.picture); !obstacle.empty()) {
        return complain(pages->label(index), obstacle);
    }
    OutputFile file(output);
    const FileName &beside = file.handOver();
    std::string failure = file.failure();
    if (failure.empty()) {
        failure = wrapPicture(beside, *reading.picture, kind, source.progressLabel(index));
    }
    if (failure.empty() && !file.commit()) {
        failure = file.failure();
    }
    if (!failure.empty()) {
        return complain(output.shown(), failure);
    }
    Console::get().print(output.shown() + ": " + sizeText(reading.picture->width, reading.picture->height, 1) + ", " +
                         kindName(kind) + "\n");
    return Status::Ok;
}

Status unwrap(const FileName &input, const FileName &output) {
    std::string failure;
    const auto info = readIoca(input, failure);
    if (!info) {
        return complain(input.shown(), failure);
    }
    const PageReading reading = unwrapPicture(input, *info);
    if (!reading.picture) {
        return complain(input.shown(), reading.failure);
    }
    TiffCoding coding;
    coding.compression = findCompression("g4");
    if (const std::string obstacle = codingObstacle(*reading.picture, *coding.compression); !obstacle.empty()) {
        return complain(input.shown(), obstacle);
    }
    const auto tiff = newTiff(output);
    if (!tiff->add(*reading.picture, coding, "page 1 of 1") || !tiff->commit()) {
        return complain(output.shown(), tiff->failure());
    }
    Console::get().print(output.shown() + ": " + sizeText(reading.picture->width, reading.picture->height, 1) +
                         ", g4\n");
    return Status::Ok;
}

std::string resolutionText(const IocaHeader &header) {
    if (header.horizontalResolution == 0 || header.verticalResolution == 0) {
        return "-";
    }
    const auto perInch = [](DWORD dots) {
        constexpr DWORD kInches = 10;
        const DWORD rest = dots % kInches;
        return std::to_string(dots / kInches) + (rest == 0 ? "" : "." + std::to_string(rest));
    };
    return perInch(header.horizontalResolution) + " x " + perInch(header.verticalResolution) + " dpi";
}

std::string segmentText(const IocaHeader &header) {
    if (header.segmentName == 0) {
        return "without a name";
    }
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%08lX", header.segmentName);
    return text.data();
}

std::string blockText(const IocaHeader &header) {
    constexpr DWORD kLongest = 65520; // which a length of 0 stands for
    if (header.firstBlockPosition == 0) {
        return "-";
    }
    const DWORD length = header.firstBlockLength == 0 ? kLongest : header.firstBlockLength;
    return std::to_string(length) + " bytes, at offset " + std::to_string(header.firstBlockPosition);
}

Status info(const FileName &file) {
    std::string failure;
    const auto info = readIoca(file, failure);
    if (!info) {
        return complain(file.shown(), failure);
    }
    const IocaHeader &header = info->header;
    using enum Table::Align;
    Table table({{"", Left}, {"", Left}});
    table.add({"pixels", std::to_string(header.width) + " x " + std::to_string(header.height)});
    table.add({"resolution", resolutionText(header)});
    table.add({"compression", header.compression == 1 ? "MMR" : std::to_string(header.compression)});
    table.add({"first block", blockText(header)});
    table.add({"segment", segmentText(header)});
    Console::get().print(file.shown() + ": " + kindName(info->kind) + ", " + std::to_string(file.size().value_or(0)) +
                         " bytes\n" + table.text(2));
    return Status::Ok;
}

void checkCount(const std::vector<std::string> &operands, std::size_t count, const char *needs) {
    if (operands.size() != count) {
        throw UsageError("'" + operands.front() + "' needs " + needs);
    }
}

void checkOutput(const FileName &input, const FileName &output) {
    if (output.sameAs(input)) {
        throw UsageError("the output would replace the input");
    }
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    const std::string action = operands.empty() ? "" : operands.front();
    if (action != "wrap" && action != "unwrap" && action != "info") {
        throw UsageError("one of wrap, unwrap and info is needed" + (action.empty() ? "" : ", not '" + action + "'"));
    }
    if (arguments.has("--modca") && action != "wrap") {
        throw UsageError("'--modca' goes with 'wrap' only");
    }
    if (action == "info") {
        checkCount(operands, 2, "one file");
        return info(FileName(operands[1]));
    }
    checkCount(operands, 3, "one input file and one output file");
    const FileName output(operands[2]);
    if (action == "wrap") {
        const PageSelection input = PageSelection::onePage(operands[1]);
        checkOutput(input.file(), output);
        return wrap(input, output, arguments.has("--modca") ? IocaKind::Modca : IocaKind::Segment);
    }
    const FileName input(operands[1]);
    checkOutput(input, output);
    return unwrap(input, output);
}

} // namespace

constinit const Command iocaCommand = {"ioca", "wrap bilevel pages as IOCA images, and unwrap them", kHelp, run};

} // namespace tool
