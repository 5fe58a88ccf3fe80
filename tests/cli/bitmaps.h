// Windows bitmap files as the tests of vellum.exe put them together, whole or not.
#pragma once

#include "support/paths.h"

#include <windows.h>

#include <cstring>
#include <vector>

namespace vellum::test {

struct BitmapSpec {
    LONG width = 8;
    LONG height = 2; // negative: the top row first
    WORD bits = 1;
    std::vector<RGBQUAD> colors = {};
    Bytes rows = {}; // as they stand in the file
    DWORD headerBytes = sizeof(BITMAPINFOHEADER);
    DWORD compression = BI_RGB;
    LONG pixelsPerMeter = 0;
    WORD planes = 1;
    DWORD colorsUsed = 0xFFFFFFFF; // as many as there are
    DWORD offset = 0;              // where the rows are said to be; 0: where they are
};

inline RGBQUAD color(BYTE red, BYTE green, BYTE blue) {
    return {blue, green, red, 0};
}

template <class T>
void append(Bytes &bytes, const T &value, std::size_t size = sizeof(T)) {
    const auto *const from = reinterpret_cast<const BYTE *>(&value);
    bytes.insert(bytes.end(), from, from + size);
}

inline Bytes bitmapHeader(const BitmapSpec &spec) {
    Bytes bytes;
    if (spec.headerBytes == sizeof(BITMAPCOREHEADER)) {
        append(bytes, BITMAPCOREHEADER{sizeof(BITMAPCOREHEADER), static_cast<WORD>(spec.width),
                                       static_cast<WORD>(spec.height), spec.planes, spec.bits});
        return bytes;
    }
    BITMAPINFOHEADER header{};
    header.biSize = spec.headerBytes;
    header.biWidth = spec.width;
    header.biHeight = spec.height;
    header.biPlanes = spec.planes;
    header.biBitCount = spec.bits;
    header.biCompression = spec.compression;
    header.biSizeImage = static_cast<DWORD>(spec.rows.size());
    header.biXPelsPerMeter = header.biYPelsPerMeter = spec.pixelsPerMeter;
    header.biClrUsed = spec.colorsUsed == 0xFFFFFFFF ? static_cast<DWORD>(spec.colors.size()) : spec.colorsUsed;
    header.biClrImportant = header.biClrUsed;
    append(bytes, header);
    if (spec.compression == BI_BITFIELDS) {
        for (const DWORD mask : {0xFF0000UL, 0xFF00UL, 0xFFUL}) {
            append(bytes, mask);
        }
    }
    if (bytes.size() < spec.headerBytes) {
        bytes.resize(spec.headerBytes);
    }
    return bytes;
}

inline Bytes bitmapFile(const BitmapSpec &spec) {
    Bytes behind = bitmapHeader(spec);
    for (const RGBQUAD &entry : spec.colors) {
        append(behind, entry, spec.headerBytes == sizeof(BITMAPCOREHEADER) ? 3 : 4);
    }
    BITMAPFILEHEADER header{};
    header.bfType = 0x4D42;
    header.bfOffBits = spec.offset != 0 ? spec.offset : static_cast<DWORD>(sizeof header + behind.size());
    header.bfSize = static_cast<DWORD>(sizeof header + behind.size() + spec.rows.size());
    Bytes file;
    append(file, header);
    file.insert(file.end(), behind.begin(), behind.end());
    file.insert(file.end(), spec.rows.begin(), spec.rows.end());
    return file;
}

// 13 x 3 pixels of any depth, rows of whole words; bits behind the last pixel are zero.
inline BitmapSpec patternBitmap(WORD bits) {
    BitmapSpec spec;
    spec.width = 13;
    spec.height = 3;
    spec.bits = bits;
    const std::size_t used = (std::size_t{13} * bits + 7) / 8;
    const std::size_t stride = (used + 3) / 4 * 4;
    spec.rows.assign(stride * 3, 0);
    for (std::size_t row = 0; row < 3; ++row) {
        for (std::size_t at = 0; at < used; ++at) {
            spec.rows[row * stride + at] = static_cast<BYTE>(row * 89 + at * 37 + 21);
        }
        if (bits < 8) {
            const unsigned behind = static_cast<unsigned>(used * 8 - 13U * bits);
            BYTE &last = spec.rows[row * stride + used - 1];
            last = static_cast<BYTE>(last & (0xFFU << behind));
        }
    }
    for (unsigned i = 0; bits <= 8 && i < 1U << bits; ++i) {
        spec.colors.push_back(color(static_cast<BYTE>(i * 7 + 1), static_cast<BYTE>(200 - i), static_cast<BYTE>(i)));
    }
    return spec;
}

} // namespace vellum::test
