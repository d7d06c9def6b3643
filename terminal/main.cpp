// SPDX-License-Identifier: MIT
//
// tallyquill: the calculator's console for terminals, pipes and scripts.
#include "Colors.h"
#include "DefinitionsFile.h"
#include "Descriptor.h"
#include "Ending.h"
#include "Interrupt.h"
#include "Options.h"
#include "Prompt.h"
#include "PromptFiles.h"
#include "Run.h"
#include "Session.h"
#include "Signals.h"

#include <cerrno>
#include <csignal>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view VERSION = "tallyquill " TALLYQUILL_VERSION "\n";

int showText(std::string_view text) {
    return writeAll(STDOUT_FILENO, text) ? ALL_ANSWERED : outputLost(errno);
}

int refuseUsage(const std::string& refusal) {
    complain(refusal + "\nTry 'tallyquill --help'.");
    return BAD_USAGE;
}

void tell(const std::string& news) {
    if (!news.empty()) complain(news);
}

int evaluateTyped(Session& session, int answers, Run& run, const Options& options) {
    const EndCatcher endCatcher; // until everything is written
    PromptFiles files(session.Calculator());
    // What ships or is in the init file is there at each start without being kept.
    const std::string before = definitionsText(session.Calculator());
    run.TakeShared();
    const bool isAny = definitionsText(session.Calculator()) != before;
    if (!options.noFiles) tell(files.Open());
    if (isAny) files.LeaveOut(before);
    run.TakeSettings();
    PromptOptions how;
    how.isPlain = options.plain;
    how.hasColors = wantsColors(options.color, promptDescriptor(answers)) && !options.plain;
    const PromptEnd end = runPrompt(session, files, answers, how);
    const int error = errno;
    const std::string unsaved = files.Close();
    tell(unsaved);
    if (endSignal() != 0) dieOf(endSignal());
    errno = error;
    switch (end) {
    case PromptEnd::InputLost: return inputLost("standard input");
    case PromptEnd::OutputLost: return outputLost(errno);
    case PromptEnd::Ended: break;
    }
    const int status = run.End();
    return unsaved.empty() ? status : FILE_LOST;
}

int evaluate(const Options& options) {
    const int answers = setAnswersAside(options.trace);
    if (answers < 0) return outputLost(errno);
    const bool isScript = !options.inputs.empty() || !options.each.empty() || options.json;
    const bool isTyped = !isScript && isatty(STDIN_FILENO) == 1;
    // Nobody waits for a single answer; but the trace on standard error stands between them.
    const bool inBlocks = !isTyped && !options.trace && isatty(answers) != 1;
    static Session session(
        answers, STDERR_FILENO,
        {options.quiet, options.last, options.preview, options.json, options.plain, inBlocks});
    session.Calculator().traced = options.trace;
    if (!options.plain)
        session.SetColors(wantsColors(options.color, answers), wantsColors(options.color, STDERR_FILENO));
    Run run(session, answers, options);
    try {
        if (isTyped) return evaluateTyped(session, answers, run, options);
        run.TakeShared();
        run.TakeOwnDefinitions();
        run.TakeSettings();
        return run.Evaluate();
    } catch (const std::bad_alloc&) {
        session.Flush(); // what was answered
        throw;
    }
}

// What the entry has left of the calculator is not known: nothing is written behind it.
int memoryLost() {
    writeAll(STDERR_FILENO, "tallyquill: out of memory\n");
    return FILE_LOST;
}

} // namespace

int main(int argc, char** argv) try {
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
    return evaluate(options);
} catch (const std::bad_alloc&) {
    return memoryLost();
}
