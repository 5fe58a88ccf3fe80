// Loading of the companion module and the calls into it.
#include "codec/jpeg_module.h"

#include "core/library_state.h"

namespace vellum {
namespace {

constexpr char kModuleName[] = "DCTLIB32.DLL";
constexpr char kCaption[] = "VELLUMSDK";
// By design: the text names the module as users know it, without the 32.
constexpr char kModuleMissing[] = "'DCTLIB.DLL' module is not found";

// An entry of the module and what is said when it is not there.
struct EntryName {
    const char *name;
    const char *missing;
};
constexpr EntryName kDecoder = {"JPEGDecoder", "'JPEGDecoder' function is not found"};
constexpr EntryName kEncoder = {"JPEGEncoder", "'JPEGEncoder' function is not found"};

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

// The entry, or null after telling the user what is missing.
CodecEntry findEntry(const EntryName &entry) {
    const HMODULE module = loadedModule();
    if (module == nullptr) {
        tell(kModuleMissing);
        return nullptr;
    }
    const FARPROC found = GetProcAddress(module, entry.name);
    if (found == nullptr) {
        tell(entry.missing);
    }
    // Through void *, the conversion between function types that compilers accept in silence.
    return reinterpret_cast<CodecEntry>(reinterpret_cast<void *>(found));
}

Error run(const EntryName &name, CodecState &state) {
    const CodecEntry entry = findEntry(name);
    // By design: the user has been told; a program that walks an archive goes on.
    return entry != nullptr ? fromLineFunction(entry(&state)) : Error::None;
}

} // namespace

Error decodeByJpegModule(CodecState &state) {
    return run(kDecoder, state);
}

Error encodeByJpegModule(CodecState &state) {
    return run(kEncoder, state);
}

bool jpegModuleEncodes() {
    return findEntry(kEncoder) != nullptr;
}

} // namespace vellum
