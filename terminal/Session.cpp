// SPDX-License-Identifier: MIT
#include "Session.h"

#include "Descriptor.h"
#include "EntryText.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

// The settings of a console that nobody has changed yet.
void setDefaults(ZqCalculator& calc) {
    calc.degreeMode = true;
    calc.displayBase = 10;
    calc.european = false;
    calc.tenKey = false;
    calc.sigFigs = 10;
    calc.sciMode = SCI_AUTO;
    calc.separatorChar = ',';
    calc.useSeparator = false;
    calc.twosComp = false;
    calc.history.SetMaxEntries(30);
}

// Whether `descriptor` is a terminal that understands escape sequences.
bool canClear(int descriptor) {
    const char* const kind = std::getenv("TERM");
    return isatty(descriptor) == 1 && kind != nullptr && std::strcmp(kind, "dumb") != 0;
}

} // namespace

Session::Session(int answers, int errors) : answers_(answers), errors_(errors) {
    calc_.InitializeFunctionsAndVars();
    setDefaults(calc_);
}

Session::Outcome Session::run(std::string_view entry) {
    const EntryFault fault = checkEntry(entry);
    if (fault != EntryFault::None) return refuse(faultMessage(fault));

    calc_.ProcessEntry(std::string(entry).c_str(), false);
    std::fflush(stdout); // the trace of this entry comes before its answer

    // Collected echoes come first, also those of an entry that failed further on.
    if (!show(calc_.echoText)) return Outcome::OutputLost;
    switch (calc_.status) {
    case STATUS_RESULT: return show(calc_.resultLine) ? Outcome::Answered : Outcome::OutputLost;
    case STATUS_MESSAGE: return show(calc_.message) ? Outcome::Answered : Outcome::OutputLost;
    case STATUS_COMMAND: return carryOut(calc_.message);
    default: return refuse(calc_.message);
    }
}

Session::Outcome Session::refuse(std::string_view message) {
    anyRefused_ = true;
    // When not even errors can be written there is nobody left to tell; the exit status does.
    writeAll(errors_, asLine(message));
    return Outcome::Refused;
}

Session::Outcome Session::carryOut(std::string_view command) {
    if (command == "exit") return Outcome::Ended;
    if (command == "clear") {
        if (!canClear(answers_)) return Outcome::Answered;
        return writeAll(answers_, "\x1b[H\x1b[2J") ? Outcome::Answered : Outcome::OutputLost;
    }
    return refuse("** ERROR: '" + std::string(command) + "' does not work in a terminal **\n");
}

bool Session::show(std::string_view text) {
    return writeAll(answers_, asLine(text));
}
