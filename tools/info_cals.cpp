// vellum info of CALS files: the records of their headers, in either look.
#include "tools/cals_file.h"
#include "tools/console.h"
#include "tools/info.h"
#include "tools/table.h"

namespace tool {

namespace {

Status complain(const FileName &name, const CalsLook &look) {
    if (look.numbers) {
        return Status::Ok;
    }
    Console::get().complain(name.shown() + ": " + look.failure);
    return Status::Failed;
}

std::string fileLine(const FileName &name, const CalsLook &look) {
    std::string line = name.shown() + ": CALS raster file";
    if (look.numbers) {
        const auto &[width, height, density, orientation] = *look.numbers;
        line += ", " + std::to_string(width) + " x " + std::to_string(height) + ", " + std::to_string(density) +
                " dpi, orientation " + std::to_string(orientation[0]) + "," + std::to_string(orientation[1]);
    }
    if (const auto size = name.size()) {
        line += ", " + std::to_string(*size) + " bytes";
    }
    return line + "\n";
}

// Texts in quotes, what is no plain text escaped.
std::string shown(const std::string &text) {
    return textTag(0, text).shown(TagValues::Extent::Whole);
}

template <class T>
void member(JsonWriter &json, std::string_view key, const T &value) {
    json.key(key);
    json.value(value);
}

void pairMember(JsonWriter &json, std::string_view key, LONG first, LONG second) {
    json.key(key);
    json.beginArray(JsonWriter::Layout::OneLine);
    json.value(LONGLONG{first});
    json.value(LONGLONG{second});
    json.endArray();
}

void writeNumbers(JsonWriter &json, const CalsLook::Numbers &numbers) {
    member(json, "width", LONGLONG{numbers.width});
    member(json, "height", LONGLONG{numbers.height});
    pairMember(json, "dpi", numbers.density, numbers.density);
    pairMember(json, "orientation", numbers.orientation[0], numbers.orientation[1]);
}

} // namespace

Status printCalsText(const FileName &name) {
    const CalsLook look = lookAtCals(name);
    using enum Table::Align;
    Table records({{"record", Right}, {"keyword", Left}, {"value", Left}});
    for (const CalsRecord &record : look.records) {
        const std::string keyword = record.keyword.empty() ? "-" : utf8FromAnything(record.keyword);
        records.add({std::to_string(record.number), keyword, shown(record.value)});
    }
    if (!look.records.empty()) {
        Console::get().print(fileLine(name, look) + records.text(2));
        Console::get().flush();
    }
    return complain(name, look);
}

Status writeCalsJson(JsonWriter &json, const FileName &name) {
    const CalsLook look = lookAtCals(name);
    json.beginObject();
    member(json, "file", name.shown());
    member(json, "format", "CALS");
    if (!look.numbers) {
        member(json, "error", look.error);
        member(json, "message", look.failure);
    }
    if (const auto size = name.size()) {
        member(json, "bytes", static_cast<LONGLONG>(*size));
    }
    if (look.numbers) {
        writeNumbers(json, *look.numbers);
    }
    json.key("records");
    json.beginArray();
    for (const CalsRecord &record : look.records) {
        json.beginObject(JsonWriter::Layout::OneLine);
        member(json, "record", record.number);
        json.key("keyword");
        record.keyword.empty() ? json.null() : json.value(utf8FromAnything(record.keyword));
        member(json, "value", utf8FromAnything(record.value));
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return complain(name, look);
}

} // namespace tool
