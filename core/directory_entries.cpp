// Reads directory entries piece by piece and puts their fields into machine order.
#include "core/directory_entries.h"

#include <algorithm>

namespace vellum {

std::array<BYTE, 4> DirectoryEntry::inlineValues() const {
    std::array<BYTE, 4> values = rawField;
    if (byteOrder == kMotorolaOrder) {
        swapValues(values.data(), type, static_cast<DWORD>(values.size()) / typeSize(type));
    }
    return values;
}

bool EntryReader::open(DWORD directoryOffset) {
    if (seekStream(stream_, static_cast<LONG>(directoryOffset), FILE_BEGIN) == -1) {
        return false;
    }
    BYTE number[2];
    if (!readBytes(stream_, number, sizeof number)) {
        return false;
    }
    count_ = load<WORD>(number, byteOrder_);
    left_ = count_;
    moved_ = false;
    ended_ = false;
    inPiece_ = 0;
    nextPiece_ = tellStream(stream_);
    return true;
}

bool EntryReader::readPiece() {
    if (ended_) {
        return false;
    }
    if (moved_ && seekStream(stream_, nextPiece_, FILE_BEGIN) == -1) {
        return false;
    }
    moved_ = false;
    const DWORD wanted = std::min(left_, kEntriesPerPiece) * kEntryBytes;
    const DWORD available = readAvailable(stream_, piece_.data(), wanted);
    ended_ = available < wanted;
    inPiece_ = available / kEntryBytes;
    nextPiece_ = tellStream(stream_);
    at_ = piece_.data();
    return inPiece_ > 0;
}

} // namespace vellum
