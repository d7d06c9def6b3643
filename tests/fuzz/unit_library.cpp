// SPDX-License-Identifier: MIT
//
// The operations of the unit library, a line each: its first character tells which, a '|' parts its texts.
#include "fuzz.h"
#include "units.h"

#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr int MOST_LINES = 30;
constexpr size_t LONGEST_REDUCED = 1000; // that is reduced again

// What a line may take.
bool isAffordable(uint64_t work, uint64_t& left) {
    if (work > left) return false;
    left -= work;
    return true;
}

void convert(const std::string& from, const std::string& to, const UnitsCharge& charge) {
    const double there = units_convert(from.c_str(), to.c_str(), charge);
    if (units_check_exception()) {
        require(there == 0, "a conversion that fails gives 0", from);
        return;
    }
    const double again = units_convert(from.c_str(), to.c_str(), charge);
    if (units_check_exception()) return; // it took too long
    require(there == again || (std::isnan(there) && std::isnan(again)), "a conversion repeats itself", from);
}

// `isRemoved`: units were.
void reduce(const std::string& text, bool isRemoved) {
    const char* const reduced = units_reduce(text.c_str());
    if (!reduced) {
        require(units_check_exception() != nullptr, "what has no reduced form is an error", text);
        return;
    }
    const std::string once = reduced;
    if (once.find("inf") != std::string::npos || once.find("nan") != std::string::npos) return;
    if (once.size() > LONGEST_REDUCED) return; // a power is written out, factor by factor
    if (isRemoved) return;                     // it may have the name of a unit that is gone
    const char* const again = units_reduce(once.c_str());
    require(again != nullptr, "a reduced form can be reduced", once);
    requireSame(once, again, "a reduced form is its own");
}

void define(const std::string& name, const std::string& text, const UnitsCharge& charge) {
    units_new(name.c_str(), text.c_str(), charge);
    if (units_check_exception()) return;
    const std::string definition = units_definition(name.c_str());
    if (definition.empty()) return;
    const double one = units_convert(definition.c_str(), name.c_str(), charge);
    if (!units_check_exception()) require(one == 1, "a unit is what its definition says", definition);
}

bool remove(const std::string& name) {
    if (removeUnit(name.c_str())) return false;
    require(removeUnit(name.c_str()), "a unit can be removed once", name);
    return true;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    Input input(data, size);
    static const std::vector<std::string> catalogue = units_names();
    std::vector<std::function<void()>> changes;
    bool isRemoved = false;
    units_record_changes([&](std::function<void()> takeBack) { changes.push_back(std::move(takeBack)); });
    for (int i = 0; i < MOST_LINES && !input.IsOver(); i++) {
        const auto operation = static_cast<char>(input.Byte());
        if (operation == '\n') continue;
        std::string line = input.Line();
        line.resize(line.find('\0') < line.size() ? line.find('\0') : line.size());
        const size_t bar = line.find('|');
        const std::string first = line.substr(0, bar);
        const std::string second = bar < line.size() ? line.substr(bar + 1) : "";
        uint64_t left = 100000;
        const UnitsCharge charge = [&left](uint64_t work) { return isAffordable(work, left); };
        units_clear_exception();
        switch (operation) {
        case 'r': reduce(first, isRemoved); break;
        case 'n': define(first, second, charge); break;
        case 'd': isRemoved = remove(first) || isRemoved; break;
        default: convert(first, second, charge);
        }
    }
    units_clear_exception();
    // The next run begins with the catalogue. Building it anew would take ten times as long as most runs.
    units_record_changes({});
    if (changes.empty()) return 0;
    for (; !changes.empty(); changes.pop_back()) changes.back()();
    require(units_names() == catalogue, "changes that are taken back leave the catalogue");
    return 0;
}
