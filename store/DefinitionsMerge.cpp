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
    return recordOf(line.substr(0, line.find('\n')));
}

// What is made of a unit that is left out is written with its value: a primitive unit has its whole name.
bool usesPrimitive(const DefinitionRecord& record, const std::string& name) {
    if (record.kind != DefinitionRecord::Kind::Unit) return false;
    const std::string text = "=" + record.body + "\n";
    for (size_t i = text.find(name); i != std::string::npos; i = text.find(name, i + 1)) {
        if (!isLetter(text[i - 1]) && !isLetter(text[i + name.size()])) return true;
    }
    return false;
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
    file = DefinitionsText(theirs).LinesByKey();
    settled = theirs;
    present = PresentIn(DefinitionsText(ours));
    // As if it had been read and was changed here.
    for (const std::string& key : refused) present[key] = lineOf(file, key);
}

void DefinitionsMerge::LeaveOut(const std::string& before, const std::string& after) {
    const DefinitionLines earlier = DefinitionsText(before).LinesByKey();
    for (const auto& [key, line] : DefinitionsText(after).LinesByKey()) {
        if (earlier.count(key) > 0 || file.count(key) > 0) continue;
        leftOut.insert(line);
        present.erase(key);
    }
}

// The definitions that are written, by what they define.
DefinitionLines DefinitionsMerge::PresentIn(const DefinitionsText& ours) const {
    DefinitionLines lines = ours.LinesByKey();
    std::vector<DefinitionLines::node_type> primitives;
    for (auto i = lines.begin(); i != lines.end();) {
        const auto line = i++;
        if (leftOut.count(line->second) == 0) continue;
        const bool isPrimitive = recordOfLine(line->second).body == primitivestring;
        DefinitionLines::node_type taken = lines.extract(line);
        if (isPrimitive) primitives.push_back(std::move(taken));
    }
    for (DefinitionLines::node_type& primitive : primitives) {
        const std::string name = recordOfLine(primitive.mapped()).name;
        const auto uses = [&name](const auto& line) {
            return usesPrimitive(recordOfLine(line.second), name);
        };
        if (std::any_of(lines.begin(), lines.end(), uses)) lines.insert(std::move(primitive));
    }
    return lines;
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

std::string DefinitionsMerge::Merge(const std::string& ours, const std::string& theirs) const {
    const DefinitionsText text(ours);
    return MergedOf(text, PresentIn(text), Theirs(theirs)).text;
}

DefinitionsMerge::Merged DefinitionsMerge::MergedOf(const DefinitionsText& ours, const DefinitionLines& mine,
                                                    const Theirs& theirs) const {
    Merged merged;
    Sections sections;
    for (const DefinitionsText* const side : {&ours, &theirs.text}) {
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
    sections[HISTORY] = (leavesHistory ? theirs.text : ours).History();
    merged.text = textOf(sections);
    return merged;
}

DefinitionsMerge::Foreign DefinitionsMerge::TakeForeign(const std::string& ours, const std::string& theirs) {
    const Theirs others(theirs);
    const DefinitionLines oursNow = PresentIn(DefinitionsText(ours));
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
    const DefinitionLines now = PresentIn(DefinitionsText(ours));
    for (const std::string& key : foreign.keys) setLine(present, key, lineOf(now, key));
}

bool DefinitionsMerge::Write(const std::string& path, const std::string& ours, std::error_code& reason,
                             System& system) {
    const FileLock lock(path, system);
    if (lock.IsTaken(&reason)) return false;
    std::string theirs;
    readWholeFile(path, theirs, system);
    const DefinitionsText text(ours);
    DefinitionLines mine = PresentIn(text);
    Merged merged = MergedOf(text, mine, Theirs(theirs));
    if (!writeFileAtomically(path, merged.text, &reason, system)) return false;
    Wrote(std::move(merged), std::move(mine));
    return true;
}

// A line of another program that counts is still to be told of.
void DefinitionsMerge::Wrote(Merged&& written, DefinitionLines&& now) {
    size_t count = now.size();
    for (const auto& [key, line] : now) {
        if (written.others.count(key) == 0) file[key] = line;
    }
    for (auto i = file.begin(); i != file.end();)
        i = now.count(i->first) || !lineOf(written.others, i->first).empty() ? ++i : file.erase(i);
    bool isSettled = true;
    for (const auto& [key, line] : written.others) {
        isSettled = isSettled && lineOf(file, key) == line;
        count += (line.empty() ? 0 : 1) - now.count(key);
    }
    settled = isSettled && count == file.size() ? std::move(written.text) : "";
    present = std::move(now);
}
