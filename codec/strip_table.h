// The strip offsets of a run. A run over a TIFF keeps its table locked from beginning to end, since an image may have a
// strip a line; a table that a caller of the buffer operations brings is locked for every look.
#pragma once

#include "core/library_state.h"
#include "support/global_block.h"
#include "vellum32.h"

#include <optional>

namespace vellum {

// Keeps a table locked; the one that was locked before is taken up again at the end.
class StripTableLock {
public:
    explicit StripTableLock(HGLOBAL table) : view_(table, 0), outer_(library.stripTable) {
        library.stripTable = {table, view_.get(), static_cast<DWORD>(view_.bytes())};
    }
    StripTableLock(const StripTableLock &) = delete;
    StripTableLock &operator=(const StripTableLock &) = delete;
    ~StripTableLock() { library.stripTable = outer_; }

private:
    GlobalView<const BYTE> view_;
    LockedStripTable outer_;
};

// The offset of a strip as the table has it; nothing when the table has no such entry.
std::optional<DWORD> stripOffset(const CodecState &state, DWORD strip);

} // namespace vellum
