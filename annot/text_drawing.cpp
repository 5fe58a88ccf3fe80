// Lines of text by ExtTextOut, in pieces that every system takes.
#include "annot/text_drawing.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>

namespace vellum {
namespace {

constexpr int kPointsPerInch = 72;

// GDI takes no longer texts than 8192 characters everywhere, and counts pixels in 27 bits.
constexpr std::size_t kPieceCharacters = 4096;
constexpr std::int64_t kFarthest = 0x3FFFFFF;

// A letter may have four times the pixels of the picture that it is drawn on.
LONG largestLetter(const BITMAP &picture) {
    constexpr double kAlways = 1024;
    const double pixels = static_cast<double>(picture.bmWidth) * picture.bmHeight;
    return static_cast<LONG>(std::clamp(2 * std::sqrt(pixels), kAlways, static_cast<double>(kFarthest)));
}

LONG widthOf(HDC dc, std::string_view text) {
    SIZE size{};
    GetTextExtentPoint32A(dc, text.data(), static_cast<int>(text.size()), &size);
    return size.cx;
}

} // namespace

void setHeight(LOGFONTA &font, DWORD points, DWORD dotsPerInch, const BITMAP &picture) {
    const int height = MulDiv(static_cast<int>(points), static_cast<int>(dotsPerInch), kPointsPerInch);
    const LONG most = largestLetter(picture);
    font.lfHeight = -std::clamp<LONG>(height, -most, most);
    font.lfWidth = std::clamp(font.lfWidth, -most, most);
}

// The face may be the font's own.
void setFace(LOGFONTA &font, std::string_view face) {
    const std::string_view name = face.substr(0, face.find('\0')).substr(0, LF_FACESIZE - 1);
    std::memmove(font.lfFaceName, name.data(), name.size());
    std::fill(font.lfFaceName + name.size(), std::end(font.lfFaceName), '\0');
}

LONG lineHeightOf(HDC dc) {
    TEXTMETRICA metrics{};
    GetTextMetricsA(dc, &metrics);
    return metrics.tmHeight + metrics.tmExternalLeading;
}

void drawTextLine(HDC dc, std::int64_t x, std::int64_t y, std::string_view text, const RECT *clip) {
    const UINT options = clip == nullptr ? 0 : ETO_CLIPPED;
    while (!text.empty() && x <= kFarthest && y >= -kFarthest && y <= kFarthest) {
        const std::string_view piece = text.substr(0, kPieceCharacters);
        text.remove_prefix(piece.size());
        if (x >= -kFarthest) {
            ExtTextOutA(dc, static_cast<int>(x), static_cast<int>(y), options, clip, piece.data(),
                        static_cast<UINT>(piece.size()), nullptr);
        }
        if (!text.empty()) {
            x += widthOf(dc, piece);
        }
    }
}

} // namespace vellum
