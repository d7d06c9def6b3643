// SPDX-License-Identifier: MIT
//
// One entry, statement by statement.
#include "Calculator.h"

#include "Builtins.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <ctime>

constexpr uint32_t EXPONENT_OF_HALF = 0x8000; // the exponent word of 1/2, which has no integer bits

namespace {

uint64_t workOfShowing(const qfloat value) {
    const uint64_t bits = value[1] > EXPONENT_OF_HALF ? value[1] - EXPONENT_OF_HALF : 0;
    return Cost::SHOWN_RESULT + bits / Cost::SHOWN_BITS;
}

// The line an empty entry repeats: only one that assigned, or used the last answer.
bool isRepeatable(const char* line) {
    return line && (strstr(line, "ans") || strchr(line, '='));
}

// Of "unit name=definition".
std::string_view unitName(std::string_view text) {
    const std::string_view head = "unit ";
    if (text.substr(0, head.size()) != head) return "";
    return text.substr(head.size(), text.find('=') - head.size());
}

// From a place counted without blanks, in one of the entry's statements, to the place in the entry's text.
TextRange rangeInEntry(TextRange range, std::string_view statement, std::string_view entry) {
    if (range.start < 0) return {};
    const size_t offset = static_cast<size_t>(statement.data() - entry.data());
    TextRange found;
    int32_t count = 0;
    for (size_t i = 0; i < statement.size() && count < range.start + range.length; i++) {
        if (isBlank(statement[i])) continue;
        if (count == range.start) found.start = static_cast<int32_t>(offset + i);
        count++;
        found.length = static_cast<int32_t>(offset + i) + 1 - found.start;
    }
    return found;
}

// Some platforms print an infinite double as "1.#INF": a message "... = 1.#INF" becomes an overflow error.
void reportPrintedInfinity(Outcome& outcome) {
    const char* equals = strchr(outcome.message, '=');
    if (!equals || equals == outcome.message) return;
    char* end = nullptr;
    long number = strtol(equals + 1, &end, 0);
    if (end == equals + 1 || strncmp(end, ".#INF", 5) != 0) return;
    if (end[5] != '\0' && !strchr(" \t\r\n\v\f", end[5])) return;
    outcome.Fail("** ERROR: %c overflow **\n", {number < 1 ? "-" : "+"});
}

} // namespace

bool Statements::Next(std::string_view& statement) {
    if (isOver || number == MAX_STATEMENTS) return false;
    const size_t end = rest.find(';');
    isOver = end == std::string_view::npos;
    statement = rest.substr(0, end);
    statement = statement.substr(0, statement.find('#'));
    if (!isOver) rest.remove_prefix(end + 1);
    return number++ == 0 || !isOver || statement.find_first_not_of(" \t\r\n") != std::string_view::npos;
}

ZqCalculator::ZqCalculator() : unitLines(unitDefs, unitName, undo, work.indexed) {}

void ZqCalculator::InitializeFunctionsAndVars() {
    InitializeVarsList();
    srand(static_cast<unsigned>(clock()));
    const EntrySettings settings = *this;
    european = tenKey = false; // definitions are written with ',' and signs in front
    for (const Builtin& builtin : builtinTable()) {
        std::string arguments = builtin.arguments;
        if (builtin.definition)
            DefineFunction((std::string(builtin.name) + "(" + arguments + ")=" + builtin.definition).c_str());
        else
            funcs.AddFunction(builtin.name, arguments.data(), nullptr);
    }
    static_cast<EntrySettings&>(*this) = settings;
    message[0] = '\0';
    initialized = true;
}

int ZqCalculator::ProcessEntry(std::string_view line, bool quick) {
    const int32_t statusBefore = status;
    const char roundingBefore = subflg;
    fullEntry = !quick;
    interrupted = false;
    spending.budget.Begin(quick ? WorkLimit::PREVIEW : WorkLimit::NONE);
    std::string preview;
    std::string& entry = fullEntry ? entryLine : preview;
    // A copy: the line may be one of the texts that are emptied.
    entry = withoutLineEnd(line.substr(0, line.find('\0')));
    if (fullEntry) BeginEntry();
    if (fullEntry && interruptCheck)
        RunOrTakeBack(entry);
    else
        RunStatements(entry);
    spending.budget.Begin();
    if (fullEntry) lastValue = nullptr;
    const int32_t answered = status;
    if (quick) {
        status = statusBefore; // an empty line asks what the last entry answered
        subflg = roundingBefore;
    }
    return answered;
}

// Empties the texts, records the line, and replaces an empty one by the line that it repeats.
void ZqCalculator::BeginEntry() {
    message[0] = resultLine[0] = echoText[0] = '\0';
    if (histStack && !strIsEqualNI(entryLine.c_str(), "histstack off", 13)) history.Record(entryLine);
    if (entryLine.empty() && entryCount > 0 && status != STATUS_MESSAGE) {
        const char* newest = history.GetHistoryStr(1);
        if (isRepeatable(newest)) entryLine = newest;
    }
    entryCount += 1;
    history.HistLocReset();
}

// An interrupted entry changes nothing.
void ZqCalculator::RunOrTakeBack(std::string_view entry) {
    undo.Begin();
    undo.Keep(subflg);
    undo.Keep(target);
    undo.Keep(lastName); // of a variable, which comes back as the same term
    funcs.RecordIn(&undo);
    RunStatements(entry);
    funcs.RecordIn(nullptr);
    if (interrupted) undo.TakeBack();
    undo.End();
}

void ZqCalculator::RunStatements(std::string_view entry) {
    Statements statements(entry);
    for (std::string_view statement; statements.Next(statement);) {
        resultLine[0] = '\0';
        overflowed = false;
        status = spending.AskForInterruption();
        if (status == STATUS_RESULT) status = Evaluate(statement);
        if (status == STATUS_RESULT && statements.IsOver()) undo.End(); // nothing can interrupt it any more
        if (status == STATUS_RESULT) {
            StoreResult();
            status = ShowResult();
        }
        errorRange = status == STATUS_ERROR ? rangeInEntry(errorRange, statement, entry) : TextRange();
        if (status == STATUS_COMMAND || status == STATUS_ERROR) break;
    }
}

int ZqCalculator::ShowResult() {
    // An entry's value is stored by now.
    if (!fullEntry && spending.Spend(workOfShowing(result)) != 0) return STATUS_ERROR;
    std::string text = shownNumber(result, *this, strlen(target->text));
    copyTexts(resultLine, {target->text, " = ", text, "\n"});
    overflowed = result[1] >= OVERFLOW_EXPONENT;
    lastValue = target->value;
    lastName = target->text;
    if (!fullEntry) return STATUS_RESULT;
    undo.Keep(answer);
    undo.Keep(lastAnswer);
    copyText(lastAnswer, text);
    answer.Keep(entryLine, target->text, result, *this, std::move(text));
    return STATUS_RESULT;
}

int ZqCalculator::Calculate(const char* statement) {
    const int state = Evaluate(statement);
    if (state == 0) StoreResult();
    return state;
}

int ZqCalculator::Evaluate(std::string_view text) {
    work = WorkCounters();
    errorRange = TextRange();
    skipped = 0;
    merror = 0;
    int state = Read(text, !traced);
    if (state == 0) state = VerifyTermsSyntax();
    if (state == 0) {
        // That a number is below the range, or is 0e5, says nothing about the evaluation. One above it is
        // reported by the first operation.
        if (merror == MATH_UNDERFLOW) merror = 0;
        orderOperators(terms, order);
        work.ordered += static_cast<uint64_t>(terms.count);
        order.push_back(nullptr);
        opOrder = order.data();
        state = ProcTermsLoop();
        opOrder = nullptr;
        if (state != 0) reportPrintedInfinity(*this);
    }
    enclosed = 0;
    if (state != 0) {
        DiscardNewTarget();
        return state;
    }
    qfixintegers(result);
    return state;
}

void ZqCalculator::StoreResult() {
    if (!fullEntry) return;
    if (newVariable) variables.Append(newVariable.release());
    variables.SetValue(target, result);
}

int ZqCalculator::CalculateWithin(const char* statement, uint64_t& units) {
    spending.budget.Begin(units);
    const int state = Calculate(statement);
    units = spending.budget.Left();
    spending.budget.Begin();
    return state;
}

int ZqCalculator::ProcessStr(const char* statement) {
    return Read(statement, false);
}

int ZqCalculator::Read(std::string_view statement, bool mayLeaveOut) {
    terms.Clear();
    if (!vars.first) InitializeVarsList();
    DiscardNewTarget();
    target = vars.first;
    if (statement.size() >= TEXT_SIZE) {
        return Fail("** ERROR: %i max characters **\n", {std::to_string(TEXT_SIZE)});
    }
    const std::string_view bare = trimStatement(statement);
    if (fullEntry) {
        const int state = commands.Run(bare);
        if (state != Commands::NO_COMMAND) return state;
    }
    if (!european && !tenKey && isBareExpression(bare)) return scanner.ScanBare(bare, mayLeaveOut);
    std::string text(bare);
    markConversion(text, european);
    if (isDefinition(text)) return fullEntry ? DefineFunction(text.c_str()) : STATUS_MESSAGE;
    return scanner.Scan(std::move(text), mayLeaveOut);
}

int ZqCalculator::VerifyTermsSyntax() {
    if (variables.CheckNames() != 0 || checkSyntax(terms, *this, work, opCount) != 0) return STATUS_ERROR;
    opCount += 2 * enclosed;
    return 0;
}

void ZqCalculator::OrderOperatorStack() {
    orderOperators(terms, order);
    work.ordered += static_cast<uint64_t>(terms.count);
    *std::copy(order.begin(), order.end(), opOrder) = nullptr;
}
