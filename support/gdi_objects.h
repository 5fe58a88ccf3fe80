// Guards of GDI: GdiObject and MemoryDc own and delete, Selected... and RealizedPalette select for a while, SavedDc
// brings a device context back to what it was, Clipboard keeps the clipboard open.
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

// A device context in memory, compatible with another one.
class MemoryDc {
public:
    explicit MemoryDc(HDC compatibleWith) : dc_(CreateCompatibleDC(compatibleWith)) {}
    MemoryDc(const MemoryDc &) = delete;
    MemoryDc &operator=(const MemoryDc &) = delete;
    ~MemoryDc() {
        if (dc_ != nullptr) {
            DeleteDC(dc_);
        }
    }

    explicit operator bool() const { return dc_ != nullptr; }
    [[nodiscard]] HDC get() const { return dc_; }

private:
    HDC dc_;
};

// Selects an object that is no palette; gives the previous one back.
class SelectedObject {
public:
    SelectedObject(HDC dc, HGDIOBJ object) : dc_(dc), previous_(SelectObject(dc, object)) {}
    SelectedObject(const SelectedObject &) = delete;
    SelectedObject &operator=(const SelectedObject &) = delete;
    ~SelectedObject() {
        if (previous_ != nullptr) {
            SelectObject(dc_, previous_);
        }
    }
    // False for what cannot be selected, as a bitmap that another device context has.
    [[nodiscard]] bool selected() const { return previous_ != nullptr; }

private:
    HDC dc_;
    HGDIOBJ previous_;
};

// Selects a palette, if there is one; gives the previous one back.
class SelectedPalette {
public:
    SelectedPalette(HDC dc, HPALETTE palette) : dc_(dc) {
        if (palette != nullptr) {
            previous_ = SelectPalette(dc, palette, FALSE);
        }
    }
    SelectedPalette(const SelectedPalette &) = delete;
    SelectedPalette &operator=(const SelectedPalette &) = delete;
    ~SelectedPalette() {
        if (previous_ != nullptr) {
            SelectPalette(dc_, previous_, FALSE);
        }
    }

private:
    HDC dc_;
    HPALETTE previous_ = nullptr;
};

// The same, and realizes it.
class RealizedPalette {
public:
    RealizedPalette(HDC dc, HPALETTE palette) : selected_(dc, palette) {
        if (palette != nullptr) {
            RealizePalette(dc);
        }
    }

private:
    SelectedPalette selected_;
};

// Gives a device context everything back that was changed on it: mapping, clipping, selected objects.
class SavedDc {
public:
    explicit SavedDc(HDC dc) : dc_(dc), saved_(SaveDC(dc)) {}
    SavedDc(const SavedDc &) = delete;
    SavedDc &operator=(const SavedDc &) = delete;
    ~SavedDc() {
        if (saved_ != 0) {
            RestoreDC(dc_, saved_);
        }
    }

    // What cannot be brought back is not to be changed.
    explicit operator bool() const { return saved_ != 0; }

private:
    HDC dc_;
    int saved_;
};

// Lets a device context count in its pixels for a while, if it can be brought back.
class PixelUnits {
public:
    explicit PixelUnits(HDC dc) : saved_(dc) {
        if (!saved_) {
            return;
        }
        if (GetGraphicsMode(dc) == GM_ADVANCED) {
            ModifyWorldTransform(dc, nullptr, MWT_IDENTITY);
        }
        SetMapMode(dc, MM_TEXT);
        SetWindowOrgEx(dc, 0, 0, nullptr);
        SetViewportOrgEx(dc, 0, 0, nullptr);
    }

    explicit operator bool() const { return static_cast<bool>(saved_); }

private:
    SavedDc saved_;
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
