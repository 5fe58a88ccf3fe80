// The ends of `vellum convert`: pages into bitmap files, into a TIFF, and into CALS files.
#pragma once

#include "tools/cals_file.h"
#include "tools/command.h"
#include "tools/picture.h"
#include "tools/tiff_coding.h"
#include "tools/tiff_document.h"

#include <optional>
#include <string>
#include <utility>

namespace tool {

struct ConvertRequest {
    ConvertRequest(FileName in, FileName out) : input(std::move(in)), output(std::move(out)) {}

    FileName input;
    FileName output;
    bool all = false;
    DWORD page = 1; // unless all
    // For a TIFF.
    bool append = false;
    TiffCoding coding;
    // Texts in place of those of the pages; an empty one takes them away.
    std::optional<std::string> title;
    std::optional<std::string> artist;
    // For a CALS file.
    CalsDescription cals;

    // Pages to convert, by index.
    [[nodiscard]] DWORD firstPage() const { return all ? 0 : page - 1; }
    [[nodiscard]] DWORD endPage(DWORD pageCount) const { return all ? pageCount : page; }
    // The file of a page, where each has one of its own.
    [[nodiscard]] FileName outputOf(DWORD index) const { return all ? output.forPage(index + 1) : output; }
};

// Each complains of what cannot be converted and tells what has been written.
Status convertToBitmaps(const TiffDocument &document, const ConvertRequest &request);
Status convertToTiff(const PageSource &source, const ConvertRequest &request);
Status convertToCals(const PageSource &source, const ConvertRequest &request);
// The one page of a source of bilevel pages.
Status convertToBitmap(const PageSource &source, const ConvertRequest &request);

// "1728 x 2287, 1 bit"
std::string sizeText(ULONGLONG width, ULONGLONG height, DWORD bitsPerPixel);

} // namespace tool
