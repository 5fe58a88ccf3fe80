// Tags, field types and values as a user writes them on the command line. What makes no sense throws UsageError.
#pragma once

#include "tools/tag_numbers.h"
#include "tools/tag_values.h"

#include <span>
#include <string>

namespace tool {

// A number from 1 to 65535, or a TIFF name in upper or lower case.
DWORD parseTag(const std::string &text);

// "XResolution (282)", "tag 65000"
std::string tagLabel(DWORD tag);

// A type whose values the library writes.
Type parseType(const std::string &text);
bool isWritable(DWORD type);

// One or more numbers, decimal or hexadecimal; RATIONAL values as 204/1 or 96.5; of ASCII one text.
TagValues parseValues(DWORD tag, Type type, std::span<const std::string> words);

} // namespace tool
