// The names that TIFF gives to tags, field types and the values of the most common tags.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>

namespace tool {

// "ImageWidth"; empty for a tag that has no name here.
std::string_view tagName(DWORD tag);

// "SHORT"; "type 20" for a type that has no name.
std::string typeName(DWORD type);

// "WhiteIsZero"; the number for a value that has no name.
std::string photometricName(DWORD photometric);

// "Group 3 2D, fill bits": the scheme and its option. The option is T4Options for Compression 3, T6Options for 4 and
// Predictor for all others.
std::string compressionName(DWORD compression, DWORD option);

} // namespace tool
