// From a file to a header, from a header to its numbers and texts, and from those to a header.
#include "cals/cals_header.h"

#include "cals/cals_records.h"
#include "core/error.h"
#include "core/stream.h"

#include <cstdio>
#include <cstring>
#include <initializer_list>

namespace vellum {
namespace {

// A header locked in its block.
class CalsHeaderView {
public:
    explicit CalsHeaderView(HGLOBAL block) : view_(block, VELLUM_CALS_BLOCK) {}
    explicit operator bool() const { return static_cast<bool>(view_); }
    [[nodiscard]] char *get() const { return view_.get(); }

private:
    GlobalView<char> view_;
};

GlobalBlock newBlock() {
    return GlobalBlock::allocate(Size(VELLUM_CALS_BLOCK));
}

bool everyRecordEndsBlank(const char *header) {
    for (std::size_t i = 1; i <= kCalsRecords; ++i) {
        if (!isCalsPadding(header[i * kCalsRecordBytes - 1])) {
            return false;
        }
    }
    return true;
}

Error readInto(HGLOBAL block, const char *path) {
    const CalsHeaderView header(block);
    if (!header) {
        return Error::NoMemory;
    }
    const Stream file(openFileStream(path, kOpenRead));
    if (!file) {
        return Error::Io;
    }
    const bool whole = readBytes(file.get(), reinterpret_cast<BYTE *>(header.get()), kCalsHeaderBytes);
    return whole && everyRecordEndsBlank(header.get()) ? Error::None : Error::NotCals;
}

// ---------------------------------------------------------------- numbers

// Reads the numbers of the first of these records that is there. Without one they stay as they are.
bool readNumbers(char *header, std::initializer_list<std::string_view> keywords, std::initializer_list<LONG *> values) {
    for (const std::string_view keyword : keywords) {
        if (const char *record = findCalsRecord(header, keyword); record != nullptr) {
            CalsNumbers numbers(record, keyword);
            for (LONG *value : values) {
                *value = numbers.next();
            }
            return true;
        }
    }
    return false;
}

Error readNumbers(char *header, CalsInfo &info) {
    info = {};
    const bool hasType = readNumbers(header, {kRasterType, kOtherRasterType}, {&info.rtype});
    const bool hasOrientation = readNumbers(header, {kOrientation}, {&info.rorient[0], &info.rorient[1]});
    const bool hasCounts = readNumbers(header, {kPixelCounts}, {&info.rpelcnt[0], &info.rpelcnt[1]});
    const bool hasDensity = readNumbers(header, {kDensity, kOtherDensity}, {&info.rdensty});
    const bool isPicture = info.rtype == 1 && info.rpelcnt[0] != 0 && info.rpelcnt[1] != 0;
    return hasType && hasOrientation && hasCounts && hasDensity && isPicture ? Error::None : Error::NotCals;
}

// ---------------------------------------------------------------- texts

// Copies the texts one behind the other. All of them fit: together they are shorter than their records.
void copyTexts(char *header, char *texts, CalsNotes &notes) {
    for (const auto &[keyword, text] : kCalsTexts) {
        const char *record = findCalsRecord(header, keyword);
        if (record == nullptr) {
            continue;
        }
        const CalsString trimmed = trimmedCalsRecord(record);
        const std::size_t length = std::strlen(trimmed.data());
        if (length <= keyword.size()) {
            continue;
        }
        std::memcpy(texts, trimmed.data() + keyword.size(), length - keyword.size());
        notes.*text = texts;
        // By design: no terminator stands between two texts. Programs print all of them from the first one's pointer.
        texts += length - keyword.size();
    }
}

// ---------------------------------------------------------------- making

// Room for two numbers of a LONG's digits with their signs, and what stands between them.
struct CalsNumberText {
    char text[32];
};
CalsNumberText numberText(int width, LONG number) {
    CalsNumberText made;
    std::snprintf(made.text, sizeof made.text, "%0*ld", width, static_cast<long>(number));
    return made;
}
CalsNumberText numberText(int width, const LONG (&numbers)[2]) {
    CalsNumberText made;
    std::snprintf(made.text, sizeof made.text, "%0*ld,%0*ld", width, static_cast<long>(numbers[0]), width,
                  static_cast<long>(numbers[1]));
    return made;
}

void writeRecords(char *header, const CalsInfo &info, const CalsNotes &notes) {
    std::memset(header, ' ', kCalsHeaderBytes);
    auto write = [record = header](std::string_view keyword, const char *value) mutable {
        writeCalsRecord(record, keyword, value);
        record += kCalsRecordBytes;
    };
    const auto writeText = [&](const CalsTextRecord &field) {
        const char *text = notes.*field.text;
        write(field.keyword, text == nullptr ? "NONE" : text);
    };
    // The last text stands behind the numbers.
    for (std::size_t i = 0; i < kCalsTextCount - 1; ++i) {
        writeText(kCalsTexts[i]);
    }
    write(kRasterType, numberText(1, info.rtype).text);
    write(kOrientation, numberText(3, info.rorient).text);
    write(kPixelCounts, numberText(6, info.rpelcnt).text);
    write(kDensity, numberText(4, info.rdensty).text);
    writeText(kCalsTexts[kCalsTextCount - 1]);
}

} // namespace

GlobalBlock readCalsHead(const char *path) {
    if (path == nullptr || *path == '\0') {
        return {};
    }
    GlobalBlock block = newBlock();
    if (const Error error = readInto(block.get(), path); error != Error::None) {
        setError(error);
        return {};
    }
    return block;
}

bool readCalsInfo(const char *path, CalsInfo &info) {
    const GlobalBlock block = readCalsHead(path);
    if (!block) {
        return false;
    }
    const CalsHeaderView header(block.get());
    const Error error = header ? readNumbers(header.get(), info) : Error::NoMemory;
    if (error != Error::None) {
        setError(error);
    }
    return error == Error::None;
}

GlobalBlock readCalsNotes(const char *path, CalsNotes &notes) {
    const GlobalBlock block = readCalsHead(path);
    if (!block) {
        return {};
    }
    notes = {};
    GlobalBlock texts = newBlock();
    {
        const CalsHeaderView header(block.get());
        const CalsHeaderView text(texts.get());
        if (header && text) {
            copyTexts(header.get(), text.get(), notes);
            return texts;
        }
    }
    setError(Error::NoMemory);
    return {};
}

GlobalBlock defineCalsHead(const CalsInfo &info, const CalsNotes &notes) {
    GlobalBlock block = newBlock();
    {
        const CalsHeaderView header(block.get());
        if (header) {
            writeRecords(header.get(), info, notes);
            return block;
        }
    }
    setError(Error::NoMemory);
    return {};
}

} // namespace vellum
