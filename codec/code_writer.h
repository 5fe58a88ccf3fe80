// Writes code into the code buffer of a CodecState bit by bit, most significant bit first, through a 32-bit window.
//
// The buffer is full at its capacity: then exactly so many bytes go out, and what a word has left over in the buffer's
// slack moves to the front. A failed flush is remembered; from then on nothing goes out any more (see error()).
#pragma once

#include "codec/run_codes.h"
#include "core/error.h"
#include "support/byte_order.h"
#include "vellum32.h"

namespace vellum {

// The window in front of the written code: the part of a writer that an encoder takes into registers for a while.
class CodeWindow {
public:
    void put(CodeWord word) { put(word.bits(), word.count()); }

    // Count bits (at most 31) that lie on top, with zeros below them.
    void put(DWORD bits, unsigned count) {
        window_ |= bits >> used_;
        used_ += count;
        if (used_ >= kWindowBits) {
            const DWORD stored = swapped(window_);
            std::memcpy(next_, &stored, sizeof stored);
            next_ += sizeof stored;
            used_ -= kWindowBits;
            window_ = bits << (count - used_);
        }
    }

    [[nodiscard]] bool reached(const BYTE *end) const { return next_ >= end; }

protected:
    static constexpr unsigned kWindowBits = 32;

    BYTE *next_ = nullptr; // where the window will go
    DWORD window_ = 0;     // the bits that are not stored yet, first bit on top; zeros below them
    unsigned used_ = 0;    // how many they are, 0 to 31
};

class CodeWriter : public CodeWindow {
public:
    // The operation that empties the code buffer: FlushCodeBuffer, or its counterpart for framed code.
    using Flush = Error (*)(CodecState &);

    CodeWriter(CodecState &state, Flush flush) : state_(state), flush_(flush) {}
    CodeWriter(const CodeWriter &) = delete;
    CodeWriter &operator=(const CodeWriter &) = delete;

    // Starts at the state's code pointer.
    void start() {
        next_ = state_.codePointer;
        full_ = state_.codeBuffer + state_.codeCapacity;
    }

    // A copy of the window, and the way back for one that was written on with.
    [[nodiscard]] CodeWindow window() const { return *this; }
    void resume(const CodeWindow &window) { static_cast<CodeWindow &>(*this) = window; }

    // Bytes of code that surely find room after the next call.
    static constexpr DWORD kRoom = 64;

    // Makes room. To be called at least once every kRoom bytes, and after the last of them.
    void makeRoom() {
        if (next_ >= full_) [[unlikely]] {
            empty();
        }
    }
    // The same for a window that is being written with.
    void makeRoom(CodeWindow &window) {
        if (window.reached(full_)) [[unlikely]] {
            resume(window);
            empty();
            window = *this;
        }
    }

    // Zero bits until so many bits of the current byte are used (0 to 7; none if they are already).
    void alignTo(unsigned usedBits) { put(0, (usedBits - used_) & 7); }

    // Hands all whole bytes to the state: its code pointer and counts are right then.
    void handOver();

    // Why code could not be written, or Error::None.
    [[nodiscard]] Error error() const { return error_; }

private:
    void empty();

    CodecState &state_;
    Flush flush_;
    BYTE *full_ = nullptr; // where the code buffer's slack begins
    Error error_ = Error::None;
};

} // namespace vellum
