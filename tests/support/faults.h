// Makes the system calls of the library fail on request, shows what it said in message boxes, and gives it a companion
// module. On Windows the import table of the library's module is patched (VELLUM32.DLL, or the test program when the
// library is linked into it); natively the Win32 shim does the same. One object of a kind at a time.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace vellum::test {

enum class Call {
    Allocate,   // GlobalAlloc
    Reallocate, // GlobalReAlloc
    Open,       // OpenFile, _lopen, _lcreat, CreateFileA
    Read,       // _lread
    Write,      // _lwrite, FlushFileBuffers
    Seek,       // _llseek
    Move,       // MoveFileExA
    Delete,     // DeleteFileA
};
constexpr int kCallKinds = 8;

// While it lives, the n-th call of its kind (from 0) fails, all others work. The test's own calls count too where the
// library is linked into the test program.
class FailNth {
public:
    static constexpr long kNever = -1; // just counts

    FailNth(Call call, long nth);
    FailNth(const FailNth &) = delete;
    FailNth &operator=(const FailNth &) = delete;
    ~FailNth();

    // Calls so far.
    [[nodiscard]] unsigned long calls() const;
    // Whether the chosen call has come.
    [[nodiscard]] bool happened() const { return nth_ >= 0 && calls() > static_cast<unsigned long>(nth_); }

private:
    Call call_;
    long nth_;
};

// While it lives, message boxes are not shown but noted, and answered with OK.
class MessageBoxes {
public:
    MessageBoxes();
    MessageBoxes(const MessageBoxes &) = delete;
    MessageBoxes &operator=(const MessageBoxes &) = delete;
    ~MessageBoxes();

    [[nodiscard]] int count() const;
    // Of the last one.
    [[nodiscard]] std::string text() const;
    [[nodiscard]] std::string caption() const;
    [[nodiscard]] UINT style() const;
};

// An entry of a module, by its name.
struct ModuleEntry {
    std::string name;
    FARPROC function = nullptr;
};
template <class Function>
ModuleEntry moduleEntry(const char *name, Function *function) {
    return {name, reinterpret_cast<FARPROC>(reinterpret_cast<void *>(function))};
}

// While it lives, LoadLibraryA finds a module under this name with these entries; no other module is found.
class CompanionModule {
public:
    // handle  what LoadLibraryA answers with; null for an address that is no other module's
    CompanionModule(const char *name, std::vector<ModuleEntry> entries, HMODULE handle = nullptr);
    CompanionModule(const char *name, const char *entry, FARPROC function)
        : CompanionModule(name, {ModuleEntry{entry, function}}) {}
    CompanionModule(const CompanionModule &) = delete;
    CompanionModule &operator=(const CompanionModule &) = delete;
    ~CompanionModule();

    // Loads less frees.
    [[nodiscard]] int loads() const;
};

// While it lives, GetVersion answers this.
class SystemVersion {
public:
    explicit SystemVersion(DWORD version);
    SystemVersion(const SystemVersion &) = delete;
    SystemVersion &operator=(const SystemVersion &) = delete;
    ~SystemVersion();
};

} // namespace vellum::test
