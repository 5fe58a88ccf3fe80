// Finding, trimming, reading and writing of single records.
#include "cals/cals_records.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <limits>

namespace vellum {
namespace {

// The last character of a record belongs to no value.
constexpr std::size_t kValueEnd = kCalsRecordBytes - 1;

constexpr bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

constexpr bool isLineEnd(char c) {
    return c == '\r' || c == '\n';
}

} // namespace

char *findCalsRecord(char *header, std::string_view keyword) {
    for (std::size_t i = 0; i < kCalsRecords; ++i) {
        char *record = header + i * kCalsRecordBytes;
        if (!isCalsPadding(*record) && std::string_view(record, kCalsRecordBytes).starts_with(keyword)) {
            return record;
        }
    }
    return nullptr;
}

void trimCalsRecord(char *record) {
    // By design: three characters are no text, for no keyword is so short.
    constexpr std::size_t kLeastText = 3;
    std::size_t last = kValueEnd - 1;
    while (last >= kLeastText && isCalsPadding(record[last])) {
        --last;
    }
    if (last < kLeastText) {
        std::memcpy(record, " ", 2);
        return;
    }
    record[isLineEnd(record[last]) ? last : last + 1] = '\0';
}

CalsString trimmedCalsRecord(const char *record) {
    CalsString copy;
    std::memcpy(copy.data(), record, copy.size());
    trimCalsRecord(copy.data());
    return copy;
}

LONG CalsNumbers::next() {
    constexpr std::int64_t kMost = std::numeric_limits<LONG>::max();
    constexpr std::int64_t kLeast = std::numeric_limits<LONG>::min();
    std::size_t at = std::min(position_, record_.size());
    const std::size_t start = at;
    const auto here = [&] { return at < record_.size() ? record_[at] : '\0'; };
    while (here() == ' ') {
        ++at;
    }
    const bool negative = here() == '-';
    if (negative || here() == '+') {
        ++at;
    }
    const std::size_t digits = at;
    std::int64_t value = 0;
    for (; isDigit(here()); ++at) {
        const int digit = here() - '0';
        value = std::clamp(value * 10 + (negative ? -digit : digit), kLeast, kMost);
    }
    position_ = (at == digits ? start : at) + 1;
    return static_cast<LONG>(value);
}

void writeCalsRecord(char *record, std::string_view keyword, std::string_view value) {
    std::memset(record, ' ', kCalsRecordBytes);
    std::copy(keyword.begin(), keyword.end(), record);
    const std::size_t length = std::min(value.size(), kValueEnd - keyword.size());
    std::copy_n(value.begin(), length, record + keyword.size());
}

} // namespace vellum
