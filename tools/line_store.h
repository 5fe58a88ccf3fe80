// The lines of a picture, in the order in which they came, in pieces of about a megabyte, so that memory is used for
// what is there and not for what a file promises.
#pragma once

#include "vellum32.h"

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace tool {

class LineStore {
public:
    // Lines have at least a byte.
    explicit LineStore(std::size_t lineBytes)
        : lineBytes_(lineBytes), linesPerPiece_(std::max<std::size_t>(kPieceBytes / lineBytes, 1)) {}

    void add(const BYTE *line) {
        if (count_ % linesPerPiece_ == 0) {
            pieces_.emplace_back();
            pieces_.back().reserve(pieces_.size() == 1 ? lineBytes_ : lineBytes_ * linesPerPiece_);
        }
        pieces_.back().insert(pieces_.back().end(), line, line + lineBytes_);
        ++count_;
    }

    // A line that never came is zero.
    void copy(DWORD index, BYTE *to) const {
        if (index < count_) {
            const std::vector<BYTE> &piece = pieces_[index / linesPerPiece_];
            std::memcpy(to, piece.data() + index % linesPerPiece_ * lineBytes_, lineBytes_);
        } else {
            std::memset(to, 0, lineBytes_);
        }
    }

    [[nodiscard]] DWORD count() const { return count_; }

private:
    static constexpr std::size_t kPieceBytes = std::size_t{1} << 20;

    std::size_t lineBytes_;
    std::size_t linesPerPiece_;
    std::vector<std::vector<BYTE>> pieces_;
    DWORD count_ = 0;
};

// A decode into a store: the user value of storeLine is its address.
struct StoringRun {
    LineStore &lines;
    std::string progressLabel;
    DWORD height;

    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(this)); }
};

// A LineFunc that adds the line to the run's store and shows the progress.
DWORD VELLUMAPI storeLine(BYTE *line, DWORD index, DWORD userValue);

} // namespace tool
