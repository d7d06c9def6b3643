// SPDX-License-Identifier: MIT
//
// The known units and prefixes, and how a name is found among them.  Private to the unit library.
#ifndef TALLYQUILL_UNITLIST_H
#define TALLYQUILL_UNITLIST_H

#include "units.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

// A primitive name and how often it occurs: above the '/', or below it with a negative count; never 0.  Each
// name is stored once, so that equal names have equal addresses.
struct UnitPower {
    const std::string* name;
    int32_t count;

    bool operator==(const UnitPower& other) const { return name == other.name && count == other.count; }
};

// What an expression or a unit is worth: a factor times primitive units, sorted by name in byte order.
struct ReducedUnit {
    double factor = 1.0;
    std::vector<UnitPower> powers;
};

struct Unit {
    std::string name;
    ReducedUnit reduced; // a primitive unit is itself once
    size_t position;     // in the order of definition
};

struct UnitPrefix {
    std::string name;
    double factor;
};

// A unit found under a name, and the prefix (or null) that stood before it.
struct UnitMatch {
    const Unit* found;
    const UnitPrefix* prefix;
};

enum class UnitOrigin { Catalogue, User }; // the catalogue's units are not taken back with a person's changes

// All units and prefixes.  What adds to them throws std::bad_alloc without memory and has then changed nothing.
class UnitTable {
public:
    bool IsEmpty() const { return units.empty(); }

    void AddPrefix(std::string_view name, double factor);
    const std::vector<UnitPrefix>& Prefixes() const { return prefixes; }

    // Adds a unit under a name that none has.  False: all units together would have too many names.
    bool Add(std::string_view name, ReducedUnit reduced, UnitOrigin origin);
    bool AddPrimitive(std::string_view name, UnitOrigin origin);

    // False when there is none of exactly this name.
    bool Remove(std::string_view name);

    // The unit of exactly this name, or null.
    const Unit* Find(std::string_view name) const;

    // The unit of a factor's name: exact, with a prefix, as a plural in s, as a plural in es.  Of several readings
    // with a prefix the unit that was defined first wins.
    UnitMatch FindFactor(std::string_view name) const;

    // Names that look-ups compared so far, by hash or one by one.  Tests hold it against the number of look-ups.
    mutable uint64_t compared = 0;

    UnitsUndo record; // see units_record_changes

    void Clear() { *this = UnitTable(); }

private:
    // By a view of the unit's own name.
    using Index = std::unordered_map<std::string_view, std::unique_ptr<Unit>>;

    UnitMatch FindPrefixed(std::string_view name) const;
    UnitMatch FindSingular(std::string_view name) const;
    std::shared_ptr<Index::node_type> MakeHolder();

    Index units;
    std::vector<UnitPrefix> prefixes;
    std::unordered_set<std::string> primitiveNames; // all there ever were: units defined from them stay
    size_t defined = 0;                             // units ever added
    size_t powersHeld = 0;                          // by all units, those that can come back included
};

extern UnitTable unitTable;

constexpr int32_t maxExponent = 1000;

bool isLettersOnly(std::string_view name); // false for an empty name

// Reduces a unit expression with the units that exist at the moment; none, and the error state set, on failure.
// Throws std::bad_alloc.  The text "-primitive" has the factor 1 and no names.
std::optional<ReducedUnit> reduceUnit(const char* text, const UnitsCharge& charge = {});

#endif
