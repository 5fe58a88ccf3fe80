// One page into a TIFF file of the library's: defined tag by tag and encoded, or copied; linked to the end of the
// chain.
#pragma once

#include "tools/tiff_coding.h"
#include "tools/tiff_document.h"

#include <memory>
#include <string>

namespace tool {

struct PageTarget {
    std::string libraryPath;
    DWORD pagesThere;          // pages that the file has; 0 makes it anew
    std::string progressLabel; // of the page
};

// Result: why the page could not be written, in words; empty on success. A file that had pages still has them.
std::string writeTiffPage(const PageTarget &target, const Picture &picture, const TiffCoding &coding);
// Pages of other files into one file, as they are coded, one behind the other.
class PageCopier {
public:
    explicit PageCopier(PageTarget target);
    PageCopier(const PageCopier &) = delete;
    PageCopier &operator=(const PageCopier &) = delete;
    ~PageCopier();

    // As writeTiffPage().
    std::string copy(const TiffDocument &source, DWORD index);

private:
    class OpenTarget;
    std::unique_ptr<OpenTarget> tiff_;
    DWORD pagesThere_;
};

} // namespace tool
