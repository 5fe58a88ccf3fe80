// Any bytes as a CALS file. What must hold is in cals_file_input.h; inputs worth keeping are in
// tests/corpus/cals_files. The library opens files by their paths: these are in memory.
#include "fuzz/cals_file_input.h"

#include <sys/mman.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

namespace {

class MemoryFile {
public:
    explicit MemoryFile(const char *name) : file_(memfd_create(name, 0)) {
        if (file_ < 0) {
            std::abort();
        }
        path_ = "/proc/self/fd/" + std::to_string(file_);
    }
    [[nodiscard]] const char *path() const { return path_.c_str(); }

    void fill(const std::uint8_t *data, std::size_t size) const {
        if (ftruncate(file_, 0) != 0 || pwrite(file_, data, size, 0) != static_cast<ssize_t>(size)) {
            std::abort();
        }
    }

private:
    int file_;
    std::string path_;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t *data, std::size_t size) {
    static const MemoryFile file("cals");
    static const MemoryFile copy("copy");
    file.fill(data, size);
    if (const char *complaint = vellum::test::complaintAboutCalsFile(file.path(), copy.path()); complaint != nullptr) {
        std::fprintf(stderr, "%s\n", complaint);
        std::abort();
    }
    return 0;
}
