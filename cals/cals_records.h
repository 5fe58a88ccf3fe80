// The records of a CALS header: 16 of 128 characters without terminators, each a keyword, a value, and blanks up to its
// end. Here they are found, cut to strings, read as numbers and written; a record is never read or written beyond its
// 128 characters.
#pragma once

#include "vellum32.h"

#include <array>
#include <cstddef>
#include <iterator>
#include <string_view>

namespace vellum {

constexpr std::size_t kCalsRecordBytes = VELLUM_CALS_RECORD;
constexpr std::size_t kCalsRecords = 16;
constexpr DWORD kCalsHeaderBytes = VELLUM_CALS_HEADER;
static_assert(kCalsRecords * kCalsRecordBytes == kCalsHeaderBytes);

// By design: "dstdocis", "txtfileid", "scrgph" and "rdensty" are spelled as the files have them that programs keep.
constexpr std::string_view kRasterType = "rtype: ";
constexpr std::string_view kOrientation = "rorient: ";
constexpr std::string_view kPixelCounts = "rpelcnt: ";
constexpr std::string_view kDensity = "rdensty: ";

// Two more that other programs write; they are read only.
constexpr std::string_view kOtherRasterType = "dtype: ";
constexpr std::string_view kOtherDensity = "rdensity: ";

// The records that hold texts, in the order of CalsNotes.
struct CalsTextRecord {
    std::string_view keyword;
    const char *CalsNotes::*text;
};
constexpr CalsTextRecord kCalsTexts[] = {
    {"srcdocid: ", &CalsNotes::srcdocid}, {"dstdocis: ", &CalsNotes::dstdocis}, {"txtfileid: ", &CalsNotes::txtfileid},
    {"figid: ", &CalsNotes::figid},       {"scrgph: ", &CalsNotes::scrgph},     {"doccls: ", &CalsNotes::doccls},
    {"notes: ", &CalsNotes::notes},
};
constexpr std::size_t kCalsTextCount = std::size(kCalsTexts);

// What fills records up: readers take a NUL for a blank.
constexpr bool isCalsPadding(char c) {
    return c == ' ' || c == '\0';
}

// The first record that begins with the keyword, or null. A record that begins with padding is an unused one.
char *findCalsRecord(char *header, std::string_view keyword);

// Makes a record a string, in place: what fills it up goes, and one CR or LF in front of that. A record without text
// behind its third character becomes a single blank.
void trimCalsRecord(char *record);

// A trimmed copy of a record.
using CalsString = std::array<char, kCalsRecordBytes>;
CalsString trimmedCalsRecord(const char *record);

// Reads numbers out of a record, one after the other, from behind its keyword on.
class CalsNumbers {
public:
    CalsNumbers(const char *record, std::string_view keyword)
        : record_(record, kCalsRecordBytes), position_(keyword.size()) {}

    // 0 for what is no number, and the nearest LONG for one that none can hold. Then one character is passed over,
    // whichever it is.
    LONG next();

private:
    std::string_view record_;
    std::size_t position_;
};

// Writes a keyword and a value into a record and fills it up. A value that is too long is cut, so that the record ends
// with a blank all the same.
void writeCalsRecord(char *record, std::string_view keyword, std::string_view value);

} // namespace vellum
