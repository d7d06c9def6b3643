// SPDX-License-Identifier: MIT
#include "Functions.h"

#include "Calculator.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cstring>
#include <string_view>
#include <unordered_map>

CFunctionList funcs;

Function::~Function() {
    delete[] name;
    delete body;
}

// --- Definitions as text ---

static void appendNumber(std::string& text, const node* term) {
    if (term->text) {
        text += term->text;
    } else if (term->value && (*term->value)[1] >= OVERFLOW_EXPONENT) {
        // What the display shows for it cannot be read again; a number above the range can.
        text += qisneg(*term->value) ? "-1e9999" : "1e9999";
    } else if (term->value) {
        char digits[FORMAT_SIZE];
        qtoascii(*term->value, digits, 100, SCI_AUTO, '\0');
        text += digits;
    }
}

static void appendTerm(std::string& text, const node* term) {
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

std::string Function::ToString() const {
    std::string text = name;
    text += '(';
    for (const node* parameter = args.first; parameter; parameter = parameter->next) {
        text += parameter->text;
        if (parameter->next) text += ',';
    }
    text += ')';
    if (!body) return text;
    text += '=';
    for (const node* term = body->first; term; term = term->next) appendTerm(text, term);
    return text;
}

void Function::FuncToStr(char* out) const {
    const std::string text = ToString();
    const size_t length = std::min(text.size(), TEXT_SIZE - 1);
    memcpy(out, text.data(), length);
    out[length] = '\0';
}

// --- The list ---

CFunctionList::~CFunctionList() {
    EndChanges();
    for (Function* function : functions) delete function;
}

static void addParameters(Function* function, char* argText) {
    while (argText && *argText && *argText != ',') {
        char* comma = strchr(argText, ',');
        if (comma) *comma = '\0';
        function->args.Push(StrDuplicate(argText))->type = TERM_NAME;
        function->argCount++;
        argText = comma ? comma + 1 : nullptr;
    }
}

// Which term of the body stands for which parameter. Of two parameters of one name the first counts.
static void bindParameters(Function* function) {
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

// The key of the index by name: names are compared without their case.
static std::string folded(const char* name) {
    std::string key = name;
    for (char& c : key) c = LowerCase(c);
    return key;
}

void CFunctionList::Unindex(const Function* function) {
    const auto found = byName.find(folded(function->name));
    if (found == byName.end()) return;
    std::vector<Function*>& namesakes = found->second;
    namesakes.erase(std::remove(namesakes.begin(), namesakes.end(), function), namesakes.end());
    if (namesakes.empty()) byName.erase(found);
}

const std::vector<Function*>& CFunctionList::Namesakes(const char* name) const {
    static const std::vector<Function*> none;
    const auto found = byName.find(folded(name));
    return found == byName.end() ? none : found->second;
}

Function* CFunctionList::FindNamesake(const char* name, int32_t argCount, bool isPredefined) const {
    for (Function* candidate : Namesakes(name)) {
        if (argCount == candidate->argCount && isPredefined == (candidate->body == nullptr)) return candidate;
    }
    return nullptr;
}

void CFunctionList::Append(Function* function) {
    functions.push_back(function);
    byName[folded(function->name)].push_back(function);
    if (recording) changes.push_back({function, functions.size() - 1, true});
    TabCompleteReset();
}

// Registration compares names alone: the rule for names that begin with "log" answers look-ups and keeps
// these names from being defined.
Function* CFunctionList::AddFunction(const char* name, char* argText, const Deq* body) {
    Function* function = new Function;
    function->name = StrDuplicate(name);
    addParameters(function, argText);
    const Function* predefined = FindNamesake(name, function->argCount, true);
    if (body && !predefined) {
        const Function* answer = FunctionExists(name, function->argCount);
        if (answer && !answer->body) predefined = answer;
    }
    if (predefined) {
        delete function;
        return nullptr;
    }
    if (const Function* old = FindNamesake(name, function->argCount, false)) DeleteFunction(old);
    if (body) {
        function->body = new Deq;
        body->CopyTo(function->body);
        bindParameters(function);
    }
    Append(function);
    return function;
}

void CFunctionList::DeleteFunction(const Function* function) {
    const auto found = std::find(functions.begin(), functions.end(), function);
    if (found == functions.end()) return;
    const auto position = found - functions.begin();
    Unindex(function);
    if (recording)
        changes.push_back({*found, static_cast<size_t>(position), false});
    else
        delete *found;
    functions.erase(found);
    if (position <= current) current--; // GetNext goes on behind the deleted one
    TabCompleteReset();
}

Function* CFunctionList::FunctionExists(const char* name, int32_t argCount) const {
    if (!strIsEqualNI(name, "log", 3)) return FindByName(name, argCount);
    for (Function* candidate : functions) {
        if (argCount != -1 && candidate->argCount != argCount) continue;
        if (!candidate->body || strIsEqualI(candidate->name, name)) return candidate;
    }
    return nullptr;
}

Function* CFunctionList::FindByName(const char* name, int32_t argCount) const {
    for (Function* candidate : Namesakes(name)) {
        if (argCount == -1 || candidate->argCount == argCount) return candidate;
    }
    return nullptr;
}

Function* CFunctionList::Get(int index) {
    current = std::max(index, 0) - 1;
    return GetNext();
}

Function* CFunctionList::GetNext() {
    const auto end = static_cast<ptrdiff_t>(functions.size());
    if (current < end) current++;
    return current < end ? functions[static_cast<size_t>(current)] : nullptr;
}

void CFunctionList::TabCompleteReset() {
    tabIndex = 99 + static_cast<int32_t>(functions.size());
}

Function* CFunctionList::FindTabComplete(const char* prefix) {
    const auto count = static_cast<int32_t>(functions.size());
    const size_t length = strlen(prefix);
    for (tabIndex = tabIndex > count ? count - 1 : tabIndex - 1; tabIndex >= 0; tabIndex--) {
        Function* function = functions[static_cast<size_t>(tabIndex)];
        if (strIsEqualNI(function->name, prefix, length)) return function;
    }
    TabCompleteReset();
    return nullptr;
}

// --- Taking changes back ---

void CFunctionList::BeginChanges() {
    EndChanges();
    recording = true;
}

void CFunctionList::UndoChanges() {
    for (; !changes.empty(); changes.pop_back()) {
        const Change& change = changes.back();
        const auto place = functions.begin() + static_cast<ptrdiff_t>(change.position);
        if (change.added) {
            delete change.function;
            functions.erase(place);
        } else {
            functions.insert(place, change.function);
        }
    }
    byName.clear();
    for (Function* function : functions) byName[folded(function->name)].push_back(function);
    recording = false;
    current = static_cast<ptrdiff_t>(functions.size());
    TabCompleteReset();
}

void CFunctionList::EndChanges() {
    for (const Change& change : changes) {
        if (!change.added) delete change.function;
    }
    changes.clear();
    recording = false;
}
