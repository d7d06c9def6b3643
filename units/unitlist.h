// SPDX-License-Identifier: MIT
//
// The known units and prefixes, and how a name is found among them.  Private to the unit library.
#ifndef TALLYQUILL_UNITLIST_H
#define TALLYQUILL_UNITLIST_H

#include "units.h"

#include <memory>
#include <string_view>

struct unitPrefix {
    char* name; // heap text of its own
    double factor;
    unitPrefix* next;
};

extern unit* uroot;       // all units, in the order of their definition
extern unitPrefix* proot; // all prefixes, in the order of the catalogue

// A unit found under a name, and the prefix (or null) that stood before it.
struct UnitMatch {
    const unit* found;
    const unitPrefix* prefix;
};

struct UnitDeleter {
    void operator()(unit* record) const { destroyunit(record); }
};
using UnitPointer = std::unique_ptr<unit, UnitDeleter>;

bool isLettersOnly(std::string_view name); // false for an empty name

// A new record: factor 1.0, not primitive, empty lists.  Null if there is no memory.
UnitPointer newUnit(std::string_view name);

enum class UnitOrigin { Catalogue, User }; // the catalogue's units are not taken back with a person's changes

// Give the record a name, or append it, or append a prefix.  False, and nothing changed, without memory.
bool renameUnit(unit& record, std::string_view name);
bool appendUnit(UnitPointer& record, UnitOrigin origin); // takes the record over on success
bool appendPrefix(const char* name, double factor);

// The first unit of exactly this name; null for none, and for a name that is not letters only.
unit* findUnitExactly(std::string_view name);

// The unit of a factor's name: exact, with a prefix, as a plural in s, as a plural in es.
UnitMatch findUnit(std::string_view name);

// Makes the unit of exactly this name unfindable: its name begins with '#' from now on, its record stays in
// the list.  Its numerator and denominator are freed, when changes are recorded at their end.  False for no unit.
bool hideUnit(std::string_view name);

// What units_work gives, and how many characters of a name count for one more.
extern uint64_t unitWork;
constexpr size_t bytesPerWork = 64;

// As strcmp orders the names; counted as work.
int compareNames(const unit& a, const unit& b);

#endif
