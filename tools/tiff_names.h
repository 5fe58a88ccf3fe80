// The names that TIFF gives to tags, field types and the values of the most common tags.
#pragma once

#include "tools/tag_numbers.h"

#include <optional>
#include <string>
#include <string_view>

namespace tool {

// "ImageWidth"; empty for a tag that has no name here.
std::string_view tagName(DWORD tag);

// The number of a name, in upper or lower case.
std::optional<DWORD> tagNumber(std::string_view name);

// The type that a tag's values customarily have; nothing for a tag that has no name here, or no one such type.
std::optional<Type> customaryType(DWORD tag);

// "SHORT"; "type 20" for a type that has no name.
std::string typeName(DWORD type);

// The number of a type's name, in upper or lower case.
std::optional<Type> typeNumber(std::string_view name);

// "WhiteIsZero"; the number for a value that has no name.
std::string photometricName(DWORD photometric);

// "Group 3 2D, fill bits": the scheme and its option. The option is T4Options for Compression 3, T6Options for 4 and
// Predictor for all others.
std::string compressionName(DWORD compression, DWORD option);

} // namespace tool
