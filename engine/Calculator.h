// SPDX-License-Identifier: MIT
//
// The calculation engine: one typed line in, text and a status out.
//
//   ZqCalculator calc;
//   calc.InitializeFunctionsAndVars();
//   if (calc.ProcessEntry("2+3*4", false) == STATUS_RESULT) fputs(calc.resultLine, stdout); // ans = 14
//
// One thread, one engine at a time: the functions and the number library's error code are process-wide.
// The process's LC_NUMERIC locale has to be "C".
#pragma once

#include "Answer.h"
#include "Builtins.h"
#include "Commands.h"
#include "Definitions.h"
#include "EntryContext.h"
#include "Evaluator.h"
#include "Format.h"
#include "Functions.h"
#include "Helpers_String.h"
#include "History.h"
#include "Scanner.h"
#include "Syntax.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

constexpr int MAX_STATEMENTS = 999;

// The statements between the semicolons of a line, one by one, without their comments. What stands behind the
// last semicolon is no statement when it is blank. The text has to live longer.
class Statements {
public:
    explicit Statements(std::string_view line) : rest(line) {}

    // False when there is none left.
    bool Next(std::string_view& statement);

    // Whether there is none left, as far as is known without reading on.
    bool IsOver() const { return isOver; }

private:
    std::string_view rest;
    int number = 0;
    bool isOver = false;
};

class ZqCalculator : public EntrySettings, public Statement, public Outcome {
public:
    Deq unitDefs;  // one text "unit %s=%s" per user unit: name and definition
    Answer answer; // the last one; previews, errors and messages leave it as it is
    CHistory history;
    Deq vars;              // the variables: "ans" first, then "pi"
    double entryCount = 0; // full entries so far

    bool initialized = false; // InitializeFunctionsAndVars has run
    // Asked before each statement of a full entry and every 1,000 units of work, a few milliseconds apart at
    // most. True stops the entry with "** ERROR: interrupted **\n"; variables, functions, units and settings
    // are then as they were before it, also those that earlier statements of the line had changed. The
    // history keeps the line.
    bool (*interruptCheck)() = nullptr;

    WorkCounters work;

    ZqCalculator();
    ~ZqCalculator() = default;
    ZqCalculator(const ZqCalculator&) = delete;
    ZqCalculator& operator=(const ZqCalculator&) = delete;

    // Sets up the variables and registers the predefined functions. Call it once, before the first entry.
    void InitializeFunctionsAndVars();

    // Processes one typed line of any length, up to a NUL; `quick` is the live preview. Returns the status of
    // the last statement that ran. A full entry leaves it in `status` too. A preview leaves nothing that a
    // later entry reads; `resultLine` and `message` hold its answer until then. A preview that takes more
    // than its share of work (WorkBudget.h), some milliseconds, is given up: status -1.
    int ProcessEntry(std::string_view line, bool quick);
    int ProcessEntry(const char* line, bool quick) {
        return ProcessEntry(std::string_view(line ? line : ""), quick);
    }

    // Evaluates one statement and returns its status. A full entry's result goes to its target variable.
    int Calculate(const char* statement);

    // The same with a limit: a statement that takes more than so many units of work (WorkBudget.h) is an
    // error. What is left of the units comes back, 0 when they did not suffice.
    int CalculateWithin(const char* statement, uint64_t& units);

    // Formats `result` into `out` (FORMAT_SIZE bytes) in base 10, 16 or 2; another base writes nothing.
    // `separator` 0 means no grouping. Returns 0.
    int FormatResult(int base, char* out, int sigfigs, int scimode, bool twoscomp, char separator) {
        formatNumber(result, base, out, sigfigs, scimode, twoscomp, separator);
        return 0;
    }

    // The last answer in another base, and as a text that can be typed again (Answer.h).
    std::string AnswerIn(int base) const { return answer.In(base, *this); }
    std::string PlainAnswer() const { return answer.Plain(*this); }

    // Exchanges '.' and ',' throughout the text when `european` is set.
    void ProcessStringEuropean(char* text) const {
        if (european) StrSwapChars(text, '.', ',');
    }

    // --- From text to terms (Scanner.h) ---

    // Reads one statement into `terms` and `target`. Returns 0 when the terms are to be evaluated, else the
    // statement's status.
    int ProcessStr(const char* statement);

    // Reads a number: 0 and the value, or -1 when the text is none (a variable's name gives 0 without a
    // value).
    int Str2Num(const char* text, qfloat value) { return scanner.Str2Num(text, value); }

    // --- Evaluation (Syntax.h, Evaluator.h) ---

    // Checks the terms, sets their levels and opCount. Returns 0, or -1 with a message.
    int VerifyTermsSyntax();

    // Fills opOrder, which holds opCount + 1 entries: highest level first, then by precedence, then from left
    // to right. Visits each term once.
    void OrderOperatorStack();

    // Applies the operators of opOrder. Returns 0 and `result`; 1 when there are no terms; or -1 with a
    // message.
    int ProcTermsLoop() { return evaluator.ProcTermsLoop(); }

    // Evaluates the call in front of an open parenthesis, if any, and removes a pair that encloses one term.
    // Sets `reorder` when the call of a user function was replaced by its body: the body's operators come
    // next. Returns the number of pairs removed, or -1 with a message.
    int ProcParenth(node* open) { return evaluator.ProcParenth(open); }

    // Applies one operator. Returns the term that holds the result, or null with a message.
    node* ProcPair(node* op, int32_t code) { return evaluator.ProcPair(op, code); }

    // The value of a variable or number term. Returns 0, or -1 with a message.
    int Node2Num(const node* term, qfloat value) { return evaluator.Node2Num(term, value); }

    // --- Names and functions (Evaluator.h, Definitions.h, Variables.h) ---

    // Evaluates the call of a function: a predefined one in place; a user function's call is replaced by its
    // body. A call whose arguments are not all single terms is left as it is. Returns the term to go on from,
    // or null with a message. Angles are in degrees or radians by `degreeMode`.
    node* ProcFunction(node* functionTerm) { return evaluator.ProcFunction(functionTerm); }

    // Defines a function from "name(args)=expression", white space allowed. Returns 1 and the definition in
    // `message`, or -1 with an error. A name has fewer than 50 characters.
    // One that was kept from an earlier run takes the place of a predefined function, and may call functions
    // that are still to come or were deleted.
    int DefineFunction(const char* text, bool isKept) {
        interrupted = false; // as at the start of an entry
        return definitions.Define(text, isKept);
    }
    int DefineFunction(const char* text) { return DefineFunction(text, false); }

    // Whether the text is a letter followed by letters, digits and '_'.
    bool IsValidVariable(const char* text) const { return isValidName(text); }

    // Whether each piece between the commas is a valid name; the first that is not goes into `message`.
    bool IsValidArgList(const char* text) { return definitions.CheckParameters(text); }

    // The variable with exactly this name, or null.
    node* VariableExists(const char* name) const { return variables.Find(name); }

    // Removes and frees one of them. Not "ans", the first.
    void DeleteVariable(node* variable) { variables.Delete(variable); }

    // The definition of the user's unit with exactly this name, a term of `unitDefs`, or null.
    node* UnitExists(const char* name) const { return unitLines.Find(name); }

    // Empties the variables down to "ans" = 0 and "pi".
    void InitializeVarsList() { variables.Reset(); }

private:
    Undo undo;

    // They hand over what VariableExists and UnitExists find, and bring their indexes up to date for that.
    mutable Variables variables{vars, *this, *this, undo, work};
    mutable NamedTerms unitLines;

    void RunOrTakeBack(std::string_view entry);
    void BeginEntry();
    void RunStatements(std::string_view entry);
    int ShowResult();
    int Evaluate(std::string_view text);
    void StoreResult();
    int Read(std::string_view statement, bool mayLeaveOut);

    Spending spending{*this, *this, interruptCheck, work};
    EntryContext context{*this, *this, *this, variables, spending, work};
    Scanner scanner{context};
    Evaluator evaluator{context};
    Definitions definitions{context, scanner};
    Commands commands{context, answer, unitLines, definitions, undo};
};
