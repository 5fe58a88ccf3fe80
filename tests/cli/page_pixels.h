// The pixels of a TIFF's page, by way of the bitmap file that vellum convert makes of it.
#pragma once

#include "cli/vellum_process.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace vellum::test {

struct PagePixels {
    LONG width = 0;
    std::vector<DWORD> values; // 0x00RRGGBB, top row first
};

inline PagePixels pixelsOfBitmapFile(const Bytes &file) {
    BITMAPFILEHEADER fileHeader{};
    BITMAPINFOHEADER header{};
    if (file.size() < sizeof fileHeader + sizeof header) {
        ADD_FAILURE() << "no bitmap file";
        return {};
    }
    std::memcpy(&fileHeader, file.data(), sizeof fileHeader);
    std::memcpy(&header, file.data() + sizeof fileHeader, sizeof header);
    const std::size_t stride = (static_cast<std::size_t>(header.biWidth) * header.biBitCount + 31) / 32 * 4;
    PagePixels pixels{header.biWidth, {}};
    for (LONG y = header.biHeight - 1; y >= 0; --y) {
        const BYTE *const row = file.data() + fileHeader.bfOffBits + static_cast<std::size_t>(y) * stride;
        for (LONG x = 0; x < header.biWidth; ++x) {
            const BYTE *blue = row + x * 3;
            if (header.biBitCount == 1 || header.biBitCount == 8) {
                const int index = header.biBitCount == 8 ? row[x] : (row[x / 8] >> (7 - x % 8)) & 1;
                blue = file.data() + sizeof fileHeader + header.biSize + index * 4;
            }
            pixels.values.push_back(DWORD{blue[0]} | DWORD{blue[1]} << 8 | DWORD{blue[2]} << 16);
        }
    }
    return pixels;
}

// Of 1, 8 or 24 bits per pixel.
inline PagePixels pagePixels(const WorkFolder &folder, const std::string &name, int page = 1) {
    EXPECT_EQ(folder.run({"convert", "--page", std::to_string(page), name, "pixels.bmp"}).err, "");
    const PagePixels pixels = pixelsOfBitmapFile(folder.get("pixels.bmp").value_or(Bytes()));
    DeleteFileA(folder.path("pixels.bmp").c_str());
    return pixels;
}

// Where two pictures differ: a box, its right and bottom within it.
inline RECT difference(const PagePixels &a, const PagePixels &b) {
    RECT box = {a.width, 0x7FFFFFFF, -1, -1};
    for (std::size_t i = 0; i < a.values.size() && i < b.values.size(); ++i) {
        if (a.values[i] != b.values[i]) {
            const LONG x = static_cast<LONG>(i) % a.width;
            const LONG y = static_cast<LONG>(i) / a.width;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x), std::max(box.bottom, y)};
        }
    }
    return box;
}

} // namespace vellum::test
