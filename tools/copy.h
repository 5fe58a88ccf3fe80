// Pages from some files into one, as they are coded: what `vellum copy` and `vellum merge` have in common.
#pragma once

#include "tools/command.h"
#include "tools/page_selection.h"

#include <vector>

namespace tool {

struct CopyRequest {
    std::vector<PageSelection> inputs;
    FileName output;
    // What becomes of a file that has the output's name already.
    enum class Existing { Refused, Replaced, Enlarged } existing = Existing::Refused;
};

// Copies all the pages or none, and tells of each.
Status copyPages(const CopyRequest &request);

// Pages that can be copied.
struct CopyablePages {
    std::unique_ptr<SelectedPages> pages; // none, after complaints, when one of them cannot be copied
    Status status = Status::Ok;           // of a copy that goes well: something may have to be left behind
};
CopyablePages openCopyable(const PageSelection &selection);

// Throws UsageError when one of the inputs has the output's name.
void checkOutput(std::span<const PageSelection> inputs, const FileName &output);

} // namespace tool
