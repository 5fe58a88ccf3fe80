// The pixels of a saved TIFF by the rules of TIFF: PhotometricInterpretation and ColorMap decide, as in any reader.
#pragma once

#include "write/saved_tiff.h"

namespace vellum::test {

// 0x00RRGGBB, top row first; empty when the image cannot be decoded.
inline std::vector<DWORD> pixelsOf(const SavedTiff &tiff) {
    const Bytes lines = tiff.lines();
    const DWORD width = tiff.number(256);
    const std::vector<DWORD> samples = tiff.numbers(258);
    const DWORD bits = samples.size() == 3 ? 24 : tiff.number(258);
    const DWORD photometric = tiff.number(262);
    const std::vector<DWORD> map = tiff.numbers(320);
    const std::size_t lineBytes = (std::size_t{width} * bits + 7) / 8;
    const auto grey = [](DWORD level) { return level << 16 | level << 8 | level; };
    std::vector<DWORD> pixels;
    for (std::size_t line = 0; line + lineBytes <= lines.size(); line += lineBytes) {
        for (std::size_t x = 0; x < width; ++x) {
            const BYTE *at = lines.data() + line + x * bits / 8;
            if (bits == 24) {
                pixels.push_back(DWORD{at[0]} << 16 | DWORD{at[1]} << 8 | at[2]);
                continue;
            }
            const DWORD most = (1U << bits) - 1;
            const DWORD value = *at >> (8 - bits - x * bits % 8) & most;
            if (photometric == 3) {
                const std::size_t n = map.size() / 3;
                pixels.push_back((map.at(value) >> 8) << 16 | (map.at(n + value) >> 8) << 8 |
                                 map.at(2 * n + value) >> 8);
            } else {
                pixels.push_back(grey((photometric == 0 ? most - value : value) * 255 / most));
            }
        }
    }
    return pixels;
}

} // namespace vellum::test
