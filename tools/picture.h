// A page on its way into a TIFF: what it is, what else is told of it, and its lines. Page sources make it of a TIFF's
// page or of a bitmap file.
#pragma once

#include "tools/file_name.h"
#include "tools/tag_numbers.h"
#include "tools/tag_values.h"

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace tool {

struct Picture {
    DWORD width = 0;  // pixels
    DWORD height = 0; // lines
    DWORD bitsPerSample = 1;
    DWORD samplesPerPixel = 1;
    DWORD photometric = kWhiteIsZero;
    // What does not depend on the coding: colours, resolution, texts.
    std::vector<TagValues> tags;
    // Fills lineBytes() bytes with a line's samples as a TIFF stores them; bilevel lines may be used as black and white
    // runs as they are. Lines are numbered from the top. The result is an error number of the library.
    std::function<DWORD(BYTE *line, DWORD index)> fillLine;

    [[nodiscard]] DWORD bitsPerPixel() const { return bitsPerSample * samplesPerPixel; }
    [[nodiscard]] ULONGLONG lineBytes() const { return (ULONGLONG{width} * bitsPerPixel() + 7) / 8; }
    // Puts a tag in place of one of the same number.
    void set(TagValues values);
    void remove(DWORD tag);
};

// Whether what there is of a picture is worth having after an error of the library's: the lines so far are good, and a
// damaged size does not fill the disk with lines that nobody has ever seen.
bool leavesAPart(const Picture &picture, DWORD lines, DWORD error);

// Tags with values of their own.
TagValues shortsTag(DWORD tag, std::span<const WORD> values);
TagValues rationalTag(DWORD tag, DWORD numerator, DWORD denominator);
TagValues textTag(DWORD tag, std::string text);

// A page as it could be read.
struct PageReading {
    std::optional<Picture> picture;
    std::string failure; // why there is no picture
    std::string warning; // why the picture is not whole; empty when it is
};

class PageSource {
public:
    virtual ~PageSource() = default;

    [[nodiscard]] virtual const FileName &name() const = 0;
    [[nodiscard]] virtual DWORD pageCount() const = 0;
    // A page below pageCount(). Its lines can be had while the source lives.
    [[nodiscard]] virtual PageReading read(DWORD index) const = 0;

    // "in.tif: page 2", for messages, and "page 2 of 3: reading line 256 of 2287", for the progress line.
    [[nodiscard]] std::string pageLabel(DWORD index) const;
    [[nodiscard]] std::string progressLabel(DWORD index) const;
};

// Shows on the progress line how far a page is, at every so many lines.
void showLineProgress(const std::string &progressLabel, const char *doing, DWORD line, DWORD height);

} // namespace tool
