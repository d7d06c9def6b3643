// SPDX-License-Identifier: MIT
#include "Commands.h"

#include "Answer.h"
#include "Definitions.h"
#include "Format.h"
#include "Functions.h"
#include "Helpers_String.h"
#include "units.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

// One statement as the command words see it.
struct CommandText {
    std::string statement;            // as typed
    std::string lower;                // its first characters in lower case
    std::string word;                 // the first word of these
    std::string argument;             // what follows the first word and its blanks, as typed
    int32_t number = 0;               // Command::NUMBER
    const Setting* setting = nullptr; // Command::SETTING, with the number or the choice
    const SettingChoice* choice = nullptr;
};

namespace {

constexpr size_t COMMAND_LENGTH = 20; // characters in which command words are looked for
constexpr size_t QUERY_LENGTH = 1000;

const char* const GOSPEL =
    "In the beginning was the prompt, and the prompt was patient.\n"
    "It did not ask you to hunt for a cosine among forty little buttons; it let you write cos and went on.\n"
    "A console remembers what you asked, so that you may be wrong cheaply and right a moment later.\n"
    "It has no second function key, for every function is the first, and no memory key, for memory has "
    "names.\n"
    "Ten fingers were given to you, and a keypad would have nine of them watch.\n"
    "Type, therefore, and it shall be answered; mistype, and the error shall be yours in plain words.\n"
    "    << type 'gospel' for more >>\n";

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

int handOver(Commands& c, const std::string& command) {
    c.outcome.Tell(command);
    return STATUS_COMMAND;
}

// Appends to the texts that the entry shows; all of the text or nothing.
bool appendEcho(Outcome& outcome, const std::string& text) {
    const size_t used = strlen(outcome.echoText);
    if (used + text.size() + 1 >= sizeof outcome.echoText) return false;
    memcpy(outcome.echoText + used, text.data(), text.size());
    memcpy(outcome.echoText + used + text.size(), "\n", 2);
    return true;
}

// With this command for the front end; an empty one is none.
int echo(Commands& c, const std::string& text, const std::string& command) {
    if (!appendEcho(c.outcome, text)) {
        return c.outcome.Fail("** ERROR: %i max characters to show **\n", {std::to_string(TEXT_SIZE)});
    }
    c.outcome.Tell(command);
    return command.empty() ? STATUS_MESSAGE : STATUS_COMMAND;
}

// --- Deleting ---

int deleteNamed(Commands& c, const CommandText& text) {
    const auto end = std::find_if_not(text.argument.begin(), text.argument.end(), isOfName);
    const std::string name(text.argument.begin(), end);
    if (const Function* function = funcs.FindByName(name.c_str(), -1)) {
        funcs.DeleteFunction(function);
        return c.outcome.Tell("** deleted " + name + "() **\n");
    }
    if (node* variable = c.variables.Find(name)) {
        if (variable == c.variables.First()) return c.outcome.Fail("** ERROR: cannot delete %s **\n", {name});
        c.variables.Delete(variable);
        return c.outcome.Tell("** deleted " + name + " **\n");
    }
    if (strIsEqualI(name.c_str(), "all")) {
        c.variables.Reset();
        return c.outcome.Tell("** deleted all variables **\n");
    }
    if (node* unit = c.unitLines.Find(name)) {
        c.unitLines.Delete(unit);
        removeUnit(name.c_str());
        return c.outcome.Tell("** deleted unit " + name + " **\n");
    }
    return c.outcome.Fail("** ERROR: variable, unit or function '%s' not found **\n", {name});
}

// --- For the front end ---

int convert(Commands& c, const CommandText& text) {
    std::string query = "convert+" + text.argument.substr(0, QUERY_LENGTH);
    std::replace(query.begin(), query.end(), ' ', '+');
    copyText(c.outcome.echoText, query);
    return handOver(c, "convert");
}

int showEcho(Commands& c, const CommandText& text) {
    return echo(c, text.argument, "");
}

// echo50 text: everything behind the word and one character.
int typeEcho(Commands& c, const CommandText& text) {
    const size_t wordEnd = std::min(text.statement.find_first_of(" \t"), text.statement.size());
    const size_t start = std::min(wordEnd + 1, text.statement.size());
    return echo(c, text.statement.substr(start), text.word);
}

int replaceEntry(Commands& c, const CommandText& text) {
    return echo(c, text.argument, "echorep");
}

// The word carries its number; a number that stands apart is put into it.
int pause(Commands& c, const CommandText& text) {
    return handOver(c, text.word == "pause" ? "pause" + std::to_string(text.number) : text.word);
}

int clearOrExit(Commands& c, const CommandText& text) {
    return handOver(c, text.word == "exit" ? "exit" : "clear");
}

int showGospel(Commands& c, const CommandText&) {
    c.undo.Keep(c.isGospelShown);
    c.isGospelShown = !c.isGospelShown;
    return c.isGospelShown ? c.outcome.Tell(GOSPEL) : handOver(c, "gospel");
}

// --- Variables and units ---

int display(Commands& c, const CommandText& text) {
    const node* variable = c.variables.Find(text.argument);
    if (!variable) return c.outcome.Fail("** ERROR: variable '%s' not found **\n", {text.argument});
    qmov(*variable->value, c.outcome.result);
    c.outcome.overflowed = c.outcome.result[1] >= OVERFLOW_EXPONENT;
    c.undo.Keep(c.answer);
    c.undo.Keep(c.outcome.lastAnswer);
    std::string shown = shownNumber(c.outcome.result, c.settings, text.argument.size());
    const std::string line = text.argument + " = " + shown;
    copyText(c.outcome.lastAnswer, line);
    c.answer.Keep(c.statement.entryLine, variable->text, c.outcome.result, c.settings, std::move(shown));
    return echo(c, line, "");
}

int defineUnit(Commands& c, const CommandText& text) {
    const size_t equals = text.argument.find('=');
    const size_t start =
        equals == std::string::npos ? equals : text.argument.find_first_not_of(" \t", equals + 1);
    if (equals == 0 || start == std::string::npos) {
        return c.outcome.Fail("** ERROR: incorrect syntax to define new unit **\n");
    }
    std::string name = text.argument.substr(0, equals);
    name.resize(std::min(name.size(), name.find_first_of(" \t")));
    std::string definition = text.argument.substr(start);
    if (c.settings.european) StrSwapChars(definition.data(), '.', ','); // kept with a '.', as functions are
    Spending::UnitsAccount account;
    units_clear_exception();
    units_new(name.c_str(), definition.c_str(), c.spending.ForUnits(account));
    if (account.isStopped) return STATUS_ERROR;
    if (const char* error = units_check_exception()) return c.outcome.Fail("** ERROR: %s **\n", {error});
    c.unitLines.Append(makeTerm("unit " + name + "=" + definition).release());
    return c.outcome.Tell("new unit defined: " + name + "\n");
}

// --- Settings ---

int changeSetting(Commands& c, const CommandText& text) {
    const Setting& setting = *text.setting;
    const bool isChoice = setting.choices.begin() != setting.choices.end();
    const int value = text.choice ? text.choice->value : text.number;
    if (isChoice ? !text.choice : !setting.IsPossible(value)) {
        return c.outcome.Fail("** ERROR: %s **\n", {setting.command.refusal});
    }
    c.undo.Keep(c.settings);
    setting.Apply(value, c.settings);
    const std::string shown = isChoice ? text.choice->shown : std::to_string(value);
    return c.outcome.Tell("** " + (setting.command.answer + shown) + " **\n");
}

int recordEntries(Commands& c, const CommandText& text) {
    c.undo.Keep(c.settings);
    c.settings.histStack = text.lower == "histstack on";
    return c.outcome.Tell(c.settings.histStack ? "** HISTORY STACK ON **\n" : "** HISTORY STACK OFF **\n");
}

// --- Lists ---

int listUnits(Commands& c, const CommandText&) {
    Listing listing;
    for (const node* unit = c.unitLines.First(); unit; unit = unit->next) {
        listing.Add([unit] { return std::string(unit->text); });
    }
    return c.outcome.Tell(listing.Text());
}

int listFunctions(Commands& c, const CommandText&) {
    Listing listing;
    for (const Function* f = funcs.Get(0); f && !c.outcome.interrupted; f = funcs.GetNext()) {
        if (f->body) listing.Add([&c, f] { return c.definitions.TextOf(*f); });
    }
    return c.outcome.interrupted ? STATUS_ERROR : c.outcome.Tell(listing.Text());
}

int showFunction(Commands& c, const CommandText& text) {
    return c.definitions.Show(*funcs.FindByName(text.statement.c_str(), -1));
}

// --- Reading a statement ---

std::string_view firstWord(std::string_view statement) {
    const std::string_view head = statement.substr(0, COMMAND_LENGTH);
    return head.substr(0, head.find_first_of(" \t\r\n"));
}

CommandText readCommand(const std::string& statement) {
    CommandText text;
    text.statement = statement;
    text.lower = lowerCased(statement.substr(0, COMMAND_LENGTH));
    text.word = firstWord(text.lower);
    const size_t start = statement.find_first_not_of(" \t", statement.find_first_of(" \t\r\n"));
    if (start != std::string::npos) {
        text.argument = statement.substr(start, statement.find_first_of("\r\n", start) - start);
    }
    return text;
}

// A number behind the word: decimal, 0x... or, with a leading 0, octal.
bool readNumber(CommandText& text, const std::string& word) {
    if (text.lower.compare(0, word.size(), word) != 0) return false;
    const char* from = text.lower.c_str() + word.size();
    char* end = nullptr;
    const long number = strtol(from, &end, 0);
    text.number = static_cast<int32_t>(std::clamp(number, -2147483647L, 2147483647L));
    return end != from;
}

// A setting's command, and a value for it unless that has to be refused.
bool readSetting(CommandText& text) {
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

bool matches(const Command& command, CommandText& text) {
    switch (command.match) {
    case Command::WORD: return text.word == command.word;
    case Command::WORD_ARGUMENT: return text.word == command.word && !text.argument.empty();
    case Command::NUMBER: return readNumber(text, command.word);
    case Command::EXACT: return text.lower == command.word;
    case Command::SETTING: return readSetting(text);
    case Command::FUNCTION: return funcs.FindByName(text.statement.c_str(), -1) != nullptr;
    }
    return false;
}

} // namespace

const std::vector<Command>& commandTable() {
    // clang-format off
    static const std::vector<Command> table = {
        {"", Command::SETTING, nullptr, nullptr, changeSetting},
        {"unit", Command::WORD_ARGUMENT, "unit smoot = 1.7018 meter", "a unit of your own, for `3 smoot->m` and the like", defineUnit},
        {"list", Command::EXACT, "list", nullptr, listFunctions},
        {"list units", Command::EXACT, "list units", "your functions, your units", listUnits},
        {"del", Command::WORD, "del NAME, del all", "deletes a function, a variable or a unit; all variables; not to be undone", deleteNamed},
        {"rem", Command::WORD, nullptr, nullptr, deleteNamed},
        {"disp", Command::WORD_ARGUMENT, "disp NAME", nullptr, display},
        {"echo", Command::WORD, "echo TEXT", "shows a variable, a text", showEcho},
        {"echo", Command::NUMBER, "echo20 TEXT", nullptr, typeEcho},
        {"echorep", Command::WORD, "echorep TEXT", nullptr, replaceEntry},
        {"pause", Command::NUMBER, "pause500", "are for scripts", pause},
        {"histstack on", Command::EXACT, "histstack on", nullptr, recordEntries},
        {"histstack off", Command::EXACT, "histstack off", "whether entries are remembered", recordEntries},
        {"convert", Command::WORD, "convert TEXT", "asks an online service", convert},
        {"clear", Command::EXACT, "clear", nullptr, clearOrExit},
        {"cls", Command::EXACT, nullptr, nullptr, clearOrExit},
        {"exit", Command::EXACT, "exit", nullptr, clearOrExit},
        {"gospel", Command::EXACT, "gospel", "clears the console, ends the program, says why all this is right", showGospel},
        {"", Command::FUNCTION, "mod", "the definition of a function of this name", showFunction},
    };
    // clang-format on
    return table;
}

int Commands::Run(std::string_view typed) {
    if (typed.empty() || !isLetter(typed[0]) || !isValidName(firstWord(typed))) return NO_COMMAND;
    CommandText text = readCommand(std::string(typed));
    for (const Command& command : commandTable()) {
        if (!matches(command, text)) continue;
        units_record_changes([this](Undo::Step takeBack) { undo.Add(std::move(takeBack)); });
        const int status = command.run(*this, text);
        units_record_changes({});
        return status;
    }
    return NO_COMMAND;
}
