// vellum note: notes on pages, as the library keeps them in a tag and burns them into pixels.
#include "tools/arguments.h"
#include "tools/command.h"
#include "tools/console.h"
#include "tools/dib_output.h"
#include "tools/info.h"
#include "tools/lengths.h"
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
show it over the picture. Its letters are about 16 pixels high, whatever the
page's resolution; for a text to be read on paper there is 'vellum stamp'.

'list' shows the notes of all pages, or of one. 'add' gives a page a note of
these lines, in place of the one that it has, and shows it; a LINE with line
ends in it is several. The file is built anew as 'vellum tag set' does it.
'vellum tag delete FILE 316' removes a note. 'burn' writes the page with its
note as a part of its pixels into a TIFF of its own, black on the page as it is
or, for an opaque note, on white: Group 4 for bilevel pages, LZW for others. The
text has the system's own font; its size is measured anew. What lies outside the
page is cut off; a note that lies there wholly is not burned.

Options:
      --page N    the page, counted from 1; add, burn: default the first one
      --at X,Y    add: the upper left corner, in whole pixels of the page from 0
                  on; default 0,0
      --opaque    add: the note has a background
      --force     add: even if tag 316 holds something else, as a host's name
  -h, --help      show this help

Exit status: 0 all went well, 1 the file could not be read or written, or has no
note to burn on its page, 2 wrong usage.
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
        throw UsageError("option '--at' wants two whole numbers of pixels from 0 on, as 100,200, not '" + text + "'");
    }
    return place;
}

// ---- list

std::string look(const std::string &label, const PageNote &note) {
    const NoteRecord &record = note.record();
    std::string text = label + ": " + (record.opaque != 0 ? "opaque" : "transparent") + " note from " +
                       placeText(record.left, record.top) + " to " + placeText(record.right, record.bottom) + "\n";
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
    std::string label;
    if (const auto pages = openPage(file, index); pages != nullptr) {
        value = valueFor(*pages, note, arguments.has("--force"));
        label = pages->label(index);
    }
    constexpr bool kTold = false; // but shown as a note
    const Status status =
        value ? setTag({file, index, tag::kHostComputer, true, Type::Ascii, {*value}, kTold}) : Status::Failed;
    if (status == Status::Ok) {
        Console::get().print(look(label, note));
    }
    return status;
}

// ---- burn

Status save(const FileName &out, const OwnedDib &dib, POINT dotsPerInch) {
    DibOutput tiff(out);
    const bool saved = tiff.add(dib, dibCoding(std::nullopt, dib.header().biBitCount), dotsPerInch) && tiff.commit();
    return saved ? Status::Ok : complain(out.shown(), tiff.failure());
}

// The note of a page whose pixels can be had. False after a complaint.
bool readNote(const SelectedPages &pages, DWORD index, PageNote &note) {
    const RegisteredPage page(pages.document, index);
    const std::string label = pages.label(index);
    if (!page) {
        complainOfPage(pages.document.name(), index, TiffError());
    } else if (page.isDelegatedJpeg() && !jpegModuleAvailable()) {
        complain(label, kNoJpegModule);
    } else if (!note.read(page)) {
        complain(label, "there is no note.");
    } else {
        return true;
    }
    return false;
}

// The page as a DIB with its note in it. Null after a complaint.
OwnedDib burnNote(const SelectedPages &pages, DWORD index, PageNote &note) {
    const std::string label = pages.label(index);
    OwnedDib dib(LoadTiffIntoDIB(pages.document.name().forLibrary().c_str(), index, FALSE));
    if (const DWORD error = TiffError(); !dib || error != VELLUM_OK) {
        complain(label, libraryMessage(error));
        return OwnedDib();
    }
    const BITMAPINFOHEADER page = dib.header();
    OwnedDib burned(note.burnInto(dib.release()));
    if (!burned) {
        complain(label, "the note could not be burned in.");
        return OwnedDib();
    }
    if (!note.isOnPage(page.biWidth, page.biHeight)) {
        complain(label, "the note at " + placeText(note.record().left, note.record().top) +
                            " lies outside the page of " + std::to_string(page.biWidth) + " x " +
                            std::to_string(page.biHeight) + " pixels.");
        return OwnedDib();
    }
    return burned;
}

Status burn(const FileName &file, DWORD index, const FileName &out) {
    const auto pages = openPage(file, index);
    PageNote note;
    if (pages == nullptr || !readNote(*pages, index, note)) {
        return Status::Failed;
    }
    const OwnedDib burned = burnNote(*pages, index, note);
    if (!burned) {
        return Status::Failed;
    }
    const Status status = save(out, burned, burned.dotsPerInch());
    if (status == Status::Ok) {
        Console::get().print(pages->label(index) + " -> " + out.shown() + "\n");
    }
    return status;
}

// ---- the command line

std::string parseAction(const Arguments &arguments) {
    const std::string action = arguments.operands().empty() ? "" : arguments.operands().front();
    if (action != "list" && action != "add" && action != "burn") {
        throw UsageError("one of list, add and burn is needed" + (action.empty() ? "" : ", not '" + action + "'"));
    }
    for (const std::string_view option : {"--at", "--opaque", "--force"}) {
        if (action != "add" && arguments.has(option)) {
            throw UsageError("'" + std::string(option) + "' does not go with '" + action + "'");
        }
    }
    return action;
}

void checkOperands(const std::string &action, std::size_t count) {
    if (action == "list" && count != 2) {
        throw UsageError("'list' needs one file");
    }
    if (action == "add" && count < 3) {
        throw UsageError("'add' needs one file and the lines of the note");
    }
    if (action == "burn" && count != 3) {
        throw UsageError("'burn' needs one file and the file to write");
    }
}

Status run(const std::vector<std::string> &words) {
    const Arguments arguments(words, kOptions);
    const auto &operands = arguments.operands();
    const std::string action = parseAction(arguments);
    const auto pageOption = arguments.value("--page");
    const auto page = pageOption ? std::optional<DWORD>(parsePageNumber("--page", *pageOption)) : std::nullopt;
    const DWORD index = page.value_or(1) - 1;
    checkOperands(action, operands.size());
    const FileName file(operands[1]);
    if (action == "list") {
        return list(file, page);
    }
    if (action == "add") {
        return add(arguments, file, index);
    }
    const FileName out(operands[2]);
    if (out.sameAs(file)) {
        throw UsageError("the output is the input");
    }
    return burn(file, index, out);
}

} // namespace

constinit const Command noteCommand = {"note", "look at notes on pages, add them and burn them in", kHelp, run};

} // namespace tool
