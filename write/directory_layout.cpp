// Sorts a directory's records and puts them into the file's byte order.
#include "write/directory_layout.h"

#include "core/typed_transfer.h"
#include "support/byte_order.h"
#include "write/foreign_values.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kEntryBytes = 12;
constexpr DWORD kFieldBytes = 4;

// Where a record of the directory lies, in the order of the file: by tag, and of equal tags the first one first.
struct SortKey {
    DWORD tagAndOrdinal;
    DWORD position;

    friend bool operator<(const SortKey &a, const SortKey &b) { return a.tagAndOrdinal < b.tagAndOrdinal; }
};

std::uint64_t valueBytes(const TagRecord &record) {
    return hasForeignValues(record) ? record.dataBytes : std::uint64_t{record.head.count} * typeSize(record.head.type);
}

// By design: a lone SLONG stands outside though it would fit into the field, for it is read as the offset of its value.
bool standsOutside(const TagRecord &record) {
    return valueBytes(record) > kFieldBytes || (record.head.type == kSlong && record.head.count == 1);
}

// What a record claims and does not have would be read from behind it.
bool isWhole(const TagRecord &record) {
    return valueBytes(record) <= record.dataBytes;
}

} // namespace

DWORD DirectoryLayout::entryBytes() const {
    return sizeof(WORD) + count_ * kEntryBytes + sizeof(DWORD);
}

Error DirectoryLayout::measure() {
    Size outside = 0;
    count_ = 0;
    for (auto record = directory_.first(); record; record = directory_.next(*record)) {
        if (!isWhole(*record)) {
            return Error::NoMemory;
        }
        outside = outside + (standsOutside(*record) ? Size(valueBytes(*record)) : Size(0));
        ++count_;
    }
    const auto outsideBytes = outside.fit();
    const auto bytes = (outside + entryBytes()).fit();
    if (!outsideBytes || !bytes) {
        return Error::Io;
    }
    const bool valuesFirst = arrangement_ == Arrangement::ValuesFirst;
    directoryAt_ = valuesFirst ? *outsideBytes : 0;
    valuesAt_ = valuesFirst ? 0 : entryBytes();
    bytes_ = *bytes;
    return Error::None;
}

Error DirectoryLayout::sortRecords() {
    keys_ = GlobalBlock::allocate(Size(std::max<DWORD>(count_, 1)) * sizeof(SortKey));
    const GlobalView<SortKey> keys(keys_.get());
    if (!keys) {
        return Error::NoMemory;
    }
    DWORD filled = 0;
    for (auto record = directory_.first(); record && filled < count_; record = directory_.next(*record)) {
        keys.get()[filled++] = {DWORD{record->head.tag} << 16 | record->ordinal, record->position};
    }
    std::sort(keys.get(), keys.get() + filled);
    return Error::None;
}

Error DirectoryLayout::layOut(DWORD start) {
    if (const Error error = measure(); error != Error::None) {
        return error;
    }
    if (bytes_ > kLastOffset || start > kLastOffset - bytes_) {
        return Error::Io;
    }
    if (const Error error = sortRecords(); error != Error::None) {
        return error;
    }
    block_ = GlobalBlock::allocate(bytes_);
    const GlobalView<BYTE> bytes(block_.get(), 1);
    const GlobalView<SortKey> keys(keys_.get(), 0);
    if (!bytes || !keys) {
        return Error::NoMemory;
    }
    BYTE *directory = bytes.get() + directoryAt_;
    put(directory, static_cast<WORD>(count_));
    BYTE *values = bytes.get() + valuesAt_;
    BYTE *entry = directory + sizeof(WORD);
    for (DWORD i = 0; i < count_; ++i, entry += kEntryBytes) {
        const auto record = directory_.at(keys.get()[i].position);
        if (!record) {
            return Error::NoMemory;
        }
        values = addEntry(entry, *record, values, start + static_cast<DWORD>(values - bytes.get()));
    }
    return Error::None;
}

Error DirectoryLayout::write(StreamHandle stream) const {
    const GlobalView<BYTE> bytes(block_.get(), bytes_);
    return bytes ? writeValues(stream, kByte, bytes_, bytes.get(), kIntelOrder, 0) : Error::NoMemory;
}

template <class Number>
void DirectoryLayout::put(BYTE *to, Number number) const {
    const Number stored = byteOrder_ == kMotorolaOrder ? swapped(number) : number;
    std::memcpy(to, &stored, sizeof stored);
}

// Values in the file's order. A RATIONAL is two LONGs.
void DirectoryLayout::putValues(BYTE *to, const TagRecord &record, DWORD bytes) const {
    std::memcpy(to, record.data, bytes);
    if (byteOrder_ == kMotorolaOrder) {
        const bool rational = record.head.type == kRational && record.head.count > 0;
        const DWORD type = rational ? kLong : DWORD{record.head.type};
        swapValues(to, type, bytes / typeSize(type));
    }
}

// Fills an entry; its values go into the field, with all that the record has for it (the rest stays zero), or to the
// place outside. Result: where the next values outside go.
BYTE *DirectoryLayout::addEntry(BYTE *entry, const TagRecord &record, BYTE *outside, DWORD outsideOffset) const {
    put(entry, record.head.tag);
    put(entry + 2, record.head.type);
    put(entry + 4, record.head.count);
    if (!standsOutside(record)) {
        putValues(entry + 8, record, std::min(record.dataBytes, kFieldBytes));
        return outside;
    }
    const auto bytes = static_cast<DWORD>(valueBytes(record));
    put(entry + 8, outsideOffset);
    putValues(outside, record, bytes);
    return outside + bytes;
}

} // namespace vellum
