// SPDX-License-Identifier: MIT
#include "Console.h"

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

#include <cerrno>
#include <new>
#include <string>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view VERSION = "tallyquill " TALLYQUILL_VERSION "\n";

int showText(std::string_view text, System& system) {
    return writeAll(STDOUT_FILENO, text, system) ? ALL_ANSWERED : outputLost(errno, system);
}

int refuseUsage(const std::string& refusal, System& system) {
    complain(refusal + "\nTry 'tallyquill --help'.", system);
    return BAD_USAGE;
}

void tell(const std::string& news, System& system) {
    if (!news.empty()) complain(news, system);
}

int evaluateTyped(Session& session, int answers, Run& run, const Options& options, System& system) {
    const EndCatcher endCatcher; // until everything is written
    PromptFiles files(session.Calculator(), system);
    // What ships or is in the init file is there at each start without being kept.
    const std::string before = definitionsText(session.Calculator());
    run.TakeShared();
    const bool isAny = definitionsText(session.Calculator()) != before;
    if (!options.noFiles) tell(files.Open(), system);
    if (isAny) files.LeaveOut(before);
    run.TakeSettings();
    PromptOptions how;
    how.isPlain = options.plain;
    how.hasColors = wantsColors(options.color, promptDescriptor(answers, system), system) && !options.plain;
    const PromptEnd end = runPrompt(session, files, answers, how, system);
    const int error = errno;
    const std::string unsaved = files.Close();
    tell(unsaved, system);
    if (endSignal() != 0) dieOf(endSignal());
    errno = error;
    switch (end) {
    case PromptEnd::InputLost: return inputLost("standard input", system);
    case PromptEnd::OutputLost: return outputLost(errno, system);
    case PromptEnd::Ended: break;
    }
    const int status = run.End();
    return unsaved.empty() ? status : FILE_LOST;
}

int evaluate(const Options& options, System& system) {
    const int answers = setAnswersAside(options.trace, system);
    if (answers < 0) return outputLost(errno, system);
    const bool isScript = !options.inputs.empty() || !options.each.empty() || options.json;
    const bool isTyped = !isScript && system.IsTerminal(STDIN_FILENO) == 1;
    // Nobody waits for a single answer; but the trace on standard error stands between them.
    const bool inBlocks = !isTyped && !options.trace && system.IsTerminal(answers) != 1;
    Session session(answers, STDERR_FILENO,
                    {options.quiet, options.last, options.preview, options.json, options.plain, inBlocks},
                    system);
    session.Calculator().traced = options.trace;
    if (!options.plain)
        session.SetColors(wantsColors(options.color, answers, system),
                          wantsColors(options.color, STDERR_FILENO, system));
    Run run(session, answers, options, system);
    try {
        if (isTyped) return evaluateTyped(session, answers, run, options, system);
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
int memoryLost(System& system) {
    writeAll(STDERR_FILENO, "tallyquill: out of memory\n", system);
    return FILE_LOST;
}

} // namespace

int runConsole(int argc, char** argv, System& system) try {
    const Options options = parseOptions(argc, argv);
    switch (options.action) {
    case Options::Action::ShowHelp: return showText(helpText(), system);
    case Options::Action::ShowVersion: return showText(VERSION, system);
    case Options::Action::RefuseUsage: return refuseUsage(options.refusal, system);
    case Options::Action::Evaluate: break;
    }
    return evaluate(options, system);
} catch (const std::bad_alloc&) {
    return memoryLost(system);
}
