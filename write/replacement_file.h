// A new file beside an old one that is to take its place: in one step of the file system, so that at every moment one
// of the two is there whole. A file that never gets there is deleted.
#pragma once

#include "core/error.h"
#include "core/stream.h"

namespace vellum {

class ReplacementFile {
public:
    ReplacementFile() = default;
    ReplacementFile(const ReplacementFile &) = delete;
    ReplacementFile &operator=(const ReplacementFile &) = delete;
    ~ReplacementFile();

    // Makes the file, empty and open, in the folder of the old one: its name with the extension "~~~", or "~00" to
    // "~99" where there are such files. Errors: 6, also when the old one is read-only; 7.
    Error create(const char *oldPath);

    [[nodiscard]] StreamHandle stream() const { return stream_; }

    // Waits until all of it is on the disk. Error: 6.
    Error flush();

    // Closes the file and puts it in place of the old one, which nobody may have open.
    // Error: 6; the old file is then as it was.
    Error replace(const char *oldPath);

private:
    bool tryCreate();

    char path_[MAX_PATH] = "";
    StreamHandle stream_ = kNoStream;
    bool exists_ = false; // and is ours
};

} // namespace vellum
