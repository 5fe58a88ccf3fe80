// The dialog that lists the records of a CALS header.
#include "cals/cals_dialogs.h"
#include "cals/cals_header.h"
#include "cals/cals_records.h"
#include "core/library_state.h"
#include "res/resource.h"
#include "support/gdi_objects.h"
#include "support/screen_dc.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

namespace vellum {
namespace {

constexpr char kTemplate[] = "CALSINFO";

constexpr int kKeywordColumn = 12;

// A keyword's column, what stands behind it, and a record.
struct ListLine {
    char text[kKeywordColumn + 2 + kCalsRecordBytes];
};

ListLine listLine(const char *record) {
    const CalsString trimmed = trimmedCalsRecord(record);
    ListLine line;
    if (const char *colon = std::strchr(trimmed.data(), ':'); colon != nullptr) {
        const auto keyword = static_cast<int>(std::min<std::ptrdiff_t>(colon - trimmed.data(), kKeywordColumn));
        std::snprintf(line.text, sizeof line.text, "%-*.*s: %s", kKeywordColumn, keyword, trimmed.data(), colon + 1);
    } else {
        std::snprintf(line.text, sizeof line.text, "%s", trimmed.data());
    }
    return line;
}

// The records of one list box, drawn when all of them are there.
class RecordList {
public:
    explicit RecordList(HWND list) : list_(list) {
        send(WM_SETFONT, reinterpret_cast<WPARAM>(GetStockObject(SYSTEM_FIXED_FONT)), FALSE);
        send(LB_RESETCONTENT);
        send(WM_SETREDRAW, FALSE);
    }
    RecordList(const RecordList &) = delete;
    RecordList &operator=(const RecordList &) = delete;
    ~RecordList() {
        send(LB_SETHORIZONTALEXTENT, static_cast<WPARAM>((longest_ + 1) * characterWidth()));
        send(WM_SETREDRAW, TRUE);
        InvalidateRect(list_, nullptr, TRUE);
    }

    void add(const char *line) {
        longest_ = std::max(longest_, lstrlenA(line));
        send(LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(line));
    }

private:
    void send(UINT message, WPARAM wParam = 0, LPARAM lParam = 0) { SendMessageA(list_, message, wParam, lParam); }

    // Of the fixed-pitch font; 0, which means no scroll bar, when the screen cannot be asked.
    static int characterWidth() {
        const ScreenDc screen;
        const SelectedObject font(screen.get(), GetStockObject(SYSTEM_FIXED_FONT));
        TEXTMETRICA metrics{};
        return screen && GetTextMetricsA(screen.get(), &metrics) ? metrics.tmAveCharWidth : 0;
    }

    HWND list_;
    int longest_ = 0;
};

void listRecords(RecordList &list, const char *header) {
    for (std::size_t i = 0; i < kCalsRecords; ++i) {
        list.add(listLine(header + i * kCalsRecordBytes).text);
    }
}

void open(HWND dialog, const char *path) {
    showCalsFileName(dialog, IDC_CALS_INFO_FILE, path == nullptr ? "" : path);
    const GlobalBlock block = readCalsHead(path);
    RecordList list(GetDlgItem(dialog, IDC_CALS_INFO_RECORDS));
    const GlobalView<char> header(block.get(), VELLUM_CALS_BLOCK);
    if (header) {
        listRecords(list, header.get());
    } else {
        list.add(errorMessage(number(lastError())));
    }
}

} // namespace
} // namespace vellum

extern "C" {

INT_PTR VELLUMAPI CalsDllInfoDlgFn(HWND dialog, UINT message, WPARAM wParam, LPARAM lParam) {
    switch (message) {
    case WM_INITDIALOG:
        vellum::open(dialog, reinterpret_cast<const char *>(lParam));
        return TRUE;
    case WM_COMMAND:
        return vellum::endCalsDialog(dialog, LOWORD(wParam)) ? TRUE : FALSE;
    default:
        return FALSE;
    }
}

LONG VELLUMAPI ShowCALSInfo(HWND parent, const char *path) {
    return static_cast<LONG>(DialogBoxParamA(vellum::library.module, vellum::kTemplate, parent, &CalsDllInfoDlgFn,
                                             reinterpret_cast<LPARAM>(path)));
}

} // extern "C"
