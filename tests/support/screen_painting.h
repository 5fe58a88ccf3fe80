// Windows: one painting with what must be true after every one.
#pragma once

#include "support/decode_lines.h"
#include "support/screen_model.h"

#include <string>

namespace vellum::test {

inline std::string describe(const ScreenPicture &picture, const Look &look) {
    std::string text = std::to_string(picture.width) + " x " + std::to_string(picture.height) + ", " +
                       std::to_string(picture.bits) + " bits, " + std::to_string(look.rotation() * 90) + " degrees";
    for (const auto &[flag, name] :
         {std::pair{VELLUM_SHOW_BY_RESOLUTION, ", by resolution"}, std::pair{VELLUM_SHOW_FIT, ", fitted"},
          std::pair{VELLUM_SHOW_INVERTED, ", inverted"}}) {
        text += (look.flags & static_cast<DWORD>(flag)) != 0 ? name : "";
    }
    for (const DWORD ratio : look.ratios) {
        text += " " + std::to_string(ratio);
    }
    return text;
}

inline Outcome paint(HWND window, HDC dc, const char *path, const Look &look = {}, DWORD index = 0) {
    SetTiffError(VELLUM_NOT_CALS);
    const LONG result = DecompressTiffToScreen(window, dc, path, index, look.ratiosOrNull(), look.flags);
    return {static_cast<DWORD>(result), TiffError()};
}

// Every rotation, upright and inverted.
inline std::vector<DWORD> allTurns(DWORD flags = 0) {
    std::vector<DWORD> turns;
    for (DWORD rotation = 0; rotation < 4; ++rotation) {
        turns.push_back(flags | rotation);
        turns.push_back(flags | rotation | VELLUM_SHOW_INVERTED);
    }
    return turns;
}

// Every rotation, two of them inverted.
inline std::vector<DWORD> fourTurns(DWORD flags = 0) {
    return {flags | VELLUM_ROTATE_0, flags | VELLUM_ROTATE_90 | VELLUM_SHOW_INVERTED,
            flags | VELLUM_ROTATE_180 | VELLUM_SHOW_INVERTED, flags | VELLUM_ROTATE_270};
}

// A kind of file, and the function that paints it.
struct PaintedFormat {
    Bytes (*file)(const ScreenPicture &picture);
    Outcome (*paint)(HWND window, HDC dc, const char *path, const Look &look);
};
inline constexpr PaintedFormat kTiffFormat = {
    [](const ScreenPicture &picture) { return picture.tiff(); },
    [](HWND window, HDC dc, const char *path, const Look &look) { return paint(window, dc, path, look); },
};

// A window that pictures are painted on, one after the other, with its own device context. Each time pixels, bars,
// mapping and validation are compared.
class Easel {
public:
    explicit Easel(SIZE window, const PaintedFormat &format = kTiffFormat)
        : host(window.cx, window.cy), window_(window), format_(format) {}

    void expectPainted(const ScreenPicture &picture, const Look &look, const ScrollState &horizontal = {},
                       const ScrollState &vertical = {}) {
        expectPainted(picture, std::vector<DWORD>{look.flags}, look.ratios, horizontal, vertical);
    }
    void expectPainted(const ScreenPicture &picture, const std::vector<DWORD> &turns, const Ratios &ratios = {},
                       const ScrollState &horizontal = {}, const ScrollState &vertical = {}) {
        const TempFile file(format_.file(picture));
        for (const DWORD flags : turns) {
            const Look look{flags, ratios};
            SCOPED_TRACE(describe(picture, look));
            host.reset(horizontal, vertical);
            const ScreenModel model(picture, look, {window_, horizontal, vertical});
            EXPECT_EQ(format_.paint(host.window(), host.dc(), file.path(), look), kDecoded);
            EXPECT_TRUE(hasBars(host, model));
            EXPECT_TRUE(keepsMapping(host.dc(), model));
            EXPECT_FALSE(host.needsPainting());
            EXPECT_TRUE(shows(host.pixels(), model));
        }
    }

    Host host;

private:
    SIZE window_;
    PaintedFormat format_;
};

} // namespace vellum::test
