// vellum.exe: reads the command line and runs the subcommand. Whatever happens, it ends with one of three exit statuses
// (see command.h), and no dialog of the system ever waits for a click.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/file_name.h"
#include "tools/table.h"
#include "vellum32.h"

#include <windows.h>

#include <shellapi.h>

#include <exception>
#include <new>

namespace {

using tool::Command;
using tool::Console;
using tool::Status;

std::vector<std::string> commandLineWords() {
    int count = 0;
    wchar_t **const words = CommandLineToArgvW(GetCommandLineW(), &count);
    std::vector<std::string> result;
    for (int i = 1; words != nullptr && i < count; ++i) {
        result.push_back(tool::toUtf8(words[i]));
    }
    LocalFree(words);
    return result;
}

std::string shortHelp() {
    tool::Table commands({{"", tool::Table::Align::Left}, {"", tool::Table::Align::Left}});
    for (const Command *command : tool::allCommands()) {
        commands.add({std::string(command->name), std::string(command->summary)});
    }
    return "Usage: vellum COMMAND [options] FILE...\n\nCommands:\n" + commands.text(2) +
           "\n'vellum COMMAND --help' tells more about a command.\n";
}

std::string longHelp() {
    return "vellum - look into, convert, copy, edit and check TIFF files\n\n" + shortHelp() + R"(
Options:
  -h, --help     show this help
      --version  show the version of the library

Files are named the Windows way or the Unix way; * and ? stand for the files
that match. Pages are counted from 1. A file's name must have no more than 149
characters, its folders included, to be read.

Exit status: 0 everything went well, 1 some file or page failed, 2 wrong usage.
)";
}

std::string versionText() {
    char version[32] = "";
    GetTiffVersion(version, sizeof version);
    return std::string("vellum, VELLUM32.DLL ") + version + "\n";
}

Status usageError(const std::string &command, const std::string &message) {
    const std::string space = command.empty() ? "" : " ";
    Console::get().printError("vellum" + space + command + ": " + message + "\nTry 'vellum" + space + command +
                              " --help'.\n");
    return Status::Usage;
}

bool asksForHelp(const std::vector<std::string> &words) {
    for (const std::string &word : words) {
        if (word == "--") {
            return false;
        }
        if (word == "--help" || word == "-h") {
            return true;
        }
    }
    return false;
}

Status runCommand(const Command &command, const std::vector<std::string> &words) {
    if (asksForHelp(words)) {
        Console::get().print(command.help);
        return Status::Ok;
    }
    return command.run(words);
}

Status run(std::vector<std::string> words) {
    Console &console = Console::get();
    if (words.empty()) {
        console.printError(shortHelp());
        return Status::Usage;
    }
    const std::string first = words.front();
    words.erase(words.begin());
    if (first == "--help" || first == "-h" || (first == "help" && words.empty())) {
        console.print(longHelp());
        return Status::Ok;
    }
    if (first == "--version") {
        console.print(versionText());
        return Status::Ok;
    }
    const bool wantsHelp = first == "help";
    const std::string name = wantsHelp ? words.front() : first;
    if (name.starts_with('-')) {
        return usageError("", "unknown option '" + name + "'");
    }
    const Command *const command = tool::findCommand(name);
    if (command == nullptr) {
        return usageError("", "unknown command '" + name + "'");
    }
    try {
        return wantsHelp ? runCommand(*command, {"--help"}) : runCommand(*command, words);
    } catch (const tool::UsageError &error) {
        return usageError(name, error.what());
    }
}

} // namespace

int main() {
    SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX | SEM_NOOPENFILEERRORBOX);
    Status status = Status::Failed;
    try {
        status = run(commandLineWords());
    } catch (const std::bad_alloc &) {
        Console::get().complain("not enough memory");
    } catch (const std::exception &error) {
        Console::get().complain(error.what());
    }
    Console &console = Console::get();
    console.flush();
    console.clearProgress();
    if (!console.outputIntact()) {
        console.complain("the output could not be written");
        status = tool::worse(status, Status::Failed);
    }
    return static_cast<int>(status);
}
