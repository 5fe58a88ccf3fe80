// Finding a place for the library to write to.
#include "tools/library_file.h"

#include "tools/temporary_file.h"

#include <utility>

namespace tool {

LibraryFile::LibraryFile(const FileName &name, Start start) : file_(name), place_(file_.handOver()) {
    fail(file_.failure());
    if (failure_.empty() && !place_.isForLibrary()) {
        // The folder for temporary files is the way out for names that the library does not take.
        elsewhere_ = std::make_unique<TemporaryFile>();
        place_ = elsewhere_->name();
        if (place_.shown().empty() || !place_.isForLibrary()) {
            fail("cannot be written: there is no folder for temporary files.");
        }
    }
    if (failure_.empty() && start == Start::OldContent) {
        copy(name, place_);
    }
    libraryPath_ = place_.forLibrary();
}

LibraryFile::~LibraryFile() = default;

bool LibraryFile::commit() {
    if (failure_.empty() && elsewhere_ != nullptr) {
        copy(place_, file_.handOver());
    }
    if (failure_.empty() && !file_.commit()) {
        fail(file_.failure());
    }
    return failure_.empty();
}

void LibraryFile::copy(const FileName &from, const FileName &to) {
    constexpr BOOL kFailsIfThere = FALSE;
    if (CopyFileW(from.forSystem().c_str(), to.forSystem().c_str(), kFailsIfThere) == 0) {
        fail(writeFailure(GetLastError()));
    }
}

void LibraryFile::fail(std::string failure) {
    if (failure_.empty()) {
        failure_ = std::move(failure);
    }
}

} // namespace tool
