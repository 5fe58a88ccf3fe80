// The dialog in which the texts of a CALS header are edited. What it works on is in the library's state; the header
// changes in place.
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

static_assert(kCalsTextCount == kCalsEditTexts && IDC_CALS_EDIT_NOTES - IDC_CALS_EDIT_SRCDOCID == kCalsEditTexts - 1);
constexpr int fieldOf(int text) {
    return IDC_CALS_EDIT_SRCDOCID + text;
}

// The dialog's subject, as long as the object lives.
class EditedHeader {
public:
    EditedHeader(const char *path, char *header) {
        library.calsEdit = {};
        library.calsEdit.path = path;
        library.calsEdit.header = header;
    }
    EditedHeader(const EditedHeader &) = delete;
    EditedHeader &operator=(const EditedHeader &) = delete;
    ~EditedHeader() { library.calsEdit = {}; }
};

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
void showTexts(HWND dialog, CalsEditState &state) {
    for (int i = 0; i < kCalsEditTexts; ++i) {
        const std::string_view keyword = kCalsTexts[i].keyword;
        SendDlgItemMessageA(dialog, fieldOf(i), EM_LIMITTEXT, kCalsRecordBytes - 1 - keyword.size(), 0);
        char *record = findCalsRecord(state.header, keyword);
        state.records[i] = record;
        if (record == nullptr) {
            continue;
        }
        trimCalsRecord(record);
        if (std::strlen(record) > keyword.size()) {
            SetDlgItemTextA(dialog, fieldOf(i), record + keyword.size());
        }
    }
}

void open(HWND dialog, CalsEditState &state) {
    if (state.header == nullptr) {
        return;
    }
    if (state.path != nullptr) {
        showCalsFileName(dialog, IDC_CALS_EDIT_FILE, state.path);
    }
    showNumbers(dialog, state.header);
    showTexts(dialog, state);
}

void store(HWND dialog, const CalsEditState &state) {
    for (int i = 0; i < kCalsEditTexts; ++i) {
        char text[kLongestText + 1] = "";
        GetDlgItemTextA(dialog, fieldOf(i), text, sizeof text);
        if (char *record = state.records[i]; record != nullptr) {
            writeCalsRecord(record, kCalsTexts[i].keyword, text);
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
        if (LOWORD(wParam) == IDOK) {
            vellum::store(dialog, vellum::library.calsEdit);
        }
        return vellum::endCalsDialog(dialog, LOWORD(wParam)) ? TRUE : FALSE;
    default:
        return FALSE;
    }
}

LONG VELLUMAPI EditCALSHead(HWND parent, const char *path, char *header) {
    const vellum::EditedHeader edited(path, header);
    return static_cast<LONG>(DialogBoxParamA(vellum::library.module, vellum::kTemplate, parent, &CalsDllEditDlgFn, 0));
}

} // extern "C"
