// SPDX-License-Identifier: MIT
//
// The catalogue a second time, typed for the tests: every unit with its definition, with its size as a
// product of the defining decimals, and with its dimension.
#pragma once

#include <gmpxx.h>

#include <array>
#include <string>
#include <vector>

// Exponents of meter, gram, second, ampere, kelvin, mole, candela.
using Dimension = std::array<int, 7>;

struct TableUnit {
    std::string name;
    std::string definition; // "-primitive" for a primitive unit
    mpq_class size;         // in meters, grams, seconds and so on, exact
    Dimension dimension;
};

struct TablePrefix {
    std::string name;
    std::string factor; // as a decimal text
};

const std::vector<TableUnit>& tableUnits();      // in the order of the catalogue
const std::vector<TablePrefix>& tablePrefixes(); // likewise
const TableUnit& tableUnit(const std::string& name);

// "-1.25E-3" as a fraction.
mpq_class exactDecimal(const std::string& text);

// True if the double lies within 4 units of its last place of the exact value.
bool isWithinFourUlps(double value, const mpq_class& exact);
