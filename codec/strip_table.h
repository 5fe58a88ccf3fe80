// What a run keeps at hand from beginning to end: blocks that it would else lock over and over (the strip table, since
// an image may have a strip a line; an uncompressed TIFF in memory), and the strip offsets themselves. A table that a
// caller of the buffer operations brings is locked for every look.
#pragma once

#include "core/library_state.h"
#include "support/global_block.h"
#include "vellum32.h"

#include <optional>

namespace vellum {

// Keeps a block locked; the one that was locked before is taken up again at the end.
class RunLock {
public:
    RunLock(LockedBlock &place, HGLOBAL block) : place_(place), view_(block, 0), outer_(place) {
        place = {view_ ? block : nullptr, view_.get(), static_cast<DWORD>(view_.bytes())};
    }
    RunLock(const RunLock &) = delete;
    RunLock &operator=(const RunLock &) = delete;
    ~RunLock() { place_ = outer_; }

private:
    LockedBlock &place_;
    GlobalView<const BYTE> view_;
    LockedBlock outer_;
};

// The offset of a strip as the table has it; nothing when the table has no such entry.
std::optional<DWORD> stripOffset(const CodecState &state, DWORD strip);

} // namespace vellum
