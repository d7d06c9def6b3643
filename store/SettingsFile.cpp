// SPDX-License-Identifier: MIT
#include "SettingsFile.h"

#include "PlistLibrary.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <string_view>

namespace {

constexpr size_t MOST_BYTES = 256 * 1024;
constexpr size_t MOST_LISTS = 1000; // the library takes stack for each list inside another one

// Only where the library is there.
const PlistLibrary& plist() {
    return *PlistLibrary::Get();
}

struct FreeList {
    void operator()(void* list) const { plist().free(list); }
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
    if (!PlistLibrary::Get()) return {};
    if (isWholeXml(bytes) && countOf(bytes, "<dict") + countOf(bytes, "<array") <= MOST_LISTS) {
        plist().fromXml(bytes.data(), static_cast<uint32_t>(bytes.size()), &list);
    }
    List owned(list);
    return list && plist().getType(list) == PLIST_DICT ? std::move(owned) : List();
}

double numberIn(plist_t item) {
    uint64_t number = 0;
    uint8_t flag = 0;
    double real = NAN;
    switch (plist().getType(item)) {
    case PLIST_UINT: plist().getUint(item, &number); return static_cast<double>(static_cast<int64_t>(number));
    case PLIST_BOOLEAN: plist().getBool(item, &flag); return flag;
    case PLIST_REAL: plist().getReal(item, &real); return real;
    default: return NAN;
    }
}

std::string dataIn(plist_t item) {
    uint64_t length = 0;
    const char* const bytes = plist().getType(item) == PLIST_DATA ? plist().getData(item, &length) : nullptr;
    return bytes ? std::string(bytes, static_cast<size_t>(length)) : "";
}

plist_t newNumber(int number) {
#ifdef PLIST_UINT
    return plist().newInt(number);
#else
    return plist().newUint(static_cast<uint64_t>(static_cast<int64_t>(number)));
#endif
}

// A new item with the setting's value, or null when it is missing.
plist_t newItem(const Setting& setting, const KeptSettings& kept) {
    const auto number = kept.numbers.find(setting.key);
    if (number != kept.numbers.end()) return newNumber(number->second);
    const auto text = kept.texts.find(setting.key);
    if (text == kept.texts.end() || text->second.empty()) return nullptr;
    return plist().newData(text->second.data(), text->second.size());
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
        plist_t item = plist().dictGetItem(list.get(), setting.key);
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
    if (!PlistLibrary::Get()) return "";
    List list = dictionaryIn(present);
    if (!list) list.reset(plist().newDict());
    for (const Setting& setting : SETTINGS) {
        if (plist_t item = newItem(setting, kept))
            plist().dictSetItem(list.get(), setting.key, item);
        else if (plist().dictGetItem(list.get(), setting.key))
            plist().dictRemoveItem(list.get(), setting.key);
    }
    char* xml = nullptr;
    uint32_t length = 0;
    plist().toXml(list.get(), &xml, &length);
    std::string text(xml ? xml : "", xml ? length : 0);
    plist().toXmlFree(xml);
    return text;
}
