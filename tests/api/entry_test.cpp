// Which processes may attach.
#include "core/library_state.h"
#include "support/faults.h"

#include <gtest/gtest.h>

extern "C" BOOL WINAPI DllMain(HINSTANCE module, DWORD reason, LPVOID reserved);

namespace vellum {
namespace {

constexpr DWORD kWindowsNt = 0x0A280105;
constexpr DWORD kOtherWindows = 0xC0000004;

class Entry : public ::testing::Test {
protected:
    Entry() { library.processAttached = library.processDetached = false; }
    ~Entry() override {
        library.module = before_;
        library.processAttached = library.processDetached = false;
    }

    static HINSTANCE someModule() {
        static char object;
        return reinterpret_cast<HINSTANCE>(&object);
    }

private:
    HINSTANCE before_ = library.module;
};

TEST_F(Entry, AttachKeepsTheModuleHandle) {
    const test::SystemVersion nt(kWindowsNt);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(library.module, someModule());
}

TEST_F(Entry, OnWindowsNtEveryProcessMayAttach) {
    const test::SystemVersion nt(kWindowsNt);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_DETACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_DETACH, nullptr), TRUE);
}

TEST_F(Entry, OnOtherSystemsOnlyTheFirstProcessMayAttach) {
    const test::SystemVersion other(kOtherWindows);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_ATTACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(nullptr, DLL_PROCESS_ATTACH, nullptr), FALSE);
    EXPECT_EQ(library.module, someModule());
}

TEST_F(Entry, OnOtherSystemsDetachHasAFlagOfItsOwn) {
    const test::SystemVersion other(kOtherWindows);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_DETACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_DETACH, nullptr), FALSE);
    EXPECT_EQ(DllMain(someModule(), DLL_PROCESS_ATTACH, nullptr), TRUE);
}

TEST_F(Entry, ThreadsComeAndGoFreely) {
    const test::SystemVersion other(kOtherWindows);
    EXPECT_EQ(DllMain(someModule(), DLL_THREAD_ATTACH, nullptr), TRUE);
    EXPECT_EQ(DllMain(someModule(), DLL_THREAD_DETACH, nullptr), TRUE);
    EXPECT_FALSE(library.processAttached);
    EXPECT_FALSE(library.processDetached);
}

TEST_F(Entry, AnyOtherReasonIsRefused) {
    EXPECT_EQ(DllMain(someModule(), 4, nullptr), FALSE);
    EXPECT_EQ(DllMain(someModule(), 0xFFFFFFFF, nullptr), FALSE);
}

} // namespace
} // namespace vellum
