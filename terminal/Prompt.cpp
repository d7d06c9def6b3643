// SPDX-License-Identifier: MIT
#include "Prompt.h"

#include "Descriptor.h"
#include "EntryText.h"
#include "Interrupt.h"
#include "Keyboard.h"
#include "Session.h"

#include <string>
#include <string_view>
#include <unistd.h>

namespace {

constexpr std::string_view PROMPT = "> ";

// One byte more than an entry may have tells an overlong line apart.
constexpr std::size_t KEPT_LENGTH = MAX_ENTRY_LENGTH + 1;

// Where prompts go when a person types: not into a file that collects the answers, else nowhere (-1).
int promptDescriptor(int answers) {
    if (isatty(answers) == 1) return answers;
    return isatty(STDERR_FILENO) == 1 ? STDERR_FILENO : -1;
}

} // namespace

PromptEnd runPrompt(Session& session, int answers, const PromptOptions&) {
    const InterruptCatcher catcher;
    const int prompts = promptDescriptor(answers);
    Keyboard keyboard(STDIN_FILENO, prompts, KEPT_LENGTH);
    std::string line;
    for (;;) {
        const Keyboard::Status status = keyboard.Next(PROMPT, line);
        if (status == Keyboard::Status::Failed) return PromptEnd::InputLost;
        if (status == Keyboard::Status::Blank) continue;
        // The shell's prompt, or the next one of ours, begins on a line of its own.
        if (status != Keyboard::Status::Line && prompts >= 0) writeAll(prompts, "\n");
        if (status == Keyboard::Status::Cancelled) continue;
        if (status == Keyboard::Status::End) return PromptEnd::Ended;
        const Session::Outcome outcome = session.Run(line);
        if (outcome == Session::Outcome::OutputLost) return PromptEnd::OutputLost;
        if (outcome == Session::Outcome::Ended) return PromptEnd::Ended;
    }
}
