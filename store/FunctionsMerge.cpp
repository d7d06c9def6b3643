// SPDX-License-Identifier: MIT
#include "FunctionsMerge.h"

#include "FileKeeping.h"
#include "Helpers_String.h"

#include <algorithm>
#include <vector>

namespace {

enum Section { FUNCTIONS, VARIABLES, UNITS, HISTORY, NONE };

const char* const HEADERS[] = {"### FUNCTIONS ###", "### VARIABLES ###", "### CUSTOM UNITS ###",
                               "### HISTORY ###"};

struct Line {
    Section section;
    bool isHeader;
    std::string text; // without its line feed
};

std::vector<Line> linesOf(const std::string& text) {
    std::vector<Line> lines;
    Section section = NONE;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back(); // an editor's
        const auto* const header = std::find(std::begin(HEADERS), std::end(HEADERS), line);
        // Behind its header the history runs to the end, whatever was typed.
        const bool isHeader = section != HISTORY && header != std::end(HEADERS);
        if (isHeader) section = static_cast<Section>(header - HEADERS);
        lines.push_back({section, isHeader, line});
        start = end + 1;
    }
    return lines;
}

// What a line defines: a function by its name and number of parameters, a variable or a unit by its name. Empty for
// anything else.
std::string keyOf(const Line& line) {
    const size_t equals = line.text.find('=');
    if (line.isHeader || line.section >= HISTORY || equals == std::string::npos) return "";
    std::string head = line.text.substr(0, equals);
    if (line.section == FUNCTIONS) {
        const auto commas = std::count(head.begin(), head.end(), ',');
        const bool hasNone = head.find("()") != std::string::npos;
        head.resize(std::min(head.size(), head.find('(')));
        for (char& c : head) c = LowerCase(c);
        head += "(" + std::to_string(hasNone ? 0 : commas + 1);
    }
    return std::to_string(line.section) + head;
}

std::set<std::string> keysOf(const std::vector<Line>& lines) {
    std::set<std::string> keys;
    for (const Line& line : lines) {
        const std::string key = keyOf(line);
        if (!key.empty()) keys.insert(key);
    }
    return keys;
}

} // namespace

void FunctionsMerge::Know(const std::string& text) {
    known.merge(keysOf(linesOf(text)));
}

std::string FunctionsMerge::Merge(const std::string& ours, const std::string& theirs) {
    const std::vector<Line> lines = linesOf(ours);
    known.merge(keysOf(lines));
    std::string foreign[NONE];
    for (const Line& line : linesOf(theirs)) {
        const std::string key = keyOf(line);
        if (!key.empty() && known.count(key) == 0) foreign[line.section] += line.text + "\n";
    }
    std::string merged;
    for (const Line& line : lines) {
        // Another section begins: the one before it is complete.
        if (line.isHeader && line.section > FUNCTIONS) merged += foreign[line.section - 1];
        merged += line.text + "\n";
    }
    return merged;
}

bool FunctionsMerge::Write(const std::string& path, const std::string& ours, std::error_code& reason) {
    const FileLock lock(path);
    if (lock.IsTaken()) {
        reason = std::make_error_code(std::errc::resource_unavailable_try_again);
        return false;
    }
    std::string present;
    readWholeFile(path, present);
    return writeFileAtomically(path, Merge(ours, present), &reason);
}
