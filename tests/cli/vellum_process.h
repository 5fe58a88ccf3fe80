// Runs vellum.exe, or an example, in a folder of the test's own and catches what it prints. The programs are those that
// were built beside the tests (../bin).
#pragma once

#include "support/paths.h"

#include <string>
#include <vector>

namespace vellum::test {

struct Outcome {
    std::string out;
    std::string err;
    DWORD status = 0;
};

// A folder for one test, deleted with all that is in it.
class WorkFolder {
public:
    WorkFolder();
    WorkFolder(const WorkFolder &) = delete;
    WorkFolder &operator=(const WorkFolder &) = delete;
    ~WorkFolder();

    // Runs "vellum WORDS..." in the folder. Words are UTF-8 and may hold blanks.
    [[nodiscard]] Outcome run(const std::vector<std::string> &words) const;
    // The same in a process that gets no more than 18 MB of memory in one piece.
    [[nodiscard]] Outcome runInBrokenMemory(const std::vector<std::string> &words) const;
    // The same with standard error on a console, until something has been seen there three times; then the program is
    // ended with status 99. The outcome's err is what was seen, a line in brackets for every time.
    [[nodiscard]] Outcome runOnConsole(const std::vector<std::string> &words) const;
    // Runs "example_EXAMPLE WORDS..." of examples/ in the folder; it gets its words in the ANSI code page.
    [[nodiscard]] Outcome runExample(const std::string &example, const std::vector<std::string> &words) const;

    // Names in the folder, with "/" between folders.
    void put(const std::string &name, const Bytes &content) const;
    [[nodiscard]] std::optional<Bytes> get(const std::string &name) const;
    void makeFolder(const std::string &name) const;
    [[nodiscard]] std::string path(const std::string &name) const { return path_ + "\\" + name; }
    // All files of the folder itself, in order of name.
    [[nodiscard]] std::vector<std::string> files() const;

private:
    enum class Memory { Whole, Broken };
    [[nodiscard]] Outcome start(const std::wstring &program, std::wstring commandLine,
                                Memory memory = Memory::Whole) const;

    std::string path_;
};

// A picture that comes with the project, from examples/samples.
Bytes bundled(const std::string &name);

} // namespace vellum::test
