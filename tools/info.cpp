// vellum info: what is in a TIFF, for people (info_text.cpp) or for programs (info_json.cpp).
#include "tools/info.h"

#include "tools/arguments.h"
#include "tools/console.h"

#include <array>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum info - tell what is in TIFF and CALS files

Usage: vellum info [options] FILE...

For each file: its pages, byte order and size; for each page: its width and
height in pixels, bits per pixel (samples x bits), photometric interpretation,
compression with its option, strips, resolution and the offset of its directory
in the file. Pages are counted from 1. Of a CALS file: its size in pixels, its
resolution and orientation, and the records of its header.

Options:
      --tags        list every tag: number, name, type, count and values
      --all-values  with --tags: values in full (long lists are cut otherwise)
      --json        one JSON document instead of text, values in full
  -h, --help        show this help

Exit status: 0 all files could be read, 1 some could not or are damaged,
2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--tags"}, Option{"--all-values"}, Option{"--json"}};

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    if (arguments.operands().empty()) {
        throw UsageError("no file given");
    }
    const std::vector<FileName> names = namesFromOperands(arguments.operands());
    InfoOptions options;
    options.tags = arguments.has("--tags") || arguments.has("--all-values");
    if (arguments.has("--all-values")) {
        options.extent = TagValues::Extent::Whole;
    }
    return arguments.has("--json") ? printInfoJson(names, options) : printInfoText(names, options);
}

} // namespace

Status complainOfFile(const TiffDocument &document) {
    Console::get().complain(document.name().shown() + ": " + document.openMessage());
    return Status::Failed;
}

Status complainOfPage(const FileName &name, DWORD index, DWORD error) {
    Console::get().complain(name.shown() + ": page " + std::to_string(index + 1) + ": " + libraryMessage(error));
    return Status::Failed;
}

Status complainOfChain(const TiffDocument &document) {
    const std::string message = document.chainMessage();
    if (message.empty()) {
        return Status::Ok;
    }
    Console::get().complain(document.name().shown() + ": " + message);
    return Status::Failed;
}

constinit const Command infoCommand = {"info", "tell what is in TIFF and CALS files", kHelp, run};

} // namespace tool
