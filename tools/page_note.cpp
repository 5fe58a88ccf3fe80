// Notes by the library's calls, and the dialog's user.
#include "tools/page_note.h"

#include "tools/ansi_text.h"
#include "tools/tag_numbers.h"
#include "tools/tag_values.h"

#include <cstring>
#include <utility>

namespace tool {

namespace {

constexpr char kDialogClass[] = "#32770";

std::string fromAnsi(const std::string &ansi) {
    const int length = static_cast<int>(ansi.size());
    std::wstring wide(static_cast<std::size_t>(MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, nullptr, 0)), L'\0');
    MultiByteToWideChar(CP_ACP, 0, ansi.data(), length, wide.data(), static_cast<int>(wide.size()));
    return toUtf8(wide);
}

std::string textOf(HGLOBAL block) {
    std::string text;
    if (const void *bytes = GlobalLock(block); bytes != nullptr) {
        text.assign(static_cast<const char *>(bytes), GlobalSize(block));
        GlobalUnlock(block);
    }
    return text.substr(0, text.find('\0'));
}

HGLOBAL blockOf(const std::string &text) {
    const HGLOBAL block = GlobalAlloc(GHND, text.size() + 1);
    if (void *bytes = GlobalLock(block); bytes != nullptr) {
        std::memcpy(bytes, text.data(), text.size());
        GlobalUnlock(block);
    }
    return block;
}

void release(HGLOBAL block) {
    if (block != nullptr) {
        GlobalFree(block);
    }
}

// Presses "Store" in the next dialog of this thread.
class StoringUser {
public:
    StoringUser() : hook_(SetWindowsHookExA(WH_CBT, &answer, nullptr, GetCurrentThreadId())) {}
    StoringUser(const StoringUser &) = delete;
    StoringUser &operator=(const StoringUser &) = delete;
    ~StoringUser() { UnhookWindowsHookEx(hook_); }

    explicit operator bool() const { return hook_ != nullptr; }

private:
    static LRESULT CALLBACK answer(int code, WPARAM window, LPARAM details) {
        char name[16] = "";
        if (code == HCBT_ACTIVATE && GetClassNameA(reinterpret_cast<HWND>(window), name, sizeof name) != 0 &&
            std::strcmp(name, kDialogClass) == 0) {
            PostMessageA(reinterpret_cast<HWND>(window), WM_COMMAND, IDOK, 0);
        }
        return CallNextHookEx(nullptr, code, window, details);
    }

    HHOOK hook_;
};

// The text with CR LF for every LF that stands alone.
std::string withCrBeforeLf(std::string_view text) {
    std::string whole;
    char before = 0;
    for (const char c : text) {
        whole += c == '\n' && before != '\r' ? "\r" : "";
        whole += c;
        before = c;
    }
    return whole;
}

bool store(NoteRecord &note) {
    const StoringUser user;
    const HGLOBAL before = note.text;
    // The dialog's text has taken the place of the one before, if it came so far.
    const bool stored = user && Note(nullptr, &note) != 0 && note.text != before;
    if (note.text != before) {
        release(before);
    }
    return stored;
}

} // namespace

PageNote::~PageNote() {
    release(record_.text);
    release(record_.image);
}

bool PageNote::write(const std::vector<std::string> &lines, LONG left, LONG top, bool opaque) {
    std::string text;
    for (const std::string &line : lines) {
        text += (&line == &lines.front() ? "" : "\r\n") + withCrLf(ansiText("the note", line));
    }
    release(record_.text);
    record_ = {1, opaque ? 1 : 0, blockOf(text), left, top, left, top, record_.image};
    return record_.text != nullptr;
}

bool PageNote::read(const RegisteredPage &page) {
    const HGLOBAL before = record_.text;
    if (GetNoteTagFromTiff(page.handle(), page.index(), &record_) == 0) {
        return false;
    }
    release(before);
    return true;
}

bool PageNote::place() {
    record_.inHeader = 1;
    return store(record_);
}

HGLOBAL PageNote::burnInto(HGLOBAL dib) {
    release(std::exchange(record_.image, dib));
    record_.inHeader = 0;
    // Notes of other programs may have lines that end with LF alone. The library takes these for one line when it
    // measures the note, which would then lose the others.
    const HGLOBAL text = blockOf(withCrBeforeLf(textOf(record_.text)));
    if (text == nullptr) {
        return nullptr;
    }
    release(std::exchange(record_.text, text));
    if (!store(record_) || record_.image == dib) {
        return nullptr;
    }
    release(dib);
    return std::exchange(record_.image, nullptr);
}

std::vector<std::string> PageNote::lines() const {
    std::vector<std::string> lines;
    const std::string text = textOf(record_.text);
    Lines rest(text);
    while (const auto line = rest.next()) {
        std::string shown(*line);
        std::erase_if(shown, [](char c) { return static_cast<unsigned char>(c) < ' '; });
        lines.push_back(fromAnsi(shown));
    }
    return lines;
}

std::optional<std::string> PageNote::tagValue(const RegisteredPage &page) const {
    if (AddNoteTagToTiff(page.handle(), page.index(), &record_) == 0) {
        return std::nullopt;
    }
    const auto value = readTag(page, tag::kHostComputer);
    return value ? std::optional(std::string(value->text())) : std::nullopt;
}

} // namespace tool
