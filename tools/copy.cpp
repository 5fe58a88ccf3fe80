// vellum copy: pages of a file into another one, as they are coded.
#include "tools/copy.h"

#include "tools/arguments.h"
#include "tools/console.h"
#include "tools/page_copying.h"
#include "tools/tiff_output.h"

#include <algorithm>
#include <array>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum copy - copy pages into another TIFF without decoding them

Usage: vellum copy [options] IN[:PAGES] OUT

Copies all pages of IN, or those named: 1,3,5-8 or 2- (from 2 on), in that
order. Code and tags stay as they are; a new file has the byte order II. OUT
appears under its name only when it is whole; one that is there already is left
alone unless an option says otherwise. When one of the pages cannot be copied,
nothing is written.

Tags that lead to other directories in the file (SubIFDs, ExifIFD, GPSInfoIFD)
are left behind, with a warning and exit status 1.

Options:
      --append   add the pages to OUT; when that fails, it stays as it was
      --replace  put the new file in the place of OUT
  -h, --help     show this help

Exit status: 0 all went well, 1 a page could not be copied, or not with all
tags, or OUT not be written, 2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--append"}, Option{"--replace"}};

Status run(const std::vector<std::string> &words) {
    using enum CopyRequest::Existing;
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    if (operands.size() != 2) {
        throw UsageError("one input file and one output file are needed");
    }
    if (arguments.has("--append") && arguments.has("--replace")) {
        throw UsageError("'--append' and '--replace' exclude each other");
    }
    CopyRequest request{{PageSelection(operands[0])}, FileName(operands[1])};
    if (arguments.has("--append")) {
        request.existing = Enlarged;
    } else if (arguments.has("--replace")) {
        request.existing = Replaced;
    }
    return copyPages(request);
}

std::unique_ptr<TiffOutput> openOutput(const CopyRequest &request) {
    return request.existing == CopyRequest::Existing::Enlarged ? enlargedTiff(request.output) : newTiff(request.output);
}

bool copyInto(TiffOutput &output, const SelectedPages &pages, const FileName &name, std::string &report) {
    for (const DWORD index : pages.indices) {
        Console::get().progress("copying " + pages.label(index));
        if (!output.addCopy(pages.document, index)) {
            return false;
        }
        report += name.shown() + ": page " + std::to_string(output.pageCount()) + ": " + pages.document.name().shown() +
                  ", page " + std::to_string(index + 1) + "\n";
    }
    return true;
}

} // namespace

void checkOutput(std::span<const PageSelection> inputs, const FileName &output) {
    for (const PageSelection &input : inputs) {
        if (output.sameAs(input.file())) {
            throw UsageError("the output would replace the input");
        }
    }
}

CopyablePages openCopyable(const PageSelection &selection) {
    Console &console = Console::get();
    CopyablePages result{openPages(selection)};
    if (result.pages == nullptr) {
        return result;
    }
    const SelectedPages &pages = *result.pages;
    bool copyable = true;
    for (const DWORD index : pages.indices) {
        console.progress("looking at " + pages.label(index));
        if (const std::string obstacle = copyObstacle(pages.document, index); !obstacle.empty()) {
            console.complain(pages.label(index) + ": " + obstacle);
            copyable = false;
        } else if (const std::string tag = tagLeadingElsewhere(pages.document, index); !tag.empty()) {
            console.complain(pages.label(index) + ": warning: " + tag +
                             " and the data that it leads to are not copied.");
            result.status = Status::Failed;
        }
    }
    if (!copyable) {
        result.pages = nullptr;
    }
    return result;
}

Status copyPages(const CopyRequest &request) {
    Console &console = Console::get();
    checkOutput(request.inputs, request.output);
    if (request.existing == CopyRequest::Existing::Refused && request.output.exists()) {
        console.complain(request.output.shown() + ": is there already.");
        return Status::Failed;
    }
    std::vector<CopyablePages> sources;
    for (const PageSelection &input : request.inputs) {
        sources.push_back(openCopyable(input));
    }
    if (std::ranges::any_of(sources, [](const CopyablePages &source) { return source.pages == nullptr; })) {
        return Status::Failed;
    }
    const auto output = openOutput(request);
    std::string report;
    Status status = Status::Ok;
    for (const CopyablePages &source : sources) {
        status = worse(status, source.status);
        if (!copyInto(*output, *source.pages, request.output, report)) {
            break;
        }
    }
    if (!output->commit()) {
        console.complain(request.output.shown() + ": " + output->failure());
        return Status::Failed;
    }
    console.print(report);
    return status;
}

constinit const Command copyCommand = {"copy", "copy pages into another TIFF", kHelp, run};

} // namespace tool
