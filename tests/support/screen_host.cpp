// The windows and bitmaps of the painter's tests.
#include <windows.h>

#ifndef VELLUM_NATIVE
#include "support/screen_host.h"

#include <string>

namespace vellum::test {
namespace {

int classesMade = 0;

BITMAPINFO topDown(int width, int height, WORD bits) {
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = width;
    info.bmiHeader.biHeight = -height;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = bits;
    return info;
}

// Device coordinates and no clipping, until the end of the scope.
class PlainMapping {
public:
    explicit PlainMapping(HDC dc) : dc_(dc), saved_(SaveDC(dc)) {
        SetMapMode(dc, MM_TEXT);
        SetWindowOrgEx(dc, 0, 0, nullptr);
        SetViewportOrgEx(dc, 0, 0, nullptr);
        SelectClipRgn(dc, nullptr);
    }
    PlainMapping(const PlainMapping &) = delete;
    PlainMapping &operator=(const PlainMapping &) = delete;
    ~PlainMapping() { RestoreDC(dc_, saved_); }

private:
    HDC dc_;
    int saved_;
};

} // namespace

Host::Host(int width, int height, HBRUSH brush) {
    const std::string name = "VellumScreenHost" + std::to_string(++classesMade);
    WNDCLASSA description{};
    description.lpfnWndProc = &procedure;
    description.hInstance = GetModuleHandleA(nullptr);
    description.hbrBackground = brush;
    description.lpszClassName = name.c_str();
    class_ = RegisterClassA(&description);
    window_ = CreateWindowExA(0, name.c_str(), "", WS_POPUP | WS_VISIBLE, 0, 0, width, height, nullptr, nullptr,
                              description.hInstance, nullptr);
    SetWindowLongPtrA(window_, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
    reset();
}

Host::~Host() {
    onSize = nullptr;
    ReleaseDC(window_, dc_);
    DestroyWindow(window_);
    UnregisterClassA(MAKEINTATOM(class_), GetModuleHandleA(nullptr));
}

LRESULT CALLBACK Host::procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    auto *host = reinterpret_cast<Host *>(GetWindowLongPtrA(window, GWLP_USERDATA));
    if (message == WM_ERASEBKGND) {
        return 1;
    }
    if (message == WM_SIZE && host != nullptr && host->onSize) {
        host->onSize();
    }
    return DefWindowProcA(window, message, wParam, lParam);
}

HDC Host::freshDc() {
    if (dc_ != nullptr) {
        ReleaseDC(window_, dc_);
    }
    dc_ = GetDC(window_);
    return dc_;
}

void Host::reset(const ScrollState &horizontal, const ScrollState &vertical) {
    const ScrollState *states[] = {&horizontal, &vertical};
    for (const int bar : {SB_HORZ, SB_VERT}) {
        const ScrollState &state = *states[bar];
        SetScrollRange(window_, bar, state.least, state.most, FALSE);
        SetScrollPos(window_, bar, state.position, FALSE);
        if (state.shown) {
            ShowScrollBar(window_, bar, *state.shown ? TRUE : FALSE);
        }
    }
    freshDc();
    const SIZE size = client();
    fillPixels(dc_, {0, 0, size.cx, size.cy}, kUntouched);
    InvalidateRect(window_, nullptr, FALSE);
}

bool Host::hasBar(int bar) const {
    return (GetWindowLongA(window_, GWL_STYLE) & (bar == SB_HORZ ? WS_HSCROLL : WS_VSCROLL)) != 0;
}

SIZE Host::client() const {
    RECT area{};
    GetClientRect(window_, &area);
    return {area.right, area.bottom};
}

bool Host::needsPainting() const {
    return GetUpdateRect(window_, nullptr, FALSE) != FALSE;
}

Pixels Host::pixels() const {
    const SIZE size = client();
    return pixelsOf(dc_, size.cx, size.cy);
}

MemoryTarget::MemoryTarget(Kind kind, int width, int height)
    : width_(width), height_(height), dc_(CreateCompatibleDC(nullptr)) {
    const HDC screen = GetDC(nullptr);
    if (kind == Kind::Compatible) {
        bitmap_ = CreateCompatibleBitmap(screen, width, height);
    } else if (kind == Kind::Monochrome) {
        bitmap_ = CreateBitmap(width, height, 1, 1, nullptr);
    } else {
        const BITMAPINFO info = topDown(width, height, kind == Kind::Section24 ? 24 : 32);
        void *bits = nullptr;
        bitmap_ = CreateDIBSection(screen, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    }
    ReleaseDC(nullptr, screen);
    before_ = SelectObject(dc_, bitmap_);
    fillPixels(dc_, {0, 0, width, height}, kUntouched);
}

MemoryTarget::~MemoryTarget() {
    SelectObject(dc_, before_);
    DeleteDC(dc_);
    DeleteObject(bitmap_);
}

Pixels MemoryTarget::pixels() const {
    return pixelsOf(dc_, width_, height_);
}

Pixels pixelsOf(HDC dc, int width, int height) {
    const PlainMapping plain(dc);
    const BITMAPINFO info = topDown(width, height, 32);
    void *bits = nullptr;
    const HBITMAP copy = CreateDIBSection(dc, &info, DIB_RGB_COLORS, &bits, nullptr, 0);
    if (copy == nullptr) {
        return {};
    }
    const HDC memory = CreateCompatibleDC(dc);
    const HGDIOBJ before = SelectObject(memory, copy);
    BitBlt(memory, 0, 0, width, height, dc, 0, 0, SRCCOPY);
    GdiFlush();
    const auto *first = static_cast<const DWORD *>(bits);
    Pixels pixels(first, first + static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
    for (DWORD &pixel : pixels) {
        pixel &= 0xFFFFFF;
    }
    SelectObject(memory, before);
    DeleteDC(memory);
    DeleteObject(copy);
    return pixels;
}

void fillPixels(HDC dc, const RECT &device, DWORD color) {
    const PlainMapping plain(dc);
    const HBRUSH brush = CreateSolidBrush(colorRef(color));
    FillRect(dc, &device, brush);
    DeleteObject(brush);
}

} // namespace vellum::test

#endif
