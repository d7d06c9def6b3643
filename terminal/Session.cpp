// SPDX-License-Identifier: MIT
#include "Session.h"

#include "ConsoleCommand.h"
#include "Descriptor.h"
#include "EntryText.h"
#include "Interrupt.h"
#include "Query.h"
#include "ShownText.h"
#include "WebPage.h"
#include "units.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

// The settings of a console that nobody has changed yet.
void setDefaults(ZqCalculator& calc) {
    for (const Setting& setting : SETTINGS) setting.Apply(setting.standard, calc);
    calc.history.SetMaxEntries(findSetting("histsz")->standard);
}

// Whether `descriptor` is a terminal that understands escape sequences.
bool canClear(int descriptor) {
    const char* const kind = std::getenv("TERM");
    return isatty(descriptor) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

// The length of the character at the front of the text.
std::size_t characterLength(std::string_view text) {
    std::size_t length = 1;
    while (length < text.size() && (static_cast<unsigned char>(text[length]) & 0xC0U) == 0x80U) ++length;
    return length;
}

} // namespace

Session::Session(int out, int err) : answers(out), errors(err) {
    calc.InitializeFunctionsAndVars();
    setDefaults(calc);
    calc.interruptCheck = isInterrupted;
    TestUnits();
}

void Session::TestUnits() {
    units_clear_exception();
    units_convert("m", "ft");
    const char* const error = units_check_exception();
    if (error == nullptr) return;
    writeAll(errors, ShownText("Units converter initialization error.\n" + asLine(error)));
    units_clear_exception();
}

Session::Outcome Session::Run(std::string_view entry) {
    const EntryFault fault = checkEntry(entry);
    if (fault != EntryFault::None) return Refuse(faultMessage(fault));

    Outcome outcome = Outcome::Answered;
    {
        const InterruptCatcher catcher;
        outcome = Evaluate(entry);
    }
    // A Ctrl-C that came too late for the entry still ends the run. From here on it ends the program itself.
    const bool isOver = outcome == Outcome::Answered || outcome == Outcome::Refused;
    return isOver && isInterrupted() ? Outcome::Interrupted : outcome;
}

Session::Outcome Session::Evaluate(std::string_view entry) {
    calc.ProcessEntry(std::string(entry).c_str(), false);
    std::fflush(stdout); // the trace of this entry comes before its answer

    // What a command for the console echoes is shown by that command alone.
    if (calc.status == STATUS_COMMAND) return CarryOut(calc.message);
    // Otherwise collected echoes come first, also those of an entry that failed further on.
    if (!Show(calc.echoText)) return Outcome::OutputLost;
    if (calc.overflowed) anyRefused = true;
    switch (calc.status) {
    case STATUS_RESULT: return Answer(calc.resultLine);
    case STATUS_MESSAGE: return Answer(calc.message);
    default: return Refuse(calc.message);
    }
}

Session::Outcome Session::Refuse(std::string_view message) {
    anyRefused = true;
    // When not even errors can be written there is nobody left to tell; the exit status does.
    writeAll(errors, ShownText(asLine(message)));
    return Outcome::Refused;
}

Session::Outcome Session::CarryOut(std::string_view command) {
    if (command == "exit") return Outcome::Ended;
    if (command == "clear") {
        if (!canClear(answers)) return Outcome::Answered;
        return writeAll(answers, "\x1b[H\x1b[2J") ? Outcome::Answered : Outcome::OutputLost;
    }
    long number = 0;
    if (CommandHasNumber(command, "pause", number)) return Pause(number);
    if (command == "echorep") return Answer(calc.echoText);
    if (CommandHasNumber(command, "echo", number)) return TypeOut(ShownText(calc.echoText), number);
    if (command == "convert") return Convert(calc.echoText);
    if (command == "gospel") return OpenWebPage();
    return Refuse("** ERROR: '" + std::string(command) + "' does not work in a terminal **\n");
}

Session::Outcome Session::Pause(long milliseconds) {
    return sleepUnlessInterrupted(PauseLength(milliseconds)) ? Outcome::Answered : Outcome::Interrupted;
}

Session::Outcome Session::TypeOut(std::string_view text, long rate) {
    const long wait = WaitBetweenCharacters(rate);
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        if (!writeAll(answers, text.substr(0, length))) return Outcome::OutputLost;
        text.remove_prefix(length);
        if (wait > 0 && !text.empty()) sleepUnlessInterrupted(wait);
        if (isInterrupted()) return Outcome::Interrupted;
    }
    return Outcome::Answered;
}

Session::Outcome Session::Convert(std::string_view query) {
    if (isatty(answers) == 1 && !Show("...checking...\n")) return Outcome::OutputLost;
    const char* const service = std::getenv("TALLYQUILL_QUERY_URL");
    const std::string found =
        askService(service == nullptr ? "" : service, query, QUERY_SECONDS, isInterrupted);
    if (isInterrupted()) return Outcome::Interrupted;
    return Answer(found.empty() ? "Not found." : found);
}

Session::Outcome Session::OpenWebPage() {
    return Answer(openPage() ? "<<< opening URL >>>" : "There is no web page to open.");
}

Session::Outcome Session::Answer(std::string_view text) {
    return Show(text) ? Outcome::Answered : Outcome::OutputLost;
}

bool Session::Show(std::string_view text) {
    return writeAll(answers, ShownText(asLine(text)));
}
