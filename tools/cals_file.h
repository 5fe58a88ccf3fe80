// CALS raster files: as a source of one page, as records to look at, and as what a bilevel picture becomes.
#pragma once

#include "tools/picture.h"
#include "vellum32.h"

#include <array>
#include <optional>
#include <string>
#include <vector>

namespace tool {

constexpr std::size_t kCalsTexts = 7;

// What a header tells besides the picture. An absent text is written as "NONE".
struct CalsDescription {
    std::array<std::optional<std::string>, kCalsTexts> texts; // in the order of CalsNotes
    std::optional<std::array<LONG, 2>> orientation;

    // What is not set here is taken from another description.
    void complete(const CalsDescription &other);
};

// Takes "KEY=TEXT" apart and sets the text. Throws UsageError.
void setCalsText(CalsDescription &description, const std::string &keyAndText);
// "90,270". Throws UsageError.
std::array<LONG, 2> parseCalsOrientation(const std::string &text);

// By its extension, .cal or .cals.
bool isCalsName(const FileName &name);
// By its extension or by its content: false for a file of another name whose header describes no picture.
bool isCalsFile(const FileName &name);

// What a file's header tells, also in records that are spelled as other programs do; nothing for a header that cannot
// be read.
CalsDescription describeCals(const FileName &name);

// The picture that a file's header describes.
struct CalsPicture {
    CalsInfo info;
    DWORD error; // VELLUM_OK, or why there is none; failure says so in words
    std::string failure;
};
CalsPicture measureCals(const FileName &name);
// Hands the picture's lines to a line function. Result: an error number of the library.
DWORD decodeCals(const FileName &name, const CalsPicture &picture, DWORD userValue, LineFunc lineFunction);

class CalsSource final : public PageSource {
public:
    explicit CalsSource(const FileName &name) : name_(name) {}

    [[nodiscard]] const FileName &name() const override { return name_; }
    [[nodiscard]] DWORD pageCount() const override { return 1; }
    // A page whose data end early comes as far as it goes, its other lines white.
    [[nodiscard]] PageReading read(DWORD index) const override;

private:
    FileName name_;
};

// Why a picture cannot be written as a CALS file; empty when it can.
std::string calsObstacle(const Picture &picture);
// What a CALS file does not keep of a picture that it can hold; empty when it keeps all.
std::string calsLoss(const Picture &picture);
// Writes the file, which is there and empty. Result: why that failed; empty when it did not.
std::string writeCals(const FileName &file, const Picture &picture, const CalsDescription &description,
                      const std::string &progressLabel);

// A record of a header that is in use.
struct CalsRecord {
    DWORD number;        // from 0
    std::string keyword; // what stands before the colon; empty when there is none
    std::string value;
};

// The records of a header; none when it cannot be read.
std::vector<CalsRecord> readCalsRecords(const FileName &name);

} // namespace tool
