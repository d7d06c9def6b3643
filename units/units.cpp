// SPDX-License-Identifier: MIT
//
// The public operations and the error state.
#include "unitlist.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <new>
#include <utility>

namespace {

constexpr size_t maxMessageParts = 254; // format and texts together

int error_status = 0;
char error_message[256];

std::string reducedText; // what units_reduce returned last

bool isReady() {
    return !unitTable.IsEmpty() || unitInitialize() == 0;
}

double convert(const char* from, const char* to, const UnitsCharge& charge) {
    bool isGivenUp = false;
    const UnitsCharge counted = [&](uint64_t work) {
        return !(isGivenUp = isGivenUp || (charge && !charge(work)));
    };
    const std::optional<ReducedUnit> source = reduceUnit(from, counted);
    if (isGivenUp) return 0.0;
    const std::optional<ReducedUnit> target = reduceUnit(to, counted);
    if (!source || !target) return 0.0;
    if (!source->powers.empty() && source->powers != target->powers) {
        throw_exception2("'%s' and '%s' have incompatible units", from, to);
        return 0.0;
    }
    if (target->factor == 0.0) {
        throw_exception1("illegal zero factor in '%s'", to);
        return 0.0;
    }
    return source->factor / target->factor;
}

// Appends the names of one side, each after a blank.
void appendNames(std::string& text, const std::vector<UnitPower>& powers, int sign) {
    for (const UnitPower& power : powers) {
        for (int32_t i = sign * power.count; i > 0; --i) text.append(1, ' ').append(*power.name);
    }
}

std::string describe(const ReducedUnit& reduced) {
    char factor[32];
    std::snprintf(factor, sizeof factor, "%lg", reduced.factor);
    std::string text = factor;
    if (text.find_first_of(".eE") == std::string::npos) text += ".0";
    appendNames(text, reduced.powers, 1);
    std::string divisor;
    appendNames(divisor, reduced.powers, -1);
    return divisor.empty() ? text : text + " /" + divisor;
}

// The same with exponents, none above the greatest that can be read.
void appendPowers(std::string& text, const std::vector<UnitPower>& powers, int sign) {
    for (const UnitPower& power : powers) {
        for (int32_t left = sign * power.count; left > 0; left -= maxExponent) {
            text.append(1, ' ').append(*power.name);
            if (left > 1) text.append(1, '^').append(std::to_string(std::min(left, maxExponent)));
        }
    }
}

std::string definitionOf(const ReducedUnit& reduced) {
    char factor[40];
    std::snprintf(factor, sizeof factor, "%.17g", reduced.factor);
    std::string text = factor;
    appendPowers(text, reduced.powers, 1);
    std::string divisor;
    appendPowers(divisor, reduced.powers, -1);
    return divisor.empty() ? text : text + " /" + divisor;
}

// Whether the unit could be defined.
bool define(const char* name, const char* definition, const UnitsCharge& charge) {
    if (std::strcmp(definition, primitivestring) == 0) return unitTable.AddPrimitive(name, UnitOrigin::User);
    std::optional<ReducedUnit> reduced = reduceUnit(definition, charge);
    return reduced && unitTable.Add(name, std::move(*reduced), UnitOrigin::User);
}

} // namespace

double units_convert(const char* from, const char* to, const UnitsCharge& charge) {
    if (!isReady()) return 0.0;
    try {
        return convert(from, to, charge);
    } catch (const std::bad_alloc&) {
        throw_exception1("not enough memory for unit string '%s'", from);
        return 0.0;
    }
}

const char* units_reduce(const char* text) {
    if (!isReady()) return nullptr;
    try {
        const std::optional<ReducedUnit> reduced = reduceUnit(text);
        if (!reduced) return nullptr;
        reducedText = describe(*reduced);
        return reducedText.c_str();
    } catch (const std::bad_alloc&) {
        throw_exception1("not enough memory for unit string '%s'", text);
        return nullptr;
    }
}

std::string units_definition(const char* name) {
    const Unit* const unit = unitTable.Find(name);
    if (unit == nullptr || !std::isnormal(unit->reduced.factor)) return "";
    try {
        return definitionOf(unit->reduced);
    } catch (const std::bad_alloc&) {
        return "";
    }
}

std::vector<std::string> units_readings(const std::string& name) {
    std::vector<std::string> readings;
    isReady(); // for the prefixes
    for (const std::string ending : {"", "s", "es"}) {
        const size_t length = name.size() - std::min(name.size(), ending.size());
        if (length == 0 || name.compare(length, std::string::npos, ending) != 0) continue;
        const std::string singular = name.substr(0, length);
        readings.push_back(singular);
        for (const UnitPrefix& prefix : unitTable.Prefixes()) {
            const size_t behind = prefix.name.size();
            if (length > behind && singular.compare(0, behind, prefix.name) == 0)
                readings.push_back(singular.substr(behind));
        }
    }
    return readings;
}

void units_new(const char* name, const char* definition, const UnitsCharge& charge) {
    if (!isReady()) return;
    if (unitTable.Find(name) != nullptr) {
        throw_exception1("unit '%s' is already defined", name);
        return;
    }
    if (!isLettersOnly(name)) {
        throw_exception1("non-alphabetic characters in unit name '%s'", name);
        return;
    }
    bool isDefined = false;
    try {
        isDefined = define(name, definition, charge);
    } catch (const std::bad_alloc&) {
    }
    if (!isDefined) throw_exception1("'%s' cannot be reduced to primitive units", definition);
}

bool removeUnit(const char* name) {
    if (!isReady()) return true;
    try {
        return !unitTable.Remove(name);
    } catch (const std::bad_alloc&) {
        throw_exception1("not enough memory for unit string '%s'", name);
        return true;
    }
}

void units_record_changes(UnitsUndo record) {
    unitTable.record = std::move(record);
}

void unitFreeMemory() {
    unitTable.Clear();
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
