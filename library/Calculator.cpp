// SPDX-License-Identifier: MIT
#include "tallyquill/Calculator.h"

#include "Calculator.h"
#include "EntryText.h"
#include "units.h"

#include <locale.h> // NOLINT(modernize-deprecated-headers): it has the locales of threads
#include <stdexcept>
#if __has_include(<xlocale.h>)
#include <xlocale.h> // where macOS has them
#endif

namespace tallyquill {

namespace {

// The calling thread's numbers have a point while it lives, as the engine needs it.
class PointForThisThread {
public:
    PointForThisThread() : own(newlocale(LC_ALL_MASK, "C", nullptr)), before(uselocale(own)) {}
    ~PointForThisThread() {
        uselocale(before);
        if (own != nullptr) freelocale(own);
    }
    PointForThisThread(const PointForThisThread&) = delete;
    PointForThisThread& operator=(const PointForThisThread&) = delete;

private:
    locale_t own;
    locale_t before;
};

// Without the line feed that a text of the engine may end with.
std::string withoutLineEnd(std::string_view text) {
    if (!text.empty() && text.back() == '\n') text.remove_suffix(1);
    return std::string(text);
}

void takeBackDefinitions() {
    while (const Function* const function = funcs.Get(0)) funcs.DeleteFunction(function);
    unitFreeMemory();
    units_clear_exception();
}

Answer errorAnswer(std::string_view message) {
    Answer answer;
    answer.status = Answer::Status::Error;
    answer.text = withoutLineEnd(message);
    return answer;
}

// What the engine has answered. A line "name = value" shows a value.
Answer answerOf(const Outcome& outcome, int status) {
    if (status == STATUS_ERROR) {
        Answer answer = errorAnswer(outcome.message);
        if (outcome.errorRange.start >= 0) {
            answer.start = static_cast<size_t>(outcome.errorRange.start);
            answer.length = static_cast<size_t>(outcome.errorRange.length);
        }
        return answer;
    }
    Answer answer;
    if (status == STATUS_RESULT) {
        const std::string_view line = outcome.resultLine;
        answer.status = Answer::Status::Value;
        answer.name = line.substr(0, line.find(" = "));
        answer.text = withoutLineEnd(line.substr(answer.name.size() + 3));
        answer.value = Real(outcome.result);
        return answer;
    }
    answer.status = status == STATUS_COMMAND ? Answer::Status::Command : Answer::Status::Message;
    answer.text = withoutLineEnd(outcome.message);
    return answer;
}

} // namespace

class Calculator::Engine {
public:
    Engine() {
        if (isAlive) throw std::logic_error("tallyquill: one calculator at a time");
        const PointForThisThread point;
        takeBackDefinitions();
        calc.InitializeFunctionsAndVars();
        static_cast<EntrySettings&>(calc) = standardSettings();
        calc.history.SetMaxEntries(findSetting("histsz")->standard);
        calc.traced = false;
        isAlive = true;
    }
    ~Engine() {
        takeBackDefinitions();
        isAlive = false;
    }
    Engine(const Engine&) = delete;
    Engine& operator=(const Engine&) = delete;

    Answer Run(std::string_view line, bool quick) {
        const EntryFault fault = checkEntry(line);
        if (fault != EntryFault::None) return errorAnswer(faultMessage(fault));
        const PointForThisThread point;
        Answer answer = answerOf(calc, calc.ProcessEntry(line, quick));
        if (!quick) answer.echo = withoutLineEnd(calc.echoText);
        merror = 0; // it has told what failed
        return answer;
    }

    ZqCalculator calc;

private:
    static inline bool isAlive = false; // one at a time
};

Calculator::Calculator() : engine(std::make_unique<Engine>()) {}
Calculator::~Calculator() = default;

Answer Calculator::Evaluate(std::string_view line) {
    return engine->Run(line, false);
}

Answer Calculator::Preview(std::string_view line) {
    return engine->Run(line, true);
}

void Calculator::SetInterruptCheck(bool (*isInterrupted)()) {
    engine->calc.interruptCheck = isInterrupted;
}

} // namespace tallyquill
