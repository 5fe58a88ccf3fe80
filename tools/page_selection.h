// "scan.tif:1,3,5-8": a file and the pages of it that a command is to work on, as the command line names them.
//
// What stands behind the last colon of an operand counts as pages when it is made of digits, commas and hyphens, unless
// the colon is that of a drive. Pages come in the order in which they are named; "5-" leads to the last page.
#pragma once

#include "tools/tiff_document.h"

#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tool {

class PageSelection {
public:
    // Throws UsageError for pages that make no sense.
    explicit PageSelection(const std::string &operand);

    // At most one page, the first one when none is named. Throws UsageError for more.
    static PageSelection onePage(const std::string &operand);
    // A page, from 1, of a file whose name is not looked into.
    static PageSelection pageOf(FileName file, DWORD page) { return {std::move(file), {{page, page}}}; }
    // All pages of such a file.
    static PageSelection wholeFile(FileName file) { return {std::move(file), {}}; }
    // Operands whose file names are patterns stand for the files they match, each with the same pages.
    static std::vector<PageSelection> all(std::span<const std::string> operands);

    [[nodiscard]] const FileName &file() const { return file_; }
    // Whether no pages are named, which means all.
    [[nodiscard]] bool isWholeFile() const { return ranges_.empty(); }
    // The pages by index, or nothing and why.
    [[nodiscard]] std::optional<std::vector<DWORD>> indices(DWORD pageCount, std::string &failure) const;

private:
    struct Range {
        DWORD first; // from 1
        DWORD last;  // from first; kToTheEnd
    };
    static constexpr DWORD kToTheEnd = MAXDWORD;
    PageSelection(FileName file, std::vector<Range> ranges) : file_(std::move(file)), ranges_(std::move(ranges)) {}
    static std::vector<Range> parse(const std::string &operand, std::string_view list);

    FileName file_;
    std::vector<Range> ranges_;
};

// An open file with the pages that were asked for.
struct SelectedPages {
    explicit SelectedPages(const FileName &name) : document(name) {}

    // "in.tif: page 2"
    [[nodiscard]] std::string label(DWORD index) const;

    TiffDocument document;
    std::vector<DWORD> indices;
};

// Nothing, after a complaint, when the file cannot be read or has not all these pages. Of a file whose chain of pages
// breaks or leads back there is no such thing as all pages.
std::unique_ptr<SelectedPages> openPages(const PageSelection &selection);

} // namespace tool
