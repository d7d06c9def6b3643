// SPDX-License-Identifier: MIT
#include "Prompt.h"

#include "Colors.h"
#include "Descriptor.h"
#include "EntryText.h"
#include "Helpers_String.h"
#include "Hints.h"
#include "Interrupt.h"
#include "Keyboard.h"
#include "PromptCompletion.h"
#include "PromptFiles.h"
#include "PromptWords.h"
#include "ScreenText.h"
#include "Session.h"
#include "ShownText.h"
#include "TypedSigns.h"
#ifdef TALLYQUILL_READLINE
#include "ReadlineEditor.h"
#endif

#include <cstring>
#include <memory>
#include <sstream>
#include <string>
#include <string_view>
#include <system_error>
#include <unistd.h>

namespace {

using Status = LineSource::Status;

constexpr char PROMPT[] = "> ";
constexpr int PROMPT_WIDTH = sizeof PROMPT - 1;

constexpr char CUT_LINE[] = "** ERROR: this terminal cuts lines of more than 4094 characters **\n";

class Prompt : public PromptHost {
public:
    Prompt(Session& theSession, PromptFiles& theFiles, int answers, const PromptOptions& how, System& calls);

    PromptEnd Run();

    std::string PromptText(bool forEditor) const override;
    long DoDue() override { return files.DoDue(); }
    std::string PreviewOf(const std::string& entry) override;
    Completion CompletionsAt(const std::string& entry, size_t cursor) override;
    bool MinusIsSign() const override { return files.ValueOf("doublenegans") != 0; }

private:
    Session::Outcome Answer(const std::string& line, bool isPasted);
    void Remember(const std::string& line);
    Session::Outcome Evaluate(const std::string& line, bool isPasted);
    Session::Outcome AnswerWord(const std::string& line);
    std::string WithHelp(const std::string& error) const;
    std::string AsHint(const std::string& text) const;
    std::string Filled(const std::string& text) const;
    int Width() const;

    System& system;
    Session& session;
    PromptFiles& files;
    PromptOptions options;
    int screen;
    std::string current; // the line that is being answered
    Notes notes;
    std::unique_ptr<LineSource> lines;
};

Prompt::Prompt(Session& theSession, PromptFiles& theFiles, int answers, const PromptOptions& how,
               System& calls)
    : system(calls), session(theSession), files(theFiles), options(how),
      screen(promptDescriptor(answers, calls)) {
#ifdef TALLYQUILL_READLINE
    if (!options.isPlain && screen >= 0 && knowsSequences()) {
        try {
            lines = std::make_unique<ReadlineEditor>(*this, STDIN_FILENO, screen, system);
        } catch (const std::system_error&) { // lines without an editor are left
        }
    }
#endif
    if (!lines) lines = std::make_unique<Keyboard>(*this, STDIN_FILENO, screen, KEPT_LENGTH, system);
    lines->SetHistory(files.History());
    if (system.IsTerminal(STDERR_FILENO) == 1)
        session.SetErrorForm([this](const std::string& error) { return WithHelp(error); });
}

std::string Prompt::PromptText(bool forEditor) const {
    std::string text = PROMPT;
    if (!options.hasColors) return text;
    std::string inColor = colored(Shade::Prompt, text);
    if (!forEditor) return inColor;
    const size_t start = inColor.find(text);
    return "\001" + inColor.substr(0, start) + "\002" + text + "\001" + inColor.substr(start + text.size()) +
           "\002";
}

PromptEnd Prompt::Run() {
    std::string line;
    for (;;) {
        const Status status = lines->Next(line);
        if (status == Status::Failed) return PromptEnd::InputLost;
        if (status == Status::Blank) continue;
        // The shell's prompt, or the next one of ours, begins on a line of its own.
        if (screen >= 0 && (status == Status::Canceled || status == Status::End))
            writeAll(screen, "\n", system);
        if (status == Status::Canceled) continue;
        if (status == Status::End) return PromptEnd::Ended;
        const Session::Outcome outcome = status == Status::Cut
                                             ? session.RefuseEntry(line, CUT_LINE)
                                             : Answer(TypedSigns().Read(line), status == Status::Pasted);
        if (outcome == Session::Outcome::OutputLost) return PromptEnd::OutputLost;
        if (outcome == Session::Outcome::Ended) return PromptEnd::Ended;
    }
}

Session::Outcome Prompt::Answer(const std::string& line, bool isPasted) {
    const size_t start = line.find_first_not_of(" \t");
    const bool isWord = start != std::string::npos && line[start] == ':';
    if (!isWord) Remember(line);
    current = line;
    const Session::Outcome outcome = isWord ? AnswerWord(line.substr(start)) : Evaluate(line, isPasted);
    if (isWord) Remember(line); // so that ":history x" does not find itself
    if (outcome == Session::Outcome::OutputLost) return outcome;
    const std::string news = files.TakeNews();
    if (!news.empty() && screen >= 0) writeAll(screen, shownText(news + "\n"), system);
    return outcome;
}

void Prompt::Remember(const std::string& line) {
    const bool isRecorded = session.Calculator().histStack && checkEntry(line) == EntryFault::None;
    if (isRecorded && !strIsEqualNI(line.c_str(), "histstack off", 13) && files.AddToHistory(line))
        lines->AddToHistory(line);
}

Session::Outcome Prompt::Evaluate(const std::string& line, bool isPasted) {
    files.EntryWillRun(isPasted);
    const Session::Outcome outcome = isInterrupted() ? session.GiveUp() : session.Run(line);
    files.EntryDidRun();
    if (isPasted) files.DoDue(false);
    const ZqCalculator& calc = session.Calculator();
    const bool isDefinition = calc.status == STATUS_MESSAGE && *calc.message != '\0';
    const bool isComputed = calc.status == STATUS_RESULT || isDefinition; // an echoed text is not
    if (outcome != Session::Outcome::Answered || screen < 0 || !isComputed) return outcome;
    return writeAll(screen, AsHint(Filled(notes.For(line))), system) ? outcome : Session::Outcome::OutputLost;
}

// The prompt's own words, which begin with ':'.
Session::Outcome Prompt::AnswerWord(const std::string& line) {
    const PromptReply reply =
        runPromptWord({session.Calculator(), files.Settings(), files.History(), Width()}, line);
    files.NoteChange();
    if (reply.kind == PromptReply::END) return Session::Outcome::Ended;
    if (reply.kind == PromptReply::ERROR) return session.RefuseEntry(line, reply.text);
    return session.Show(reply.text) ? Session::Outcome::Answered : Session::Outcome::OutputLost;
}

int Prompt::Width() const {
    winsize size = {};
    return system.Size(screen, size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

std::string Prompt::AsHint(const std::string& text) const {
    return options.hasColors ? colored(Shade::Hint, shownText(text)) : shownText(text);
}

// The text broken between words: on a narrow screen a number must not look like two.
std::string Prompt::Filled(const std::string& text) const {
    std::istringstream each(text);
    std::string filled;
    for (std::string line; std::getline(each, line); filled += '\n')
        addWords(filled, line, 0, static_cast<size_t>(Width()));
    return filled;
}

// The error with a mark above it, below the entry, and a line that may help below it.
std::string Prompt::WithHelp(const std::string& error) const {
    ZqCalculator& calc = session.Calculator();
    if (calc.status != STATUS_ERROR || calc.entryLine != current) return error;
    const std::string mark =
        markUnder(current, calc.errorRange, lines->PromptIndent() + PROMPT_WIDTH, Width());
    return AsHint(mark) + error + AsHint(Filled(hintAfterError(current, calc)));
}

std::string Prompt::PreviewOf(const std::string& entry) {
    if (files.ValueOf("autoeval") == 0) return "";
    if (isBlankLine(entry) || checkEntry(entry) != EntryFault::None) return "";
    ZqCalculator& calc = session.Calculator();
    if (calc.ProcessEntry(entry.c_str(), true) != STATUS_RESULT) return "";
    std::string text(calc.resultLine, std::strcspn(calc.resultLine, "\n"));
    const std::string ordinary = "ans = ";
    if (text.compare(0, ordinary.size(), ordinary) == 0) text.erase(0, ordinary.size());
    const std::string typed = withoutBlanks(entry);
    const std::string shown = withoutBlanks(text);
    const std::string assigned = "=" + shown;
    const bool isTyped = typed.size() > assigned.size() &&
                         typed.compare(typed.size() - assigned.size(), assigned.size(), assigned) == 0;
    return typed == shown || isTyped ? "" : text;
}

Completion Prompt::CompletionsAt(const std::string& entry, size_t cursor) {
    return promptCompletionsAt(entry, cursor, session.Calculator());
}

} // namespace

int promptDescriptor(int answers, System& system) {
    if (system.IsTerminal(answers) == 1) return answers;
    return system.IsTerminal(STDERR_FILENO) == 1 ? STDERR_FILENO : -1;
}

PromptEnd runPrompt(Session& session, PromptFiles& files, int answers, const PromptOptions& options,
                    System& system) {
    const InterruptCatcher catcher;
    return Prompt(session, files, answers, options, system).Run();
}
