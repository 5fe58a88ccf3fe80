// Annotations that the companion module rmark32.dll owns: the module turns a set of them into bytes, which are kept in
// a tag of the file's first image, and back. The library does not look into the bytes. The module is loaded for the
// length of a call; without it nothing happens.
#include "core/image_info.h"
#include "core/loaded_image.h"
#include "support/loaded_module.h"

namespace vellum {
namespace {

constexpr char kModuleName[] = "rmark32.dll";
constexpr char kSaveCount[] = "RmkGetSaveCount";
constexpr char kSaveData[] = "RmkGetSaveData";
constexpr char kCreateOnLoad[] = "RmkCreateOnLoad";

// The bytes that a set needs; 0 for an empty one.
using SaveCount = DWORD(VELLUMAPI *)(DWORD annotations);
// Fills a buffer with them; 0 when it did not.
using SaveData = DWORD(VELLUMAPI *)(DWORD annotations, BYTE *buffer, DWORD size);
// The set that the bytes describe.
using CreateOnLoad = DWORD(VELLUMAPI *)(BYTE *data, DWORD count);

constexpr LONG kAnnotatedImage = 0;
constexpr DWORD kByteType = 1;
constexpr DWORD kDefaultTag = 0x8000;

constexpr DWORD tagOrDefault(DWORD tag) {
    return tag == 0 ? kDefaultTag : tag;
}

DWORD saveBytes(const char *path, DWORD tag, DWORD annotations, DWORD count, SaveData saveData) {
    // By design: a byte more than is asked for, for modules that end their data with a zero.
    const GlobalBlock block = GlobalBlock::allocate(Size(count) + Size(1));
    const GlobalView<BYTE> bytes(block.get());
    if (!bytes || saveData(annotations, bytes.get(), count) == 0) {
        return 0;
    }
    return AddTiffTagToImage(path, kAnnotatedImage, tag, kByteType, bytes.get(), count);
}

DWORD save(const char *path, DWORD tag, DWORD annotations) {
    const LoadedModule module(kModuleName);
    const auto saveCount = module ? module.find<SaveCount>(kSaveCount) : nullptr;
    const auto saveData = module ? module.find<SaveData>(kSaveData) : nullptr;
    if (saveCount == nullptr || saveData == nullptr) {
        return 0;
    }
    const DWORD count = saveCount(annotations);
    if (count == 0) {
        // By design: to save an empty set is to remove the annotations, and still "nothing was saved".
        DeleteTiffTagOfImage(path, kAnnotatedImage, tag);
        return 0;
    }
    return saveBytes(path, tag, annotations, count, saveData);
}

DWORD createFrom(const LoadedImage &image, DWORD tag, CreateOnLoad createOnLoad) {
    const auto stored = allValues(image.tiff(), image.index(), static_cast<LONG>(tag));
    if (!stored || stored->type != kByteType) {
        return 0;
    }
    const GlobalView<BYTE> bytes(stored->data.get(), stored->count);
    return bytes ? createOnLoad(bytes.get(), stored->count) : 0;
}

DWORD load(const char *path, DWORD tag) {
    const LoadedModule module(kModuleName);
    if (!module) {
        return 0;
    }
    const LoadedImage image(path, kAnnotatedImage);
    const auto createOnLoad = module.find<CreateOnLoad>(kCreateOnLoad);
    return image && createOnLoad != nullptr ? createFrom(image, tag, createOnLoad) : 0;
}

} // namespace
} // namespace vellum

extern "C" {

DWORD VELLUMAPI SaveAnnotationIntoTiff(TiffHandle tiff, DWORD annotations, DWORD tag) {
    TiffFileInfo file;
    GetTiffFileInfo(tiff, &file);
    // A TIFF in memory has no path, and no file that a tag could be added to.
    if (annotations == 0 || file.path[0] == '\0') {
        return 0;
    }
    return vellum::save(file.path, vellum::tagOrDefault(tag), annotations);
}

DWORD VELLUMAPI LoadAnnotationFromTiff(const char *path, DWORD tag) {
    return vellum::load(path, vellum::tagOrDefault(tag));
}

} // extern "C"
