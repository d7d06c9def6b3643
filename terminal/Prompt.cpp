// SPDX-License-Identifier: MIT
#include "Prompt.h"

#include "Descriptor.h"
#include "EntryText.h"
#include "Hints.h"
#include "Interrupt.h"
#include "Keyboard.h"
#include "PromptWords.h"
#include "Session.h"
#include "TypedSigns.h"
#ifdef TALLYQUILL_READLINE
#include "ReadlineEditor.h"
#endif

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <unistd.h>

namespace {

using Status = LineSource::Status;

// One byte more than an entry may have tells an overlong line apart.
constexpr std::size_t KEPT_LENGTH = MAX_ENTRY_LENGTH + 1;

// Where prompts go when a person types: not into a file that collects the answers, else nowhere (-1).
int promptDescriptor(int answers) {
    if (isatty(answers) == 1) return answers;
    return isatty(STDERR_FILENO) == 1 ? STDERR_FILENO : -1;
}

std::string withoutBlanks(std::string_view text) {
    std::string kept(text);
    kept.erase(
        std::remove_if(kept.begin(), kept.end(), [](char c) { return c == ' ' || c == '\t' || c == '\n'; }),
        kept.end());
    return kept;
}

class Prompt : public PromptHost {
public:
    Prompt(Session& theSession, int answers, const PromptOptions& options);

    PromptEnd Run();

    std::string PromptText(bool) const override { return "> "; }
    long DoDue() override { return -1; }
    std::string PreviewOf(const std::string& entry) override;
    Completion CompletionsAt(const std::string& entry, std::size_t cursor) override;
    bool MinusIsSign() const override { return true; }

private:
    Session::Outcome Answer(const std::string& line);
    Session::Outcome CarryOut(const std::string& line);
    std::string WithHelp(const std::string& error) const;

    Session& session;
    int screen;
    std::string current; // the line that is being answered
    Notes notes;
    KeptSettings settings;
    std::vector<std::string> history;
    std::unique_ptr<LineSource> lines;
};

// Whether the terminal can do what an editor takes.
bool canEdit(int screen) {
    const char* const kind = std::getenv("TERM");
    return screen >= 0 && kind != nullptr && *kind != '\0' && std::strcmp(kind, "dumb") != 0;
}

Prompt::Prompt(Session& theSession, int answers, const PromptOptions& options)
    : session(theSession), screen(promptDescriptor(answers)) {
#ifdef TALLYQUILL_READLINE
    if (!options.isPlain && canEdit(screen))
        lines = std::make_unique<ReadlineEditor>(*this, STDIN_FILENO, screen);
#endif
    if (isatty(STDERR_FILENO) == 1)
        session.SetErrorForm([this](const std::string& error) { return WithHelp(error); });
    if (!lines) lines = std::make_unique<Keyboard>(*this, STDIN_FILENO, screen, KEPT_LENGTH);
}

PromptEnd Prompt::Run() {
    std::string line;
    for (;;) {
        const Status status = lines->Next(line);
        if (status == Status::Failed) return PromptEnd::InputLost;
        if (status == Status::Blank) continue;
        // The shell's prompt, or the next one of ours, begins on a line of its own.
        if (screen >= 0 && (status == Status::Cancelled || status == Status::End)) writeAll(screen, "\n");
        if (status == Status::Cancelled) continue;
        if (status == Status::End) return PromptEnd::Ended;
        const Session::Outcome outcome = Answer(TypedSigns().Read(line));
        if (outcome == Session::Outcome::OutputLost) return PromptEnd::OutputLost;
        if (outcome == Session::Outcome::Ended) return PromptEnd::Ended;
    }
}

Session::Outcome Prompt::Answer(const std::string& line) {
    current = line;
    if (!isBlank(line) && line[0] != ' ' && line[0] != '\t') lines->AddToHistory(line);
    if (line[0] == ':') return CarryOut(line);
    const Session::Outcome outcome = session.Run(line);
    if (outcome == Session::Outcome::Answered && !session.Show(notes.For(line)))
        return Session::Outcome::OutputLost;
    return outcome;
}

// A line that begins with ':'.
Session::Outcome Prompt::CarryOut(const std::string& line) {
    const PromptReply reply = runPromptWord({session.Calculator(), settings, history}, line);
    if (reply.kind == PromptReply::END) return Session::Outcome::Ended;
    if (reply.kind == PromptReply::ERROR) return session.RefuseEntry(line, reply.text);
    return session.Show(reply.text) ? Session::Outcome::Answered : Session::Outcome::OutputLost;
}

int columnsOf(int screen) {
    winsize size = {};
    return ioctl(screen, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80;
}

// The error with a mark above it, below the entry, and a line that may help below it.
std::string Prompt::WithHelp(const std::string& error) const {
    ZqCalculator& calc = session.Calculator();
    if (calc.status != STATUS_ERROR || calc.entryLine != current) return error;
    const auto columns = static_cast<std::size_t>(columnsOf(screen));
    const std::string mark = markUnder(current, calc.errorRange, PromptText(false).size(), columns);
    return mark + error + hintAfterError(current, calc);
}

std::string Prompt::PreviewOf(const std::string& entry) {
    if (isBlank(entry) || checkEntry(entry) != EntryFault::None) return "";
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

Completion Prompt::CompletionsAt(const std::string& entry, std::size_t cursor) {
    return completionsAt(entry, cursor, session.Calculator());
}

} // namespace

PromptEnd runPrompt(Session& session, int answers, const PromptOptions& options) {
    const EndCatcher endCatcher;
    PromptEnd end = PromptEnd::Ended;
    {
        const InterruptCatcher catcher;
        end = Prompt(session, answers, options).Run();
    }
    if (endSignal() != 0) dieOf(endSignal());
    return end;
}
