// SPDX-License-Identifier: MIT
//
// Every test begins with no units at all and a clear error state.
#ifndef TALLYQUILL_TESTS_UNITS_FIXTURE_H
#define TALLYQUILL_TESTS_UNITS_FIXTURE_H

#include "unitlist.h"

#include <gtest/gtest.h>

#include <string>
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

inline std::vector<std::string> namesOf(const unit* list) {
    std::vector<std::string> names;
    for (; list != nullptr; list = list->next) names.emplace_back(list->name);
    return names;
}

#endif
