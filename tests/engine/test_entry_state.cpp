// SPDX-License-Identifier: MIT
//
// An interrupted entry and a preview change nothing: a line of every kind of statement is stopped at each of
// them, and each is previewed, and all that an entry can change is compared. A new command word is a row of
// these tables; the settings are those of their table.
#include "functions_fixture.h"

#include "../settings_table.h"
#include "questions.h"

#include <algorithm>
#include <cstdio>
#include <memory>
#include <regex>
#include <string>
#include <vector>

namespace {

// What is there before the entry.
const char* const BEFORE[] = {"mode deg",         "x=1.5",    "y=2",        "z=3",
                              "f(p)=p*x",         "g(p)=p^2", "g(p,q)=p+q", "unit smoot=1.7018 m",
                              "unit span=9 inch", "del sinc", "y=4"};

struct Row {
    std::string statement;
    bool changes; // something that outlasts the entry
};

// The statements of the line, in an order in which each of them works.
std::vector<Row> rows() {
    std::vector<Row> list = {
        {"new1=5", true},
        {"x=x*2", true},
        {"x=x" + repeated("+1", 900), true}, // long enough to be stopped inside
        {"3+4", true},
        {"ans=9", true},
        {"5 span->m", true},
        {"f(x)", true},
        {"f(p)=p+2", true},
        {"h(p,q)=p*q", true},
        {"ans=h(2,3)", true},
        {"f", false},
        {"del g", true},
        {"rem mod", true},
        {"del sqrt", true},
        {"sqrt(p)=p", true},
        {"del y", true},
        {"rem z", true},
        {"unit furl=201.168 m", true},
        {"unit apple=-primitive", true},
        {"del smoot", true},
        {"unit smoot=2 span", true},
        {"list", false},
        {"list units", false},
        {"echo text", false},

        {"disp x", true}, // the last answer
        {"european on", true},
        {"w=1,5", true},
        {"european off", true},
        {"histstack off", true},
        {"histstack on", true},
        {"histstack off", true},
        {"gospel", true},
        {"del all", true},
        {"x=1", true},
    };
    // Every word for a value of a setting, so that each of them changes it.
    for (const Setting& setting : SETTINGS) {
        if (!setting.command.word) continue;
        int value = setting.standard;
        const auto change = [&](int to, const std::string& statement) {
            list.push_back({statement, true});
            value = to;
        };
        const int other = otherValue(setting);
        if (setting.choices.begin() == setting.choices.end()) change(other, setting.CommandFor(other));
        for (const SettingChoice& choice : setting.choices) {
            const int between = value == setting.standard ? other : setting.standard;
            if (choice.value == value) change(between, setting.CommandFor(between));
            change(choice.value, std::string(setting.command.word) + " " + choice.word);
        }
    }
    list.push_back({"pause500", false});
    return list;
}

// These end a line.
const char* const HANDED_OVER[] = {
    "convert 5 miles to km", "echo20 text", "echorep text", "pause 7", "clear", "cls", "exit"};

class EntryState : public testing::Test {
protected:
    std::unique_ptr<ZqCalculator> calc;

    void Start() {
        deleteAllFunctions();
        deleteAllUnits();
        calc = std::make_unique<ZqCalculator>();
        calc->InitializeFunctionsAndVars();
        for (const char* line : BEFORE) ASSERT_NE(STATUS_ERROR, calc->ProcessEntry(line, false)) << line;
    }

    ~EntryState() override { deleteAllFunctions(); }

    static std::string Line() {
        std::string line;
        for (const Row& row : rows()) line += (line.empty() ? "" : ";") + row.statement;
        return line;
    }

    static std::string UnitState(const std::string& name) {
        units_clear_exception();
        char text[40];
        snprintf(text, sizeof text, "%.17g", units_convert(name.c_str(), "m"));
        const char* error = units_check_exception();
        return name + " " + (error ? error : text) + "\n";
    }

    static std::string Digits(const qfloat value) {
        std::string text;
        char word[12];
        for (int i = 0; i < 14; i++) {
            snprintf(word, sizeof word, " %08X", value[i]);
            text += word;
        }
        return text;
    }

    // All that a later entry or a front end finds, except the texts of the entry and its place in the
    // history.
    std::string State() {
        std::string text;
        for (const Setting& setting : SETTINGS)
            text += std::string(setting.key) + " " + std::to_string(setting.ValueIn(*calc)) + "\n";
        text += std::string("histStack ") + (calc->histStack ? "on\n" : "off\n");
        for (const node* variable = calc->vars.first; variable; variable = variable->next) {
            EXPECT_EQ(variable, calc->VariableExists(variable->text));
            text += std::string(variable->text) + "=" + Digits(*variable->value) + "\n";
        }
        for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
            EXPECT_EQ(function, funcs.FindByName(function->name, function->argCount));
            text += function->ToString() + "\n";
        }
        for (const node* unit = calc->unitDefs.first; unit; unit = unit->next)
            text += std::string(unit->text) + "\n";
        for (const char* name : {"smoot", "span", "furl", "apple", "inch"}) text += UnitState(name);
        text += std::string("lastAnswer ") + calc->lastAnswer + "\n";
        const Answer& answer = calc->answer;
        text +=
            "answer " + answer.entry + " " + answer.name + Digits(answer.value) + " " + answer.shown + "\n";
        return text + GospelState();
    }

    // The variable last assigned; a preview names it too.
    std::string LastName() const {
        return std::string(calc->lastName ? calc->lastName : "(none)") +
               (calc->lastValue ? " has a value" : "");
    }

    // Which of its two answers "gospel" gives next; asked twice, it comes back to where it was.
    std::string GospelState() {
        calc->fullEntry = true; // as every entry sets it
        const int32_t status = calc->Calculate("gospel");
        calc->Calculate("gospel");
        return "gospel " + std::to_string(status) + "\n";
    }

    // Stops the entry at this check.
    void ExpectUnchanged(const std::string& line, int stop) {
        SCOPED_TRACE(line.substr(0, 50) + " stopped at check " + std::to_string(stop));
        Start();
        const std::string was = State();
        std::vector<std::string> history = History();
        const std::string name = LastName();
        const node* target = calc->target;
        const double entries = calc->entryCount;
        questions = 0;
        stopAt = stop;
        calc->interruptCheck = countQuestions;
        EXPECT_EQ(STATUS_ERROR, calc->ProcessEntry(line.c_str(), false));
        EXPECT_EQ(STATUS_ERROR, calc->status);
        EXPECT_TRUE(calc->interrupted);
        EXPECT_STREQ("** ERROR: interrupted **\n", calc->message);
        EXPECT_STREQ("", calc->resultLine);
        EXPECT_FALSE(calc->overflowed);
        EXPECT_EQ(entries + 1, calc->entryCount);
        if (line.rfind("histstack off", 0) != 0 && line != "exit") history.push_back(line); // are not kept
        EXPECT_EQ(history, History());
        EXPECT_EQ(name, LastName());
        // The target of a single statement says what was to be assigned. Of several, variables may be gone
        // that earlier ones assigned.
        if (line.find(';') != std::string::npos) {
            EXPECT_EQ(target, calc->target);
        }
        ASSERT_EQ(was, State());
    }

    std::vector<std::string> History() const {
        std::vector<std::string> lines;
        for (int32_t k = calc->history.count; k >= 1; k--) lines.emplace_back(calc->history.GetHistoryStr(k));
        return lines;
    }
};

// Rows that change nothing would show nothing.
TEST_F(EntryState, EveryStatementOfTheLineChangesWhatItSays) {
    Start();
    for (const Row& row : rows()) {
        const std::string was = State();
        ASSERT_NE(STATUS_ERROR, calc->ProcessEntry(row.statement.c_str(), false))
            << row.statement << calc->message;
        EXPECT_EQ(row.changes, was != State()) << row.statement;
    }
}

TEST_F(EntryState, IsThatBeforeAnInterruptedEntryWhereverItWasStopped) {
    const std::string line = Line();
    Start();
    questions = 0;
    stopAt = 0;
    calc->interruptCheck = countQuestions;
    ASSERT_EQ(STATUS_COMMAND, calc->ProcessEntry(line.c_str(), false)) << calc->message;
    const int checks = questions;
    ASSERT_GT(checks, static_cast<int>(rows().size())); // more than one in the long statement
    const std::string after = State();

    for (int stop = 1; stop <= checks; stop++) {
        ASSERT_NO_FATAL_FAILURE(ExpectUnchanged(line, stop));
        // And the entry can be made again.
        calc->interruptCheck = nullptr;
        ASSERT_EQ(STATUS_COMMAND, calc->ProcessEntry(line.c_str(), false)) << calc->message;
        EXPECT_STREQ("pause500", calc->message);
        ASSERT_EQ(after, State()) << stop;
    }
}

TEST_F(EntryState, IsThatBeforeAnInterruptedEntryOfOneStatement) {
    for (const Row& row : rows()) ASSERT_NO_FATAL_FAILURE(ExpectUnchanged(row.statement, 1));
    ASSERT_NO_FATAL_FAILURE(ExpectUnchanged("new1=0" + repeated("+1", 900), 3));
    for (const char* statement : HANDED_OVER) ASSERT_NO_FATAL_FAILURE(ExpectUnchanged(statement, 1));
}

// What a statement of a row of commandTable looks like.
std::regex formOf(const Command& command) {
    const std::string word = command.word;
    switch (command.match) {
    case Command::WORD: return std::regex(word + "( .*)?");
    case Command::WORD_ARGUMENT: return std::regex(word + " .+");
    case Command::NUMBER: return std::regex(word + " *[0-9].*");
    case Command::EXACT: return std::regex(word);
    case Command::SETTING: return std::regex("european on"); // the rows have those of all settings
    case Command::FUNCTION: return std::regex("f");
    }
    return {};
}

// A command word that stands in no row would not be tested.
TEST_F(EntryState, TheRowsHaveEveryCommandWord) {
    std::vector<std::string> statements(std::begin(HANDED_OVER), std::end(HANDED_OVER));
    for (const Row& row : rows()) statements.push_back(row.statement);
    for (const Command& command : commandTable()) {
        const std::regex form = formOf(command);
        EXPECT_TRUE(
            std::any_of(statements.begin(), statements.end(),
                        [&form](const std::string& statement) { return std::regex_match(statement, form); }))
            << command.word << " " << command.match;
    }
}

TEST_F(EntryState, IsThatBeforeAPreview) {
    Start();
    for (const Row& row : rows()) ASSERT_NE(STATUS_ERROR, calc->ProcessEntry(row.statement.c_str(), false));
    const std::string after = State();
    Start();
    for (const Row& row : rows()) {
        const std::string was = State();
        const std::vector<std::string> history = History();
        const int32_t status = calc->status;
        const double entries = calc->entryCount;
        const std::string echo = calc->echoText;
        for (const std::string& line :
             {row.statement, Line(), std::string(), std::string("1e10000;1/0"), echo}) {
            calc->ProcessEntry(line.c_str(), true);
            ASSERT_EQ(was, State()) << line;
            EXPECT_EQ(history, History());
            EXPECT_EQ(status, calc->status);
            EXPECT_EQ(entries, calc->entryCount);
            EXPECT_EQ(echo, calc->echoText);
        }
        ASSERT_NE(STATUS_ERROR, calc->ProcessEntry(row.statement.c_str(), false)) << row.statement;
    }
    EXPECT_EQ(after, State());
}

// By which the last bit of a logical operation on fractions is rounded.
TEST_F(EntryState, KeepsTheFlagOfTheLastDifference) {
    Start();
    subflg = 0;
    calc->ProcessEntry("3-2", true);
    EXPECT_EQ(subflg, 0) << "a preview";
    calc->interruptCheck = countQuestions;
    questions = 0;
    stopAt = 2; // in front of the second statement
    calc->ProcessEntry("3-2; 1", false);
    EXPECT_TRUE(calc->interrupted);
    EXPECT_EQ(subflg, 0) << "an interrupted entry";
    calc->interruptCheck = nullptr;
    calc->ProcessEntry("3-2", false);
    EXPECT_EQ(subflg, 1) << "an entry";
}

} // namespace
