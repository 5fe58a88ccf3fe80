// vellum_screen_bench: how long a page takes to be painted on a window. DecompressTiffToScreen paints while it decodes;
// beside it stand the same page decoded to nowhere, and loaded as a DIB that StretchDIBits draws. Windows only; the
// window is shown, so that what a screen costs is in it.
#include "bench/pages.h"
#include "vellum32.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <functional>
#include <vector>

namespace {

constexpr int kClientWidth = 1280;
constexpr int kClientHeight = 1024;
constexpr char kFile[] = "vellum-screen-bench.tif";

int rounds = 11;

// Milliseconds.
struct Times {
    double least;
    double median;
};

Times measure(const std::function<bool()> &work) {
    std::vector<double> times;
    for (int i = 0; i < rounds; ++i) {
        const auto begin = std::chrono::steady_clock::now();
        if (!work()) {
            std::fprintf(stderr, "failed with error %lu\n", TiffError());
            std::exit(1);
        }
        GdiFlush();
        times.push_back(std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - begin).count());
    }
    std::sort(times.begin(), times.end());
    return {times.front(), times[times.size() / 2]};
}

DWORD VELLUMAPI toNowhere(BYTE *, DWORD, DWORD) {
    return 0;
}

bool decodeOnly() {
    const TiffHandle tiff = OpenTiffFile(kFile, T_READ);
    const bool done =
        tiff != nullptr && GetTiffImage(tiff, 0) != 0 && DecodeTiffImage(tiff, 0, 0, 0, 0, toNowhere) != 0;
    return CloseTiffFile(tiff) != 0 && done;
}

bool drawDib(HWND window) {
    const HGLOBAL dib = LoadTiffIntoDIB(kFile, 0, 0);
    if (dib == nullptr) {
        return false;
    }
    const auto *info = static_cast<const BITMAPINFO *>(GlobalLock(dib));
    const BITMAPINFOHEADER &header = info->bmiHeader;
    const auto *bits = reinterpret_cast<const BYTE *>(info) + header.biSize + header.biClrUsed * sizeof(RGBQUAD);
    const HDC dc = GetDC(window);
    SetStretchBltMode(dc, header.biBitCount == 1 ? WHITEONBLACK : COLORONCOLOR);
    const int width = static_cast<int>(MulDiv(kClientHeight, header.biWidth, header.biHeight));
    const int lines = StretchDIBits(dc, 0, 0, width, kClientHeight, 0, 0, header.biWidth, header.biHeight, bits, info,
                                    DIB_RGB_COLORS, SRCCOPY);
    ReleaseDC(window, dc);
    GlobalUnlock(dib);
    GlobalFree(dib);
    return lines > 0;
}

bool paint(HWND window, DWORD flags) {
    const HDC dc = GetDC(window);
    const bool done = DecompressTiffToScreen(window, dc, kFile, 0, nullptr, flags) != 0;
    ReleaseDC(window, dc);
    return done;
}

// A packed DIB of a page: black is the second colour of a bilevel one.
HGLOBAL dibOf(const bench::Page &page) {
    const unsigned bits = page.bitsPerSample * page.samplesPerPixel;
    const DWORD colours = bits <= 8 ? 1u << bits : 0;
    const std::size_t stride = (std::size_t{page.width} * bits + 31) / 32 * 4;
    const std::size_t offset = sizeof(BITMAPINFOHEADER) + colours * sizeof(RGBQUAD);
    const HGLOBAL dib = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, offset + stride * page.height);
    auto *info = static_cast<BITMAPINFO *>(GlobalLock(dib));
    info->bmiHeader = {sizeof(BITMAPINFOHEADER),
                       static_cast<LONG>(page.width),
                       static_cast<LONG>(page.height),
                       1,
                       static_cast<WORD>(bits),
                       BI_RGB,
                       0,
                       23622,
                       23622,
                       colours,
                       colours};
    for (DWORD i = 0; i < colours; ++i) {
        const auto level = static_cast<BYTE>(bits == 1 ? 255 - 255 * i : i * 255 / (colours - 1));
        info->bmiColors[i] = {level, level, level, 0};
    }
    BYTE *rows = reinterpret_cast<BYTE *>(info) + offset;
    for (unsigned y = 0; y < page.height; ++y) {
        std::memcpy(rows + stride * (page.height - 1 - y), page.row(y), page.rowBytes);
    }
    GlobalUnlock(dib);
    return dib;
}

bool writePage(const bench::Page &page) {
    DeleteFileA(kFile);
    const HGLOBAL dib = dibOf(page);
    const bool done =
        SaveDIBInTiffFile(kFile, dib, page.bitsPerSample == 1 ? VELLUM_SAVE_GROUP4 : VELLUM_SAVE_LZW, 0) != 0;
    GlobalFree(dib);
    return done;
}

HWND makeWindow() {
    WNDCLASSA windowClass{};
    windowClass.lpfnWndProc = DefWindowProcA;
    windowClass.hbrBackground = reinterpret_cast<HBRUSH>(COLOR_APPWORKSPACE + 1);
    windowClass.lpszClassName = "VellumScreenBench";
    RegisterClassA(&windowClass);
    const HWND window = CreateWindowA("VellumScreenBench", "", WS_POPUP | WS_VISIBLE, 0, 0, kClientWidth, kClientHeight,
                                      nullptr, nullptr, nullptr, nullptr);
    UpdateWindow(window);
    return window;
}

void comparePage(HWND window, const char *name) {
    if (!writePage(bench::pageNamed(name))) {
        std::fprintf(stderr, "%s cannot be written: error %lu\n", name, TiffError());
        std::exit(1);
    }
    const Times decoding = measure(decodeOnly);
    const Times dib = measure([window] { return drawDib(window); });
    std::printf("%-18s %-12s %8.1f %8.1f %8s\n", name, "decode", decoding.least, decoding.median, "");
    std::printf("%-18s %-12s %8.1f %8.1f %8.2f\n", name, "DIB", dib.least, dib.median, dib.median / decoding.median);
    static constexpr const char *kNames[] = {"fit", "fit 90", "fit 180", "fit 270"};
    for (DWORD rotation = 0; rotation < 4; ++rotation) {
        const Times painting = measure([window, rotation] { return paint(window, VELLUM_SHOW_FIT | rotation); });
        std::printf("%-18s %-12s %8.1f %8.1f %8.2f\n", name, kNames[rotation], painting.least, painting.median,
                    painting.median / decoding.median);
    }
    const Times part = measure([window] { return paint(window, 0); });
    std::printf("%-18s %-12s %8.1f %8.1f %8.2f\n", name, "1:1, a part", part.least, part.median,
                part.median / decoding.median);
}

} // namespace

int main(int argc, char **argv) {
    if (argc > 1 && std::strncmp(argv[1], "--rounds=", 9) == 0) {
        rounds = std::max(1, std::atoi(argv[1] + 9));
    }
    const HWND window = makeWindow();
    std::printf("%-18s %-12s %8s %8s %8s\n", "page", "way", "least ms", "median", "/decode");
    for (const char *name : {"text-dense-600", "text-sparse-600", "drawing-600", "halftone-600", "blank-600", "grey-8",
                             "palette-8", "photo-24"}) {
        for (const std::string &known : bench::pageNames()) {
            if (known == name) {
                comparePage(window, name);
            }
        }
    }
    DestroyWindow(window);
    DeleteFileA(kFile);
    return 0;
}
