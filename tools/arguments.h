// The words behind a subcommand, taken apart into options and operands.
//
// Options start with "-" and may stand anywhere; "--page 3" and "--page=3" mean the same; "--" ends the options. A lone
// "-" is an operand. "/" never starts an option: it starts a Unix path.
#pragma once

#include <map>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace tool {

// A command line that makes no sense; the text says why, without the program's name.
class UsageError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

struct Option {
    std::string_view name; // "--page"
    enum class Kind {
        Flag,
        Value,
        List, // a value, and the option may be given several times
    } kind = Kind::Flag;
    std::string_view shortName = {}; // "-q", or none
};

class Arguments {
public:
    // Throws UsageError for an option that is not in the list, has no value where it needs one or occurs twice.
    Arguments(const std::vector<std::string> &words, std::span<const Option> options);

    [[nodiscard]] bool has(std::string_view option) const { return options_.contains(option); }
    [[nodiscard]] std::optional<std::string> value(std::string_view option) const;
    // The values of a list, in the order of the command line.
    [[nodiscard]] std::vector<std::string> values(std::string_view option) const;
    [[nodiscard]] const std::vector<std::string> &operands() const { return operands_; }

private:
    std::map<std::string_view, std::vector<std::string>> options_;
    std::vector<std::string> operands_;
};

// Whether a value is this name, in upper or lower case.
bool isNamed(std::string_view value, std::string_view name);

// A page as a user counts: from 1. Throws UsageError for anything that is no number from 1 on.
unsigned long parsePageNumber(std::string_view option, const std::string &text);

} // namespace tool
