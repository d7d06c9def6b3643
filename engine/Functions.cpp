// SPDX-License-Identifier: MIT
#include "Functions.h"

#include "Format.h"
#include "Helpers_String.h"
#include "Outcome.h"
#include "Syntax.h"

#include <algorithm>
#include <cstring>
#include <iterator>
#include <string_view>
#include <unordered_map>

CFunctionList funcs;

Function::~Function() {
    delete[] name;
    delete body;
}

// --- Definitions as text ---

namespace {

void appendNumber(std::string& text, const node* term) {
    if (term->text) {
        text += term->text;
    } else if (term->prev && term->prev->type == OP_UNIT_MARK) {
        // The one number that a source unit can be; digits would belong to what stands in front of it.
        text += '.';
    } else if (term->value && (*term->value)[1] >= OVERFLOW_EXPONENT) {
        // What the display shows for it cannot be read again; a number above the range can.
        text += qisneg(*term->value) ? "-1e9999" : "1e9999";
    } else if (term->value) {
        text += plainNumber(*term->value);
    }
}

void appendTerm(std::string& text, const node* term) {
    switch (term->type) {
    case TERM_NAME:
    case TERM_FUNC: text += term->text ? term->text : ""; break;
    case TERM_NUMBER: appendNumber(text, term); break;
    // A blank in front of the source unit keeps it apart from the number or name before it.
    case OP_UNIT_MARK: text += ' '; break;
    case OP_CONVERT: text += "->"; break;
    default: text += getOp(term->type).text;
    }
}

void addParameters(Function* function, char* argText) {
    while (argText && *argText && *argText != ',') {
        char* comma = strchr(argText, ',');
        if (comma) *comma = '\0';
        node* const parameter = function->args.AddOperand();
        parameter->SetText(argText);
        parameter->type = TERM_NAME;
        function->argCount++;
        argText = comma ? comma + 1 : nullptr;
    }
}

// Which term of the body stands for which parameter. Of two parameters of one name the first counts.
void bindParameters(Function* function) {
    std::unordered_map<std::string_view, int32_t> positions;
    int32_t position = 0;
    for (const node* name = function->args.first; name; name = name->next)
        positions.emplace(name->text, position++);
    for (const node* term = function->body->first; term; term = term->next) {
        const auto found =
            term->type == TERM_NAME && term->text ? positions.find(term->text) : positions.end();
        function->parameters.push_back(found == positions.end() ? -1 : found->second);
    }
}

void orderBody(Function* function) {
    std::unordered_map<const node*, int32_t> positions;
    for (const node* term = function->body->first; term; term = term->next)
        positions.emplace(term, static_cast<int32_t>(positions.size()));
    std::vector<node*> order;
    orderOperators(*function->body, order);
    for (const node* op : order) function->order.push_back(positions[op]);
}

} // namespace

std::string Function::ToString(const std::function<bool()>& mayGoOn) const {
    std::string text = name;
    text += '(';
    for (const node* parameter = args.first; parameter; parameter = parameter->next) {
        text += parameter->text;
        if (parameter->next) text += ',';
    }
    text += ')';
    if (!body) return text;
    text += '=';
    for (const node* term = body->first; term && (!mayGoOn || mayGoOn()); term = term->next) {
        appendTerm(text, term);
    }
    return text;
}

void Function::FuncToStr(char* out) const {
    copyText(out, ToString());
}

// --- The list ---

Function* CFunctionList::Find(const char* name, int32_t argCount, bool own, bool builtin) const {
    if (last.version != version || last.name != name) {
        const auto found = byName.find(lowerCased(name));
        last = {version, name, found == byName.end() ? nullptr : &found->second};
    }
    if (!last.namesakes) return nullptr;
    for (const auto& [number, function] : *last.namesakes) {
        visited++;
        if ((argCount == -1 || argCount == function->argCount) && (function->body ? own : builtin))
            return function;
    }
    return nullptr;
}

void CFunctionList::Insert(std::shared_ptr<Function> function, uint64_t number) {
    numbers.emplace(function.get(), number);
    byName[lowerCased(function->name)].emplace(number, function.get());
    if (!function->body) predefined.emplace(number, function.get());
    functions.emplace(number, std::move(function));
    version++;
    TabCompleteReset();
}

std::shared_ptr<Function> CFunctionList::Take(uint64_t number) {
    const auto place = functions.find(number);
    std::shared_ptr<Function> function = std::move(place->second);
    const auto namesakes = byName.find(lowerCased(function->name));
    namesakes->second.erase(number);
    if (namesakes->second.empty()) byName.erase(namesakes);
    predefined.erase(number);
    numbers.erase(function.get());
    functions.erase(place);
    version++;
    TabCompleteReset();
    return function;
}

// Registration compares names alone: the rule for names that begin with "log" answers look-ups and keeps
// these names from being defined.
Function* CFunctionList::AddFunction(const char* name, char* argText, const Deq* body, bool isKept) {
    auto function = std::make_shared<Function>();
    function->name = strDuplicate(name);
    addParameters(function.get(), argText);
    const Function* builtin = Find(name, function->argCount, false, true);
    if (isKept) {
        DeleteFunction(builtin);
        builtin = nullptr;
    } else if (body && !builtin) {
        const Function* answer = FunctionExists(name, function->argCount);
        if (answer && !answer->body) builtin = answer;
    }
    if (builtin) return nullptr;
    if (const Function* old = Find(name, function->argCount, true, false)) DeleteFunction(old);
    if (body) {
        function->body = new Deq;
        body->CopyTo(function->body);
        bindParameters(function.get());
        orderBody(function.get());
        function->program.Make(*function->body, function->parameters, function->order);
    }
    Function* const added = function.get();
    const uint64_t number = ++lastNumber;
    Insert(std::move(function), number);
    if (undo) undo->Add([this, number] { Take(number); });
    return added;
}

void CFunctionList::DeleteFunction(const Function* function) {
    const auto found = numbers.find(function);
    if (found == numbers.end()) return;
    const uint64_t number = found->second;
    const std::shared_ptr<Function> taken = Take(number);
    if (undo) undo->Add([this, taken, number] { Insert(taken, number); });
}

// The first of those that answer: a predefined function, for names that begin with "log", or one of the name.
Function* CFunctionList::FunctionExists(const char* name, int32_t argCount) const {
    Function* const named = FindByName(name, argCount);
    const bool isOwn =
        named && named->body && argCount != -1; // it could be defined only without predefined ones
    if (!strIsEqualNI(name, "log", 3) || isOwn) return named;
    for (const auto& [number, function] : predefined) {
        visited++;
        if (argCount == -1 || function->argCount == argCount)
            return named && numbers.at(named) < number ? named : function;
    }
    return named;
}

Function* CFunctionList::Get(int index) {
    current = 0;
    for (int i = 0; i < index && GetNext(); i++) continue;
    return GetNext();
}

// A deleted function needs no attention: those behind it have greater numbers.
Function* CFunctionList::GetNext() {
    const auto next = functions.upper_bound(current);
    current = next == functions.end() ? UINT64_MAX : next->first;
    return next == functions.end() ? nullptr : next->second.get();
}

void CFunctionList::TabCompleteReset() {
    tabIndex = 99 + static_cast<int32_t>(functions.size());
}

Function* CFunctionList::FindTabComplete(const char* prefix) {
    const auto count = static_cast<int32_t>(functions.size());
    const size_t length = strlen(prefix);
    tabIndex = tabIndex > count ? count - 1 : tabIndex - 1;
    for (auto place = std::next(functions.begin(), std::max(tabIndex + 1, 0)); tabIndex >= 0; tabIndex--) {
        Function* const function = (--place)->second.get();
        if (strIsEqualNI(function->name, prefix, length)) return function;
    }
    TabCompleteReset();
    return nullptr;
}
