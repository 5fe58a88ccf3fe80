// Packed DIBs of the library's into a new TIFF file, which appears under its name when it is whole.
#pragma once

#include "tools/output_file.h"
#include "tools/temporary_file.h"

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace tool {

// A packed DIB, freed in the end.
class OwnedDib {
public:
    explicit OwnedDib(HGLOBAL block = nullptr) : block_(block) {}
    OwnedDib(OwnedDib &&other) noexcept : block_(other.block_) { other.block_ = nullptr; }
    OwnedDib(const OwnedDib &) = delete;
    OwnedDib &operator=(const OwnedDib &) = delete;
    ~OwnedDib() {
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return block_ != nullptr; }
    [[nodiscard]] HGLOBAL get() const { return block_; }
    [[nodiscard]] HGLOBAL release() { return std::exchange(block_, nullptr); }
    [[nodiscard]] BITMAPINFOHEADER header() const;
    // Whole dots per inch.
    [[nodiscard]] POINT dotsPerInch() const;
    void setDotsPerInch(POINT dots) const;

private:
    HGLOBAL block_;
};

// What a page of a DIB can be coded with.
struct DibCoding {
    std::string_view name; // as on the command line
    LONG code;             // VELLUM_SAVE_...
    bool bilevelOnly;
};
// By its name, in upper or lower case, or without one by the picture. Throws UsageError for a name that is none.
const DibCoding &dibCoding(const std::optional<std::string> &name, WORD bitsPerPixel);
// "g4, g3, ..."
std::string dibCodingNames();

class DibOutput {
public:
    explicit DibOutput(const FileName &name);

    // False when the page could not be added or anything before it failed; failure() says why.
    [[nodiscard]] bool add(const OwnedDib &dib, const DibCoding &coding, POINT dotsPerInch);
    [[nodiscard]] bool commit();
    [[nodiscard]] const std::string &failure() const { return failure_; }
    // A line for every page.
    [[nodiscard]] const std::string &report() const { return report_; }

private:
    FileName name_;
    OutputFile file_;
    TemporaryFile work_; // where the library adds page to page
    DWORD pages_ = 0;
    std::string report_;
    std::string failure_;
};

} // namespace tool
