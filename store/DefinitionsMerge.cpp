// SPDX-License-Identifier: MIT
#include "DefinitionsMerge.h"

#include "FileKeeping.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <utility>
#include <vector>

namespace {

const std::string& lineOf(const DefinitionLines& lines, const std::string& key) {
    static const std::string none;
    const auto found = lines.find(key);
    return found == lines.end() ? none : found->second;
}

const std::string& answerKey() {
    static const std::string key = recordOf("ans=0").Key();
    return key;
}

DefinitionRecord recordOfLine(const std::string& line) {
    return recordOf(std::string_view(line).substr(0, line.find('\n')));
}

// What is made of a unit that is left out is written with its value: a primitive unit has its whole name.
bool usesPrimitive(const DefinitionRecord& record, std::string_view name) {
    if (record.kind != DefinitionRecord::Kind::Unit) return false;
    const std::string text = "=" + std::string(record.body) + "\n";
    for (size_t i = text.find(name); i != std::string::npos; i = text.find(name, i + 1)) {
        if (!isLetter(text[i - 1]) && !isLetter(text[i + name.size()])) return true;
    }
    return false;
}

// A whole file's text in front of its history, or nothing.
std::string_view definitionsIn(std::string_view text) {
    const size_t header = text.find("\n" + std::string(HEADERS[HISTORY]) + "\n");
    return header == std::string_view::npos || text.back() != '\n' ? "" : text.substr(0, header + 1);
}

void setLine(DefinitionLines& lines, const std::string& key, const std::string& line) {
    if (line.empty())
        lines.erase(key);
    else
        lines[key] = line;
}

} // namespace

void DefinitionsMerge::Know(const std::string& theirs, const std::string& ours,
                            const std::set<std::string>& refused) {
    const std::string written = WrittenOf(ours);
    if (refused.empty() && Agree(written, theirs)) return;
    isAgreed = false;
    settled = theirs;
    file = DefinitionsText(theirs).LinesByKey();
    present = DefinitionsText(written).LinesByKey();
    // As if it had been read and was changed here.
    for (const std::string& key : refused) present[key] = lineOf(file, key);
}

// Whether the file's definitions are ours. Mostly they are, as one program runs and wrote them.
bool DefinitionsMerge::Agree(const std::string& written, const std::string& theirs) {
    const std::string_view definitions = definitionsIn(theirs);
    isAgreed = !definitions.empty() && definitions == definitionsIn(written);
    if (!isAgreed) return false;
    settled = theirs;
    present = {};
    file = {};
    return true;
}

void DefinitionsMerge::TakeApart() {
    if (!isAgreed) return;
    isAgreed = false;
    file = DefinitionsText(settled).LinesByKey();
    present = file;
}

void DefinitionsMerge::LeaveOut(const std::string& before, const std::string& after) {
    TakeApart();
    const DefinitionLines earlier = DefinitionsText(before).LinesByKey();
    for (const auto& [key, line] : DefinitionsText(after).LinesByKey()) {
        if (earlier.count(key) > 0 || file.count(key) > 0) continue;
        leftOut.insert(line);
        present.erase(key);
    }
    Agree(WrittenOf(after), settled);
}

// Ours without what is left out.
std::string DefinitionsMerge::WrittenOf(const std::string& ours) const {
    if (leftOut.empty()) return ours;
    const DefinitionsText text(ours);
    const auto isLeftOut = [this](const DefinitionRecord& record) {
        return leftOut.count(std::string(record.line) + '\n') > 0;
    };
    const auto isNeeded = [&](const DefinitionRecord& unit) {
        return unit.body == primitivestring &&
               std::any_of(text.records.begin(), text.records.end(), [&](const DefinitionRecord& other) {
                   return !isLeftOut(other) && usesPrimitive(other, unit.name);
               });
    };
    Sections sections;
    for (const DefinitionRecord& record : text.records) {
        if (record.section != NO_SECTION && (!isLeftOut(record) || isNeeded(record)))
            sections[record.section].append(record.line) += '\n';
    }
    sections[HISTORY] = text.History();
    return textOf(sections);
}

DefinitionsMerge::Theirs::Theirs(const std::string& content)
    : text(content), lines(text.LinesByKey()), isWhole(text.isFramed && lines.count(answerKey()) > 0) {}

// Our line or theirs; one that is not there is empty.
const std::string& DefinitionsMerge::Choose(const std::string& key, const std::string& mine,
                                            const Theirs& theirs) const {
    const std::string& line = lineOf(theirs.lines, key);
    if (mine != lineOf(present, key)) return mine;
    if (mine.empty()) return line;
    const bool counts = line.empty() ? theirs.isWhole && file.count(key) > 0 : theirs.text.isFramed;
    return counts && key != answerKey() ? line : mine;
}

std::string DefinitionsMerge::Merge(const std::string& ours, const std::string& theirs) {
    DefinitionLines now;
    return MergedOf(WrittenOf(ours), theirs, now).text;
}

// Our lines that are merged join `mine`. Where nobody else wrote, all of ours are written as they are.
DefinitionsMerge::Merged DefinitionsMerge::MergedOf(const std::string& written, const std::string& inFile,
                                                    DefinitionLines& mine) {
    if (isAgreed && inFile == settled) {
        const std::string& kept = leavesHistory ? inFile : written;
        return {std::string(definitionsIn(written)).append(kept, definitionsIn(kept).size()), {}};
    }
    TakeApart();
    const DefinitionsText text(written);
    const Theirs theirs(inFile);
    mine = text.LinesByKey();
    Merged merged;
    Sections sections;
    for (const DefinitionsText* const side : {&text, &theirs.text}) {
        for (const DefinitionRecord& record : side->records) {
            const std::string key = record.Key();
            if (key.empty() || record.section == NO_SECTION) continue;
            const std::string& line = lineOf(mine, key);
            if (side == &theirs.text && (!line.empty() || merged.others.count(key) > 0)) continue;
            const std::string& chosen = Choose(key, line, theirs);
            if (chosen != line || line.empty()) merged.others[key] = chosen;
            sections[record.section] += chosen;
        }
    }
    sections[HISTORY] = (leavesHistory ? theirs.text : text).History();
    merged.text = textOf(sections);
    return merged;
}

DefinitionsMerge::Foreign DefinitionsMerge::TakeForeign(const std::string& ours, const std::string& theirs) {
    TakeApart();
    const Theirs others(theirs);
    const DefinitionLines oursNow = DefinitionsText(WrittenOf(ours)).LinesByKey();
    std::set<std::string> changed; // in a fixed order
    for (const DefinitionLines* const side : {&others.lines, &std::as_const(file)}) {
        for (const auto& [key, anyLine] : *side) {
            if (lineOf(others.lines, key) != lineOf(file, key)) changed.insert(key);
        }
    }
    Foreign foreign;
    settled.clear();
    for (const std::string& key : changed) {
        const std::string &mine = lineOf(oursNow, key), &line = lineOf(others.lines, key);
        if (line != Choose(key, mine, others)) continue;
        foreign.keys.insert(key);
        setLine(file, key, line);
        if (line == mine) continue;
        // A unit that is there cannot be defined in another way.
        const bool isUnit = recordOfLine(mine).kind == DefinitionRecord::Kind::Unit;
        if (line.empty() || isUnit) foreign.deleted += mine;
        foreign.defined += line;
    }
    if (foreign.keys.size() == changed.size()) settled = theirs;
    return foreign;
}

void DefinitionsMerge::Took(const Foreign& foreign, const std::string& ours) {
    TakeApart();
    const DefinitionLines now = DefinitionsText(WrittenOf(ours)).LinesByKey();
    for (const std::string& key : foreign.keys) setLine(present, key, lineOf(now, key));
}

bool DefinitionsMerge::Write(const std::string& path, const std::string& ours, std::error_code& reason,
                             System& system) {
    const FileLock lock(path, system);
    if (lock.IsTaken(&reason)) return false;
    std::string theirs;
    std::error_code unread;
    if (!readWholeFile(path, theirs, system, &unread) && unread) {
        reason = unread; // what is in it would be lost
        return false;
    }
    const std::string written = WrittenOf(ours);
    DefinitionLines mine;
    Merged merged = MergedOf(written, theirs, mine);
    if (!writeFileAtomically(path, merged.text, &reason, system)) return false;
    if (!Agree(written, merged.text)) Wrote(std::move(merged), std::move(mine));
    return true;
}

// A line of another program that counts is still to be told of.
void DefinitionsMerge::Wrote(Merged&& written, DefinitionLines&& now) {
    for (const auto& [key, line] : now) {
        if (written.others.count(key) == 0) file[key] = line;
    }
    for (auto i = file.begin(); i != file.end();)
        i = now.count(i->first) || !lineOf(written.others, i->first).empty() ? ++i : file.erase(i);
    const bool isSettled =
        std::all_of(written.others.begin(), written.others.end(),
                    [this](const auto& other) { return lineOf(file, other.first) == other.second; });
    settled = isSettled ? std::move(written.text) : "";
    present = std::move(now);
}
