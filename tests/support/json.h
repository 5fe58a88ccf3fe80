// A small JSON reader for test manifests: one value from one string. Malformed text throws. Escapes above 0x7F become
// question marks, because no test looks at them.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <map>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

namespace vellum::test {

struct Json {
    enum class Kind { Null, Bool, Number, Text, Array, Object };
    Kind kind = Kind::Null;
    bool flag = false;
    double number = 0;
    std::string text;
    std::vector<Json> items;
    std::map<std::string, Json> members;

    // A member; a null value when there is none.
    [[nodiscard]] const Json &operator[](const std::string &name) const {
        static const Json none;
        const auto found = members.find(name);
        return found == members.end() ? none : found->second;
    }
    [[nodiscard]] bool isNull() const { return kind == Kind::Null; }
    [[nodiscard]] bool isTrue() const { return kind == Kind::Bool && flag; }
    [[nodiscard]] unsigned long whole(unsigned long otherwise = 0) const {
        return kind == Kind::Number ? static_cast<unsigned long>(number) : otherwise;
    }
};

class JsonReader {
public:
    static Json read(const std::string &text) {
        JsonReader reader(text);
        Json value = reader.value();
        reader.skipSpace();
        reader.require(reader.at_ == text.size());
        return value;
    }

private:
    explicit JsonReader(const std::string &text) : text_(text) {}

    void require(bool condition) const {
        if (!condition) {
            throw std::runtime_error("malformed JSON at character " + std::to_string(at_));
        }
    }
    void skipSpace() {
        while (at_ < text_.size() &&
               (text_[at_] == ' ' || text_[at_] == '\n' || text_[at_] == '\r' || text_[at_] == '\t')) {
            ++at_;
        }
    }
    char next() {
        require(at_ < text_.size());
        return text_[at_++];
    }
    bool take(char c) {
        skipSpace();
        if (at_ < text_.size() && text_[at_] == c) {
            ++at_;
            return true;
        }
        return false;
    }
    void word(const char *expected) {
        for (; *expected != '\0'; ++expected) {
            require(next() == *expected);
        }
    }

    Json value() {
        skipSpace();
        require(at_ < text_.size());
        switch (text_[at_]) {
        case '{':
            return object();
        case '[':
            return array();
        case '"': {
            Json json;
            json.kind = Json::Kind::Text;
            json.text = string();
            return json;
        }
        case 't':
            word("true");
            return boolean(true);
        case 'f':
            word("false");
            return boolean(false);
        case 'n':
            word("null");
            return {};
        default:
            return digits();
        }
    }

    static Json boolean(bool flag) {
        Json json;
        json.kind = Json::Kind::Bool;
        json.flag = flag;
        return json;
    }

    Json digits() {
        Json json;
        json.kind = Json::Kind::Number;
        char *end = nullptr;
        json.number = std::strtod(text_.c_str() + at_, &end);
        const auto length = static_cast<std::size_t>(end - (text_.c_str() + at_));
        require(length > 0);
        at_ += length;
        return json;
    }

    Json object() {
        Json json;
        json.kind = Json::Kind::Object;
        require(next() == '{');
        while (!take('}')) {
            if (!json.members.empty()) {
                require(take(','));
                skipSpace();
            }
            skipSpace();
            std::string name = string();
            require(take(':'));
            json.members.emplace(std::move(name), value());
        }
        return json;
    }

    Json array() {
        Json json;
        json.kind = Json::Kind::Array;
        require(next() == '[');
        while (!take(']')) {
            if (!json.items.empty()) {
                require(take(','));
            }
            json.items.push_back(value());
        }
        return json;
    }

    std::string string() {
        std::string out;
        require(next() == '"');
        for (char c = next(); c != '"'; c = next()) {
            out += c == '\\' ? escape() : c;
        }
        return out;
    }
    char escape() {
        const char c = next();
        switch (c) {
        case 'n':
            return '\n';
        case 't':
            return '\t';
        case 'r':
            return '\r';
        case 'b':
            return '\b';
        case 'f':
            return '\f';
        case 'u': {
            std::string code;
            for (int i = 0; i < 4; ++i) {
                code += next();
            }
            const long point = std::strtol(code.c_str(), nullptr, 16);
            return point < 0x80 ? static_cast<char>(point) : '?';
        }
        default:
            return c;
        }
    }

    const std::string &text_;
    std::size_t at_ = 0;
};

} // namespace vellum::test
