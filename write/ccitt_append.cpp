// Appending of an image's coded strips, byte for byte and without header or tags, to a file that exists already: fax
// code is collected this way. The image must say where its strips lie and how long they are, in LONGs.
#include "core/image_info.h"
#include "core/library_state.h"
#include "core/loaded_image.h"
#include "support/byte_order.h"

#include <algorithm>

namespace vellum {
namespace {

constexpr DWORD kPieceBytes = 65534;

// Code of this many times the source's size, and some more for small sources, is copied.
constexpr std::uint64_t kMostSharing = 16;
constexpr std::uint64_t kSmallImage = 16u << 20;

// Where an image's strips lie, and how long they are.
class StripList {
public:
    explicit StripList(const LoadedImage &image)
        : offsets_(allValues(image.tiff(), image.index(), Tag::StripOffsets)),
          byteCounts_(allValues(image.tiff(), image.index(), Tag::StripByteCounts)) {}

    // Whether the image has both tags.
    explicit operator bool() const { return offsets_ && byteCounts_; }

    [[nodiscard]] DWORD count() const { return offsets_->count; }
    // Nothing when the tag has fewer values than the image has strips.
    [[nodiscard]] std::optional<DWORD> offset(DWORD strip) const { return valueOf(*offsets_, strip); }
    [[nodiscard]] std::optional<DWORD> bytes(DWORD strip) const { return valueOf(*byteCounts_, strip); }

    // What there is of all of them together in a source of this size.
    [[nodiscard]] std::uint64_t bytesInside(DWORD sourceBytes) const {
        std::uint64_t total = 0;
        for (DWORD strip = 0; strip < count() && offset(strip) && bytes(strip); ++strip) {
            total += std::min(*bytes(strip), sourceBytes - std::min(*offset(strip), sourceBytes));
        }
        return total;
    }

private:
    // By design: the values count as 32-bit ones whatever the tag's type says. The strips of files written here are
    // described so; with SHORTs the copy ends as for a file that cannot be read.
    static std::optional<DWORD> valueOf(const TagValues &tag, DWORD strip) {
        const GlobalView<const BYTE> values(tag.data.get(), 0);
        if (!values || strip >= values.bytes() / sizeof(DWORD)) {
            return std::nullopt;
        }
        return load<DWORD>(values.get() + std::size_t{strip} * sizeof(DWORD));
    }

    std::optional<TagValues> offsets_;
    std::optional<TagValues> byteCounts_;
};

enum class Copied { All, Nothing, Part };

bool isFileThere(const char *path) {
    return GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

// Two ways to write the path of one file. Where they differ and lead to one file all the same, the source's sharing
// keeps the target from being opened.
bool isSamePath(const char *one, const char *other) {
    char fullOne[MAX_PATH];
    char fullOther[MAX_PATH];
    const auto expand = [](const char *path, char(&full)[MAX_PATH]) {
        const DWORD length = GetFullPathNameA(path, sizeof full, full, nullptr);
        return length > 0 && length < sizeof full;
    };
    return expand(one, fullOne) && expand(other, fullOther) && lstrcmpiA(fullOne, fullOther) == 0;
}

bool copyBytes(StreamHandle from, StreamHandle to, DWORD count, BYTE *buffer) {
    while (count > 0) {
        const LONG read = readStream(from, buffer, static_cast<LONG>(std::min(count, kPieceBytes)));
        // A file that ends before the strip does is one that cannot be read.
        if (read <= 0 || writeStream(to, buffer, static_cast<DWORD>(read)) != read) {
            return false;
        }
        count -= static_cast<DWORD>(read);
    }
    return true;
}

bool copyStrips(const StripList &strips, StreamHandle from, StreamHandle to) {
    const GlobalBlock piece = GlobalBlock::allocate(kPieceBytes);
    const GlobalView<BYTE> buffer(piece.get(), kPieceBytes);
    if (!buffer) {
        return false;
    }
    for (DWORD strip = 0; strip < strips.count(); ++strip) {
        const auto offset = strips.offset(strip);
        const auto bytes = strips.bytes(strip);
        if (!offset || !bytes || seekStream(from, static_cast<LONG>(*offset), FILE_BEGIN) == -1 ||
            !copyBytes(from, to, *bytes, buffer.get())) {
            return false;
        }
    }
    return true;
}

// Both files are closed again whatever comes of it.
Copied appendStrips(const StripList &strips, const char *source, const char *target, LONG offset) {
    const Stream from(openFileStream(source, kOpenRead));
    // Strips may share their code, but not without end: a file of a kilobyte is not to fill the disk.
    const LONG size = from ? sizeOfStream(from.get()) : -1;
    if (size < 0 ||
        strips.bytesInside(static_cast<DWORD>(size)) > static_cast<DWORD>(size) * kMostSharing + kSmallImage) {
        return Copied::Nothing;
    }
    const Stream to(openFileStream(target, kOpenAppend));
    if (!to || seekStream(to.get(), offset, FILE_END) == -1) {
        return Copied::Nothing;
    }
    return copyStrips(strips, from.get(), to.get()) ? Copied::All : Copied::Part;
}

Copied append(const char *target, const char *tiffPath, DWORD index, LONG offset) {
    const LoadedImage image(tiffPath, index);
    library.appendedPath[0] = '\0';
    if (!image) {
        return Copied::Nothing;
    }
    const StripList strips(image);
    TiffFileInfo source;
    GetTiffFileInfo(image.tiff(), &source);
    if (!strips || !isFileThere(target) || isSamePath(source.path, target)) {
        return Copied::Nothing;
    }
    lstrcpynA(library.appendedPath, target, sizeof library.appendedPath);
    return appendStrips(strips, source.path, target, offset);
}

} // namespace
} // namespace vellum

extern "C" char *VELLUMAPI AppendCCITTImageFile(const char *target, const char *tiffPath, DWORD image, LONG offset) {
    using namespace vellum;
    // No file has a longer path. The copy, because both paths may be the one that the call before gave.
    char path[MAX_PATH];
    if (target == nullptr) {
        library.appendedPath[0] = '\0';
    }
    if (target == nullptr || tiffPath == nullptr || lstrlenA(target) >= MAX_PATH) {
        return nullptr;
    }
    lstrcpynA(path, target, sizeof path);
    const Copied copied = append(path, tiffPath, image, offset);
    if (copied == Copied::Part) {
        // By design: a file that only part of an image was appended to is not left behind, though it was there before.
        DeleteFileA(path);
    }
    return copied == Copied::All ? library.appendedPath : nullptr;
}
