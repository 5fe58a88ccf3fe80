// Faults, message boxes and modules by patching the imports of the library's module.
#include "support/faults.h"

#ifndef VELLUM_NATIVE
#include "support/import_patch.h"

#include <cstring>
#include <utility>

namespace vellum::test {
namespace {

struct Fault {
    long countdown = -1;
    unsigned long calls = 0;
};
Fault faults[kCallKinds];

Fault &faultOf(Call call) {
    return faults[static_cast<int>(call)];
}

// Counts a call; true when it is to fail.
bool hit(Call call) {
    Fault &fault = faultOf(call);
    ++fault.calls;
    return fault.countdown >= 0 && fault.countdown-- == 0;
}

// A patched function with the kind of call it counts as. The original is called through the patch, because the test
// program's own import may be the one that is patched.
template <Call kind, auto failure, class Function>
struct Counted;

template <Call kind, auto failure, class Result, class... Arguments>
struct Counted<kind, failure, Result(WINAPI *)(Arguments...)> {
    using Function = Result WINAPI(Arguments...);
    static inline ImportPatch patch;

    static Result WINAPI call(Arguments... arguments) {
        if (hit(kind)) {
            SetLastError(kind == Call::Allocate || kind == Call::Reallocate ? ERROR_NOT_ENOUGH_MEMORY
                                                                            : ERROR_ACCESS_DENIED);
            return (Result)failure;
        }
        return patch.template original<Function>()(arguments...);
    }
    static void install(const char *name) { patch.replace(name, &call); }
};

#define VELLUM_COUNTED(name, kind, failure) Counted<kind, failure, decltype(&name)>

using CountedAlloc = VELLUM_COUNTED(GlobalAlloc, Call::Allocate, nullptr);
using CountedReAlloc = VELLUM_COUNTED(GlobalReAlloc, Call::Reallocate, nullptr);
using CountedOpenFile = VELLUM_COUNTED(OpenFile, Call::Open, HFILE_ERROR);
using CountedLopen = VELLUM_COUNTED(_lopen, Call::Open, HFILE_ERROR);
using CountedCreateFile = VELLUM_COUNTED(CreateFileA, Call::Open, -1);
using CountedLread = VELLUM_COUNTED(_lread, Call::Read, HFILE_ERROR);
using CountedLwrite = VELLUM_COUNTED(_lwrite, Call::Write, HFILE_ERROR);
using CountedFlush = VELLUM_COUNTED(FlushFileBuffers, Call::Write, FALSE);
using CountedLlseek = VELLUM_COUNTED(_llseek, Call::Seek, HFILE_ERROR);
using CountedMove = VELLUM_COUNTED(MoveFileExA, Call::Move, FALSE);
using CountedDelete = VELLUM_COUNTED(DeleteFileA, Call::Delete, FALSE);

} // namespace

FailNth::FailNth(Call call, long nth) : call_(call), nth_(nth) {
    faultOf(call) = {nth, 0};
    switch (call) {
    case Call::Allocate:
        CountedAlloc::install("GlobalAlloc");
        break;
    case Call::Reallocate:
        CountedReAlloc::install("GlobalReAlloc");
        break;
    case Call::Open:
        CountedOpenFile::install("OpenFile");
        CountedLopen::install("_lopen");
        CountedCreateFile::install("CreateFileA");
        break;
    case Call::Read:
        CountedLread::install("_lread");
        break;
    case Call::Write:
        CountedLwrite::install("_lwrite");
        CountedFlush::install("FlushFileBuffers");
        break;
    case Call::Seek:
        CountedLlseek::install("_llseek");
        break;
    case Call::Move:
        CountedMove::install("MoveFileExA");
        break;
    case Call::Delete:
        CountedDelete::install("DeleteFileA");
        break;
    }
}

FailNth::~FailNth() {
    switch (call_) {
    case Call::Allocate:
        CountedAlloc::patch.restore();
        break;
    case Call::Reallocate:
        CountedReAlloc::patch.restore();
        break;
    case Call::Open:
        CountedOpenFile::patch.restore();
        CountedLopen::patch.restore();
        CountedCreateFile::patch.restore();
        break;
    case Call::Read:
        CountedLread::patch.restore();
        break;
    case Call::Write:
        CountedLwrite::patch.restore();
        CountedFlush::patch.restore();
        break;
    case Call::Seek:
        CountedLlseek::patch.restore();
        break;
    case Call::Move:
        CountedMove::patch.restore();
        break;
    case Call::Delete:
        CountedDelete::patch.restore();
        break;
    }
}

unsigned long FailNth::calls() const {
    return faultOf(call_).calls;
}

namespace {

struct {
    ImportPatch patch;
    int count = 0;
    std::string text;
    std::string caption;
    UINT style = 0;
} messages;

int WINAPI noteMessage(HWND, LPCSTR text, LPCSTR caption, UINT style) {
    ++messages.count;
    messages.text = text == nullptr ? "" : text;
    messages.caption = caption == nullptr ? "" : caption;
    messages.style = style;
    return IDOK;
}

} // namespace

MessageBoxes::MessageBoxes() {
    messages.count = 0;
    messages.text.clear();
    messages.caption.clear();
    messages.style = 0;
    messages.patch.replace("MessageBoxA", &noteMessage);
}
MessageBoxes::~MessageBoxes() {
    messages.patch.restore();
}
int MessageBoxes::count() const {
    return messages.count;
}
std::string MessageBoxes::text() const {
    return messages.text;
}
std::string MessageBoxes::caption() const {
    return messages.caption;
}
UINT MessageBoxes::style() const {
    return messages.style;
}

namespace {

struct {
    ImportPatch load;
    ImportPatch find;
    ImportPatch free;
    std::string name;
    std::vector<ModuleEntry> entries;
    HMODULE handle = nullptr;
    int loads = 0;
} companion;

// The companion's module handle: the one asked for, or any address that is no module's.
HMODULE companionHandle() {
    return companion.handle != nullptr ? companion.handle : reinterpret_cast<HMODULE>(&companion);
}

HMODULE WINAPI loadCompanion(LPCSTR name) {
    if (lstrcmpiA(name, companion.name.c_str()) != 0) {
        SetLastError(ERROR_FILE_NOT_FOUND);
        return nullptr;
    }
    ++companion.loads;
    return companionHandle();
}

FARPROC WINAPI findInCompanion(HMODULE module, LPCSTR name) {
    if (module == companionHandle()) {
        for (const ModuleEntry &entry : companion.entries) {
            if (entry.name == name) {
                return entry.function;
            }
        }
        return nullptr;
    }
    return companion.find.original<decltype(GetProcAddress)>()(module, name);
}

BOOL WINAPI freeCompanion(HMODULE module) {
    if (module == companionHandle()) {
        --companion.loads;
        return TRUE;
    }
    return companion.free.original<decltype(FreeLibrary)>()(module);
}

} // namespace

CompanionModule::CompanionModule(const char *name, std::vector<ModuleEntry> entries, HMODULE handle) {
    companion.name = name;
    companion.entries = std::move(entries);
    companion.handle = handle;
    companion.loads = 0;
    companion.load.replace("LoadLibraryA", &loadCompanion);
    companion.find.replace("GetProcAddress", &findInCompanion);
    companion.free.replace("FreeLibrary", &freeCompanion);
}

CompanionModule::~CompanionModule() {
    companion.load.restore();
    companion.find.restore();
    companion.free.restore();
}

int CompanionModule::loads() const {
    return companion.loads;
}

namespace {

struct {
    ImportPatch patch;
    DWORD version = 0;
} systemVersion;

DWORD WINAPI answerVersion() {
    return systemVersion.version;
}

} // namespace

SystemVersion::SystemVersion(DWORD version) {
    systemVersion.version = version;
    systemVersion.patch.replace("GetVersion", &answerVersion);
}
SystemVersion::~SystemVersion() {
    systemVersion.patch.restore();
}

} // namespace vellum::test

#endif
