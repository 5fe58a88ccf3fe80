// The two halves of `vellum tag`: looking at tags, and changing them.
#pragma once

#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/page_selection.h"
#include "tools/tag_numbers.h"
#include "tools/tag_values.h"

#include <optional>

namespace tool {

struct TagChange {
    FileName file;
    DWORD index; // of the page, from 0
    DWORD tag;
    bool force = false;
    std::optional<Type> type = {}; // nothing: the tag's own, or its customary one
    std::vector<std::string> words = {};
    bool told = true; // what the tag is now, when all went well
};

// Throws UsageError when the tag must not be changed so.
Status setTag(const TagChange &change);
Status deleteTag(const TagChange &change);

// The page of that index, or nothing after a complaint.
std::unique_ptr<SelectedPages> openPage(const FileName &file, DWORD index);

// "scan.tif: page 2: there is no tag Artist (315)."
std::string missingTag(const SelectedPages &pages, DWORD tag);

} // namespace tool
