// CALS headers and files put together record by record for tests.
#pragma once

#include "support/global_memory.h"
#include "support/paths.h"
#include "vellum32.h"

#include <algorithm>
#include <string>
#include <vector>

namespace vellum::test {

using Records = std::vector<std::string>;

// A header of these records, each filled up with blanks (or something else); the records that are missing are blank.
inline Bytes calsHeader(const Records &records, char padding = ' ') {
    Bytes header(2048, static_cast<BYTE>(padding));
    for (std::size_t i = 0; i < records.size() && i < 16; ++i) {
        std::copy_n(records[i].begin(), std::min<std::size_t>(records[i].size(), 128),
                    header.begin() + static_cast<std::ptrdiff_t>(i * 128));
    }
    return header;
}

// The records of a picture without texts.
inline Records pictureRecords(const std::string &counts = "000009,000004", const std::string &density = "0200") {
    return {"rtype: 1", "rorient: 090,270", "rpelcnt: " + counts, "rdensty: " + density};
}

inline Records with(Records records, const std::string &record) {
    records.push_back(record);
    return records;
}

// Without those that begin so.
inline Records without(Records records, const std::string &keyword) {
    std::erase_if(records, [&](const std::string &record) { return record.starts_with(keyword); });
    return records;
}

// A file of a header and what follows it.
inline Bytes calsFile(const Records &records, const Bytes &data = {}) {
    Bytes file = calsHeader(records);
    file.insert(file.end(), data.begin(), data.end());
    return file;
}

// The records of a header as they stand there, all of their 128 characters.
inline Records recordsOf(const Bytes &header) {
    Records records;
    for (std::size_t i = 0; i + 128 <= header.size() && i < 2048; i += 128) {
        records.emplace_back(header.begin() + static_cast<std::ptrdiff_t>(i),
                             header.begin() + static_cast<std::ptrdiff_t>(i + 128));
    }
    return records;
}

inline std::string blankPadded(std::string record) {
    record.resize(128, ' ');
    return record;
}

// A block that the library handed out, freed with the object. It must come unlocked.
class OwnedBlock {
public:
    explicit OwnedBlock(HGLOBAL block) : block_(block) {}
    OwnedBlock(const OwnedBlock &) = delete;
    OwnedBlock &operator=(const OwnedBlock &) = delete;
    ~OwnedBlock() {
        if (block_ != nullptr) {
            GlobalFree(block_);
        }
    }

    explicit operator bool() const { return block_ != nullptr; }
    [[nodiscard]] HGLOBAL get() const { return block_; }
    [[nodiscard]] Bytes bytes() const { return blockBytes(block_); }

private:
    HGLOBAL block_;
};

// A header locked as long as the object lives.
class LockedHeader {
public:
    explicit LockedHeader(const Bytes &header) : block_(makeBlock(header)) {
        bytes_ = static_cast<char *>(GlobalLock(block_));
    }
    LockedHeader(const LockedHeader &) = delete;
    LockedHeader &operator=(const LockedHeader &) = delete;
    ~LockedHeader() {
        GlobalUnlock(block_);
        GlobalFree(block_);
    }

    [[nodiscard]] char *get() const { return bytes_; }
    [[nodiscard]] Bytes content() const { return {bytes_, bytes_ + GlobalSize(block_)}; }
    // The text of a record up to its NUL, or its 128 characters.
    [[nodiscard]] std::string record(std::size_t index) const {
        const std::string whole(bytes_ + index * 128, 128);
        return whole.substr(0, whole.find('\0'));
    }

private:
    HGLOBAL block_;
    char *bytes_;
};

} // namespace vellum::test
