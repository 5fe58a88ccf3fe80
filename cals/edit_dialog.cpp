// The dialog in which the texts of a CALS header are edited, in place.
#include "cals/cals_dialogs.h"
#include "cals/cals_records.h"
#include "core/library_state.h"
#include "res/resource.h"

#include <cstring>

namespace vellum {
namespace {

constexpr char kTemplate[] = "CALSEDIT";

// Characters that are read from a field.
constexpr int kLongestText = 127;

static_assert(IDC_CALS_EDIT_NOTES - IDC_CALS_EDIT_SRCDOCID == kCalsTextCount - 1);
constexpr int fieldOf(std::size_t text) {
    return IDC_CALS_EDIT_SRCDOCID + static_cast<int>(text);
}

} // namespace

// What one dialog works on. A program may have several open, one from the messages of another.
struct CalsEdit {
    const char *path;
    char *header; // the first of 16 records, locked by the caller
    struct TextRecord {
        char *record = nullptr; // null when the header has none
        char before[kCalsRecordBytes] = {};
    };
    TextRecord texts[kCalsTextCount] = {}; // in the order of CalsNotes
};

namespace {

// Makes an edit the one whose dialog opens next, as long as the object lives.
class OpeningEdit {
public:
    explicit OpeningEdit(CalsEdit &edit) : before_(library.calsEdit) { library.calsEdit = &edit; }
    OpeningEdit(const OpeningEdit &) = delete;
    OpeningEdit &operator=(const OpeningEdit &) = delete;
    ~OpeningEdit() { library.calsEdit = before_; }

private:
    CalsEdit *before_;
};

CalsEdit *editOf(HWND dialog) {
    return reinterpret_cast<CalsEdit *>(GetWindowLongPtrA(dialog, DWLP_USER));
}

void showNumbers(HWND dialog, char *header) {
    constexpr struct {
        int control;
        std::string_view keyword;
    } kNumbers[] = {{IDC_CALS_EDIT_TYPE, kRasterType},
                    {IDC_CALS_EDIT_ORIENTATION, kOrientation},
                    {IDC_CALS_EDIT_COUNTS, kPixelCounts},
                    {IDC_CALS_EDIT_DENSITY, kDensity}};
    for (const auto &[control, keyword] : kNumbers) {
        if (const char *record = findCalsRecord(header, keyword); record != nullptr) {
            SetDlgItemTextA(dialog, control, trimmedCalsRecord(record).data());
        }
    }
}

// Shows the texts. A record that is trimmed has its keyword's last blank no more when it has no text, and could not be
// found again: the records are noted.
void showTexts(HWND dialog, CalsEdit &edit) {
    for (std::size_t i = 0; i < kCalsTextCount; ++i) {
        const std::string_view keyword = kCalsTexts[i].keyword;
        SendDlgItemMessageA(dialog, fieldOf(i), EM_LIMITTEXT, kCalsRecordBytes - 1 - keyword.size(), 0);
        char *record = findCalsRecord(edit.header, keyword);
        edit.texts[i].record = record;
        if (record == nullptr) {
            continue;
        }
        std::memcpy(edit.texts[i].before, record, kCalsRecordBytes);
        trimCalsRecord(record);
        if (std::strlen(record) > keyword.size()) {
            SetDlgItemTextA(dialog, fieldOf(i), record + keyword.size());
        }
    }
}

void open(HWND dialog, CalsEdit *edit) {
    SetWindowLongPtrA(dialog, DWLP_USER, reinterpret_cast<LONG_PTR>(edit));
    if (edit == nullptr || edit->header == nullptr) {
        return;
    }
    if (edit->path != nullptr) {
        showCalsFileName(dialog, IDC_CALS_EDIT_FILE, edit->path);
    }
    showNumbers(dialog, edit->header);
    showTexts(dialog, *edit);
}

void store(HWND dialog, const CalsEdit &edit) {
    for (std::size_t i = 0; i < kCalsTextCount; ++i) {
        char text[kLongestText + 1] = "";
        GetDlgItemTextA(dialog, fieldOf(i), text, sizeof text);
        if (char *record = edit.texts[i].record; record != nullptr) {
            writeCalsRecord(record, kCalsTexts[i].keyword, text);
        }
    }
}

// The records as they were before they were trimmed.
void undo(const CalsEdit &edit) {
    for (const CalsEdit::TextRecord &text : edit.texts) {
        if (text.record != nullptr) {
            std::memcpy(text.record, text.before, kCalsRecordBytes);
        }
    }
}

} // namespace
} // namespace vellum

extern "C" {

INT_PTR VELLUMAPI CalsDllEditDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM) {
    switch (message) {
    case WM_INITDIALOG:
        vellum::open(dialog, vellum::library.calsEdit);
        return TRUE;
    case WM_COMMAND:
        if (const auto *edit = vellum::editOf(dialog); edit != nullptr && LOWORD(wParam) == IDOK) {
            vellum::store(dialog, *edit);
        }
        return vellum::endCalsDialog(dialog, LOWORD(wParam)) ? TRUE : FALSE;
    default:
        return FALSE;
    }
}

LONG VELLUMAPI EditCALSHead(HWND parent, const char *path, char *header) {
    vellum::CalsEdit edit{path, header};
    const vellum::OpeningEdit opening(edit);
    const auto answer =
        static_cast<LONG>(DialogBoxParamA(vellum::library.module, vellum::kTemplate, parent, &CalsDllEditDlgFn, 0));
    if (answer != vellum::kCalsDialogOk) {
        vellum::undo(edit);
    }
    return answer;
}

} // extern "C"
