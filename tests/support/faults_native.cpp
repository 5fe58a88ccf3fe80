// Faults, message boxes and modules by means of the Win32 shim.
#include "support/faults.h"

#ifdef VELLUM_NATIVE
#include "native/shim.h"

namespace vellum::test {
namespace {

shim::Fault &faultOf(Call call) {
    switch (call) {
    case Call::Allocate:
        return shim::state.globalAlloc;
    case Call::Reallocate:
        return shim::state.globalReAlloc;
    case Call::Open:
        return shim::state.openFile;
    case Call::Read:
        return shim::state.read;
    case Call::Write:
        return shim::state.write;
    case Call::Seek:
        return shim::state.seek;
    case Call::Move:
        return shim::state.move;
    case Call::Delete:
        return shim::state.remove;
    }
    return shim::state.globalAlloc;
}

} // namespace

FailNth::FailNth(Call call, long nth) : call_(call), nth_(nth) {
    faultOf(call) = {nth, 0};
}
FailNth::~FailNth() {
    faultOf(call_) = {};
}
unsigned long FailNth::calls() const {
    return faultOf(call_).calls;
}

MessageBoxes::MessageBoxes() {
    shim::state.messageText.clear();
    shim::state.messageCaption.clear();
    shim::state.messageStyle = 0;
    shim::state.messageCount = 0;
}
MessageBoxes::~MessageBoxes() = default;
int MessageBoxes::count() const {
    return shim::state.messageCount;
}
std::string MessageBoxes::text() const {
    return shim::state.messageText;
}
std::string MessageBoxes::caption() const {
    return shim::state.messageCaption;
}
UINT MessageBoxes::style() const {
    return shim::state.messageStyle;
}

CompanionModule::CompanionModule(const char *name, std::vector<ModuleEntry> entries, HMODULE handle) {
    shim::state.moduleName = name;
    shim::state.moduleEntries.clear();
    for (const ModuleEntry &entry : entries) {
        shim::state.moduleEntries[entry.name] = entry.function;
    }
    shim::state.moduleHandle = handle;
    shim::state.moduleLoads = 0;
}
CompanionModule::~CompanionModule() {
    shim::state.moduleName.clear();
}
int CompanionModule::loads() const {
    return shim::state.moduleLoads;
}

SystemVersion::SystemVersion(DWORD version) {
    shim::state.systemVersion = version;
}
SystemVersion::~SystemVersion() {
    shim::state.systemVersion = shim::State().systemVersion;
}

} // namespace vellum::test

#endif
