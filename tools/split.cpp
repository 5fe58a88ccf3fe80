// vellum split: a file for every page.
#include "tools/arguments.h"
#include "tools/console.h"
#include "tools/copy.h"
#include "tools/tiff_output.h"

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum split - put every page into a file of its own

Usage: vellum split IN[:PAGES] [OUTPREFIX]

Copies the pages of IN, or those named (1,3,5-8), to OUTPREFIX-001.tif,
OUTPREFIX-002.tif and so on, without decoding them; the numbers are those of the
pages in IN. Without OUTPREFIX the files are named after IN. Each file appears
under its name only when it is whole; an existing one is then replaced. When a
page cannot be copied, nothing is written; 'vellum copy --help' tells what is
copied.

Options:
  -h, --help  show this help

Exit status: 0 all went well, 1 a page could not be copied, or not with all
tags, or a file not be written, 2 wrong usage.
)";

// What the files' names are made of.
FileName patternOf(const PageSelection &input, const std::vector<std::string> &operands) {
    const FileName prefix = operands.size() > 1 ? FileName(operands[1]) : input.file();
    return prefix.hasExtension(".tif") || prefix.hasExtension(".tiff") ? prefix : prefix.withSuffix(".tif");
}

Status writePage(const SelectedPages &pages, DWORD index, const FileName &name) {
    Console &console = Console::get();
    console.progress("copying " + pages.label(index));
    const auto output = newTiff(name);
    if (!output->addCopy(pages.document, index) || !output->commit()) {
        console.complain(name.shown() + ": " + output->failure());
        return Status::Failed;
    }
    console.print(name.shown() + ": " + pages.document.name().shown() + ", page " + std::to_string(index + 1) + "\n");
    return Status::Ok;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, {});
    const auto &operands = arguments.operands();
    if (operands.empty() || operands.size() > 2) {
        throw UsageError("one input file and at most one prefix are needed");
    }
    const PageSelection input(operands[0]);
    const FileName pattern = patternOf(input, operands);
    const auto [pages, statusOfPages] = openCopyable(input);
    if (pages == nullptr) {
        return Status::Failed;
    }
    for (const DWORD index : pages->indices) {
        checkOutput({&input, 1}, pattern.forPage(index + 1));
    }
    Status status = statusOfPages;
    for (const DWORD index : pages->indices) {
        status = worse(status, writePage(*pages, index, pattern.forPage(index + 1)));
    }
    return status;
}

} // namespace

constinit const Command splitCommand = {"split", "put every page into a file of its own", kHelp, run};

} // namespace tool
