// A second LZW encoder for tests: entries in chains, codes in a list that is written when a generation of the table
// ends, bits into pairs of bytes, bytes into a code buffer that is emptied when it is full. Slow, and plain to read.
#pragma once

#include "byte_encoding.h"

#include <bit>

namespace vellum::test {

class NaiveLzw {
public:
    // The strips of an image. Lines are taken as they are: differencing is for the caller.
    std::vector<Bytes> encode(const ByteImage &image) {
        std::vector<Bytes> strips;
        for (DWORD first = 0; first < image.height(); first += std::min(image.rowsPerStrip, image.height() - first)) {
            strip_.clear();
            startGeneration(true);
            prefix_ = kEmpty;
            const DWORD end = first + std::min(image.rowsPerStrip, image.height() - first);
            for (DWORD y = first; y < end; ++y) {
                encodeLine(image.lines(y, 1), y + 1 == end);
            }
            finishStrip();
            strips.push_back(strip_);
        }
        return strips;
    }

    int clears = 0;      // that were given out, without those at the strips' beginnings
    int earlyClears = 0; // of these: in front of a full table

private:
    static constexpr int kEmpty = -1;

    void startGeneration(bool startsStrip) {
        list_.assign(startsStrip ? 257 : 258, 0);
        if (startsStrip) {
            list_.push_back(256);
        }
        firstSlot_ = startsStrip ? 257 : 258;
        lines_ = 0;
        suffix_.resize(4096);
        firstChild_.resize(4097);
        nextSibling_.resize(4096);
        firstChild_[0] = 255; // the children of the empty string
        for (int code = 0; code < 256; ++code) {
            suffix_[static_cast<std::size_t>(code)] = static_cast<BYTE>(code);
            nextSibling_[static_cast<std::size_t>(code)] = code - 1;
            firstChildOf(code) = -1;
        }
        next_ = 258;
    }

    int &firstChildOf(int code) { return firstChild_[static_cast<std::size_t>(code + 1)]; }

    void encodeLine(const Bytes &line, bool last) {
        int made = 0;
        for (const BYTE byte : line) {
            int child = firstChildOf(prefix_);
            while (child >= 0 && suffix_[static_cast<std::size_t>(child)] != byte) {
                child = nextSibling_[static_cast<std::size_t>(child)];
            }
            if (child >= 0) {
                prefix_ = child;
                continue;
            }
            suffix_[next_] = byte;
            nextSibling_[next_] = firstChildOf(prefix_);
            firstChildOf(prefix_) = static_cast<int>(next_);
            firstChildOf(static_cast<int>(next_)) = -1;
            list_.push_back(static_cast<unsigned>(prefix_));
            prefix_ = byte;
            ++made;
            if (++next_ == 4095) {
                list_.push_back(256);
                ++clears;
                putGeneration();
                startGeneration(false);
            }
        }
        ++lines_;
        const unsigned lineBits = static_cast<unsigned>(line.size() * 8) & 0xFFFFU;
        if (!last && lines_ >= 3 &&
            static_cast<unsigned>(made) * static_cast<unsigned>(std::bit_width(next_)) > lineBits) {
            list_.push_back(static_cast<unsigned>(prefix_));
            list_.push_back(256);
            ++clears;
            ++earlyClears;
            putGeneration();
            startGeneration(false);
            prefix_ = kEmpty;
        }
    }

    void finishStrip() {
        if (prefix_ != kEmpty) {
            list_.push_back(static_cast<unsigned>(prefix_));
        }
        list_.insert(list_.end(), {257, 0, 0, 0});
        putGeneration();
        for (pending_ = (pending_ + 15) / 16 * 16; pending_ > 0;) {
            putByte();
        }
    }

    void putGeneration() {
        for (std::size_t slot = firstSlot_; slot < list_.size(); ++slot) {
            const int width = slot < 512 ? 9 : slot < 1024 ? 10 : slot < 2048 ? 11 : 12;
            bits_ |= list_[slot] << (32 - width - pending_);
            pending_ += width;
            while (pending_ >= 16) {
                putByte();
                if (free_ != kCodeBufferBytes) {
                    putByte();
                }
            }
        }
    }

    void putByte() {
        strip_.push_back(static_cast<BYTE>(bits_ >> 24));
        bits_ <<= 8;
        pending_ -= 8;
        free_ = free_ == 1 ? kCodeBufferBytes : free_ - 1;
    }

    std::vector<BYTE> suffix_;
    std::vector<int> firstChild_; // of the empty string, then of each code
    std::vector<int> nextSibling_;
    std::vector<unsigned> list_; // codes by slot
    std::size_t firstSlot_ = 0;
    unsigned next_ = 258;
    int prefix_ = kEmpty;
    int lines_ = 0;

    std::uint32_t bits_ = 0;
    int pending_ = 0;
    DWORD free_ = kCodeBufferBytes;
    Bytes strip_;
};

} // namespace vellum::test
