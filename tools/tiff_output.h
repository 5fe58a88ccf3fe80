// The TIFF file that pages go to: a new one, which appears under its name when it is whole, or an existing one that
// pages are added to in place.
#pragma once

#include "tools/tiff_coding.h"
#include "tools/tiff_document.h"

#include <memory>
#include <string>

namespace tool {

class PageCopier;

class TiffOutput {
public:
    TiffOutput(const TiffOutput &) = delete;
    TiffOutput &operator=(const TiffOutput &) = delete;
    virtual ~TiffOutput();

    // False when a page could not be added or anything before it failed; failure() says why.
    [[nodiscard]] virtual bool add(const Picture &picture, const TiffCoding &coding, const std::string &progressLabel);
    // The same of a page that goes from file to file without being decoded. A file's pages are all added in one way or
    // all in the other.
    [[nodiscard]] bool addCopy(const TiffDocument &document, DWORD index);
    // Makes the pages stay. Without it an existing file gets its old length back, and a new one never appears.
    [[nodiscard]] virtual bool commit() = 0;

    [[nodiscard]] const std::string &failure() const { return failure_; }
    // Pages that the file has by now.
    [[nodiscard]] DWORD pageCount() const { return pageCount_; }

protected:
    explicit TiffOutput(DWORD pageCount);

    void fail(std::string failure);
    // Where the library finds the file.
    std::string libraryPath_;

private:
    bool hasRoom();
    // Counts a page, or notes why it could not be added.
    bool count(std::string failure);

    DWORD pageCount_;
    std::unique_ptr<PageCopier> copier_; // from the first copied page on
    std::string failure_;
};

// A new file, in place of any older one. failure() tells at once when it cannot be made.
std::unique_ptr<TiffOutput> newTiff(const FileName &name);
// An existing file with more pages, which takes the place of the old one when it is whole; a missing one is made anew.
std::unique_ptr<TiffOutput> enlargedTiff(const FileName &name);
// An existing file, changed in place; a missing one is made anew.
std::unique_ptr<TiffOutput> appendedTiff(const FileName &name);

} // namespace tool
