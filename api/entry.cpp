// The module's entry point: decides whether a process may attach and keeps the module handle, which every use of the
// library's own resources needs. It runs under the loader lock, so it does nothing else.
#include "core/library_state.h"

namespace vellum {
namespace {

// Bit 31 of GetVersion() is set on systems other than Windows NT.
bool systemIsWindowsNT() {
    return (GetVersion() & 0x80000000u) == 0;
}

// By design: where all processes share one copy of the library's data, which is so on every system but Windows NT, only
// the first process is let in, because a second one would work on the first one's error code and streams.
BOOL enterOnce(bool &done) {
    if (!systemIsWindowsNT() && done) {
        return FALSE;
    }
    done = true;
    return TRUE;
}

} // namespace
} // namespace vellum

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID) {
    using namespace vellum;
    switch (reason) {
    case DLL_PROCESS_ATTACH:
        if (!enterOnce(library.processAttached)) {
            return FALSE;
        }
        library.module = module;
        return TRUE;
    case DLL_PROCESS_DETACH:
        return enterOnce(library.processDetached);
    case DLL_THREAD_ATTACH:
    case DLL_THREAD_DETACH:
        return TRUE;
    default:
        return FALSE;
    }
}
