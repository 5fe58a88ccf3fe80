// Windows: counts what the library makes to draw with, and makes a chosen one of it fail.
#pragma once

#include <windows.h>

namespace vellum::test {

enum class Drawing { Context, Page, Section, Font, Copy, Selection, Nothing };

// While it lives, counts; one object at a time. The n-th making (from 0) of the kind fails.
class DrawingCalls {
public:
    explicit DrawingCalls(Drawing failing = Drawing::Nothing, int nth = 0);
    DrawingCalls(const DrawingCalls &) = delete;
    DrawingCalls &operator=(const DrawingCalls &) = delete;
    ~DrawingCalls();

    struct Counts {
        int contexts = 0; // made or got, less deleted and released
        int objects = 0;  // made less deleted
        int made[static_cast<int>(Drawing::Nothing)] = {};
        LOGFONTA font = {}; // the last one that was asked for
    };
    [[nodiscard]] static const Counts &counts();
    [[nodiscard]] static int made(Drawing kind) { return counts().made[static_cast<int>(kind)]; }
};

} // namespace vellum::test
