// Modules, message boxes, the screen's resolution, cursors and strings. There is no window system: a message box is
// recorded and answered with OK, the screen has 96 dots per inch.
#include "native/shim.h"

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <strings.h>

namespace vellum::shim {

State state;

namespace {

// Things that need an address only.
char moduleObject;
char dcObject;

HMODULE moduleHandle() {
    return state.moduleHandle != nullptr ? state.moduleHandle : reinterpret_cast<HMODULE>(&moduleObject);
}

std::string text(LPCSTR from) {
    return from == nullptr ? std::string() : std::string(from);
}

} // namespace
} // namespace vellum::shim

using namespace vellum::shim;

extern "C" {

HMODULE WINAPI LoadLibraryA(LPCSTR name) {
    if (state.moduleName.empty() || ::strcasecmp(name, state.moduleName.c_str()) != 0) {
        state.lastError = ERROR_FILE_NOT_FOUND;
        return nullptr;
    }
    ++state.moduleLoads;
    return moduleHandle();
}

FARPROC WINAPI GetProcAddress(HMODULE, LPCSTR name) {
    const auto found = state.moduleEntries.find(name);
    return found != state.moduleEntries.end() ? found->second : nullptr;
}

BOOL WINAPI FreeLibrary(HMODULE module) {
    if (module != moduleHandle()) {
        return FALSE;
    }
    --state.moduleLoads;
    return TRUE;
}

int WINAPI MessageBoxA(HWND, LPCSTR message, LPCSTR caption, UINT style) {
    state.messageText = text(message);
    state.messageCaption = text(caption);
    state.messageStyle = style;
    ++state.messageCount;
    return IDOK;
}

HDC WINAPI GetDC(HWND) {
    ++state.screenDcs;
    return reinterpret_cast<HDC>(&dcObject);
}

int WINAPI ReleaseDC(HWND, HDC) {
    --state.screenDcs;
    return 1;
}

int WINAPI GetDeviceCaps(HDC, int index) {
    return index == LOGPIXELSX || index == LOGPIXELSY ? 96 : 0;
}

HCURSOR WINAPI LoadCursorA(HINSTANCE, LPCSTR name) {
    return reinterpret_cast<HCURSOR>(reinterpret_cast<std::uintptr_t>(name));
}

HCURSOR WINAPI SetCursor(HCURSOR cursor) {
    const HCURSOR before = state.cursor;
    state.cursor = cursor;
    return before;
}

DWORD WINAPI GetVersion() {
    return state.systemVersion;
}

DWORD WINAPI GetLastError() {
    return state.lastError;
}

void WINAPI SetLastError(DWORD error) {
    state.lastError = error;
}

DWORD WINAPI GetTickCount() {
    struct timespec now = {};
    ::clock_gettime(CLOCK_MONOTONIC, &now);
    return static_cast<DWORD>(now.tv_sec) * 1000 + static_cast<DWORD>(now.tv_nsec / 1000000);
}

void WINAPI OutputDebugStringA(LPCSTR message) {
    state.debugOutput += text(message);
}

int WINAPI lstrlenA(LPCSTR string) {
    return string == nullptr ? 0 : static_cast<int>(std::strlen(string));
}

LPSTR WINAPI lstrcpyA(LPSTR to, LPCSTR from) {
    return std::strcpy(to, from);
}

// Copies at most length - 1 characters and always ends the copy with a NUL.
LPSTR WINAPI lstrcpynA(LPSTR to, LPCSTR from, int length) {
    if (length > 0) {
        const size_t copied = ::strnlen(from, static_cast<size_t>(length) - 1);
        std::memcpy(to, from, copied);
        to[copied] = '\0';
    }
    return to;
}

LPSTR WINAPI lstrcatA(LPSTR to, LPCSTR from) {
    return std::strcat(to, from);
}

int WINAPI lstrcmpiA(LPCSTR a, LPCSTR b) {
    return ::strcasecmp(a, b);
}

// Rounds half away from zero; -1 where the result has no 32 bits or the denominator is 0.
int WINAPI MulDiv(int number, int numerator, int denominator) {
    if (denominator == 0) {
        return -1;
    }
    const long long product = static_cast<long long>(number) * numerator;
    const bool negative = (product < 0) != (denominator < 0);
    const long long divisor = std::llabs(static_cast<long long>(denominator));
    const long long quotient = (std::llabs(product) + divisor / 2) / divisor;
    return quotient > INT32_MAX ? -1 : static_cast<int>(negative ? -quotient : quotient);
}

} // extern "C"
