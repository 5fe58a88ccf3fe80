// The entries of one directory in a stream, one after the other. They are read in large pieces: a directory may have
// 65535 entries, a chain a thousand directories.
#pragma once

#include "core/typed_transfer.h"
#include "support/byte_order.h"

#include <array>
#include <cstdint>
#include <optional>

namespace vellum {

struct DirectoryEntry {
    WORD tag;
    WORD type;
    DWORD count;
    std::array<BYTE, 4> rawField; // as in the file
    WORD byteOrder;               // of the file

    [[nodiscard]] std::uint64_t valueBytes() const { return std::uint64_t{count} * typeSize(type); }

    // Of the record that holds the entry with its values.
    [[nodiscard]] std::uint64_t recordLength() const {
        const std::uint64_t bytes = valueBytes();
        return kRecordHeadBytes + (bytes > 4 ? bytes : 4);
    }

    // By design: a lone SLONG counts as the offset of its value, though it would fit into the field. The library never
    // writes one there, and files from elsewhere must be read the same way every time.
    [[nodiscard]] bool valuesOutside() const { return valueBytes() > 4 || (type == kSlong && count == 1); }

    // The field as the offset of values outside.
    [[nodiscard]] DWORD offset() const { return load<DWORD>(rawField.data(), byteOrder); }

    // The field as values of the entry's type, in machine order. A RATIONAL does not fit: without values its four bytes
    // stay as they are.
    [[nodiscard]] std::array<BYTE, 4> inlineValues() const;

    static constexpr DWORD kRecordHeadBytes = 12;
};

class EntryReader {
public:
    EntryReader(StreamHandle stream, WORD byteOrder) : stream_(stream), byteOrder_(byteOrder) {}
    EntryReader(const EntryReader &) = delete;
    EntryReader &operator=(const EntryReader &) = delete;

    // Moves to a directory and reads the number of its entries.
    bool open(DWORD directoryOffset);

    // Entries in the directory, and how many of them next() has not delivered yet.
    [[nodiscard]] WORD count() const { return count_; }
    [[nodiscard]] DWORD left() const { return left_; }

    // The next entry; nothing when the stream ends before it is complete. After the last one the stream stands at the
    // link field, unless it was moved meanwhile.
    std::optional<DirectoryEntry> next() {
        if (left_ == 0 || (inPiece_ == 0 && !readPiece())) {
            return std::nullopt;
        }
        const BYTE *entry = at_;
        at_ += kEntryBytes;
        --inPiece_;
        --left_;
        return DirectoryEntry{load<WORD>(entry, byteOrder_), load<WORD>(entry + 2, byteOrder_),
                              load<DWORD>(entry + 4, byteOrder_), load<std::array<BYTE, 4>>(entry + 8), byteOrder_};
    }

    // To be called when the stream was moved between two entries.
    void streamMoved() { moved_ = true; }

private:
    static constexpr DWORD kEntryBytes = 12;
    static constexpr DWORD kEntriesPerPiece = 2048;

    bool readPiece();

    StreamHandle stream_;
    WORD byteOrder_;
    WORD count_ = 0;
    DWORD left_ = 0;
    bool moved_ = false;
    bool ended_ = false; // the stream ended inside the piece in memory
    LONG nextPiece_ = 0; // stream position behind the piece in memory
    DWORD inPiece_ = 0;  // entries of the piece that are still to be delivered
    const BYTE *at_ = nullptr;
    std::array<BYTE, kEntriesPerPiece * kEntryBytes> piece_;
};

} // namespace vellum
