// What vellum fax is asked for: its options as the record that the library draws pages by.
//
// The library hands over all pages of a text at once, so their number is bounded by the memory that they take together:
// 1 GB, which a 32-bit process has.
#pragma once

#include "tools/arguments.h"
#include "tools/file_name.h"
#include "vellum32.h"

#include <optional>
#include <string>

namespace tool {

struct FaxRequest {
    FaxPageParams page{};
    DWORD columns = 0;   // pixels across; 0: what the page's width makes
    DWORD mostPages = 0; // that are drawn
    std::optional<FileName> form;
    std::optional<std::string> compression;

    [[nodiscard]] DWORD rows() const; // pixels down
    [[nodiscard]] POINT dotsPerInch() const {
        return {static_cast<LONG>(page.horizontalResolution), static_cast<LONG>(page.verticalResolution)};
    }
};

constexpr DWORD kMostFaxPages = 1000;

// How many pages of this size and resolution there may be: as many as fit into memory, up to kMostFaxPages.
DWORD mostFaxPages(const FaxRequest &request);

// Without the text's name. Throws UsageError.
FaxRequest parseFaxRequest(const Arguments &arguments);

} // namespace tool
