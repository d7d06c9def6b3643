// SPDX-License-Identifier: MIT
//
// Objects for programs: about the answers to entries, a line each, and about any texts. They must parse, and
// say what was meant.
#include "Json.h"
#include "EntryText.h"
#include "ShownText.h"
#include "calculators.h"

#include <algorithm>
#include <cctype>
#include <map>

namespace {

// A strict reader of objects (RFC 8259) that hold strings, whole numbers, null and such objects. Strings come
// back in UTF-8, numbers and nulls as they stand, the fields of an object in an object behind a point.
class JsonReader {
public:
    explicit JsonReader(std::string_view json) : rest(json) {}

    std::map<std::string, std::string> Object(const std::string& before = "") {
        std::map<std::string, std::string> fields;
        Expect('{');
        do {
            Blanks();
            const std::string name = before + String();
            Blanks();
            Expect(':');
            Blanks();
            if (Front() == '{') {
                fields.merge(Object(name + '.'));
                fields[name] = "{}";
            } else {
                require(fields.emplace(name, Value()).second, "no field comes twice", name);
            }
            Blanks();
        } while (Take(','));
        Expect('}');
        return fields;
    }

    std::string String() {
        std::string text;
        Expect('"');
        while (Front() != '"') {
            const size_t plain = std::min(rest.find_first_of("\"\\"), rest.size());
            for (const char c : rest.substr(0, plain))
                require(c >= 0x20 && c < 0x7F, "JSON is ASCII without control characters", rest);
            text += rest.substr(0, plain);
            rest.remove_prefix(plain);
            if (Front() == '\\') text += Escaped();
        }
        Expect('"');
        return text;
    }

    std::string_view Rest() const { return rest; }

private:
    char Front() const {
        require(!rest.empty(), "JSON does not end early");
        return rest.front();
    }
    bool Take(char c) {
        if (Front() != c) return false;
        rest.remove_prefix(1);
        return true;
    }
    void Expect(char c) { require(Take(c), "JSON is well-formed", rest); }
    void Blanks() {
        while (Take(' ')) {
        }
    }

    std::string Value() {
        if (Front() == '"') return String();
        std::string value;
        if (rest.substr(0, 4) == "null") {
            value = "null";
        } else {
            while (std::isdigit(static_cast<unsigned char>(rest[value.size()])) != 0)
                value += rest[value.size()];
            require(!value.empty() && (value == "0" || value[0] != '0'), "a number is one", rest);
        }
        rest.remove_prefix(value.size());
        return value;
    }

    // One character behind a backslash, in UTF-8.
    std::string Escaped() {
        Expect('\\');
        const char escape = Front();
        if (escape == '"' || escape == '\\') {
            rest.remove_prefix(1);
            return std::string(1, escape);
        }
        uint32_t code = Unit();
        require(code < 0xDC00 || code > 0xDFFF, "no second half comes first", rest);
        if (code >= 0xD800 && code <= 0xDBFF) {
            Expect('\\');
            const uint32_t second = Unit();
            require(second >= 0xDC00 && second <= 0xDFFF, "a second half follows", rest);
            code = 0x10000 + ((code - 0xD800) << 10U) + (second - 0xDC00);
        }
        return Utf8(code);
    }

    uint32_t Unit() {
        Expect('u');
        require(rest.size() >= 4, "an escape has four digits", rest);
        const std::string digits(rest.substr(0, 4));
        require(digits.find_first_not_of("0123456789abcdef") == std::string::npos, "an escape's digits",
                digits);
        rest.remove_prefix(4);
        return static_cast<uint32_t>(std::stoul(digits, nullptr, 16));
    }

    static std::string Utf8(uint32_t code) {
        if (code < 0x80) return std::string(1, static_cast<char>(code));
        const unsigned more = code < 0x800 ? 1 : code < 0x10000 ? 2 : 3;
        std::string text(1, static_cast<char>((0xF0U << (3U - more) & 0xFFU) | code >> 6U * more));
        for (unsigned i = more; i-- > 0;) text += static_cast<char>(0x80U | (code >> 6U * i & 0x3FU));
        return text;
    }

    std::string_view rest;
};

// Each byte that is no UTF-8 is U+FFFD.
std::string asUtf8(std::string_view text) {
    std::string out;
    for (size_t i = 0; i < text.size();) {
        const size_t length = utf8Length(text, i);
        out += length == 0 ? "\xEF\xBF\xBD" : std::string(text.substr(i, length));
        i += length == 0 ? 1 : length;
    }
    return out;
}

void checkString(std::string_view text) {
    const std::string json = jsonString(text);
    JsonReader reader(json);
    requireSame(reader.String(), asUtf8(text), "a string says what was meant");
    require(reader.Rest().empty(), "a string ends", json);
}

void checkAnswer(const ZqCalculator& calc, int status, const std::string& entry) {
    JsonAnswer answer = jsonAnswer(calc, status, shownText(calc.message));
    answer.entry = entry;
    answer.line = 1;
    const std::string json = jsonLine(answer);
    JsonReader reader(json);
    auto fields = reader.Object();
    require(reader.Rest() == "\n", "an object is a line", json);
    requireSame(fields["entry"], asUtf8(entry), "the entry is what was typed");
    for (const char* const name : {"line", "status", "name", "value", "text", "message", "position"})
        require(fields.count(name) == 1, "all fields are there", json);
    const bool hasValue = status == STATUS_RESULT && !calc.overflowed;
    require((fields["value"] != "null") == hasValue, "an answer has a value", json);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    constexpr int MOST_LINES = 10;
    const std::string_view bytes(reinterpret_cast<const char*>(data), size);
    checkString(bytes);
    const auto calc = newCalculator();
    Input input(data, size);
    for (int i = 0; i < MOST_LINES && !input.IsOver(); i++) {
        const std::string line = input.Line();
        if (checkEntry(line) != EntryFault::None) continue;
        const int status = enter(*calc, line, false);
        checkAnswer(*calc, status, line);
    }
    return 0;
}
