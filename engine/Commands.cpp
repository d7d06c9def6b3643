// SPDX-License-Identifier: MIT
//
// The command words.
#include "Calculator.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

namespace {

constexpr size_t COMMAND_LENGTH = 20; // characters in which command words are looked for
constexpr size_t QUERY_LENGTH = 1000;

const char* const gospel =
    "In the beginning was the prompt, and the prompt was patient.\n"
    "It did not ask you to hunt for a cosine among forty little buttons; it let you write cos and went on.\n"
    "A console remembers what you asked, so that you may be wrong cheaply and right a moment later.\n"
    "It has no second function key, for every function is the first, and no memory key, for memory has "
    "names.\n"
    "Ten fingers were given to you, and a keypad would have nine of them watch.\n"
    "Type, therefore, and it shall be answered; mistype, and the error shall be yours in plain words.\n"
    "    << type 'gospel' for more >>\n";

enum class Match {
    Word,         // the first word is this one
    WordArgument, // so it is, and something follows
    Number,       // the word, then a number, blanks between them or not
    Prefix,       // the statement begins so
    Exact,        // this is the whole statement
    Setting,      // the command of a setting
    Function      // the whole statement is the name of a function
};

// All lines, or as many as fit and how many more there are.
class Listing {
public:
    // `makeLine` returns the line; it is not called once a line did not fit.
    template <class MakeLine> void Add(MakeLine makeLine) {
        if (more == 0) {
            const std::string line = makeLine();
            if (text.size() + line.size() + 1 < ROOM) {
                text += line + "\n";
                return;
            }
        }
        more++;
    }

    std::string Text() const { return more == 0 ? text : text + "... " + std::to_string(more) + " more\n"; }

private:
    static constexpr size_t ROOM = TEXT_SIZE - 64; // beside the closing line
    std::string text;
    size_t more = 0;
};

} // namespace

// One statement as the command words see it.
struct CommandText {
    std::string statement;            // as typed
    std::string lower;                // its first characters in lower case
    std::string word;                 // the first word of these
    std::string argument;             // what follows the first word and its blanks, as typed
    int32_t number = 0;               // Match::Number
    const Setting* setting = nullptr; // Match::Setting, with the number or the choice
    const SettingChoice* choice = nullptr;
};

struct Command {
    const char* word;
    Match match;
    int (*run)(ZqCalculator&, const CommandText&);
};

// The commands; a struct so that they may change the engine.
struct Commands {
    static const Command table[];

    static int Confirm(ZqCalculator& calc, const std::string& text) {
        const size_t length = std::min(text.size(), sizeof calc.message - 1);
        memcpy(calc.message, text.data(), length);
        calc.message[length] = '\0';
        return STATUS_MESSAGE;
    }

    static int HandOver(ZqCalculator& calc, const std::string& command) {
        Confirm(calc, command);
        return STATUS_COMMAND;
    }

    // Appends to the texts that the entry shows; all of the text or nothing.
    static bool Echo(ZqCalculator& calc, const std::string& text) {
        const size_t used = strlen(calc.echoText);
        if (used + text.size() + 1 >= sizeof calc.echoText) return false;
        memcpy(calc.echoText + used, text.data(), text.size());
        memcpy(calc.echoText + used + text.size(), "\n", 2);
        return true;
    }

    static int RefuseEcho(ZqCalculator& calc) {
        return calc.Fail("** ERROR: %i max characters to show **\n", {std::to_string(TEXT_SIZE)});
    }

    // --- Deleting ---

    static std::string NameIn(const std::string& text) {
        size_t end = 0;
        while (end < text.size() && (IsLetter(text[end]) || IsDigit(text[end]) || text[end] == '_')) end++;
        return text.substr(0, end);
    }

    static int Delete(ZqCalculator& calc, const CommandText& text) {
        const std::string name = NameIn(text.argument);
        if (const Function* function = funcs.FindByName(name.c_str(), -1)) {
            funcs.DeleteFunction(function);
            return Confirm(calc, "** deleted " + name + "() **\n");
        }
        if (node* variable = calc.VariableExists(name.c_str())) {
            if (variable == calc.vars.first) return calc.Fail("** ERROR: cannot delete %s **\n", {name});
            calc.variables.Delete(variable);
            return Confirm(calc, "** deleted " + name + " **\n");
        }
        if (strIsEqualI(name.c_str(), "all")) {
            calc.InitializeVarsList();
            return Confirm(calc, "** deleted all variables **\n");
        }
        if (node* unit = calc.UnitExists(name.c_str())) {
            calc.unitLines.Delete(unit);
            removeUnit(name.c_str());
            return Confirm(calc, "** deleted unit " + name + " **\n");
        }
        return calc.Fail("** ERROR: variable, unit or function '%s' not found **\n", {name});
    }

    // --- For the front end ---

    static int Convert(ZqCalculator& calc, const CommandText& text) {
        std::string query = "convert+" + text.argument.substr(0, QUERY_LENGTH);
        std::replace(query.begin(), query.end(), ' ', '+');
        memcpy(calc.echoText, query.c_str(), query.size() + 1);
        return HandOver(calc, "convert");
    }

    static int ShowEcho(ZqCalculator& calc, const CommandText& text) {
        calc.message[0] = '\0';
        return Echo(calc, text.argument) ? STATUS_MESSAGE : RefuseEcho(calc);
    }

    // echo50 text: everything behind the word and one character.
    static int TypeEcho(ZqCalculator& calc, const CommandText& text) {
        const size_t wordEnd = std::min(text.statement.find_first_of(" \t"), text.statement.size());
        const size_t start = std::min(wordEnd + 1, text.statement.size());
        return Echo(calc, text.statement.substr(start)) ? HandOver(calc, text.word) : RefuseEcho(calc);
    }

    static int ReplaceEcho(ZqCalculator& calc, const CommandText& text) {
        return Echo(calc, text.argument) ? HandOver(calc, "echorep") : RefuseEcho(calc);
    }

    // The word carries its number; a number that stands apart is put into it.
    static int Pause(ZqCalculator& calc, const CommandText& text) {
        return HandOver(calc, text.word == "pause" ? "pause" + std::to_string(text.number) : text.word);
    }

    static int Clear(ZqCalculator& calc, const CommandText&) { return HandOver(calc, "clear"); }
    static int Exit(ZqCalculator& calc, const CommandText&) { return HandOver(calc, "exit"); }

    static int Gospel(ZqCalculator& calc, const CommandText&) {
        calc.gospelShown = !calc.gospelShown;
        return calc.gospelShown ? Confirm(calc, gospel) : HandOver(calc, "gospel");
    }

    // --- Variables and units ---

    static int Display(ZqCalculator& calc, const CommandText& text) {
        const node* variable = calc.VariableExists(text.argument.c_str());
        if (!variable) return calc.Fail("** ERROR: variable '%s' not found **\n", {text.argument});
        qmov(*variable->value, calc.result);
        calc.overflowed = calc.result[1] >= OVERFLOW_EXPONENT;
        const std::string line =
            text.argument + " = " + calc.answer.Keep(calc.entryLine, variable->text, calc.result, calc);
        memcpy(calc.lastAnswer, line.c_str(), line.size() + 1);
        calc.message[0] = '\0';
        return Echo(calc, line) ? STATUS_MESSAGE : RefuseEcho(calc);
    }

    static int DefineUnit(ZqCalculator& calc, const CommandText& text) {
        const size_t equals = text.argument.find('=');
        const size_t start =
            equals == std::string::npos ? equals : text.argument.find_first_not_of(" \t", equals + 1);
        if (equals == 0 || start == std::string::npos) {
            return calc.Fail("** ERROR: incorrect syntax to define new unit **\n");
        }
        std::string name = text.argument.substr(0, equals);
        name.resize(std::min(name.size(), name.find_first_of(" \t")));
        std::string definition = text.argument.substr(start);
        calc.ProcessStringEuropean(definition.data()); // kept with a '.', as functions are
        bool isStopped = false;
        units_clear_exception();
        units_new(name.c_str(), definition.c_str(), calc.spending.ForUnits(isStopped));
        if (isStopped) return STATUS_ERROR;
        if (const char* error = units_check_exception()) return calc.Fail("** ERROR: %s **\n", {error});
        auto line = std::make_unique<node>();
        line->text = StrDuplicate("unit " + name + "=" + definition);
        line->type = TERM_NAME;
        calc.unitLines.Append(line.release());
        return Confirm(calc, "new unit defined: " + name + "\n");
    }

    // --- Settings ---

    static int ChangeSetting(ZqCalculator& calc, const CommandText& text) {
        const Setting& setting = *text.setting;
        const bool isChoice = setting.choices.begin() != setting.choices.end();
        const int value = text.choice ? text.choice->value : text.number;
        if (isChoice ? !text.choice : !setting.IsPossible(value)) {
            return calc.Fail("** ERROR: %s **\n", {setting.command.refusal});
        }
        setting.Apply(value, calc);
        const std::string shown = isChoice ? text.choice->shown : std::to_string(value);
        return Confirm(calc, "** " + (setting.command.answer + shown) + " **\n");
    }

    template <bool value> static int HistoryStack(ZqCalculator& calc, const CommandText&) {
        calc.histStack = value;
        return Confirm(calc, value ? "** HISTORY STACK ON **\n" : "** HISTORY STACK OFF **\n");
    }

    // --- Lists ---

    static int ListUnits(ZqCalculator& calc, const CommandText&) {
        Listing listing;
        for (const node* unit = calc.unitDefs.first; unit; unit = unit->next) {
            listing.Add([unit] { return std::string(unit->text); });
        }
        return Confirm(calc, listing.Text());
    }

    static int ListFunctions(ZqCalculator& calc, const CommandText&) {
        Listing listing;
        for (const Function* function = funcs.Get(0); function && !calc.interrupted;
             function = funcs.GetNext()) {
            if (function->body) listing.Add([&calc, function] { return calc.definitions.TextOf(*function); });
        }
        return calc.interrupted ? STATUS_ERROR : Confirm(calc, listing.Text());
    }

    static int ShowFunction(ZqCalculator& calc, const CommandText& text) {
        return calc.definitions.Show(*funcs.FindByName(text.statement.c_str(), -1));
    }
};

// In the order in which they are tried; the first match wins.
const Command Commands::table[] = {
    {"del", Match::Word, Delete},
    {"rem", Match::Word, Delete},
    {"convert", Match::Word, Convert},
    {"echo", Match::Word, ShowEcho},
    {"echo", Match::Number, TypeEcho},
    {"echorep", Match::Word, ReplaceEcho},
    {"pause", Match::Number, Pause},
    {"disp", Match::WordArgument, Display},
    {"unit", Match::WordArgument, DefineUnit},
    {"clear", Match::Exact, Clear},
    {"cls", Match::Exact, Clear},
    {"exit", Match::Exact, Exit},
    {"", Match::Setting, ChangeSetting},
    {"histstack on", Match::Exact, HistoryStack<true>},
    {"histstack off", Match::Exact, HistoryStack<false>},
    {"gospel", Match::Exact, Gospel},
    {"list units", Match::Exact, ListUnits},
    {"list", Match::Exact, ListFunctions},
    {"", Match::Function, ShowFunction},
};

static CommandText readCommand(const std::string& statement) {
    CommandText text;
    text.statement = statement;
    text.lower = statement.substr(0, COMMAND_LENGTH);
    for (char& c : text.lower) c = LowerCase(c);
    text.word = text.lower.substr(0, text.lower.find_first_of(" \t\r\n"));
    const size_t start = statement.find_first_not_of(" \t", statement.find_first_of(" \t\r\n"));
    if (start != std::string::npos) {
        text.argument = statement.substr(start, statement.find_first_of("\r\n", start) - start);
    }
    return text;
}

// A number behind the word: decimal, 0x... or, with a leading 0, octal.
static bool readNumber(CommandText& text, const std::string& word) {
    if (text.lower.compare(0, word.size(), word) != 0) return false;
    const char* from = text.lower.c_str() + word.size();
    char* end = nullptr;
    const long number = strtol(from, &end, 0);
    text.number = static_cast<int32_t>(std::clamp(number, -2147483647L, 2147483647L));
    return end != from;
}

// A setting's command, and a value for it unless that has to be refused.
static bool readSetting(CommandText& text) {
    for (const Setting& setting : SETTINGS) {
        if (!setting.command.word) continue;
        text.setting = &setting;
        const std::string word = setting.command.word;
        if (setting.choices.begin() == setting.choices.end()) {
            if (readNumber(text, word)) return true;
        } else if (text.lower.compare(0, word.size() + 1, word + " ") == 0) {
            text.choice = setting.ChoiceIn(text.lower.substr(word.size() + 1));
            if (text.choice || setting.command.refusal) return true;
        }
    }
    return false;
}

static bool matches(const Command& command, CommandText& text) {
    const std::string word = command.word;
    switch (command.match) {
    case Match::Word: return text.word == word;
    case Match::WordArgument: return text.word == word && !text.argument.empty();
    case Match::Number: return readNumber(text, word);
    case Match::Prefix: return text.lower.compare(0, word.size(), word) == 0;
    case Match::Exact: return text.lower == word;
    case Match::Setting: return readSetting(text);
    case Match::Function: return funcs.FindByName(text.statement.c_str(), -1) != nullptr;
    }
    return false;
}

int ZqCalculator::RunCommand(const std::string& statement) {
    CommandText text = readCommand(statement);
    if (!IsValidVariable(text.word.c_str())) return NO_COMMAND;
    for (const Command& command : Commands::table) {
        if (matches(command, text)) return command.run(*this, text);
    }
    return NO_COMMAND;
}
