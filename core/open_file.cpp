// Opening and closing TIFFs, and the register of loaded images. A handle's block is locked only inside a call; a failed
// open leaves no block behind.
#include "core/open_file.h"

#include "core/directory_reader.h"
#include "core/library_state.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr DWORD kOpenModeRead = T_READ;
constexpr DWORD kOpenModeAppend = T_APPEND;
constexpr DWORD kFirstLink = 4; // of the header

constexpr bool readsExisting(DWORD mode) {
    return mode == kOpenModeRead || mode == kOpenModeAppend;
}

bool opensForReading(const char *path) {
    return static_cast<bool>(Stream(openFileStream(path, kOpenRead)));
}

bool fileExists(const char *path) {
    return path != nullptr && GetFileAttributesA(path) != INVALID_FILE_ATTRIBUTES;
}

// What the record of a TIFF starts with, apart from the path.
struct Source {
    HGLOBAL memory;
    DWORD size;
    DWORD newFileFlags;
    DWORD existingFlags;
};

bool modify(TiffFileBlock &file, const char *path, LONG byteOrder) {
    bool stored = true;
    if (path != nullptr) {
        const std::size_t length = std::strlen(path) + 1;
        stored = length <= kPathBytes;
        if (stored) {
            std::memmove(file.pathName, path, length);
        } else {
            setError(Error::PathTooLong);
        }
    }
    if (byteOrder != 0) {
        if (byteOrder != VELLUM_BYTE_ORDER_II && byteOrder != VELLUM_BYTE_ORDER_MM) {
            setError(Error::BadByteOrder);
            return false;
        }
        file.byteOrder = static_cast<WORD>(byteOrder);
    }
    return stored;
}

TiffHandle open(const char *path, DWORD mode, const Source &source) {
    GlobalBlock block = GlobalBlock::allocate(sizeof(TiffFileBlock));
    const TiffFileView file(block.get());
    if (!file) {
        setError(Error::NoMemory);
        return nullptr;
    }
    if (!modify(*file, path, VELLUM_BYTE_ORDER_II)) {
        return nullptr;
    }
    file->lastLinkPos = kFirstLink;
    file->memHandle = source.memory;
    file->memSize = source.size;
    file->openFlags = source.newFileFlags;
    if (readsExisting(mode)) {
        file->openFlags = source.existingFlags;
        if (const Error error = scanFile(*file); error != Error::None) {
            setError(error);
            return nullptr;
        }
    }
    return block.release();
}

bool drop(TiffFileBlock &file, DWORD index) {
    TiffImageSlot &slot = file.images[index];
    if ((slot.flags & kRegistered) == 0) {
        return false;
    }
    // The slot keeps the stale handle: only kRegistered says that it is valid, and a slot that was once in use is not
    // taken for a new image.
    GlobalBlock(slot.directory).reset();
    slot.flags = static_cast<WORD>(slot.flags & ~kRegistered);
    return true;
}

void unloadJpegModule() {
    if (library.jpegModule != nullptr) {
        FreeLibrary(library.jpegModule);
        library.jpegModule = nullptr;
    }
}

} // namespace

TiffHandle openTiffFile(const char *path, DWORD mode) {
    setError(Error::None);
    // A file that cannot be opened cannot be appended to either: it becomes a new one.
    const bool becomesNew = mode == kOpenModeAppend && !opensForReading(path);
    const DWORD usedMode = becomesNew ? T_CREAT : mode;
    // One that is there and cannot be opened (another program is using it) is not to be replaced: what is written to
    // the handle fails.
    const DWORD newFileFlags = becomesNew && fileExists(path) ? kOpenRead : kOpenCreate;
    return open(path, usedMode,
                {nullptr, kWholeFile, newFileFlags, usedMode == kOpenModeRead ? kOpenRead : kOpenAppend});
}

TiffHandle openTiffInMemory(HGLOBAL memory, DWORD size, DWORD mode) {
    setError(Error::None);
    // By design: a new TIFF in memory has no open flags, unlike a new file.
    return open("", mode, {memory, size, 0, kOpenAppend});
}

bool closeTiffFile(TiffHandle tiff) {
    {
        const TiffFileView file(tiff);
        if (!file) {
            return false;
        }
        const DWORD images = std::min(file->imageCount, kMaxImages);
        for (DWORD index = 0; index < images; ++index) {
            drop(*file, index);
        }
    }
    GlobalBlock(tiff).reset();
    unloadJpegModule();
    return true;
}

bool modifyTiffFile(TiffHandle tiff, const char *path, LONG byteOrder) {
    const TiffFileView file(tiff);
    return file && modify(*file, path, byteOrder);
}

bool isImageRegistered(TiffHandle tiff, DWORD index) {
    // By design: the bound is the table of slots, not the number of images, for images are defined behind the last one.
    if (index >= kMaxImages) {
        setError(Error::IndexOutOfRange);
        return false;
    }
    const TiffFileView file(tiff);
    return file && (file->images[index].flags & kRegistered) != 0;
}

bool registerImage(TiffHandle tiff, DWORD index) {
    if (isImageRegistered(tiff, index)) {
        return true;
    }
    // By design: what counts is the library-wide error, so a 3 left over from an earlier call fails this one too.
    if (lastError() == Error::IndexOutOfRange) {
        return false;
    }
    const TiffFileView file(tiff);
    if (!file) {
        setError(Error::NoMemory);
        return false;
    }
    GlobalBlock directory;
    if (const Error error = loadDirectory(*file, index, directory); error != Error::None) {
        setError(error);
        return false;
    }
    TiffImageSlot &slot = file->images[index];
    slot.directory = directory.release();
    slot.flags |= kRegistered;
    return true;
}

bool dropImage(TiffHandle tiff, DWORD index) {
    if (isImageRegistered(tiff, index)) {
        const TiffFileView file(tiff);
        return file && drop(*file, index);
    }
    // By design: an image that is not registered counts as dropped unless an error is pending, be it from an earlier
    // call. Programs that drop what they may never have loaded go by it.
    return TiffFileView(tiff) && lastError() == Error::None;
}

DWORD countImages(TiffHandle tiff, DWORD subfileType) {
    const TiffFileView file(tiff);
    if (!file) {
        return 0;
    }
    if ((subfileType & VELLUM_ALL_IMAGES) != 0) {
        return file->imageCount;
    }
    // By design: the whole flags are compared, over the whole table. Registered images match only with 0x4000, and
    // unused slots count as full-resolution images; programs subtract them, so the sums must stay as they are.
    DWORD count = 0;
    for (const TiffImageSlot &slot : file->images) {
        count += slot.flags == subfileType ? 1 : 0;
    }
    return count;
}

} // namespace vellum
