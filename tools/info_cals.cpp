// vellum info of CALS files: the records of their headers, in either look.
#include "tools/cals_file.h"
#include "tools/console.h"
#include "tools/info.h"
#include "tools/table.h"

namespace tool {

namespace {

Status complain(const FileName &name, const CalsPicture &picture) {
    if (picture.error == VELLUM_OK) {
        return Status::Ok;
    }
    Console::get().complain(name.shown() + ": " + picture.failure);
    return Status::Failed;
}

std::string fileLine(const FileName &name, const CalsPicture &picture) {
    std::string line = name.shown() + ": CALS raster file";
    if (picture.error == VELLUM_OK) {
        const CalsInfo &info = picture.info;
        line += ", " + std::to_string(info.rpelcnt[0]) + " x " + std::to_string(info.rpelcnt[1]) + ", " +
                std::to_string(info.rdensty) + " dpi, orientation " + std::to_string(info.rorient[0]) + "," +
                std::to_string(info.rorient[1]);
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

void writeNumbers(JsonWriter &json, const CalsInfo &info) {
    member(json, "width", LONGLONG{info.rpelcnt[0]});
    member(json, "height", LONGLONG{info.rpelcnt[1]});
    pairMember(json, "dpi", info.rdensty, info.rdensty);
    pairMember(json, "orientation", info.rorient[0], info.rorient[1]);
}

} // namespace

Status printCalsText(const FileName &name) {
    const CalsPicture picture = measureCals(name);
    const std::vector<CalsRecord> header = readCalsRecords(name);
    using enum Table::Align;
    Table records({{"record", Right}, {"keyword", Left}, {"value", Left}});
    for (const CalsRecord &record : header) {
        const std::string keyword = record.keyword.empty() ? "-" : utf8FromAnything(record.keyword);
        records.add({std::to_string(record.number), keyword, shown(record.value)});
    }
    if (!header.empty()) {
        Console::get().print(fileLine(name, picture) + records.text(2));
        Console::get().flush();
    }
    return complain(name, picture);
}

Status writeCalsJson(JsonWriter &json, const FileName &name) {
    const CalsPicture picture = measureCals(name);
    json.beginObject();
    member(json, "file", name.shown());
    member(json, "format", "CALS");
    if (picture.error != VELLUM_OK) {
        member(json, "error", picture.error);
        member(json, "message", picture.failure);
    }
    if (const auto size = name.size()) {
        member(json, "bytes", static_cast<LONGLONG>(*size));
    }
    if (picture.error == VELLUM_OK) {
        writeNumbers(json, picture.info);
    }
    json.key("records");
    json.beginArray();
    for (const CalsRecord &record : readCalsRecords(name)) {
        json.beginObject(JsonWriter::Layout::OneLine);
        member(json, "record", record.number);
        json.key("keyword");
        record.keyword.empty() ? json.null() : json.value(utf8FromAnything(record.keyword));
        member(json, "value", utf8FromAnything(record.value));
        json.endObject();
    }
    json.endArray();
    json.endObject();
    return complain(name, picture);
}

} // namespace tool
