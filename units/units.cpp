// SPDX-License-Identifier: MIT
//
// The public operations and the error state.
#include "units.h"
#include "unitlist.h"

#include <cstdio>
#include <cstring>
#include <new>

namespace {

constexpr size_t maxMessageParts = 254; // format and texts together

int error_status = 0;
char error_message[256];

char* reducedText = nullptr; // what units_reduce returned last

bool isReady() {
    return uroot != nullptr || unitInitialize() == 0;
}

bool haveEqualNames(const unit* a, const unit* b) {
    for (; a != nullptr && b != nullptr; a = a->next, b = b->next) {
        if (compareNames(*a, *b) != 0) return false;
    }
    return a == b;
}

bool isDimensionless(const unit& u) {
    return u.numerator == nullptr && u.denominator == nullptr;
}

bool areCompatible(const unit& from, const unit& to) {
    return isDimensionless(from) ||
           (haveEqualNames(from.numerator, to.numerator) && haveEqualNames(from.denominator, to.denominator));
}

// Appends the names, each after a blank, to a heap text: all in one piece, since there may be 100,000.
char* appendNames(char* text, const unit* names) {
    size_t length = 0;
    for (const unit* n = names; n != nullptr; n = n->next) length += 1 + std::strlen(n->name);
    const std::unique_ptr<char[]> joined(new (std::nothrow) char[length + 1]);
    if (joined == nullptr) {
        delete[] text;
        return nullptr;
    }
    char* end = joined.get();
    for (const unit* n = names; n != nullptr; n = n->next) {
        const size_t nameLength = std::strlen(n->name);
        *end = ' ';
        std::memcpy(end + 1, n->name, nameLength);
        end += 1 + nameLength;
    }
    *end = '\0';
    return stringappend(text, joined.get());
}

// A heap text, or null without memory.
char* describe(const unit& reduced) {
    char factor[32];
    std::snprintf(factor, sizeof factor, "%lg", reduced.factor);
    char* text = stringappend(nullptr, factor);
    if (text != nullptr && std::strpbrk(factor, ".eE") == nullptr) text = stringappend(text, ".0");
    if (text != nullptr) text = appendNames(text, reduced.numerator);
    if (reduced.denominator == nullptr) return text;
    if (text != nullptr) text = stringappend(text, " /");
    return text != nullptr ? appendNames(text, reduced.denominator) : nullptr;
}

} // namespace

double units_convert(const char* from, const char* to) {
    if (!isReady()) return 0.0;
    const UnitPointer source(reduceUnit(from));
    const UnitPointer target(reduceUnit(to));
    if (source == nullptr || target == nullptr) return 0.0;
    if (!areCompatible(*source, *target)) {
        throw_exception2("'%s' and '%s' have incompatible units", from, to);
        return 0.0;
    }
    if (target->factor == 0.0) {
        throw_exception1("illegal zero factor in '%s'", to);
        return 0.0;
    }
    return source->factor / target->factor;
}

const char* units_reduce(const char* text) {
    if (!isReady()) return nullptr;
    const UnitPointer reduced(reduceUnit(text));
    if (reduced == nullptr) return nullptr;
    char* described = describe(*reduced);
    if (described == nullptr) throw_exception1("not enough memory for unit string '%s'", text);
    delete[] reducedText;
    reducedText = described;
    return reducedText;
}

void units_new(const char* name, const char* definition) {
    if (!isReady()) return;
    if (findUnitExactly(name) != nullptr) {
        throw_exception1("unit '%s' is already defined", name);
        return;
    }
    if (!isLettersOnly(name)) {
        throw_exception1("non-alphabetic characters in unit name '%s'", name);
        return;
    }
    UnitPointer defined(reduceUnit(definition));
    if (defined == nullptr || !renameUnit(*defined, name) || !appendUnit(defined, UnitOrigin::User)) {
        throw_exception1("'%s' cannot be reduced to primitive units", definition);
    }
}

bool removeUnit(const char* name) {
    return !isReady() || !hideUnit(name);
}

uint64_t units_work() {
    return unitWork;
}

void units_clear_exception() {
    error_status = 0;
}

const char* units_check_exception() {
    return error_status != 0 ? error_message : nullptr;
}

void throw_exception1(const char* format, const char* text) {
    throw_exception2(format, text, "");
}

void throw_exception2(const char* format, const char* text1, const char* text2) {
    error_status = 1;
    if (std::strlen(format) + std::strlen(text1) + std::strlen(text2) > maxMessageParts) {
        std::snprintf(error_message, sizeof error_message, "%s", format);
    } else {
        std::snprintf(error_message, sizeof error_message, format, text1, text2);
    }
}

char* stringappend(char* text, const char* more) {
    const size_t length = text != nullptr ? std::strlen(text) : 0;
    const size_t moreLength = std::strlen(more);
    char* grown = new (std::nothrow) char[length + moreLength + 1];
    if (grown != nullptr) {
        if (length != 0) std::memcpy(grown, text, length);
        std::memcpy(grown + length, more, moreLength);
        grown[length + moreLength] = '\0';
    }
    delete[] text;
    return grown;
}
