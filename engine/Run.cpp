// SPDX-License-Identifier: MIT
//
// The calls of functions whose bodies have programs. They count and cost what putting the bodies into the
// statement would, and end with the same messages.
#include "Builtins.h"
#include "Evaluator.h"
#include "Functions.h"

#include <algorithm>
#include <memory>

Evaluator::Operand Evaluator::OperandOf(const node* term) {
    return {KnownValue(term), term->type == TERM_NAME ? term : nullptr};
}

namespace {

// What a name stands for does not change while the list of functions stays as it is.
void lookUp(const Program::Call& call) {
    if (call.version == funcs.Version()) return;
    call.version = funcs.Version();
    const size_t number = call.arguments.size();
    call.function = funcs.FunctionExists(call.name.c_str(), static_cast<int32_t>(number));
    const bool isOwn = call.function && call.function->body;
    call.builtin = number == 1 && !isOwn ? findBuiltin(call.name.c_str()) : nullptr;
}

bool isLongName(const node* term) {
    return term->type == TERM_NAME && isLongText(term->text);
}

} // namespace

Evaluator::Operand Evaluator::OperandAt(const Program& program, const Frame& current, Program::Place place) {
    if (place == Program::NOWHERE) return {&NO_OPERAND, nullptr};
    if (place >= 0) return current.registers[static_cast<size_t>(place)].operand;
    const Program::Leaf& leaf = program.leaves[static_cast<size_t>(~place)];
    if (leaf.parameter >= 0) return current.arguments[static_cast<size_t>(leaf.parameter)];
    return OperandOf(leaf.term);
}

// Counts an operator or a parenthesis.
int Evaluator::PayForOperator() {
    work.reduced++;
    return spending.Spend(Cost::OPERATOR);
}

int Evaluator::RunPair(int32_t code, const Operand& left, const Operand& right, qfloat value) {
    if (!left.value) return ValueOf(left.name), STATUS_ERROR;
    if (!right.value) return ValueOf(right.name), STATUS_ERROR;
    if (spending.Spend(extraWork(code, *left.value, *right.value)) != 0) return STATUS_ERROR;
    qclear(value);
    if (applyOperator(code, *left.value, *right.value, value, outcome) != 0) return STATUS_ERROR;
    if (merror == 0) return 0;
    checkMathError(getOp(code).text, outcome.message);
    return STATUS_ERROR;
}

// A call in the body of the current frame.
Evaluator::Ending Evaluator::RunCall(const Program& program, const Program::Call& call, Frame& current,
                                     Register& to) {
    lookUp(call);
    const char* const name = call.name.c_str();
    if (!current.inner) current.inner = std::make_unique<Frame>();
    Frame& next = *current.inner;
    const size_t number = call.arguments.size();
    next.arguments.resize(number);
    for (size_t i = 0; i < number; i++) next.arguments[i] = OperandAt(program, current, call.arguments[i]);
    const Operand& first = next.arguments[0];
    if (number == 1 && !first.value) return RefuseArgument(first.name, name), Ending::Failed;
    to.operand = {&to.number, nullptr};
    if (call.builtin)
        return Compute(*call.builtin, name, *first.value, to.number) == 0 ? Ending::Value : Ending::Failed;
    next.level = current.level + call.level;
    Operand result;
    const Ending ending = RunBody(call.function, {{}, name}, next, current.terms + call.terms, result);
    if (ending != Ending::Value) return ending;
    if (result.name)
        to.operand = result;
    else
        qmov(*result.value, to.number);
    return PayForOperator() == 0 ? Ending::Value : Ending::Failed; // the call's parenthesis again
}

int Evaluator::RunConversion(const Program& program, const Program::Step& step, const Frame& current,
                             qfloat value) {
    const Program::Conversion& units = program.conversions[static_cast<size_t>(step.right)];
    if (step.left == Program::NOWHERE) return ConversionFactor(units.from, units.to, value);
    qfloat factor;
    if (ConversionFactor(units.from, units.to, factor) != 0) return STATUS_ERROR;
    return RunPair(OP_MULTIPLY, OperandAt(program, current, step.left), {&factor, nullptr}, value);
}

// The body of a function, for a call in a statement of so many terms. The current frame has the call's level
// and arguments.
Evaluator::Ending Evaluator::RunBody(const Function* function, const Caller& caller, Frame& current,
                                     int32_t terms, Operand& result) {
    if (CheckCall(function, caller, current.level) != 0) return Ending::Failed;
    const Program& program = function->program;
    if (!program.Exists()) return Ending::NoProgram;
    if (PayForBody(*function, caller, terms) != 0) return Ending::Failed;
    current.terms = terms - 2 * static_cast<int32_t>(current.arguments.size());
    if (current.registers.size() < program.registers) current.registers.resize(program.registers);
    for (const Program::Step& step : program.steps) {
        if (PayForOperator() != 0) return Ending::Failed;
        if (step.code == OP_OPEN) continue;
        Register& to = current.registers[static_cast<size_t>(step.to)];
        if (step.code == TERM_FUNC) {
            const Ending ending =
                RunCall(program, program.calls[static_cast<size_t>(step.right)], current, to);
            if (ending != Ending::Value) return ending;
            continue;
        }
        to.operand = {&to.number, nullptr};
        const int state = step.code == OP_CONVERT
                              ? RunConversion(program, step, current, to.number)
                              : RunPair(step.code, OperandAt(program, current, step.left),
                                        OperandAt(program, current, step.right), to.number);
        if (state != 0) return Ending::Failed;
    }
    result = OperandAt(program, current, program.result);
    return Ending::Value;
}

// A call in the statement. Where it meets a function without a program, all begins anew by expanding.
Evaluator::Ending Evaluator::RunStatementsCall(const Call& call, const Function& function) {
    const bool anyLong = std::any_of(call.arguments.begin(), call.arguments.end(), isLongName);
    const node* const before = call.function->prev;
    const bool isBehindName = before && before->type == TERM_NAME; // it is told when the body has its value
    if (isExpanding || anyLong || isBehindName || !function.program.Exists()) return Ending::NoProgram;
    const WorkBudget budget = spending.budget;
    const WorkCounters counters = work;
    const int pending = merror;
    frame.level = call.open->level;
    frame.arguments.clear();
    for (const node* argument : call.arguments) frame.arguments.push_back(OperandOf(argument));
    Operand result;
    const Ending ending = RunBody(&function, call, frame, statement.terms.count, result);
    if (ending == Ending::NoProgram) {
        isExpanding = true;
        spending.budget = budget;
        work = counters;
        merror = pending;
    }
    if (ending != Ending::Value) return ending;
    // The parenthesis of a body of one term is removed at once where the call begins the statement.
    if (before || function.body->count > 1) {
        Trace();
        if (PayForOperator() != 0) return Ending::Failed;
    }
    PutInPlace(call, result);
    return Ending::Value;
}

// The result becomes the call's only argument.
void Evaluator::PutInPlace(const Call& call, const Operand& result) {
    node* const term = call.open->next;
    if (!result.name) {
        term->BecomeNumber(*result.value);
    } else if (result.name != term) {
        term->type = TERM_NAME;
        term->SetText(result.name->text);
        term->start = result.name->start;
        term->length = result.name->length;
    }
    while (term->next != call.close) statement.terms.Del(term->next);
    statement.terms.Del(call.function);
}
