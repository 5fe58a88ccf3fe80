// What the tests' companion module writes down of a call.
#pragma once

#include "vellum32.h"

struct NotedByCompanion {
    DWORD calls;
    BYTE record[sizeof(JpegCodecState)]; // as handed over, before anything was done with it
};
