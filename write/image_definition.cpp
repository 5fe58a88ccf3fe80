// New images in the table of slots, and the list of tag records that is their directory. The list grows by just what a
// record needs; its entries stand in the order in which they were defined.
#include "write/image_definition.h"

#include "core/image_directory.h"
#include "core/open_file.h"
#include "core/typed_transfer.h"
#include "support/byte_order.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kFirstCapacity = 100;
constexpr DWORD kSpareBytes = 1;

// A directory that is being changed: the locked block, and the bytes of it that records may use.
class EditedDirectory {
public:
    explicit EditedDirectory(HGLOBAL block) : head_(block) {}

    explicit operator bool() const { return static_cast<bool>(head_); }

    // Removes every record of a tag, moving those behind it down.
    void remove(WORD tag) {
        DWORD kept = 0;
        WORD count = 0;
        for (DWORD at = 0; at < used();) {
            const DWORD length = lengthAt(at);
            if (load<RecordHead>(records() + at).tag != tag) {
                std::memmove(records() + kept, records() + at, length);
                kept += length;
                ++count;
            }
            at += length;
        }
        head_->used = kept;
        head_->entryCount = count;
    }

    // Bytes that are free for records.
    [[nodiscard]] DWORD room() const { return capacity() - used(); }

    void append(const RecordHead &record, const void *values) {
        BYTE *at = records() + used();
        std::memcpy(at, &record, sizeof record);
        if (record.length > sizeof record) {
            std::memcpy(at + sizeof record, values, record.length - sizeof record);
        }
        head_->used = used() + record.length;
        ++head_->entryCount;
    }

    [[nodiscard]] DWORD used() const { return std::min(DWORD{head_->used}, capacity()); }
    void setCapacity(DWORD bytes) { head_->capacity = bytes; }

private:
    [[nodiscard]] BYTE *records() const { return reinterpret_cast<BYTE *>(head_.get() + 1); }
    [[nodiscard]] DWORD capacity() const {
        return static_cast<DWORD>(std::min(std::size_t{head_->capacity}, head_.bytes() - sizeof(DirectoryHead)));
    }
    // A record that is not whole takes all that is left.
    [[nodiscard]] DWORD lengthAt(DWORD at) const {
        const DWORD left = used() - at;
        if (left < sizeof(RecordHead)) {
            return left;
        }
        const DWORD length = load<RecordHead>(records() + at).length;
        return length < sizeof(RecordHead) || length > left ? left : length;
    }

    GlobalView<DirectoryHead> head_;
};

// Makes room for a record in the slot's directory.
bool makeRoom(TiffImageSlot &slot, DWORD needed) {
    DWORD used = 0;
    {
        const EditedDirectory directory(slot.directory);
        if (!directory) {
            return false;
        }
        if (directory.room() >= needed) {
            return true;
        }
        used = directory.used();
    }
    const Size capacity = Size(used) + needed;
    GlobalBlock block(slot.directory);
    const bool grown = block.grow(capacity + sizeof(DirectoryHead) + kSpareBytes);
    slot.directory = block.release();
    EditedDirectory directory(slot.directory);
    if (!grown || !directory) {
        return false;
    }
    directory.setCapacity(capacity.fit().value_or(0));
    return true;
}

bool define(TiffImageSlot &slot, WORD tag, const void *values, DWORD type, DWORD count) {
    const auto valueBytes = (Size(count) * typeSize(type)).fit();
    if (!valueBytes || (values == nullptr && *valueBytes > 0)) {
        return false;
    }
    const auto length = (Size(*valueBytes) + sizeof(RecordHead)).fit();
    {
        EditedDirectory directory(slot.directory);
        if (!length || !directory) {
            return false;
        }
        directory.remove(tag);
    }
    if (!makeRoom(slot, *length)) {
        return false;
    }
    EditedDirectory directory(slot.directory);
    if (!directory) {
        return false;
    }
    directory.append({*length, tag, static_cast<WORD>(type), count}, values);
    return true;
}

} // namespace

LONG defineImage(TiffHandle tiff) {
    const TiffFileView file(tiff);
    DWORD index = 0;
    // A slot whose image was dropped is not free: it keeps its handle.
    while (file && index < kMaxImages && file->images[index].directory != nullptr) {
        ++index;
    }
    GlobalBlock block;
    if (file && index < kMaxImages) {
        block = GlobalBlock::allocate(Size(sizeof(DirectoryHead)) + kFirstCapacity + kSpareBytes);
    }
    {
        const GlobalView<DirectoryHead> head(block.get());
        if (!head) {
            setError(Error::NoMemory);
            return -1;
        }
        head->capacity = kFirstCapacity;
    }
    TiffImageSlot &slot = file->images[index];
    slot.directory = block.release();
    slot.flags |= kRegistered;
    ++file->imageCount;
    return static_cast<LONG>(index);
}

bool defineTag(TiffHandle tiff, DWORD index, WORD tag, const void *values, DWORD type, DWORD count) {
    if (!isImageRegistered(tiff, index)) {
        return false;
    }
    const TiffFileView file(tiff);
    if (!file || !define(file->images[index], tag, values, type, count)) {
        setError(Error::NoMemory);
        return false;
    }
    return true;
}

} // namespace vellum

extern "C" {

LONG VELLUMAPI DefineTiffImage(TiffHandle tiff) {
    return vellum::defineImage(tiff);
}

LONG VELLUMAPI DefineTiffImageInfoBuffer(TiffHandle tiff, DWORD index, DWORD tag, const void *values, DWORD type,
                                         DWORD count) {
    return vellum::defineTag(tiff, index, static_cast<WORD>(tag), values, type, count) ? 1 : 0;
}

LONG VELLUMAPI DefineTiffImageInfo(TiffHandle tiff, DWORD index, DWORD tag, DWORD type, DWORD value) {
    // Room for types wider than the one number that there is.
    const DWORD values[] = {value, 0};
    return vellum::defineTag(tiff, index, static_cast<WORD>(tag), values, type, 1) ? 1 : 0;
}

} // extern "C"
