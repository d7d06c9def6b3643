// SPDX-License-Identifier: MIT
#include "Definitions.h"

#include "Functions.h"
#include "Helpers_String.h"
#include "Syntax.h"

#include <algorithm>
#include <cstring>
#include <vector>

namespace {

struct DefinitionText {
    std::string name;
    std::string parameters;
    std::string body;
    size_t bodyStart = 0;
};

// name()=body or name(parameters)=body. False when a part is missing; the parts before it are read.
bool splitDefinition(const std::string& text, DefinitionText& parts) {
    const size_t open = text.find('(');
    if (open == 0 || open == std::string::npos) return false;
    const size_t close = text.find(')', open);
    if (close == std::string::npos || text.compare(close, 2, ")=") != 0) return false;
    parts.name = text.substr(0, open);
    parts.parameters = text.substr(open + 1, close - open - 1);
    parts.bodyStart = close + 2;
    parts.body = text.substr(parts.bodyStart);
    return !parts.body.empty();
}

std::vector<std::string> splitAtCommas(const std::string& text) {
    std::vector<std::string> pieces;
    for (size_t start = 0; start <= text.size();) {
        const size_t comma = std::min(text.find(',', start), text.size());
        pieces.push_back(text.substr(start, comma - start));
        start = comma + 1;
    }
    return pieces;
}

} // namespace

bool Definitions::CheckParameters(const std::string& list) {
    for (const std::string& name : splitAtCommas(list)) {
        if (isValidName(name)) continue;
        outcome.Fail("** ERROR: invalid argument: %s **\n", {name});
        return false;
    }
    return true;
}

int Definitions::Define(const char* text, bool isKept) {
    DefinitionText parts;
    std::string definition = text;
    if (definition.find(CVSstr) == std::string::npos) markConversion(definition, settings.european);
    definition.erase(std::remove_if(definition.begin(), definition.end(), isBlank), definition.end());
    if (!splitDefinition(definition, parts)) {
        return outcome.Fail("** ERROR: can't define an empty function **\n");
    }
    if (parts.name.size() >= MAX_NAME) {
        return outcome.Fail("** ERROR: %i max characters for function names **\n",
                            {std::to_string(MAX_NAME)});
    }
    if (!isValidName(parts.name)) {
        return outcome.FailAt({0, static_cast<int32_t>(parts.name.size())},
                              "** ERROR: invalid function name: %s **\n", {parts.name});
    }
    if (settings.european) StrSwapChars(parts.parameters.data(), '.', ',');
    if (!parts.parameters.empty() && !CheckParameters(parts.parameters)) return STATUS_ERROR;
    statement.skipped = static_cast<int32_t>(parts.bodyStart);
    const int state = Add(parts.name, parts.parameters, parts.body, isKept);
    statement.DiscardNewTarget(); // of an assignment in the body
    statement.terms.Clear();
    return state;
}

// A name with a '=' in it never computes, and read again the definition would be another: x=y is an
// assignment.
int Definitions::CheckNamesInBody() {
    for (const node* term = statement.terms.first; term; term = term->next) {
        if (term->type != TERM_NAME || !term->text || !strchr(term->text, '=')) continue;
        return outcome.FailAt(term, "** ERROR 7: invalid term = %s **\n", {term->text});
    }
    return 0;
}

int Definitions::ReadBody(const std::string& body, const Scanner::Definition& definition) {
    int32_t operators = 0;
    if (scanner.ScanBody(body, definition) != 0 || variables.CheckNames() != 0 ||
        checkSyntax(statement.terms, outcome, work, operators) != 0)
        return STATUS_ERROR;
    return CheckNamesInBody();
}

int Definitions::Add(const std::string& name, std::string& parameters, const std::string& body, bool isKept) {
    const std::vector<std::string> names = splitAtCommas(parameters);
    Deq& terms = statement.terms;
    Scanner::Definition definition{name, {names.begin(), names.end()}, isKept};
    int state = ReadBody(body, definition);
    if (state != 0 && isKept) {
        // Where g was no function, the comma in g(1,<5) was part of a name.
        statement.DiscardNewTarget();
        definition.isKept = false;
        state = ReadBody(body, definition);
    }
    if (state != 0) return STATUS_ERROR;
    if (!terms.first) return outcome.Fail("** ERROR: can't define an empty function **\n");
    const Function* function = funcs.AddFunction(name.c_str(), parameters.data(), &terms, isKept);
    if (!function) return outcome.Fail("** ERROR: '%s' is a built-in predefined function **\n", {name});
    work.ordered += static_cast<uint64_t>(terms.count);
    return Show(*function);
}

std::string Definitions::TextOf(const Function& function) {
    return function.ToString([this] {
        work.listed += 1;
        return spending.Spend(Cost::LISTED_TERM) == 0;
    });
}

int Definitions::Show(const Function& function) {
    const std::string text = TextOf(function);
    return outcome.interrupted ? STATUS_ERROR : outcome.Tell(text.substr(0, TEXT_SIZE - 2) + "\n");
}
