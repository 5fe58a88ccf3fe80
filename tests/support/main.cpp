// The start of every test program. A crash ends the program with a message instead of a dialog. Natively, where the
// Win32 shim counts them, every test must leave as many blocks, locks, files and device contexts as it found.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>

#ifdef VELLUM_NATIVE
#include "native/shim.h"

namespace {

class LeftBehind : public ::testing::EmptyTestEventListener {
    void OnTestStart(const ::testing::TestInfo &) override { before_ = vellum::shim::state; }

    void OnTestEnd(const ::testing::TestInfo &) override {
        const vellum::shim::State &now = vellum::shim::state;
        EXPECT_EQ(now.blocks, before_.blocks) << "global blocks were not freed";
        EXPECT_EQ(now.locks, before_.locks) << "global blocks were left locked";
        EXPECT_EQ(now.openFiles, before_.openFiles) << "files were left open";
        EXPECT_EQ(now.screenDcs, before_.screenDcs) << "device contexts were not released";
        EXPECT_EQ(now.cursor, before_.cursor) << "the cursor was not restored";
    }

    vellum::shim::State before_;
};

} // namespace

// An allocation that is too large fails, as it does without the sanitizer.
extern "C" const char *__asan_default_options() {
    return "allocator_may_return_null=1";
}
extern "C" const char *__ubsan_default_options() {
    return "print_stacktrace=1";
}
#else

namespace {

// Dialogs, the focus and the clipboard belong to a window station and its desktop. Test programs run side by side, so
// each has its own. On X there is one for all, where screenshots show it.
void moveToOwnDesktop() {
    char graphics[8] = "";
    if (GetEnvironmentVariableA("VELLUM_WINE_GRAPHICS", graphics, sizeof graphics) != 0) {
        return;
    }
    const std::string name = "vellum-tests-" + std::to_string(GetCurrentProcessId());
    const HWINSTA station = CreateWindowStationA(name.c_str(), 0, GENERIC_ALL, nullptr);
    if (station == nullptr || !SetProcessWindowStation(station)) {
        return;
    }
    const HDESK desktop = CreateDesktopA("default", nullptr, nullptr, 0, GENERIC_ALL, nullptr);
    if (desktop != nullptr) {
        SetThreadDesktop(desktop);
    }
}

} // namespace
#endif

int main(int argc, char **argv) {
    ::testing::InitGoogleTest(&argc, argv);
#ifdef VELLUM_NATIVE
    // The listener that comes last hears the end of a test first, while the test can still fail.
    ::testing::UnitTest::GetInstance()->listeners().Append(new LeftBehind);
#else
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    moveToOwnDesktop();
#endif
    return RUN_ALL_TESTS();
}
