// Windows: puts a function of the test's in place of one that the library imports. The module patched is VELLUM32.DLL
// where the program uses the DLL, and the program itself where the library is linked into it.
#pragma once

#include <windows.h>

namespace vellum::test {

// The address of a module's import table entry; null when it does not import the name.
void **importSlot(HMODULE module, const char *name);

// The module that holds the library's code.
HMODULE libraryModule();

class ImportPatch {
public:
    ImportPatch() = default;
    ImportPatch(const ImportPatch &) = delete;
    ImportPatch &operator=(const ImportPatch &) = delete;
    ~ImportPatch() { restore(); }

    // Nothing happens when the library, or another module that is given, does not import the function.
    template <class Function>
    void replace(const char *name, Function *replacement, HMODULE module = libraryModule()) {
        install(module, name, reinterpret_cast<void *>(replacement));
    }
    void restore();

    // The function that was there, for the replacement to call.
    template <class Function>
    [[nodiscard]] Function *original() const {
        return reinterpret_cast<Function *>(original_);
    }

private:
    void install(HMODULE module, const char *name, void *replacement);

    void **slot_ = nullptr;
    void *original_ = nullptr;
};

} // namespace vellum::test
