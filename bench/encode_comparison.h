// Both libraries write the same page into a file of their own.
#pragma once

#include "bench/comparison.h"
#include "bench/made_cases.h"

namespace bench {

// Checks that libtiff finds the page in both files, then times the two in turns.
void compareEncoders(benchmark::State &state, const MadeCase &made, const Settings &settings);

// How long one page takes when many are appended to one file, for files of several sizes; prints a table.
void timeAppending(const Settings &settings);

} // namespace bench
