// Companion modules: how they are loaded and asked for their entries, and a guard for one that is needed for the length
// of a call only.
#pragma once

#include <windows.h>

namespace vellum {

// Null when the module is not there.
inline HMODULE loadModule(const char *name) {
    // Module handles below this are error numbers of old systems.
    constexpr UINT_PTR kLeastHandle = 32;
    const HMODULE module = LoadLibraryA(name);
    return reinterpret_cast<UINT_PTR>(module) < kLeastHandle ? nullptr : module;
}

// The entry, as a pointer to a function of its type; null when the module has none of this name.
template <class Entry>
Entry findEntry(HMODULE module, const char *name) {
    // Through void *, the conversion between function types that compilers accept in silence.
    return reinterpret_cast<Entry>(reinterpret_cast<void *>(GetProcAddress(module, name)));
}

// Loads a module and unloads it again.
class LoadedModule {
public:
    explicit LoadedModule(const char *name) : module_(loadModule(name)) {}
    LoadedModule(const LoadedModule &) = delete;
    LoadedModule &operator=(const LoadedModule &) = delete;
    ~LoadedModule() {
        if (module_ != nullptr) {
            FreeLibrary(module_);
        }
    }

    explicit operator bool() const { return module_ != nullptr; }
    template <class Entry>
    [[nodiscard]] Entry find(const char *name) const {
        return findEntry<Entry>(module_, name);
    }

private:
    HMODULE module_;
};

} // namespace vellum
