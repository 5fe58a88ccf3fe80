// The information dialog: puts an image's tags into the controls of template TIFFINFO. What the image does not tell
// stays as the template has it.
#include "display/info_dialog.h"

#include "core/image_dimensions.h"
#include "core/image_info.h"
#include "core/library_state.h"
#include "res/resource.h"

#include <cstdint>
#include <cstdio>
#include <iterator>

namespace vellum {
namespace {

constexpr char kTemplate[] = "TIFFINFO";

// The colour formats by PhotometricInterpretation: of one bit a pixel, and of more.
struct ColorFormat {
    const char *bilevel;
    const char *deeper;
};
constexpr ColorFormat kColorFormats[] = {
    {"Monochrome", "Greyscale"},           // WhiteIsZero
    {"Inv. monochrome", "Inv. greyscale"}, // BlackIsZero
    {"RGB color", "RGB color"},
    {"Palette color", "Palette color"},
    {"Transp. mask", "Transp. mask"},
};

const char *textOfT4Options(DWORD value) {
    return (value & 1) != 0 ? "2 dim." : "1 dim.";
}
const char *textOfPredictor(DWORD value) {
    return value == 1 ? "Normal" : "Differ.";
}

// What is shown for a value of Compression, and the tag that tells more of it.
// By design: T6Options has no text, but is looked up as the others are, so that error 13 says whether it is there.
struct CompressionText {
    DWORD compression;
    const char *text;
    std::optional<Tag> option;
    DWORD optionIfAbsent;
    const char *(*textOfOption)(DWORD);
};
constexpr CompressionText kCompressionTexts[] = {
    {2, "CCITT G3 No EOL", std::nullopt, 0, nullptr},
    {3, "CCITT G3", Tag::T4Options, 0, textOfT4Options},
    {4, "CCITT G4", Tag::T6Options, 0, nullptr},
    {5, "LZW", Tag::Predictor, 1, textOfPredictor},
    {6, "JPEG", std::nullopt, 0, nullptr},
    {32773, "PackBits", std::nullopt, 0, nullptr},
};

// The controls of a dialog, filled with what one image tells.
class InfoControls {
public:
    InfoControls(HWND dialog, const TiffInfoDlgParam &image)
        : dialog_(dialog), tiff_(image.tiff), index_(image.index) {}

    void fill() const {
        showPath();
        showText(IDC_INFO_TITLE, Tag::ImageDescription);
        showText(IDC_INFO_ARTIST, Tag::Artist);
        showText(IDC_INFO_DATE, Tag::DateTime);
        if (const auto strips = tagShape(tiff_, index_, static_cast<LONG>(Tag::StripOffsets))) {
            showNumber(IDC_INFO_STRIPS, strips->count);
        }
        showValue(IDC_INFO_WIDTH, Tag::ImageWidth);
        showValue(IDC_INFO_HEIGHT, Tag::ImageLength);
        showColors();
        showCompression();
        showResolution();
    }

private:
    [[nodiscard]] std::optional<DWORD> value(Tag tag) const { return firstValue(tiff_, index_, tag); }

    void show(int control, const char *text) const { SetDlgItemTextA(dialog_, control, text); }

    void showNumber(int control, DWORD number) const {
        char text[16];
        std::snprintf(text, sizeof text, "%ld", static_cast<LONG>(number));
        show(control, text);
    }

    void showValue(int control, Tag tag) const {
        if (const auto number = value(tag)) {
            showNumber(control, *number);
        }
    }

    // Of a TIFF in memory the caption is empty.
    void showPath() const {
        TiffFileInfo file;
        GetTiffFileInfo(tiff_, &file);
        SetWindowTextA(dialog_, file.path);
    }

    // The text ends at its first zero; where the file has none, the block's growth is one.
    void showText(int control, Tag tag) const {
        auto values = allValues(tiff_, index_, tag);
        if (!values) {
            return;
        }
        const std::size_t bytes = GlobalView<BYTE>(values->data.get()).bytes();
        if (!values->data.grow(Size(bytes) + 1)) {
            return;
        }
        const GlobalView<const char> text(values->data.get());
        if (text) {
            show(control, text.get());
        }
    }

    void showColors() const {
        const auto samples = value(Tag::SamplesPerPixel);
        const auto bits = value(Tag::BitsPerSample);
        if (samples) {
            // By design: three interleaved samples make one plane.
            showNumber(IDC_INFO_PLANES, *samples == 3 ? 1 : *samples);
        }
        if (bits) {
            showNumber(IDC_INFO_BITS, *bits);
        }
        const DWORD photometric = value(Tag::Photometric).value_or(kWhiteIsZero);
        if (photometric < std::size(kColorFormats)) {
            const std::uint64_t bitsPerPixel = std::uint64_t{samples.value_or(1)} * bits.value_or(1);
            const ColorFormat &format = kColorFormats[photometric];
            show(IDC_INFO_COLOR_FORMAT, bitsPerPixel > 1 ? format.deeper : format.bilevel);
        }
    }

    void showCompression() const {
        const auto compression = value(Tag::Compression);
        for (const CompressionText &text : kCompressionTexts) {
            if (compression == text.compression) {
                show(IDC_INFO_COMPRESSION, text.text);
                showOption(text);
            }
        }
    }

    void showOption(const CompressionText &text) const {
        const DWORD option = text.option ? value(*text.option).value_or(text.optionIfAbsent) : 0;
        if (text.textOfOption != nullptr) {
            show(IDC_INFO_OPTION, text.textOfOption(option));
        }
    }

    // By design: TIFFINFO has no room for the resolution; programs with a template of their own may show it.
    void showResolution() const {
        const DWORD dpi = dotsPerInch(tiff_, index_);
        showNumber(IDC_INFO_HORIZONTAL_DPI, LOWORD(dpi));
        showNumber(IDC_INFO_VERTICAL_DPI, HIWORD(dpi));
    }

    HWND dialog_;
    TiffHandle tiff_;
    DWORD index_;
};

} // namespace

INT_PTR showInfoDialog(TiffHandle tiff, DWORD index) {
    TiffInfoDlgParam image = {tiff, index};
    return DialogBoxParamA(library.module, kTemplate, nullptr, &TiffDllInfoDlgFn, reinterpret_cast<LPARAM>(&image));
}

} // namespace vellum

extern "C" INT_PTR VELLUMAPI TiffDllInfoDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        if (const auto *image = reinterpret_cast<const TiffInfoDlgParam *>(lParam); image != nullptr) {
            vellum::InfoControls(dialog, *image).fill();
        }
        SetFocus(GetDlgItem(dialog, IDOK));
        return FALSE; // the focus is where it is to be
    case WM_COMMAND:
        if (const int control = LOWORD(wParam); control == IDOK || control == IDCANCEL) {
            EndDialog(dialog, control);
        }
        return TRUE;
    default:
        return FALSE;
    }
}
