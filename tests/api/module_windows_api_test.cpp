// The files that are shipped: what VELLUM32.DLL exports and imports, its version resource, and what vellum.exe needs.
#include "api/pe_file.h"
#include "vellum32.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstring>

// After windows.h.
#include <winver.h>

namespace vellum::test {
namespace {

using ::testing::Contains;
using ::testing::IsEmpty;
using ::testing::Not;
using ::testing::UnorderedElementsAreArray;

const std::vector<std::string> kListedNames = {
#define VELLUM_EXPORT(name, bytes) #name,
#include "api/exports.inc"
#undef VELLUM_EXPORT
};

struct ListedBytes {
    const char *name;
    unsigned bytes;
};
constexpr ListedBytes kListedBytes[] = {
#define VELLUM_EXPORT(name, bytes) {#name, bytes},
#include "api/exports.inc"
#undef VELLUM_EXPORT
};

HMODULE dll() {
    // The import library bound this program to the DLL when it started.
    TiffError();
    return GetModuleHandleA("VELLUM32.DLL");
}

std::string dllPath() {
    char path[MAX_PATH] = {};
    GetModuleFileNameA(dll(), path, sizeof path);
    return path;
}

PeFile moduleFile(const std::string &path) {
    return PeFile(readFile(path).value_or(Bytes()));
}

TEST(Module, ExportsExactlyTheListedNamesUndecorated) {
    const PeFile file = moduleFile(dllPath());
    ASSERT_TRUE(file.valid()) << dllPath();
    EXPECT_THAT(file.exports(), UnorderedElementsAreArray(kListedNames));
}

TEST(Module, EveryListedNameIsFoundByGetProcAddress) {
    for (const auto &name : kListedNames) {
        EXPECT_NE(GetProcAddress(dll(), name.c_str()), nullptr) << name;
    }
    EXPECT_EQ(GetProcAddress(dll(), "OpenTiffFile@8"), nullptr);
}

TEST(Module, ImportsFromSystemModulesOnly) {
    const PeFile file = moduleFile(dllPath());
    auto modules = file.importedModules();
    EXPECT_THAT(modules, Contains("KERNEL32.DLL"));
    for (const char *allowed : {"KERNEL32.DLL", "USER32.DLL", "GDI32.DLL", "MSVCRT.DLL"}) {
        modules.erase(std::remove(modules.begin(), modules.end(), allowed), modules.end());
    }
    EXPECT_THAT(modules, IsEmpty());
}

TEST(Module, CarriesNoTimeStampAndAFixedImageBase) {
    const PeFile file = moduleFile(dllPath());
    EXPECT_EQ(file.timeStamp(), 0u);
    EXPECT_EQ(file.imageBase(), 0x10000000u);
}

TEST(Module, VersionResourceSaysSevenPointZeroZero) {
    const std::string path = dllPath();
    DWORD ignored = 0;
    Bytes info(GetFileVersionInfoSizeA(path.c_str(), &ignored));
    ASSERT_FALSE(info.empty());
    ASSERT_TRUE(GetFileVersionInfoA(path.c_str(), 0, static_cast<DWORD>(info.size()), info.data()));

    VS_FIXEDFILEINFO *fixed = nullptr;
    UINT length = 0;
    ASSERT_TRUE(VerQueryValueA(info.data(), "\\", reinterpret_cast<void **>(&fixed), &length));
    EXPECT_EQ(fixed->dwFileVersionMS, 0x00070000u);
    EXPECT_EQ(fixed->dwFileVersionLS, 0u);

    for (const char *name : {"\\StringFileInfo\\040904E4\\FileVersion", "\\StringFileInfo\\040904E4\\ProductVersion"}) {
        char *text = nullptr;
        ASSERT_TRUE(VerQueryValueA(info.data(), name, reinterpret_cast<void **>(&text), &length)) << name;
        EXPECT_STREQ(text, "7.00");
    }
}

TEST(Tool, NeedsTheLibraryAndSystemModulesOnly) {
    std::string path = dllPath();
    path = path.substr(0, path.find_last_of("\\/")) + "\\..\\bin\\vellum.exe";
    const PeFile file = moduleFile(path);
    ASSERT_TRUE(file.valid()) << path;
    auto modules = file.importedModules();
    EXPECT_THAT(modules, Contains("VELLUM32.DLL"));
    for (const char *allowed :
         {"VELLUM32.DLL", "KERNEL32.DLL", "USER32.DLL", "GDI32.DLL", "SHELL32.DLL", "ADVAPI32.DLL", "MSVCRT.DLL"}) {
        modules.erase(std::remove(modules.begin(), modules.end(), allowed), modules.end());
    }
    EXPECT_THAT(modules, IsEmpty());
}

TEST(Tool, ImportsUndecoratedNames) {
    std::string path = dllPath();
    path = path.substr(0, path.find_last_of("\\/")) + "\\..\\bin\\vellum.exe";
    for (const auto &name : moduleFile(path).importsFrom("VELLUM32.DLL")) {
        EXPECT_THAT(kListedNames, Contains(name));
    }
}

// Calls a function with its listed number of argument bytes, all zero, and tells by how much the stack pointer differs
// afterwards: a stdcall function takes just its own arguments away.
int stackLeftAfterCall(FARPROC function, unsigned bytes) {
    int left = 0;
    asm volatile("movl %%esp, %%edi\n\t"
                 "movl %[words], %%ecx\n\t"
                 "1: testl %%ecx, %%ecx\n\t"
                 "jz 2f\n\t"
                 "pushl $0\n\t"
                 "decl %%ecx\n\t"
                 "jmp 1b\n\t"
                 "2: call *%[function]\n\t"
                 "movl %%edi, %%eax\n\t"
                 "subl %%esp, %%eax\n\t"
                 "movl %%edi, %%esp\n\t"
                 : "=&a"(left)
                 : [function] "S"(function), [words] "b"(bytes / 4)
                 : "ecx", "edx", "edi", "memory", "cc");
    return left;
}

TEST(Module, SystemInformationCallsTakeTheirArgumentsOffTheStack) {
    // Those that are harmless with zeros for arguments.
    for (const char *name : {"OpenTiffInMemory", "CloseTiffFile", "TiffError", "SetTiffError", "GetTiffVersion",
                             "mRead", "mSeek", "mTell", "mSize", "LongRead", "LongWrite"}) {
        for (const auto &listed : kListedBytes) {
            if (std::strcmp(listed.name, name) == 0) {
                EXPECT_EQ(stackLeftAfterCall(GetProcAddress(dll(), name), listed.bytes), 0) << name;
            }
        }
    }
}

} // namespace
} // namespace vellum::test
