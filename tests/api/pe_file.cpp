// Module files by the published PE layout. The offsets below are those of the 32-bit headers.
#include "api/pe_file.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace vellum::test {
namespace {

constexpr std::size_t kPeOffset = 0x3C;
constexpr std::size_t kSectionCount = 6;
constexpr std::size_t kTimeStamp = 8;
constexpr std::size_t kOptionalSize = 20;
constexpr std::size_t kOptional = 24;
constexpr WORD kMachineI386 = 0x14C;
constexpr WORD kMagic32 = 0x10B;
constexpr std::size_t kImageBase = kOptional + 28;
constexpr std::size_t kDirectories = kOptional + 96;
constexpr std::size_t kSectionBytes = 40;
constexpr std::size_t kImportBytes = 20;
constexpr unsigned kExportDirectory = 0;
constexpr unsigned kImportDirectory = 1;

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::toupper(c)); });
    return text;
}

} // namespace

PeFile::PeFile(Bytes file) : file_(std::move(file)) {
    const std::size_t headers = number<DWORD>(kPeOffset);
    if (number<WORD>(0) == 0x5A4D && number<DWORD>(headers) == 0x4550 && number<WORD>(headers + 4) == kMachineI386 &&
        number<WORD>(headers + kOptional) == kMagic32) {
        headers_ = headers;
    }
}

template <class T>
T PeFile::number(std::size_t position) const {
    T value = 0;
    if (position <= file_.size() && file_.size() - position >= sizeof value) {
        std::memcpy(&value, file_.data() + position, sizeof value);
    }
    return value;
}

std::string PeFile::text(std::size_t position) const {
    std::string text;
    for (; position < file_.size() && file_[position] != 0; ++position) {
        text += static_cast<char>(file_[position]);
    }
    return text;
}

std::size_t PeFile::place(DWORD relativeAddress) const {
    std::size_t section = headers_ + kOptional + number<WORD>(headers_ + kOptionalSize);
    for (unsigned left = number<WORD>(headers_ + kSectionCount); left > 0; --left, section += kSectionBytes) {
        const auto start = number<DWORD>(section + 12);
        const auto bytes = number<DWORD>(section + 16);
        if (relativeAddress >= start && relativeAddress - start < bytes) {
            return number<DWORD>(section + 20) + (relativeAddress - start);
        }
    }
    return 0;
}

std::size_t PeFile::directory(unsigned index) const {
    return place(number<DWORD>(headers_ + kDirectories + 8 * std::size_t{index}));
}

std::vector<std::string> PeFile::exports() const {
    std::vector<std::string> names;
    const std::size_t table = directory(kExportDirectory);
    const std::size_t addresses = place(number<DWORD>(table + 32));
    for (DWORD i = 0; table != 0 && i < number<DWORD>(table + 24); ++i) {
        names.push_back(text(place(number<DWORD>(addresses + 4 * std::size_t{i}))));
    }
    return names;
}

std::vector<std::string> PeFile::importedModules() const {
    std::vector<std::string> names;
    std::size_t entry = directory(kImportDirectory);
    for (; entry != 0 && number<DWORD>(entry + 12) != 0; entry += kImportBytes) {
        names.push_back(upperCase(text(place(number<DWORD>(entry + 12)))));
    }
    return names;
}

std::vector<std::string> PeFile::importsFrom(const std::string &upperCaseName) const {
    std::vector<std::string> names;
    std::size_t entry = directory(kImportDirectory);
    for (; entry != 0 && number<DWORD>(entry + 12) != 0; entry += kImportBytes) {
        if (upperCase(text(place(number<DWORD>(entry + 12)))) != upperCaseName) {
            continue;
        }
        std::size_t thunk = place(number<DWORD>(entry));
        for (; number<DWORD>(thunk) != 0; thunk += 4) {
            const auto value = number<DWORD>(thunk);
            names.push_back((value & 0x80000000u) != 0 ? "#" + std::to_string(value & 0xFFFF) : text(place(value) + 2));
        }
    }
    return names;
}

DWORD PeFile::timeStamp() const {
    return number<DWORD>(headers_ + kTimeStamp);
}

DWORD PeFile::imageBase() const {
    return number<DWORD>(headers_ + kImageBase);
}

} // namespace vellum::test
