// Where tests find their files and where they may write.
#pragma once

#include <windows.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vellum::test {

using Bytes = std::vector<BYTE>;

// A file of tests/corpus, by its path below it. VELLUM_FIXTURES names another folder.
std::string fixture(std::string_view name);

// A file of the sample collection that lies beside the repository (../shared/samples, or VELLUM_SAMPLES). The
// collection is no part of the project: tests that use it begin with SKIP_WITHOUT_SAMPLES().
std::string sample(std::string_view name);
bool haveSamples();

#define SKIP_WITHOUT_SAMPLES()                                                                                         \
    if (!vellum::test::haveSamples())                                                                                  \
    GTEST_SKIP() << "SAMPLES MISSING: no sample collection at " << vellum::test::sample("")                            \
                 << "; not tested: " << ::testing::UnitTest::GetInstance()->current_test_info()->name()

// A new name in the folder for temporary files; short enough for every call. The file is deleted when the object goes.
class TempFile {
public:
    // Makes no file yet.
    TempFile();
    explicit TempFile(const Bytes &content);
    TempFile(const TempFile &) = delete;
    TempFile &operator=(const TempFile &) = delete;
    ~TempFile();

    [[nodiscard]] const char *path() const { return path_.c_str(); }

private:
    std::string path_;
};

// The folder for temporary files, without a separator at its end.
std::string tempFolder();

// A path in it of that many characters, or a few more than the folder has.
std::string tempPathOf(std::size_t characters, char letter);

// The whole file; nothing when it cannot be read.
std::optional<Bytes> readFile(const std::string &path);
bool writeFile(const std::string &path, const Bytes &content);

} // namespace vellum::test
