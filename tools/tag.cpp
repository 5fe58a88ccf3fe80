// vellum tag: the command line, and looking at tags.
#include "tools/tag.h"

#include "tools/console.h"
#include "tools/info.h"
#include "tools/tag_text.h"

#include <algorithm>
#include <array>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum tag - look at the tags of a page and change them

Usage: vellum tag list   [options] FILE
       vellum tag get    [options] FILE TAG
       vellum tag set    [options] FILE TAG VALUE...
       vellum tag delete [options] FILE TAG

TAG is a number or a TIFF name (Artist, xresolution). 'list' shows all tags of
the page, 'get' one with all its values. VALUE is a number, decimal or 0x and
hexadecimal digits; 204/1 or 96.5 for RATIONAL; one text, in quotes, for ASCII.
Values that start with '-' stand behind '--'.

'set' and 'delete' build the file anew of its pages, with the byte order II, and
replace it in one step when it is whole; the pages' data stay as they are. A
file with a page that cannot be copied, or not with all tags ('vellum copy
--help'), is left alone; so are tags that tell how the image is stored.

Options:
      --page N      the page, counted from 1; the first one if not given
      --type T      set: BYTE, ASCII, SHORT, LONG, RATIONAL, SBYTE, UNDEFINED or
                    SLONG. Default: the type that the tag has in the file, or
                    customarily
      --force       set, delete: change any tag, and to any type
      --all-values  list: values in full (long lists are cut otherwise)
      --json        list, get: one JSON document instead of text
  -h, --help        show this help

Exit status: 0 all went well, 1 the file could not be read or changed, or has no
such tag to get, 2 wrong usage.
)";

constexpr std::array kOptions = {Option{"--page", Option::Kind::Value}, Option{"--type", Option::Kind::Value},
                                 Option{"--force"}, Option{"--all-values"}, Option{"--json"}};

enum class Action { List, Get, Set, Delete };

struct ActionRules {
    std::string_view name;
    Action action;
    std::size_t leastOperands; // the action's name among them
    std::size_t mostOperands;
    std::vector<std::string_view> options; // besides --page
};

const ActionRules &rulesOf(const std::vector<std::string> &operands) {
    static const std::vector<ActionRules> kRules = {
        {"list", Action::List, 2, 2, {"--all-values", "--json"}},
        {"get", Action::Get, 3, 3, {"--json"}},
        {"set", Action::Set, 4, MAXDWORD, {"--type", "--force"}},
        {"delete", Action::Delete, 3, 3, {"--force"}},
    };
    if (operands.empty()) {
        throw UsageError("one of list, get, set and delete is needed");
    }
    const auto found = std::ranges::find(kRules, operands.front(), &ActionRules::name);
    if (found == kRules.end()) {
        throw UsageError("one of list, get, set and delete is needed, not '" + operands.front() + "'");
    }
    return *found;
}

void checkUsage(const Arguments &arguments, const ActionRules &rules) {
    const std::size_t count = arguments.operands().size();
    const std::string name(rules.name);
    if (count < rules.leastOperands || count > rules.mostOperands) {
        static constexpr std::array kNeeds = {"one file", "one file and one tag", "one file, one tag and its values",
                                              "one file and one tag"};
        throw UsageError("'" + name + "' needs " + kNeeds[static_cast<std::size_t>(rules.action)]);
    }
    for (const Option &option : kOptions) {
        if (option.name != "--page" && arguments.has(option.name) &&
            std::ranges::find(rules.options, option.name) == rules.options.end()) {
            throw UsageError("'" + std::string(option.name) + "' does not go with '" + name + "'");
        }
    }
}

std::string jsonOf(const SelectedPages &pages, const RegisteredPage &page, std::span<const DWORD> tags) {
    JsonWriter json;
    json.beginObject();
    json.key("file");
    json.value(pages.document.name().shown());
    json.key("page");
    json.value(page.index() + 1);
    json.key("tags");
    writeTags(json, page, tags);
    json.endObject();
    return json.take();
}

// All tags of the page, or one.
Status show(const TagChange &target, std::optional<DWORD> tag, TagValues::Extent extent, bool asJson) {
    const auto pages = openPage(target.file, target.index);
    if (pages == nullptr) {
        return Status::Failed;
    }
    const RegisteredPage page(pages->document, target.index);
    if (!page) {
        return complainOfPage(target.file, target.index, TiffError());
    }
    std::vector<DWORD> tags = tagNumbers(page);
    if (tag) {
        if (std::ranges::find(tags, *tag) == tags.end()) {
            Console::get().complain(missingTag(*pages, *tag));
            return Status::Failed;
        }
        tags = {*tag};
    }
    Console::get().print(asJson ? jsonOf(*pages, page, tags) : tagList(page, tags, extent));
    return Status::Ok;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    const ActionRules &rules = rulesOf(operands);
    checkUsage(arguments, rules);
    const auto pageOption = arguments.value("--page");
    TagChange target{FileName(operands[1]), pageOption ? parsePageNumber("--page", *pageOption) - 1 : 0,
                     operands.size() > 2 ? parseTag(operands[2]) : 0};
    target.force = arguments.has("--force");
    if (const auto type = arguments.value("--type")) {
        target.type = parseType(*type);
    }
    const bool asJson = arguments.has("--json");
    switch (rules.action) {
    case Action::List:
        break;
    case Action::Get:
        return show(target, target.tag, TagValues::Extent::Whole, asJson);
    case Action::Set:
        target.words.assign(operands.begin() + 3, operands.end());
        return setTag(target);
    case Action::Delete:
        return deleteTag(target);
    }
    const bool whole = arguments.has("--all-values");
    return show(target, std::nullopt, whole ? TagValues::Extent::Whole : TagValues::Extent::Abbreviated, asJson);
}

} // namespace

std::unique_ptr<SelectedPages> openPage(const FileName &file, DWORD index) {
    return openPages(PageSelection::pageOf(file, index + 1));
}

std::string missingTag(const SelectedPages &pages, DWORD tag) {
    return pages.label(pages.indices.front()) + ": there is no " + tagLabel(tag) + ".";
}

constinit const Command tagCommand = {"tag", "look at the tags of a page and change them", kHelp, run};

} // namespace tool
