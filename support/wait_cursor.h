// Shows the wait cursor for the lifetime of a long operation and brings the previous cursor back.
#pragma once

#include <windows.h>

namespace vellum {

class WaitCursor {
public:
    WaitCursor() : previous_(SetCursor(LoadCursor(nullptr, IDC_WAIT))) {}
    WaitCursor(const WaitCursor &) = delete;
    WaitCursor &operator=(const WaitCursor &) = delete;
    ~WaitCursor() { SetCursor(previous_); }

private:
    HCURSOR previous_;
};

} // namespace vellum
