// Windows: dialogs of the library's that are not shown but answered at once.
#pragma once

#include "support/import_patch.h"

namespace vellum::test {

// While it lives, every dialog ends like this; one object at a time.
class AnsweredDialogs {
public:
    explicit AnsweredDialogs(INT_PTR answer) {
        answer_ = answer;
        asked_ = 0;
        patch_.replace("DialogBoxParamA", &respond);
    }

    [[nodiscard]] static int asked() { return asked_; }

private:
    static INT_PTR WINAPI respond(HINSTANCE, LPCSTR, HWND, DLGPROC, LPARAM) {
        ++asked_;
        return answer_;
    }

    static inline INT_PTR answer_ = 0;
    static inline int asked_ = 0;
    ImportPatch patch_;
};

} // namespace vellum::test
