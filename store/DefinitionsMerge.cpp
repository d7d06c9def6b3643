// SPDX-License-Identifier: MIT
#include "DefinitionsMerge.h"

#include "DefinitionRecords.h"
#include "FileKeeping.h"

void DefinitionsMerge::Know(const std::string& text, std::map<std::string, std::string> unread) {
    for (const auto& [key, line] : DefinitionsText(text).LinesByKey()) known.insert(key);
    twins = std::move(unread);
}

void DefinitionsMerge::LeaveOut(const std::string& before, const std::string& after) {
    const Lines earlier = DefinitionsText(before).LinesByKey();
    for (const auto& [key, line] : DefinitionsText(after).LinesByKey()) {
        if (earlier.count(key) == 0 && known.count(key) == 0) leftOut.insert(line);
    }
}

// The definitions that are written, by what they define.
DefinitionsMerge::Lines DefinitionsMerge::PresentIn(const DefinitionsText& ours) const {
    Lines present;
    for (const auto& [key, line] : ours.LinesByKey()) {
        if (leftOut.count(line) == 0) present[key] = line;
    }
    return present;
}

bool DefinitionsMerge::IsForeign(const std::string& key, const std::string& line,
                                 const Lines& present) const {
    if (known.count(key) == 0) return true;
    const auto twin = twins.find(line);
    const auto own = present.find(key);
    return twin != twins.end() && own != present.end() && own->second == twin->second;
}

DefinitionsMerge::Sections DefinitionsMerge::ForeignIn(const DefinitionsText& others,
                                                       const Lines& present) const {
    Sections foreign;
    for (const DefinitionRecord& record : others.records) {
        const std::string key = record.Key();
        if (key.empty() || record.section == NO_SECTION) continue;
        const std::string& line = others.lines[record.line];
        if (IsForeign(key, line, present)) foreign[record.section] += line + "\n";
    }
    return foreign;
}

std::string DefinitionsMerge::Merge(const std::string& ours, const std::string& theirs) {
    const DefinitionsText text(ours);
    const Lines present = PresentIn(text);
    for (const auto& [key, line] : present) known.insert(key);
    const DefinitionsText others(theirs);
    const Sections foreign = ForeignIn(others, present);
    std::string merged;
    for (size_t i = 0; i < text.lines.size(); i++) {
        if (leavesHistory && i > text.headers[HISTORY]) break;
        // Another section begins: the one before it is complete.
        for (const Section section : {VARIABLES, UNITS, HISTORY}) {
            if (text.headers[section] == i) merged += foreign[section - 1];
        }
        if (i < text.headers[HISTORY] && leftOut.count(text.lines[i]) != 0) continue;
        merged += text.lines[i] + "\n";
    }
    for (size_t i = others.headers[HISTORY] + 1; leavesHistory && i < others.lines.size(); i++)
        merged += others.lines[i] + "\n";
    return merged;
}

std::string DefinitionsMerge::TakeForeign(const std::string& ours, const std::string& theirs) {
    const Sections foreign = ForeignIn(DefinitionsText(theirs), PresentIn(DefinitionsText(ours)));
    std::string text;
    for (const Section section : {FUNCTIONS, VARIABLES, UNITS}) {
        if (!foreign[section].empty()) text += HEADERS[section] + ("\n" + foreign[section]);
    }
    for (const auto& [key, line] : DefinitionsText(text).LinesByKey()) known.insert(key);
    return text;
}

bool DefinitionsMerge::Write(const std::string& path, const std::string& ours, std::error_code& reason,
                             System& system) {
    const FileLock lock(path, system);
    if (lock.IsTaken()) {
        reason = std::make_error_code(std::errc::resource_unavailable_try_again);
        return false;
    }
    std::string present;
    readWholeFile(path, present, system);
    return writeFileAtomically(path, Merge(ours, present), &reason, system);
}
