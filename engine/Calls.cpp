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
    if (!value && argument->text) {
        outcome.FailAt(argument, "** ERROR 5: invalid argument '%s' in function %s **\n",
                       {argument->text, call.Name()});
    } else if (!value) {
        outcome.FailAt(argument, "** ERROR 5: invalid argument in function %s **\n", {call.Name()});
    }
    return value;
}

// The argument becomes the result; the evaluator removes the parentheses that are left around it.
node* Evaluator::CallBuiltin(const Call& call, const Builtin& builtin, const qfloat x) {
    noteOverflow(x);
    if (checkMathError(call.Name(), outcome.message) != 0) return nullptr;
    qfloat value = {};
    if (computeBuiltin(builtin, call.Name(), x, value, *this) != 0) return nullptr;
    node* argument = call.open->next;
    argument->type = TERM_NUMBER;
    argument->DropText();
    argument->SetValue(value);
    if (checkMathError(call.Name(), outcome.message) != 0) return nullptr;
    statement.terms.Del(call.function);
    return call.open;
}

static bool isLong(const char* text) {
    return text && strnlen(text, WorkLimit::LONG_TEXT + 1) > WorkLimit::LONG_TEXT;
}

// A number is known by its value: the digits of a long one are left behind.
static node* copyTerm(const node* term, int32_t level) {
    node* copy = new node;
    copy->type = term->type;
    copy->level = level;
    copy->start = term->start;
    copy->length = term->length;
    const bool isLongNumber = term->type == TERM_NUMBER && term->value && isLong(term->text);
    if (term->text && !isLongNumber) copy->text = strDuplicate(term->text);
    if (term->type == TERM_NUMBER && term->value) copy->SetValue(*term->value);
    return copy;
}

int Evaluator::SuspectCircle(const Call& call) {
    return outcome.FailAt(call.function, "** ERROR 5.1: circular function suspected: %s **\n", {call.Name()});
}

int Evaluator::PayForBody(const Call& call, const Function& function) {
    const int32_t number = function.body->count;
    if (statement.terms.count + number > WorkLimit::TERMS || longTexts > WorkLimit::LONG_TEXTS) {
        return SuspectCircle(call);
    }
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
        node* copy = statement.terms.Insert(copyTerm(source, term->level + call.open->level), call.close);
        bodyTerms.push_back(copy);
        if (isLong(copy->text)) longTexts += strlen(copy->text);
        if (longTexts > WorkLimit::LONG_TEXTS) return SuspectCircle(call);
    }
    const auto& order = function.order;
    for (auto op = order.rbegin(); op != order.rend(); ++op) {
        operators.push_back(bodyTerms[static_cast<size_t>(*op)]);
    }
    return 0;
}

// Replaces the arguments by the body. Every operator that is tighter or deeper than the call has been
// applied, so what comes next is the body, then the call's own parenthesis, then the rest as it was ordered.
node* Evaluator::Expand(const Call& call, const Function* function) {
    if (call.open->level > WorkLimit::CALL_LEVEL) return SuspectCircle(call), nullptr;
    if (!function || !function->body)
        return outcome.FailAt(call.function, "** Unrecognized function: %s **\n", {call.Name()}), nullptr;
    if (PayForBody(call, *function) != 0) return nullptr;
    operators.push_back(call.open);
    const node* lastArgument = call.close->prev;
    if (CopyBody(call, *function) != 0) return nullptr;
    for (node* body = lastArgument->next; body->prev != call.open;) statement.terms.Del(body->prev);
    statement.reorder = 1;
    node* before = statement.terms.Del(call.function);
    return before ? before : statement.terms.first;
}
