// SPDX-License-Identifier: MIT
//
// tallyquill: the calculator's console for terminals, pipes and scripts.
#include "Descriptor.h"
#include "EntryText.h"
#include "Interrupt.h"
#include "LineReader.h"
#include "Options.h"
#include "Prompt.h"
#include "Session.h"
#include "ShownText.h"
#include "Signals.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <string>
#include <unistd.h>

namespace {

enum ExitStatus { ALL_ANSWERED = 0, SOME_REFUSED = 1, BAD_USAGE = 2 };

constexpr std::string_view HELP =
    "Usage: tallyquill [OPTION]... [--] [ENTRY]...\n"
    "Evaluate each ENTRY and print its answer. Without ENTRY, evaluate the lines of\n"
    "standard input; when that is a terminal, prompt for them.\n"
    "\n"
    "      --trace    show the trace of the evaluation on standard error\n"
    "      --help     show this help and exit\n"
    "      --version  show the version and exit\n"
    "\n"
    "An ENTRY that begins with a minus sign goes behind --, as in:\n"
    "  tallyquill -- -2^2\n"
    "\n"
    "The entry convert TEXT asks the service at TALLYQUILL_QUERY_URL, the second gospel\n"
    "opens TALLYQUILL_WEB_URL; without these variables nothing is asked or opened.\n"
    "\n"
    "Answers go to standard output, errors to standard error.\n"
    "Exit status: 0 all entries were answered, 1 some entry failed or overflowed, 2 bad usage.\n";

constexpr std::string_view VERSION = "tallyquill " TALLYQUILL_VERSION "\n";

void complain(const std::string& text) {
    writeAll(STDERR_FILENO, ShownText("tallyquill: " + text + "\n"));
}

// Ends a run whose answers cannot be delivered. A reader that has gone away, as head does, needs no message.
int outputLost(int error) {
    if (error != EPIPE) complain(std::string("standard output: ") + std::strerror(error));
    return SOME_REFUSED;
}

int showText(std::string_view text) {
    return writeAll(STDOUT_FILENO, text) ? ALL_ANSWERED : outputLost(errno);
}

int refuseUsage(std::string_view argument) {
    complain("unknown option '" + std::string(argument) + "'");
    writeAll(STDERR_FILENO, ShownText("An entry that begins with '-' goes behind '--': tallyquill -- '" +
                                      std::string(argument) + "'\nTry 'tallyquill --help'.\n"));
    return BAD_USAGE;
}

// The status at the regular end of a run.
int endStatus(const Session& session, int answers) {
    if (close(answers) != 0) return outputLost(errno);
    return session.AnyRefused() ? SOME_REFUSED : ALL_ANSWERED;
}

int evaluateArguments(Session& session, int answers, const Options& options) {
    for (const std::string_view entry : options.entries) {
        if (isBlank(entry)) continue;
        const Session::Outcome outcome = session.Run(entry);
        if (outcome == Session::Outcome::OutputLost) return outputLost(errno);
        if (outcome == Session::Outcome::Interrupted) dieOfInterrupt();
        if (outcome == Session::Outcome::Ended) break;
    }
    return endStatus(session, answers);
}

// One byte more than an entry may have tells an overlong line apart, or is the CR of its line end.
constexpr std::size_t KEPT_LENGTH = MAX_ENTRY_LENGTH + 1;

int inputLost() {
    complain(std::string("standard input: ") + std::strerror(errno));
    return SOME_REFUSED;
}

int evaluateFile(Session& session, int answers) {
    static LineReader reader(STDIN_FILENO, KEPT_LENGTH);
    std::string line;
    for (;;) {
        const LineReader::Status status = reader.Next(line);
        if (status == LineReader::Status::Failed) return inputLost();
        if (status == LineReader::Status::End) return endStatus(session, answers);
        if (isBlank(line)) continue;
        const Session::Outcome outcome = session.Run(line);
        if (outcome == Session::Outcome::OutputLost) return outputLost(errno);
        if (outcome == Session::Outcome::Interrupted) dieOfInterrupt();
        if (outcome == Session::Outcome::Ended) return endStatus(session, answers);
    }
}

int evaluateTyped(Session& session, int answers) {
    switch (runPrompt(session, answers, PromptOptions())) {
    case PromptEnd::InputLost: return inputLost();
    case PromptEnd::OutputLost: return outputLost(errno);
    case PromptEnd::Ended: break;
    }
    return endStatus(session, answers);
}

int evaluateLines(Session& session, int answers) {
    return isatty(STDIN_FILENO) == 1 ? evaluateTyped(session, answers) : evaluateFile(session, answers);
}

} // namespace

int main(int argc, char** argv) {
    // Writing to a pipe that nobody reads is reported like any other failed write. Caught and not ignored:
    // programs that this one starts get the signal as it was.
    static SignalCatcher brokenPipes;
    brokenPipes.Start(SIGPIPE, [](int) {});
    const Options options = parseOptions(argc, argv);
    switch (options.action) {
    case Options::Action::ShowHelp: return showText(HELP);
    case Options::Action::ShowVersion: return showText(VERSION);
    case Options::Action::RefuseUsage: return refuseUsage(options.refused);
    case Options::Action::Evaluate: break;
    }
    const int answers = setAnswersAside(options.trace);
    if (answers < 0) return outputLost(errno);
    static Session session(answers, STDERR_FILENO);
    return options.entries.empty() ? evaluateLines(session, answers)
                                   : evaluateArguments(session, answers, options);
}
