// The screen's device context, held for the length of a scope.
#pragma once

#include <windows.h>

namespace vellum {

class ScreenDc {
public:
    ScreenDc() : dc_(GetDC(nullptr)) {}
    ScreenDc(const ScreenDc &) = delete;
    ScreenDc &operator=(const ScreenDc &) = delete;
    ~ScreenDc() {
        if (dc_ != nullptr) {
            ReleaseDC(nullptr, dc_);
        }
    }

    explicit operator bool() const { return dc_ != nullptr; }
    [[nodiscard]] HDC get() const { return dc_; }

private:
    HDC dc_;
};

} // namespace vellum
