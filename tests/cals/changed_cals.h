// CALS files that are kept because of what is odd about them, and files like them with their headers changed.
#pragma once

#include "cals/cals_files.h"
#include "support/random_pictures.h"

#include <gtest/gtest.h>

#include <filesystem>

namespace vellum::test {

// By their names.
inline std::vector<Bytes> keptCalsFiles() {
    std::vector<std::string> paths;
    for (const auto &entry : std::filesystem::directory_iterator(fixture("cals_files"))) {
        paths.push_back(entry.path().string());
    }
    std::sort(paths.begin(), paths.end());
    std::vector<Bytes> files;
    for (const std::string &path : paths) {
        const auto bytes = readFile(path);
        EXPECT_TRUE(bytes) << path;
        files.push_back(bytes.value_or(Bytes()));
    }
    return files;
}

// Puts a text at a place of the header, which keeps its size.
inline void overwrite(Bytes &file, std::size_t at, std::string_view text) {
    for (std::size_t i = 0; i < text.size() && at + i < file.size(); ++i) {
        file[at + i] = static_cast<BYTE>(text[i]);
    }
}

// One change: a byte, a number, a comma that goes, digits without an end, a record moved, a file cut.
inline void changeCals(Bytes &file, Random &random) {
    constexpr std::string_view kTelling(" ,:-+0129\0\r\n\xFF", 13);
    const std::size_t record = 128 * random.below(16);
    const std::size_t at = record + random.below(2) * random.below(128);
    switch (random.below(8)) {
    case 0:
        file.resize(std::min<std::size_t>(file.size(), random.below(2300)));
        break;
    case 1:
        overwrite(file, at, std::string(100, static_cast<char>('0' + random.below(10))));
        break;
    case 2:
        std::replace(file.begin(), file.end(), BYTE{','}, static_cast<BYTE>(kTelling[random.below(kTelling.size())]));
        break;
    case 3:
        overwrite(file, 9 + 128 * 2, std::to_string(random.below(200)) + "," + std::to_string(random.below(200)) + " ");
        break;
    case 4:
        if (file.size() >= 2048 && record != 0) {
            std::swap_ranges(file.begin() + static_cast<std::ptrdiff_t>(record),
                             file.begin() + static_cast<std::ptrdiff_t>(record) + 128, file.begin());
        }
        break;
    case 5:
        overwrite(file, at, std::string(1, static_cast<char>(random.below(256))));
        break;
    default:
        overwrite(file, at, kTelling.substr(random.below(kTelling.size()), 1));
        break;
    }
}

// The n-th of an endless row of files, the same in every run.
inline Bytes changedCalsFile(const std::vector<Bytes> &files, std::uint32_t nth) {
    Random random(nth + 1);
    Bytes file = files[nth % files.size()];
    for (std::uint32_t changes = 1 + random.below(3); changes > 0; --changes) {
        changeCals(file, random);
    }
    return file;
}

} // namespace vellum::test
