// Answers WM_PAINT for the length of a scope: what is to be painted anew is painted, and counts as painted afterwards.
#pragma once

#include <windows.h>

namespace vellum {

class WindowPainting {
public:
    explicit WindowPainting(HWND window) : window_(window), dc_(BeginPaint(window, &painted_)) {}
    WindowPainting(const WindowPainting &) = delete;
    WindowPainting &operator=(const WindowPainting &) = delete;
    ~WindowPainting() {
        if (dc_ != nullptr) {
            EndPaint(window_, &painted_);
        }
    }

    explicit operator bool() const { return dc_ != nullptr; }
    [[nodiscard]] HDC get() const { return dc_; }

private:
    HWND window_;
    PAINTSTRUCT painted_ = {};
    HDC dc_;
};

} // namespace vellum
