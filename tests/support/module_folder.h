// Windows: lets a test find the stand-ins for companion modules that lie in folders beside the test programs.
#pragma once

#include <windows.h>

#include <string>

namespace vellum::test {

// While it lives, modules are looked for in a folder beside the test program, too.
class ModuleFolder {
public:
    explicit ModuleFolder(const char *name) {
        char program[MAX_PATH] = {};
        GetModuleFileNameA(nullptr, program, MAX_PATH);
        const std::string path = program;
        SetDllDirectoryA((path.substr(0, path.find_last_of('\\') + 1) + name).c_str());
    }
    ModuleFolder(const ModuleFolder &) = delete;
    ModuleFolder &operator=(const ModuleFolder &) = delete;
    ~ModuleFolder() { SetDllDirectoryA(nullptr); }
};

} // namespace vellum::test
