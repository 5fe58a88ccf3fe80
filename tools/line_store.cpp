// Lines from a decoder into a store.
#include "tools/line_store.h"

#include "tools/picture.h"

#include <exception>

namespace tool {

DWORD VELLUMAPI storeLine(BYTE *line, DWORD index, DWORD userValue) {
    StoringRun &run = *reinterpret_cast<StoringRun *>(DWORD_PTR{userValue});
    try {
        run.lines.add(line);
        showLineProgress(run.progressLabel, "reading", index, run.height);
    } catch (const std::exception &) {
        return VELLUM_NO_MEMORY; // nothing may be thrown through the library
    }
    return VELLUM_OK;
}

} // namespace tool
