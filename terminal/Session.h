// SPDX-License-Identifier: MIT
//
// One run of the terminal console: entries go to the engine, what it answers goes to the right stream.
#pragma once

#include "AnswerStream.h"
#include "Calculator.h"

#include <functional>
#include <string>
#include <string_view>
#include <utility>

class Session {
public:
    enum class Outcome {
        Answered,    // the entry was evaluated or its command carried out
        Refused,     // the entry was answered with an error
        Ended,       // the entry was the exit command
        Interrupted, // Ctrl-C came: it ended the entry or what the entry asked for, or was too late for that
        OutputLost   // the answer could not be written; errno says why
    };

    // How entries are evaluated and answered.
    struct Style {
        bool quiet = false;    // values alone: no names, nothing for messages and echoed texts
        bool last = false;     // of all values only the last one, which End writes; no other text
        bool preview = false;  // as a preview: within its limit of work, and nothing is stored
        bool json = false;     // an object for each statement (Json.h), errors too, and nothing else
        bool plain = false;    // no escape sequence is written, for the command clear either
        bool inBlocks = false; // answers are collected and written in blocks: by Flush at the latest, and
                               // before an error, a wait or another program
    };

    // Answers are written to the descriptor `out`, errors to `err`. Both stay the caller's.
    Session(int out, int err, Style how, System& calls = System::Real());
    Session(int out, int err) : Session(out, err, Style()) {}

    // Where the next entry comes from: the line of the input or the number of the argument, and what is
    // written in front of an error, such as "line 7: ".
    void SetPlace(size_t number, const std::string& text = "") {
        line = number;
        place = text;
    }

    // Makes of an error's line, as it would be written, what is written instead, while the calculator still
    // knows the entry.
    using ErrorForm = std::function<std::string(const std::string& line)>;
    void SetErrorForm(ErrorForm form) { errorForm = std::move(form); }

    // Whether answers and errors are written in colors (Colors.h).
    void SetColors(bool ofAnswers, bool ofErrors) {
        colorsAnswers = ofAnswers;
        colorsErrors = ofErrors;
    }

    // Shows a text that is no answer of the engine. False when that failed; errno says why.
    bool Show(std::string_view text);

    // Evaluates one entry without line end and shows what the engine answers. An entry that is too long or no
    // text is refused without reaching the engine. Meanwhile Ctrl-C interrupts the entry instead of the
    // program.
    Outcome Run(std::string_view entry);

    // The same for a caller that catches Ctrl-C (Interrupt.h).
    Outcome RunCaught(std::string_view entry);

    // Shows an error about an entry that does not reach the engine.
    Outcome RefuseEntry(std::string_view entry, std::string_view message);

    // Answers an entry that Ctrl-C came for before it ran.
    Outcome GiveUp();

    // Writes the answers collected so far. False when that failed; errno says why.
    bool Flush() { return answers.Flush(); }

    // Writes what was held back too.
    bool End();

    // The calculator that evaluates the entries.
    ZqCalculator& Calculator() { return calc; }

    // Whether any entry so far was refused or has an answer beyond the range.
    bool AnyRefused() const { return anyRefused; }

    // Carries out what the engine asks of its front end with this message (ConsoleCommand.h): a terminal is
    // cleared where it understands escape sequences, the service is that at TALLYQUILL_QUERY_URL (Query.h),
    // an entry that was to be replaced is shown. Any other command is refused.
    Outcome CarryOut(std::string_view message);

private:
    Outcome Evaluate(std::string_view entry);
    Outcome EvaluateStatements(std::string_view entry);
    Outcome EvaluateStatement(std::string_view statement);
    Outcome Refuse(std::string_view message);
    Outcome Clear();
    Outcome TypeOut(std::string_view text, long wait);
    Outcome Convert(std::string_view query);
    Outcome OpenWebPage();
    Outcome AnswerEntry();
    Outcome AnswerPreview(int status);
    Outcome AnswerValue();
    Outcome Remark(std::string_view text);
    Outcome Answer(std::string_view text);
    std::string ValueText(std::string_view answer) const;

    System& system;
    AnswerStream answers;
    int errors;
    Style style;
    size_t line = 0;
    std::string place;
    ErrorForm errorForm;
    std::string lastValue; // held back, as it will be written
    std::string shown;     // with objects: what was shown, or the error
    bool colorsAnswers = false;
    bool colorsErrors = false;
    bool anyRefused = false;
    ZqCalculator calc;
};
