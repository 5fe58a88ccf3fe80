// Fax pages drawn from a text file.
#pragma once

#include "core/stream.h"

namespace vellum {

// CreateFaxPageFromASCII, which see. Sets no error number.
DWORD drawFaxPages(const FaxPageParams *params, DWORD maxPages, HANDLE *pages, DWORD kind, HBITMAP bitmap,
                   DWORD &status);

} // namespace vellum
