// SPDX-License-Identifier: MIT
//
// The known units and prefixes, and how a name is found among them. Private to the unit library.
#pragma once

#include "units.h"

#include <array>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// A primitive name and how often it occurs: above the '/', or below it with a negative count; never 0. Each
// name is stored once, so that equal names have equal addresses.
struct UnitPower {
    const std::string* name;
    int32_t count;

    bool operator==(const UnitPower& other) const { return name == other.name && count == other.count; }
};

// The value of an expression or a unit: a factor times primitive units, sorted by name in byte order.
struct ReducedUnit {
    double factor = 1.0;
    std::vector<UnitPower> powers;
};

struct Unit {
    ReducedUnit reduced; // a primitive unit is itself once
    size_t position;     // in the order of definition
};

struct UnitPrefix {
    std::string name;
    double factor;
};

// What a factor's name may stand for: a prefix (or null), a unit's name, and a plural's ending.
struct UnitReading {
    const UnitPrefix* prefix;
    std::string_view name;
    std::string_view ending;
    const Unit* found = nullptr; // the unit of the name, where it was looked for and there is one
};

// All units and prefixes. What adds to them throws std::bad_alloc without memory and has then changed
// nothing.
class UnitTable {
public:
    std::vector<UnitPrefix> prefixes;
    UnitsUndo record;              // see units_record_changes
    uint64_t version = 1;          // see units_version
    mutable uint64_t compared = 0; // look-ups and prefixes compared. Tests hold it against the look-ups

    bool IsEmpty() const { return units.empty(); }

    // Adds a unit under a name that none has. False, with a message, when the definition cannot be reduced,
    // and without one when all units together would have too many names.
    bool Define(std::string_view name, const char* definition, const UnitsCharge& charge = {});

    bool Remove(std::string_view name); // false when there is none of exactly this name

    std::vector<std::string> Names() const;        // of all units, in byte order
    const Unit* Find(std::string_view name) const; // the unit of exactly this name, or null

    // All readings of a factor's name: the name itself, what it has behind a prefix, then the same without a
    // final s, and es.
    std::vector<UnitReading> Readings(std::string_view name) const;

    // The first of them that has a unit, but of several with a prefix that of the unit that was defined
    // first.
    UnitReading FindFactor(std::string_view name) const;

private:
    // Most names differ in their lengths.
    struct ByLength {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const {
            return a.size() != b.size() ? a.size() < b.size() : a < b;
        }
    };
    using Units = std::map<std::string, Unit, ByLength>;

    void Free(const Units::node_type& unit);

    Units units;
    std::set<std::string, std::less<>> primitiveNames; // all there ever were: units defined from them stay
    size_t defined = 0;                                // units ever added
    size_t powersHeld = 0;                             // by all units, those that can come back included
};

extern UnitTable unitTable;

constexpr int32_t MAX_EXPONENT = 1000;

bool isLettersOnly(std::string_view name); // false for an empty name

// Reduces a unit expression with the units that exist at the moment; none, and the error state set, on
// failure. Throws std::bad_alloc. The text "-primitive" has the factor 1 and no names.
std::optional<ReducedUnit> reduceUnit(const char* text, const UnitsCharge& charge = {});

// --- The catalogue ---

// A name and its factor, definition or full name.
struct TextPair {
    const char* name;
    const char* text;
};

// Lists of entries, each ending with a pair of nulls.
enum CatalogueTable {
    PREFIXES,
    BASE_UNITS,
    DERIVED_UNITS,
    NON_SI_UNITS,
    ABBREVIATIONS,
    NON_SI_ABBREVIATIONS
};
using CatalogueTables = std::array<const TextPair*, NON_SI_ABBREVIATIONS + 1>;
extern const CatalogueTables CATALOGUE_TABLES;

// Adds the tables' entries in their order; a definition may only use names that come earlier. 0 on success;
// at the first entry that fails, also where memory ends, it stops with 1 and the message set.
int buildCatalogue(const CatalogueTables& tables);
