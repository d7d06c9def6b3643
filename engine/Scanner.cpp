// SPDX-License-Identifier: MIT
#include "Scanner.h"

#include "Format.h"
#include "Functions.h"
#include "Helpers_String.h"

#include <algorithm>
#include <cstring>

std::string_view trimStatement(std::string_view statement) {
    std::string_view text = statement.substr(0, statement.find(';'));
    while (!text.empty() && (isBlank(text[0]) || text[0] == '\v' || text[0] == '\f')) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

namespace {

struct BareCharacters {
    bool has[256] = {};

    constexpr BareCharacters() {
        for (int c = 0; c < 128; c++)
            has[c] = isOfName(static_cast<char>(c)) || (c >= '(' && c <= '/') || c == '^';
    }
};

bool isSpaceOrTab(char c) {
    return c == ' ' || c == '\t';
}

// Whether the digits that end at `end` (exclusive) are the exponent of a unit, as in m^2.
bool endsUnitExponent(const std::string& text, size_t end) {
    while (end > 0 && isDigit(text[end - 1])) end--;
    return end > 0 && text[end - 1] == '^';
}

// The start of the unit name in front of an arrow at `arrow`.
size_t findUnitName(const std::string& text, size_t arrow, bool european) {
    const char point = european ? ',' : '.';
    const char comma = european ? '.' : ',';
    size_t start = arrow;
    while (start > 0 && isSpaceOrTab(text[start - 1])) start--;
    bool inExponent = false;
    while (start > 0) {
        const char c = text[start - 1];
        if (isSpaceOrTab(c) || c == comma || strchr("()[]{}=", c)) break;
        if (c == point && start > 1 && isDigit(text[start - 2])) break; // 5.km
        if (!isDigit(c))
            inExponent = false;
        else if (!inExponent && !(inExponent = endsUnitExponent(text, start)))
            break;
        start--;
    }
    // A sign in front of the name stays an operator: 5-km->mi must not drop its minus.
    while (start < arrow && (text[start] == '+' || text[start] == '-')) start++;
    return start;
}

// Removes blanks and line ends, makes all brackets parentheses, and gives the number its '.' and ','.
void normalize(std::string& text, bool european) {
    size_t length = 0;
    for (char c : text) {
        switch (c) {
        case ' ':
        case '\t':
        case '\r':
        case '\n': continue;
        case '{':
        case '[': c = '('; break;
        case '}':
        case ']': c = ')'; break;
        default: break;
        }
        text[length++] = c;
    }
    text.resize(length);
    if (european) StrSwapChars(text.data(), '.', ',');
}

// A sign directly behind the 'e' of a number, as in 1e-5. In 0x1e-3 the e is a digit.
bool isExponentSign(std::string_view operand) {
    const size_t n = operand.size();
    if (n < 2 || (operand[n - 1] != 'e' && operand[n - 1] != 'E')) return false;
    if (!isDigit(operand[n - 2]) && operand[n - 2] != '.') return false;
    return !(operand[0] == '0' && (operand[1] == 'x' || operand[1] == 'b'));
}

// The operand that ends where the text ends.
std::string_view lastOperand(std::string_view text) {
    size_t start = text.size();
    for (; start > 0; start--) {
        const char character[] = {text[start - 1], '\0'};
        if (isOp(character) != 0) break;
    }
    return text.substr(start);
}

// The first sign at or behind `from` that is none of a conversion's units, as in N-m: these reach from the
// mark to the next ')'.
size_t findSign(const std::string& text, size_t from) {
    for (size_t pos = from; pos < text.size(); pos++) {
        if (text[pos] == CVSstr[0]) pos = std::min(text.find(')', pos), text.size());
        if (text[pos] == '+' || text[pos] == '-') return pos; // the text ends with a NUL
    }
    return std::string::npos;
}

// Whether the text's first arrow stands in the units of a conversion that is marked already. They reach to
// the next ')'.
bool isArrowInUnit(const std::string& text) {
    const size_t mark = text.find(CVSstr[0]);
    return mark != std::string::npos && text.find("->") < text.find_first_of(")]}", mark);
}

// Reads what most numbers are: up to nine digits, with a point or without, which machine numbers hold.
// Otherwise it answers false.
bool readShort(std::string_view text, qfloat value) {
    constexpr size_t MOST_DIGITS = 9;
    if (text.size() > MOST_DIGITS + 1) return false;
    int64_t number = 0;
    int64_t fives = 0; // for each digit behind the point one factor; 0: there has been no point
    uint32_t places = 0;
    size_t digits = 0;
    for (char c : text) {
        if (isDigit(c)) {
            number = number * 10 + (c - '0');
            fives *= 5;
            places += fives != 0 ? 1 : 0;
            digits++;
        } else if (c == '.' && fives == 0) {
            fives = 1;
        } else {
            return false;
        }
    }
    if (digits == 0 || digits > MOST_DIGITS) return false;
    if (number == 0) return qclear(value), true;
    for (; fives > 1 && number % 5 == 0; number /= 5) fives /= 5; // 2.5 is 5 / 2
    ltoq(&number, value);
    if (fives > 1) {
        qfloat divisor;
        ltoq(&fives, divisor);
        qdiv(divisor, value, value);
    }
    value[1] -= places; // 10^n is 5^n * 2^n
    return true;
}

bool isRadixText(std::string_view text) {
    return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'b' || text[1] == 'o');
}

// The number without its thousands separators, or an empty text when the grouping is wrong: groups of a comma
// and three digits follow the leading digits, up to the end or a point.
std::string joinThousands(std::string_view text) {
    std::string joined;
    size_t i = 0;
    while (i < text.size() && isDigit(text[i])) i++;
    joined.append(text.substr(0, i));
    while (i < text.size() && text[i] == ',') {
        const std::string_view group = text.substr(i + 1, 3);
        if (group.size() < 3 || !std::all_of(group.begin(), group.end(), isDigit)) return "";
        joined.append(group);
        i += 4;
    }
    if (i < text.size() && text[i] != '.') return "";
    joined.append(text.substr(i));
    std::string_view rest;
    return findDecString(joined, rest) == 1 ? joined : "";
}

} // namespace

bool isBareExpression(std::string_view text) {
    static constexpr BareCharacters BARE;
    return std::all_of(text.begin(), text.end(), [](char c) { return BARE.has[static_cast<uint8_t>(c)]; });
}

void markConversion(std::string& text, bool european) {
    if (text.size() < 5) return;
    const size_t arrow = text.find("->");
    if (arrow == std::string::npos) return;
    const size_t start = findUnitName(text, arrow, european);
    text[arrow + 1] = CVstr[0];
    text.erase(arrow, 1);
    text.insert(start, 1, CVSstr[0]);
}

// The '=' behind the first parentheses is neither part of a comparison nor doubled.
bool isDefinition(const std::string& text) {
    const size_t open = text.find('(');
    if (open == std::string::npos) return false;
    const size_t close = text.find(')', open);
    if (close == std::string::npos) return false;
    const size_t equals = text.find('=', close);
    if (equals == std::string::npos) return false;
    const char before = text[equals - 1];
    const char after = equals + 1 < text.size() ? text[equals + 1] : '\0';
    return before != '<' && before != '>' && before != '!' && after != '=';
}

// Adding-machine entry: every sign moves in front of its number, 10+20- becomes +10-20. The sign of an
// exponent belongs to its number.
std::string Scanner::MoveSignsForward(const std::string& text) {
    const std::string_view view = text;
    const auto isInNumber = [this](std::string_view operand) {
        return isExponentSign(operand) && !IsValueName(operand);
    };
    std::string moved;
    size_t start = 0;
    while (start < text.size()) {
        size_t sign = findSign(text, start);
        while (sign != std::string::npos && isInNumber(lastOperand(view.substr(start, sign - start)))) {
            sign = findSign(text, sign + 1);
        }
        const bool isLast = sign == std::string::npos;
        moved += isLast ? '+' : text[sign];
        moved.append(text, start, isLast ? sign : sign - start);
        start = isLast ? text.size() : sign + 1;
    }
    return moved;
}

int Scanner::ScanBody(std::string text, const Definition& definition) {
    statement.terms.Clear();
    if (!isArrowInUnit(text)) markConversion(text, settings.european);
    inDefinition = &definition;
    const int state = Scan(std::move(text));
    inDefinition = nullptr;
    return state;
}

int Scanner::Scan(std::string text, bool mayLeaveOut) {
    normalize(text, settings.european);
    if (ScanAssignment(text) != 0) return STATUS_ERROR;
    if (settings.tenKey) text = MoveSignsForward(text);
    ScanTerms(text, mayLeaveOut);
    return 0;
}

int Scanner::ScanBare(std::string_view text, bool mayLeaveOut) {
    ScanTerms(text, mayLeaveOut);
    return 0;
}

// Sets the target and removes the name and the '=' from the text.
int Scanner::ScanAssignment(std::string& text) {
    const size_t equals = text.find('=');
    if (equals == std::string::npos || equals == 0 || text.compare(equals, 2, "==") == 0) return 0;
    const std::string name = text.substr(0, equals);
    if (name.find_first_of("<>!") != std::string::npos) return 0;
    if (name.size() >= MAX_NAME) {
        return outcome.Fail("** ERROR: %i max characters for variables **\n", {std::to_string(MAX_NAME)});
    }
    if (!isValidName(name)) {
        return outcome.FailAt({statement.skipped, static_cast<int32_t>(equals)},
                              "** ERROR: invalid variable name: %s **\n", {name});
    }
    if (statement.fullEntry) {
        statement.target = variables.Find(name);
        if (!statement.target) {
            statement.newVariable = makeTerm(name); // joins the variables when the evaluation works out
            statement.target = statement.newVariable.get();
        }
    }
    text.erase(0, equals + 1);
    statement.skipped += static_cast<int32_t>(equals) + 1;
    return 0;
}

// The place of a term in the statement. The mark in front of a source unit is not in the statement; the arrow
// takes two characters there. Adding-machine entry has moved the signs, so that no place is known.
void Scanner::Locate(node* term, size_t start, size_t length, bool inSource) const {
    if (settings.tenKey) return;
    term->start = statement.skipped + static_cast<int32_t>(start) - (inSource ? 1 : 0);
    term->length = static_cast<uint16_t>(length + (term->type == OP_CONVERT ? 1 : 0));
}

// Before a ')': whether nothing but one value stands behind its '(', which is no call's. Then the '(' goes
// too: the evaluator would remove both, before anything that they could be seen by.
bool Scanner::LeaveOut() {
    const node* const value = statement.terms.last;
    if (!value || isOp(value->type)) return false;
    node* const open = value->prev;
    if (!open || open->type != OP_OPEN) return false;
    if (open->prev && (open->prev->type == TERM_NAME || open->prev->type == TERM_FUNC)) return false;
    statement.terms.Del(open);
    statement.enclosed++;
    return true;
}

// What follows the text in memory is a NUL or no operator.
void Scanner::ScanTerms(std::string_view view, bool mayLeaveOut) {
    Deq& terms = statement.terms;
    isCall.clear();
    statement.enclosed = 0;
    bool inUnit = false;   // from the mark to the next ')': km/h and m^2 are one term
    bool inSource = false; // from the mark to the arrow
    bool hasSign = false;  // of an exponent: the operand is no name then, and is not looked up again
    size_t start = 0;
    for (size_t pos = 0; pos < view.size();) {
        const int code = isOp(view.data() + pos);
        bool isPart = code == 0 || (inUnit && code != OP_CONVERT && code != OP_CLOSE);
        if (code == OP_COMMA && (isCall.empty() || !isCall.back())) isPart = true; // thousands: 1,000
        if (code == OP_ADD || code == OP_SUBTRACT) {
            const std::string_view operand = view.substr(start, pos - start);
            if (isExponentSign(operand) && (hasSign || !IsValueName(operand))) isPart = hasSign = true;
        }
        if (isPart) {
            pos++;
            continue;
        }
        if (start < pos) {
            AppendOperand(view.substr(start, pos - start), inUnit, code == OP_OPEN);
            Locate(terms.last, start, pos - start, inSource);
        }
        if (code == OP_OPEN) isCall.push_back(terms.last && terms.last->type == TERM_FUNC);
        if (code == OP_CLOSE && !isCall.empty()) isCall.pop_back();
        if (code == OP_UNIT_MARK) inUnit = true;
        if (code == OP_CLOSE) inUnit = false;
        const size_t length = getOp(code).text[1] == '\0' ? 1 : 2;
        if (code != OP_CLOSE || !mayLeaveOut || !LeaveOut()) {
            node* const term = terms.Add();
            term->type = code;
            Locate(term, pos, length, inSource);
        }
        if (code == OP_UNIT_MARK) inSource = true;
        if (code == OP_CONVERT) inSource = false;
        pos += length;
        start = pos;
        hasSign = false;
    }
    if (start == view.size()) return;
    AppendOperand(view.substr(start), inUnit, false);
    Locate(terms.last, start, view.size() - start, inSource);
}

// Whether the name stands for a number, here or where the function is called whose body is read.
bool Scanner::IsValueName(std::string_view name) {
    work.looked += name.size();
    return variables.Find(name) || (inDefinition && inDefinition->parameters.count(name) != 0);
}

// A function knows itself while its body is read, so that a recursion is found when it is called.
bool Scanner::IsFunctionName(const std::string& name) const {
    if (inDefinition && inDefinition->isKept && name.size() < MAX_NAME && isValidName(name)) return true;
    return funcs.FunctionExists(name.c_str(), -1) ||
           (inDefinition && strIsEqualI(name.c_str(), inDefinition->function.c_str()));
}

// A unit may begin with a number that would be one by itself: 0.5m is half a meter there, not half a
// thousandth.
void Scanner::AppendOperand(std::string_view text, bool isUnit, bool beforeParenthesis) {
    work.looked += text.size();
    node* term = statement.terms.AddOperand();
    qfloat value;
    const bool isName = (isUnit && std::any_of(text.begin(), text.end(), isLetter)) ||
                        (isLetter(text[0]) && variables.Find(text));
    if (!isName && ReadNumber(text, value)) {
        term->type = TERM_NUMBER;
        term->SetValue(value);
        if (text.substr(0, 2) == "0x") term->SetText(text);
    } else {
        const bool opensCall = !isName && beforeParenthesis && IsFunctionName(std::string(text));
        term->type = opensCall ? TERM_FUNC : TERM_NAME;
        term->SetText(text);
    }
}

// That an earlier number of the statement was beyond the range stays known.
bool Scanner::ReadNumber(std::string_view text, qfloat value) {
    if (readShort(text, value)) return true;
    lookedUp = text;
    const int pending = merror;
    const bool isNumber = Str2Num(lookedUp.c_str(), value) == 0;
    if (pending == MATH_OVERFLOW) merror = pending;
    return isNumber;
}

int findDecString(std::string_view text, std::string_view& rest) {
    bool hasPoint = false;
    bool hasExponent = false;
    size_t i = 0;
    for (; i < text.size(); i++) {
        const char c = text[i];
        if (isDigit(c)) continue;
        if (c == '.' && !hasPoint && !hasExponent) {
            hasPoint = true;
        } else if ((c == 'e' || c == 'E') && !hasExponent && i > 0) {
            hasExponent = true;
            if (i + 1 < text.size() && (text[i + 1] == '+' || text[i + 1] == '-')) i++;
        } else {
            break;
        }
    }
    if (i == text.size()) return 1;
    if (i == 0) return 0;
    rest = text.substr(i);
    return 2;
}

int Scanner::Str2Num(const char* text, qfloat value) {
    if (!text) return outcome.Fail("** crazy error **");
    const std::string_view view = text;
    if (isRadixText(view)) return asctoq(text, value) == 0 ? 0 : -1;
    std::string_view rest;
    const int kind = findDecString(view, rest);
    if (kind == 1) return asctoq(text, value) == 0 ? 0 : -1;
    if (kind == 0) return !funcs.FunctionExists(text, -1) && variables.Find(text) ? 0 : -1;
    if (rest[0] == ',') {
        const std::string joined = joinThousands(view);
        return !joined.empty() && asctoq(joined.c_str(), value) == 0 ? 0 : -1;
    }
    const char* const prefix =
        rest.size() == 1 && rest[0] != ' ' ? strchr(METRIC_PREFIXES, rest[0]) : nullptr;
    if (!prefix) return -1;
    const std::string number(view.substr(0, view.size() - 1));
    if (asctoq(number.c_str(), value) != 0) return -1;
    qdecexp(value, static_cast<int>(prefix - METRIC_PREFIXES) + LEAST_PREFIX);
    return 0;
}
