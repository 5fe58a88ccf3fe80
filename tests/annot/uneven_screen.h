// Windows: a screen whose dots per inch differ in the two directions, as the library sees it.
#pragma once

#include "support/import_patch.h"
#include "support/paths.h"

#include <string>

namespace vellum::test {

// While it lives, every device context has this resolution; one object at a time. What the library knows of the screen
// from an earlier call stays as it was: see FreshLibrary.
class UnevenScreen {
public:
    UnevenScreen(int dotsPerInchX, int dotsPerInchY, HMODULE library = libraryModule()) {
        dotsPerInchX_ = dotsPerInchX;
        dotsPerInchY_ = dotsPerInchY;
        patch_.replace("GetDeviceCaps", &answer, library);
    }
    UnevenScreen(const UnevenScreen &) = delete;
    UnevenScreen &operator=(const UnevenScreen &) = delete;
    ~UnevenScreen() { patch_.restore(); }

private:
    static int WINAPI answer(HDC dc, int index) {
        if (index == LOGPIXELSX) {
            return dotsPerInchX_;
        }
        return index == LOGPIXELSY ? dotsPerInchY_ : patch_.original<decltype(GetDeviceCaps)>()(dc, index);
    }

    static inline int dotsPerInchX_ = 0;
    static inline int dotsPerInchY_ = 0;
    static inline ImportPatch patch_;
};

// A second copy of the DLL, which has not been called yet.
class FreshLibrary {
public:
    FreshLibrary() {
        char path[MAX_PATH] = "";
        GetModuleFileNameA(libraryModule(), path, MAX_PATH);
        CopyFileA(path, file_.path(), FALSE);
        module_ = LoadLibraryA(file_.path());
    }
    FreshLibrary(const FreshLibrary &) = delete;
    FreshLibrary &operator=(const FreshLibrary &) = delete;
    ~FreshLibrary() { FreeLibrary(module_); }

    [[nodiscard]] HMODULE get() const { return module_; }
    // Null without such an export.
    template <class Function>
    [[nodiscard]] Function *entry(const char *name) const {
        return reinterpret_cast<Function *>(reinterpret_cast<void *>(GetProcAddress(module_, name)));
    }

private:
    TempFile file_;
    HMODULE module_ = nullptr;
};

} // namespace vellum::test
