// The error numbers of the library and the one library-wide variable that holds the last of them.
#pragma once

#include <windows.h>

namespace vellum {

enum class [[nodiscard]] Error : DWORD{
    None = 0,
    NoMemory = 1,
    BadOpenMode = 2,
    IndexOutOfRange = 3,
    // What the buffer operations say, and a line function may say, when the image is complete: an end, not a failure.
    LastLinePassed = 3,
    StripOutOfRange = 4,
    UnexpectedEnd = 5,
    Io = 6,
    PathTooLong = 7,
    NotTiff = 8,
    BadTag = 9,
    TagMissing = 10,
    UnknownCompression = 11,
    BadCode = 12,
    TagNotDefined = 13,
    BadByteOrder = 14,
    BadFillOrder = 15,
    BadColorFormat = 16,
    TooFewColors = 17,
    NotCals = 18,
    EofbMissing = 19,
    EofbUnexpected = 20,
};

constexpr DWORD number(Error error) {
    return static_cast<DWORD>(error);
}

// Numbers of a line function's own pass through the library unchanged.
constexpr Error fromLineFunction(DWORD result) {
    return static_cast<Error>(result);
}

// The last error. It is not cleared by success, except where a function says so.
Error lastError();
void setError(Error error);

// Records the error and gives the result that goes with it: 0.
inline DWORD failed(Error error) {
    setError(error);
    return 0;
}

// Records how a run ended, on success too (the loaders rely on finding 0), and gives the result that goes with it.
inline DWORD recorded(Error error) {
    setError(error);
    return error == Error::None ? 1 : 0;
}

// The message of an error number; a number without one (21, or one of a line function's own) has a fixed text.
const char *errorMessage(DWORD code);

} // namespace vellum
