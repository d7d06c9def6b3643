// SPDX-License-Identifier: MIT
//
// A run of the program over files, entries and standard input, without a prompt.
#pragma once

#include "Each.h"
#include "Interrupt.h"
#include "LineReader.h"
#include "Options.h"
#include "OwnFiles.h"
#include "Session.h"

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>

class Run {
public:
    // Answers go to the descriptor `out`, which End closes.
    Run(Session& with, int out, const Options& how, System& calls = System::Real())
        : session(with), answers(out), options(how), system(calls) {}

    // Each of the three counts over the one before. First the definitions that ship and are asked for and
    // those of the person's init file, so that what the person keeps may use them and change them. Files that
    // the options leave out are not read (OwnFiles.h).
    void TakeShared();
    void TakeOwnDefinitions();
    void TakeSettings();

    // Evaluates the inputs of the options in their order, then the entry for each line of standard input.
    // Without both the lines of standard input are the entries. Returns the exit
    // status. Ctrl-C ends the program as if nobody caught it.
    int Evaluate();

    // Writes what was held back. Returns the exit status.
    int End();

private:
    // The run goes on, or is over with this exit status.
    using Over = std::optional<int>;

    // To be called before a line is read: where that may have to wait, Ctrl-C ends the program meanwhile, and
    // the answers so far are written before. False when they could not be written; errno says why.
    bool MayRead(const LineReader& reader);

    // From here on Ctrl-C ends the program, until the next entry.
    void LetGo();
    int InputLost(const std::string& name);

    void Tell(const FileReading& reading);

    // From here on errors of arguments are followed by a line that may help, when a person reads them.
    void AddHints();
    Over EvaluateEntry(std::string_view entry);
    Over EvaluateEach(Each& each);
    Over Answer(Session::Outcome outcome);
    Over EvaluateFile(const std::string& name);
    Over EvaluateLines(int descriptor, const std::string& name);

    Session& session;
    int answers;
    const Options& options;
    System& system;
    std::string_view argument;               // the entry that runs, when it is one
    bool isFileLost = false;                 // one of the person's
    std::optional<InterruptCatcher> catcher; // while entries run
};
