// SPDX-License-Identifier: MIT
#include "FunctionsFile.h"

#include "Calculator.h"
#include "FileKeeping.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

const char* const FUNCTIONS_HEADER = "### FUNCTIONS ###\n";
const char* const VARIABLES_HEADER = "### VARIABLES ###\n";
const char* const UNITS_HEADER = "### CUSTOM UNITS ###\n";
const char* const HISTORY_HEADER = "### HISTORY ###\n";

// How these headers are known again.
const char* const FIRST_LINE = "### FUNCTIONS";
const char* const HISTORY_LINE = "### HISTORY";

constexpr int VALUE_DIGITS = 100;

bool beginsWith(std::string_view text, std::string_view start) {
    return text.substr(0, start.size()) == start;
}

bool isControl(char c) {
    return (static_cast<unsigned char>(c) < ' ' && c != '\t') || c == '\x7f';
}

std::string valueText(const qfloat value) {
    char digits[FORMAT_SIZE];
    qtoascii(value, digits, VALUE_DIGITS, SCI_AUTO, '\0');
    return digits;
}

// "unit name=definition", as the engine keeps it.
struct UnitText {
    std::string name;
    std::string definition;
};

bool splitUnit(const std::string& line, UnitText& unit) {
    const std::string head = "unit ";
    const size_t equals = line.find('=');
    if (!beginsWith(line, head) || equals == std::string::npos) return false;
    unit.name = line.substr(head.size(), equals - head.size());
    unit.definition = line.substr(equals + 1);
    return true;
}

// --- Writing ---

// Whether the definition, read now, makes the unit that it once made. A unit of its own stands for itself.
bool saysWhatItIs(const UnitText& unit) {
    if (unit.definition == primitivestring) return true;
    units_clear_exception();
    const double factor = units_convert(unit.name.c_str(), unit.definition.c_str());
    return !units_check_exception() && std::abs(factor - 1) < 1e-12;
}

// The unit by its value: the reduced form with all digits. An empty text when there is none.
std::string unitByValue(const std::string& name) {
    const char* const reduced = units_reduce(name.c_str());
    if (!reduced) return "";
    const std::string form = reduced;
    const std::string names = form.substr(std::min(form.find(' '), form.size()));
    const double factor = units_convert(name.c_str(), ("1" + names).c_str());
    if (units_check_exception() || !std::isnormal(factor)) return "";
    char digits[40];
    snprintf(digits, sizeof digits, "%.17g", factor);
    return "unit " + name + "=" + digits + names;
}

std::string unitLine(const char* line) {
    UnitText unit;
    if (!splitUnit(line, unit) || saysWhatItIs(unit)) return line;
    units_clear_exception();
    const std::string byValue = unitByValue(unit.name);
    return byValue.empty() ? line : byValue;
}

std::string unitLines(const ZqCalculator& calc) {
    std::string text;
    for (const node* unit = calc.unitDefs.first; unit; unit = unit->next) text += unitLine(unit->text) + '\n';
    units_clear_exception();
    return text;
}

std::string functionLines() {
    std::string text;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (function->body) text += function->ToString() + '\n';
    }
    return text;
}

std::string variableLines(const ZqCalculator& calc) {
    std::string text;
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        if (!variable->value || (*variable->value)[1] >= OVERFLOW_EXPONENT) continue;
        text += std::string(variable->text) + '=' + valueText(*variable->value) + '\n';
    }
    return text;
}

// By number, so that the position at which the history is browsed stays.
std::string historyLines(const CHistory& history) {
    std::string text;
    for (int32_t k = history.count; k >= 1; k--) {
        std::string line = history.GetHistoryStr(k);
        std::replace_if(line.begin(), line.end(), isControl, ' ');
        text += line + '\n';
    }
    return text;
}

// --- Reading ---

// Keeps what an entry leaves in the engine, sets it up for reading, and puts it back.
class EngineState {
public:
    explicit EngineState(ZqCalculator& engine)
        : calc(engine), european(calc.european), tenKey(calc.tenKey), fullEntry(calc.fullEntry),
          interrupted(calc.interrupted), interruptCheck(calc.interruptCheck), mathError(merror),
          message(calc.message), echoText(calc.echoText), lastAnswer(calc.lastAnswer) {
        qmov(calc.result, result);
        calc.european = calc.tenKey = false;
        calc.fullEntry = true;
        calc.interruptCheck = nullptr; // an interrupted line would be a lost one
    }
    ~EngineState() {
        calc.european = european;
        calc.tenKey = tenKey;
        calc.fullEntry = fullEntry;
        calc.interrupted = interrupted;
        calc.interruptCheck = interruptCheck;
        merror = mathError;
        memcpy(calc.message, message.c_str(), message.size() + 1);
        memcpy(calc.echoText, echoText.c_str(), echoText.size() + 1);
        memcpy(calc.lastAnswer, lastAnswer.c_str(), lastAnswer.size() + 1);
        qmov(result, calc.result);
        calc.terms.Clear();
        calc.target = calc.vars.first;
        units_clear_exception();
    }
    EngineState(const EngineState&) = delete;
    EngineState& operator=(const EngineState&) = delete;

private:
    ZqCalculator& calc;
    bool european;
    bool tenKey;
    bool fullEntry;
    bool interrupted;
    bool (*interruptCheck)();
    decltype(merror) mathError;
    std::string message;
    std::string echoText;
    std::string lastAnswer;
    qfloat result;
};

// name(parameters)=body
struct Definition {
    std::string name;
    std::string parameters;
    std::string body;
    int32_t argCount = 0;
};

std::string withoutBlanks(std::string text) {
    text.erase(std::remove_if(text.begin(), text.end(), [](char c) { return c == ' ' || c == '\t'; }),
               text.end());
    return text;
}

// False when the line is something else.
bool splitDefinition(const std::string& line, Definition& definition) {
    const size_t open = line.find('(');
    if (open == std::string::npos) return false;
    const size_t close = line.find(')', open);
    if (close == std::string::npos) return false;
    const size_t equals = line.find_first_not_of(" \t", close + 1);
    if (equals == std::string::npos || line[equals] != '=' || line.compare(equals, 2, "==") == 0)
        return false;
    definition.name = withoutBlanks(line.substr(0, open));
    definition.parameters = withoutBlanks(line.substr(open + 1, close - open - 1));
    definition.body = line.substr(equals + 1);
    const auto& names = definition.parameters;
    const auto commas = static_cast<int32_t>(std::count(names.begin(), names.end(), ','));
    definition.argCount = names.empty() ? 0 : commas + 1;
    return true;
}

// A name is known as a function's to the definitions that are read after it. One whose definition is still to come
// is declared with this body, which nobody can type.
const char* const DECLARED = "\x01";

bool isDeclared(const Function& function) {
    const node* const term = function.body ? function.body->first : nullptr;
    return term && term->text && strIsEqual(term->text, DECLARED);
}

void declare(const std::string& name, std::string parameters) {
    Deq body;
    body.Push(StrDuplicate(DECLARED))->type = TERM_NAME;
    funcs.AddFunction(name.c_str(), parameters.data(), &body);
}

void removeDeclared() {
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (isDeclared(*function)) funcs.DeleteFunction(function);
    }
}

// The names in front of a parenthesis that no function has, such as those of deleted functions. Read as a call,
// g(x,1) has two arguments; else "x,1" would be one name.
void declareCalled(const std::string& body) {
    std::string name;
    for (const char c : body) {
        if (IsLetter(c) || (!name.empty() && (IsDigit(c) || c == '_'))) {
            name += c;
            continue;
        }
        const bool isCall = !name.empty() && (c == '(' || c == '[' || c == '{');
        if (isCall && name.size() < MAX_NAME && !funcs.FunctionExists(name.c_str(), -1)) declare(name, "x");
        name.clear();
    }
}

// The predefined functions in the way of a definition, by its name or since they answer for it ("log..."), are set
// aside. All but the one it replaces come back.
class PredefinedAside {
public:
    explicit PredefinedAside(const Definition& coming) : definition(coming) {
        while (const Function* function = InTheWay()) {
            names.emplace_back(function->name);
            funcs.DeleteFunction(function);
        }
    }
    ~PredefinedAside() {
        const bool isReplaced = funcs.FindByName(definition.name.c_str(), definition.argCount) != nullptr;
        for (const std::string& name : names) {
            if (isReplaced && strIsEqualI(name.c_str(), definition.name.c_str())) continue;
            char parameter[] = "x"; // they all have one
            funcs.AddFunction(name.c_str(), parameter, nullptr);
        }
    }
    PredefinedAside(const PredefinedAside&) = delete;
    PredefinedAside& operator=(const PredefinedAside&) = delete;

private:
    const Function* InTheWay() const {
        const Function* function = funcs.FunctionExists(definition.name.c_str(), definition.argCount);
        return function && !function->body ? function : nullptr;
    }

    const Definition& definition;
    std::vector<std::string> names;
};

// The engine takes definitions that are longer than a statement, conversions marked: printed, they are a blank in
// front of the source unit and an arrow; as many of the arrows as there are blanks.
std::string withMarks(std::string text) {
    const auto conversions = std::count(text.begin(), text.end(), ' ');
    std::replace(text.begin(), text.end(), ' ', CVSstr[0]);
    size_t arrow = 0;
    for (auto left = conversions; left > 0 && (arrow = text.find("->", arrow)) != std::string::npos; left--) {
        text.replace(arrow, 2, CVstr);
    }
    return text;
}

int define(ZqCalculator& calc, const Definition& definition, const std::string& line) {
    const PredefinedAside aside(definition);
    return line.size() < TEXT_SIZE ? calc.Calculate(line.c_str())
                                   : calc.DefineFunction(withMarks(line).c_str());
}

// Whether the engine has this already: a variable of this value, or a unit of this definition.
bool isKnown(const ZqCalculator& calc, const std::string& line) {
    UnitText unit;
    if (splitUnit(line, unit)) {
        const node* const known = calc.UnitExists(unit.name.c_str());
        return known && line == known->text;
    }
    const size_t equals = line.find('=');
    if (equals == std::string::npos) return false;
    const node* const variable = calc.VariableExists(line.substr(0, equals).c_str());
    return variable && variable->value && line.substr(equals + 1) == valueText(*variable->value);
}

// One line up to the history. False when it was refused.
bool takeLine(ZqCalculator& calc, const std::string& line) {
    if (line.find('\0') != std::string::npos) return false; // what stands before it may be a part of a number
    if (isKnown(calc, line)) return true;
    Definition definition;
    if (splitDefinition(line, definition)) return define(calc, definition, line) != STATUS_ERROR;
    return !std::any_of(line.begin(), line.end(), isControl) && calc.Calculate(line.c_str()) != STATUS_ERROR;
}

void declareFunctions(const std::vector<std::string>& lines) {
    std::vector<Definition> definitions;
    for (const std::string& line : lines) {
        Definition definition;
        if (splitDefinition(line, definition)) definitions.push_back(definition);
    }
    for (const Definition& definition : definitions) {
        if (funcs.FunctionExists(definition.name.c_str(), definition.argCount)) continue;
        declare(definition.name, definition.parameters);
    }
    for (const Definition& definition : definitions) declareCalled(definition.body);
}

// Refused lines are tried again while others are accepted, each time from the other end: a chain of units may stand
// in either order. Returns whether none is left.
bool takeLines(ZqCalculator& calc, std::vector<std::string> lines) {
    declareFunctions(lines);
    size_t before = lines.size() + 1;
    while (lines.size() < before) {
        before = lines.size();
        const auto isTaken = [&calc](const std::string& line) { return takeLine(calc, line); };
        lines.erase(std::remove_if(lines.begin(), lines.end(), isTaken), lines.end());
        std::reverse(lines.begin(), lines.end());
    }
    removeDeclared();
    return lines.empty();
}

// The lines without their ends, CR LF among them.
std::vector<std::string> splitLines(const std::string& text) {
    std::vector<std::string> lines;
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        if (!lines.back().empty() && lines.back().back() == '\r') lines.back().pop_back();
        start = end + 1;
    }
    return lines;
}

// What is left without the comment, or nothing of a blank line.
std::string statementOf(const std::string& line) {
    const std::string statement = line.substr(0, line.find('#'));
    return statement.find_first_not_of(" \t") == std::string::npos ? "" : statement;
}

// Whether the history came through whole.
bool takeHistory(CHistory& history, std::vector<std::string>::iterator line,
                 const std::vector<std::string>::iterator end) {
    bool isWhole = true;
    for (; line != end; ++line) {
        if (std::any_of(line->begin(), line->end(), isControl)) isWhole = false;
        history.FilteredInsertNew(line->data(), true);
    }
    return isWhole;
}

bool takeText(ZqCalculator& calc, const std::string& text) {
    std::vector<std::string> lines = splitLines(text);
    if (lines.empty()) return false;
    bool isWhole = text.back() == '\n' && beginsWith(lines[0], FIRST_LINE);
    const auto isHistory = [](const std::string& line) { return beginsWith(line, HISTORY_LINE); };
    const auto header = std::find_if(lines.begin() + 1, lines.end(), isHistory);
    std::vector<std::string> statements;
    for (auto line = lines.begin() + 1; line != header; ++line) {
        const std::string statement = statementOf(*line);
        if (!statement.empty()) statements.push_back(statement);
    }
    if (!takeLines(calc, statements)) isWhole = false;
    if (header == lines.end()) return false;
    return takeHistory(calc.history, header + 1, lines.end()) && isWhole;
}

} // namespace

std::string FunctionsFileText(const ZqCalculator& calc) {
    const auto mathError = merror; // printing numbers may leave a code
    std::string text = FUNCTIONS_HEADER + functionLines() + VARIABLES_HEADER + variableLines(calc) +
                       UNITS_HEADER + unitLines(calc) + HISTORY_HEADER + historyLines(calc.history);
    merror = mathError;
    return text;
}

FunctionsFileResult ReadFunctionsFile(ZqCalculator& calc, const std::string& path) {
    FunctionsFileResult result;
    result.opened = ReadWholeFile(path, result.text);
    if (!result.opened) return result;
    const EngineState state(calc);
    result.damaged = !takeText(calc, result.text);
    return result;
}
