// SPDX-License-Identifier: MIT
#include "Script.h"

#include "Settings.h"
#include "ShownText.h"

#include <algorithm>

Script::Script(std::string bytes) : text(std::move(bytes)) {
    if (text.compare(0, 3, "\xEF\xBB\xBF") == 0) place = 3; // editors put it in front of UTF-8
}

namespace {

// The bytes of a sequence of UTF-8 as a character of ISO Latin-1.
char latin1Of(const std::string& line, size_t start, size_t length) {
    const auto byte = [&](size_t i) { return static_cast<unsigned char>(line[start + i]); };
    if (length == 1) return line[start];
    const unsigned code = (byte(0) & 0x1FU) << 6 | (byte(1) & 0x3FU);
    return length == 2 && code <= 0xFF ? static_cast<char>(code) : '?';
}

std::string asLatin1(std::string line) {
    std::replace(line.begin(), line.end(), '\0', '?'); // it would hide what follows it
    if (!isUtf8(line)) return line;
    std::string latin1;
    for (size_t i = 0; i < line.size();) {
        const size_t length = utf8Length(line, i);
        latin1 += latin1Of(line, i, length);
        i += length;
    }
    return latin1;
}

// The settings that a script begins with, in this order.
const char* const FIRST_SETTINGS[] = {"degmode", "sigfigs", "scimode", "dispbase"};

} // namespace

bool Script::Next(std::string& entry) {
    while (place < text.size()) {
        const size_t end = std::min(text.find('\n', place), text.size());
        const std::string line = text.substr(place, end - place);
        place = end + 1;
        if (line[0] == '#' || line.find_first_not_of(" \t\r\f\v") == std::string::npos) continue;
        entry = asLatin1(line);
        return true;
    }
    return false;
}

void EntryRecord::Add(const std::string& entry) {
    if (!entry.empty()) entries.push_back(entry);
}

std::string EntryRecord::Script(const ZqCalculator& engine, const std::string& typed) const {
    std::string text = "# PELMO SCRIPT: uncomment line below to include calculator settings.\n#";
    for (const char* const key : FIRST_SETTINGS) {
        const Setting& setting = *findSetting(key);
        text += setting.CommandFor(setting.ValueIn(engine)) + ";";
    }
    text += "\n";
    for (const std::string& entry : entries) text += entry + "\n";
    if (!typed.empty()) text += typed + "\n";
    return text;
}
