// Any lines with any compression, strips and bit order: encoded into a TIFF in memory and decoded again. Every line
// must come back as it was; one in a few runs is ended early by its line function.
#include "vellum32.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <cstring>

namespace {

// What the input's first bytes choose.
struct Choice {
    DWORD bits = 1;
    DWORD compression = 1;
    DWORD option = 0;
    DWORD fillOrder = 1;
    DWORD width = 1;
    DWORD height = 1;
    DWORD rowsPerStrip = 1;
    DWORD stopAt = 0; // 0: never

    [[nodiscard]] std::size_t lineBytes() const { return (std::size_t{width} * bits + 7) / 8; }
};

struct Lines {
    const std::uint8_t *data;
    std::size_t size;
    Choice choice;
    DWORD lines = 0;
};

// Pixels repeat the input; bits behind the width are zero.
void makeLine(const Lines &from, DWORD lineIndex, BYTE *line) {
    const std::size_t bytes = from.choice.lineBytes();
    for (std::size_t i = 0; i < bytes; ++i) {
        line[i] = from.size == 0 ? 0 : from.data[(lineIndex * bytes + i) % from.size];
    }
    const unsigned spare = static_cast<unsigned>(bytes * 8 - std::size_t{from.choice.width} * from.choice.bits);
    line[bytes - 1] = static_cast<BYTE>(line[bytes - 1] >> spare << spare);
}

Lines &linesOf(DWORD userValue) {
    return *reinterpret_cast<Lines *>(static_cast<std::uintptr_t>(userValue));
}

DWORD VELLUMAPI supply(BYTE *line, DWORD lineIndex, DWORD userValue) {
    Lines &lines = linesOf(userValue);
    if (lineIndex != lines.lines++ || lineIndex >= lines.choice.height) {
        std::abort();
    }
    makeLine(lines, lineIndex, line);
    return lines.choice.stopAt != 0 && lineIndex == lines.choice.stopAt ? VELLUM_INDEX_OUT_OF_RANGE : VELLUM_OK;
}

DWORD VELLUMAPI compare(BYTE *line, DWORD lineIndex, DWORD userValue) {
    static BYTE expected[1 << 16];
    Lines &lines = linesOf(userValue);
    if (lineIndex != lines.lines++) {
        std::abort();
    }
    makeLine(lines, lineIndex, expected);
    if (std::memcmp(line, expected, lines.choice.lineBytes()) != 0) {
        std::abort();
    }
    return VELLUM_OK;
}

Choice choose(const std::uint8_t *data) {
    static constexpr struct {
        DWORD compression;
        DWORD option;
    } kKinds[] = {{1, 0}, {32773, 0}, {5, 1}, {5, 2}, {2, 0}, {3, 0}, {3, 4}, {3, 1}, {3, 5}, {4, 0}};
    static constexpr DWORD kDepths[] = {1, 4, 8, 24};
    Choice choice;
    const auto &kind = kKinds[data[0] % 10];
    choice.compression = kind.compression;
    choice.option = kind.option;
    choice.bits = kind.compression >= 2 && kind.compression <= 4 ? 1 : kDepths[data[1] & 3];
    choice.fillOrder = 1 + (data[1] >> 2 & 1);
    choice.width = 1 + data[2] + (data[3] & 7) * 256U;
    choice.height = 1 + data[4];
    choice.rowsPerStrip = data[5];
    choice.stopAt = data[1] >> 6 == 3 ? data[6] : 0;
    return choice;
}

void defineImage(TiffHandle tiff, const Choice &choice) {
    DefineTiffImage(tiff);
    DefineTiffImageInfo(tiff, 0, 256, 3, choice.width);
    DefineTiffImageInfo(tiff, 0, 257, 3, choice.height);
    DefineTiffImageInfo(tiff, 0, 278, 3, choice.rowsPerStrip);
    DefineTiffImageInfo(tiff, 0, 259, 3, choice.compression);
    DefineTiffImageInfo(tiff, 0, 266, 3, choice.fillOrder);
    DefineTiffImageInfo(tiff, 0, 258, 3, choice.bits == 24 ? 8 : choice.bits);
    DefineTiffImageInfo(tiff, 0, 277, 3, choice.bits == 24 ? 3 : 1);
    if (choice.option != 0) {
        DefineTiffImageInfo(tiff, 0, choice.compression == 3 ? 292 : 317, 3, choice.option);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    constexpr std::size_t kHead = 7;
    if (size < kHead) {
        return 0;
    }
    Lines lines{data + kHead, size - kHead, choose(data)};
    const auto userValue = static_cast<DWORD>(reinterpret_cast<std::uintptr_t>(&lines));
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, 8);
    std::memcpy(GlobalLock(block), "II\x2A\0\0\0\0\0", 8);
    GlobalUnlock(block);
    TiffHandle tiff = OpenTiffInMemory(block, 8, T_CREAT);
    defineImage(tiff, lines.choice);
    if (EncodeTiffImage(tiff, 0, userValue, supply) != 1) {
        std::abort();
    }
    block = GetMemoryTiffHandle(tiff);
    CloseTiffFile(tiff);
    const Choice &choice = lines.choice;
    const DWORD written = choice.stopAt != 0 ? std::min(choice.stopAt, choice.height) : choice.height;
    tiff = OpenTiffInMemory(block, static_cast<DWORD>(GlobalSize(block)), T_READ);
    lines.lines = 0;
    SetTiffError(VELLUM_OK);
    if (GetTiffImage(tiff, 0) != 1 || DecodeTiffImage(tiff, 0, 0, 0, userValue, compare) != 1 ||
        lines.lines != written) {
        std::abort();
    }
    CloseTiffFile(tiff);
    GlobalFree(block);
    return 0;
}
