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
#include <fcntl.h>
#include <memory>
#include <optional>
#include <string>
#include <unistd.h>

namespace {

enum ExitStatus { ALL_ANSWERED = 0, SOME_REFUSED = 1, BAD_USAGE = 2, FILE_LOST = 3 };

constexpr std::string_view VERSION = "tallyquill " TALLYQUILL_VERSION "\n";

void complain(const std::string& text) {
    writeAll(STDERR_FILENO, ShownText("tallyquill: " + text + "\n"));
}

// Ends a run whose answers cannot be delivered. A reader that has gone away, as head does, needs no message.
int outputLost(int error) {
    if (error != EPIPE) complain(std::string("standard output: ") + std::strerror(error));
    return FILE_LOST;
}

int showText(std::string_view text) {
    return writeAll(STDOUT_FILENO, text) ? ALL_ANSWERED : outputLost(errno);
}

int refuseUsage(const std::string& refusal) {
    complain(refusal + "\nTry 'tallyquill --help'.");
    return BAD_USAGE;
}

// The status at the regular end of a run.
int endStatus(Session& session, int answers) {
    if (!session.End() || close(answers) != 0) return outputLost(errno);
    return session.AnyRefused() ? SOME_REFUSED : ALL_ANSWERED;
}

// One byte more than an entry may have tells an overlong line apart, or is the CR of its line end.
constexpr std::size_t KEPT_LENGTH = MAX_ENTRY_LENGTH + 1;

int inputLost(const std::string& name) {
    complain(name + ": " + std::strerror(errno));
    return FILE_LOST;
}

// What comes of one input: the run goes on, or is over with this status.
using Ending = std::optional<int>;

Ending evaluateEntry(Session& session, int answers, std::string_view entry, bool failFast) {
    if (isBlank(entry)) return {};
    switch (session.Run(entry)) {
    case Session::Outcome::Answered: return {};
    case Session::Outcome::Refused: return failFast ? Ending(endStatus(session, answers)) : Ending();
    case Session::Outcome::Ended: return endStatus(session, answers);
    case Session::Outcome::OutputLost: return outputLost(errno);
    case Session::Outcome::Interrupted: break;
    }
    dieOfInterrupt();
}

// A first line such as "#!/usr/bin/env -S tallyquill -f" is no entry. Each error is told with the file's name
// and the line's number, but those of standard input.
Ending evaluateLines(Session& session, int answers, int descriptor, const std::string& name, bool failFast) {
    const auto reader = std::make_unique<LineReader>(descriptor, KEPT_LENGTH);
    const bool isFile = descriptor != STDIN_FILENO;
    std::string line;
    for (std::size_t number = 1;; ++number) {
        const LineReader::Status status = reader->Next(line);
        if (status == LineReader::Status::Failed) return inputLost(name);
        if (status == LineReader::Status::End) break;
        if (number == 1 && line.compare(0, 2, "#!") == 0) continue;
        if (isFile) session.SetPlace(name + ":" + std::to_string(number) + ": ");
        const Ending ending = evaluateEntry(session, answers, line, failFast);
        if (ending) return ending;
    }
    session.SetPlace("");
    return {};
}

Ending evaluateFile(Session& session, int answers, const std::string& name, bool failFast) {
    if (name == "-") return evaluateLines(session, answers, STDIN_FILENO, "standard input", failFast);
    const int file = open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return inputLost(name);
    const Ending ending = evaluateLines(session, answers, file, name, failFast);
    close(file);
    return ending;
}

int evaluateInputs(Session& session, int answers, const Options& options) {
    for (const Options::Input& input : options.inputs) {
        const Ending ending = input.isFile
                                  ? evaluateFile(session, answers, std::string(input.text), options.failFast)
                                  : evaluateEntry(session, answers, input.text, options.failFast);
        if (ending) return *ending;
    }
    return endStatus(session, answers);
}

int evaluateTyped(Session& session, int answers) {
    switch (runPrompt(session, answers, PromptOptions())) {
    case PromptEnd::InputLost: return inputLost("standard input");
    case PromptEnd::OutputLost: return outputLost(errno);
    case PromptEnd::Ended: break;
    }
    return endStatus(session, answers);
}

// Without inputs: standard input.
int evaluateStandardInput(Session& session, int answers, const Options& options) {
    if (isatty(STDIN_FILENO) == 1) return evaluateTyped(session, answers);
    const Ending ending = evaluateFile(session, answers, "-", options.failFast);
    return ending ? *ending : endStatus(session, answers);
}

} // namespace

int main(int argc, char** argv) {
    // Writing to a pipe that nobody reads is reported like any other failed write. Caught and not ignored:
    // programs that this one starts get the signal as it was.
    static SignalCatcher brokenPipes;
    brokenPipes.Start(SIGPIPE, [](int) {});
    const Options options = parseOptions(argc, argv);
    switch (options.action) {
    case Options::Action::ShowHelp: return showText(helpText());
    case Options::Action::ShowVersion: return showText(VERSION);
    case Options::Action::RefuseUsage: return refuseUsage(options.refusal);
    case Options::Action::Evaluate: break;
    }
    const int answers = setAnswersAside(options.trace);
    if (answers < 0) return outputLost(errno);
    static Session session(answers, STDERR_FILENO, {options.quiet, options.last, options.preview});
    for (const auto& [setting, value] : options.settings) session.Set(*setting, value);
    return options.inputs.empty() ? evaluateStandardInput(session, answers, options)
                                  : evaluateInputs(session, answers, options);
}
