// Windows: what the painter paints on in its tests. A program's window with scroll bars and a background of its own,
// memory bitmaps, and the pixels that they show.
#pragma once

#include "support/bitmap_pixels.h"

#include <functional>
#include <optional>

namespace vellum::test {

inline constexpr DWORD kBackground = 0x4080C0; // of the windows' class, 0x00RRGGBB
inline constexpr DWORD kUntouched = 0x00AA55;  // what stands there before the painting

constexpr COLORREF colorRef(DWORD rgb) {
    return RGB(rgb >> 16 & 255, rgb >> 8 & 255, rgb & 255);
}

// Where a scroll bar stands before the painting.
struct ScrollState {
    int least = 0;
    int most = 100;
    int position = 0;
    std::optional<bool> shown = {}; // or as it is
};

// A window without a frame, so that without scroll bars all of it is client area. It erases nothing by itself.
class Host {
public:
    // brush  of the window's class, which takes it over
    Host(int width, int height, HBRUSH brush = CreateSolidBrush(colorRef(kBackground)));
    Host(const Host &) = delete;
    Host &operator=(const Host &) = delete;
    ~Host();

    [[nodiscard]] HWND window() const { return window_; }
    // The window's device context, one at a time; the one before is released.
    HDC freshDc();
    [[nodiscard]] HDC dc() const { return dc_; }

    // Everything as before the first painting: the bars so, the client area untouched, a fresh device context.
    void reset(const ScrollState &horizontal = {}, const ScrollState &vertical = {});

    [[nodiscard]] bool hasBar(int bar) const;
    [[nodiscard]] SIZE client() const;
    [[nodiscard]] bool needsPainting() const;
    // The client area's.
    [[nodiscard]] Pixels pixels() const;

    // Called with every WM_SIZE.
    std::function<void()> onSize;

private:
    static LRESULT CALLBACK procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam);

    ATOM class_ = 0;
    HWND window_ = nullptr;
    HDC dc_ = nullptr;
};

// A memory device context with a bitmap, untouched.
class MemoryTarget {
public:
    enum class Kind { TrueColorSection, Section24, Compatible, Monochrome };

    MemoryTarget(Kind kind, int width, int height);
    MemoryTarget(const MemoryTarget &) = delete;
    MemoryTarget &operator=(const MemoryTarget &) = delete;
    ~MemoryTarget();

    [[nodiscard]] HDC dc() const { return dc_; }
    [[nodiscard]] Pixels pixels() const;

private:
    int width_;
    int height_;
    HDC dc_;
    HBITMAP bitmap_ = nullptr;
    HGDIOBJ before_ = nullptr;
};

// A device context's pixels in device coordinates, whatever its mapping; that is left as it was.
Pixels pixelsOf(HDC dc, int width, int height);
// Gives a rectangle of the device, whatever the mapping and the clipping, one colour.
void fillPixels(HDC dc, const RECT &device, DWORD color);

} // namespace vellum::test
