// SPDX-License-Identifier: MIT
#include "SettingsFile.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <plist/plist.h>
#include <string_view>

namespace {

constexpr size_t MOST_BYTES = 256 * 1024;
constexpr size_t MOST_LISTS = 1000; // the library takes stack for each list inside another one

struct FreeList {
    void operator()(void* list) const { plist_free(list); }
};
using List = std::unique_ptr<void, FreeList>;

// No other form than XML, and all of it: the library would read a binary one, and a text that is cut off.
bool isWholeXml(std::string_view text) {
    const std::string_view start = "<?xml";
    const std::string_view end = "</plist>";
    text = text.substr(0, text.find_last_not_of(" \t\r\n") + 1);
    return text.size() >= start.size() + end.size() && text.size() <= MOST_BYTES &&
           text.substr(0, start.size()) == start && text.substr(text.size() - end.size()) == end &&
           text.find('\0') == std::string_view::npos;
}

size_t countOf(const std::string& text, std::string_view piece) {
    size_t count = 0;
    for (size_t i = text.find(piece); i != std::string::npos; i = text.find(piece, i + 1)) count++;
    return count;
}

// The dictionary in the bytes, or null.
List dictionaryIn(const std::string& bytes) {
    plist_t list = nullptr;
    if (isWholeXml(bytes) && countOf(bytes, "<dict") + countOf(bytes, "<array") <= MOST_LISTS) {
        plist_from_xml(bytes.data(), static_cast<uint32_t>(bytes.size()), &list);
    }
    List owned(list);
    return list && plist_get_node_type(list) == PLIST_DICT ? std::move(owned) : List();
}

double numberIn(plist_t item) {
    uint64_t number = 0;
    uint8_t flag = 0;
    double real = NAN;
    switch (plist_get_node_type(item)) {
    case PLIST_UINT:
        plist_get_uint_val(item, &number);
        return static_cast<double>(static_cast<int64_t>(number));
    case PLIST_BOOLEAN: plist_get_bool_val(item, &flag); return flag;
    case PLIST_REAL: plist_get_real_val(item, &real); return real;
    default: return NAN;
    }
}

std::string dataIn(plist_t item) {
    uint64_t length = 0;
    const char* const bytes =
        plist_get_node_type(item) == PLIST_DATA ? plist_get_data_ptr(item, &length) : nullptr;
    return bytes ? std::string(bytes, static_cast<size_t>(length)) : "";
}

plist_t newNumber(int number) {
#ifdef PLIST_UINT // newer versions of the library tell negative numbers from large ones
    return plist_new_int(number);
#else
    return plist_new_uint(static_cast<uint64_t>(static_cast<int64_t>(number)));
#endif
}

// A new item with the setting's value, or null when it is missing.
plist_t newItem(const Setting& setting, const KeptSettings& kept) {
    const auto number = kept.numbers.find(setting.key);
    if (number != kept.numbers.end()) return newNumber(number->second);
    const auto text = kept.texts.find(setting.key);
    if (text == kept.texts.end() || text->second.empty()) return nullptr;
    return plist_new_data(text->second.data(), text->second.size());
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
    const List list = dictionaryIn(bytes);
    if (!list) return false;
    for (const Setting& setting : SETTINGS) {
        plist_t item = plist_dict_get_item(list.get(), setting.key);
        if (!item) continue;
        const double number = numberIn(item);
        const std::string text = dataIn(item);
        if (!setting.IsNumber())
            kept.texts[setting.key] = setting.IsPossible(text) ? text : setting.text;
        else
            kept.numbers[setting.key] =
                setting.IsPossible(number) ? static_cast<int>(number) : setting.standard;
    }
    return true;
}

std::string settingsText(const KeptSettings& kept, const std::string& present) {
    List list = dictionaryIn(present);
    if (!list) list.reset(plist_new_dict());
    for (const Setting& setting : SETTINGS) {
        if (plist_t item = newItem(setting, kept))
            plist_dict_set_item(list.get(), setting.key, item);
        else if (plist_dict_get_item(list.get(), setting.key))
            plist_dict_remove_item(list.get(), setting.key);
    }
    char* xml = nullptr;
    uint32_t length = 0;
    plist_to_xml(list.get(), &xml, &length);
    std::string text(xml ? xml : "", xml ? length : 0);
    plist_to_xml_free(xml);
    return text;
}
