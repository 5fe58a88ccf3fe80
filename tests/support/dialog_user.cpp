// Finds the dialog of this thread by a timer and lets the test act on it.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/dialog_user.h"

#include <utility>

namespace vellum::test {
namespace {

DialogUser *user = nullptr;

constexpr UINT kMilliseconds = 10;

BOOL CALLBACK takeDialog(HWND window, LPARAM found) {
    char name[16] = "";
    GetClassNameA(window, name, sizeof name);
    if (lstrcmpA(name, "#32770") != 0 || !IsWindowVisible(window)) {
        return TRUE;
    }
    *reinterpret_cast<HWND *>(found) = window;
    return FALSE;
}

HWND openDialog() {
    HWND found = nullptr;
    EnumThreadWindows(GetCurrentThreadId(), &takeDialog, reinterpret_cast<LPARAM>(&found));
    return found;
}

} // namespace

DialogUser::DialogUser(std::function<void(HWND)> act)
    : act_(std::move(act)), timer_(SetTimer(nullptr, 0, kMilliseconds, &tick)) {
    user = this;
}

DialogUser::~DialogUser() {
    KillTimer(nullptr, timer_);
    user = nullptr;
}

void CALLBACK DialogUser::tick(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = openDialog();
    if (user == nullptr || dialog == nullptr) {
        return;
    }
    if (user->acted_) {
        // Messages that the act posted have been served: a timer comes last.
        user->leftOpen_ = true;
        EndDialog(dialog, 0);
        return;
    }
    user->acted_ = true;
    user->act_(dialog);
}

void press(HWND dialog, int control) {
    if (isEnabled(dialog, control)) {
        SendDlgItemMessageA(dialog, control, BM_CLICK, 0, 0);
    }
}

bool isEnabled(HWND dialog, int control) {
    const HWND window = GetDlgItem(dialog, control);
    return window != nullptr && IsWindowEnabled(window) != FALSE;
}

bool isChecked(HWND dialog, int control) {
    return IsDlgButtonChecked(dialog, control) == BST_CHECKED;
}

std::string textOf(HWND window) {
    char text[300] = "";
    GetWindowTextA(window, text, sizeof text);
    return text;
}

void type(HWND dialog, int control, const std::string &text) {
    const HWND field = GetDlgItem(dialog, control);
    SendMessageA(field, EM_SETSEL, 0, -1);
    SendMessageA(field, WM_CLEAR, 0, 0);
    for (const char c : text) {
        SendMessageA(field, WM_CHAR, static_cast<BYTE>(c), 0);
    }
}

} // namespace vellum::test

#endif
