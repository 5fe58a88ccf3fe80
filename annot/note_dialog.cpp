// The dialog for notes, NOTEITDLG. The note that it works on is in the library's state.
#include "annot/note_dialog.h"

#include "annot/note_text.h"
#include "core/library_state.h"
#include "res/resource.h"
#include "support/gdi_objects.h"

namespace vellum {
namespace {

constexpr char kTemplate[] = "NOTEITDLG";
constexpr COLORREF kLightGrey = RGB(0xC0, 0xC0, 0xC0);

using OwnedBrush = GdiObject<HGDIOBJ>;

bool isChecked(HWND dialog, int button) {
    return IsDlgButtonChecked(dialog, button) == BST_CHECKED;
}

// Exactly one of the two buttons of a pair is checked.
void checkPlace(HWND dialog, int button) {
    CheckRadioButton(dialog, IDC_NOTE_ON_IMAGE, IDC_NOTE_IN_HEADER, button);
}
void checkBackground(HWND dialog, int button) {
    CheckRadioButton(dialog, IDC_NOTE_TRANSPARENT, IDC_NOTE_OPAQUE, button);
}

// The text in a block that ends with a NUL, for the window functions that take no length.
void showText(HWND dialog, HGLOBAL block) {
    const NoteText text(block);
    const GlobalBlock copy = text ? makeNoteText(text.get()) : GlobalBlock();
    if (const GlobalView<const char> shown(copy.get()); shown) {
        SetDlgItemTextA(dialog, IDC_NOTE_TEXT, shown.get());
    }
}

// The brush lives as long as the dialog.
void close() {
    const OwnedBrush brush(library.noteDialog.brush);
    library.noteDialog = {};
}

void open(HWND dialog, NoteRecord *note) {
    close();
    library.noteDialog.note = note;
    library.noteDialog.brush = CreateSolidBrush(kLightGrey);
    if (note == nullptr) {
        return;
    }
    checkPlace(dialog, note->inHeader != 0 ? IDC_NOTE_IN_HEADER : IDC_NOTE_ON_IMAGE);
    checkBackground(dialog, note->opaque != 0 ? IDC_NOTE_OPAQUE : IDC_NOTE_TRANSPARENT);
    showText(dialog, note->text);
}

// What stands in the field; empty without memory.
GlobalBlock typedText(HWND dialog) {
    const HWND field = GetDlgItem(dialog, IDC_NOTE_TEXT);
    const auto length = static_cast<DWORD>(GetWindowTextLengthA(field));
    GlobalBlock block = GlobalBlock::allocate(Size(length) + Size(1));
    const GlobalView<char> text(block.get());
    if (!text) {
        return {};
    }
    GetWindowTextA(field, text.get(), static_cast<int>(length + 1));
    return block;
}

// By design: the block that was there before is not freed. It is the caller's, who may want to bring it back.
bool store(HWND dialog, NoteRecord *note) {
    GlobalBlock text = note != nullptr ? typedText(dialog) : GlobalBlock();
    if (!text) {
        return false;
    }
    note->text = text.release();
    note->opaque = isChecked(dialog, IDC_NOTE_OPAQUE) ? 1 : 0;
    note->inHeader = isChecked(dialog, IDC_NOTE_IN_HEADER) ? 1 : 0;
    return true;
}

bool command(HWND dialog, int control) {
    switch (control) {
    case IDC_NOTE_ON_IMAGE:
    case IDC_NOTE_IN_HEADER:
        checkPlace(dialog, control);
        return true;
    case IDC_NOTE_TRANSPARENT:
    case IDC_NOTE_OPAQUE:
        checkBackground(dialog, control);
        return true;
    case IDOK:
        EndDialog(dialog, store(dialog, library.noteDialog.note) ? kNoteStored : kNoteCancelled);
        return true;
    case IDCANCEL:
        EndDialog(dialog, kNoteCancelled);
        return true;
    case IDC_NOTE_DELETE:
        EndDialog(dialog, kNoteDeleted);
        return true;
    default:
        return false;
    }
}

INT_PTR background(HDC dc) {
    SetBkColor(dc, kLightGrey);
    return reinterpret_cast<INT_PTR>(library.noteDialog.brush);
}

} // namespace

LONG askForNote(HWND owner, NoteRecord &note) {
    return static_cast<LONG>(
        DialogBoxParamA(library.module, kTemplate, owner, &NoteDlgFn, reinterpret_cast<LPARAM>(&note)));
}

} // namespace vellum

extern "C" INT_PTR VELLUMAPI NoteDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        vellum::open(dialog, reinterpret_cast<NoteRecord *>(lParam));
        return TRUE;
    case WM_CTLCOLORDLG:
    case WM_CTLCOLORSTATIC:
    case WM_CTLCOLORBTN:
        return vellum::background(reinterpret_cast<HDC>(wParam));
    case WM_COMMAND:
        return vellum::command(dialog, LOWORD(wParam)) ? TRUE : FALSE;
    case WM_DESTROY:
        vellum::close();
        return TRUE;
    default:
        return FALSE;
    }
}
