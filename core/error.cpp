// The error numbers' English messages, and the last error.
#include "core/error.h"

#include "core/library_state.h"

#include <iterator>
#include <string_view>

namespace vellum {
namespace {

// Indexed by the error number.
constexpr const char *kMessages[] = {
    "Operation was successful.",
    "Not enough memory.",
    "Not T_READ or T_CREAT in OpenTiffFile().",
    "Image or tag data index is out of range.",
    "Strip index is out of range.",
    "Unexpected end of file in reading data.",
    "General I/O error in reading or writting.",
    "Pathname is longer than MAXPATH.",
    "File has not a valid TIFF format.",
    "Invalid TIFF directory tag.",
    "Indispensable tags are missing.",
    "Image compression type is not known.",
    "Error during compression or decompression.",
    "Such tag is not defined.",
    "Invalid byte order.",
    "Invalid bit order.",
    "Color format is not supported.",
    "Too few color info.",
    "File has not a valid CALS format.",
    "End of Facsimile Block is missing (EOFB)",
    "Unexpected End of Facsimile Block (EOFB)",
};
static_assert(std::size(kMessages) == number(Error::EofbUnexpected) + 1);

constexpr const char *kNoMessage = "Unknown error.";

// Callers give room for this many bytes, the terminator included.
constexpr std::size_t kLongestMessage = 43;

constexpr bool messagesFit() {
    for (const std::string_view message : kMessages) {
        if (message.size() >= kLongestMessage) {
            return false;
        }
    }
    return std::string_view(kNoMessage).size() < kLongestMessage;
}
static_assert(messagesFit());

} // namespace

Error lastError() {
    return library.lastError;
}

void setError(Error error) {
    library.lastError = error;
}

const char *errorMessage(DWORD code) {
    return code < std::size(kMessages) ? kMessages[code] : kNoMessage;
}

} // namespace vellum
