// Writes one JSON document: objects and arrays with a member a line, arrays of plain values in one line.
#pragma once

#include <windows.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace tool {

// Text of unknown origin as UTF-8: what is not valid UTF-8 is taken for Latin-1.
std::string utf8FromAnything(std::string_view bytes);

class JsonWriter {
public:
    enum class Layout { Lines, OneLine };

    void beginObject(Layout layout = Layout::Lines) { begin('{', layout); }
    void endObject() { end('}'); }
    void beginArray(Layout layout = Layout::Lines) { begin('[', layout); }
    void endArray() { end(']'); }

    // Inside an object, before each value.
    void key(std::string_view name);

    void value(std::string_view utf8);
    void value(const char *utf8) { value(std::string_view(utf8)); }
    void value(const std::string &utf8) { value(std::string_view(utf8)); }
    void value(LONGLONG number) { raw(std::to_string(number)); }
    void value(DWORD number) { raw(std::to_string(number)); }
    void value(double number);
    void value(bool truth) { raw(truth ? "true" : "false"); }
    void null() { raw("null"); }

    // The document so far; it is whole when every begin has had its end. Taken out, so that a long one can be printed
    // in pieces.
    [[nodiscard]] std::string take() { return std::exchange(text_, {}); }

private:
    struct Level {
        Layout layout;
        bool empty = true;
    };

    void begin(char bracket, Layout layout);
    void end(char bracket);
    void raw(std::string_view token);
    void startItem();
    void newLine();
    void quote(std::string_view utf8);

    std::string text_;
    std::vector<Level> levels_;
    bool afterKey_ = false;
};

} // namespace tool
