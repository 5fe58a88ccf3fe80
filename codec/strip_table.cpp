// Looks into strip tables of 16-bit and 32-bit entries.
#include "codec/strip_table.h"

#include "support/byte_order.h"

namespace vellum {
namespace {

constexpr DWORD kTypeShort = 3;

template <class Entry>
std::optional<DWORD> entryOf(const BYTE *table, std::size_t bytes, DWORD strip) {
    if (table == nullptr || strip >= bytes / sizeof(Entry)) {
        return std::nullopt;
    }
    return load<Entry>(table + strip * sizeof(Entry));
}

} // namespace

std::optional<DWORD> stripOffset(const CodecState &state, DWORD strip) {
    const auto look = [&state, strip](const BYTE *table, std::size_t bytes) {
        return state.offsetsType == kTypeShort ? entryOf<WORD>(table, bytes, strip)
                                               : entryOf<DWORD>(table, bytes, strip);
    };
    if (const LockedBlock &locked = library.stripTable; locked.block == state.stripOffsets) {
        return look(locked.bytes, locked.size);
    }
    const GlobalView<const BYTE> table(state.stripOffsets, 1);
    return look(table.get(), table.bytes());
}

} // namespace vellum
