// Windows: bitmaps to save, and what a TIFF of one must hold.
#pragma once

#include "support/bitmap_pixels.h"

#include <windows.h>

#include <vector>

namespace vellum::test {

inline constexpr DWORD kBlackPixel = 0x000000;
inline constexpr DWORD kWhitePixel = 0xFFFFFF;

// A bitmap, deleted with the object.
class TestBitmap {
public:
    explicit TestBitmap(HBITMAP handle) : handle_(handle) {}
    TestBitmap(TestBitmap &&other) noexcept : handle_(other.release()) {}
    TestBitmap(const TestBitmap &) = delete;
    TestBitmap &operator=(const TestBitmap &) = delete;
    ~TestBitmap() {
        if (handle_ != nullptr) {
            DeleteObject(handle_);
        }
    }
    [[nodiscard]] HBITMAP get() const { return handle_; }
    HBITMAP release() {
        const HBITMAP handle = handle_;
        handle_ = nullptr;
        return handle;
    }

private:
    HBITMAP handle_;
};

// Every pixel differs from its neighbours; the corners are telling.
inline Pixels colouredPixels(int width, int height) {
    Pixels pixels;
    for (int i = 0; i < width * height; ++i) {
        pixels.push_back((static_cast<DWORD>(i) * 0x10305 + 0x804020) & 0xFFFFFF);
    }
    pixels[0] = 0xFF0000;
    pixels.back() = 0x0000FF;
    return pixels;
}

inline Pixels bilevelPixels(int width, int height) {
    Pixels pixels;
    for (int i = 0; i < width * height; ++i) {
        pixels.push_back((i * 7 / 3 + i / 5) % 3 == 0 ? kBlackPixel : kWhitePixel);
    }
    pixels[0] = kBlackPixel;
    return pixels;
}

inline void paint(HBITMAP bitmap, int width, const Pixels &pixels) {
    const HDC dc = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(dc, bitmap);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        const DWORD pixel = pixels[i];
        SetPixel(dc, static_cast<int>(i) % width, static_cast<int>(i) / width,
                 RGB(pixel >> 16, pixel >> 8 & 0xFF, pixel & 0xFF));
    }
    SelectObject(dc, before);
    DeleteDC(dc);
}

// A bitmap of the screen's depth.
inline TestBitmap screenBitmap(int width, int height) {
    const HDC screen = GetDC(nullptr);
    TestBitmap bitmap(CreateCompatibleBitmap(screen, width, height));
    ReleaseDC(nullptr, screen);
    paint(bitmap.get(), width, colouredPixels(width, height));
    return bitmap;
}

inline TestBitmap monochromeBitmap(int width, int height) {
    TestBitmap bitmap(CreateBitmap(width, height, 1, 1, nullptr));
    paint(bitmap.get(), width, bilevelPixels(width, height));
    return bitmap;
}

// A DIB section with the colours given; pixel values count upwards.
inline TestBitmap sectionBitmap(int width, int height, WORD bits, const std::vector<RGBQUAD> &colours) {
    struct {
        BITMAPINFOHEADER header;
        RGBQUAD colours[256];
    } info{};
    info.header = {sizeof info.header, width, height, 1, bits, BI_RGB, 0, 0, 0, static_cast<DWORD>(colours.size()), 0};
    std::copy(colours.begin(), colours.end(), info.colours);
    void *memory = nullptr;
    TestBitmap bitmap(
        CreateDIBSection(nullptr, reinterpret_cast<BITMAPINFO *>(&info), DIB_RGB_COLORS, &memory, nullptr, 0));
    const int stride = (width * bits + 31) / 32 * 4;
    for (int i = 0; memory != nullptr && i < stride * height; ++i) {
        static_cast<BYTE *>(memory)[i] = static_cast<BYTE>(i * 37 + i / 5);
    }
    return bitmap;
}

} // namespace vellum::test
