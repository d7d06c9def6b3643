// SPDX-License-Identifier: MIT
//
// The command line of the terminal console.
#pragma once

#include <string_view>
#include <vector>

struct Options {
    enum class Action { Evaluate, ShowHelp, ShowVersion, RefuseUsage };

    Action action = Action::Evaluate;
    bool trace = false;                    // --trace: the engine's trace goes to standard error
    std::string_view refused;              // RefuseUsage: the argument that is no option
    std::vector<std::string_view> entries; // the operands, one entry each
};

// Reads the arguments behind the program's name. Options may stand anywhere before "--"; behind it everything
// is an entry. The first --help, --version or unknown option decides the action and ends the reading.
// The views point into argv.
Options parseOptions(int argc, const char* const* argv);
