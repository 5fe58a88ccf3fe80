// The reader's way across the ends of the code buffer, a byte at a time.
#include "codec/bit_reader.h"

namespace vellum {

bool BitReader::refillSlowly() {
    if (overrun()) {
        return false;
    }
    // The quick way may have left bits of the bytes to come below the held ones.
    window_ = held_ == 0 ? 0 : window_ & ~(0xFFFFFFFFu >> held_);
    while (held_ < kRefilledBits) {
        if (next_ == end_ && readError_ == Error::None) {
            readError_ = refillCode_(*state_);
            if (readError_ == Error::None) {
                next_ = state_->codePointer;
                end_ = next_ + state_->codeBytesLeft;
            }
        }
        if (next_ == end_) {
            held_ += 8;
            paddingBits_ += 8;
        } else {
            window_ |= DWORD{*next_++} << (kRefilledBits - held_);
            held_ += 8;
        }
    }
    return true;
}

} // namespace vellum
