// Windows: the pixels of a device-dependent bitmap, and those that a packed DIB stands for.
#pragma once

#include "display/pictures.h"

#include <windows.h>

#include <vector>

namespace vellum::test {

using Pixels = std::vector<DWORD>; // 0x00RRGGBB, top row first

// Owns a bitmap.
class LoadedBitmap {
public:
    explicit LoadedBitmap(HBITMAP bitmap) : bitmap_(bitmap) {}
    LoadedBitmap(const LoadedBitmap &) = delete;
    LoadedBitmap &operator=(const LoadedBitmap &) = delete;
    ~LoadedBitmap() {
        if (bitmap_ != nullptr) {
            DeleteObject(bitmap_);
        }
    }
    [[nodiscard]] HBITMAP get() const { return bitmap_; }
    explicit operator bool() const { return bitmap_ != nullptr; }

private:
    HBITMAP bitmap_;
};

inline Pixels pixelsOf(HBITMAP bitmap) {
    BITMAP size{};
    if (GetObject(bitmap, sizeof size, &size) == 0) {
        return {};
    }
    BITMAPINFO info{};
    info.bmiHeader.biSize = sizeof info.bmiHeader;
    info.bmiHeader.biWidth = size.bmWidth;
    info.bmiHeader.biHeight = -size.bmHeight;
    info.bmiHeader.biPlanes = 1;
    info.bmiHeader.biBitCount = 32;
    Pixels pixels(static_cast<std::size_t>(size.bmWidth) * static_cast<std::size_t>(size.bmHeight));
    const HDC screen = GetDC(nullptr);
    const int lines =
        GetDIBits(screen, bitmap, 0, static_cast<UINT>(size.bmHeight), pixels.data(), &info, DIB_RGB_COLORS);
    ReleaseDC(nullptr, screen);
    for (DWORD &pixel : pixels) {
        pixel &= 0xFFFFFF;
    }
    return lines == size.bmHeight ? pixels : Pixels();
}

inline Pixels pixelsOf(const Dib &dib) {
    const auto width = static_cast<DWORD>(dib.header().biWidth);
    const DWORD bits = dib.header().biBitCount;
    const std::size_t stride = (std::size_t{width} * bits + 31) / 32 * 4;
    const auto rgb = [](const BYTE *blue) { return DWORD{blue[0]} | DWORD{blue[1]} << 8 | DWORD{blue[2]} << 16; };
    Pixels pixels;
    for (DWORD y = 0; y < static_cast<DWORD>(dib.header().biHeight); ++y) {
        const Bytes row = dib.row(y, stride);
        for (std::size_t x = 0; x < width; ++x) {
            if (bits == 24) {
                pixels.push_back(rgb(row.data() + x * 3));
                continue;
            }
            const unsigned value = row[x * bits / 8] >> (8 - bits - x * bits % 8) & ((1U << bits) - 1);
            pixels.push_back(rgb(dib.bytes().data() + dib.header().biSize + value * sizeof(RGBQUAD)));
        }
    }
    return pixels;
}

} // namespace vellum::test
