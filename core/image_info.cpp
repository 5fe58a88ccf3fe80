// Tag values out of a registered image's directory.
#include "core/image_info.h"

#include "core/image_directory.h"
#include "core/typed_transfer.h"
#include "support/byte_order.h"

#include <algorithm>
#include <cstring>

namespace vellum {
namespace {

constexpr LONG kTagList = 0;

// The values' first 8 bytes, for a record that holds fewer (a RATIONAL without values does) filled up with zeros.
struct FirstBytes {
    BYTE bytes[8] = {};

    explicit FirstBytes(const TagRecord &record) {
        std::memcpy(bytes, record.data, std::min<std::size_t>(sizeof bytes, record.dataBytes));
    }
};

// The first value as a number; nothing for the types that are not numbers to the library.
std::optional<DWORD> numberOf(const TagRecord &record) {
    const FirstBytes first(record);
    switch (record.head.type) {
    case kByte:
        return first.bytes[0];
    case kShort:
        return load<WORD>(first.bytes);
    case kLong:
    case kRational:
        return load<DWORD>(first.bytes);
    default:
        return std::nullopt;
    }
}

void copyValue(const TagRecord &record, void *value) {
    const auto first = numberOf(record);
    if (!first) {
        return;
    }
    switch (record.head.type) {
    case kByte:
        std::memcpy(value, &*first, 1);
        break;
    case kRational:
        std::memcpy(value, FirstBytes(record).bytes, 8);
        break;
    default:
        std::memcpy(value, &*first, sizeof *first);
        break;
    }
}

std::optional<TagValues> tagList(const ImageDirectory &directory) {
    const DWORD count = directory.entryCount();
    // Never an empty block: nobody could lock it.
    GlobalBlock numbers = GlobalBlock::allocate(Size(sizeof(DWORD)) * std::max<DWORD>(count, 1));
    const GlobalView<DWORD> view(numbers.get());
    if (!view) {
        setError(Error::NoMemory);
        return std::nullopt;
    }
    directory.listTags(view.get());
    return TagValues{std::move(numbers), kLong, count};
}

} // namespace

bool hasTag(TiffHandle tiff, DWORD index, Tag tag) {
    return copyFirstValue(tiff, index, static_cast<LONG>(tag), nullptr);
}

std::optional<DWORD> firstValue(TiffHandle tiff, DWORD index, Tag tag) {
    const ImageDirectory directory(tiff, index);
    const auto record = directory ? directory.find(static_cast<DWORD>(tag)) : std::nullopt;
    return record ? numberOf(*record) : std::nullopt;
}

bool copyFirstValue(TiffHandle tiff, DWORD index, LONG tag, void *value) {
    const ImageDirectory directory(tiff, index);
    const auto record = directory ? directory.find(static_cast<DWORD>(tag)) : std::nullopt;
    if (record && value != nullptr) {
        copyValue(*record, value);
    }
    return record.has_value();
}

std::optional<TagShape> tagShape(TiffHandle tiff, DWORD index, LONG tag) {
    const ImageDirectory directory(tiff, index);
    if (!directory) {
        return std::nullopt;
    }
    if (tag == kTagList) {
        return TagShape{kLong, directory.entryCount()};
    }
    const auto record = directory.find(static_cast<DWORD>(tag));
    return record ? std::optional(TagShape{record->head.type, record->head.count}) : std::nullopt;
}

std::optional<TagValues> allValues(TiffHandle tiff, DWORD index, Tag tag) {
    return allValues(tiff, index, static_cast<LONG>(tag));
}

std::optional<TagValues> allValues(TiffHandle tiff, DWORD index, LONG tag) {
    const ImageDirectory directory(tiff, index);
    if (!directory) {
        return std::nullopt;
    }
    if (tag == kTagList) {
        return tagList(directory);
    }
    const auto record = directory.find(static_cast<DWORD>(tag));
    if (!record) {
        return std::nullopt;
    }
    GlobalBlock values = GlobalBlock::allocate(record->dataBytes);
    const GlobalView<BYTE> view(values.get(), record->dataBytes);
    if (!view) {
        setError(Error::NoMemory);
        return std::nullopt;
    }
    std::memcpy(view.get(), record->data, record->dataBytes);
    return TagValues{std::move(values), record->head.type, record->head.count};
}

} // namespace vellum
