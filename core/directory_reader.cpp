// The scan of a TIFF's structure and the load of one directory. Both open a stream of their own and close it again.
//
// Counts and offsets are a file's, so lengths are summed in 64 bits, and no memory is asked for before the file was
// seen to hold what a directory claims.
#include "core/directory_reader.h"

#include "core/directory_entries.h"
#include "core/image_directory.h"
#include "support/byte_order.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr WORD kMagic = 42;
constexpr WORD kTagNewSubfileType = 254;
constexpr WORD kTagSubfileType = 255;

// The block of a directory is one byte larger than its records, and so says its capacity.
constexpr DWORD kSpareBytes = 1;

// Entries may share values, but not without end: records beyond this many times the stream's size, and some more for
// small streams, are not worth their memory.
constexpr std::uint64_t kMostSharing = 16;
constexpr std::uint64_t kSmallDirectory = 64 * 1024;

constexpr DWORD kTooLong = 0xFFFFFFFF;

Error readHeader(TiffFileBlock &file, StreamHandle stream) {
    WORD byteOrder = file.byteOrder;
    if (readStream(stream, reinterpret_cast<BYTE *>(&byteOrder), sizeof byteOrder) < 1) {
        return Error::Io;
    }
    if (byteOrder != kIntelOrder && byteOrder != kMotorolaOrder) {
        return Error::BadByteOrder;
    }
    file.byteOrder = byteOrder;
    BYTE magic[2];
    if (!readBytes(stream, magic, sizeof magic)) {
        return Error::Io;
    }
    return load<WORD>(magic, byteOrder) == kMagic ? Error::None : Error::NotTiff;
}

// Takes the image's kind from the two tags that tell it; the later one wins, and replaces the flags as a whole. Values
// that lie outside are not read here: the low byte of their offset stands in.
void noteSubfileType(TiffImageSlot &slot, const DirectoryEntry &entry) {
    if (entry.tag != kTagNewSubfileType && entry.tag != kTagSubfileType) {
        return;
    }
    const BYTE value = entry.valuesOutside() ? static_cast<BYTE>(entry.offset()) : entry.inlineValues()[0];
    // 1, 2 and 3 in SubfileType mean 0, 1 and 2.
    slot.flags = entry.tag == kTagNewSubfileType ? value : static_cast<BYTE>(value - 1);
}

bool scanDirectory(TiffImageSlot &slot, EntryReader &entries) {
    if (!entries.open(slot.directoryOffset)) {
        return false;
    }
    std::uint64_t total = 0;
    while (const auto entry = entries.next()) {
        total += entry->recordLength();
        noteSubfileType(slot, *entry);
    }
    slot.directorySize = static_cast<DWORD>(std::min<std::uint64_t>(total, kTooLong));
    return entries.left() == 0;
}

// Follows the links from the header's on.
Error scanChain(TiffFileBlock &file, StreamHandle stream) {
    EntryReader entries(stream, file.byteOrder);
    file.imageCount = 0;
    // By design: what lies behind the last image that the table has room for is ignored without an error, so a chain
    // that loops ends here too.
    while (file.imageCount < kMaxImages) {
        const LONG linkPosition = tellStream(stream);
        BYTE link[4];
        if (linkPosition == -1 || !readBytes(stream, link, sizeof link)) {
            return Error::Io;
        }
        file.lastLinkPos = static_cast<DWORD>(linkPosition);
        TiffImageSlot &slot = file.images[file.imageCount];
        slot.directoryOffset = load<DWORD>(link, file.byteOrder);
        if (slot.directoryOffset == 0) {
            return Error::None;
        }
        if (!scanDirectory(slot, entries)) {
            if (file.imageCount == 0) {
                return Error::Io;
            }
            // By design: a chain that breaks here is a success with an error pending, for the images before it are
            // good.
            slot.directoryOffset = 0;
            setError(Error::Io);
            return Error::None;
        }
        ++file.imageCount;
    }
    return Error::None;
}

// Whether all values lie inside a file of this size, and the records still take no more room than was found at the
// opening.
bool valuesLieInside(EntryReader &entries, const TiffImageSlot &slot, std::uint64_t streamSize) {
    if (!entries.open(slot.directoryOffset)) {
        return false;
    }
    std::uint64_t total = 0;
    while (const auto entry = entries.next()) {
        total += entry->recordLength();
        if (std::min<std::uint64_t>(total, kTooLong) > slot.directorySize ||
            (entry->valuesOutside() && entry->offset() + entry->valueBytes() > streamSize)) {
            return false;
        }
    }
    return entries.left() == 0;
}

// Decides whether a directory is worth its memory before any is asked for.
Error checkDirectory(EntryReader &entries, const TiffFileBlock &file, const TiffImageSlot &slot, StreamHandle stream) {
    const LONG size = sizeOfStream(stream);
    const DWORD streamSize = static_cast<DWORD>(size);
    // What lies outside a memory stream's block reads as zeros, so there is no outside.
    if (file.pathName[0] != '\0' && (size == -1 || !valuesLieInside(entries, slot, streamSize))) {
        return Error::Io;
    }
    return slot.directorySize > std::uint64_t{streamSize} * kMostSharing + kSmallDirectory ? Error::NoMemory
                                                                                           : Error::None;
}

// The records of a directory on their way into its block.
class RecordWriter {
public:
    RecordWriter(BYTE *records, DWORD bytes) : at_(records), left_(bytes) {}

    // Bytes that no record has taken.
    [[nodiscard]] DWORD left() const { return left_; }

    // Adds a record and gives the place of its values; null when it does not fit.
    BYTE *add(const DirectoryEntry &entry) {
        if (entry.recordLength() > left_) {
            return nullptr;
        }
        static_assert(sizeof(RecordHead) == DirectoryEntry::kRecordHeadBytes);
        const RecordHead head{static_cast<DWORD>(entry.recordLength()), entry.tag, entry.type, entry.count};
        std::memcpy(at_, &head, sizeof head);
        BYTE *data = at_ + sizeof head;
        const auto values = entry.inlineValues();
        std::copy(values.begin(), values.end(), data);
        at_ += head.length;
        left_ -= head.length;
        return data;
    }

private:
    BYTE *at_;
    DWORD left_;
};

bool readRecords(EntryReader &entries, RecordWriter &records, StreamHandle stream, WORD byteOrder) {
    while (const auto entry = entries.next()) {
        BYTE *data = records.add(*entry);
        if (data == nullptr) {
            return false;
        }
        if (!entry->valuesOutside()) {
            continue;
        }
        entries.streamMoved();
        if (seekStream(stream, static_cast<LONG>(entry->offset()), FILE_BEGIN) == -1 ||
            readValues(stream, entry->type, entry->count, data, byteOrder, 0) != Error::None) {
            return false;
        }
    }
    return entries.left() == 0;
}

} // namespace

Error scanFile(TiffFileBlock &file) {
    const Stream stream(openForReading(file));
    if (!stream) {
        return Error::Io;
    }
    const Error error = readHeader(file, stream.get());
    return error != Error::None ? error : scanChain(file, stream.get());
}

Error loadDirectory(const TiffFileBlock &file, DWORD index, GlobalBlock &directory) {
    const TiffImageSlot &slot = file.images[index];
    const Stream stream(openForReading(file));
    if (!stream) {
        return Error::Io;
    }
    EntryReader entries(stream.get(), file.byteOrder);
    if (const Error error = checkDirectory(entries, file, slot, stream.get()); error != Error::None) {
        return error;
    }
    GlobalBlock block = GlobalBlock::allocate(Size(slot.directorySize) + sizeof(DirectoryHead) + kSpareBytes);
    const GlobalView<DirectoryHead> head(block.get());
    if (!head) {
        return Error::NoMemory;
    }
    if (!entries.open(slot.directoryOffset)) {
        return Error::Io;
    }
    *head = {entries.count(), slot.directorySize + kSpareBytes, slot.directorySize};
    RecordWriter records(reinterpret_cast<BYTE *>(head.get() + 1), slot.directorySize);
    if (!readRecords(entries, records, stream.get(), file.byteOrder)) {
        return Error::Io;
    }
    // The file may have become another one since it was scanned.
    head->used -= records.left();
    directory = std::move(block);
    return Error::None;
}

} // namespace vellum
