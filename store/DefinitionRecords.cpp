// SPDX-License-Identifier: MIT
#include "DefinitionRecords.h"

#include "Calculator.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>
#include <unordered_map>

using Kind = DefinitionRecord::Kind;

namespace {

constexpr size_t HEADER_START = 11; // so many characters of a header tell which it is: "### HISTORY"

// name(parameters)=body
bool splitFunction(DefinitionRecord& record) {
    const std::string_view text = record.statement;
    const size_t open = text.find('(');
    const size_t close = open == std::string_view::npos ? open : text.find(')', open);
    if (close == std::string_view::npos) return false;
    const size_t equals = text.find_first_not_of(BLANKS, close + 1);
    if (equals == std::string_view::npos || text[equals] != '=' || text.compare(equals, 2, "==") == 0)
        return false;
    record.name = trimmed(text.substr(0, open));
    record.parameters = trimmed(text.substr(open + 1, close - open - 1));
    record.body = text.substr(equals + 1);
    return true;
}

// Splits the statement at its first '=', whatever it is.
Kind split(DefinitionRecord& record) {
    const std::string_view text = record.statement;
    const std::string_view unit = "unit ";
    const size_t equals = text.find('=');
    if (equals == std::string_view::npos) return Kind::Nothing;
    record.name = text.substr(0, equals);
    record.body = text.substr(equals + 1);
    if (std::any_of(text.begin(), text.end(), [](char c) { return isControl(c) || c == ';'; }))
        return Kind::Nothing;
    if (startsWith(text, unit)) {
        record.name = trimmed(record.name.substr(unit.size()));
        return Kind::Unit;
    }
    if (splitFunction(record)) return Kind::Function;
    const std::string_view name = trimmed(record.name);
    if (!isValidName(name) || text.compare(equals, 2, "==") == 0) return Kind::Nothing;
    record.name = name;
    return Kind::Variable;
}

// --- The order ---

// The same text for a function's name in whatever case and with whatever blanks.
std::string nameOf(Kind kind, std::string_view name) {
    std::string text(1, static_cast<char>('0' + static_cast<int>(kind)));
    return kind == Kind::Function ? text + lowerCased(withoutBlanks(name)) : text.append(name);
}

// Of the number that a unit begins with, read as the unit library does: strtod, but for the words inf and
// nan. The e of 1.5e-3 is no name.
size_t lengthOfNumber(const std::string& text) {
    const size_t first = text.find_first_not_of(" \t+-");
    if (first == std::string::npos || isLetter(text[first])) return 0;
    char* end = nullptr;
    std::strtod(text.c_str(), &end);
    return static_cast<size_t>(end - text.c_str());
}

class Uses {
public:
    explicit Uses(const std::vector<DefinitionRecord>& all) : records(all) {}

    // The positions of the records that this one uses.
    std::vector<size_t> Of(const DefinitionRecord& record) {
        used.clear();
        if (record.statement.size() >= TEXT_SIZE) return {};
        const std::string_view text = record.body;
        const std::string parameters = "," + withoutBlanks(record.parameters) + ",";
        size_t i = record.kind == Kind::Unit ? lengthOfNumber(std::string(text)) : 0;
        while (i < text.size()) {
            const size_t start = i;
            while (i < text.size() && (isOfName(text[i]) || text[i] == '.')) i++;
            const std::string_view word = text.substr(start, i - start);
            if (record.kind == Kind::Unit)
                UseUnits(word);
            else if (!word.empty() && isLetter(word[0]) && !IsOneOf(parameters, word))
                Use(IsCalled(text, i) ? Kind::Function : Kind::Variable, word);
            i += i == start ? 1 : 0;
        }
        return std::move(used);
    }

private:
    static bool IsCalled(std::string_view text, size_t end) {
        const size_t next = text.find_first_not_of(BLANKS, end);
        return next != std::string_view::npos &&
               (text[next] == '(' || text[next] == '[' || text[next] == '{');
    }

    static bool IsOneOf(const std::string& names, std::string_view name) {
        return names.find("," + std::string(name) + ",") != std::string::npos;
    }

    // Most records use none: their names are gathered for the first that may.
    bool Use(Kind kind, std::string_view name) {
        for (size_t i = positions.empty() ? 0 : records.size(); i < records.size(); ++i)
            positions.emplace(nameOf(records[i].kind, records[i].name), i);
        const auto found = positions.find(nameOf(kind, name));
        if (found != positions.end()) used.push_back(found->second);
        return found != positions.end();
    }

    // A number may stand directly in front of a unit, an exponent behind it. A unit of exactly this name goes
    // before what the name may else stand for.
    void UseUnits(std::string_view text) {
        while (!text.empty()) {
            const auto start = std::find_if(text.begin(), text.end(), isLetter);
            const auto end = std::find_if_not(start, text.end(), isLetter);
            const std::string word(start, end);
            for (const std::string& name : units_readings(word)) {
                const bool isKnown = Use(Kind::Unit, name) || !units_definition(name.c_str()).empty();
                if (isKnown && name == word) break;
            }
            text.remove_prefix(static_cast<size_t>(end - text.begin()));
        }
    }

    const std::vector<DefinitionRecord>& records;
    std::unordered_map<std::string, size_t> positions;
    std::vector<size_t> used;
};

// A record whose uses are being followed.
struct Visit {
    size_t position;
    std::vector<size_t> used;
    size_t next = 0;
};

} // namespace

std::string DefinitionRecord::Key() const {
    if (statement.find('=') == std::string::npos) return "";
    const std::string key = nameOf(kind, name);
    return kind == Kind::Function ? key + "(" + std::to_string(ParameterCount()) : key;
}

int32_t DefinitionRecord::ParameterCount() const {
    const auto commas = std::count(parameters.begin(), parameters.end(), ',');
    return parameters.empty() ? 0 : static_cast<int32_t>(commas) + 1;
}

DefinitionRecord recordOf(std::string_view line) {
    DefinitionRecord record;
    record.line = line;
    record.statement = line.substr(0, line.find('#'));
    record.kind = split(record);
    return record;
}

std::string textOf(const Sections& sections) {
    std::string text;
    for (size_t i = 0; i < sections.size(); ++i) text.append(HEADERS[i]).append("\n").append(sections[i]);
    return text;
}

DefinitionsText::DefinitionsText(std::string whole) : text(std::move(whole)) {
    Section section = NO_SECTION;
    bool beginsWell = false;
    records.reserve(static_cast<size_t>(std::count(text.begin(), text.end(), '\n')));
    for (size_t start = 0, end = 0; start < text.size(); start = end + 1) {
        end = std::min(text.find('\n', start), text.size());
        const std::string_view line = withoutLineEnd(std::string_view(text).substr(start, end - start));
        if (section == HISTORY) { // it runs to the end, whatever was typed
            history.push_back(line);
            continue;
        }
        for (const Section one : {FUNCTIONS, VARIABLES, UNITS, HISTORY}) {
            if (line.compare(0, HEADER_START, HEADERS[one], HEADER_START) == 0) section = one;
        }
        if (start == 0) beginsWell = section == FUNCTIONS;
        DefinitionRecord record = recordOf(line);
        record.section = section;
        if (start > 0 && !trimmed(record.statement).empty()) records.push_back(record);
    }
    isFramed = beginsWell && section == HISTORY && text.back() == '\n';
}

DefinitionLines DefinitionsText::LinesByKey() const {
    DefinitionLines byKey;
    byKey.reserve(records.size());
    for (const DefinitionRecord& record : records) {
        const std::string key = record.section == NO_SECTION ? "" : record.Key();
        if (!key.empty()) byKey[key].append(record.line) += '\n';
    }
    return byKey;
}

std::string DefinitionsText::History() const {
    std::string lines;
    for (const std::string_view line : history) lines.append(line) += '\n';
    return lines;
}

std::vector<bool> usesAny(const std::vector<DefinitionRecord>& records,
                          const std::vector<DefinitionRecord>& others) {
    Uses uses(others);
    std::vector<bool> answers;
    answers.reserve(records.size());
    for (const DefinitionRecord& record : records) answers.push_back(!uses.Of(record).empty());
    return answers;
}

std::vector<size_t> orderOfReading(const std::vector<DefinitionRecord>& records) {
    Uses uses(records);
    std::vector<size_t> order, functions, variables; // the units come first
    std::vector<bool> isVisited(records.size(), false);
    std::vector<Visit> path; // a chain may be longer than a stack of calls
    const auto visit = [&](size_t position) {
        if (isVisited[position]) return;
        isVisited[position] = true;
        path.push_back({position, uses.Of(records[position])});
    };
    for (size_t i = 0; i < records.size(); ++i) {
        const Kind kind = records[i].kind;
        if (kind == Kind::Function) functions.push_back(i); // it can be read without what it uses
        if (kind == Kind::Unit || kind == Kind::Variable) visit(i);
        while (!path.empty()) {
            Visit& last = path.back();
            if (last.next < last.used.size()) {
                visit(last.used[last.next++]); // `last` is no longer valid
                continue;
            }
            if (records[last.position].kind == Kind::Unit) order.push_back(last.position);
            if (records[last.position].kind == Kind::Variable) variables.push_back(last.position);
            path.pop_back();
        }
    }
    order.insert(order.end(), functions.begin(), functions.end());
    order.insert(order.end(), variables.begin(), variables.end());
    return order;
}
