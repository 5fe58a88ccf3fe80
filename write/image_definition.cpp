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
constexpr WORD kMostRecords = 0xFFFF; // their number is a 16-bit one

// A directory that is being changed: the locked block, and the bytes of it that records may use.
class EditedDirectory {
public:
    explicit EditedDirectory(HGLOBAL block) : head_(block) {}

    explicit operator bool() const { return static_cast<bool>(head_); }

    // Removes every unwanted record, moving those behind it down.
    template <class Unwanted>
    void removeIf(Unwanted unwanted) {
        DWORD kept = 0;
        WORD count = 0;
        for (DWORD at = 0; at < used();) {
            const DWORD length = lengthAt(at);
            if (!unwanted(load<RecordHead>(records() + at))) {
                std::memmove(records() + kept, records() + at, length);
                kept += length;
                ++count;
            }
            at += length;
        }
        head_->used = kept;
        head_->entryCount = count;
    }

    void remove(WORD tag) {
        removeIf([tag](const RecordHead &record) { return record.tag == tag; });
    }

    // Whether the number of records can grow.
    [[nodiscard]] bool countsOneMore() const { return head_->entryCount < kMostRecords; }

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
        if (!directory.countsOneMore()) {
            return false;
        }
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

template <class Unwanted>
bool remove(TiffHandle tiff, DWORD index, Unwanted unwanted) {
    if (!isImageRegistered(tiff, index)) {
        return false;
    }
    const TiffFileView file(tiff);
    EditedDirectory directory(file ? file->images[index].directory : nullptr);
    if (!directory) {
        return false;
    }
    directory.removeIf(unwanted);
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

bool removeTag(TiffHandle tiff, DWORD index, WORD tag) {
    return remove(tiff, index, [tag](const RecordHead &record) { return record.tag == tag; });
}

bool removeRecords(TiffHandle tiff, DWORD index, bool (*unwanted)(const RecordHead &record)) {
    return remove(tiff, index, unwanted);
}

bool copyDirectory(TiffHandle from, DWORD fromIndex, TiffHandle to, DWORD toIndex) {
    if (!isImageRegistered(from, fromIndex) || !isImageRegistered(to, toIndex)) {
        return false;
    }
    const TiffFileView source(from);
    const TiffFileView target(to);
    const GlobalView<BYTE> records(source ? source->images[fromIndex].directory : nullptr);
    GlobalBlock block = GlobalBlock::allocate(records.bytes());
    const GlobalView<BYTE> copy(block.get(), 1);
    if (!records || !target || !copy) {
        setError(Error::NoMemory);
        return false;
    }
    std::memcpy(copy.get(), records.get(), records.bytes());
    GlobalBlock(target->images[toIndex].directory).reset();
    target->images[toIndex].directory = block.release();
    return true;
}

void undefineImage(TiffHandle tiff, DWORD index) {
    const TiffFileView file(tiff);
    if (file && index < kMaxImages && (file->images[index].flags & kRegistered) != 0) {
        TiffImageSlot &slot = file->images[index];
        GlobalBlock(slot.directory).reset();
        slot.directory = nullptr;
        slot.flags = static_cast<WORD>(slot.flags & ~kRegistered);
        --file->imageCount;
    }
}

} // namespace vellum

extern "C" {

LONG VELLUMAPI DefineTiffImage(TiffHandle tiff) {
    return vellum::defineImage(tiff);
}

LONG VELLUMAPI DefineTiffImageInfoBuffer(TiffHandle tiff, DWORD index, DWORD tag, const void *values, DWORD type,
                                         DWORD count) {
    return vellum::defineTag(tiff, index, static_cast<WORD>(tag), values, static_cast<WORD>(type), count) ? 1 : 0;
}

LONG VELLUMAPI DefineTiffImageInfo(TiffHandle tiff, DWORD index, DWORD tag, DWORD type, DWORD value) {
    // Room for types wider than the one number that there is.
    const DWORD values[] = {value, 0};
    return vellum::defineTag(tiff, index, static_cast<WORD>(tag), values, static_cast<WORD>(type), 1) ? 1 : 0;
}

} // extern "C"
