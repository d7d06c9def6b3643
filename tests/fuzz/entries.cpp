// SPDX-License-Identifier: MIT
//
// Sequences of entries, a line each: "~" begins a preview, "@" and two characters change a setting, anything
// else is a full entry. It is previewed before, as while it is typed.
#include "DefinitionRecords.h"
#include "DefinitionsFile.h"
#include "calculators.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

constexpr size_t MOST_STEPS = 16;

struct Step {
    enum Kind { ENTRY, PREVIEW, SETTING } kind;
    std::string text;
    bool isInterrupted = false;
};

std::vector<Step> stepsOf(Input input) {
    std::vector<Step> steps;
    while (!input.IsOver() && steps.size() < MOST_STEPS) {
        std::string line = input.Line();
        const char first = line.empty() ? '\0' : line[0];
        if (first != '~' && first != '@') {
            steps.push_back({Step::ENTRY, line});
        } else {
            steps.push_back({first == '~' ? Step::PREVIEW : Step::SETTING, line.substr(1)});
        }
    }
    return steps;
}

// The first character tells the setting, the second its value.
void changeSetting(ZqCalculator& calc, const std::string& text) {
    std::vector<const Setting*> rows;
    for (const Setting& setting : SETTINGS) {
        if (setting.entry.field.index() != 0) rows.push_back(&setting);
    }
    if (text.size() < 2) return;
    const Setting& setting = *rows[static_cast<uint8_t>(text[0]) % rows.size()];
    const int byte = static_cast<uint8_t>(text[1]);
    const int value =
        setting.kind == Setting::CHARACTER ? byte : setting.least + byte % (setting.most - setting.least + 1);
    if (!setting.IsPossible(value)) return;
    if (setting.kind == Setting::CHARACTER && !groupingMarkFault(value).empty()) return;
    setting.Apply(value, calc);
}

// All that later entries see.
std::string stateOf(const ZqCalculator& calc) {
    std::string state = definitionsText(calc) + calc.lastAnswer + '|' + calc.PlainAnswer() + '|';
    for (const Setting& setting : SETTINGS) state += std::to_string(setting.ValueIn(calc)) + ' ';
    return state;
}

void checkAnswer(const ZqCalculator& calc, int status, const std::string& line) {
    require(status >= STATUS_ERROR && status <= STATUS_COMMAND, "a status is one of the four", line);
    if (status == STATUS_ERROR)
        require(std::strncmp(calc.message, "** ", 3) == 0, "an error says so", calc.message);
    const size_t length = std::max(line.size(), calc.entryLine.size());
    const TextRange range = calc.errorRange;
    if (range.start >= 0)
        require(range.length >= 0 && static_cast<size_t>(range.start + range.length) <= length,
                "what an error is about stands in the entry", line);
}

// With 100 figures, typed again, it is the same to the last of them.
void checkTypedAgain(ZqCalculator& calc) {
    if (calc.overflowed) return;
    char shown[TEXT_SIZE];
    char again[TEXT_SIZE];
    qfloat value;
    qmov(calc.result, value);
    qtoascii(value, shown, 100, SCI_ALWAYS, 0);
    qfloat typed;
    std::string text = shown;
    if (text[0] == '-') text.erase(0, 1);
    const EntrySettings settings = calc;
    calc.european = calc.tenKey = false;
    require(calc.Str2Num(text.c_str(), typed) == 0, "a shown value is a number", text);
    static_cast<EntrySettings&>(calc) = settings;
    qtoascii(typed, again, 100, SCI_ALWAYS, 0);
    requireSame(text, again, "a value typed again is the same");
}

std::string exchanged(std::string text) {
    for (char& c : text) c = c == '.' ? ',' : c == ',' ? '.' : c;
    return text;
}

// A decimal comma mirrors the decimal point.
void checkMirror(ZqCalculator& calc, const std::string& line) {
    const bool european = calc.european;
    const int one = enter(calc, line, true);
    const std::string shown = calc.resultLine;
    calc.european = !european;
    const int other = enter(calc, exchanged(line), true);
    require(one == other, "a decimal comma changes no status", line + "\n" + calc.message);
    if (one == STATUS_RESULT) requireSame(exchanged(shown), calc.resultLine, "a decimal comma mirrors");
    calc.european = european;
}

std::string previewed(ZqCalculator& calc, const std::string& line) {
    const int status = enter(calc, line, true);
    checkAnswer(calc, status, line);
    return answerOf(calc, status);
}

// `isInterrupted`: it will be.
std::string entered(ZqCalculator& calc, const std::string& line, bool isInterrupted) {
    const std::string before = isInterrupted ? stateOf(calc) : "";
    const int status = enter(calc, line, false);
    checkAnswer(calc, status, line);
    std::string answer = answerOf(calc, status) + calc.echoText + '|' + calc.lastAnswer + '\n';
    if (status == STATUS_RESULT) checkTypedAgain(calc);
    if (isInterrupted) {
        const std::string after = stateOf(calc);
        const size_t history = before.find("### HISTORY");
        requireSame(before.substr(0, history), after.substr(0, history), "an interrupted entry is undone");
    }
    return answer;
}

// How a definition is shown that is typed, or kept from an earlier run.
std::string shownAgain(ZqCalculator& calc, const std::string& text, bool isKept) {
    const bool isDefined = calc.DefineFunction(text.c_str(), isKept) == STATUS_MESSAGE;
    require(isDefined || !isKept, "a shown definition can be typed", text + "\n" + calc.message);
    std::string shown = isDefined ? calc.message : "";
    if (!shown.empty() && shown.back() == '\n') shown.pop_back();
    return shown;
}

// A definition that is shown can be typed, and is the same then. What was typed where a function was unknown
// has to be typed so again: of rea(1,.) it makes other terms where rea may be a function.
void checkDefinitionsTypedAgain(ZqCalculator& calc) {
    calc.european = calc.tenKey = false;
    calc.interruptCheck = nullptr;
    std::vector<std::string> shown;
    for (const Function* function = funcs.Get(0); function; function = funcs.GetNext()) {
        if (function->body) shown.push_back(function->ToString());
    }
    for (const std::string& text : shown) {
        if (text.size() >= TEXT_SIZE - 1) continue;
        const std::string again = shownAgain(calc, text, true);
        if (again != text)
            requireSame(text, shownAgain(calc, text, false), "a definition typed again prints the same");
    }
}

// The answers of the full entries and what is there at the end. A run with previews notes the entries that
// are interrupted, and one without looks at what they leave.
std::string run(std::vector<Step>& steps, bool withPreviews) {
    const auto calc = newCalculator();
    std::string answers;
    for (Step& step : steps) {
        if (step.kind == Step::SETTING) {
            changeSetting(*calc, step.text);
            continue;
        }
        if (withPreviews) {
            requireSame(previewed(*calc, step.text), previewed(*calc, step.text), "a preview repeats itself");
            checkMirror(*calc, step.text);
        }
        if (step.kind != Step::ENTRY) continue;
        answers += entered(*calc, step.text, step.isInterrupted);
        step.isInterrupted = calc->interrupted;
    }
    answers += stateOf(*calc);
    // Front ends let no control character through: some are marks of the engine's own.
    const bool isTyped = std::none_of(steps.begin(), steps.end(), [](const Step& step) {
        return std::any_of(step.text.begin(), step.text.end(), isControl);
    });
    if (!withPreviews && isTyped) checkDefinitionsTypedAgain(*calc);
    return answers;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    std::vector<Step> steps = stepsOf(Input(data, size));
    const std::string answers = run(steps, true);
    requireSame(answers, run(steps, false),
                "the same entries have the same answers, and previews change none");
    return 0;
}
