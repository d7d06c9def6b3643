// SPDX-License-Identifier: MIT
//
// The calls of functions whose bodies have programs. They count and cost what putting the bodies into the
// statement would, and end with the same messages.
#include "Builtins.h"
#include "Evaluator.h"
#include "Functions.h"
#include "units.h"

#include <algorithm>
#include <memory>

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
    const node* const term = leaf.term;
    if (term->type != TERM_NAME) return {term->value, nullptr};
    const node* const variable = term->text ? variables.Find(term->text, leaf.variable) : nullptr;
    return {variable ? variable->value : nullptr, term};
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

// The name of a unit that stands in the body or as an argument; null for another argument.
const node* Evaluator::UnitAt(const Program& program, const Frame& current, Program::Place place) {
    const Program::Leaf& leaf = program.leaves[static_cast<size_t>(~place)];
    return leaf.parameter < 0 ? leaf.term : current.arguments[static_cast<size_t>(leaf.parameter)].name;
}

// A factor that is known costs what finding it did.
int Evaluator::FactorOf(const Program::Conversion& units, const node* from, const node* to, qfloat value) {
    if (!units.isFixed) return ConversionFactor(from, to, value);
    if (units.version != units_version()) {
        units.charges.clear();
        if (ConversionFactor(from, to, units.factor, &units.charges) != 0) return STATUS_ERROR;
        units.version = units_version();
    } else {
        if (spending.Spend(Cost::EXPENSIVE) != 0) return STATUS_ERROR;
        for (const uint64_t charge : units.charges) {
            if (spending.SpendForUnits(charge) != 0) return STATUS_ERROR;
        }
    }
    qmov(units.factor, value);
    return 0;
}

Evaluator::Ending Evaluator::RunConversion(const Program& program, const Program::Step& step,
                                           const Frame& current, qfloat value) {
    const Program::Conversion& units = program.conversions[static_cast<size_t>(step.right)];
    const node* const from = UnitAt(program, current, units.from);
    const node* const to = UnitAt(program, current, units.to);
    if (!from || !to) return Ending::NoProgram; // a number may have a text, as 0x10
    qfloat factor = {};
    if (FactorOf(units, from, to, factor) != 0) return Ending::Failed;
    if (step.left == Program::NOWHERE) return qmov(factor, value), Ending::Value;
    const Operand converted = OperandAt(program, current, step.left);
    const int state = RunPair(OP_MULTIPLY, converted, {&factor, nullptr}, value);
    return state == 0 ? Ending::Value : Ending::Failed;
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
        if (step.code == OP_CONVERT) {
            const Ending ending = RunConversion(program, step, current, to.number);
            if (ending != Ending::Value) return ending;
        } else if (RunPair(step.code, OperandAt(program, current, step.left),
                           OperandAt(program, current, step.right), to.number) != 0) {
            return Ending::Failed;
        }
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
    for (const node* argument : call.arguments)
        frame.arguments.push_back({KnownValue(argument), argument->type == TERM_NAME ? argument : nullptr});
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
