// Arrays of TIFF field values between a stream and memory: the sizes of the field types, byte order, bit order, and the
// pieces in which streams are read and written.
#include "core/typed_transfer.h"

#include "support/byte_order.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kCopySlack = 50;

// What a transfer moves: RATIONALs are two LONGs each, so that numerator and denominator are swapped by themselves.
struct Transfer {
    DWORD type;
    DWORD count;
    DWORD bytes;
};

// Nothing when no buffer can hold the values.
std::optional<Transfer> transferOf(DWORD type, DWORD count) {
    const bool rational = type == kRational;
    const DWORD unit = rational ? kLong : type;
    const std::uint64_t values = std::uint64_t{count} * (rational ? 2 : 1);
    const auto bytes = Size(values * typeSize(unit)).fit();
    if (!bytes) {
        return std::nullopt;
    }
    return Transfer{unit, static_cast<DWORD>(values), *bytes};
}

bool swapsBytes(const Transfer &transfer, LONG byteOrder) {
    return byteOrder == kMotorolaOrder && typeSize(transfer.type) >= 2;
}

template <class Value>
void swapEach(BYTE *values, DWORD count) {
    for (; count > 0; --count, values += sizeof(Value)) {
        const Value value = swapped(load<Value>(values));
        std::memcpy(values, &value, sizeof value);
    }
}

bool writePieces(StreamHandle stream, const BYTE *bytes, DWORD count) {
    while (count > 0) {
        const LONG written = writeStream(stream, bytes, std::min(count, kTransferPiece));
        if (written < 1) {
            return false;
        }
        bytes += written;
        count -= std::min(count, static_cast<DWORD>(written));
    }
    return true;
}

// The bytes that a write converts: a copy of the caller's or, when there is no memory for one, the caller's own.
class ConvertedBytes {
public:
    ConvertedBytes(BYTE *bytes, DWORD count) : bytes_(bytes), count_(count) {}

    // Each conversion asks for the copy again if an earlier one did not get it.
    BYTE *writable() {
        if (!copy_) {
            copy_ = GlobalBlock::allocate(Size(count_) + kCopySlack);
            view_.emplace(copy_.get(), count_);
            if (*view_) {
                std::memcpy(view_->get(), bytes_, count_);
            }
        }
        return view_ && *view_ ? view_->get() : bytes_;
    }
    [[nodiscard]] const BYTE *get() const { return view_ && *view_ ? view_->get() : bytes_; }

private:
    BYTE *bytes_;
    DWORD count_;
    GlobalBlock copy_;
    std::optional<GlobalView<BYTE>> view_;
};

} // namespace

DWORD typeSize(DWORD type) {
    switch (type) {
    case kShort:
        return 2;
    case kLong:
    case kSlong:
        return 4;
    case kRational:
        return 8;
    default:
        // By design: SSHORT and SRATIONAL too, so that they are moved byte for byte in both directions.
        return 1;
    }
}

void swapValues(BYTE *values, DWORD type, DWORD count) {
    switch (typeSize(type)) {
    case 2:
        swapEach<WORD>(values, count);
        break;
    case 4:
        swapEach<DWORD>(values, count);
        break;
    case 8:
        for (; count > 0; --count, values += 8) {
            std::reverse(values, values + 8);
        }
        break;
    default:
        break;
    }
}

Error readValues(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder) {
    const auto transfer = transferOf(type, count);
    if (!transfer || !readBytes(stream, buffer, transfer->bytes)) {
        return Error::Io;
    }
    if (swapsBytes(*transfer, byteOrder)) {
        swapValues(buffer, transfer->type, transfer->count);
    }
    if (fillOrder == kReversedBits) {
        reverseBits(buffer, transfer->bytes);
    }
    return Error::None;
}

Error writeValues(StreamHandle stream, DWORD type, DWORD count, BYTE *buffer, LONG byteOrder, LONG fillOrder) {
    const auto transfer = transferOf(type, count);
    if (!transfer) {
        return Error::Io;
    }
    if (transfer->bytes == 0) {
        return Error::None;
    }
    if (buffer == nullptr) {
        return Error::Io;
    }
    ConvertedBytes converted(buffer, transfer->bytes);
    if (swapsBytes(*transfer, byteOrder)) {
        swapValues(converted.writable(), transfer->type, transfer->count);
    }
    if (fillOrder == kReversedBits) {
        reverseBits(converted.writable(), transfer->bytes);
    }
    return writePieces(stream, converted.get(), transfer->bytes) ? Error::None : Error::Io;
}

} // namespace vellum
