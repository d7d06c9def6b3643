// SPDX-License-Identifier: MIT
//
// The known units and prefixes, and how a name is found among them.  Private to the unit library.
#pragma once

#include "units.h"

#include <algorithm>
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

// All units and prefixes.  What adds to them throws std::bad_alloc without memory and has then changed
// nothing.
class UnitTable {
public:
    bool IsEmpty() const { return units.empty(); }

    void AddPrefix(std::string_view name, double factor);
    const std::vector<UnitPrefix>& Prefixes() const { return prefixes; }

    // Adds a unit under a name that none has.  False: all units together would have too many names.
    bool Add(std::string_view name, ReducedUnit reduced);
    bool AddPrimitive(std::string_view name);

    // False when there is none of exactly this name.
    bool Remove(std::string_view name);

    // The unit of exactly this name, or null.
    const Unit* Find(std::string_view name) const;

    // The unit of a factor's name: exact, with a prefix, as a plural in s, as a plural in es.  Of several
    // readings with a prefix the unit that was defined first wins.
    UnitMatch FindFactor(std::string_view name) const;

    // Calls visit(reading, prefix, ending) with each name that a factor's name may stand for, until it
    // returns true: the name itself with a null prefix, what it has behind a prefix, then the same without a
    // final s, and es.
    template <class Visit> void ForEachReading(std::string_view name, Visit visit) const {
        for (const std::string_view ending : {"", "s", "es"}) {
            const size_t length = name.size() - std::min(name.size(), ending.size());
            if (length == 0 || name.substr(length) != ending) continue;
            const std::string_view singular = name.substr(0, length);
            if (visit(singular, nullptr, ending)) return;
            for (const UnitPrefix& prefix : prefixes) {
                ++compared;
                const size_t behind = prefix.name.size();
                if (length <= behind || singular.compare(0, behind, prefix.name) != 0) continue;
                if (visit(singular.substr(behind), &prefix, ending)) return;
            }
        }
    }

    // Names that look-ups compared so far, by hash or one by one.  Tests hold it against the number of
    // look-ups.
    mutable uint64_t compared = 0;

    UnitsUndo record; // see units_record_changes

    void Clear() { *this = UnitTable(); }

private:
    // By a view of the unit's own name.
    using Index = std::unordered_map<std::string_view, std::unique_ptr<Unit>>;

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

// Reduces a unit expression with the units that exist at the moment; none, and the error state set, on
// failure.
// Throws std::bad_alloc.  The text "-primitive" has the factor 1 and no names.
std::optional<ReducedUnit> reduceUnit(const char* text, const UnitsCharge& charge = {});

// --- The catalogue ---

// A name and its factor, definition or full name.  A table ends with a pair of nulls.
struct TextPair {
    const char* name;
    const char* text;
};

struct CatalogueTables {
    const TextPair* prefixList;
    const TextPair* baseUnits; // without texts
    const TextPair* derivedUnits;
    const TextPair* nonSIUnits;
    const TextPair* abbreviations;
    const TextPair* nonSIabbreviations;
};

extern const CatalogueTables catalogueTables;

// Appends the tables' entries to the lists in the order of the members above; a definition may only use names
// that come earlier.  0 on success; at the first entry that fails it stops with 1 and the message set.
int buildCatalogue(const CatalogueTables& tables);
