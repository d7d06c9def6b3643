// SPDX-License-Identifier: MIT
#include "SettingsFile.h"

#include <algorithm>
#include <cmath>
#include <pugixml.hpp>
#include <sstream>
#include <string_view>

namespace {

using Node = pugi::xml_node;

constexpr size_t MOST_BYTES = 256 * 1024;
constexpr size_t MOST_LISTS = 1000;

constexpr std::string_view HEAD =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
    "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n<plist version=\"1.0\">\n";
constexpr std::string_view END = "</plist>";
constexpr std::string_view SIXTY_FOUR = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Whether nothing is cut off.
bool isWholeXml(std::string_view text) {
    const std::string_view start = "<?xml";
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    return text.size() >= start.size() + END.size() && text.size() <= MOST_BYTES &&
           text.substr(0, start.size()) == start && text.substr(text.size() - END.size()) == END &&
           text.find('\0') == std::string_view::npos;
}

size_t countOf(const std::string& text, std::string_view piece) {
    size_t count = 0;
    for (size_t i = text.find(piece); i != std::string::npos; i = text.find(piece, i + 1)) count++;
    return count;
}

bool isNamed(Node node, std::string_view name) {
    return node.name() == name;
}

bool isValue(Node node) {
    static constexpr std::string_view KINDS[] = {"integer", "real",  "true", "false", "string",
                                                 "data",    "array", "dict", "date"};
    return std::any_of(std::begin(KINDS), std::end(KINDS), [node](auto kind) { return isNamed(node, kind); });
}

// Whether the dictionary's elements are keys, each with a value behind it.
bool isDictionary(Node list) {
    for (Node key = list.first_child(); key; key = key.next_sibling().next_sibling()) {
        if (!isNamed(key, "key") || !isValue(key.next_sibling())) return false;
    }
    return isNamed(list, "dict");
}

// The dictionary in the bytes, which then belongs to the document; or none.
Node dictionaryIn(const std::string& bytes, pugi::xml_document& document) {
    if (!isWholeXml(bytes) || countOf(bytes, "<dict") + countOf(bytes, "<array") > MOST_LISTS) return {};
    constexpr unsigned HOW = (pugi::parse_default | pugi::parse_ws_pcdata_single) & ~pugi::parse_eol;
    if (!document.load_buffer(bytes.data(), bytes.size(), HOW)) return {};
    const Node list = document.child("plist").first_child();
    return isDictionary(list) ? list : Node();
}

double numberIn(Node value) {
    if (isNamed(value, "integer")) return static_cast<double>(value.text().as_llong());
    if (isNamed(value, "real")) return value.text().as_double(NAN);
    if (isNamed(value, "true")) return 1;
    return isNamed(value, "false") ? 0 : NAN;
}

// Bytes from base 64.
std::string dataIn(Node value) {
    std::string data;
    unsigned bits = 0;
    int count = 0;
    for (const char* c = isNamed(value, "data") ? value.text().get() : ""; *c != '\0'; ++c) {
        const size_t digit = SIXTY_FOUR.find(*c);
        if (digit == std::string_view::npos) continue;
        bits = bits << 6U | static_cast<unsigned>(digit);
        count += 6;
        if (count < 8) continue;
        count -= 8;
        data += static_cast<char>(bits >> static_cast<unsigned>(count) & 0xFFU);
    }
    return data;
}

std::string inBase64(const std::string& data) {
    std::string text;
    for (size_t i = 0; i < data.size(); i += 3) {
        unsigned bits = 0;
        for (size_t k = i; k < i + 3; ++k)
            bits = bits << 8U | (k < data.size() ? static_cast<unsigned char>(data[k]) : 0U);
        for (size_t k = 0; k < 4; ++k)
            text += k <= data.size() - i ? SIXTY_FOUR[bits >> (18U - 6U * k) & 0x3FU] : '=';
    }
    return text;
}

// Adds a setting with its value, which may be missing.
void append(Node list, const Setting& setting, const KeptSettings& kept) {
    const auto number = kept.numbers.find(setting.key);
    const auto text = kept.texts.find(setting.key);
    const bool isNumber = number != kept.numbers.end();
    if (!isNumber && (text == kept.texts.end() || text->second.empty())) return;
    list.append_child("key").text().set(setting.key);
    if (isNumber)
        list.append_child("integer").text().set(number->second);
    else
        list.append_child("data").text().set(inBase64(text->second).c_str());
}

// Removes the keys that rows of SETTINGS have.
void removeSettings(Node list) {
    for (Node key = list.first_child(), next; key; key = next) {
        const Node value = key.next_sibling();
        next = value.next_sibling();
        if (!findSetting(key.text().get())) continue;
        list.remove_child(key);
        list.remove_child(value);
    }
}

} // namespace

KeptSettings defaultSettings() {
    KeptSettings kept;
    for (const Setting& setting : SETTINGS) {
        if (setting.IsNumber())
            kept.numbers[setting.key] = setting.standard;
        else
            kept.texts[setting.key] = setting.text;
    }
    return kept;
}

bool readSettings(const std::string& bytes, KeptSettings& kept) {
    kept = KeptSettings();
    pugi::xml_document document;
    const Node list = dictionaryIn(bytes, document);
    if (!list) return false;
    for (Node key = list.first_child(); key; key = key.next_sibling().next_sibling()) {
        const Setting* const setting = findSetting(key.text().get());
        if (!setting) continue;
        const double number = numberIn(key.next_sibling());
        const std::string text = dataIn(key.next_sibling());
        if (!setting->IsNumber())
            kept.texts[setting->key] = setting->IsPossible(text) ? text : setting->text;
        else
            kept.numbers[setting->key] =
                setting->IsPossible(number) ? static_cast<int>(number) : setting->standard;
    }
    return true;
}

std::string settingsText(const KeptSettings& kept, const std::string& present) {
    pugi::xml_document document;
    Node list = dictionaryIn(present, document);
    if (!list) list = document.append_child("dict");
    removeSettings(list);
    for (const Setting& setting : SETTINGS) append(list, setting, kept);
    std::ostringstream text;
    text << HEAD;
    list.print(text, "\t", pugi::format_indent, pugi::encoding_utf8);
    text << END << "\n";
    return text.str();
}
