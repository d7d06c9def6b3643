// SPDX-License-Identifier: MIT
//
// The functions that a person defines: from text to a definition.
#include "Calculator.h"
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

bool ZqCalculator::IsValidArgList(const char* text) {
    const std::string list = text;
    size_t start = 0;
    while (start <= list.size()) {
        const size_t comma = std::min(list.find(',', start), list.size());
        const std::string piece = list.substr(start, comma - start);
        if (!IsValidName(piece)) {
            Fail("** ERROR: invalid argument: %s **\n", {piece});
            return false;
        }
        start = comma + 1;
    }
    return true;
}

int ZqCalculator::DefineFunction(const char* text, bool isKept) {
    DefinitionText parts;
    std::string definition = text;
    if (definition.find(CVSstr) == std::string::npos) markConversion(definition);
    definition = withoutBlanks(definition.c_str());
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
    const int state = AddDefinition(parts.name, parts.parameters, parts.body, isKept);
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

int ZqCalculator::AddDefinition(const std::string& name, std::string& parameters, const std::string& body,
                                bool isKept) {
    target = vars.first;
    int state = scanner.ScanBody(body, name, splitAtCommas(parameters), isKept);
    if (state == 0) state = VerifyTermsSyntax();
    if (state == 0) state = CheckNamesInBody();
    if (state != 0) return STATUS_ERROR;
    if (!terms.first) return Fail("** ERROR: can't define an empty function **\n");
    const Function* function = funcs.AddFunction(name.c_str(), parameters.data(), &terms, isKept);
    if (!function) return Fail("** ERROR: '%s' is a built-in predefined function **\n", {name});
    work.ordered += static_cast<uint64_t>(terms.count);
    const std::string definition = ListedText(*function);
    if (interrupted) return STATUS_ERROR;
    ShowDefinition(definition);
    return STATUS_MESSAGE;
}

std::string ZqCalculator::ListedText(const Function& function) {
    return function.ToString([this] {
        work.listed += 1;
        return spending.Spend(Cost::LISTED_TERM) == 0;
    });
}

// The definition as one line. What does not fit is cut in front of the line feed.
void ZqCalculator::ShowDefinition(std::string text) {
    text.resize(std::min(text.size(), sizeof message - 2));
    text += '\n';
    memcpy(message, text.c_str(), text.size() + 1);
}
