// What tests can ask of the Win32 shim: make a chosen call fail, see what was shown, and hand out a companion module.
// Tests that serve both platforms use support/faults.h, which is built on this.
#pragma once

#include <windows.h>

#include <map>
#include <string>

namespace vellum::shim {

// A call that can be made to fail: the countdown reaches 0 at the call that fails; below 0 none does. Every call
// counts, so that a test can learn how many there are.
struct Fault {
    long countdown = -1;
    unsigned long calls = 0;

    // Counts a call; true when it is to fail.
    bool hit() {
        ++calls;
        return countdown >= 0 && countdown-- == 0;
    }
};

struct State {
    Fault globalAlloc;   // GlobalAlloc
    Fault globalReAlloc; // GlobalReAlloc
    Fault globalLock;    // GlobalLock
    Fault openFile;      // OpenFile, _lopen, _lcreat, CreateFileA
    Fault read;          // _lread, _hread, ReadFile
    Fault write;         // _lwrite, _hwrite, WriteFile, FlushFileBuffers
    Fault seek;          // _llseek
    Fault move;          // MoveFileExA
    Fault remove;        // DeleteFileA

    // What GetVersion answers; bit 31 is set on systems other than Windows NT.
    DWORD systemVersion = 0x0A280105;

    // MessageBoxA: the last one, and how many there were.
    std::string messageText;
    std::string messageCaption;
    UINT messageStyle = 0;
    int messageCount = 0;

    // The module that LoadLibraryA finds under this name, and its entries; without a name every load fails.
    std::string moduleName;
    std::map<std::string, FARPROC> moduleEntries;
    HMODULE moduleHandle = nullptr; // null for the shim's own
    int moduleLoads = 0;            // loads less frees

    // What the user does in the save dialog before pressing OK; null: presses Cancel.
    void (*inSaveDialog)() = nullptr;

    // What the information dialog ends with, and how often it was shown.
    INT_PTR infoDialogAnswer = IDCANCEL;
    int infoDialogs = 0;

    // What the user answers in the two dialogs for CALS headers, and does there; null: presses Cancel.
    LONG (*inCalsInfo)(const char *path) = nullptr;
    LONG (*inCalsEdit)(const char *path, char *header) = nullptr;

    // Resources in use.
    long blocks = 0;      // global blocks allocated and not freed
    SIZE_T bytes = 0;     // in them
    SIZE_T peakBytes = 0; // the most there ever were; a test sets it back
    long locks = 0;       // sum of the lock counts
    long openFiles = 0;   // file handles
    long screenDcs = 0;   // device contexts
    HCURSOR cursor = nullptr;

    std::string debugOutput; // of all OutputDebugString calls; a test clears it

    // Fresh blocks without GMEM_ZEROINIT are filled with this byte; two runs with different ones show bytes that were
    // never written.
    BYTE freshByte = 0xCD;

    DWORD lastError = 0;
};

extern State state;

} // namespace vellum::shim
