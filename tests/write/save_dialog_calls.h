// Windows: the save dialog's controls, and saving a DIB as a user wants it.
#pragma once

#include "support/dialog_user.h"
#include "write/packed_dibs.h"
#include "write/saved_tiff.h"

#include <gtest/gtest.h>

#include <set>

namespace vellum::test {

// The numbers of the controls.
inline constexpr int kTitle = 250;
inline constexpr int kArtist = 251;
inline constexpr int kMonochrome = 260;
inline constexpr int kGreyscale = 261;
inline constexpr int kPalette = 262;
inline constexpr int kNormal = 1014;
inline constexpr int kReverse = 1015;
inline constexpr int kButtons[] = {201, 202, 203,         204,        205,      206,     207,
                                   208, 209, kMonochrome, kGreyscale, kPalette, kNormal, kReverse};

using Buttons = std::set<int>;

inline Buttons enabledIn(HWND dialog) {
    Buttons found;
    for (const int button : kButtons) {
        if (isEnabled(dialog, button)) {
            found.insert(button);
        }
    }
    return found;
}
inline Buttons checkedIn(HWND dialog) {
    Buttons found;
    for (const int button : kButtons) {
        if (isChecked(dialog, button)) {
            found.insert(button);
        }
    }
    return found;
}

inline const Buttons kBilevelButtons = {201, 202, 203, 205, 206, 207, 208, kMonochrome, kNormal, kReverse};
inline const Buttons kPaletteButtons = {201, 202, 203, 204, kGreyscale, kPalette, kNormal, kReverse};
inline const Buttons kTrueColourButtons = {201, 202, 203, 204, 209, kGreyscale, kPalette, kNormal, kReverse};

// Saves a DIB as the user wants it.
inline Outcome saveAsking(const char *path, const PackedDib &dib, const std::function<void(HWND)> &act,
                          LONG fillOrder = 1) {
    const DibBlock block(dib);
    const DialogUser user(act);
    SetTiffError(VELLUM_NOT_CALS);
    const DWORD result = SaveDIBInTiffFileExt(path, block.get(), 0, 1, fillOrder);
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    return {result, TiffError()};
}

// Presses buttons, then OK.
inline auto presses(std::initializer_list<int> buttons) {
    return [pressed = std::vector<int>(buttons)](HWND dialog) {
        for (const int button : pressed) {
            EXPECT_TRUE(isEnabled(dialog, button)) << button;
            press(dialog, button);
            EXPECT_TRUE(isChecked(dialog, button)) << button;
        }
        press(dialog, IDOK);
    };
}

} // namespace vellum::test
