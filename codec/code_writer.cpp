// What the writer does at the ends of the code buffer and for those who count its bytes.
#include "codec/code_writer.h"

#include "codec/buffers.h"

#include <algorithm>

namespace vellum {

static_assert(CodeWriter::kRoom + sizeof(DWORD) <= kCodeSlack);

void CodeWriter::empty() {
    while (next_ >= full_) {
        const BYTE *const end = next_;
        state_.codePointer = full_;
        state_.codeBytesLeft = 0;
        if (error_ == Error::None) {
            error_ = flush_(state_);
        }
        next_ = std::copy(static_cast<const BYTE *>(full_), end, state_.codeBuffer);
    }
}

void CodeWriter::handOver() {
    while (used_ >= 8) {
        *next_++ = static_cast<BYTE>(window_ >> 24);
        window_ <<= 8;
        used_ -= 8;
    }
    makeRoom();
    state_.codePointer = next_;
    state_.codeBytesLeft = static_cast<DWORD>(full_ - next_);
}

} // namespace vellum
