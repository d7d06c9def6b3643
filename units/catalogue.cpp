// SPDX-License-Identifier: MIT
//
// The catalogue. Its factors are the texts shown here, with their own precision: people compare results, so
// none is to be replaced by a better value.
#include "unitlist.h"

#include <cstdlib>
#include <new>
#include <utility>

namespace {

const TextPair prefixList[] = {
    {"yotta", "1e24"},  {"zetta", "1e21"},  {"exa", "1e18"},    {"peta", "1e15"},  {"tera", "1e12"},
    {"giga", "1e9"},    {"mega", "1e6"},    {"kilo", "1e3"},    {"hecto", "1e2"},  {"deka", "1e1"},
    {"deca", "1e1"},    {"deci", "1e-1"},   {"centi", "1e-2"},  {"milli", "1e-3"}, {"micro", "1e-6"},
    {"nano", "1e-9"},   {"pico", "1e-12"},  {"femto", "1e-15"}, {"atto", "1e-18"}, {"zepto", "1e-21"},
    {"yocto", "1e-24"}, {"Y", "1e24"},      {"Z", "1e21"},      {"E", "1e18"},     {"P", "1e15"},
    {"T", "1e12"},      {"G", "1e9"},       {"M", "1e6"},       {"k", "1e3"},      {"h", "1e2"},
    {"da", "1e1"},      {"d", "1e-1"},      {"c", "1e-2"},      {"m", "1e-3"},     {"u", "1e-6"},
    {"n", "1e-9"},      {"p", "1e-12"},     {"f", "1e-15"},     {"a", "1e-18"},    {"z", "1e-21"},
    {"y", "1e-24"},     {nullptr, nullptr},
};

// Mass is primitive in grams; the kilogram is the gram with a prefix.
const TextPair baseUnits[] = {
    {"meter", primitivestring},   {"gram", primitivestring},   {"second", primitivestring},
    {"ampere", primitivestring},  {"kelvin", primitivestring}, {"mole", primitivestring},
    {"candela", primitivestring}, {nullptr, nullptr},
};

const TextPair derivedUnits[] = {
    {"radian", "meter/meter"},
    {"steradian", "meter^2/meter^2"},
    {"hertz", "/second"},
    {"newton", "meter-kilogram/second^2"},
    {"pascal", "kilogram/meter-second^2"},
    {"joule", "meter^2-kilogram/second^2"},
    {"watt", "meter^2-kilogram/second^3"},
    {"coulomb", "second-ampere"},
    {"volt", "meter^2-kilogram/second^3-ampere"},
    {"farad", "second^4-ampere^2/meter^2-kilogram"},
    {"ohm", "meter^2-kilogram/second^3-ampere^2"},
    {"siemens", "second^3-ampere^2/meter^2-kilogram"},
    {"weber", "meter^2-kilogram/second^2-ampere"},
    {"tesla", "kilogram/second^2-ampere"},
    {"henry", "meter^2-kilogram/second^2-ampere^2"},
    {"lumen", "candela-steradian"},
    {"lux", "candela-steradian/meter^2"},
    {"becquerel", "/second"},
    {"gray", "meter^2/second^2"},
    {"sievert", "meter^2/second^2"},
    {nullptr, nullptr},
};

const TextPair nonSIUnits[] = {
    {"acre", "4.04685642E3meter^2"},
    {"angstrom", "1.0E-10meter"},
    {"astronomicalUnit", "1.495979E11meter"},
    {"atmosphere", "1.01325E5pascal"},
    {"bar", "1.0E5pascal"},
    {"calorie", "4.1868joule"},
    {"curie", "3.7E10becquerel"},
    {"day", "8.64E4second"},
    {"degree", "1.745329E-2radian"},
    {"electronVolt", "1.60219E-19joule"},
    {"erg", "1.0E-7joule"},
    {"faraday", "9.648531coulomb"},
    {"fermi", "1.0E-15meter"},
    {"foot", "3.048E-1meter"},
    {"gauss", "1.0E-4tesla"},
    {"gilbert", "7.957747E-1ampere"},
    {"grain", "6.479891E-5kilogram"},
    {"hectare", "1.0E4meter^2"},
    {"hour", "3.6E3second"},
    {"inch", "2.54E-2meter"},
    {"lightYear", "9.46073E15meter"},
    {"liter", "1.0E-3meter^3"},
    {"maxwell", "1.0E-8weber"},
    {"mho", "1.0siemens"},
    {"micron", "1.0E-6meter"},
    {"mil", "2.54E-5meter"},
    {"mile", "1.609344E3meter"},
    {"minute", "6.0E1second"},
    {"ounce", "28.3495231gram"},
    {"parsec", "3.085E16meter"},
    {"pica", "4.2333333E-3meter"},
    {"pound", "4.535924E-1kilogram"},
    {"revolution", "6.283185radian"},
    {"revolutionPerMinute", "1.047198E-1radian/second"},
    {"week", "6.048E5second"},
    {"yard", "9.144E-1meter"},
    {"year", "3.1536E7second"},
    {"cup", "0.236588236liter"},
    {"gallon", "16cup"},
    {"quart", "4cup"},
    {"pint", "2cup"},
    {"tablespoon", "0.0625cup"},
    {"teaspoon", "0.0208333333333333cup"},
    {nullptr, nullptr},
};

const TextPair abbreviations[] = {
    {"m", "meter"},    {"g", "gram"},      {"s", "second"},   {"A", "ampere"},     {"K", "kelvin"},
    {"mol", "mole"},   {"cd", "candela"},  {"rad", "radian"}, {"sr", "steradian"}, {"Hz", "hertz"},
    {"N", "newton"},   {"Pa", "pascal"},   {"J", "joule"},    {"W", "watt"},       {"C", "coulomb"},
    {"V", "volt"},     {"F", "farad"},     {"S", "siemens"},  {"Wb", "weber"},     {"T", "tesla"},
    {"H", "henry"},    {"lm", "lumen"},    {"lx", "lux"},     {"Bq", "becquerel"}, {"Gy", "gray"},
    {"Sv", "sievert"}, {nullptr, nullptr},
};

const TextPair nonSIabbreviations[] = {
    {"AU", "astronomicalUnit"},
    {"eV", "electronVolt"},
    {"ft", "foot"},
    {"gr", "grain"},
    {"ha", "hectare"},
    {"h", "hour"},
    {"hr", "hour"},
    {"in", "inch"},
    {"L", "liter"},
    {"Mx", "maxwell"},
    {"mi", "mile"},
    {"min", "minute"},
    {"pc", "parsec"},
    {"lb", "pound"},
    {"oz", "ounce"},
    {"rpm", "revolutionPerMinute"},
    {"sec", "second"},
    {"wk", "week"},
    {"yd", "yard"},
    {"yr", "year"},
    {"gal", "gallon"},
    {"Gal", "gallon"},
    {"qt", "quart"},
    {"Qt", "quart"},
    {"Tbsp", "tablespoon"},
    {"tbsp", "tablespoon"},
    {"tsp", "teaspoon"},
    {nullptr, nullptr},
};

constexpr const char* FAILURES[] = {
    "units failure initializing prefix '%s' (%s)",
    "units failure initializing primitive unit '%s'",
    "units failure initializing derived unit '%s' (%s)",
    "units failure initializing non-SI unit '%s' (%s)",
    "units failure initializing abbreviation '%s' (%s)",
    "units failure initializing non-SI abbreviation '%s' (%s)",
};

bool add(size_t table, const TextPair& entry) {
    try {
        if (table != PREFIXES) return unitTable.Define(entry.name, entry.text);
        unitTable.prefixes.push_back({entry.name, std::atof(entry.text)});
        return true;
    } catch (const std::bad_alloc&) {
        return false;
    }
}

} // namespace

const CatalogueTables CATALOGUE_TABLES = {prefixList, baseUnits,     derivedUnits,
                                          nonSIUnits, abbreviations, nonSIabbreviations};

int buildCatalogue(const CatalogueTables& tables) {
    for (size_t table = 0; table < tables.size(); ++table) {
        for (const TextPair* entry = tables[table]; entry->name != nullptr; ++entry) {
            if (add(table, *entry)) continue;
            throw_exception2(FAILURES[table], entry->name, entry->text);
            return 1;
        }
    }
    return 0;
}

int unitInitialize() {
    if (!unitTable.IsEmpty()) return 0;
    UnitsUndo record = std::exchange(unitTable.record, {}); // these are no changes of a person
    const int status = buildCatalogue(CATALOGUE_TABLES);
    unitTable.record = std::move(record);
    return status;
}
