// Loading of the companion module and the calls into it.
#include "codec/jpeg_module.h"

#include "core/library_state.h"

namespace vellum {
namespace {

constexpr char kModuleName[] = "DCTLIB32.DLL";
constexpr char kDecoderEntry[] = "JPEGDecoder";
constexpr char kCaption[] = "VELLUMSDK";
// By design: the text names the module as users know it, without the 32.
constexpr char kModuleMissing[] = "'DCTLIB.DLL' module is not found";
constexpr char kDecoderMissing[] = "'JPEGDecoder' function is not found";

// Module handles below this are error numbers of old systems.
constexpr UINT_PTR kLeastHandle = 32;

using CodecEntry = DWORD(VELLUMAPI *)(CodecState *);

void tell(const char *text) {
    MessageBoxA(nullptr, text, kCaption, MB_TASKMODAL);
}

HMODULE loadedModule() {
    if (library.jpegModule == nullptr) {
        const HMODULE module = LoadLibraryA(kModuleName);
        library.jpegModule = reinterpret_cast<UINT_PTR>(module) < kLeastHandle ? nullptr : module;
    }
    return library.jpegModule;
}

} // namespace

Error decodeByJpegModule(CodecState &state) {
    const HMODULE module = loadedModule();
    if (module == nullptr) {
        tell(kModuleMissing);
        // By design: the user has been told; a program that walks an archive goes on.
        return Error::None;
    }
    const FARPROC found = GetProcAddress(module, kDecoderEntry);
    if (found == nullptr) {
        tell(kDecoderMissing);
        return Error::None;
    }
    // Through void *, the conversion between function types that compilers accept in silence.
    const auto decoder = reinterpret_cast<CodecEntry>(reinterpret_cast<void *>(found));
    return fromLineFunction(decoder(&state));
}

} // namespace vellum
