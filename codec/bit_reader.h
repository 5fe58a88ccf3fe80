// Reads the code of a CodecState bit by bit, most significant bit first, through a 32-bit window.
//
// Behind the end of the stream the window goes on with zero bits, so that a code word which ends in the last byte can
// be looked up whole; taking more bits than there were makes refill() and overrun() report the end.
#pragma once

#include "core/error.h"
#include "support/byte_order.h"
#include "vellum32.h"

#include <bit>

namespace vellum {

// The window over the loaded code: the part of a reader that a decoder takes into registers for a while.
class BitWindow {
public:
    // Bits that are surely in the window after a refill.
    static constexpr int kRefilledBits = 24;

    // Makes kRefilledBits bits visible. False, and nothing changed, within the last bytes of the loaded code.
    [[nodiscard]] bool refillLoaded() {
        if (end_ - next_ < static_cast<std::ptrdiff_t>(sizeof(DWORD))) [[unlikely]] {
            return false;
        }
        // Bits below the held ones are ORed with the very bytes they came from, so nothing needs masking.
        window_ |= swapped(load<DWORD>(next_)) >> held_;
        next_ += (31 - held_) >> 3;
        held_ |= kRefilledBits;
        return true;
    }

    // The next count bits (1 to 24), not taken yet.
    [[nodiscard]] unsigned peek(int count) const { return window_ >> (32 - count); }

    // Takes count bits, at most kRefilledBits since the last refill.
    void take(int count) {
        window_ <<= count;
        held_ -= count;
    }

protected:
    const BYTE *next_ = nullptr;
    const BYTE *end_ = nullptr;
    DWORD window_ = 0; // the next bits, first bit on top
    int held_ = 0;     // how many of them count, 0 to 31
};

class BitReader : public BitWindow {
public:
    // The operation that makes more code bytes available: FillCodeBuffer, or its counterpart for framed code.
    using Refill = Error (*)(CodecState &);

    BitReader(CodecState &state, Refill refillCode) : state_(&state), refillCode_(refillCode) {}

    // A copy of the window, and the way back for one that was read on from.
    [[nodiscard]] BitWindow window() const { return *this; }
    void resume(const BitWindow &window) { static_cast<BitWindow &>(*this) = window; }

    // Starts at the state's code pointer, dropping all held bits. Called at the start of every strip.
    void start() {
        next_ = state_->codePointer;
        end_ = next_ + state_->codeBytesLeft;
        window_ = 0;
        held_ = 0;
        paddingBits_ = 0;
        readError_ = Error::None;
    }

    // Makes kRefilledBits bits visible. False when bits have been taken that the stream does not have: see error().
    [[nodiscard]] bool refill() {
        if (refillLoaded()) [[likely]] {
            return true;
        }
        // On a copy, so that the reader itself can live in registers.
        BitReader slow(*this);
        const bool refilled = slow.refillSlowly();
        *this = slow;
        return refilled;
    }

    // Takes the bits up to the next byte boundary of the code.
    void takeRestOfByte() { take(held_ & 7); }

    // Takes zero bits and the 1 bit behind them. False at the end of the stream.
    [[nodiscard]] bool takeZerosAndOne() {
        while (refill()) {
            const int zeros = std::countl_zero(window_);
            if (zeros < held_) {
                take(zeros);
                take(1);
                return !overrun();
            }
            window_ = 0;
            held_ = 0;
        }
        return false;
    }

    // True when more bits have been taken than the stream had.
    [[nodiscard]] bool overrun() const { return held_ < paddingBits_; }

    // After refill(): true when the stream has fewer than count bits left.
    [[nodiscard]] bool endsWithin(int count) const { return held_ - paddingBits_ < count; }

    // Why no more code could be read.
    [[nodiscard]] Error error() const { return readError_; }

private:
    [[nodiscard]] bool refillSlowly();

    CodecState *state_;
    Refill refillCode_;
    int paddingBits_ = 0; // how many of the held ones are zeros behind the end of the stream
    Error readError_ = Error::None;
};

} // namespace vellum
