// Follows a loaded directory and the same one in its file side by side, and takes from the file what the records lack.
#include "write/foreign_values.h"

#include "core/directory_entries.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kSshort = 8;
constexpr DWORD kSrational = 10;
constexpr DWORD kFloat = 11;
constexpr DWORD kDouble = 12;

constexpr DWORD kFieldBytes = 4;
constexpr DWORD kSpareBytes = 1; // a directory's block has one more than its records

// Entries may share values, but not without end.
constexpr std::uint64_t kMostSharing = 16;
constexpr std::uint64_t kSmallDirectory = 64 * 1024;

// How a foreign type is swapped: as values of a type of the library's, so many for each of its own. No unit: not
// foreign.
struct ForeignType {
    DWORD unit = 0;
    DWORD units = 1;

    [[nodiscard]] DWORD bytes() const { return typeSize(unit) * units; }
};

constexpr ForeignType foreignType(DWORD type) {
    switch (type) {
    case kSshort:
        return {kShort, 1};
    case kFloat:
        return {kLong, 1};
    case kSrational:
        return {kLong, 2};
    case kDouble:
        return {kRational, 1};
    default:
        return {};
    }
}

// Of a record's values in full; 0 for the types that the library reads in full itself.
std::uint64_t fullBytes(DWORD type, DWORD count) {
    const ForeignType foreign = foreignType(type);
    return foreign.unit == 0 ? 0 : std::uint64_t{count} * foreign.bytes();
}

bool hasForeignTypes(const ImageDirectory &directory) {
    for (auto record = directory.first(); record; record = directory.next(*record)) {
        if (fullBytes(record->head.type, record->head.count) > 0) {
            return true;
        }
    }
    return false;
}

// Finds the entry that a record was loaded from. Since then records may have been removed, and defined at the end, so
// the ones that are left have their entries in the same order.
class LoadedEntries {
public:
    LoadedEntries(const ForeignSource &source, std::uint64_t streamSize)
        : reader_(source.stream, source.byteOrder), streamSize_(streamSize) {}

    bool open(DWORD directoryOffset) { return reader_.open(directoryOffset); }

    // The entry of a record, if its values are foreign and lie in the stream.
    std::optional<DirectoryEntry> foreignEntry(const TagRecord &record) {
        while (const auto entry = reader_.next()) {
            if (entry->tag == record.head.tag && entry->type == record.head.type && entry->count == record.head.count) {
                const std::uint64_t bytes = fullBytes(entry->type, entry->count);
                const bool inside = bytes <= kFieldBytes || entry->offset() + bytes <= streamSize_;
                return bytes > 0 && inside ? entry : std::nullopt;
            }
        }
        failed_ = failed_ || reader_.left() > 0;
        return std::nullopt;
    }

    void streamMoved() { reader_.streamMoved(); }
    // Whether the directory could not be read to its end.
    [[nodiscard]] bool failed() const { return failed_; }

private:
    EntryReader reader_;
    std::uint64_t streamSize_;
    bool failed_ = false;
};

std::uint64_t fetchedBytes(const DirectoryEntry &entry) {
    return std::max<std::uint64_t>(fullBytes(entry.type, entry.count), kFieldBytes);
}

class Fetcher {
public:
    Fetcher(const ForeignSource &source, WORD byteOrder, std::uint64_t streamSize)
        : source_(source), swaps_(source.byteOrder != byteOrder), streamSize_(streamSize) {}

    // Makes a directory's block anew, with all values.
    Error fetch(const ImageDirectory &directory, GlobalBlock &full) {
        std::uint64_t most = 0;
        if (const Error error = measure(directory, most); error != Error::None) {
            return error;
        }
        full = GlobalBlock::allocate(Size(most) + sizeof(DirectoryHead) + kSpareBytes);
        const GlobalView<DirectoryHead> head(full.get());
        if (!head) {
            return Error::NoMemory;
        }
        BYTE *const records = reinterpret_cast<BYTE *>(head.get() + 1);
        BYTE *at = records;
        LoadedEntries entries(source_, streamSize_);
        if (!entries.open(source_.directoryOffset)) {
            return Error::Io;
        }
        for (auto record = directory.first(); record; record = directory.next(*record)) {
            const auto entry = entries.foreignEntry(*record);
            if (!addRecord(at, *record, entry)) {
                return Error::Io;
            }
            entries.streamMoved();
        }
        *head = {directory.entryCount(), static_cast<DWORD>(most) + kSpareBytes, static_cast<DWORD>(at - records)};
        return entries.failed() ? Error::Io : Error::None;
    }

private:
    // The most that the records can take.
    Error measure(const ImageDirectory &directory, std::uint64_t &most) const {
        std::uint64_t loaded = 0;
        LoadedEntries entries(source_, streamSize_);
        if (!entries.open(source_.directoryOffset)) {
            return Error::Io;
        }
        for (auto record = directory.first(); record; record = directory.next(*record)) {
            const auto entry = entries.foreignEntry(*record);
            loaded += record->head.length;
            most += sizeof(RecordHead) + std::max<std::uint64_t>(record->dataBytes, entry ? fetchedBytes(*entry) : 0);
        }
        if (entries.failed()) {
            return Error::Io;
        }
        return most > loaded + streamSize_ * kMostSharing + kSmallDirectory ? Error::NoMemory : Error::None;
    }

    // Copies a record, or writes it with the values of its entry. The place moves on behind it.
    bool addRecord(BYTE *&at, const TagRecord &record, const std::optional<DirectoryEntry> &entry) const {
        RecordHead head = record.head;
        BYTE *const data = at + sizeof head;
        const DWORD bytes = entry ? static_cast<DWORD>(fetchedBytes(*entry)) : 0;
        if (entry && !readFull(*entry, data, bytes)) {
            return false;
        }
        if (entry && isLoadedFrom(record, *entry, data)) {
            head.length = static_cast<DWORD>(sizeof head) + bytes;
            swap(head.type, data, bytes);
        } else {
            std::memcpy(data, record.data, record.dataBytes);
        }
        std::memcpy(at, &head, sizeof head);
        at += head.length;
        return true;
    }
    // One that was defined since has other bytes than the file. What was taken for values of one byte each is the field
    // itself, or the first of the values.
    static bool isLoadedFrom(const TagRecord &record, const DirectoryEntry &entry, const BYTE *values) {
        const BYTE *loaded = entry.valuesOutside() ? values : entry.rawField.data();
        return record.head.length == entry.recordLength() && std::memcmp(loaded, record.data, record.dataBytes) == 0;
    }
    // As they stand in the file.
    bool readFull(const DirectoryEntry &entry, BYTE *to, DWORD bytes) const {
        if (bytes == kFieldBytes) {
            std::copy(entry.rawField.begin(), entry.rawField.end(), to);
            return true;
        }
        return seekStream(source_.stream, static_cast<LONG>(entry.offset()), FILE_BEGIN) != -1 &&
               readBytes(source_.stream, to, bytes);
    }
    void swap(DWORD type, BYTE *values, DWORD bytes) const {
        if (swaps_) {
            const DWORD unit = foreignType(type).unit;
            swapValues(values, unit, bytes / typeSize(unit));
        }
    }

    const ForeignSource &source_;
    bool swaps_;
    std::uint64_t streamSize_;
};

} // namespace

bool isForeignType(DWORD type) {
    return fullBytes(type, 1) > 0;
}

bool hasForeignValues(const TagRecord &record) {
    const std::uint64_t bytes = fullBytes(record.head.type, record.head.count);
    return bytes > 0 && record.dataBytes == std::max<std::uint64_t>(bytes, kFieldBytes);
}

Error fetchForeignValues(TiffHandle tiff, DWORD index, const ForeignSource &source, WORD byteOrder) {
    GlobalBlock full;
    {
        const ImageDirectory directory(tiff, index);
        if (!directory) {
            return Error::NoMemory;
        }
        // An image that is in no file yet has nothing to fetch.
        if (source.directoryOffset == 0 || !hasForeignTypes(directory)) {
            return Error::None;
        }
        const LONG size = sizeOfStream(source.stream);
        if (size < 0) {
            return Error::Io;
        }
        Fetcher fetcher(source, byteOrder, static_cast<DWORD>(size));
        if (const Error error = fetcher.fetch(directory, full); error != Error::None) {
            return error;
        }
    }
    const TiffFileView file(tiff);
    if (!file) {
        return Error::NoMemory;
    }
    GlobalBlock(file->images[index].directory).reset();
    file->images[index].directory = full.release();
    return Error::None;
}

} // namespace vellum
