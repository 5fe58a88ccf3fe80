// vellum note: notes on pages, as the library keeps them in a tag and burns them into pixels.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/info.h"
#include "tools/page_note.h"
#include "tools/tag.h"

#include <charconv>

namespace tool {

namespace {

constexpr std::string_view kHelp = R"(vellum note - look at notes on pages, add them and burn them in

Usage: vellum note list [--page N] FILE
       vellum note add  [options] FILE LINE...
       vellum note burn [--page N] FILE OUT

A note is some lines of text with a place on the page. It is kept in the page's
tag 316 (HostComputer) and leaves the pixels alone; programs that know of notes
show it over the picture.

'list' shows the notes of all pages, or of one. 'add' gives a page a note of
these lines, in place of the one that it has; the file is built anew as 'vellum
tag set' does it. 'vellum tag delete FILE 316' removes a note. 'burn' writes the
page with its note as a part of its pixels into a TIFF of its own, black on the
page as it is or, for an opaque note, on white: Group 4 for bilevel pages, LZW
for others. The text has the system's own font; its size is measured anew.

Options:
      --page N    the page, counted from 1; add, burn: default the first one
      --at X,Y    add: the upper left corner, in pixels of the page; default 0,0
      --opaque    add: the note has a background
      --force     add: even if tag 316 holds something else, as a host's name
  -h, --help      show this help

Exit status: 0 all went well, 1 the file could not be read or written, or has no
note to burn, 2 wrong usage.
)";

constexpr Option kOptions[] = {
    {"--page", Option::Kind::Value}, {"--at", Option::Kind::Value}, {"--opaque"}, {"--force"}};

Status complain(const std::string &label, const std::string &reason) {
    Console::get().complain(label + ": " + reason);
    return Status::Failed;
}

POINT parsePlace(const std::string &text) {
    POINT place{};
    const char *const end = text.data() + text.size();
    const auto [comma, error] = std::from_chars(text.data(), end, place.x);
    const auto rest = error == std::errc() && comma != end && *comma == ','
                          ? std::from_chars(comma + 1, end, place.y)
                          : std::from_chars_result{comma, std::errc::invalid_argument};
    if (rest.ec != std::errc() || rest.ptr != end || place.x < 0 || place.y < 0) {
        throw UsageError("option '--at' wants two numbers as in 100,200, not '" + text + "'");
    }
    return place;
}

// ---- list

std::string look(const std::string &label, const PageNote &note) {
    const NoteRecord &record = note.record();
    const auto corner = [](LONG x, LONG y) { return std::to_string(x) + "," + std::to_string(y); };
    std::string text = label + ": " + (record.opaque != 0 ? "opaque" : "transparent") + " note from " +
                       corner(record.left, record.top) + " to " + corner(record.right, record.bottom) + "\n";
    for (const std::string &line : note.lines()) {
        text += line.empty() ? "\n" : "    " + line + "\n";
    }
    return text;
}

Status list(const FileName &file, std::optional<DWORD> page) {
    const auto pages = openPages(page ? PageSelection::pageOf(file, *page) : PageSelection::wholeFile(file));
    if (pages == nullptr) {
        return Status::Failed;
    }
    Status status = Status::Ok;
    for (const DWORD index : pages->indices) {
        const RegisteredPage registered(pages->document, index);
        PageNote note;
        if (!registered) {
            status = complainOfPage(file, index, TiffError());
        } else if (note.read(registered)) {
            Console::get().print(look(pages->label(index), note));
        }
    }
    return status;
}

// ---- add

// The tag's value for a page that may have it. Nothing after a complaint.
std::optional<std::string> valueFor(const SelectedPages &pages, PageNote &note, bool force) {
    const DWORD index = pages.indices.front();
    const RegisteredPage page(pages.document, index);
    if (!page) {
        complainOfPage(pages.document.name(), index, TiffError());
        return std::nullopt;
    }
    PageNote old;
    const auto held = readTag(page, tag::kHostComputer);
    if (held && !force && !old.read(page)) {
        complain(pages.label(index), "HostComputer (316) is no note but " +
                                         held->shown(TagValues::Extent::Abbreviated) + "; '--force' replaces it.");
        return std::nullopt;
    }
    auto value = note.place() ? note.tagValue(page) : std::nullopt;
    if (!value) {
        complain(pages.label(index), "the note could not be made.");
    }
    return value;
}

Status add(const Arguments &arguments, const FileName &file, DWORD index) {
    const auto &operands = arguments.operands();
    const POINT place = parsePlace(arguments.value("--at").value_or("0,0"));
    PageNote note;
    if (!note.write({operands.begin() + 2, operands.end()}, place.x, place.y, arguments.has("--opaque"))) {
        return complain(file.shown(), libraryMessage(VELLUM_NO_MEMORY));
    }
    std::optional<std::string> value;
    {
        const auto pages = openPage(file, index);
        value = pages != nullptr ? valueFor(*pages, note, arguments.has("--force")) : std::nullopt;
    }
    return value ? setTag({file, index, tag::kHostComputer, true, Type::Ascii, {*value}}) : Status::Failed;
}

// ---- burn

Status save(const FileName &out, const OwnedDib &dib, POINT dotsPerInch) {
    DibOutput tiff(out);
    const bool saved = tiff.add(dib, dibCoding(std::nullopt, dib.header().biBitCount), dotsPerInch) && tiff.commit();
    return saved ? Status::Ok : complain(out.shown(), tiff.failure());
}

Status burn(const FileName &file, DWORD index, const FileName &out) {
    const auto pages = openPage(file, index);
    if (pages == nullptr) {
        return Status::Failed;
    }
    const std::string label = pages->label(index);
    PageNote note;
    {
        const RegisteredPage page(pages->document, index);
        if (!page) {
            return complainOfPage(file, index, TiffError());
        }
        if (page.isDelegatedJpeg() && !jpegModuleAvailable()) {
            return complain(label, kNoJpegModule);
        }
        if (!note.read(page)) {
            return complain(label, "there is no note.");
        }
    }
    OwnedDib dib(LoadTiffIntoDIB(file.forLibrary().c_str(), index, FALSE));
    if (const DWORD error = TiffError(); !dib || error != VELLUM_OK) {
        return complain(label, libraryMessage(error));
    }
    const POINT dotsPerInch = dib.dotsPerInch();
    const OwnedDib burned(note.burnInto(dib.release()));
    if (!burned) {
        return complain(label, "the note could not be burned in.");
    }
    const Status status = save(out, burned, dotsPerInch);
    if (status == Status::Ok) {
        Console::get().print(label + " -> " + out.shown() + "\n");
    }
    return status;
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    const std::string action = operands.empty() ? "" : operands.front();
    if (action != "list" && action != "add" && action != "burn") {
        throw UsageError("one of list, add and burn is needed" + (action.empty() ? "" : ", not '" + action + "'"));
    }
    if (action != "add") {
        for (const std::string_view option : {"--at", "--opaque", "--force"}) {
            if (arguments.has(option)) {
                throw UsageError("'" + std::string(option) + "' does not go with '" + action + "'");
            }
        }
    }
    const auto pageOption = arguments.value("--page");
    const auto page = pageOption ? std::optional<DWORD>(parsePageNumber("--page", *pageOption)) : std::nullopt;
    const DWORD index = page.value_or(1) - 1;
    if (action == "list") {
        if (operands.size() != 2) {
            throw UsageError("'list' needs one file");
        }
        return list(FileName(operands[1]), page);
    }
    if (action == "add") {
        if (operands.size() < 3) {
            throw UsageError("'add' needs one file and the lines of the note");
        }
        return add(arguments, FileName(operands[1]), index);
    }
    if (operands.size() != 3) {
        throw UsageError("'burn' needs one file and the file to write");
    }
    const FileName out(operands[2]);
    if (out.sameAs(FileName(operands[1]))) {
        throw UsageError("the output is the input");
    }
    return burn(FileName(operands[1]), index, out);
}

} // namespace

constinit const Command noteCommand = {"note", "look at notes on pages, add them and burn them in", kHelp, run};

} // namespace tool
