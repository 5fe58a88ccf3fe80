// A file in the folder for temporary files, deleted in the end.
#pragma once

#include "tools/file_name.h"

namespace tool {

class TemporaryFile {
public:
    // The file is there and empty; its name is empty when there is no folder for it.
    TemporaryFile();
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile();

    [[nodiscard]] const FileName &name() const { return name_; }

private:
    FileName name_;
};

} // namespace tool
