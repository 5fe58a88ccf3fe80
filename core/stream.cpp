// File and memory streams behind one handle. Memory streams are slots of a library-wide table; their blocks belong to
// whoever opened them, so writing may make a block larger but nothing here frees one.
#include "core/stream.h"

#include "core/library_state.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace vellum {
namespace {

using Position = std::int64_t;

constexpr StreamHandle kTheMemoryStream = -2;
constexpr LONG kFailed = -1;
constexpr Position kLastPosition = std::numeric_limits<LONG>::max();

enum class Kind { File, Memory, NeverOpened, Invalid };

constexpr Kind kindOf(StreamHandle stream) {
    if (stream > 0) {
        return Kind::File;
    }
    if (stream == 0 || stream <= -kMemoryStreamSlots) {
        return Kind::Invalid;
    }
    // -1 would be slot 1, which is never handed out: it answers as a free slot does.
    return stream == kNoStream ? Kind::NeverOpened : Kind::Memory;
}

MemoryStreamSlot &slotOf(StreamHandle stream) {
    return library.memoryStreams[-stream];
}

// By design: the memory reader always delivers what it is asked for; callers' limits (directory sizes, strip byte
// counts) keep reads inside the data. Bytes outside the block, on either side, read as zeros.
LONG readMemory(MemoryStreamSlot &slot, BYTE *buffer, LONG count) {
    const Position end = Position{slot.position} + count;
    if (end > kLastPosition) {
        return kFailed;
    }
    if (const LockedBlock &locked = library.memoryTiff;
        locked.block != nullptr && locked.block == slot.block && slot.position >= 0 && end <= Position{locked.size}) {
        std::memcpy(buffer, locked.bytes + slot.position, static_cast<std::size_t>(count));
        slot.position = static_cast<LONG>(end);
        return count;
    }
    const GlobalView<const BYTE> block(slot.block, 0);
    if (!block) {
        return kFailed;
    }
    if (count == 0) {
        return 0;
    }
    if (slot.position >= 0 && static_cast<std::size_t>(end) <= block.bytes()) [[likely]] {
        std::memcpy(buffer, block.get() + slot.position, static_cast<std::size_t>(count));
        slot.position = static_cast<LONG>(end);
        return count;
    }
    const auto inside = [&block](Position position) {
        return std::clamp<Position>(position, 0, static_cast<Position>(block.bytes()));
    };
    const Position from = inside(slot.position);
    const Position to = inside(end);
    const auto before = static_cast<std::size_t>(std::min<Position>(from - slot.position, count));
    const auto copied = static_cast<std::size_t>(to - from);
    if (copied == 0) {
        std::memset(buffer, 0, static_cast<std::size_t>(count));
    } else {
        std::memset(buffer, 0, before);
        std::memcpy(buffer + before, block.get() + from, copied);
        std::memset(buffer + before + copied, 0, static_cast<std::size_t>(count) - before - copied);
    }
    slot.position = static_cast<LONG>(end);
    return count;
}

// Makes the slot's block exactly this large. When that fails the slot is left without a block, and the block with its
// owner.
void resizeBlock(MemoryStreamSlot &slot, Position bytes) {
    const Size size(static_cast<std::uint64_t>(bytes));
    if (slot.block == nullptr) {
        slot.block = GlobalBlock::allocate(size).release();
        return;
    }
    GlobalBlock block(slot.block);
    const bool resized = block.grow(size);
    slot.block = block.release();
    if (!resized) {
        slot.block = nullptr;
    }
}

LONG writeMemory(MemoryStreamSlot &slot, const BYTE *buffer, DWORD count) {
    const Position end = Position{slot.position} + count;
    if (slot.position < 0 || end > kLastPosition) {
        return kFailed;
    }
    if (end > slot.size) {
        slot.size = static_cast<LONG>(end);
        resizeBlock(slot, end);
    }
    const GlobalView<BYTE> block(slot.block, static_cast<std::size_t>(end));
    if (!block) {
        return kFailed;
    }
    if (count > 0) {
        std::memcpy(block.get() + slot.position, buffer, count);
    }
    slot.position = static_cast<LONG>(end);
    return static_cast<LONG>(count);
}

LONG seekMemory(MemoryStreamSlot &slot, LONG offset, LONG origin) {
    Position position = slot.position;
    switch (origin) {
    case FILE_BEGIN:
        position = offset;
        break;
    case FILE_CURRENT:
        position += offset;
        break;
    case FILE_END:
        // By design: the offset counts back from the end, unlike a file's. Only a position before the start is refused.
        position = Position{slot.size} - offset;
        if (position < 0 || position > kLastPosition) {
            return kFailed;
        }
        slot.position = static_cast<LONG>(position);
        return slot.position;
    default:
        return slot.position;
    }
    // By design: a position before the start is taken; reading there gives zeros, writing fails.
    if (position > slot.size || position < std::numeric_limits<LONG>::min()) {
        return kFailed;
    }
    slot.position = static_cast<LONG>(position);
    return slot.position;
}

LONG sizeOfFile(HFILE file) {
    const LONG position = _llseek(file, 0, FILE_CURRENT);
    if (position == kFailed) {
        return kFailed;
    }
    const LONG size = _llseek(file, 0, FILE_END);
    _llseek(file, position, FILE_BEGIN);
    return size;
}

// OpenFile refuses full paths that its record of 128 characters cannot hold; the system itself does not.
bool tooLongForOpenFile(const char *path) {
    char full[MAX_PATH];
    const DWORD length = GetFullPathNameA(path, sizeof full, full, nullptr);
    return length >= OFS_MAXPATHNAME;
}

StreamHandle openLongPath(const char *path, UINT flags) {
    const DWORD access = GENERIC_READ | ((flags & OF_READWRITE) != 0 ? GENERIC_WRITE : 0);
    const DWORD sharing = (flags & OF_SHARE_DENY_READ) == OF_SHARE_DENY_READ ? FILE_SHARE_WRITE : FILE_SHARE_READ;
    const DWORD creation = (flags & OF_CREATE) != 0 ? CREATE_ALWAYS : OPEN_EXISTING;
    HANDLE file = CreateFileA(path, access, sharing, nullptr, creation, FILE_ATTRIBUTE_NORMAL, nullptr);
    return file == INVALID_HANDLE_VALUE ? kNoStream : static_cast<StreamHandle>(reinterpret_cast<LONG_PTR>(file));
}

} // namespace

StreamHandle openMemoryStream(HGLOBAL block, DWORD size) {
    // By design: always this slot, in use or not. There is one memory stream at a time; who opens a second one takes
    // the slot over.
    slotOf(kTheMemoryStream) = {block, 0, static_cast<LONG>(size)};
    return kTheMemoryStream;
}

HGLOBAL memoryStreamBlock(StreamHandle stream) {
    return kindOf(stream) == Kind::Memory ? slotOf(stream).block : nullptr;
}

StreamHandle openFileStream(const char *path, UINT flags) {
    if (path == nullptr) {
        return kNoStream;
    }
    OFSTRUCT opened;
    const HFILE file = OpenFile(path, &opened, flags);
    if (file != HFILE_ERROR) {
        return file;
    }
    return tooLongForOpenFile(path) ? openLongPath(path, flags) : kNoStream;
}

LONG readStream(StreamHandle stream, BYTE *buffer, LONG count) {
    if (count < 0 || (buffer == nullptr && count > 0)) {
        return kFailed;
    }
    switch (kindOf(stream)) {
    case Kind::File:
        return static_cast<LONG>(_lread(stream, buffer, static_cast<UINT>(count)));
    case Kind::Memory:
        return readMemory(slotOf(stream), buffer, count);
    case Kind::NeverOpened:
    case Kind::Invalid:
        break;
    }
    return kFailed;
}

LONG writeStream(StreamHandle stream, const BYTE *buffer, DWORD count) {
    if (buffer == nullptr && count > 0) {
        return kFailed;
    }
    switch (kindOf(stream)) {
    case Kind::File:
        return static_cast<LONG>(_lwrite(stream, reinterpret_cast<LPCSTR>(buffer), count));
    case Kind::Memory:
        return writeMemory(slotOf(stream), buffer, count);
    case Kind::NeverOpened:
    case Kind::Invalid:
        break;
    }
    return kFailed;
}

LONG seekStream(StreamHandle stream, LONG offset, LONG origin) {
    switch (kindOf(stream)) {
    case Kind::File:
        return _llseek(stream, offset, origin);
    case Kind::Memory:
        return seekMemory(slotOf(stream), offset, origin);
    case Kind::NeverOpened:
    case Kind::Invalid:
        break;
    }
    return kFailed;
}

LONG tellStream(StreamHandle stream) {
    switch (kindOf(stream)) {
    case Kind::File:
        return _llseek(stream, 0, FILE_CURRENT);
    case Kind::Memory:
        return slotOf(stream).position;
    case Kind::NeverOpened:
    case Kind::Invalid:
        break;
    }
    return kFailed;
}

LONG sizeOfStream(StreamHandle stream) {
    switch (kindOf(stream)) {
    case Kind::File:
        return sizeOfFile(stream);
    case Kind::Memory:
        return slotOf(stream).size;
    case Kind::NeverOpened:
    case Kind::Invalid:
        break;
    }
    return kFailed;
}

LONG closeStream(StreamHandle stream) {
    switch (kindOf(stream)) {
    case Kind::File:
        return _lclose(stream);
    case Kind::Memory:
        slotOf(stream) = {};
        return 0;
    case Kind::NeverOpened:
        return 0;
    case Kind::Invalid:
        break;
    }
    // By design: a handle that can be no slot comes back as it is.
    return stream == 0 ? kFailed : stream;
}

DWORD readAvailable(StreamHandle stream, BYTE *buffer, DWORD count) {
    DWORD done = 0;
    while (done < count) {
        const LONG read = readStream(stream, buffer + done, static_cast<LONG>(std::min(count - done, kTransferPiece)));
        if (read < 1) {
            break;
        }
        done += static_cast<DWORD>(read);
    }
    return done;
}

bool readBytes(StreamHandle stream, BYTE *buffer, DWORD count) {
    return readAvailable(stream, buffer, count) == count;
}

} // namespace vellum
