// The subcommands of vellum.exe. Each lives in a file of its own, with its help text and its run function; command.cpp
// lists them. A subcommand is a thin client of the library: it knows the public header and files, not TIFF coding.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// What the program tells its caller. Of several files the worst counts.
enum class Status : int {
    Ok = 0,
    Failed = 1, // some file or page could not be dealt with, or only in part
    Usage = 2,  // the command line makes no sense; nothing was done
};

constexpr Status worse(Status a, Status b) {
    return a < b ? b : a;
}

struct Command {
    std::string_view name;
    std::string_view summary; // for the list of commands
    std::string_view help;    // the whole page of help, ending with a newline
    // Runs with the words behind the command's name. Throws UsageError.
    Status (*run)(const std::vector<std::string> &words);
};

extern const Command infoCommand;
extern const Command convertCommand;
extern const Command checkCommand;
extern const Command tagCommand;
extern const Command noteCommand;
extern const Command copyCommand;
extern const Command splitCommand;
extern const Command mergeCommand;
extern const Command iocaCommand;
extern const Command faxAppendCommand;
extern const Command faxCommand;
extern const Command stampCommand;

std::span<const Command *const> allCommands();
const Command *findCommand(std::string_view name);

} // namespace tool
