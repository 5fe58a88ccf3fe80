// The save dialog: what the user presses goes into the library's save state.
#include "write/save_dialog.h"

#include "core/library_state.h"
#include "res/resource.h"
#include "write/save_tags.h"

#include <cstdio>

static_assert(IDC_SAVE_UNCOMPRESSED == VELLUM_SAVE_UNCOMPRESSED && IDC_SAVE_PACKBITS == VELLUM_SAVE_PACKBITS &&
              IDC_SAVE_LZW == VELLUM_SAVE_LZW && IDC_SAVE_LZW_DIFFERENCING == VELLUM_SAVE_LZW_DIFFERENCING &&
              IDC_SAVE_MODIFIED_HUFFMAN == VELLUM_SAVE_MODIFIED_HUFFMAN &&
              IDC_SAVE_GROUP3_1D == VELLUM_SAVE_GROUP3_1D && IDC_SAVE_GROUP3_2D == VELLUM_SAVE_GROUP3_2D &&
              IDC_SAVE_GROUP4 == VELLUM_SAVE_GROUP4 && IDC_SAVE_JPEG == VELLUM_SAVE_JPEG);

namespace vellum {
namespace {

constexpr char kTemplate[] = "SAVETIFF";
constexpr INT_PTR kOk = 1;
constexpr INT_PTR kCancelled = 0;
constexpr DWORD kReversedFillOrder = 2;

void enable(HWND dialog, int control, bool enabled) {
    EnableWindow(GetDlgItem(dialog, control), enabled ? TRUE : FALSE);
}

void chooseCode(HWND dialog, int code) {
    library.save.code = code;
    CheckRadioButton(dialog, IDC_SAVE_UNCOMPRESSED, IDC_SAVE_JPEG, code);
}

// The CCITT codes are for bilevel pictures, differences of pixels for others.
void enableCodes(HWND dialog, bool bilevel) {
    for (int code = IDC_SAVE_MODIFIED_HUFFMAN; code <= IDC_SAVE_GROUP4; ++code) {
        enable(dialog, code, bilevel);
    }
    enable(dialog, IDC_SAVE_LZW_DIFFERENCING, !bilevel);
    const LONG code = library.save.code;
    if (bilevel ? code == IDC_SAVE_LZW_DIFFERENCING : isCcittCode(code)) {
        chooseCode(dialog, IDC_SAVE_UNCOMPRESSED);
    }
}

void chooseColours(HWND dialog, int control, DWORD photometric, DWORD colours) {
    library.save.photometric = photometric;
    library.save.colours = colours;
    CheckRadioButton(dialog, IDC_SAVE_MONOCHROME, IDC_SAVE_PALETTE, control);
    enableCodes(dialog, control == IDC_SAVE_MONOCHROME);
}

void chooseFillOrder(HWND dialog, int control) {
    library.save.fillOrder = control == IDC_SAVE_REVERSED_BITS ? kReversedFillOrder : 1;
    CheckRadioButton(dialog, IDC_SAVE_NORMAL_BITS, IDC_SAVE_REVERSED_BITS, control);
}

void showTexts(HWND dialog) {
    char caption[sizeof "Saving " + kSaveTextBytes];
    std::snprintf(caption, sizeof caption, "Saving %s", library.save.title);
    SetWindowTextA(dialog, caption);
    const auto show = [dialog](int control, const char *text) {
        SendDlgItemMessageA(dialog, control, EM_LIMITTEXT, kSaveTextLength, 0);
        SetDlgItemTextA(dialog, control, text);
    };
    show(IDC_SAVE_TITLE, library.save.title);
    show(IDC_SAVE_ARTIST, library.save.artist);
}

// The colours of the source stay with the dialog: the bilevel choice forgets them.
void open(HWND dialog, const BITMAP *source) {
    const BITMAP bitmap = source != nullptr ? *source : BITMAP{};
    const DWORD bitsPerPixel = DWORD{bitmap.bmPlanes} * bitmap.bmBitsPixel;
    const DWORD colours = coloursOfDepth(bitsPerPixel);
    SetWindowLongPtrA(dialog, DWLP_USER, static_cast<LONG_PTR>(colours));
    showTexts(dialog);
    chooseCode(dialog, IDC_SAVE_UNCOMPRESSED);
    chooseFillOrder(dialog,
                    library.save.fillOrder == kReversedFillOrder ? IDC_SAVE_REVERSED_BITS : IDC_SAVE_NORMAL_BITS);
    const bool bilevel = colours <= 2;
    chooseColours(dialog, bilevel ? IDC_SAVE_MONOCHROME : IDC_SAVE_PALETTE, colours > 256 ? kRgb : kPalette, colours);
    enable(dialog, IDC_SAVE_MONOCHROME, bilevel);
    enable(dialog, IDC_SAVE_GREYSCALE, !bilevel);
    enable(dialog, IDC_SAVE_PALETTE, !bilevel);
    enable(dialog, IDC_SAVE_JPEG, bitsPerPixel == 24);
}

void takeTexts(HWND dialog) {
    GetDlgItemTextA(dialog, IDC_SAVE_TITLE, library.save.title, kSaveTextBytes);
    GetDlgItemTextA(dialog, IDC_SAVE_ARTIST, library.save.artist, kSaveTextBytes);
}

INT_PTR press(HWND dialog, int control) {
    const auto sourceColours = static_cast<DWORD>(GetWindowLongPtrA(dialog, DWLP_USER));
    switch (control) {
    case IDC_SAVE_MONOCHROME:
        chooseColours(dialog, control, kWhiteIsZero, 2);
        return TRUE;
    case IDC_SAVE_GREYSCALE:
        chooseColours(dialog, control, kWhiteIsZero, sourceColours);
        return TRUE;
    case IDC_SAVE_PALETTE:
        chooseColours(dialog, control, kPalette, sourceColours);
        return TRUE;
    case IDC_SAVE_NORMAL_BITS:
    case IDC_SAVE_REVERSED_BITS:
        chooseFillOrder(dialog, control);
        return TRUE;
    case IDOK:
        takeTexts(dialog);
        EndDialog(dialog, kOk);
        return TRUE;
    case IDCANCEL:
        EndDialog(dialog, kCancelled);
        return TRUE;
    default:
        if (!isSaveCode(control)) {
            return FALSE;
        }
        chooseCode(dialog, control);
        return TRUE;
    }
}

} // namespace

bool askHowToSave(const char *fileName, const BITMAP &picture) {
    const SaveState before = library.save;
    lstrcpynA(library.save.title, fileName == nullptr ? "" : fileName, kSaveTextBytes);
    BITMAP source = picture;
    const INT_PTR answer =
        DialogBoxParamA(library.module, kTemplate, nullptr, &DllTiffSaveDlg, reinterpret_cast<LPARAM>(&source));
    if (answer != kOk) {
        library.save = before;
        setError(answer == kCancelled ? Error::None : Error::NoMemory);
    }
    return answer == kOk;
}

} // namespace vellum

extern "C" INT_PTR VELLUMAPI DllTiffSaveDlg(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        vellum::open(dialog, reinterpret_cast<const BITMAP *>(lParam));
        return TRUE;
    case WM_COMMAND:
        // Edit fields tell of their changes, too; a button's click has the number 0.
        return HIWORD(wParam) == BN_CLICKED ? vellum::press(dialog, LOWORD(wParam)) : FALSE;
    default:
        return FALSE;
    }
}
