// Loading of the companion module and the calls into it.
#include "codec/jpeg_module.h"

#include "core/library_state.h"
#include "core/message_box.h"
#include "support/loaded_module.h"

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

using CodecEntry = DWORD(VELLUMAPI *)(CodecState *);

void tell(const char *text) {
    tellUser(text, kCaption, MB_TASKMODAL);
}

HMODULE loadedModule() {
    if (library.jpegModule == nullptr) {
        library.jpegModule = loadModule(kModuleName);
    }
    return library.jpegModule;
}

// The entry, or null after telling the user what is missing.
CodecEntry findCodec(const EntryName &entry) {
    const HMODULE module = loadedModule();
    if (module == nullptr) {
        tell(kModuleMissing);
        return nullptr;
    }
    const auto found = findEntry<CodecEntry>(module, entry.name);
    if (found == nullptr) {
        tell(entry.missing);
    }
    return found;
}

Error run(const EntryName &name, CodecState &state) {
    const CodecEntry entry = findCodec(name);
    if (entry == nullptr) {
        // By design: the user has been told; a program that walks an archive goes on.
        return Error::None;
    }
    // A line function may close a TIFF, which unloads the module: not while it runs.
    const LoadedModule held(kModuleName);
    return fromLineFunction(entry(&state));
}

} // namespace

Error decodeByJpegModule(CodecState &state) {
    return run(kDecoder, state);
}

Error encodeByJpegModule(CodecState &state) {
    return run(kEncoder, state);
}

bool jpegModuleEncodes() {
    return findCodec(kEncoder) != nullptr;
}

} // namespace vellum
