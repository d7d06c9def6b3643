// SPDX-License-Identifier: MIT
#include "Hints.h"

#include "Builtins.h"
#include "Commands.h"
#include "EntryText.h"
#include "Functions.h"
#include "Helpers_String.h"
#include "OtherHabits.h"
#include "ScreenText.h"
#include "units.h"

#include <algorithm>
#include <functional>
#include <numeric>
#include <set>
#include <vector>

namespace {

bool contains(std::string_view text, std::string_view part) {
    return text.find(part) != std::string_view::npos;
}

// How many letters have to be changed, put in, taken out or exchanged with their neighbor to make `b` of
// `a`. (Damerau's distance in its restricted form; the rows of the usual table.)
size_t distance(std::string_view a, std::string_view b) {
    std::vector<size_t> beforeLast, last(b.size() + 1), row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) last[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t change = a[i - 1] == b[j - 1] ? 0 : 1;
            row[j] = std::min({last[j] + 1, row[j - 1] + 1, last[j - 1] + change});
            if (i > 1 && j > 1 && a[i - 1] == b[j - 2] && a[i - 2] == b[j - 1]) {
                row[j] = std::min(row[j], beforeLast[j - 2] + 1);
            }
        }
        beforeLast = last;
        last = row;
    }
    return last[b.size()];
}

std::vector<std::string> namesOfVariables(const ZqCalculator& calc) {
    std::vector<std::string> names;
    for (const node* variable = calc.vars.first; variable; variable = variable->next) {
        names.emplace_back(variable->text);
    }
    return names;
}

std::vector<std::string> namesOfFunctions() {
    std::vector<std::string> names;
    for (int i = 0; const Function* function = funcs.Get(i); ++i) {
        const bool computes = function->body || findBuiltin(lowerCased(function->name).c_str());
        if (computes) names.emplace_back(function->name);
    }
    return names;
}

// What an error is about: the entry, the part of it that is marked, and the message.
struct Trouble {
    std::string_view entry;
    std::string_view before; // the part of the entry before the marked one, without blanks at its end
    std::string part;        // the marked one without blanks
    std::string_view behind; // what follows, without blanks at its start
    std::string_view message;
    ZqCalculator& calc;
};

// The lines, each for one trap: empty when it is another.

std::string signBehindSign(const Trouble& trouble) {
    const bool isSign = trouble.part == "-" || trouble.part == "+";
    if (!isSign || trouble.before.empty()) return "";
    const char left = trouble.before.back();
    if (left != '+' && left != '-') return "";
    const std::string number =
        withoutBlanks(trouble.behind.substr(0, trouble.behind.find_first_of("+-*/)^ ")));
    const std::string operand = !number.empty() && number.find('(') == std::string::npos ? number : "3";
    return std::string("a sign directly behind + or - needs parentheses: write 2") + left + "(" +
           trouble.part + operand + ")";
}

std::string percent(const Trouble& trouble) {
    const bool isPercent = trouble.part == "%" || (!trouble.before.empty() && trouble.before.back() == '%');
    return isPercent ? "% is the remainder of a division here: 12 percent are 12/100" : "";
}

std::string starredPower(const Trouble& trouble) {
    return contains(trouble.entry, "**") ? "a power is written with ^: write 2^3" : "";
}

// 2pi, 3x4
std::string missingStar(const Trouble& trouble) {
    const std::string& part = trouble.part;
    const size_t letters = part.find_first_not_of("0123456789.,");
    if (letters == 0 || letters == std::string::npos) return "";
    const std::string number = part.substr(0, letters);
    std::string factor = part.substr(letters);
    if (factor.size() > 1 && (factor[0] == 'x' || factor[0] == 'X') && isDigit(factor[1])) factor.erase(0, 1);
    const auto variables = namesOfVariables(trouble.calc);
    const bool isKnown = std::find(variables.begin(), variables.end(), factor) != variables.end();
    if (!isKnown && !isDigit(factor[0]) && factor.size() > 1) return "";
    return "a multiplication needs its sign: write " + number + "*" + factor;
}

// 3(4), (3)(4), 2(3+4)
std::string missingStarBeforeParenthesis(const Trouble& trouble) {
    if (!startsWith(trouble.message, "** ERROR: could not compute")) return "";
    const std::string entry = withoutBlanks(trouble.entry);
    for (size_t i = 1; i < entry.size(); ++i) {
        const bool isGlued = (entry[i] == '(' && (isDigit(entry[i - 1]) || entry[i - 1] == ')')) ||
                             (entry[i - 1] == ')' && (isDigit(entry[i]) || isLetter(entry[i])));
        if (isGlued)
            return "a multiplication needs its sign: write " + entry.substr(0, i) + "*" + entry.substr(i);
    }
    return "";
}

// sin 30, sqrt4
std::string missingParentheses(const Trouble& trouble) {
    const std::string& part = trouble.part;
    const size_t digits = part.find_first_of("0123456789.");
    if (digits == 0 || digits == std::string::npos) return "";
    if (startsWith(trouble.behind, "(")) return ""; // atan2(1,1)
    const std::string name = part.substr(0, digits);
    if (!funcs.FunctionExists(name.c_str(), 1)) return "";
    return "a function's argument stands in parentheses: write " + name + "(" + part.substr(digits) + ")";
}

struct Scale {
    std::string_view name; // as people write it
    char letter;
};

constexpr Scale SCALES[] = {{"fahrenheit", 'F'}, {"celsius", 'C'}, {"kelvin", 'K'},
                            {"degF", 'F'},       {"degC", 'C'},    {"degK", 'K'},
                            {"F", 'F'},          {"C", 'C'},       {"K", 'K'}};

// How a temperature becomes one of another scale; `before` and `after` stand around the number.
struct Formula {
    char from, to;
    std::string_view before, sample, after;
};

constexpr Formula FORMULAS[] = {{'F', 'C', "(", "72", "-32)/1.8"}, {'F', 'K', "(", "72", "+459.67)/1.8"},
                                {'C', 'F', "", "20", "*1.8+32"},   {'C', 'K', "", "20", "+273.15"},
                                {'K', 'C', "", "300", "-273.15"},  {'K', 'F', "", "300", "*1.8-459.67"}};

// The scale whose name ends the text without blanks; null for none.
const Scale* scaleAtEnd(std::string_view text) {
    for (const Scale& scale : SCALES) {
        if (text.size() < scale.name.size()) continue;
        const size_t start = text.size() - scale.name.size();
        if (text.substr(start) == scale.name && (start == 0 || !isLetter(text[start - 1]))) return &scale;
    }
    return nullptr;
}

// The number that ends the text without blanks, with the sign of one that begins an entry or a value; or
// nothing.
std::string_view numberAtEnd(std::string_view text) {
    size_t start = text.find_last_not_of("0123456789.,") + 1;
    if (start > 0 && start < text.size() && isLetter(text[start - 1])) return ""; // 1.5e2
    const bool isNegative = start > 0 && text[start - 1] == '-' && (start == 1 || text[start - 2] == '=');
    return text.substr(isNegative ? start - 1 : start);
}

std::string conversionBy(const Formula& formula, std::string_view number) {
    std::string text = "F and C are farad and coulomb here; temperatures: write ";
    return text.append(formula.before).append(number.empty() ? formula.sample : number).append(formula.after);
}

std::string temperature(const Trouble& trouble) {
    if (!contains(trouble.message, "ERROR 13")) return "";
    const std::string entry = withoutBlanks(trouble.entry);
    const size_t arrow = entry.find("->");
    if (arrow == std::string::npos) return "";
    const std::string_view left = std::string_view(entry).substr(0, arrow);
    const Scale* const from = scaleAtEnd(left);
    const Scale* const to = scaleAtEnd(std::string_view(entry).substr(arrow + 2));
    if (!from || !to) return "";
    const std::string_view number = numberAtEnd(left.substr(0, left.size() - from->name.size()));
    for (const Formula& formula : FORMULAS) {
        if (formula.from == from->letter && formula.to == to->letter) return conversionBy(formula, number);
    }
    return "";
}

// Units under names that no few letters lead to.
constexpr struct {
    std::string_view name, unit;
} OTHER_NAMES[] = {{"feet", "foot"}, {"mph", "mile/hr"}, {"kph", "km/hr"}, {"kmh", "km/hr"}};

std::string underOtherName(std::string_view name) {
    for (const auto& other : OTHER_NAMES) {
        if (name == other.name) return std::string(other.unit);
    }
    return "";
}

// The one of the names that differs in capitals alone, and in the fewest of them: of ml not ML but mL.
std::string withOtherCase(std::string_view name, const std::vector<std::string>& names) {
    const std::string lower = lowerCased(std::string(name));
    std::string best;
    ptrdiff_t most = -1;
    for (const std::string& candidate : names) {
        if (lowerCased(candidate) != lower) continue;
        const ptrdiff_t same = std::inner_product(candidate.begin(), candidate.end(), name.begin(),
                                                  ptrdiff_t{0}, std::plus<>(), std::equal_to<>());
        if (same > most) best = candidate;
        most = std::max(most, same);
    }
    return best;
}

// Behind a prefix anything short is near to something: there it is a wrong capital or a letter typed twice.
std::string nearestUnit(std::string_view name) {
    constexpr size_t LONG = 6;
    std::vector<std::string> units, prefixed;
    for (const UnitSpelling& spelling : units_spellings("")) {
        if (!spelling.IsPrefix()) (spelling.prefixLength == 0 ? units : prefixed).push_back(spelling.name);
    }
    std::string otherCase = withOtherCase(name, prefixed);
    if (!otherCase.empty()) return otherCase;
    const std::string nearest = nearestName(name, prefixed);
    std::string nearestAlone = nearestName(name, units);
    if (!nearestAlone.empty() || name.size() >= LONG) return nearestAlone.empty() ? nearest : nearestAlone;
    const std::string_view once = name.substr(0, name.size() - 1);
    const bool isTwice = !once.empty() && once.back() == name.back();
    const bool isUnit = std::find(prefixed.begin(), prefixed.end(), once) != prefixed.end();
    return isTwice && isUnit ? std::string(once) : "";
}

std::string unknownUnit(const Trouble& trouble) {
    constexpr std::string_view TEXT = "invalid unit name '";
    const size_t start = trouble.message.find(TEXT);
    if (start == std::string_view::npos) return "";
    const std::string_view behind = trouble.message.substr(start + TEXT.size());
    const std::string_view name = behind.substr(0, behind.find('\''));
    const Scale* const scale = scaleAtEnd(name);
    for (const Formula& formula : FORMULAS) {
        if (scale && scale->letter == formula.to) return conversionBy(formula, "");
    }
    const std::string other = underOtherName(name);
    std::string shipped = other.empty() ? hintForUnit(name) : "";
    if (!shipped.empty()) return shipped;
    const std::string nearest = other.empty() ? nearestUnit(name) : other;
    return nearest.empty() ? ":units lists the units" : "the nearest unit is " + nearest;
}

// m/s/s
std::string secondSlash(const Trouble& trouble) {
    return contains(trouble.message, "only one '/' allowed")
               ? "a unit has one /, and all behind it divides: write m/s^2"
               : "";
}

// (5 ft->cm)+(3 in->cm)
std::string secondArrow(const Trouble& trouble) {
    const size_t arrow = trouble.entry.find("->");
    if (trouble.part != ">" || arrow == std::string_view::npos) return "";
    if (trouble.entry.find("->", arrow + 2) == std::string_view::npos) return "";
    return "a statement has one conversion: write a=5 ft->cm; a+(3 in->cm)";
}

// 5 km to mi, 10 mod 3
std::string operatorAsWord(const Trouble& trouble) {
    return contains(trouble.message, "ERROR 7") ? hintForWords(trouble.entry) : "";
}

std::string functionOfOthers(const Trouble& trouble) {
    return startsWith(trouble.message, "** ERROR: unrecognized function") ? hintForFunction(trouble.part)
                                                                          : "";
}

// 12,34
std::string commaAsPoint(const Trouble& trouble) {
    const std::string& part = trouble.part;
    const size_t comma = part.find(',');
    const bool isNumber = part.find_first_not_of("0123456789,") == std::string::npos;
    if (trouble.calc.european || !isNumber || comma == 0 || comma == std::string::npos) return "";
    if (comma + 1 == part.size() || part.find(',', comma + 1) != std::string::npos) return "";
    return "decimals have a point here: write " + part.substr(0, comma) + "." + part.substr(comma + 1);
}

std::string frontEndWord(const Trouble& trouble) {
    static constexpr std::string_view WORDS[] = {"help",  "?",     "quit",    "vars",
                                                 "funcs", "units", "history", "set"};
    const std::string entry = withoutBlanks(trouble.entry);
    if (std::find(std::begin(WORDS), std::end(WORDS), entry) == std::end(WORDS)) return "";
    return ":help explains the calculator, :vars lists the variables, :quit ends the program";
}

std::string eulersNumber(const Trouble& trouble) {
    return trouble.part == "e" ? "the base of natural logarithms is exp(1)" : "";
}

// How many arguments the functions of this name take, such as "1 argument" or "2 or 3 arguments"; or nothing.
std::string argumentsOf(const std::string& name) {
    std::set<int32_t> counts;
    for (int i = 0; const Function* function = funcs.Get(i); ++i) {
        if (strIsEqualI(function->name, name.c_str())) counts.insert(function->argCount);
    }
    std::string text;
    for (const int32_t count : counts) text += (text.empty() ? "" : " or ") + std::to_string(count);
    return counts.empty() ? "" : text + (text == "1" ? " argument" : " arguments");
}

// A name that nobody knows: of a variable, of a function, or of a command word at the start.
std::string unknownName(const Trouble& trouble) {
    if (trouble.part.empty() || !isLetter(trouble.part[0])) return "";
    const bool isCall = startsWith(trouble.behind, "(");
    const std::vector<std::string> variables = namesOfVariables(trouble.calc);
    if (isCall && std::find(variables.begin(), variables.end(), trouble.part) != variables.end()) {
        return trouble.part + " is a variable; a multiplication needs its sign: write " + trouble.part +
               "*(...)";
    }
    const std::string arguments = isCall ? argumentsOf(trouble.part) : "";
    if (!arguments.empty()) return trouble.part + " takes " + arguments;
    std::vector<std::string> names = namesOfFunctions();
    if (!isCall) names.insert(names.begin(), variables.begin(), variables.end());
    const std::string nearest = nearestName(trouble.part, names);
    return nearest.empty() ? "" : "the nearest name is " + nearest;
}

constexpr std::string (*HINTS[])(const Trouble&) = {
    frontEndWord,   signBehindSign,     starredPower, percent,      missingStarBeforeParenthesis,
    operatorAsWord, commaAsPoint,       secondArrow,  secondSlash,  functionOfOthers,
    missingStar,    missingParentheses, temperature,  eulersNumber, unknownUnit,
    unknownName};

} // namespace

std::string markUnder(std::string_view entry, TextRange range, int promptWidth, int columns) {
    if (range.start < 0 || columns <= 0) return "";
    const auto start = static_cast<size_t>(range.start);
    const auto length = static_cast<size_t>(range.length);
    const ScreenPlace from = placeBehind(entry.substr(0, start), {0, promptWidth}, columns);
    const ScreenPlace to = placeBehind(entry.substr(start, length), from, columns);
    const ScreenPlace last = placeBehind(entry.substr(start + length), to, columns);
    if (from.row != last.row) return "";
    const auto blanks = static_cast<size_t>(from.column);
    return std::string(blanks, ' ') + std::string(static_cast<size_t>(to.column) - blanks, '^') + "\n";
}

std::string nearestName(std::string_view name, const std::vector<std::string>& names) {
    const std::string wanted = lowerCased(std::string(name));
    const std::string* nearest = nullptr;
    size_t least = 0;
    for (const std::string& candidate : names) {
        if (candidate.size() > wanted.size() + 2 || candidate.size() + 2 < wanted.size()) continue;
        const std::string lower = lowerCased(candidate);
        const size_t changes = distance(wanted, lower);
        size_t most = wanted.size() > 4 || (wanted.size() == 4 && lower[0] == wanted[0]) ? 2 : 1;
        if (wanted.size() < 3) most = 0; // of a letter or two every name is near
        const size_t rank = changes * 2 + (startsWith(wanted, lower) ? 0 : 1);
        if (changes > most || (nearest && rank >= least)) continue;
        least = rank;
        nearest = &candidate;
    }
    return nearest ? *nearest : "";
}

std::string hintAfterError(std::string_view entry, ZqCalculator& calc) {
    const TextRange range = calc.errorRange;
    const size_t start = range.start < 0 ? entry.size() : static_cast<size_t>(range.start);
    const size_t end = start + static_cast<size_t>(range.length);
    const std::string_view before = entry.substr(0, start);
    const std::string_view behind = entry.substr(end);
    const Trouble trouble = {entry,
                             before.substr(0, before.find_last_not_of(" \t") + 1),
                             withoutBlanks(entry.substr(start, end - start)),
                             behind.substr(std::min(behind.find_first_not_of(" \t"), behind.size())),
                             calc.message,
                             calc};
    for (const auto hint : HINTS) {
        const std::string line = hint(trouble);
        if (!line.empty()) return line + "\n";
    }
    return "";
}

// An operand between two powers, and a minus between a product's sign and a power.
std::string Notes::For(std::string_view text) {
    const std::string entry = withoutBlanks(text.substr(0, text.find('#')));
    constexpr std::string_view OPERAND = "0123456789.abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (size_t at = 0; (at = entry.find('^', at)) != std::string::npos; ++at) {
        const size_t end = entry.find_first_not_of(OPERAND, at + 1);
        if (!toldPowers && end != std::string::npos && end > at + 1 && entry[end] == '^') {
            toldPowers = true;
            return "powers are taken from left to right: 2^3^2 is (2^3)^2 = 64; 2^(3^2) is 512\n";
        }
    }
    for (size_t at = 1; (at = entry.find('-', at)) != std::string::npos; ++at) {
        const size_t end = std::min(entry.find_first_not_of(OPERAND, at + 1), entry.size());
        const bool isFactor = entry[at - 1] == '*' || entry[at - 1] == '/';
        if (!toldMinus && isFactor && end < entry.size() && entry[end] == '^') {
            toldMinus = true;
            return "a minus behind * or / is taken first: 2*-3^2 is 2*(-3)^2 = 18; 2*(-(3^2)) is -18\n";
        }
    }
    return "";
}
