// The device context of the screen, or of a window's client area, held for the length of a scope.
#pragma once

#include <windows.h>

namespace vellum {

class ScreenDc {
public:
    explicit ScreenDc(HWND window = nullptr) : window_(window), dc_(GetDC(window)) {}
    ScreenDc(const ScreenDc &) = delete;
    ScreenDc &operator=(const ScreenDc &) = delete;
    ~ScreenDc() {
        if (dc_ != nullptr) {
            ReleaseDC(window_, dc_);
        }
    }

    explicit operator bool() const { return dc_ != nullptr; }
    [[nodiscard]] HDC get() const { return dc_; }

private:
    HWND window_;
    HDC dc_;
};

} // namespace vellum
