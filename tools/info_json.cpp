// vellum info for programs: one JSON document, {"files": [...]}, with values in full.
#include "tools/cals_file.h"
#include "tools/console.h"
#include "tools/info.h"
#include "tools/page_info.h"
#include "tools/tiff_names.h"

#include <set>

namespace tool {

namespace {

void optionalMember(JsonWriter &json, std::string_view key, std::optional<DWORD> number) {
    json.key(key);
    if (number) {
        json.value(*number);
    } else {
        json.null();
    }
}

template <class T>
void member(JsonWriter &json, std::string_view key, const T &value) {
    json.key(key);
    json.value(value);
}

void errorMembers(JsonWriter &json, DWORD error, const std::string &message) {
    member(json, "error", error);
    member(json, "message", message);
}

// A library type that it keeps as bytes.
bool keptAsBytes(DWORD type) {
    constexpr DWORD kSShort = 8;
    constexpr DWORD kSRational = 10;
    return type == kSShort || type >= kSRational;
}

enum class Entry { First, Repeated };

void writeTag(JsonWriter &json, const RegisteredPage &page, DWORD tag, Entry entry) {
    json.beginObject(JsonWriter::Layout::OneLine);
    member(json, "tag", tag);
    json.key("name");
    tagName(tag).empty() ? json.null() : json.value(tagName(tag));
    if (entry == Entry::Repeated) { // the library gives the values of the first entry only
        member(json, "repeated", true);
    } else if (const auto values = readTag(page, tag)) {
        member(json, "type", typeName(values->type()));
        member(json, "count", values->count());
        json.key(keptAsBytes(values->type()) ? "bytes" : "values");
        json.beginArray(JsonWriter::Layout::OneLine);
        if (values->isText()) {
            json.value(values->text());
        }
        for (DWORD i = 0; i < values->count() && !values->isText(); ++i) {
            if (!values->isRational()) {
                json.value(values->number(i));
                continue;
            }
            json.beginArray(JsonWriter::Layout::OneLine);
            json.value(values->rational(i).numerator);
            json.value(values->rational(i).denominator);
            json.endArray();
        }
        json.endArray();
    }
    json.endObject();
}

void writeResolution(JsonWriter &json, const PageInfo &info) {
    json.key("resolution");
    if (!info.resolution) {
        json.null();
    } else {
        json.beginObject(JsonWriter::Layout::OneLine);
        member(json, "x", info.resolution->x);
        member(json, "y", info.resolution->y);
        member(json, "unit", info.resolution->unit);
        json.endObject();
    }
    json.key("dpi");
    if (!info.dpi) {
        json.null();
    } else {
        json.beginArray(JsonWriter::Layout::OneLine);
        json.value(info.dpi->x);
        json.value(info.dpi->y);
        json.endArray();
    }
}

void writePageMembers(JsonWriter &json, const PageInfo &info) {
    optionalMember(json, "width", info.width);
    optionalMember(json, "height", info.height);
    member(json, "bitsPerSample", info.bitsPerSample);
    member(json, "samplesPerPixel", info.samplesPerPixel);
    optionalMember(json, "photometric", info.photometric);
    json.key("photometricName");
    info.photometric ? json.value(photometricName(*info.photometric)) : json.null();
    member(json, "compression", info.compression);
    member(json, "compressionOption", info.compressionOption);
    member(json, "compressionName", compressionName(info.compression, info.compressionOption));
    member(json, "fillOrder", info.fillOrder);
    member(json, "subfileType", info.subfileType);
    member(json, "strips", info.stripCount);
    member(json, "rowsPerStrip", info.rowsPerStrip);
    optionalMember(json, "tileWidth", info.tileWidth);
    optionalMember(json, "tileLength", info.tileLength);
    writeResolution(json, info);
}

Status writePage(JsonWriter &json, const TiffDocument &document, DWORD index, const InfoOptions &options) {
    json.beginObject();
    member(json, "page", index + 1);
    member(json, "directoryOffset", document.chain().directoryOffsets[index]);
    Status status = Status::Ok;
    const RegisteredPage page(document, index);
    if (!page) {
        const DWORD error = TiffError();
        errorMembers(json, error, libraryMessage(error));
        status = complainOfPage(document.name(), index, error);
    } else {
        writePageMembers(json, PageInfo(page));
        if (options.tags) {
            json.key("tags");
            writeTags(json, page, tagNumbers(page));
        }
    }
    json.endObject();
    return status;
}

Status writeFile(JsonWriter &json, const FileName &name, const InfoOptions &options) {
    if (isCalsFile(name)) {
        return writeCalsJson(json, name);
    }
    const TiffDocument document(name);
    Status status = Status::Ok;
    json.beginObject();
    member(json, "file", name.shown());
    if (!document.isOpen()) {
        errorMembers(json, document.openError(), document.openMessage());
        status = complainOfFile(document);
    } else {
        json.key("bytes");
        const auto size = document.fileSize();
        size ? json.value(static_cast<LONGLONG>(*size)) : json.null();
        member(json, "byteOrder", document.byteOrder() == VELLUM_BYTE_ORDER_MM ? "MM" : "II");
        status = complainOfChain(document);
        if (status != Status::Ok) {
            errorMembers(json, document.openError(), document.chainMessage());
        }
        json.key("pages");
        json.beginArray();
        for (DWORD index = 0; index < document.pageCount(); ++index) {
            status = worse(status, writePage(json, document, index, options));
        }
        json.endArray();
    }
    json.endObject();
    return status;
}

} // namespace

void writeTags(JsonWriter &json, const RegisteredPage &page, std::span<const DWORD> tags) {
    std::set<DWORD> seen;
    json.beginArray();
    for (const DWORD tag : tags) {
        writeTag(json, page, tag, seen.insert(tag).second ? Entry::First : Entry::Repeated);
    }
    json.endArray();
}

Status printInfoJson(std::span<const FileName> names, const InfoOptions &options) {
    JsonWriter json;
    Status status = Status::Ok;
    json.beginObject();
    json.key("files");
    json.beginArray();
    for (const FileName &name : names) {
        status = worse(status, writeFile(json, name, options));
        Console::get().print(json.take());
    }
    json.endArray();
    json.endObject();
    Console::get().print(json.take());
    return status;
}

} // namespace tool
