// Windows: the information dialog, run on a TIFF that a test made, and what its controls say.
#pragma once

#include "support/decode_lines.h"
#include "support/dialog_user.h"
#include "support/import_patch.h"
#include "support/tiff_builder.h"

#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <string>

namespace vellum::test {

// The numbers of the controls that tell of the image.
inline constexpr int kWidth = 200;
inline constexpr int kHeight = 201;
inline constexpr int kPlanes = 202;
inline constexpr int kBits = 203;
inline constexpr int kColourFormat = 204;
inline constexpr int kTitle = 205;
inline constexpr int kArtist = 206;
inline constexpr int kDate = 207;
inline constexpr int kCompression = 208;
inline constexpr int kOption = 209;
inline constexpr int kStrips = 210;

using Texts = std::map<int, std::string>;

// What the template says.
inline const Texts kTemplateTexts = {
    {kWidth, "0"},
    {kHeight, "0"},
    {kPlanes, "1"},
    {kBits, "1"},
    {kColourFormat, "Monochrom"},
    {kTitle, "No title defined"},
    {kArtist, "No artist defined"},
    {kDate, "No date defined"},
    {kCompression, "No compression"},
    {kOption, "None"},
    {kStrips, "1"},
};

// The template's texts, some of them replaced. An image without PhotometricInterpretation counts as WhiteIsZero.
inline Texts texts(const Texts &replaced) {
    Texts all = kTemplateTexts;
    all[kColourFormat] = "Monochrome";
    for (const auto &[control, text] : replaced) {
        all[control] = text;
    }
    return all;
}

// The whole text of a window, however long.
inline std::string wholeTextOf(HWND window) {
    std::string text(static_cast<std::size_t>(GetWindowTextLengthA(window)) + 1, '\0');
    text.resize(static_cast<std::size_t>(GetWindowTextA(window, text.data(), static_cast<int>(text.size()))));
    return text;
}

inline Texts textsIn(HWND dialog) {
    Texts found;
    for (const auto &[control, text] : kTemplateTexts) {
        found[control] = wholeTextOf(GetDlgItem(dialog, control));
    }
    return found;
}

// Runs the library's dialog as a program would. Result: what it ended with.
inline INT_PTR runInfoDialog(TiffInfoDlgParam *param, const std::function<void(HWND)> &act) {
    const DialogUser user(act);
    const INT_PTR result =
        DialogBoxParamA(libraryModule(), "TIFFINFO", nullptr, &TiffDllInfoDlgFn, reinterpret_cast<LPARAM>(param));
    EXPECT_TRUE(user.acted());
    EXPECT_FALSE(user.leftOpen());
    return result;
}

// The texts that an open TIFF's image has.
inline Texts textsOf(TiffHandle tiff, DWORD index = 0) {
    TiffInfoDlgParam param = {tiff, index};
    Texts found;
    const INT_PTR result = runInfoDialog(&param, [&found](HWND dialog) {
        found = textsIn(dialog);
        press(dialog, IDCANCEL);
    });
    EXPECT_EQ(result, 2);
    return found;
}

// The texts of an image with just these tags.
inline Texts textsOf(const std::vector<tiff::Entry> &entries, std::uint16_t byteOrder = tiff::kII) {
    tiff::Builder file(byteOrder);
    file.directory(entries);
    const OpenedTiff tiff(file.bytes());
    EXPECT_TRUE(registerImage(tiff.get(), 0));
    return textsOf(tiff.get());
}

} // namespace vellum::test
