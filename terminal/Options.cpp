// SPDX-License-Identifier: MIT
#include "Options.h"

Options parseOptions(int argc, const char* const* argv) {
    Options options;
    bool onlyEntries = false;
    for (int i = 1; i < argc; ++i) {
        const std::string_view argument = argv[i];
        if (onlyEntries || argument.empty() || argument.front() != '-') {
            options.entries.push_back(argument);
        } else if (argument == "--") {
            onlyEntries = true;
        } else if (argument == "--trace") {
            options.trace = true;
        } else if (argument == "--help") {
            options.action = Options::Action::ShowHelp;
            return options;
        } else if (argument == "--version") {
            options.action = Options::Action::ShowVersion;
            return options;
        } else {
            options.action = Options::Action::RefuseUsage;
            options.refused = argument;
            return options;
        }
    }
    return options;
}
