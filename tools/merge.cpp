// vellum merge: the pages of many files in one.
#include "tools/arguments.h"
#include "tools/copy.h"

#include <array>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum merge - put the pages of many TIFF files into one

Usage: vellum merge [options] IN... OUT

Copies all pages of all inputs into OUT, in that order, without decoding them;
IN:PAGES stands for some pages, as 'vellum copy --help' tells. A file has at
most 1000 pages. OUT appears under its name only when it is whole; one that is
there already is left alone. When one page of any input cannot be copied,
nothing is written.

Options:
      --replace  put the new file in the place of OUT
  -h, --help     show this help

Exit status: 0 all went well, 1 a page could not be copied, or not with all
tags, or OUT not be written, 2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--replace"}};

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const std::span<const std::string> operands = arguments.operands();
    if (operands.size() < 2) {
        throw UsageError("one or more input files and one output file are needed");
    }
    CopyRequest request{PageSelection::all(operands.first(operands.size() - 1)), FileName(operands.back())};
    if (arguments.has("--replace")) {
        request.existing = CopyRequest::Existing::Replaced;
    }
    return copyPages(request);
}

} // namespace

constinit const Command mergeCommand = {"merge", "put the pages of many TIFF files into one", kHelp, run};

} // namespace tool
