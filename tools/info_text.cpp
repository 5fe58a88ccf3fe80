// vellum info for people: a table of the pages, and lists of their tags.
#include "tools/cals_file.h"
#include "tools/console.h"
#include "tools/info.h"
#include "tools/page_info.h"
#include "tools/table.h"
#include "tools/tiff_names.h"

#include <set>

namespace tool {

namespace {

std::string fileLine(const TiffDocument &document) {
    const DWORD pages = document.pageCount();
    std::string line = document.name().shown() + ": ";
    line += pages == 0 ? "no pages" : std::to_string(pages) + (pages == 1 ? " page" : " pages");
    line += document.byteOrder() == VELLUM_BYTE_ORDER_MM ? ", byte order MM" : ", byte order II";
    if (const auto size = document.fileSize()) {
        line += ", " + std::to_string(*size) + " bytes";
    }
    return line + "\n";
}

Status printFile(const FileName &name, const InfoOptions &options) {
    if (isCalsFile(name)) {
        return printCalsText(name);
    }
    const TiffDocument document(name);
    if (!document.isOpen()) {
        return complainOfFile(document);
    }
    using enum Table::Align;
    Table pages({{"page", Right},
                 {"pixels", Left},
                 {"bits", Left},
                 {"photometric", Left},
                 {"compression", Left},
                 {"strips", Left},
                 {"resolution", Left},
                 {"offset", Right}});
    std::string lists;
    std::vector<std::pair<DWORD, DWORD>> failures;
    for (DWORD index = 0; index < document.pageCount(); ++index) {
        const RegisteredPage page(document, index);
        const std::string number = std::to_string(index + 1);
        const std::string offset = std::to_string(document.chain().directoryOffsets[index]);
        if (!page) {
            failures.emplace_back(index, TiffError());
            pages.add({number, "-", "-", "-", "-", "-", "-", offset});
            continue;
        }
        const PageInfo info(page);
        pages.add({number, info.pixelsText(), info.bitsText(), info.photometricText(), info.compressionText(),
                   info.stripsText(), info.resolutionText(), offset});
        if (options.tags) {
            lists += "\n  page " + number + "\n" + tagList(page, tagNumbers(page), options.extent);
        }
    }
    Console &console = Console::get();
    console.print(fileLine(document));
    if (document.pageCount() > 0) {
        console.print(pages.text(2) + lists);
    }
    console.flush();
    Status status = complainOfChain(document);
    for (const auto &[index, error] : failures) {
        status = worse(status, complainOfPage(name, index, error));
    }
    return status;
}

} // namespace

std::string tagList(const RegisteredPage &page, std::span<const DWORD> tags, TagValues::Extent extent) {
    using enum Table::Align;
    Table table({{"", Right}, {"", Left}, {"", Left}, {"", Right}, {"", Left}});
    std::set<DWORD> seen;
    for (const DWORD tag : tags) {
        const std::string number = std::to_string(tag);
        const std::string name(tagName(tag).empty() ? "-" : tagName(tag));
        const auto values = readTag(page, tag);
        if (!seen.insert(tag).second) {
            table.add({number, name, "", "", "(again; the first entry counts)"});
        } else if (!values) {
            table.add({number, name, "", "", "(not available)"});
        } else {
            table.add({number, name, typeName(values->type()), std::to_string(values->count()), values->shown(extent)});
        }
    }
    return table.text(4);
}

Status printInfoText(std::span<const FileName> names, const InfoOptions &options) {
    Status status = Status::Ok;
    for (std::size_t i = 0; i < names.size(); ++i) {
        if (i > 0 && options.tags) {
            Console::get().print("\n");
        }
        status = worse(status, printFile(names[i], options));
    }
    return status;
}

} // namespace tool
