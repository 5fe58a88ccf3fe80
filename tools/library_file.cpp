// Finding a place for the library to write to.
#include "tools/library_file.h"

#include <array>
#include <utility>

namespace tool {

// The folder for temporary files is the way out for names that the library does not take.
class TemporaryFile {
public:
    TemporaryFile() : name_(make()) {}
    TemporaryFile(const TemporaryFile &) = delete;
    TemporaryFile &operator=(const TemporaryFile &) = delete;
    ~TemporaryFile() { DeleteFileW(name_.forSystem().c_str()); }

    [[nodiscard]] const FileName &name() const { return name_; }

private:
    static FileName make() {
        std::array<wchar_t, MAX_PATH + 1> folder{};
        std::array<wchar_t, MAX_PATH + 1> path{};
        GetTempPathW(static_cast<DWORD>(folder.size()), folder.data());
        GetTempFileNameW(folder.data(), L"vlm", 0, path.data());
        return FileName(toUtf8(path.data()));
    }

    FileName name_;
};

LibraryFile::LibraryFile(const FileName &name, Start start) : file_(name), place_(file_.handOver()) {
    fail(file_.failure());
    if (failure_.empty() && !place_.isForLibrary()) {
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
