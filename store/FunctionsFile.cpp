// SPDX-License-Identifier: MIT
#include "FunctionsFile.h"

#include "Calculator.h"
#include "DefinitionOrder.h"
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

std::string unitLine(const char* line) {
    UnitText unit;
    if (!splitUnit(line, unit) || saysWhatItIs(unit)) return line;
    const std::string byValue = units_definition(unit.name.c_str());
    return byValue.empty() ? line : "unit " + unit.name + "=" + byValue;
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
          message(calc.message), echoText(calc.echoText), lastAnswer(calc.lastAnswer), answer(calc.answer) {
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
        calc.answer = answer;
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
    Answer answer;
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

int define(ZqCalculator& calc, const Definition& definition) {
    const PredefinedAside aside(definition);
    const std::string line = definition.name + "(" + definition.parameters + ")=" + definition.body;
    return line.size() < TEXT_SIZE ? calc.Calculate(line.c_str())
                                   : calc.DefineFunction(withMarks(line).c_str());
}

enum class Kind { FUNCTION, VARIABLE, UNIT, NONE };

// A line up to the history, and what became of it.
struct Statement {
    std::string text; // without its comment
    size_t line = 0;  // its number
    Kind kind = Kind::NONE;
    Definition function; // Kind::FUNCTION
    NamedText other;     // Kind::VARIABLE and Kind::UNIT
    bool isLeft = false; // in the file: reading it takes too long, or it may use one of which that is so
    bool isTaken = false;

    // What reading it takes besides its evaluation.
    uint64_t Cost() const {
        const bool isFunction = kind == Kind::FUNCTION;
        return Cost::FILE_LINE +
               text.size() * (isFunction ? Cost::CHARACTER_OF_FUNCTION : Cost::CHARACTER_OF_VALUE);
    }
};

bool isVariableName(const std::string& name) {
    const auto isOfName = [](char c) { return IsLetter(c) || IsDigit(c) || c == '_'; };
    return !name.empty() && IsLetter(name[0]) && std::all_of(name.begin(), name.end(), isOfName);
}

// name=expression, the name without blanks around it. What looks so ("del = 5") is no command.
bool splitAssignment(const std::string& line, NamedText& variable) {
    const size_t equals = line.find('=');
    if (equals == std::string::npos || line.compare(equals, 2, "==") == 0) return false;
    const size_t start = line.find_first_not_of(" \t");
    const size_t end = line.find_last_not_of(" \t", equals - 1);
    if (start >= equals || end == std::string::npos) return false;
    variable.name = line.substr(start, end - start + 1);
    variable.text = line.substr(equals + 1);
    return isVariableName(variable.name);
}

Kind kindOf(Statement& statement) {
    // A definition is one statement.
    const auto isForeign = [](char c) { return isControl(c) || c == ';'; };
    if (std::any_of(statement.text.begin(), statement.text.end(), isForeign)) return Kind::NONE;
    UnitText unit;
    if (splitUnit(statement.text, unit)) {
        statement.other = {unit.name, unit.definition};
        return Kind::UNIT;
    }
    if (splitDefinition(statement.text, statement.function)) return Kind::FUNCTION;
    return splitAssignment(statement.text, statement.other) ? Kind::VARIABLE : Kind::NONE;
}

// Takes the lines up to the history into a calculator.
class DefinitionReader {
public:
    explicit DefinitionReader(ZqCalculator& into) : calc(into) {}

    // Refused lines are tried again while others are accepted, each time from the other end. What one that was left
    // would have defined is not known, so whatever is refused then may need it and is left, too.
    void Take(std::vector<Statement>& statements) {
        AllowOneReading(statements);
        DeclareFunctions(statements);
        std::vector<Statement*> waiting = InOrder(statements);
        size_t before = waiting.size() + 1;
        while (waiting.size() < before) {
            before = waiting.size();
            const auto isDone = [this](Statement* statement) {
                TakeOne(*statement);
                return statement->isTaken || statement->isLeft;
            };
            waiting.erase(std::remove_if(waiting.begin(), waiting.end(), isDone), waiting.end());
            std::reverse(waiting.begin(), waiting.end());
        }
        removeDeclared();
        const auto isLeft = [](const Statement& statement) { return statement.isLeft; };
        if (std::none_of(statements.begin(), statements.end(), isLeft)) return;
        for (Statement* const refused : waiting) refused->isLeft = true;
    }

private:
    // False when so much is not left any more.
    bool Spend(uint64_t units_) {
        if (units_ > left) return false;
        left -= units_;
        return true;
    }

    // A person may have any number of definitions: the limit is for evaluations and for reading again.
    void AllowOneReading(const std::vector<Statement>& statements) {
        for (const Statement& statement : statements) {
            if (statement.text.size() < TEXT_SIZE) left += statement.Cost();
        }
    }

    void DeclareFunctions(std::vector<Statement>& statements) {
        std::vector<const Definition*> definitions;
        for (Statement& statement : statements) {
            if (statement.kind != Kind::FUNCTION) continue;
            statement.isLeft = !Spend(statement.Cost());
            if (!statement.isLeft) definitions.push_back(&statement.function);
        }
        for (const Definition* const definition : definitions) {
            if (funcs.FunctionExists(definition->name.c_str(), definition->argCount)) continue;
            declare(definition->name, definition->parameters);
        }
        for (const Definition* const definition : definitions) declareCalled(definition->body);
    }

    // Those that may define something: the functions, and the others behind what they use.
    std::vector<Statement*> InOrder(std::vector<Statement>& statements) const {
        std::vector<Statement*> ordered;
        for (const Kind kind : {Kind::UNIT, Kind::FUNCTION, Kind::VARIABLE}) {
            std::vector<Statement*> ofKind;
            std::vector<NamedText> names;
            for (Statement& statement : statements) {
                if (statement.kind != kind || statement.isLeft) continue;
                ofKind.push_back(&statement);
                names.push_back(statement.text.size() < TEXT_SIZE ? statement.other : NamedText());
            }
            for (const size_t position : OrderOfDefinitions(names)) ordered.push_back(ofKind[position]);
        }
        return ordered;
    }

    bool IsKnown(const Statement& statement) const {
        if (statement.kind == Kind::UNIT) {
            const node* const unit = calc.UnitExists(statement.other.name.c_str());
            return unit && statement.text == unit->text;
        }
        if (statement.kind != Kind::VARIABLE) return false;
        const node* const variable = calc.VariableExists(statement.other.name.c_str());
        return variable && variable->value && statement.other.text == valueText(*variable->value);
    }

    int Evaluate(const Statement& statement, uint64_t& work) {
        if (statement.kind == Kind::FUNCTION) return define(calc, statement.function);
        const bool isUnit = statement.kind == Kind::UNIT;
        const std::string assignment = statement.other.name + "=" + statement.other.text;
        return calc.CalculateWithin(isUnit ? statement.text.c_str() : assignment.c_str(), work);
    }

    void TakeOne(Statement& statement) {
        const bool isPaid = statement.kind == Kind::FUNCTION; // when it was declared
        // What is no entry for its length is not evaluated.
        statement.isLeft = !isPaid && (statement.text.size() >= TEXT_SIZE || !Spend(statement.Cost()));
        if (statement.isLeft) return;
        statement.isTaken = IsKnown(statement);
        if (statement.isTaken) return;
        const uint64_t allowed = std::min(left, WorkLimit::LINE_OF_FILE);
        uint64_t work = allowed;
        statement.isTaken = Evaluate(statement, work) != STATUS_ERROR;
        statement.isLeft = !statement.isTaken && work == 0;
        left -= allowed - work;
    }

    ZqCalculator& calc;
    uint64_t left = WorkLimit::FUNCTIONS_FILE;
};

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

std::vector<Statement> statementsIn(const std::vector<std::string>& lines, size_t end) {
    std::vector<Statement> statements;
    for (size_t i = 1; i < end; i++) {
        Statement statement;
        statement.text = statementOf(lines[i]);
        if (statement.text.empty()) continue;
        statement.line = i;
        statement.kind = kindOf(statement);
        statements.push_back(std::move(statement));
    }
    return statements;
}

// The lines that were read.
std::string textWithout(const std::vector<bool>& isUnread, const std::vector<std::string>& lines) {
    std::string text;
    for (size_t i = 0; i < lines.size(); i++) {
        if (!isUnread[i]) text += lines[i] + '\n';
    }
    return text;
}

void takeText(ZqCalculator& calc, FunctionsFileResult& result) {
    std::vector<std::string> lines = splitLines(result.text);
    result.damaged = lines.empty() || result.text.back() != '\n' || !beginsWith(lines[0], FIRST_LINE);
    if (lines.empty()) return;
    const auto isHistory = [](const std::string& line) { return beginsWith(line, HISTORY_LINE); };
    const auto header = std::find_if(lines.begin() + 1, lines.end(), isHistory);
    std::vector<Statement> statements = statementsIn(lines, static_cast<size_t>(header - lines.begin()));
    DefinitionReader(calc).Take(statements);
    std::vector<bool> isUnread(lines.size(), false);
    for (const Statement& statement : statements) {
        if (!statement.isTaken && !statement.isLeft) result.damaged = true;
        if (!statement.isLeft) continue;
        isUnread[statement.line] = true;
        result.unread++;
    }
    // Without its section a definition does not stay in the file.
    if (result.unread > 0 && lines[0] + "\n" != FUNCTIONS_HEADER) result.damaged = true;
    if (header == lines.end() || !takeHistory(calc.history, header + 1, lines.end())) result.damaged = true;
    if (result.unread > 0) result.text = textWithout(isUnread, lines);
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
    result.opened = readWholeFile(path, result.text);
    if (!result.opened) return result;
    const EngineState state(calc);
    takeText(calc, result);
    return result;
}
