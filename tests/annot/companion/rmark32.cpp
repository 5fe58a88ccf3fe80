// An annotation module for the tests: a set is the address of a NUL-terminated text, and its bytes are the text's
// characters. It notes how it was called in an exported record, for the tests to look at.
#include "companion/noted.h"

#include <cstring>

extern "C" {

NotedByAnnotations noted = {};

DWORD WINAPI RmkGetSaveCount(DWORD annotations) {
    ++noted.countCalls;
    noted.annotations = annotations;
    return lstrlenA(reinterpret_cast<const char *>(annotations));
}

DWORD WINAPI RmkGetSaveData(DWORD annotations, BYTE *buffer, DWORD size) {
    ++noted.saveCalls;
    noted.annotations = annotations;
    noted.size = size;
    // As modules do that end what they write with a zero.
    lstrcpyA(reinterpret_cast<char *>(buffer), reinterpret_cast<const char *>(annotations));
    return 1;
}

// Only data that this module made are taken.
DWORD WINAPI RmkCreateOnLoad(BYTE *data, DWORD size) {
    ++noted.loadCalls;
    noted.size = size;
    return size >= 3 && std::memcmp(data, "rmk", 3) == 0 ? MODULE_RECREATED_SET : 0;
}

} // extern "C"
