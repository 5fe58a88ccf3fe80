// The TIFF file that pages go to: a new one, which appears under its name when it is whole, or an existing one that
// pages are added to in place.
#pragma once

#include "tools/tiff_coding.h"

#include <memory>
#include <string>

namespace tool {

class TiffOutput {
public:
    virtual ~TiffOutput() = default;

    // False when a page could not be added or anything before it failed; failure() says why.
    [[nodiscard]] virtual bool add(const Picture &picture, const TiffCoding &coding, const std::string &progressLabel);
    // Makes the pages stay. Without it an existing file gets its old length back, and a new one never appears.
    [[nodiscard]] virtual bool commit() = 0;

    [[nodiscard]] const std::string &failure() const { return failure_; }
    // Pages that the file has by now.
    [[nodiscard]] DWORD pageCount() const { return pageCount_; }

protected:
    explicit TiffOutput(DWORD pageCount) : pageCount_(pageCount) {}

    void fail(std::string failure);
    // Where the library finds the file.
    std::string libraryPath_;

private:
    DWORD pageCount_;
    std::string failure_;
};

// A new file, in place of any older one. failure() tells at once when it cannot be made.
std::unique_ptr<TiffOutput> newTiff(const FileName &name);
// An existing file; a missing one is made anew.
std::unique_ptr<TiffOutput> appendedTiff(const FileName &name);

} // namespace tool
