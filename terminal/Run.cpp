// SPDX-License-Identifier: MIT
#include "Run.h"

#include "Colors.h"
#include "Ending.h"
#include "EntryText.h"
#include "Helpers_String.h"
#include "Hints.h"
#include "ShownText.h"

#include <cerrno>
#include <fcntl.h>
#include <memory>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr const char* STANDARD_INPUT = "-"; // as the name of a file

// Of a line of data for --each.
constexpr size_t MAX_DATA_LENGTH = 1 << 20;

// Some programs begin a file with it.
constexpr std::string_view BYTE_ORDER_MARK = "\xef\xbb\xbf";

// What may help after the error of an entry that was an argument, or nothing.
std::string hintForArgument(const std::string& entry, ZqCalculator& calc, System& system) {
    struct stat info;
    if (system.Status(entry.c_str(), info) == 0 && S_ISREG(info.st_mode))
        return entry + " is a file: tallyquill -f " + entry + " evaluates its lines\n";
    if (calc.status != STATUS_ERROR || calc.entryLine != entry) return "";
    const std::string hint = hintAfterError(entry, calc);
    return startsWith(hint, ":") ? "at the prompt, " + hint : hint;
}

} // namespace

void Run::TakeShared() {
    ZqCalculator& calc = session.Calculator();
    for (const std::string_view name : options.with) takeShipped(calc, name);
    if (!options.noFiles) Tell(takeInitFile(calc, system));
}

void Run::TakeOwnDefinitions() {
    if (!options.noFiles) Tell(takeOwnDefinitions(session.Calculator(), system));
}

void Run::TakeSettings() {
    ZqCalculator& calc = session.Calculator();
    if (options.user && !options.noFiles) Tell(takeOwnSettings(calc, system));
    for (const auto& [setting, value] : options.settings) setting->Apply(value, calc);
}

void Run::Tell(const FileReading& reading) {
    isFileLost = isFileLost || reading.isLost;
    if (!reading.complaint.empty()) complain(reading.complaint, system);
}

// Scripts and other programs read what is no terminal: they get the error alone.
void Run::AddHints() {
    if (system.IsTerminal(STDERR_FILENO) != 1) return;
    const bool hasColors = !options.plain && wantsColors(options.color, STDERR_FILENO, system);
    session.SetErrorForm([this, hasColors](const std::string& error) {
        if (argument.empty()) return error;
        const std::string hint =
            shownText(hintForArgument(std::string(argument), session.Calculator(), system));
        return error + (hasColors && !hint.empty() ? colored(Shade::Hint, hint) : hint);
    });
}

int Run::Evaluate() {
    AddHints();
    std::optional<Each> each; // before the inputs, which may set other values to begin with
    if (!options.each.empty()) each.emplace(session.Calculator(), options.each, options.separator);
    Over over;
    size_t number = 0;
    for (const Options::Input& input : options.inputs) {
        session.SetPlace(++number);
        argument = input.isFile ? std::string_view() : input.text;
        over = input.isFile ? EvaluateFile(std::string(input.text)) : EvaluateEntry(input.text);
        if (over) return *over;
    }
    argument = {};
    if (each)
        over = EvaluateEach(*each);
    else if (options.inputs.empty())
        over = EvaluateFile(STANDARD_INPUT);
    return over ? *over : End();
}

int Run::End() {
    LetGo();
    if (!session.End() || system.Close(answers) != 0) return outputLost(errno, system);
    if (isFileLost) return FILE_LOST;
    return session.AnyRefused() ? SOME_REFUSED : ALL_ANSWERED;
}

Run::Over Run::EvaluateEntry(std::string_view entry) {
    if (isBlankLine(entry)) return {};
    if (!catcher) catcher.emplace();
    return Answer(session.RunCaught(entry));
}

void Run::LetGo() {
    catcher.reset();
    if (isInterrupted()) Answer(Session::Outcome::Interrupted);
}

bool Run::MayRead(const LineReader& reader) {
    if (reader.HasLine()) return true;
    LetGo();
    return reader.IsReady() || session.Flush();
}

int Run::InputLost(const std::string& name) {
    const int error = errno;
    session.Flush();
    errno = error;
    return inputLost(name, system);
}

Run::Over Run::Answer(Session::Outcome outcome) {
    switch (outcome) {
    case Session::Outcome::Answered: return {};
    case Session::Outcome::Refused: return options.failFast ? Over(End()) : Over();
    case Session::Outcome::Ended: return End();
    case Session::Outcome::OutputLost: return outputLost(errno, system);
    case Session::Outcome::Interrupted: break;
    }
    session.Flush();
    dieOfInterrupt();
}

Run::Over Run::EvaluateEach(Each& each) {
    const auto reader = std::make_unique<LineReader>(STDIN_FILENO, MAX_DATA_LENGTH + 1, system);
    std::string line;
    for (size_t number = 1;; ++number) {
        if (!MayRead(*reader)) return outputLost(errno, system);
        const LineReader::Status status = reader->Next(line);
        if (status == LineReader::Status::Failed) return InputLost("standard input");
        if (status == LineReader::Status::End) return {};
        if (number == 1 && line.compare(0, BYTE_ORDER_MARK.size(), BYTE_ORDER_MARK) == 0)
            line.erase(0, BYTE_ORDER_MARK.size());
        if (isBlankLine(line)) continue;
        session.SetPlace(number, "line " + std::to_string(number) + ": ");
        const std::string error = line.size() > MAX_DATA_LENGTH
                                      ? "** ERROR: " + std::to_string(MAX_DATA_LENGTH) + " max characters **"
                                      : each.Take(line);
        const Over over =
            error.empty() ? EvaluateEntry(options.each) : Answer(session.RefuseEntry(options.each, error));
        if (over) return over;
    }
}

Run::Over Run::EvaluateFile(const std::string& name) {
    if (name == STANDARD_INPUT) return EvaluateLines(STDIN_FILENO, "standard input");
    LetGo(); // it may have to wait
    const int file = system.Open(name.c_str(), O_RDONLY | O_CLOEXEC);
    if (file < 0) return InputLost(name);
    const Over over = EvaluateLines(file, name);
    system.Close(file);
    return over;
}

// A first line such as "#!/usr/bin/env -S tallyquill -f" is no entry. Each error is told with the file's name
// and the line's number, but those of standard input.
Run::Over Run::EvaluateLines(int descriptor, const std::string& name) {
    const auto reader = std::make_unique<LineReader>(descriptor, KEPT_LENGTH, system);
    const bool isFile = descriptor != STDIN_FILENO;
    std::string line;
    for (size_t number = 1;; ++number) {
        if (!MayRead(*reader)) return outputLost(errno, system);
        const LineReader::Status status = reader->Next(line);
        if (status == LineReader::Status::Failed) return InputLost(name);
        if (status == LineReader::Status::End) break;
        if (number == 1 && line.compare(0, 2, "#!") == 0) continue;
        session.SetPlace(number, isFile ? name + ":" + std::to_string(number) + ": " : "");
        const Over over = EvaluateEntry(line);
        if (over) return over;
    }
    return {};
}
