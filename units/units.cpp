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

// What an operation returns; where memory ends that is its failure, with a message about the text.
template <class Operation> auto withMemory(const char* text, Operation operation) -> decltype(operation()) {
    try {
        return operation();
    } catch (const std::bad_alloc&) {
        throw_exception1("not enough memory for unit string '%s'", text);
        return {};
    }
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

// Appends the names of one side, each after a blank: with exponents up to the greatest, or each by itself
// for 1.
void appendNames(std::string& text, const std::vector<UnitPower>& powers, int sign, int32_t greatest) {
    for (const UnitPower& power : powers) {
        for (int32_t left = sign * power.count; left > 0; left -= greatest) {
            text.append(1, ' ').append(*power.name);
            if (greatest > 1 && left > 1)
                text.append(1, '^').append(std::to_string(std::min(left, greatest)));
        }
    }
}

std::string textOf(const std::string& factor, const std::vector<UnitPower>& powers, int32_t greatest) {
    std::string text = factor;
    std::string divisor;
    appendNames(text, powers, 1, greatest);
    appendNames(divisor, powers, -1, greatest);
    return divisor.empty() ? text : text + " /" + divisor;
}

std::string print(const char* format, double factor) {
    char text[40];
    std::snprintf(text, sizeof text, format, factor);
    return text;
}

// Whether the unit could be defined.
bool define(const char* name, const char* definition, const UnitsCharge& charge) {
    if (std::strcmp(definition, primitivestring) == 0) return unitTable.AddPrimitive(name);
    std::optional<ReducedUnit> reduced = reduceUnit(definition, charge);
    return reduced && unitTable.Add(name, std::move(*reduced));
}

} // namespace

double units_convert(const char* from, const char* to, const UnitsCharge& charge) {
    return isReady() ? withMemory(from, [&] { return convert(from, to, charge); }) : 0.0;
}

const char* units_reduce(const char* text) {
    if (!isReady()) return nullptr;
    return withMemory(text, [text]() -> const char* {
        const std::optional<ReducedUnit> reduced = reduceUnit(text);
        if (!reduced) return nullptr;
        std::string factor = print("%lg", reduced->factor);
        if (factor.find_first_of(".eE") == std::string::npos) factor += ".0";
        reducedText = textOf(factor, reduced->powers, 1);
        return reducedText.c_str();
    });
}

std::string units_definition(const char* name) {
    const Unit* const unit = unitTable.Find(name);
    if (unit == nullptr || !std::isnormal(unit->reduced.factor)) return "";
    return withMemory(name, [&reduced = unit->reduced] {
        return textOf(print("%.17g", reduced.factor), reduced.powers, maxExponent);
    });
}

std::vector<std::string> units_readings(const std::string& name) {
    std::vector<std::string> readings;
    isReady(); // for the prefixes
    unitTable.ForEachReading(name,
                             [&readings](std::string_view reading, const UnitPrefix*, std::string_view) {
                                 readings.emplace_back(reading);
                                 return false;
                             });
    return readings;
}

void units_new(const char* name, const char* definition, const UnitsCharge& charge) {
    if (!isReady()) return;
    if (unitTable.Find(name) != nullptr)
        throw_exception1("unit '%s' is already defined", name);
    else if (!isLettersOnly(name))
        throw_exception1("non-alphabetic characters in unit name '%s'", name);
    else if (!withMemory(definition, [&] { return define(name, definition, charge); }))
        throw_exception1("'%s' cannot be reduced to primitive units", definition);
}

bool removeUnit(const char* name) {
    return !isReady() || !withMemory(name, [name] { return unitTable.Remove(name); });
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
