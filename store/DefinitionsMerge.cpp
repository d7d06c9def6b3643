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

Sections DefinitionsMerge::ForeignIn(const DefinitionsText& others, const Lines& present) const {
    Sections foreign;
    for (const DefinitionRecord& record : others.records) {
        const std::string key = record.Key();
        if (!key.empty() && record.section != NO_SECTION && IsForeign(key, record.line, present))
            foreign[record.section] += record.line + "\n";
    }
    return foreign;
}

std::string DefinitionsMerge::Merge(const std::string& ours, const std::string& theirs) {
    const DefinitionsText text(ours), others(theirs);
    const Lines present = PresentIn(text);
    for (const auto& [key, line] : present) known.insert(key);
    const Sections foreign = ForeignIn(others, present);
    Sections merged;
    for (const DefinitionRecord& record : text.records) {
        if (leftOut.count(record.line) == 0) merged[record.section] += record.line + "\n";
    }
    for (const Section section : {FUNCTIONS, VARIABLES, UNITS}) merged[section] += foreign[section];
    merged[HISTORY] = (leavesHistory ? others : text).History();
    return textOf(merged);
}

std::string DefinitionsMerge::TakeForeign(const std::string& ours, const std::string& theirs) {
    const Sections foreign = ForeignIn(DefinitionsText(theirs), PresentIn(DefinitionsText(ours)));
    std::string text = textOf(foreign);
    const Lines lines = DefinitionsText(text).LinesByKey();
    for (const auto& [key, line] : lines) known.insert(key);
    return lines.empty() ? "" : text;
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
