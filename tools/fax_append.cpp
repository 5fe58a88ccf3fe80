// vellum fax-append: the code of a fax page behind the end of a file of any kind.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/library_file.h"
#include "tools/page_copying.h"
#include "tools/page_selection.h"
#include "tools/tag_numbers.h"
#include "tools/tag_values.h"

#include <array>
#include <charconv>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum fax-append - add the code of a fax page to the end of a file

Usage: vellum fax-append [options] TARGET IN.tif[:PAGE]

Writes the code of a page (the first, or PAGE) as it lies in the TIFF, strip
after strip and without any header or tag, behind the end of TARGET, a file of
any kind that must be there. The page has to be coded with modified Huffman,
Group 3 or Group 4. TARGET changes in one step; when anything fails, it stays as
it was.

Options:
      --offset N  start N bytes behind TARGET's end; with --offset=-N, N bytes
                  before it, writing over what is there. Default: 0
  -h, --help      show this help

Exit status: 0 the code was added, 1 it was not, 2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--offset", Option::Kind::Value}};

LONG parseOffset(const std::string &text) {
    LONG number = 0;
    const char *const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsedTo != end) {
        throw UsageError("option '--offset' wants a number of bytes, not '" + text + "'");
    }
    return number;
}

// Why the page's code cannot be copied by itself; empty when it can.
std::string codeObstacle(const TiffDocument &document, DWORD index) {
    const RegisteredPage page(document, index);
    if (!page) {
        return libraryMessage(TiffError());
    }
    const DWORD compression = page.number(tag::kCompression).value_or(1);
    if (compression < 2 || compression > 4) {
        return "the page is not coded with modified Huffman, Group 3 or Group 4.";
    }
    for (const DWORD tag : {tag::kStripOffsets, tag::kStripByteCounts}) {
        const auto values = readTag(page, tag);
        if (!values) {
            return libraryMessage(VELLUM_TAG_MISSING);
        }
        if (values->type() != static_cast<DWORD>(Type::Long)) {
            return "the places of its strips are not told as LONG values; 'vellum convert' makes a page that has them.";
        }
    }
    return dataObstacle(document, page);
}

// Why the target cannot take code there; empty when it can.
std::string targetObstacle(const FileName &target, LONG offset) {
    if (target.isMissing()) {
        return "there is no such file.";
    }
    const auto size = target.size();
    if (!size) {
        return writeFailure(GetLastError());
    }
    const LONGLONG start = static_cast<LONGLONG>(*size) + offset;
    if (start < 0) {
        return "--offset leads before the file's start.";
    }
    return start > MAXLONG ? "--offset leads too far." : "";
}

Status complain(const std::string &label, const std::string &reason) {
    Console::get().complain(label + ": " + reason);
    return Status::Failed;
}

Status append(const FileName &target, const SelectedPages &pages, LONG offset) {
    const DWORD index = pages.indices.front();
    Console::get().progress("copying " + target.shown());
    LibraryFile file(target, LibraryFile::Start::OldContent);
    if (!file.failure().empty()) {
        return complain(target.shown(), file.failure());
    }
    SetTiffError(VELLUM_OK);
    const std::string source = pages.document.name().forLibrary();
    if (AppendCCITTImageFile(file.libraryPath().c_str(), source.c_str(), index, offset) == nullptr) {
        const DWORD error = TiffError();
        return complain(target.shown(),
                        "cannot be written: " + libraryMessage(error != VELLUM_OK ? error : DWORD{VELLUM_IO_ERROR}));
    }
    if (!file.commit()) {
        return complain(target.shown(), file.failure());
    }
    Console::get().print(target.shown() + ": " + pages.label(index) + ", now " +
                         std::to_string(target.size().value_or(0)) + " bytes\n");
    return Status::Ok;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    if (operands.size() != 2) {
        throw UsageError("a target file and one input file are needed");
    }
    const FileName target(operands[0]);
    const PageSelection input = PageSelection::onePage(operands[1]);
    const LONG offset = parseOffset(arguments.value("--offset").value_or("0"));
    if (target.sameAs(input.file())) {
        throw UsageError("the target is the input");
    }
    const auto pages = openPages(input);
    if (pages == nullptr) {
        return Status::Failed;
    }
    const DWORD index = pages->indices.front();
    if (const std::string obstacle = codeObstacle(pages->document, index); !obstacle.empty()) {
        return complain(pages->label(index), obstacle);
    }
    if (const std::string obstacle = targetObstacle(target, offset); !obstacle.empty()) {
        return complain(target.shown(), obstacle);
    }
    return append(target, *pages, offset);
}

} // namespace

constinit const Command faxAppendCommand = {"fax-append", "add the code of a fax page to the end of a file", kHelp,
                                            run};

} // namespace tool
