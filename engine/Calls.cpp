// SPDX-License-Identifier: MIT
#include "Evaluator.h"

#include "Builtins.h"
#include "Functions.h"
#include "Helpers_String.h"

#include <cstring>

// name(term,term,...) from the name on.
bool Evaluator::Call::Read(node* functionTerm) {
    function = functionTerm;
    open = function->next;
    if (!open || open->type != OP_OPEN) return false;
    for (node* term = open->next; term && !isOp(term->type); term = term->next) {
        arguments.push_back(term);
        term = term->next;
        if (!term || (term->type != OP_COMMA && term->type != OP_CLOSE)) return false;
        close = term;
        if (term->type == OP_CLOSE) return true;
    }
    return false;
}

node* Evaluator::ProcFunction(node* functionTerm) {
    Call call;
    if (!call.Read(functionTerm)) return functionTerm->next;
    for (char* c = functionTerm->text; *c; c++) *c = lowerCase(*c);
    const auto number = static_cast<int32_t>(call.arguments.size());
    const Function* function = funcs.FunctionExists(call.Name(), number);
    if (number != 1) return Expand(call, function);
    const qfloat* x = ArgumentOf(call);
    if (!x) return nullptr;
    // Once a predefined function is deleted its name is free, and the person's own function counts.
    const bool isOwn = function && function->body;
    const Builtin* builtin = isOwn ? nullptr : findBuiltin(call.Name());
    return builtin ? CallBuiltin(call, *builtin, *x) : Expand(call, function);
}

// The value of the only argument, or null with a message.
const qfloat* Evaluator::ArgumentOf(const Call& call) {
    const node* argument = call.arguments[0];
    const qfloat* value = KnownValue(argument);
    return value ? value : (RefuseArgument(argument, call.Name()), nullptr);
}

int Evaluator::RefuseArgument(const node* argument, const char* name) {
    if (!argument->text)
        return outcome.FailAt(argument, "** ERROR 5: invalid argument in function %s **\n", {name});
    return outcome.FailAt(argument, "** ERROR 5: invalid argument '%s' in function %s **\n",
                          {argument->text, name});
}

// The argument becomes the result; the evaluator removes the parentheses that are left around it.
node* Evaluator::CallBuiltin(const Call& call, const Builtin& builtin, const qfloat x) {
    qfloat value = {};
    const int state = Compute(builtin, call.Name(), x, value);
    if (state != 0) return nullptr;
    node* argument = call.open->next;
    argument->BecomeNumber(value);
    statement.terms.Del(call.function);
    return call.open;
}

int Evaluator::Compute(const Builtin& builtin, const char* name, const qfloat x, qfloat value) {
    noteOverflow(x);
    if (checkMathError(name, outcome.message) != 0) return STATUS_ERROR;
    if (computeBuiltin(builtin, name, x, value, *this) != 0) return STATUS_ERROR;
    return checkMathError(name, outcome.message) == 0 ? 0 : STATUS_ERROR;
}

int Evaluator::SuspectCircle(const Caller& caller) {
    return outcome.FailAt(caller.place, "** ERROR 5.1: circular function suspected: %s **\n", {caller.name});
}

int Evaluator::CheckCall(const Function* function, const Caller& caller, int32_t level) {
    if (level > WorkLimit::CALL_LEVEL) return SuspectCircle(caller);
    if (function && function->body) return 0;
    return outcome.FailAt(caller.place, "** Unrecognized function: %s **\n", {caller.name});
}

// For a body that comes into a statement of so many terms.
int Evaluator::PayForBody(const Function& function, const Caller& caller, int32_t terms) {
    const int32_t number = function.body->count;
    if (terms + number > WorkLimit::TERMS || longTexts > WorkLimit::LONG_TEXTS) return SuspectCircle(caller);
    work.copied += static_cast<uint64_t>(number);
    return spending.Spend(static_cast<uint64_t>(number) * Cost::COPIED_TERM);
}

// Puts the body in front of the call's ')', with the arguments in the places of the parameters, and its
// operators before those that are still to be applied. An argument's own name is no parameter any more.
int Evaluator::CopyBody(const Call& call, const Function& function) {
    bodyTerms.clear();
    for (const node* term = function.body->first; term; term = term->next) {
        const int32_t parameter = function.parameters[bodyTerms.size()];
        const node* source = parameter < 0 ? term : call.arguments[static_cast<size_t>(parameter)];
        node* copy = statement.terms.AddCopy(source, call.close);
        bodyTerms.push_back(copy);
        copy->level = term->level + call.open->level;
        copy->start = source->start;
        copy->length = source->length;
        if (!isLongText(copy->text)) continue;
        if (copy->value)
            copy->DropText(); // it is known by its value
        else
            longTexts += strlen(copy->text);
        if (longTexts > WorkLimit::LONG_TEXTS) return SuspectCircle(call);
    }
    const auto& order = function.order;
    for (auto op = order.rbegin(); op != order.rend(); ++op) {
        operators.push_back(bodyTerms[static_cast<size_t>(*op)]);
    }
    return 0;
}

// Replaces the call by its value, or the arguments by the body. Every operator that is tighter or deeper than
// the call has been applied, so what comes next is the body, then the call's own parenthesis, then the rest
// as it was ordered.
node* Evaluator::Expand(const Call& call, const Function* function) {
    if (CheckCall(function, call, call.open->level) != 0 || !function || !function->body) return nullptr;
    const Ending ending = RunStatementsCall(call, *function);
    if (ending != Ending::NoProgram) return ending == Ending::Value ? call.open : nullptr;
    if (PayForBody(*function, call, statement.terms.count) != 0) return nullptr;
    operators.push_back(call.open);
    const node* lastArgument = call.close->prev;
    if (CopyBody(call, *function) != 0) return nullptr;
    for (node* body = lastArgument->next; body->prev != call.open;) statement.terms.Del(body->prev);
    statement.reorder = 1;
    node* before = statement.terms.Del(call.function);
    return before ? before : statement.terms.first;
}
