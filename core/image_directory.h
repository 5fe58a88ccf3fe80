// The directory of a registered image in memory: its layout, and the view through which tags are looked up.
//
// The block holds the head and then the records back to back, in the order of the file's directory. Values are in
// machine order; those that were held in the entry's field are stored with all its 4 bytes.
#pragma once

#include "core/tiff_file.h"

#include <cstddef>
#include <optional>

namespace vellum {

#pragma pack(push, 1)

struct DirectoryHead {
    WORD entryCount;
    DWORD capacity; // bytes for records
    DWORD used;     // bytes taken by records
};
static_assert(sizeof(DirectoryHead) == 10);

struct RecordHead {
    DWORD length; // of the record, with its values
    WORD tag;
    WORD type;
    DWORD count;
};
static_assert(sizeof(RecordHead) == 12);

#pragma pack(pop)

struct TagRecord {
    RecordHead head;
    const BYTE *data; // the values; valid as long as the view
    DWORD dataBytes;
    DWORD position; // of the record in the block
    WORD ordinal;   // of the record in the directory
};

// Empty when the image is not registered; sets error 3 for an index outside the table of slots.
class ImageDirectory {
public:
    ImageDirectory(TiffHandle tiff, DWORD index);

    explicit operator bool() const { return static_cast<bool>(block_); }

    // The first record with this tag. Sets error 13 when there is none.
    [[nodiscard]] std::optional<TagRecord> find(DWORD tag) const;

    [[nodiscard]] WORD entryCount() const { return block_->entryCount; }

    // The records one after the other; nothing behind the last one.
    [[nodiscard]] std::optional<TagRecord> first() const { return recordAt(sizeof(DirectoryHead), 0); }
    [[nodiscard]] std::optional<TagRecord> next(const TagRecord &record) const {
        return recordAt(record.position + record.head.length, record.ordinal + 1);
    }

    // The record at a position that another one told.
    [[nodiscard]] std::optional<TagRecord> at(DWORD position) const { return recordAt(position, 0); }

    // Writes the tag numbers of all records in order, one number each.
    void listTags(DWORD *numbers) const;

private:
    [[nodiscard]] std::optional<TagRecord> recordAt(DWORD position, DWORD ordinal) const;

    GlobalView<const DirectoryHead> block_;
};

} // namespace vellum
