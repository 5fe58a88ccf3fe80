// Walking folders: every TIFF and CALS file below a folder, in order of name, the folder's own files first.
#pragma once

#include "tools/file_name.h"

#include <functional>
#include <set>
#include <utility>

namespace tool {

class FileWalk {
public:
    using FileFunction = std::function<void(const FileName &file)>;
    using FailureFunction = std::function<void(const FileName &folder)>;

    // Files are those named *.tif, *.tiff, *.cal and *.cals. The second function is told of folders that cannot be
    // listed.
    FileWalk(FileFunction onFile, FailureFunction onFailure)
        : onFile_(std::move(onFile)), onFailure_(std::move(onFailure)) {}

    // Links to folders are followed; a folder that was walked already (a link may lead back) is not walked again.
    void folder(const FileName &name);

private:
    bool isNew(const FileName &folder);

    FileFunction onFile_;
    FailureFunction onFailure_;
    std::set<std::pair<unsigned long, unsigned long long>> walked_; // volume and file number
};

} // namespace tool
