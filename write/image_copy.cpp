// Copying an image from one TIFF to the end of another. All that can be wrong with the image is found before the
// destination is touched, and the link to the copy is written last, so that a failure leaves the chain as it was.
#include "core/directory_entries.h"
#include "core/tiff_header.h"
#include "support/byte_order.h"
#include "write/chain_end.h"
#include "write/directory_writer.h"
#include "write/foreign_values.h"
#include "write/image_copier.h"
#include "write/image_definition.h"
#include "write/open_tiff.h"

namespace vellum {
namespace {

constexpr DWORD kHeaderBytes = 8;

// Registers an image for the length of a scope. One that was registered before stays so.
class RegisteredImage {
public:
    RegisteredImage(TiffHandle tiff, DWORD index)
        : tiff_(tiff), index_(index), wasRegistered_(isImageRegistered(tiff, index)),
          registered_(wasRegistered_ || registerImage(tiff, index)) {}
    RegisteredImage(const RegisteredImage &) = delete;
    RegisteredImage &operator=(const RegisteredImage &) = delete;
    ~RegisteredImage() {
        if (registered_ && !wasRegistered_) {
            dropImage(tiff_, index_);
        }
    }
    explicit operator bool() const { return registered_; }

private:
    TiffHandle tiff_;
    DWORD index_;
    bool wasRegistered_;
    bool registered_;
};

// A new image of a TIFF: dropped at the end of the scope if it was kept, and else as if it had never been defined.
class NewSlot {
public:
    explicit NewSlot(TiffHandle tiff) : tiff_(tiff), index_(defineImage(tiff)) {}
    NewSlot(const NewSlot &) = delete;
    NewSlot &operator=(const NewSlot &) = delete;
    ~NewSlot() {
        if (index_ >= 0 && kept_) {
            dropImage(tiff_, index());
        } else if (index_ >= 0) {
            undefineImage(tiff_, index());
        }
    }
    explicit operator bool() const { return index_ >= 0; }
    [[nodiscard]] DWORD index() const { return static_cast<DWORD>(index_); }
    void keep() { kept_ = true; }

private:
    TiffHandle tiff_;
    LONG index_;
    bool kept_ = false;
};

bool isInMemory(const TiffFileBlock &file) {
    return file.pathName[0] == '\0';
}

// By their full paths; the system looks further, for it does not open a file for writing that is open here.
bool sameFile(const TiffFileBlock &a, const TiffFileBlock &b) {
    char first[MAX_PATH];
    char second[MAX_PATH];
    const DWORD lengths[] = {GetFullPathNameA(a.pathName, sizeof first, first, nullptr),
                             GetFullPathNameA(b.pathName, sizeof second, second, nullptr)};
    return lengths[0] > 0 && lengths[0] < MAX_PATH && lengths[1] > 0 && lengths[1] < MAX_PATH &&
           lstrcmpiA(first, second) == 0;
}

// A file that was there and could not be opened is not to be replaced or written into: its chain is not known.
bool isLockedAway(const TiffFileBlock &file) {
    return !isInMemory(file) && (file.openFlags & (OF_CREATE | OF_READWRITE)) == 0 && file.imageCount == 0;
}

Error checkDestination(const TiffFileBlock &source, const TiffFileBlock &destination) {
    // There is one memory stream at a time.
    if (isInMemory(source) ? isInMemory(destination) : sameFile(source, destination)) {
        return Error::Io;
    }
    if (isLockedAway(destination)) {
        return Error::Io;
    }
    return destination.imageCount >= kMaxImages || chainIsFull(destination, 0) ? Error::IndexOutOfRange : Error::None;
}

// Writes the laid out image at its place, and then the link to it.
Error writeAndLink(const CopiedImage &image, StreamHandle stream, DWORD start, DWORD link, WORD byteOrder) {
    if (const Error error = image.write(stream); error != Error::None) {
        return error;
    }
    return writeLink(stream, link, start, byteOrder);
}

// A new file: header, directory, data.
Error writeNewFile(CopiedImage &image, TiffHandle tiff, const TiffFileBlock &destination) {
    if (const Error error = image.layOut(kHeaderBytes, destination.byteOrder); error != Error::None) {
        return error;
    }
    const Stream stream(openForWriting(destination, destination.openFlags));
    if (!stream) {
        return Error::Io;
    }
    if (const Error error = writeTiffHeader(tiff, stream.get(), 0); error != Error::None) {
        return error;
    }
    return writeAndLink(image, stream.get(), kHeaderBytes, destination.lastLinkPos, destination.byteOrder);
}

// The link that a copy is chained to. The chain may have grown since the file was opened, been moved, or not have been
// readable to its end then, so it is followed from its start. A new TIFF in memory, which has no
// flags, has nothing yet.
Error findLink(const TiffFileBlock &destination, StreamHandle stream, DWORD &link) {
    link = kFirstLinkPosition;
    if (const Error error = checkByteOrder(destination.byteOrder, stream); error != Error::None) {
        return error;
    }
    if (destination.openFlags == 0) {
        return Error::None;
    }
    return findLastLink(stream, destination.byteOrder, kMaxImages, link);
}

// Behind what a stream holds.
Error writeAtEnd(CopiedImage &image, const TiffFileBlock &destination, StreamHandle stream, DWORD &start) {
    DWORD link = 0;
    if (const Error error = findLink(destination, stream, link); error != Error::None) {
        return error;
    }
    const LONG end = seekStream(stream, 0, FILE_END);
    if (end < 0) {
        return Error::Io;
    }
    start = static_cast<DWORD>(end);
    if (const Error error = image.layOut(start, destination.byteOrder); error != Error::None) {
        return error;
    }
    return writeAndLink(image, stream, start, link, destination.byteOrder);
}

// The same, whatever the file was opened for.
Error append(CopiedImage &image, TiffFileBlock &destination, DWORD &start) {
    const Stream stream(openForWriting(destination, kOpenAppend));
    if (!stream) {
        return Error::Io;
    }
    const Error error = writeAtEnd(image, destination, stream.get(), start);
    storeBackMemoryTiff(destination, stream.get());
    return error;
}

// Writes the image and keeps the destination's record up with it.
Error writeCopy(TiffHandle tiff, DWORD index, StreamHandle source) {
    const TiffFileView destination(tiff);
    if (!destination) {
        return Error::NoMemory;
    }
    DWORD start = kHeaderBytes;
    DWORD linkPosition = 0;
    {
        CopiedImage image(tiff, index, source);
        Error error = image.find();
        if (error == Error::None) {
            error = (destination->openFlags & OF_CREATE) != 0 ? writeNewFile(image, tiff, *destination)
                                                              : append(image, *destination, start);
        }
        if (error != Error::None) {
            return error;
        }
        linkPosition = image.linkPosition();
    }
    // The next image copied to this handle goes behind this one.
    destination->lastLinkPos = linkPosition;
    destination->openFlags = OF_READWRITE;
    destination->images[index].directoryOffset = start;
    destination->images[index].directorySize = scannedBytes(ImageDirectory(tiff, index));
    return Error::None;
}

Error copyImage(TiffHandle from, DWORD fromIndex, TiffHandle to) {
    const TiffFileView source(from);
    const TiffFileView destination(to);
    if (!source || !destination) {
        return Error::NoMemory;
    }
    if (const Error error = checkDestination(*source, *destination); error != Error::None) {
        return error;
    }
    // Only errors of this call count.
    setError(Error::None);
    const RegisteredImage image(from, fromIndex);
    if (!image) {
        return lastError();
    }
    // Open before the destination is, so that the two are not the same file under two names.
    const Stream stream(openForReading(*source));
    if (!stream) {
        return Error::Io;
    }
    NewSlot copy(to);
    if (!copy || !copyDirectory(from, fromIndex, to, copy.index())) {
        return Error::NoMemory;
    }
    const ForeignSource foreign{stream.get(), source->images[fromIndex].directoryOffset, source->byteOrder};
    if (const Error error = fetchForeignValues(to, copy.index(), foreign, destination->byteOrder);
        error != Error::None) {
        return error;
    }
    // What would lead to places that are not copied.
    removeRecords(to, copy.index(), leadsElsewhere);
    if (const Error error = writeCopy(to, copy.index(), stream.get()); error != Error::None) {
        return error;
    }
    copy.keep();
    return Error::None;
}

DWORD copyBetweenFiles(const char *from, DWORD index, const char *to, DWORD mode) {
    if (from == nullptr || to == nullptr) {
        return failed(Error::Io);
    }
    const OpenTiff destination(to, mode);
    if (!destination) {
        return 0;
    }
    const OpenTiff source(from, T_READ);
    return source ? recorded(copyImage(source.get(), index, destination.get())) : 0;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI CopyTiffImage(TiffHandle source, DWORD sourceIndex, TiffHandle destination) {
    return vellum::recorded(vellum::copyImage(source, sourceIndex, destination));
}

DWORD VELLUMAPI CopyTiffImageInFile(const char *sourceName, DWORD sourceIndex, const char *destinationName,
                                    DWORD mode) {
    return vellum::copyBetweenFiles(sourceName, sourceIndex, destinationName, mode);
}

} // extern "C"
