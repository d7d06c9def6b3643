// SPDX-License-Identifier: MIT
//
// Units: reduces a unit expression such as "1.0E-3meter^3" or "km/hr" to a factor times primitive units,
// converts between two expressions that agree in their primitive units, and lets the user define and remove
// units. The catalogue it starts with (41 prefixes, 123 units) is built by the first call that needs it:
// about 500,000 instructions (callgrind), 0.1 ms.
//
// Unit expressions
//
//   [number] factor { separator factor } [ "/" factor { separator factor } ]
//
// A separator is a blank, a tab, '*' or '-'. At most one '/' moves the factors behind it into the divisor. A
// factor is a unit name of ASCII letters, optionally with a prefix name before it, a plural "s" or "es"
// behind it, and "^" with an exponent of 1 to 1000. Behind the '/' a factor may also be a bare number, by
// which the expression is divided; nothing may stand directly behind it. Before the '/' only the leading
// number is accepted. A number begins, after an optional sign, with a digit or with a point and a digit;
// from there it is what strtod reads, in the decimal notation of the process's LC_NUMERIC locale, which has
// to be "C" for the catalogue to be right. Names, first success wins: the exact name, upper and lower case
// being different; a prefix and a name, of several such pairs the one whose unit is earliest in the list; the
// same two without a final "s"; the same two without a final "es".
//
// Factors are doubles. They are not checked for range: a product beyond it is infinite, one below it zero,
// and the quotient of two infinite ones is not a number.
//
// Errors
//
// An operation that fails sets the library's error state: a flag and a message without frame or line feed.
// The state stays until units_clear_exception; callers clear before and check after each call. In the
// messages R stands for the text behind the leading number.
//
//   invalid unit string '%s':  only one '%s' allowed    (the text, "/")
//   invalid characters in unit string '%s'              (the text) one has a character outside `validchars`
//   illegal zero factor in '%s'                         (R or the target)
//   invalid integer exponent in '%s'                    (R) it is not 1 to 1000, or there are more than
//   100,000
//       primitive names or 4,000,000 characters of names above or below the '/'
//   invalid non-alphabetic unit name in '%s'            (R) a factor that is not letters only
//   invalid unit name '%s' in '%s'                      (name, R) an unknown unit
//   '%s' and '%s' have incompatible units               (from, to) unequal primitive units
//   unit '%s' is already defined                        (name)
//   non-alphabetic characters in unit name '%s'         (name) also an empty one
//   '%s' cannot be reduced to primitive units           (definition) replaces the message of its reduction,
//       also where memory ends and where all units together would have more than 1,000,000 names, a square
//       being one, above and below their '/'
//   not enough memory for unit string '%s'              (the text)
//   unit string '%s' takes too long                     (the text) given up by the caller's UnitsCharge
//   units failure initializing derived unit '%s' (%s)   (name, text) of an entry of the catalogue; likewise
//       prefix '%s' (%s), primitive unit '%s', non-SI unit, abbreviation and non-SI abbreviation
//
// A message whose format and texts together exceed 254 characters is the format alone, its %s as they stand.
//
// No text argument may be null. Nothing is re-entrant (shared lists, one thread). Nothing
// throws, but what a caller's UnitsCharge throws passes through, std::bad_alloc apart.
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

// Is told how much work comes next, before it is done; false gives the operation up. A unit of work takes
// 0.05 to 0.1 microseconds. An ordinary conversion counts about 20, the most expensive some hundred
// thousand; between two charges less than a millisecond passes.
using UnitsCharge = std::function<bool(uint64_t work)>;

// What the steps count for, in these units.
namespace UnitsCost {

constexpr uint64_t LOOK_UP = 4;         // of a factor's name
constexpr uint64_t NAME = 4;            // of a primitive unit, with its exponent
constexpr uint64_t MULTIPLICATIONS = 8; // so many count 1
constexpr uint64_t TEXT_BYTES = 20;     // every so many that are read
constexpr uint64_t NAME_BYTES = 256;    // every so many of a primitive unit's name

} // namespace UnitsCost

// ---------------------------------------------------------------------------------------------------------
// Operations. They build the catalogue first while there are no units; if that fails they return their
// failure value at once, with the catalogue's message in the error state.

// The number of `to` units in one `from` unit; 0.0 with the error state set on failure. Incompatible units
// are reported before a zero target. If both texts are wrong the message is about `to`.
// A `from` without primitive units (radian, rpm-second, the empty text) converts to anything: the primitive
// units of `to` are not looked at.
double units_convert(const char* from, const char* to, const UnitsCharge& charge = {});

// The reduced form of `text`: the factor as "%lg" prints it, with ".0" behind it if that shows neither point
// nor exponent, the names of the numerator, and behind " /" those of the denominator, each after a blank
// ("1000.0 gram meter / second second"). None (null) on failure. The text belongs to the library and is
// valid until the next call.
const char* units_reduce(const char* text);

// The definition that makes the unit of exactly this name again, whatever became of the units it was defined
// from: the factor with all its digits and the primitive names with their exponents ("12.5 meter^3 /
// second"). Empty for no such unit, and where the factor has no digits to give (zero, infinite, subnormal).
std::string units_definition(const char* name);

// The names that a factor of this name may stand for, whether there are units of these names or not: the name
// itself first, what it has behind a prefix, and the same without a final "s" or "es".
std::vector<std::string> units_readings(const std::string& name);

// The names of all units in byte order, and those of the prefixes. Empty where the catalogue fails.
std::vector<std::string> units_names();
std::vector<std::string> units_prefix_names();

// A name that is known: a unit's, a prefix's, or both behind each other.
struct UnitSpelling {
    std::string name;
    size_t prefixLength; // of the prefix at its start: 0 for a unit alone, the whole name for a prefix alone

    bool IsPrefix() const { return prefixLength == name.size(); }
};

// The names that begin with `start`: the units in byte order, then each prefix, alone and before each unit.
std::vector<UnitSpelling> units_spellings(std::string_view start);

// Defines the unit `name` (letters only, upper and lower case being different) as `definition`, a unit
// expression, or as a new primitive unit if the definition is exactly "-primitive". On failure the error
// state is set and nothing is defined.
void units_new(const char* name, const char* definition, const UnitsCharge& charge = {});

// Removes the unit with exactly this name, from the catalogue or the user's. Units defined from it stay as
// they are, and the name can be defined again. False if it was removed, true if there is no such unit; the
// error state is set only if the catalogue fails or memory ends.
bool removeUnit(const char* name);

// Another number after each change of a unit: what was converted before may give another number now.
uint64_t units_version();

// Is handed what takes a change back: it may be called once, the later ones first, and never fails.
using UnitsUndo = std::function<void(std::function<void()> takeBack)>;

// From now on `record` gets a function for each definition and removal by the two operations above. Called,
// a unit that was defined is gone, and one that was removed is there as before, at the same place in the
// order of definition. A catalogue that was built meanwhile stays. An empty `record` ends this.
void units_record_changes(UnitsUndo record);

// Clears the error state.
void units_clear_exception();

// The message of the error state (at most 255 characters, valid until the next failure), or none (null).
const char* units_check_exception();

// Frees every unit and prefix. The next operation that needs the catalogue builds it anew, without the
// user's units.
void unitFreeMemory();

// ---------------------------------------------------------------------------------------------------------
// Internal operations, and the texts of the grammar.

constexpr const char* unitNameCharacters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
constexpr const char* validchars = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789. \t*^/+-";
constexpr const char* separators = " \t*-";
constexpr const char* divider = "/";
constexpr const char* primitivestring = "-primitive"; // the definition of a new primitive unit

// Builds the catalogue: 0 on success, 1 on failure with the message in the error state; the entries before
// the failing one stay. Does nothing and returns 0 while there are units.
int unitInitialize();

// Set the error state to the format with its one or two texts. False.
bool throw_exception1(const char* format, const char* text);
bool throw_exception2(const char* format, const char* text1, const char* text2);
