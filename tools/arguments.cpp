// Takes command lines apart; see the header for the rules.
#include "tools/arguments.h"

#include <algorithm>
#include <charconv>

namespace tool {

namespace {

const Option &findOption(std::span<const Option> options, std::string_view name) {
    const auto found = std::ranges::find_if(options, [name](const Option &option) {
        return option.name == name || (!option.shortName.empty() && option.shortName == name);
    });
    if (found == options.end()) {
        throw UsageError("unknown option '" + std::string(name) + "'");
    }
    return *found;
}

} // namespace

Arguments::Arguments(const std::vector<std::string> &words, std::span<const Option> options) {
    bool optionsEnded = false;
    for (auto word = words.begin(); word != words.end(); ++word) {
        if (optionsEnded || word->size() < 2 || word->front() != '-') {
            operands_.push_back(*word);
            continue;
        }
        if (*word == "--") {
            optionsEnded = true;
            continue;
        }
        const std::size_t equals = word->starts_with("--") ? word->find('=') : std::string::npos;
        const Option &option = findOption(options, std::string_view(*word).substr(0, equals));
        const std::string name(option.name);
        std::string value;
        if (option.kind == Option::Kind::Flag) {
            if (equals != std::string::npos) {
                throw UsageError("option '" + name + "' takes no value");
            }
        } else if (equals != std::string::npos) {
            value = word->substr(equals + 1);
        } else if (++word != words.end()) {
            value = *word;
        } else {
            throw UsageError("option '" + name + "' needs a value");
        }
        std::vector<std::string> &values = options_[option.name];
        if (!values.empty() && option.kind != Option::Kind::List) {
            throw UsageError("option '" + name + "' is given twice");
        }
        values.push_back(std::move(value));
    }
}

std::optional<std::string> Arguments::value(std::string_view option) const {
    const auto found = options_.find(option);
    return found == options_.end() ? std::nullopt : std::optional(found->second.front());
}

std::vector<std::string> Arguments::values(std::string_view option) const {
    const auto found = options_.find(option);
    return found == options_.end() ? std::vector<std::string>() : found->second;
}

bool isNamed(std::string_view value, std::string_view name) {
    const auto small = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    return std::ranges::equal(value, name, {}, small, small);
}

unsigned long parsePageNumber(std::string_view option, const std::string &text) {
    unsigned long number = 0;
    const char *const end = text.data() + text.size();
    const auto [parsedTo, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || parsedTo != end || number == 0) {
        throw UsageError("option '" + std::string(option) + "' wants a page number from 1 on, not '" + text + "'");
    }
    return number;
}

} // namespace tool
