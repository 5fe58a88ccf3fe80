// Reading lists of pages and looking them up.
#include "tools/page_selection.h"

#include "tools/arguments.h"
#include "tools/console.h"

#include <algorithm>
#include <charconv>

namespace tool {

namespace {

// Position of the colon before the pages, or the operand's end.
std::size_t pagesColon(const std::string &operand) {
    const std::size_t colon = operand.rfind(':');
    const bool isList =
        colon != std::string::npos && operand.find_first_not_of("0123456789,-", colon + 1) == std::string::npos;
    const bool isDrive = colon == 1;
    return isList && !isDrive ? colon : operand.size();
}

// Takes a number from the start of a text. Nothing when there is none from 1 on.
std::optional<DWORD> takeNumber(std::string_view &text) {
    DWORD number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number == 0) {
        return std::nullopt;
    }
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

} // namespace

PageSelection::PageSelection(const std::string &operand) : file_(operand.substr(0, pagesColon(operand))) {
    if (const std::size_t colon = pagesColon(operand); colon < operand.size()) {
        ranges_ = parse(operand, std::string_view(operand).substr(colon + 1));
    }
}

std::vector<PageSelection::Range> PageSelection::parse(const std::string &operand, std::string_view list) {
    const UsageError wrong("'" + operand + "' does not name pages like 1,3,5-8");
    std::vector<Range> ranges;
    do {
        if (!ranges.empty()) {
            list.remove_prefix(1); // the comma
        }
        const auto first = takeNumber(list);
        if (!first) {
            throw wrong;
        }
        Range range{*first, *first};
        if (list.starts_with('-')) {
            list.remove_prefix(1);
            const bool isOpen = list.empty() || list.starts_with(',');
            range.last = isOpen ? kToTheEnd : takeNumber(list).value_or(0);
        }
        if (range.last < range.first) {
            throw wrong;
        }
        ranges.push_back(range);
    } while (list.starts_with(','));
    if (!list.empty()) {
        throw wrong;
    }
    return ranges;
}

PageSelection PageSelection::onePage(const std::string &operand) {
    PageSelection selection(operand);
    if (selection.isWholeFile()) {
        selection.ranges_.push_back({1, 1});
    }
    const Range &range = selection.ranges_.front();
    if (selection.ranges_.size() > 1 || range.first != range.last) {
        throw UsageError("'" + operand + "' names more than one page");
    }
    return selection;
}

std::vector<PageSelection> PageSelection::all(std::span<const std::string> operands) {
    std::vector<PageSelection> selections;
    for (const std::string &operand : operands) {
        const PageSelection pattern(operand);
        for (FileName &name : namesFromOperands({pattern.file().shown()})) {
            selections.push_back(PageSelection(std::move(name), pattern.ranges_));
        }
    }
    return selections;
}

std::optional<std::vector<DWORD>> PageSelection::indices(DWORD pageCount, std::string &failure) const {
    std::vector<DWORD> indices;
    const std::vector<Range> whole = {{1, kToTheEnd}};
    for (const Range &range : isWholeFile() ? whole : ranges_) {
        const DWORD last = range.last == kToTheEnd ? std::max(pageCount, range.first) : range.last;
        if (pageCount == 0) {
            failure = "there is no page in the file.";
            return std::nullopt;
        }
        if (last > pageCount) {
            failure = "there is no page " + std::to_string(std::max(range.first, pageCount + 1)) + "; the file has " +
                      std::to_string(pageCount) + ".";
            return std::nullopt;
        }
        for (DWORD page = range.first; page <= last; ++page) {
            indices.push_back(page - 1);
        }
    }
    return indices;
}

std::string SelectedPages::label(DWORD index) const {
    return document.name().shown() + ": page " + std::to_string(index + 1);
}

std::unique_ptr<SelectedPages> openPages(const PageSelection &selection) {
    auto pages = std::make_unique<SelectedPages>(selection.file());
    std::string failure;
    if (!pages->document.isOpen()) {
        failure = pages->document.openMessage();
    } else if (auto indices = selection.indices(pages->document.pageCount(), failure)) {
        pages->indices = std::move(*indices);
        failure = selection.isWholeFile() ? pages->document.chainMessage() : "";
    }
    if (!failure.empty()) {
        Console::get().complain(selection.file().shown() + ": " + failure);
        return nullptr;
    }
    return pages;
}

} // namespace tool
