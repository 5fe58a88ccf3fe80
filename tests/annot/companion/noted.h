// What the tests' annotation module writes down of its calls.
#pragma once

#include <windows.h>

struct NotedByAnnotations {
    DWORD countCalls;
    DWORD saveCalls;
    DWORD loadCalls;
    DWORD annotations; // of the last call that had them
    DWORD size;        // of the last buffer or data
};

// The set that the module makes of any data.
#define MODULE_RECREATED_SET 0xC0FFEE01UL
