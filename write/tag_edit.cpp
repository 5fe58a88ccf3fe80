// Editing the tags of an image of a file on disk. The file is built anew beside the old one, image by image, and takes
// its place when it is complete: whatever fails before leaves the old file as it was.
#include "core/tiff_header.h"
#include "support/byte_order.h"
#include "write/chain_end.h"
#include "write/directory_writer.h"
#include "write/foreign_values.h"
#include "write/image_copier.h"
#include "write/image_definition.h"
#include "write/open_tiff.h"
#include "write/replacement_file.h"

namespace vellum {
namespace {

constexpr DWORD kFirstDirectory = 8; // behind the header
constexpr DWORD kMostTag = 0xFFFF;

// What is done to one image of the file.
struct TagEdit {
    enum class Kind { Define, Remove };
    Kind kind;
    DWORD image;
    DWORD tag;
    DWORD type = 0;
    const void *values = nullptr;
    DWORD count = 0;
};

Error apply(const TagEdit &edit, TiffHandle tiff) {
    bool done = true;
    const bool jpeg = firstValue(tiff, edit.image, Tag::Compression) == DWORD{VELLUM_KEY_JPEG};
    if (edit.kind == TagEdit::Kind::Define && (edit.tag > kMostTag || isForeignType(edit.type))) {
        // A number that is no tag's would replace another tag; of wider values only the first bytes would be stored.
        return Error::BadTag;
    }
    switch (edit.kind) {
    case TagEdit::Kind::Define:
        done = defineTag(tiff, edit.image, static_cast<WORD>(edit.tag), edit.values, edit.type, edit.count);
        break;
    case TagEdit::Kind::Remove:
        // What cannot be a tag is not there.
        done = edit.tag > kMostTag || removeTag(tiff, edit.image, static_cast<WORD>(edit.tag));
        break;
    }
    if (!done) {
        return Error::NoMemory;
    }
    // The coding tables of a JPEG image are moved for this compression only.
    const bool stillJpeg = firstValue(tiff, edit.image, Tag::Compression) == DWORD{VELLUM_KEY_JPEG};
    return jpeg && !stillJpeg ? Error::BadTag : Error::None;
}

// The images of a file on their way into another, each linked from the one before.
class Rebuild {
public:
    Rebuild(TiffHandle tiff, StreamHandle source, StreamHandle target)
        : tiff_(tiff), source_(source), target_(target) {}

    Error run(const TagEdit &edit) {
        const DWORD images = countImages(tiff_, VELLUM_ALL_IMAGES);
        Error error = writeNewHeader(target_, kIntelOrder, kFirstDirectory);
        for (DWORD index = 0; index < images && error == Error::None; ++index) {
            error = copy(index, edit);
            dropImage(tiff_, index);
        }
        return error;
    }

private:
    Error copy(DWORD index, const TagEdit &edit) {
        if (const Error error = load(index); error != Error::None) {
            return error;
        }
        if (index == edit.image) {
            if (const Error error = apply(edit, tiff_); error != Error::None) {
                return error;
            }
        }
        return hasMoreDirectories(index) ? Error::BadTag : write(index);
    }

    // Registers an image, with all values of its tags.
    Error load(DWORD index) {
        setError(Error::None);
        if (!registerImage(tiff_, index)) {
            return lastError();
        }
        ForeignSource source{source_, 0, 0};
        {
            const TiffFileView file(tiff_);
            if (!file) {
                return Error::NoMemory;
            }
            source.directoryOffset = file->images[index].directoryOffset;
            source.byteOrder = file->byteOrder;
        }
        return fetchForeignValues(tiff_, index, source, kIntelOrder);
    }

    // Directories that are in no chain would be left behind in the old file, which will be gone.
    bool hasMoreDirectories(DWORD index) const {
        const ImageDirectory directory(tiff_, index);
        for (auto record = directory ? directory.first() : std::nullopt; record; record = directory.next(*record)) {
            if (leadsElsewhere(record->head)) {
                return true;
            }
        }
        return false;
    }

    Error write(DWORD index) {
        CopiedImage image(tiff_, index, source_);
        if (const Error error = image.find(); error != Error::None) {
            return error;
        }
        const LONG start = seekStream(target_, 0, FILE_END);
        if (start < 0) {
            return Error::Io;
        }
        if (const Error error = image.layOut(static_cast<DWORD>(start), kIntelOrder); error != Error::None) {
            return error;
        }
        if (const Error error = image.write(target_); error != Error::None) {
            return error;
        }
        const Error error = writeLink(target_, link_, static_cast<DWORD>(start), kIntelOrder);
        link_ = image.linkPosition();
        return error;
    }

    TiffHandle tiff_;
    StreamHandle source_;
    StreamHandle target_;
    DWORD link_ = kFirstLinkPosition;
};

Error checkFile(TiffHandle tiff, StreamHandle source, LONG image) {
    const TiffFileView file(tiff);
    if (!file) {
        return Error::NoMemory;
    }
    if (image < 0 || static_cast<DWORD>(image) >= file->imageCount) {
        return Error::IndexOutOfRange;
    }
    if (file->imageCount < kMaxImages) {
        return Error::None;
    }
    // What follows behind the last image that can be counted would be lost.
    DWORD link = file->lastLinkPos;
    return findLastLink(source, file->byteOrder, 1, link);
}

Error rebuildInto(ReplacementFile &target, const char *path, LONG image, const TagEdit &edit) {
    // Open all the time: nobody may change the file meanwhile.
    const Stream source(openFileStream(path, kOpenRead));
    if (!source) {
        return Error::Io;
    }
    const OpenTiff tiff(path, T_READ);
    if (!tiff) {
        return Error::NoMemory;
    }
    // A chain that breaks: the images behind the break would be lost for good.
    if (lastError() == Error::Io) {
        return Error::Io;
    }
    if (const Error error = checkFile(tiff.get(), source.get(), image); error != Error::None) {
        return error;
    }
    if (const Error error = target.create(path); error != Error::None) {
        return error;
    }
    const Error error = Rebuild(tiff.get(), source.get(), target.stream()).run(edit);
    // It takes a while, so it is done as long as the old file is held.
    return error == Error::None ? target.flush() : error;
}

Error editFile(const char *fileName, LONG image, const TagEdit &edit) {
    if (fileName == nullptr || *fileName == '\0') {
        return Error::Io;
    }
    char path[kPathBytes];
    const DWORD length = GetFullPathNameA(fileName, sizeof path, path, nullptr);
    if (length == 0 || length >= sizeof path) {
        return length == 0 ? Error::Io : Error::PathTooLong;
    }
    ReplacementFile target;
    if (const Error error = rebuildInto(target, path, image, edit); error != Error::None) {
        return error;
    }
    return target.replace(path);
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI AddTiffTagToImage(const char *fileName, LONG index, DWORD tag, DWORD type, const void *values,
                                  DWORD count) {
    using vellum::TagEdit;
    return vellum::recorded(vellum::editFile(
        fileName, index, {TagEdit::Kind::Define, static_cast<DWORD>(index), tag, type, values, count}));
}

DWORD VELLUMAPI DeleteTiffTagOfImage(const char *fileName, LONG index, DWORD tag) {
    using vellum::TagEdit;
    return vellum::recorded(vellum::editFile(fileName, index, {TagEdit::Kind::Remove, static_cast<DWORD>(index), tag}));
}

} // extern "C"
