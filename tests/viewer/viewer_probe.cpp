// Looks at the viewer from another process, and does what no key can do. Reads commands from standard input, a line
// each, and answers each with a line; the first word is "none" when there is no such window, menu or clipboard.
//   state                  client area on the screen (x y width height), scroll positions, whether the bars are shown,
//                          and how thick they are
//   caption
//   cursor                 a number for the cursor that the active program has set
//   foreground             the caption of the window that is active
//   place WIDTH HEIGHT     the window in the screen's corner, with so much room when there are no scroll bars
//   area CLASS             the place of a dialog (#32770) or an open menu (#32768) on the screen (x y width height)
//   dialog [ID]            the caption of a dialog or message box, or the text of one of its controls
//   clipboard X Y X Y ...  size of the clipboard's bitmap, and its colours at these places
//   hold, release          keeps the clipboard open, so that nobody else can open it
//   lines COUNT            how many lines a notch of the wheel is to scroll; -1 for a screenful
//   wheel TURN [shift]     as if the wheel had been turned by so many parts of a notch, of which there are 120
//   drop PATH              as if the file had been dropped on the window
//   paint                  marks all of the window as to be painted
//   close                  as the system's "Close"
#include <windows.h>

#include <shellapi.h>
#include <shlobj.h>

#include <array>
#include <cstdio>
#include <cstring>
#include <iostream>
#include <sstream>
#include <string>

namespace {

constexpr const char *kNone = "none";

HWND viewer() {
    return FindWindowA("VellumViewer", nullptr);
}

std::string textOf(HWND window) {
    std::array<char, 512> text{};
    SendMessageA(window, WM_GETTEXT, text.size(), reinterpret_cast<LPARAM>(text.data()));
    std::string line(text.data());
    for (char &c : line) {
        c = c == '\n' || c == '\r' ? ' ' : c;
    }
    return line;
}

std::string state() {
    RECT area{};
    POINT corner{};
    GetClientRect(viewer(), &area);
    ClientToScreen(viewer(), &corner);
    const LONG style = GetWindowLongA(viewer(), GWL_STYLE);
    std::ostringstream out;
    out << corner.x << ' ' << corner.y << ' ' << area.right << ' ' << area.bottom << ' '
        << GetScrollPos(viewer(), SB_HORZ) << ' ' << GetScrollPos(viewer(), SB_VERT) << ' '
        << ((style & WS_HSCROLL) != 0) << ' ' << ((style & WS_VSCROLL) != 0) << ' ' << GetSystemMetrics(SM_CXVSCROLL);
    return out.str();
}

// Of another program's cursor no more can be asked than whether it is the same as before.
std::string cursor() {
    CURSORINFO pointer{};
    pointer.cbSize = sizeof pointer;
    std::ostringstream out;
    out << (GetCursorInfo(&pointer) ? reinterpret_cast<ULONG_PTR>(pointer.hCursor) : 0);
    return out.str();
}

std::string place(std::istream &words) {
    RECT frame{};
    words >> frame.right >> frame.bottom;
    AdjustWindowRect(&frame, WS_OVERLAPPEDWINDOW, TRUE);
    SetWindowPos(viewer(), nullptr, 0, 0, frame.right - frame.left, frame.bottom - frame.top,
                 SWP_NOZORDER | SWP_NOACTIVATE);
    return "done";
}

// The visible window of a class that belongs to the viewer's program: others may have such windows, too.
HWND windowOfClass(const std::string &name) {
    DWORD owner = 0;
    GetWindowThreadProcessId(viewer(), &owner);
    HWND found = nullptr;
    while ((found = FindWindowExA(nullptr, found, name.c_str(), nullptr)) != nullptr) {
        DWORD process = 0;
        GetWindowThreadProcessId(found, &process);
        if (process == owner && IsWindowVisible(found)) {
            break;
        }
    }
    return found;
}

std::string area(std::istream &words) {
    RECT area{};
    std::string name;
    words >> name;
    if (!GetWindowRect(windowOfClass(name), &area)) {
        return kNone;
    }
    std::ostringstream out;
    out << area.left << ' ' << area.top << ' ' << area.right - area.left << ' ' << area.bottom - area.top;
    return out.str();
}

std::string dialog(std::istream &words) {
    const HWND found = windowOfClass("#32770");
    int id = 0;
    if (found == nullptr) {
        return kNone;
    }
    return "text " + textOf(words >> id ? GetDlgItem(found, id) : found);
}

std::string colorsOf(HBITMAP bitmap, std::istream &places) {
    BITMAP size{};
    GetObjectA(bitmap, sizeof size, &size);
    std::ostringstream out;
    out << size.bmWidth << ' ' << size.bmHeight;
    const HDC memory = CreateCompatibleDC(nullptr);
    const HGDIOBJ before = SelectObject(memory, bitmap);
    for (int x = 0, y = 0; places >> x >> y;) {
        const COLORREF color = GetPixel(memory, x, y);
        out << ' ' << int{GetRValue(color)} << ' ' << int{GetGValue(color)} << ' ' << int{GetBValue(color)};
    }
    SelectObject(memory, before);
    DeleteDC(memory);
    return out.str();
}

std::string clipboard(std::istream &places) {
    if (!IsClipboardFormatAvailable(CF_BITMAP) || !OpenClipboard(nullptr)) {
        return kNone;
    }
    const std::string colors = colorsOf(static_cast<HBITMAP>(GetClipboardData(CF_BITMAP)), places);
    CloseClipboard();
    return colors;
}

// For a window: Wine lets several programs that name none open the clipboard at the same time.
bool hold() {
    static const HWND holder = CreateWindowA("STATIC", "", 0, 0, 0, 0, 0, HWND_MESSAGE, nullptr, nullptr, nullptr);
    return OpenClipboard(holder) != 0;
}

bool turnWheel(std::istream &words) {
    int turn = 0;
    std::string key;
    words >> turn >> key;
    return PostMessageA(viewer(), WM_MOUSEWHEEL, MAKEWPARAM(key == "shift" ? MK_SHIFT : 0, turn), 0) != 0;
}

bool setLines(std::istream &words) {
    int lines = 0;
    words >> lines;
    return SystemParametersInfoA(SPI_SETWHEELSCROLLLINES, static_cast<UINT>(lines), nullptr, 0) != 0;
}

// The record lies in memory of the viewer's, as the system would put it there.
std::string drop(const std::string &path) {
    DWORD process = 0;
    GetWindowThreadProcessId(viewer(), &process);
    const HANDLE other = OpenProcess(PROCESS_VM_OPERATION | PROCESS_VM_WRITE, FALSE, process);
    const DROPFILES header{sizeof(DROPFILES), {0, 0}, FALSE, FALSE};
    std::string record(reinterpret_cast<const char *>(&header), sizeof header);
    record += path + std::string(2, '\0');
    void *place = VirtualAllocEx(other, nullptr, record.size(), MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE);
    const bool written = place != nullptr && WriteProcessMemory(other, place, record.data(), record.size(), nullptr);
    CloseHandle(other);
    return written && PostMessageA(viewer(), WM_DROPFILES, reinterpret_cast<WPARAM>(place), 0) ? "done" : kNone;
}

std::string answer(const std::string &line) {
    std::istringstream words(line);
    std::string command;
    words >> command >> std::ws;
    if (command == "clipboard") {
        return clipboard(words);
    }
    if (command == "dialog") {
        return dialog(words);
    }
    if (command == "hold") {
        return hold() ? "done" : kNone;
    }
    if (command == "release") {
        return CloseClipboard() ? "done" : kNone;
    }
    if (command == "lines") {
        return setLines(words) ? "done" : kNone;
    }
    if (command == "cursor") {
        return cursor();
    }
    if (viewer() == nullptr) {
        return kNone;
    }
    if (command == "state") {
        return state();
    }
    if (command == "caption") {
        return "text " + textOf(viewer());
    }
    if (command == "foreground") {
        return "text " + (GetForegroundWindow() != nullptr ? textOf(GetForegroundWindow()) : "");
    }
    if (command == "place") {
        return place(words);
    }
    if (command == "area") {
        return area(words);
    }
    if (command == "drop") {
        std::string path;
        std::getline(words, path);
        return drop(path);
    }
    if (command == "wheel") {
        return turnWheel(words) ? "done" : kNone;
    }
    if (command == "paint") {
        return InvalidateRect(viewer(), nullptr, FALSE) ? "done" : kNone;
    }
    return command == "close" && PostMessageA(viewer(), WM_CLOSE, 0, 0) ? "done" : "what?";
}

} // namespace

int main() {
    for (std::string line; std::getline(std::cin, line);) {
        while (!line.empty() && line.back() == '\r') {
            line.pop_back();
        }
        std::cout << answer(line) << std::endl;
    }
    return 0;
}
