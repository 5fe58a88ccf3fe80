// Windows: DIBs of 16 and 32 bits per pixel painted by PaintDIBWithNote, without masks and with them. The scaler takes
// neither; they are drawn as they are.
#include "annot/painted_dibs.h"

#include <gtest/gtest.h>

namespace {

using namespace vellum::test;

constexpr WORD kDirectDepths[] = {16, 32};

// Eight colours that both depths have exactly, in no order.
class DirectPicture {
public:
    DirectPicture(LONG width, LONG height, WORD bits) : width_(width), dib_(width, height, bits) {
        Bytes bytes = dib_.bytes();
        DWORD random = 12345;
        for (LONG y = 0; y < height; ++y) {
            BYTE *row = bytes.data() + dib_.header.biSize + static_cast<std::size_t>(height - 1 - y) * dib_.stride();
            for (LONG x = 0; x < width; ++x) {
                random = random * 1664525 + 1013904223;
                put(row, x, bits, random >> 24);
            }
        }
        block_.emplace(bytes);
    }
    [[nodiscard]] HGLOBAL get() const { return block_->get(); }
    [[nodiscard]] DWORD at(LONG x, LONG y) const { return pixels_[static_cast<std::size_t>(y * width_ + x)]; }

private:
    void put(BYTE *row, LONG x, WORD bits, DWORD color) {
        const DWORD red = color & 1;
        const DWORD green = color >> 1 & 1;
        const DWORD blue = color >> 2 & 1;
        pixels_.push_back(red * 0xFF0000 | green * 0x00FF00 | blue * 0x0000FF);
        const DWORD value = bits == 32 ? pixels_.back() : red * 0x7C00 | green * 0x03E0 | blue * 0x001F;
        std::memcpy(row + x * bits / 8, &value, bits / 8);
    }

    LONG width_;
    PackedDib dib_;
    Pixels pixels_;
    std::optional<DibBlock> block_;
};

// The window's pixels, the picture's as `at` tells and the background beside it.
template <class At>
Pixels window(const SIZE &shown, const SIZE &client, At at) {
    Pixels pixels(static_cast<std::size_t>(client.cx * client.cy), kBackground);
    for (LONG y = 0; y < std::min(shown.cy, client.cy); ++y) {
        for (LONG x = 0; x < std::min(shown.cx, client.cx); ++x) {
            pixels[static_cast<std::size_t>(y * client.cx + x)] = at(x, y);
        }
    }
    return pixels;
}

TEST(PaintDirectDib, IsShownPixelForPixel) {
    for (const WORD bits : kDirectDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const DirectPicture picture(41, 30, bits);
        EXPECT_EQ(paint(host, picture.get()), 1);
        EXPECT_TRUE(host.pixels() == window({41, 30}, kClient, [&](LONG x, LONG y) { return picture.at(x, y); }))
            << bits;
        EXPECT_EQ(lockCount(picture.get()), 0U);
    }
}

TEST(PaintDirectDib, InvertedIsTheComplement) {
    for (const WORD bits : kDirectDepths) {
        for (const DWORD fit : {0, VELLUM_SHOW_FIT}) {
            Host host(kClientWidth, kClientHeight);
            host.reset({0, 100, 0, false}, {0, 100, 0, false});
            // Fitted it has the same size.
            const DirectPicture picture(41, kClientHeight, bits);
            paint(host, picture.get(), {.mode = fit | VELLUM_SHOW_INVERTED});
            EXPECT_TRUE(host.pixels() == window({41, kClientHeight}, kClient,
                                                [&](LONG x, LONG y) { return picture.at(x, y) ^ 0xFFFFFF; }))
                << bits << ", " << fit;
        }
    }
}

TEST(PaintDirectDib, ScrolledShowsThePartThatTheScrollBarsTell) {
    for (const WORD bits : kDirectDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 50, true}, {0, 100, 25, true});
        const DirectPicture picture(600, 500, bits);
        paint(host, picture.get());
        const SIZE client = host.client();
        const LONG left = (600 - client.cx + 1) / 2;
        const LONG top = (500 - client.cy + 2) / 4;
        EXPECT_TRUE(host.pixels() ==
                    window(client, client, [&](LONG x, LONG y) { return picture.at(left + x, top + y); }))
            << bits;
    }
}

TEST(PaintDirectDib, EnlargedHasEveryPixelSeveralTimes) {
    for (const WORD bits : kDirectDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const DirectPicture picture(41, 30, bits);
        paint(host, picture.get(), {.zoom = {{2, 1, 3, 1}}});
        EXPECT_TRUE(host.pixels() ==
                    window({82, 90}, kClient, [&](LONG x, LONG y) { return picture.at(x / 2, y / 3); }))
            << bits;
    }
}

// Not what the pixels become together when all of them count: text would grow fat, or go.
TEST(PaintDirectDib, ReducedShowsOneOfThePixelsThatFallTogether) {
    for (const WORD bits : kDirectDepths) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        const DirectPicture picture(100, 80, bits);
        paint(host, picture.get(), {.zoom = {{1, 2, 1, 2}}});
        const Pixels pixels = host.pixels();
        int foreign = 0;
        for (LONG y = 0; y < 40; ++y) {
            for (LONG x = 0; x < 50; ++x) {
                const DWORD seen = pixels[static_cast<std::size_t>(y * kClientWidth + x)];
                bool found = false;
                for (LONG i = 0; i < 4; ++i) {
                    found = found || picture.at(2 * x + i % 2, 2 * y + i / 2) == seen;
                }
                foreign += found ? 0 : 1;
            }
        }
        EXPECT_EQ(foreign, 0) << bits;
        EXPECT_EQ(pixels[50], kBackground);
        EXPECT_EQ(pixels[40 * kClientWidth], kBackground);
    }
}

// ---------------------------------------------------------------- masks

// A picture of one colour whose parts are found by masks behind its header.
Bytes maskedPicture(WORD bits, const std::array<DWORD, 3> &masks, DWORD pixel) {
    PackedDib dib(40, 30, bits);
    dib.header.biCompression = BI_BITFIELDS;
    Bytes bytes = dib.bytes();
    bytes.resize(sizeof dib.header);
    const auto *first = reinterpret_cast<const BYTE *>(masks.data());
    bytes.insert(bytes.end(), first, first + sizeof masks);
    for (int i = 0; i < 40 * 30; ++i) {
        const auto *value = reinterpret_cast<const BYTE *>(&pixel);
        bytes.insert(bytes.end(), value, value + bits / 8);
    }
    return bytes;
}

TEST(PaintDirectDib, ColoursByMasksAreTheSystemsBusiness) {
    const std::array<DWORD, 3> k565 = {0xF800, 0x07E0, 0x001F};
    const std::array<DWORD, 3> kRedFirst = {0x0000FF, 0x00FF00, 0xFF0000};
    const struct {
        Bytes bytes;
        DWORD colour;
    } cases[] = {{maskedPicture(16, k565, 0x07E0), 0x00FF00}, {maskedPicture(32, kRedFirst, 0x0000FF), 0xFF0000}};
    for (const auto &[bytes, colour] : cases) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        paint(host, DibBlock(bytes).get());
        Pixels shown(kClientWidth * kClientHeight, kBackground);
        for (std::size_t i = 0; i < shown.size(); ++i) {
            shown[i] = i % kClientWidth < 40 && i / kClientWidth < 30 ? colour : shown[i];
        }
        EXPECT_TRUE(host.pixels() == shown) << colour;
    }
}

TEST(PaintDirectDib, MasksAndPixelsThatAreNotAllThereGiveTheBackground) {
    const Bytes whole = maskedPicture(16, {0xF800, 0x07E0, 0x001F}, 0x07E0);
    for (const std::size_t missing : {std::size_t{1}, std::size_t{12}, whole.size() - 40, whole.size() - 48}) {
        Host host(kClientWidth, kClientHeight);
        host.reset({0, 100, 0, false}, {0, 100, 0, false});
        paint(host, DibBlock(Bytes(whole.begin(), whole.end() - static_cast<std::ptrdiff_t>(missing))).get());
        EXPECT_TRUE(host.pixels() == Pixels(kClientWidth * kClientHeight, kBackground)) << missing;
    }
}

} // namespace
