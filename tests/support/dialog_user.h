// Windows: plays the user of a modal dialog that the library shows. The dialog's own message loop runs what the user
// does, in this thread, once the dialog is there.
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace vellum::test {

// While it lives, the next dialog is given to `act`. A dialog that is still open afterwards is cancelled.
class DialogUser {
public:
    explicit DialogUser(std::function<void(HWND dialog)> act);
    DialogUser(const DialogUser &) = delete;
    DialogUser &operator=(const DialogUser &) = delete;
    ~DialogUser();

    // Whether there was a dialog, and whether it had to be cancelled.
    [[nodiscard]] bool acted() const { return acted_; }
    [[nodiscard]] bool leftOpen() const { return leftOpen_; }

private:
    static void CALLBACK tick(HWND, UINT, UINT_PTR, DWORD);

    std::function<void(HWND)> act_;
    UINT_PTR timer_;
    bool acted_ = false;
    bool leftOpen_ = false;
};

// Clicks a button. A disabled one takes no click.
void press(HWND dialog, int control);
bool isEnabled(HWND dialog, int control);
bool isChecked(HWND dialog, int control);
std::string textOf(HWND window);
void type(HWND dialog, int control, const std::string &text);

} // namespace vellum::test
