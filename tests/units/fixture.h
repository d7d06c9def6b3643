// SPDX-License-Identifier: MIT
//
// Every test begins with no units at all and a clear error state.
#pragma once

#include "unitlist.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <utility>
#include <vector>

class UnitsTest : public testing::Test {
protected:
    UnitsTest() {
        unitFreeMemory();
        units_clear_exception();
    }
    ~UnitsTest() override { unitFreeMemory(); }
};

// The message of the error state, empty if there is none, and a clear state afterwards.
inline std::string takeMessage() {
    const char* message = units_check_exception();
    const std::string text = message != nullptr ? message : "";
    units_clear_exception();
    return text;
}

inline double convert(const std::string& from, const std::string& to) {
    return units_convert(from.c_str(), to.c_str());
}

// The message that reducing the text gives.
inline std::string messageOf(const std::string& text) {
    units_clear_exception();
    const char* reduced = units_reduce(text.c_str());
    EXPECT_EQ(reduced == nullptr, units_check_exception() != nullptr) << text;
    return takeMessage();
}

inline std::string reduced(const std::string& text) {
    const char* result = units_reduce(text.c_str());
    return result != nullptr ? result : "(" + takeMessage() + ")";
}

// The message that a definition gives.
inline std::string define(const std::string& name, const std::string& definition) {
    units_clear_exception();
    units_new(name.c_str(), definition.c_str());
    return takeMessage();
}

// The names above the '/' (sign 1) or below it (-1), a square being listed twice.
inline std::vector<std::string> namesOf(const ReducedUnit& reduced, int sign) {
    std::vector<std::string> names;
    for (const UnitPower& power : reduced.powers) {
        for (int32_t i = sign * power.count; i > 0; --i) names.push_back(*power.name);
    }
    return names;
}

// A known unit; the test fails without it.
inline const ReducedUnit& known(const std::string& name) {
    static const ReducedUnit none;
    const Unit* const unit = unitTable.Find(name);
    EXPECT_NE(unit, nullptr) << name;
    return unit != nullptr ? unit->reduced : none;
}

// What takes changes back, as whoever uses the library keeps it.
class Recording {
public:
    ~Recording() { Keep(); }

    void begin() {
        units_record_changes([this](std::function<void()> step) { steps.push_back(std::move(step)); });
    }
    void TakeBack() {
        for (; !steps.empty(); steps.pop_back()) steps.back()();
        Keep();
    }
    void Keep() {
        units_record_changes({});
        steps.clear();
    }

private:
    std::vector<std::function<void()>> steps;
};

// The work that an operation is charged.
template <class Operation> uint64_t workOf(Operation operation) {
    uint64_t total = 0;
    operation([&total](uint64_t work) {
        total += work;
        return true;
    });
    return total;
}
