// vellum check: decodes every page of every file to nowhere and gives one verdict line a page. It is made for large
// archives: it never asks, never writes, and goes on whatever a file holds.
#include "tools/arguments.h"
#include "tools/cals_file.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/file_walk.h"
#include "tools/tiff_document.h"

#include <array>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum check - decode every page and tell which ones are whole

Usage: vellum check [options] FILE|FOLDER...

Every page is decoded to nowhere and gets one line:

  ok      scan.tif: page 1 of 2
  FAILED  scan.tif: page 2 of 2: after line 812 of 2287: Error during
          compression or decompression.                      (all on one line)

A file that is no TIFF, whose chain of pages breaks or leads back, or that has
more than 1000 pages gets a FAILED line of its own. A CALS file has one page; it
gets a FAILED line of its own when its header describes no picture. The last
line sums up. In a folder, and in the folders within, all files *.tif, *.tiff,
*.cal and *.cals are checked; a file that is named itself is checked whatever
its name is. A folder in which there is no such file counts as failed. Nothing
is ever written.

Options:
  -q, --quiet  only the FAILED lines
  -h, --help   show this help

Exit status: 0 every page is whole, 1 some page or file failed, 2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--quiet", Option::Kind::Flag, "-q"}};

struct DecodeRun {
    DWORD lines = 0; // delivered so far
    std::string label;

    DWORD userValue() { return static_cast<DWORD>(reinterpret_cast<DWORD_PTR>(this)); }
};

DWORD VELLUMAPI countLine(BYTE *, DWORD, DWORD userValue) {
    constexpr DWORD kProgressLines = 256;
    DecodeRun &run = *reinterpret_cast<DecodeRun *>(DWORD_PTR{userValue});
    if (++run.lines % kProgressLines == 0) {
        Console::get().progress(run.label + ": line " + std::to_string(run.lines));
    }
    return 0;
}

// What is wrong with a page that was decoded with this error; empty when it is whole.
std::string verdict(const DecodeRun &run, DWORD height, DWORD error) {
    std::string place;
    if (run.lines > 0) {
        place = "after line " + std::to_string(run.lines) + " of " + std::to_string(height) + ": ";
    }
    if (error != VELLUM_OK) {
        return place + libraryMessage(error);
    }
    return run.lines < height ? place + "the other lines are missing." : std::string();
}

class Checker {
public:
    explicit Checker(bool quiet) : quiet_(quiet) {}

    void check(const FileName &name);
    Status finish() const;

private:
    void checkFolder(const FileName &name);
    void checkFile(const FileName &name);
    void checkTiff(const FileName &name);
    void checkCals(const FileName &name);
    // The verdict on a page: empty when it is whole.
    static std::string checkPage(const TiffDocument &document, DWORD index, const std::string &label);
    void judge(const std::string &label, const std::string &reason);
    void pass(const std::string &label);
    void fail(const std::string &label, const std::string &reason);

    bool quiet_;
    unsigned long files_ = 0;
    unsigned long pages_ = 0;
    unsigned long failures_ = 0;
};

void Checker::check(const FileName &name) {
    name.isFolder() ? checkFolder(name) : checkFile(name);
}

void Checker::checkFolder(const FileName &name) {
    const unsigned long filesBefore = files_;
    const unsigned long failuresBefore = failures_;
    FileWalk walk([this](const FileName &file) { checkFile(file); },
                  [this](const FileName &folder) { fail(folder.shown(), "the folder cannot be listed."); });
    walk.folder(name);
    if (files_ == filesBefore && failures_ == failuresBefore) {
        fail(name.shown(), "there is no .tif, .tiff, .cal or .cals file in the folder.");
    }
}

void Checker::checkFile(const FileName &name) {
    ++files_;
    Console::get().progress(std::to_string(files_) + " files: " + name.shown());
    isCalsFile(name) ? checkCals(name) : checkTiff(name);
}

void Checker::checkTiff(const FileName &name) {
    const TiffDocument document(name);
    if (!document.isOpen()) {
        fail(name.shown(), document.openMessage());
        return;
    }
    if (document.pageCount() == 0) {
        fail(name.shown(), "there is no page in the file.");
    }
    const std::string count = std::to_string(document.pageCount());
    for (DWORD index = 0; index < document.pageCount(); ++index) {
        const std::string label = name.shown() + ": page " + std::to_string(index + 1) + " of " + count;
        judge(label, checkPage(document, index, label));
    }
    if (const std::string chain = document.chainMessage(); !chain.empty()) {
        fail(name.shown(), chain);
    }
}

void Checker::checkCals(const FileName &name) {
    const CalsPicture picture = measureCals(name);
    if (picture.error != VELLUM_OK) {
        fail(name.shown(), picture.failure);
        return;
    }
    const std::string label = name.shown() + ": page 1 of 1";
    DecodeRun run{0, label};
    const DWORD error = decodeCals(name, picture, run.userValue(), countLine);
    judge(label, verdict(run, static_cast<DWORD>(picture.info.rpelcnt[1]), error));
}

std::string Checker::checkPage(const TiffDocument &document, DWORD index, const std::string &label) {
    const RegisteredPage page(document, index);
    if (!page) {
        return libraryMessage(TiffError());
    }
    if (page.isDelegatedJpeg() && !jpegModuleAvailable()) {
        return kNoJpegModule;
    }
    BITMAPINFOHEADER header{};
    if (const DWORD error = GetTiffDimensions(page.handle(), page.index(), &header); error != VELLUM_OK) {
        return libraryMessage(error);
    }
    const DWORD height = static_cast<DWORD>(header.biHeight);
    if (header.biWidth == 0) {
        return "the page is 0 pixels wide."; // and may have four thousand million lines
    }
    DecodeRun run{0, label};
    const DWORD decoded = DecodeTiffImage(page.handle(), page.index(), 0, 0, run.userValue(), countLine);
    return verdict(run, height, decoded != 0 ? DWORD{VELLUM_OK} : TiffError());
}

void Checker::judge(const std::string &label, const std::string &reason) {
    ++pages_;
    reason.empty() ? pass(label) : fail(label, reason);
}

void Checker::pass(const std::string &label) {
    if (!quiet_) {
        Console::get().print("ok      " + label + "\n");
        Console::get().flush();
    }
}

void Checker::fail(const std::string &label, const std::string &reason) {
    ++failures_;
    Console::get().print("FAILED  " + label + ": " + reason + "\n");
    Console::get().flush();
}

Status Checker::finish() const {
    const auto counted = [](unsigned long number, const char *noun) {
        return std::to_string(number) + " " + noun + (number == 1 ? "" : "s");
    };
    if (!quiet_) {
        Console::get().print(counted(pages_, "page") + " in " + counted(files_, "file") + " checked, " +
                             (failures_ == 0 ? "no failure" : counted(failures_, "failure")) + "\n");
    }
    return failures_ == 0 ? Status::Ok : Status::Failed;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    if (arguments.operands().empty()) {
        throw UsageError("no file given");
    }
    Checker checker(arguments.has("--quiet"));
    for (const FileName &name : namesFromOperands(arguments.operands())) {
        checker.check(name);
    }
    return checker.finish();
}

} // namespace

constinit const Command checkCommand = {"check", "decode every page and tell which ones are whole", kHelp, run};

} // namespace tool
