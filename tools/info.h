// The two looks of `vellum info`.
#pragma once

#include "tools/command.h"
#include "tools/json.h"
#include "tools/tag_values.h"
#include "tools/tiff_document.h"

#include <span>
#include <vector>

namespace tool {

struct InfoOptions {
    bool tags = false;
    TagValues::Extent extent = TagValues::Extent::Abbreviated;
};

// Each prints what there is to tell and complains of what there is not.
Status printInfoText(std::span<const FileName> names, const InfoOptions &options);
Status printInfoJson(std::span<const FileName> names, const InfoOptions &options);

// The same of one CALS file.
Status printCalsText(const FileName &name);
Status writeCalsJson(JsonWriter &json, const FileName &name);

// Tags of a page in either look: lines, or the value of a JSON member.
std::string tagList(const RegisteredPage &page, std::span<const DWORD> tags, TagValues::Extent extent);
void writeTags(JsonWriter &json, const RegisteredPage &page, std::span<const DWORD> tags);

// Messages that both have in common.
Status complainOfFile(const TiffDocument &document);
Status complainOfPage(const FileName &name, DWORD index, DWORD error);
Status complainOfChain(const TiffDocument &document);

} // namespace tool
