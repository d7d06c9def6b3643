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

constexpr size_t MAX_MESSAGE_PARTS = 254; // format and texts together

int error_status;
char error_message[256];

std::string reducedText; // what units_reduce returned last

// What an operation returns, which finds the catalogue built; where that fails or memory ends it is nothing,
// with a message.
template <class Operation> auto perform(const char* text, Operation operation) -> decltype(operation()) {
    try {
        if (unitInitialize() == 0) return operation();
    } catch (const std::bad_alloc&) {
        throw_exception1("not enough memory for unit string '%s'", text);
    }
    return {};
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
    if (!source->powers.empty() && source->powers != target->powers)
        return throw_exception2("'%s' and '%s' have incompatible units", from, to), 0.0;
    if (target->factor == 0.0) return throw_exception1("illegal zero factor in '%s'", to), 0.0;
    return source->factor / target->factor;
}

// The factor, the names of the numerator, and behind " /" those of the denominator, each after a blank: with
// exponents up to the greatest, or each by itself for 1.
std::string textOf(const char* format, const ReducedUnit& unit, int32_t greatest) {
    char factor[40];
    std::snprintf(factor, sizeof factor, format, unit.factor);
    std::string sides[2];
    for (const UnitPower& power : unit.powers) {
        std::string& side = sides[power.count < 0 ? 1 : 0];
        for (int32_t left = std::abs(power.count); left > 0; left -= greatest) {
            side.append(1, ' ').append(*power.name);
            if (greatest > 1 && left > 1)
                side.append(1, '^').append(std::to_string(std::min(left, greatest)));
        }
    }
    const bool isBare = greatest == 1 && std::strpbrk(factor, ".eE") == nullptr;
    return factor + (isBare ? ".0" + sides[0] : sides[0]) + (sides[1].empty() ? "" : " /" + sides[1]);
}

} // namespace

double units_convert(const char* from, const char* to, const UnitsCharge& charge) {
    return perform(from, [&] { return convert(from, to, charge); });
}

const char* units_reduce(const char* text) {
    return perform(text, [text]() -> const char* {
        const std::optional<ReducedUnit> reduced = reduceUnit(text);
        if (!reduced) return nullptr;
        reducedText = textOf("%lg", *reduced, 1);
        return reducedText.c_str();
    });
}

std::string units_definition(const char* name) {
    return perform(name, [name]() -> std::string {
        const Unit* const unit = unitTable.Find(name);
        if (unit == nullptr || !std::isnormal(unit->reduced.factor)) return "";
        return textOf("%.17g", unit->reduced, MAX_EXPONENT);
    });
}

std::vector<std::string> units_names() {
    return unitInitialize() == 0 ? unitTable.Names() : std::vector<std::string>();
}

std::vector<std::string> units_prefix_names() {
    std::vector<std::string> names;
    unitInitialize();
    for (const UnitPrefix& prefix : unitTable.prefixes) names.push_back(prefix.name);
    return names;
}

std::vector<UnitSpelling> units_spellings(std::string_view start) {
    std::vector<UnitSpelling> spellings;
    const std::vector<std::string> units = units_names();
    const auto add = [&](const std::string& prefix, const std::string& unit) {
        std::string name = prefix + unit;
        if (name.compare(0, start.size(), start) == 0) spellings.push_back({std::move(name), prefix.size()});
    };
    for (const std::string& unit : units) add("", unit);
    for (const std::string& prefix : units_prefix_names()) {
        if (start.substr(0, prefix.size()).compare(prefix.substr(0, start.size())) != 0) continue;
        add(prefix, "");
        for (const std::string& unit : units) add(prefix, unit);
    }
    return spellings;
}

std::vector<std::string> units_readings(const std::string& name) {
    std::vector<std::string> readings;
    unitInitialize(); // for the prefixes
    for (const UnitReading& reading : unitTable.Readings(name)) readings.emplace_back(reading.name);
    return readings;
}

void units_new(const char* name, const char* definition, const UnitsCharge& charge) {
    perform(definition, [&] {
        if (unitTable.Find(name) != nullptr) return throw_exception1("unit '%s' is already defined", name);
        if (!isLettersOnly(name))
            return throw_exception1("non-alphabetic characters in unit name '%s'", name);
        bool isDefined = false;
        try {
            isDefined = unitTable.Define(name, definition, charge);
        } catch (const std::bad_alloc&) {
        }
        return isDefined || throw_exception1("'%s' cannot be reduced to primitive units", definition);
    });
}

bool removeUnit(const char* name) {
    return !perform(name, [name] { return unitTable.Remove(name); });
}

void units_record_changes(UnitsUndo record) {
    unitTable.record = std::move(record);
}

uint64_t units_version() {
    return unitTable.version;
}

void unitFreeMemory() {
    const uint64_t version = unitTable.version + 1;
    unitTable = UnitTable();
    unitTable.version = version;
}

void units_clear_exception() {
    error_status = 0;
}

const char* units_check_exception() {
    return error_status != 0 ? error_message : nullptr;
}

bool throw_exception1(const char* format, const char* text) {
    return throw_exception2(format, text, "");
}

bool throw_exception2(const char* format, const char* text1, const char* text2) {
    error_status = 1;
    const bool fits = std::strlen(format) + std::strlen(text1) + std::strlen(text2) <= MAX_MESSAGE_PARTS;
    std::snprintf(error_message, sizeof error_message, fits ? format : "%s", fits ? text1 : format, text2);
    return false;
}
