// The exported functions for open TIFFs and for the last error.
#include "core/library_state.h"
#include "core/open_file.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr char kVersion[] = "Version 7.00";
constexpr LONG kVersionBytes = sizeof kVersion;
constexpr DWORD kErrorCodes = 22; // 0 to 21
constexpr DWORD kNoImages = 0xFFFFFFFF;

} // namespace

extern "C" {

TiffHandle VELLUMAPI OpenTiffFile(const char *path, DWORD mode) {
    return vellum::openTiffFile(path, mode);
}

TiffHandle VELLUMAPI OpenTiffInMemory(HGLOBAL memory, DWORD size, DWORD mode) {
    return vellum::openTiffInMemory(memory, size, mode);
}

DWORD VELLUMAPI CloseTiffFile(TiffHandle tiff) {
    return vellum::closeTiffFile(tiff) ? 1 : 0;
}

DWORD VELLUMAPI DropTiffImage(TiffHandle tiff, DWORD index) {
    return vellum::dropImage(tiff, index) ? 1 : 0;
}

DWORD VELLUMAPI IsTiffImageRegistered(TiffHandle tiff, LONG index) {
    // A negative index is far above the table too.
    return vellum::isImageRegistered(tiff, static_cast<DWORD>(index)) ? 1 : 0;
}

LONG VELLUMAPI NumberOfTiffImages(TiffHandle tiff, DWORD subfileType) {
    return static_cast<LONG>(vellum::countImages(tiff, subfileType));
}

DWORD VELLUMAPI GetNumberOfImagesInTiffFile(const char *path) {
    TiffHandle tiff = vellum::openTiffFile(path, T_READ);
    if (tiff == nullptr) {
        return kNoImages;
    }
    const DWORD count = vellum::countImages(tiff, VELLUM_ALL_IMAGES);
    vellum::closeTiffFile(tiff);
    return count;
}

DWORD VELLUMAPI GetTiffFileInfo(TiffHandle tiff, TiffFileInfo *info) {
    if (info == nullptr) {
        return 1;
    }
    const vellum::TiffFileView file(tiff);
    if (!file) {
        *info = {};
        return 1;
    }
    lstrcpynA(info->path, file->pathName, sizeof info->path);
    info->byteOrder = file->byteOrder;
    info->imageCount = file->imageCount;
    info->firstDirectoryOffset = file->images[0].directoryOffset;
    return 1;
}

LONG VELLUMAPI ModiTiffFileInfo(TiffHandle tiff, const char *path, LONG byteOrder) {
    return vellum::modifyTiffFile(tiff, path, byteOrder) ? 1 : 0;
}

HGLOBAL VELLUMAPI GetMemoryTiffHandle(TiffHandle tiff) {
    const vellum::TiffFileView file(tiff);
    return file ? file->memHandle : nullptr;
}

DWORD VELLUMAPI SetTiffDllFileHandle(DWORD count) {
    return SetHandleCount(count);
}

DWORD VELLUMAPI TiffError(void) {
    return number(vellum::lastError());
}

DWORD VELLUMAPI SetTiffError(DWORD code) {
    const DWORD before = number(vellum::lastError());
    if (code < kErrorCodes) {
        vellum::setError(static_cast<vellum::Error>(code));
    }
    return before;
}

char *VELLUMAPI TiffErrorString(char *buffer, DWORD code) {
    const char *message = vellum::errorMessage(code < kErrorCodes ? code : number(vellum::lastError()));
    if (buffer == nullptr) {
        MessageBoxA(nullptr, message, "TIFF error", MB_ICONEXCLAMATION);
        return nullptr;
    }
    return lstrcpyA(buffer, message);
}

void VELLUMAPI GetTiffVersion(char *buffer, LONG length) {
    if (buffer != nullptr && length > 0) {
        std::memcpy(buffer, kVersion, static_cast<std::size_t>(std::min(length, kVersionBytes)));
    }
}

} // extern "C"
