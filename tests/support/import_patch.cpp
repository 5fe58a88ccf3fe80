// Finds and changes entries of a loaded module's import table.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/import_patch.h"

#include <cstring>

namespace vellum::test {
namespace {

template <class T>
T *at(HMODULE module, DWORD offset) {
    return reinterpret_cast<T *>(reinterpret_cast<BYTE *>(module) + offset);
}

void write(void **slot, void *value) {
    DWORD before = 0;
    VirtualProtect(slot, sizeof *slot, PAGE_READWRITE, &before);
    *slot = value;
    VirtualProtect(slot, sizeof *slot, before, &before);
}

} // namespace

HMODULE libraryModule() {
    const HMODULE dll = GetModuleHandleA("VELLUM32.DLL");
    return dll != nullptr ? dll : GetModuleHandleA(nullptr);
}

void **importSlot(HMODULE module, const char *name) {
    const auto *dos = at<IMAGE_DOS_HEADER>(module, 0);
    const auto *headers = at<IMAGE_NT_HEADERS32>(module, static_cast<DWORD>(dos->e_lfanew));
    const auto &directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    for (auto *dll = at<IMAGE_IMPORT_DESCRIPTOR>(module, directory.VirtualAddress); dll->FirstThunk != 0; ++dll) {
        const auto *names = at<IMAGE_THUNK_DATA32>(module, dll->OriginalFirstThunk);
        auto *slots = at<void *>(module, dll->FirstThunk);
        for (; names->u1.AddressOfData != 0; ++names, ++slots) {
            if (IMAGE_SNAP_BY_ORDINAL32(names->u1.Ordinal)) {
                continue;
            }
            const auto *byName = at<IMAGE_IMPORT_BY_NAME>(module, names->u1.AddressOfData);
            if (std::strcmp(reinterpret_cast<const char *>(byName->Name), name) == 0) {
                return slots;
            }
        }
    }
    return nullptr;
}

void ImportPatch::install(HMODULE module, const char *name, void *replacement) {
    restore();
    slot_ = importSlot(module, name);
    if (slot_ != nullptr) {
        original_ = *slot_;
        write(slot_, replacement);
    }
}

void ImportPatch::restore() {
    if (slot_ != nullptr) {
        write(slot_, original_);
        slot_ = nullptr;
    }
}

} // namespace vellum::test

#endif
