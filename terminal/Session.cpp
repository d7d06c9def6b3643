// SPDX-License-Identifier: MIT
#include "Session.h"

#include "Colors.h"
#include "ConsoleCommand.h"
#include "Descriptor.h"
#include "EntryText.h"
#include "Interrupt.h"
#include "Json.h"
#include "Query.h"
#include "ShownText.h"
#include "WebPage.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// The length of the character at the front of the text.
size_t characterLength(std::string_view text) {
    size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
    return length;
}

// A Ctrl-C that came too late for the entry still ends the run.
Session::Outcome orInterrupted(Session::Outcome outcome) {
    const bool isOver = outcome == Session::Outcome::Answered || outcome == Session::Outcome::Refused;
    return isOver && isInterrupted() ? Session::Outcome::Interrupted : outcome;
}

} // namespace

Session::Session(int out, int err, Style how, System& calls)
    : system(calls), answers(out, how.inBlocks, calls), errors(err), style(how) {
    calc.InitializeFunctionsAndVars();
    static_cast<EntrySettings&>(calc) = standardSettings();
    calc.history.SetMaxEntries(findSetting("histsz")->standard);
    calc.interruptCheck = isInterrupted;
}

Session::Outcome Session::Run(std::string_view entry) {
    Outcome outcome = Outcome::Answered;
    {
        const InterruptCatcher catcher;
        outcome = RunCaught(entry);
    }
    return orInterrupted(outcome); // from here on Ctrl-C ends the program itself
}

Session::Outcome Session::RunCaught(std::string_view entry) {
    const EntryFault fault = checkEntry(entry);
    if (fault != EntryFault::None) return RefuseEntry(entry, faultMessage(fault));
    return orInterrupted(Evaluate(entry));
}

Session::Outcome Session::GiveUp() {
    Refuse("** ERROR: interrupted **\n");
    return Outcome::Interrupted;
}

Session::Outcome Session::Evaluate(std::string_view entry) {
    if (style.json) return EvaluateStatements(entry);
    const int status = calc.ProcessEntry(entry, style.preview);
    if (!style.inBlocks) std::fflush(stdout); // the trace of this entry comes before its answer
    return style.preview ? AnswerPreview(status) : AnswerEntry();
}

// One by one, until one fails or is a command for the console, as the engine goes through an entry.
Session::Outcome Session::EvaluateStatements(std::string_view entry) {
    Statements statements(entry);
    for (std::string_view statement; statements.Next(statement);) {
        statement = trimmed(statement);
        if (statement.empty()) continue;
        const Outcome outcome = EvaluateStatement(statement);
        if (outcome != Outcome::Answered || calc.status == STATUS_COMMAND) return outcome;
    }
    return Outcome::Answered;
}

Session::Outcome Session::EvaluateStatement(std::string_view statement) {
    shown.clear();
    int status = calc.ProcessEntry(statement, style.preview);
    std::fflush(stdout);
    const Outcome outcome = style.preview ? AnswerPreview(status) : AnswerEntry();
    if (outcome == Outcome::Interrupted) return outcome;
    if (outcome == Outcome::Refused) status = STATUS_ERROR;
    JsonAnswer answer = jsonAnswer(calc, status, shown);
    answer.entry = statement;
    answer.line = line;
    const bool isRemark = status == STATUS_MESSAGE || status == STATUS_COMMAND;
    if (isRemark && (style.quiet || style.last)) return outcome;
    const std::string object = jsonLine(answer);
    if (status == STATUS_RESULT && style.last)
        lastValue = object;
    else if (!answers.Write(object))
        return Outcome::OutputLost;
    return outcome;
}

Session::Outcome Session::AnswerEntry() {
    // What a command for the console echoes is shown by that command alone.
    if (calc.status == STATUS_COMMAND) return CarryOut(calc.message);
    // Otherwise collected echoes come first, also those of an entry that failed further on.
    if (Remark(calc.echoText) == Outcome::OutputLost) return Outcome::OutputLost;
    switch (calc.status) {
    case STATUS_RESULT: return AnswerValue();
    case STATUS_MESSAGE: anyRefused = anyRefused || calc.overflowed; return Remark(calc.message);
    default: return Refuse(calc.message);
    }
}

// A command word is no command here, and a definition has no answer.
Session::Outcome Session::AnswerPreview(int status) {
    switch (status) {
    case STATUS_RESULT: return AnswerValue();
    case STATUS_ERROR: return Refuse(calc.message);
    default: return Outcome::Answered;
    }
}

// A value beyond the range is shown, and counts as a failure.
Session::Outcome Session::AnswerValue() {
    std::string_view text = calc.resultLine;
    anyRefused = anyRefused || calc.overflowed;
    if (style.quiet) text.remove_prefix(text.find(" = ") + 3);
    const std::string shownValue = ValueText(text);
    if (style.last)
        lastValue = shownValue;
    else if (style.json)
        shown += shownValue;
    else if (!answers.Write(shownValue))
        return Outcome::OutputLost;
    return Outcome::Answered;
}

bool Session::End() {
    return answers.Write(lastValue) && Flush();
}

// A text that is no value.
Session::Outcome Session::Remark(std::string_view text) {
    return style.quiet || style.last ? Outcome::Answered : Answer(text);
}

Session::Outcome Session::RefuseEntry(std::string_view entry, std::string_view message) {
    shown.clear();
    const Outcome outcome = Refuse(message);
    if (!style.json) return outcome;
    JsonAnswer answer = jsonAnswer(calc, STATUS_ERROR, shown);
    answer.entry = entry;
    answer.line = line;
    answer.position = {};
    return answers.Write(jsonLine(answer)) ? outcome : Outcome::OutputLost;
}

Session::Outcome Session::Refuse(std::string_view message) {
    anyRefused = true;
    if (!style.json && !Flush()) return Outcome::OutputLost; // what was answered before stands before it
    // When not even errors can be written there is nobody left to tell; the exit status does.
    if (style.json) {
        shown = message;
        return Outcome::Refused;
    }
    const std::string text = shownText(place + asLine(message));
    const std::string inColor = colorsErrors ? colored(Shade::Error, text) : text;
    writeAll(errors, errorForm ? errorForm(inColor) : inColor, system);
    return Outcome::Refused;
}

Session::Outcome Session::CarryOut(std::string_view message) {
    const ConsoleCommand command = consoleCommand(message);
    if (!Flush()) return Outcome::OutputLost;
    switch (command.kind) {
    case ConsoleCommand::Kind::None: break;
    case ConsoleCommand::Kind::Exit: return Outcome::Ended;
    case ConsoleCommand::Kind::Clear: return Clear();
    case ConsoleCommand::Kind::Pause:
        return sleepUnlessInterrupted(command.milliseconds) ? Outcome::Answered : Outcome::Interrupted;
    case ConsoleCommand::Kind::ReplaceEntry: return Remark(calc.echoText);
    case ConsoleCommand::Kind::TypeOut: return TypeOut(shownText(calc.echoText), command.milliseconds);
    case ConsoleCommand::Kind::Convert: return Convert(calc.echoText);
    case ConsoleCommand::Kind::OpenWebPage: return OpenWebPage();
    }
    return Refuse("** ERROR: '" + std::string(message) + "' does not work in a terminal **\n");
}

Session::Outcome Session::Clear() {
    if (style.json || style.plain || system.IsTerminal(answers.Descriptor()) != 1 || !knowsSequences())
        return Outcome::Answered;
    return answers.Write("\x1b[H\x1b[2J") ? Outcome::Answered : Outcome::OutputLost;
}

Session::Outcome Session::TypeOut(std::string_view text, long wait) {
    if (style.quiet || style.last || style.json) return Remark(text);
    while (!text.empty()) {
        const size_t length = characterLength(text);
        if (!answers.Write(text.substr(0, length)) || !Flush()) return Outcome::OutputLost;
        text.remove_prefix(length);
        if (wait > 0 && !text.empty()) sleepUnlessInterrupted(wait);
        if (isInterrupted()) return Outcome::Interrupted;
    }
    return Outcome::Answered;
}

Session::Outcome Session::Convert(std::string_view query) {
    if (system.IsTerminal(answers.Descriptor()) == 1 && !style.json && !Show("...checking...\n"))
        return Outcome::OutputLost;
    const char* const service = std::getenv("TALLYQUILL_QUERY_URL");
    const std::string found = askService(service ? service : "", query, QUERY_SECONDS, isInterrupted, system);
    if (isInterrupted()) return Outcome::Interrupted;
    return Answer(found.empty() ? "Not found." : found);
}

Session::Outcome Session::OpenWebPage() {
    return Answer(openPage(system) ? "<<< opening URL >>>" : "There is no web page to open.");
}

Session::Outcome Session::Answer(std::string_view text) {
    return Show(text) ? Outcome::Answered : Outcome::OutputLost;
}

bool Session::Show(std::string_view text) {
    if (style.json) {
        shown += asLine(text);
        return true;
    }
    return answers.Write(shownText(asLine(text)));
}

std::string Session::ValueText(std::string_view answer) const {
    std::string text = shownText(answer);
    if (colorsAnswers && !style.json) return coloredAnswer(text);
    return text;
}
