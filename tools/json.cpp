// JSON output.
#include "tools/json.h"

#include <array>
#include <charconv>

namespace tool {

namespace {

// Length of the valid UTF-8 sequence at the start, 0 when there is none.
std::size_t utf8SequenceLength(std::string_view bytes) {
    const auto at = [bytes](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    const unsigned char lead = at(0);
    std::size_t length = 0;
    if (lead < 0x80) {
        return 1;
    }
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
    }
    if (length == 0 || bytes.size() < length) {
        return 0;
    }
    for (std::size_t i = 1; i < length; ++i) {
        if ((at(i) & 0xC0) != 0x80) {
            return 0;
        }
    }
    const bool overlong = (lead == 0xE0 && at(1) < 0xA0) || (lead == 0xF0 && at(1) < 0x90);
    const bool surrogate = lead == 0xED && at(1) > 0x9F;
    const bool beyondUnicode = lead == 0xF4 && at(1) > 0x8F;
    return overlong || surrogate || beyondUnicode ? 0 : length;
}

} // namespace

std::string utf8FromAnything(std::string_view bytes) {
    std::string utf8;
    while (!bytes.empty()) {
        const std::size_t length = utf8SequenceLength(bytes);
        if (length > 0) {
            utf8 += bytes.substr(0, length);
            bytes.remove_prefix(length);
            continue;
        }
        const auto latin1 = static_cast<unsigned char>(bytes.front());
        utf8 += static_cast<char>(0xC0 | (latin1 >> 6));
        utf8 += static_cast<char>(0x80 | (latin1 & 0x3F));
        bytes.remove_prefix(1);
    }
    return utf8;
}

void JsonWriter::key(std::string_view name) {
    startItem();
    quote(name);
    text_ += ": ";
    afterKey_ = true;
}

void JsonWriter::value(std::string_view utf8) {
    startItem();
    quote(utf8FromAnything(utf8));
}

void JsonWriter::value(double number) {
    std::array<char, 64> text{};
    const auto end = std::to_chars(text.data(), text.data() + text.size(), number).ptr;
    raw(std::string_view(text.data(), static_cast<std::size_t>(end - text.data())));
}

void JsonWriter::begin(char bracket, Layout layout) {
    startItem();
    // What stands inside one line stays in it.
    if (!levels_.empty() && levels_.back().layout == Layout::OneLine) {
        layout = Layout::OneLine;
    }
    text_ += bracket;
    levels_.push_back({layout});
}

void JsonWriter::end(char bracket) {
    const Level level = levels_.back();
    levels_.pop_back();
    if (!level.empty && level.layout == Layout::Lines) {
        newLine();
    }
    text_ += bracket;
    if (levels_.empty()) {
        text_ += '\n';
    }
}

void JsonWriter::raw(std::string_view token) {
    startItem();
    text_ += token;
}

void JsonWriter::startItem() {
    if (afterKey_ || levels_.empty()) {
        afterKey_ = false;
        return;
    }
    Level &level = levels_.back();
    if (!level.empty) {
        text_ += ',';
    }
    if (level.layout == Layout::Lines) {
        newLine();
    } else if (!level.empty) {
        text_ += ' ';
    }
    level.empty = false;
}

void JsonWriter::newLine() {
    text_.append("\n").append(levels_.size() * 2, ' ');
}

void JsonWriter::quote(std::string_view utf8) {
    static constexpr char kHex[] = "0123456789abcdef";
    text_ += '"';
    for (const char c : utf8) {
        const auto byte = static_cast<unsigned char>(c);
        if (c == '"' || c == '\\') {
            text_ += '\\';
            text_ += c;
        } else if (c == '\n' || c == '\t') {
            text_ += c == '\n' ? "\\n" : "\\t";
        } else if (byte < 0x20 || byte == 0x7F) {
            text_ += "\\u00";
            text_ += kHex[byte >> 4];
            text_ += kHex[byte & 15];
        } else {
            text_ += c;
        }
    }
    text_ += '"';
}

} // namespace tool
