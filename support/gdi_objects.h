// Guards for GDI objects: GdiObject owns one and deletes it, RealizedPalette selects one for a while, Clipboard keeps
// the clipboard open.
#pragma once

#include <windows.h>

#include <utility>

namespace vellum {

template <class Handle>
class GdiObject {
public:
    explicit GdiObject(Handle handle = nullptr) : handle_(handle) {}
    GdiObject(GdiObject &&other) noexcept : handle_(other.release()) {}
    GdiObject &operator=(GdiObject &&other) noexcept {
        std::swap(handle_, other.handle_);
        return *this;
    }
    ~GdiObject() {
        if (handle_ != nullptr) {
            DeleteObject(handle_);
        }
    }

    explicit operator bool() const { return handle_ != nullptr; }
    [[nodiscard]] Handle get() const { return handle_; }
    [[nodiscard]] Handle release() { return std::exchange(handle_, nullptr); }

private:
    Handle handle_;
};

using OwnedBitmap = GdiObject<HBITMAP>;
using OwnedPalette = GdiObject<HPALETTE>;

// Selects and realizes a palette, if there is one; gives the previous one back.
class RealizedPalette {
public:
    RealizedPalette(HDC dc, HPALETTE palette) : dc_(dc) {
        if (palette != nullptr) {
            previous_ = SelectPalette(dc, palette, FALSE);
            RealizePalette(dc);
        }
    }
    RealizedPalette(const RealizedPalette &) = delete;
    RealizedPalette &operator=(const RealizedPalette &) = delete;
    ~RealizedPalette() {
        if (previous_ != nullptr) {
            SelectPalette(dc_, previous_, FALSE);
        }
    }

private:
    HDC dc_;
    HPALETTE previous_ = nullptr;
};

// Opens the clipboard for no window in particular.
class Clipboard {
public:
    Clipboard() : open_(OpenClipboard(nullptr) != FALSE) {}
    Clipboard(const Clipboard &) = delete;
    Clipboard &operator=(const Clipboard &) = delete;
    ~Clipboard() {
        if (open_) {
            CloseClipboard();
        }
    }
    explicit operator bool() const { return open_; }

private:
    bool open_;
};

} // namespace vellum
