// SPDX-License-Identifier: MIT
//
// The functions that a person defines: from text to a definition, and from a call to the terms of its body.
#include "Call.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cstring>

namespace {

struct DefinitionText {
    std::string name;
    std::string parameters;
    std::string body;
};

std::string withoutBlanks(const char* text) {
    std::string out;
    for (; *text; text++) {
        if (!strchr(" \t\r\n", *text)) out += *text;
    }
    return out;
}

// name()=body or name(parameters)=body. False when a part is missing; the parts before it are read.
bool splitDefinition(const std::string& text, DefinitionText& parts) {
    const size_t open = text.find('(');
    if (open == 0 || open == std::string::npos) return false;
    const size_t close = text.find(')', open);
    if (close == std::string::npos || text.compare(close, 2, ")=") != 0) return false;
    parts.name = text.substr(0, open);
    parts.parameters = text.substr(open + 1, close - open - 1);
    parts.body = text.substr(close + 2);
    return !parts.body.empty();
}

Scanner::Names splitAtCommas(const std::string& text) {
    Scanner::Names pieces;
    size_t start = 0;
    while (start < text.size()) {
        const size_t comma = std::min(text.find(',', start), text.size());
        pieces.insert(text.substr(start, comma - start));
        start = comma + 1;
    }
    return pieces;
}

} // namespace

int ZqCalculator::DefineFunction(const char* text) {
    DefinitionText parts;
    const std::string definition = withoutBlanks(text);
    if (!splitDefinition(definition, parts)) {
        return Fail("** ERROR: can't define an empty function **\n");
    }
    if (parts.name.size() >= MAX_NAME) {
        return Fail("** ERROR: %i max characters for function names **\n", {std::to_string(MAX_NAME)});
    }
    if (!IsValidVariable(parts.name.c_str())) {
        return Fail("** ERROR: invalid function name: %s **\n", {parts.name});
    }
    ProcessStringEuropean(parts.parameters.data());
    if (!parts.parameters.empty() && !IsValidArgList(parts.parameters.c_str())) return STATUS_ERROR;
    const int state = AddDefinition(parts.name, parts.parameters, parts.body);
    DiscardNewTarget(); // of an assignment in the body
    terms.Clear();
    return state;
}

// A name with a '=' in it never computes, and read again the definition would be another: x=y is an assignment.
int ZqCalculator::CheckNamesInBody() {
    for (const node* term = terms.first; term; term = term->next) {
        if (term->type != TERM_NAME || !term->text || !strchr(term->text, '=')) continue;
        return Fail("** ERROR 7: invalid term = %s **\n", {term->text});
    }
    return 0;
}

int ZqCalculator::AddDefinition(const std::string& name, std::string& parameters, const std::string& body) {
    target = vars.first;
    int state = scanner.ScanBody(body, name, splitAtCommas(parameters));
    if (state == 0) state = VerifyTermsSyntax();
    if (state == 0) state = CheckNamesInBody();
    if (state != 0) return STATUS_ERROR;
    if (!terms.first) return Fail("** ERROR: can't define an empty function **\n");
    const Function* function = funcs.AddFunction(name.c_str(), parameters.data(), &terms);
    if (!function) return Fail("** ERROR: '%s' is a built-in predefined function **\n", {name});
    work.ordered += static_cast<uint64_t>(terms.count);
    ShowDefinition(function->ToString());
    return STATUS_MESSAGE;
}

// For a command that changes nothing, because it can be interrupted at each term.
std::string ZqCalculator::ListedText(const Function& function) {
    return function.ToString([this] {
        work.listed += 1;
        return Spend(Cost::LISTED_TERM) == 0;
    });
}

// The definition as one line. What does not fit is cut in front of the line feed.
void ZqCalculator::ShowDefinition(std::string text) {
    text.resize(std::min(text.size(), sizeof message - 2));
    text += '\n';
    memcpy(message, text.c_str(), text.size() + 1);
}

// --- Expanding a call ---

static bool isLong(const char* text) {
    return text && strnlen(text, WorkLimit::LONG_TEXT + 1) > WorkLimit::LONG_TEXT;
}

// A number is known by its value: the digits of a long one are left behind.
static node* copyTerm(const node* term, int32_t level) {
    node* copy = new node;
    copy->type = term->type;
    copy->level = level;
    const bool isLongNumber = term->type == TERM_NUMBER && term->value && isLong(term->text);
    if (term->text && !isLongNumber) copy->text = StrDuplicate(term->text);
    if (term->type == TERM_NUMBER && term->value) copy->SetValue(*term->value);
    return copy;
}

int ZqCalculator::CheckCall(const Call& call, const Function* function) {
    if (!function || !function->body) return Fail("** Unrecognized function: %s **\n", {call.Name()});
    const auto number = static_cast<uint64_t>(function->body->count);
    if (terms.count + function->body->count > WorkLimit::TERMS || longTexts > WorkLimit::LONG_TEXTS) {
        return Fail("** ERROR 5.1: circular function suspected: %s **\n", {call.Name()});
    }
    work.copied += number;
    return Spend(number * Cost::COPIED_TERM);
}

// Puts the body in front of the call's ')', with the arguments in the places of the parameters, and its operators
// before those that are still to be applied. An argument's own name is no parameter any more.
int ZqCalculator::CopyBody(const Call& call, const Function* function) {
    bodyTerms.clear();
    for (const node* term = function->body->first; term; term = term->next) {
        const int32_t parameter = function->parameters[bodyTerms.size()];
        const node* source = parameter < 0 ? term : call.arguments[static_cast<size_t>(parameter)];
        node* copy = terms.Insert(copyTerm(source, term->level + call.open->level), call.close);
        bodyTerms.push_back(copy);
        if (isLong(copy->text)) longTexts += strlen(copy->text);
        if (longTexts > WorkLimit::LONG_TEXTS) {
            return Fail("** ERROR 5.1: circular function suspected: %s **\n", {call.Name()});
        }
    }
    const auto& order = function->order;
    for (auto op = order.rbegin(); op != order.rend(); ++op)
        expanded.push_back(bodyTerms[static_cast<size_t>(*op)]);
    return 0;
}

// Replaces the arguments by the body. Every operator that is tighter or deeper than the call has been applied, so
// what comes next is the body, then the call's own parenthesis, then the rest as it was ordered.
node* ZqCalculator::ExpandFunction(const Call& call) {
    if (call.open->level > WorkLimit::CALL_LEVEL) {
        Fail("** ERROR 5.1: circular function suspected: %s **\n", {call.Name()});
        return nullptr;
    }
    const Function* function = funcs.FunctionExists(call.Name(), static_cast<int32_t>(call.arguments.size()));
    if (CheckCall(call, function) != 0) return nullptr;
    node* lastArgument = call.close->prev;
    expanded.push_back(call.open);
    if (CopyBody(call, function) != 0) return nullptr;
    for (node* body = lastArgument->next; body->prev != call.open;) terms.Del(body->prev);
    reorder = 1;
    node* before = terms.Del(call.function);
    return before ? before : terms.first;
}
