// The list of subcommands, in the order in which help shows them.
#include "tools/command.h"

#include <algorithm>
#include <array>

namespace tool {

std::span<const Command *const> allCommands() {
    static constexpr std::array kCommands = {&infoCommand, &convertCommand,   &checkCommand, &tagCommand,
                                             &noteCommand, &copyCommand,      &splitCommand, &mergeCommand,
                                             &iocaCommand, &faxAppendCommand, &faxCommand,   &stampCommand};
    return kCommands;
}

const Command *findCommand(std::string_view name) {
    const auto commands = allCommands();
    const auto found = std::ranges::find(commands, name, &Command::name);
    return found == commands.end() ? nullptr : *found;
}

} // namespace tool
