// What becomes of the user's choices, under the sanitizers: the dialog is the test itself.
#include "core/library_state.h"
#include "native/shim.h"
#include "write/packed_dibs.h"
#include "write/saved_pixels.h"

#include <gtest/gtest.h>

namespace vellum::test {
namespace {

// What the user does in the save dialog, as long as the object lives.
class UserWho {
public:
    explicit UserWho(void (*act)()) { shim::state.inSaveDialog = act; }
    UserWho(const UserWho &) = delete;
    UserWho &operator=(const UserWho &) = delete;
    ~UserWho() {
        shim::state.inSaveDialog = nullptr;
        library.save = {};
    }
};

DWORD saveAsking(const char *path, const PackedDib &dib) {
    const DibBlock block(dib);
    SetTiffError(VELLUM_NOT_CALS);
    const DWORD result = SaveDIBInTiffFileExt(path, block.get(), 0, 1, 1);
    EXPECT_EQ(lockCount(block.get()), 0U);
    return result;
}

void chooseBilevelPalette() {
    library.save.code = VELLUM_SAVE_LZW;
    library.save.photometric = 3;
    library.save.colours = 2;
}

TEST(SaveChoice, CancelIsResult0AndError0) {
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8)), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_OK});
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveChoice, ABilevelPaletteImageIsStoredWhiteFirst) {
    const UserWho user(&chooseBilevelPalette);
    const TempFile white;
    const TempFile black;
    const PackedDib whiteFirst(21, 5, 1);
    PackedDib blackFirst(21, 5, 1, {kBlackQuad, quad(200, 100, 50)});
    ASSERT_EQ(saveAsking(white.path(), whiteFirst), 1U);
    ASSERT_EQ(saveAsking(black.path(), blackFirst), 1U);
    EXPECT_EQ(SavedTiff(white.path()).lines(), whiteFirst.lines());
    EXPECT_EQ(SavedTiff(black.path()).numbers(320), (std::vector<DWORD>{200 << 8, 0, 100 << 8, 0, 50 << 8, 0}));
    const std::vector<DWORD> pixels = pixelsOf(SavedTiff(black.path()));
    ASSERT_EQ(pixels.size(), 21U * 5);
    for (LONG x = 0; x < 21; ++x) {
        const bool bit = (blackFirst.at(0, static_cast<std::size_t>(x) / 8) >> (7 - x % 8) & 1) != 0;
        EXPECT_EQ(pixels[static_cast<std::size_t>(x)], bit ? 0xC86432U : 0U) << x;
    }
}

TEST(SaveChoice, ABilevelPaletteImageOfOneColourIsStoredToo) {
    const UserWho user(&chooseBilevelPalette);
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(21, 5, 1, {kBlackQuad})), 1U);
    EXPECT_EQ(SavedTiff(file.path()).numbers(320), (std::vector<DWORD>{0xFF00, 0, 0xFF00, 0, 0xFF00, 0}));
}

TEST(SaveChoice, ACcittCodeThatDoesNotFitIsRefused) {
    const UserWho user([] { library.save.code = VELLUM_SAVE_GROUP4; });
    const TempFile file;
    EXPECT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8)), 0U);
    EXPECT_EQ(TiffError(), DWORD{VELLUM_BAD_COLOR_FORMAT});
    EXPECT_FALSE(readFile(file.path()));
}

TEST(SaveChoice, TextsOf100CharactersAreStoredWhole) {
    const UserWho user([] {
        std::memset(library.save.title, 't', kSaveTextLength);
        std::memset(library.save.artist, 'a', kSaveTextLength);
        library.save.code = VELLUM_SAVE_PACKBITS;
    });
    const TempFile file;
    ASSERT_EQ(saveAsking(file.path(), PackedDib(20, 5, 8)), 1U);
    EXPECT_EQ(SavedTiff(file.path()).text(270), std::string(100, 't'));
    EXPECT_EQ(SavedTiff(file.path()).text(315), std::string(100, 'a'));
}

} // namespace
} // namespace vellum::test
