// What is measured of the pages that the program makes: every page with every codec that takes it, in three layouts.
#pragma once

#include "bench/memory_tiff.h"

#include <string>
#include <vector>

namespace bench {

struct MadeCase {
    std::string name; // codec/page/layout
    Codec codec = Codec::None;
    std::string page;
    unsigned rowsPerStrip = 0;
};

std::vector<MadeCase> madeCases();

} // namespace bench
