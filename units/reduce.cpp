// SPDX-License-Identifier: MIT
//
// Reduction of a unit expression to a factor and sorted lists of primitive names.
#include "unitlist.h"

#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

constexpr int maxExponent = 1000;
constexpr size_t maxNames = 100000;      // in one of the two lists
constexpr size_t maxNameBytes = 4000000; // of these names together

// What the steps of a reduction count for in the work counter.
constexpr uint64_t lookupWork = 16;
constexpr uint64_t copyWork = 4;

// A list under construction; names are put at its end, so that what was sorted stays sorted.
struct NameList {
    unit** end;
    size_t length = 0;
    size_t bytes = 0;
};

struct Reduction {
    UnitPointer result;    // never null
    const char* remainder; // the text behind the leading number, quoted by the messages
    NameList numerator{&result->numerator};
    NameList denominator{&result->denominator};
    bool isDivisor = false;
};

bool fail(const char* format, const char* text) {
    throw_exception1(format, text);
    return false;
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// strtod alone would also take the first letters of "inch" or "nanometer" for the words inf and nan.
bool beginsWithNumber(const char* text) {
    if (*text == '+' || *text == '-') ++text;
    return isDigit(text[0]) || (text[0] == '.' && isDigit(text[1]));
}

bool readExponent(const char* digits, int& exponent) {
    exponent = 0;
    for (const char* c = digits; *c != '\0'; ++c) {
        if (!isDigit(*c)) return false;
        exponent = 10 * exponent + (*c - '0');
        if (exponent > maxExponent) return false;
    }
    return exponent >= 1;
}

void applyFactor(Reduction& reduction, double factor, int exponent) {
    unitWork += static_cast<uint64_t>(exponent);
    for (int i = 0; i < exponent; ++i) {
        if (reduction.isDivisor) {
            reduction.result->factor /= factor;
        } else {
            reduction.result->factor *= factor;
        }
    }
}

// Adds the name as often as the exponent says.
bool addName(Reduction& reduction, bool toDivisor, const char* name, int exponent) {
    NameList& list = toDivisor ? reduction.denominator : reduction.numerator;
    const size_t bytes = std::strlen(name);
    for (int i = 0; i < exponent; ++i) {
        if (list.length == maxNames || list.bytes + bytes > maxNameBytes) {
            return fail("invalid integer exponent in '%s'", reduction.remainder);
        }
        unitWork += copyWork + bytes / bytesPerWork;
        UnitPointer entry = newUnit(name);
        if (entry == nullptr) return fail("not enough memory for unit string '%s'", reduction.remainder);
        *list.end = entry.release();
        list.end = &(*list.end)->next;
        ++list.length;
        list.bytes += bytes;
    }
    return true;
}

bool addNames(Reduction& reduction, bool toDivisor, const unit* names, int exponent) {
    for (; names != nullptr; names = names->next) {
        if (!addName(reduction, toDivisor, names->name, exponent)) return false;
    }
    return true;
}

bool applyUnit(Reduction& reduction, const UnitMatch& match, int exponent) {
    const bool isDivisor = reduction.isDivisor;
    if (match.prefix != nullptr) applyFactor(reduction, match.prefix->factor, exponent);
    if (match.found->primitive == 0) applyFactor(reduction, match.found->factor, exponent);
    if (match.found->primitive != 0) return addName(reduction, isDivisor, match.found->name, exponent);
    return addNames(reduction, isDivisor, match.found->numerator, exponent) &&
           addNames(reduction, !isDivisor, match.found->denominator, exponent);
}

bool applyToken(Reduction& reduction, char* token) {
    const char* remainder = reduction.remainder;
    if (std::strcmp(token, divider) == 0) {
        reduction.isDivisor = !reduction.isDivisor;
        return true;
    }
    if (beginsWithNumber(token)) {
        char* end = nullptr;
        const double number = std::strtod(token, &end);
        if (number == 0.0) return fail("illegal zero factor in '%s'", remainder);
        applyFactor(reduction, number, 1);
        // Only the divisor takes a number, and nothing may stand directly behind it. Any other goes on and is refused
        // for its digits.
        if (reduction.isDivisor && *end == '\0') return true;
    }
    int exponent = 1;
    if (char* caret = std::strchr(token, '^')) {
        if (!readExponent(caret + 1, exponent)) return fail("invalid integer exponent in '%s'", remainder);
        *caret = '\0';
    }
    if (!isLettersOnly(token)) return fail("invalid non-alphabetic unit name in '%s'", remainder);
    unitWork += lookupWork + std::strlen(token) / bytesPerWork;
    const UnitMatch match = findUnit(token);
    if (match.found == nullptr) {
        throw_exception2("invalid unit name '%s' in '%s'", token, remainder);
        return false;
    }
    return applyUnit(reduction, match, exponent);
}

// A copy of the text in which a divider has a blank on either side and so becomes a token of its own.
std::unique_ptr<char[]> copyWithSpacedDivider(const char* text) {
    const size_t before = std::strcspn(text, divider);
    const size_t length = std::strlen(text);
    std::unique_ptr<char[]> copy(new (std::nothrow) char[length + 3]);
    if (copy == nullptr) return copy;
    std::memcpy(copy.get(), text, length + 1);
    if (before < length) {
        std::memcpy(&copy[before], " / ", 3);
        std::memcpy(&copy[before + 3], text + before + 1, length - before);
    }
    return copy;
}

bool applyTokens(Reduction& reduction) {
    const std::unique_ptr<char[]> copy = copyWithSpacedDivider(reduction.remainder);
    if (copy == nullptr) return fail("not enough memory for unit string '%s'", reduction.remainder);
    for (char* token = std::strtok(copy.get(), separators); token != nullptr;
         token = std::strtok(nullptr, separators)) {
        if (!applyToken(reduction, token)) return false;
    }
    return true;
}

void removeFirst(unit*& list) {
    unit* first = list;
    list = first->next;
    destroyunit(first);
}

// Removes the names common to both lists.  They are sorted, so that one pass over both finds every pair.
void cancelNames(unit& result) {
    unit** numerator = &result.numerator;
    unit** denominator = &result.denominator;
    while (*numerator != nullptr && *denominator != nullptr) {
        const int order = compareNames(**numerator, **denominator);
        if (order == 0) {
            removeFirst(*numerator);
            removeFirst(*denominator);
        } else if (order < 0) {
            numerator = &(*numerator)->next;
        } else {
            denominator = &(*denominator)->next;
        }
    }
}

// Merges two sorted lists; of equal names those of the first list come first.
unit* mergeLists(unit* first, unit* second) {
    unit* head = nullptr;
    unit** end = &head;
    while (first != nullptr && second != nullptr) {
        unit*& smaller = compareNames(*second, *first) < 0 ? second : first;
        *end = smaller;
        end = &smaller->next;
        smaller = smaller->next;
    }
    *end = first != nullptr ? first : second;
    return head;
}

// Cuts the names at the head of the list that are in order off it.
unit* cutSortedRun(unit*& list) {
    unit* const run = list;
    unit* last = run;
    while (last->next != nullptr && compareNames(*last, *last->next) <= 0) last = last->next;
    list = last->next;
    last->next = nullptr;
    return run;
}

} // namespace

// A merge sort of the runs that are in order already: what a stable insertion sort gives, but in reasonable
// time for 100,000 names.  sorted[i] is empty or holds 2^i runs that precede those of the entries below it.
unit* sortUnitList(unit* list) {
    if (list == nullptr || list->next == nullptr) return list;
    unit* sorted[64]; // more than any memory can fill
    size_t runs = 0;
    while (list != nullptr) {
        unit* run = cutSortedRun(list);
        size_t i = 0;
        for (; i < runs && sorted[i] != nullptr; ++i) {
            run = mergeLists(sorted[i], run);
            sorted[i] = nullptr;
        }
        sorted[i] = run;
        if (i == runs) ++runs;
    }
    unit* all = nullptr;
    for (size_t i = 0; i < runs; ++i) all = mergeLists(sorted[i], all);
    return all;
}

unit* reduceUnit(const char* text) {
    const bool isPrimitive = std::strcmp(text, primitivestring) == 0;
    UnitPointer record = newUnit(isPrimitive ? primitivestring : "");
    if (record == nullptr) {
        throw_exception1("not enough memory for unit string '%s'", text);
        return nullptr;
    }
    if (isPrimitive) {
        record->primitive = 1;
        return record.release();
    }
    Reduction reduction{std::move(record), text};
    if (std::strchr(text, *divider) != std::strrchr(text, *divider)) {
        throw_exception2("invalid unit string '%s':  only one '%s' allowed", text, divider);
        return nullptr;
    }
    if (text[std::strspn(text, validchars)] != '\0') {
        throw_exception1("invalid characters in unit string '%s'", text);
        return nullptr;
    }
    const char* start = text + std::strspn(text, " \t");
    reduction.remainder = start;
    if (beginsWithNumber(start)) {
        char* end = nullptr;
        reduction.result->factor = std::strtod(start, &end);
        reduction.remainder = end;
    }
    if (!applyTokens(reduction)) return nullptr;
    unit& result = *reduction.result;
    result.numerator = sortUnitList(result.numerator);
    result.denominator = sortUnitList(result.denominator);
    cancelNames(result);
    return reduction.result.release();
}
