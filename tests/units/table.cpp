// SPDX-License-Identifier: MIT
#include "table.h"

#include <gtest/gtest.h>

#include <cmath>
#include <sstream>

namespace {

struct Row {
    const char* name;
    const char* definition;
    const char* decimals; // their product is the unit's size
    Dimension dimension;
};

constexpr Dimension NONE = {};
constexpr Dimension LENGTH = {1};
constexpr Dimension AREA = {2};
constexpr Dimension VOLUME = {3};
constexpr Dimension MASS = {0, 1};
constexpr Dimension DURATION = {0, 0, 1};
constexpr Dimension FREQUENCY = {0, 0, -1};
constexpr Dimension CURRENT = {0, 0, 0, 1};
constexpr Dimension PRESSURE = {-1, 1, -2};
constexpr Dimension ENERGY = {2, 1, -2};
constexpr Dimension CHARGE = {0, 0, 1, 1};
constexpr Dimension FLUX = {2, 1, -2, -1};
constexpr Dimension FLUX_DENSITY = {0, 1, -2, -1};
constexpr Dimension CONDUCTANCE = {-2, -1, 3, 2};
constexpr Dimension DOSE = {2, 0, -2};

// Mass counts in grams, so that every kilogram brings a factor of 1000.
const Row ROWS[] = {
    {"meter", "-primitive", "1", LENGTH},
    {"gram", "-primitive", "1", MASS},
    {"second", "-primitive", "1", DURATION},
    {"ampere", "-primitive", "1", CURRENT},
    {"kelvin", "-primitive", "1", {0, 0, 0, 0, 1}},
    {"mole", "-primitive", "1", {0, 0, 0, 0, 0, 1}},
    {"candela", "-primitive", "1", {0, 0, 0, 0, 0, 0, 1}},

    {"radian", "meter/meter", "1", NONE},
    {"steradian", "meter^2/meter^2", "1", NONE},
    {"hertz", "/second", "1", FREQUENCY},
    {"newton", "meter-kilogram/second^2", "1000", {1, 1, -2}},
    {"pascal", "kilogram/meter-second^2", "1000", PRESSURE},
    {"joule", "meter^2-kilogram/second^2", "1000", ENERGY},
    {"watt", "meter^2-kilogram/second^3", "1000", {2, 1, -3}},
    {"coulomb", "second-ampere", "1", CHARGE},
    {"volt", "meter^2-kilogram/second^3-ampere", "1000", {2, 1, -3, -1}},
    {"farad", "second^4-ampere^2/meter^2-kilogram", "1E-3", {-2, -1, 4, 2}},
    {"ohm", "meter^2-kilogram/second^3-ampere^2", "1000", {2, 1, -3, -2}},
    {"siemens", "second^3-ampere^2/meter^2-kilogram", "1E-3", CONDUCTANCE},
    {"weber", "meter^2-kilogram/second^2-ampere", "1000", FLUX},
    {"tesla", "kilogram/second^2-ampere", "1000", FLUX_DENSITY},
    {"henry", "meter^2-kilogram/second^2-ampere^2", "1000", {2, 1, -2, -2}},
    {"lumen", "candela-steradian", "1", {0, 0, 0, 0, 0, 0, 1}},
    {"lux", "candela-steradian/meter^2", "1", {-2, 0, 0, 0, 0, 0, 1}},
    {"becquerel", "/second", "1", FREQUENCY},
    {"gray", "meter^2/second^2", "1", DOSE},
    {"sievert", "meter^2/second^2", "1", DOSE},

    {"acre", "4.04685642E3meter^2", "4.04685642E3", AREA},
    {"angstrom", "1.0E-10meter", "1.0E-10", LENGTH},
    {"astronomicalUnit", "1.495979E11meter", "1.495979E11", LENGTH},
    {"atmosphere", "1.01325E5pascal", "1.01325E5 1000", PRESSURE},
    {"bar", "1.0E5pascal", "1.0E5 1000", PRESSURE},
    {"calorie", "4.1868joule", "4.1868 1000", ENERGY},
    {"curie", "3.7E10becquerel", "3.7E10", FREQUENCY},
    {"day", "8.64E4second", "8.64E4", DURATION},
    {"degree", "1.745329E-2radian", "1.745329E-2", NONE},
    {"electronVolt", "1.60219E-19joule", "1.60219E-19 1000", ENERGY},
    {"erg", "1.0E-7joule", "1.0E-7 1000", ENERGY},
    {"faraday", "9.648531coulomb", "9.648531", CHARGE},
    {"fermi", "1.0E-15meter", "1.0E-15", LENGTH},
    {"foot", "3.048E-1meter", "3.048E-1", LENGTH},
    {"gauss", "1.0E-4tesla", "1.0E-4 1000", FLUX_DENSITY},
    {"gilbert", "7.957747E-1ampere", "7.957747E-1", CURRENT},
    {"grain", "6.479891E-5kilogram", "6.479891E-5 1000", MASS},
    {"hectare", "1.0E4meter^2", "1.0E4", AREA},
    {"hour", "3.6E3second", "3.6E3", DURATION},
    {"inch", "2.54E-2meter", "2.54E-2", LENGTH},
    {"lightYear", "9.46073E15meter", "9.46073E15", LENGTH},
    {"liter", "1.0E-3meter^3", "1.0E-3", VOLUME},
    {"maxwell", "1.0E-8weber", "1.0E-8 1000", FLUX},
    {"mho", "1.0siemens", "1.0 1E-3", CONDUCTANCE},
    {"micron", "1.0E-6meter", "1.0E-6", LENGTH},
    {"mil", "2.54E-5meter", "2.54E-5", LENGTH},
    {"mile", "1.609344E3meter", "1.609344E3", LENGTH},
    {"minute", "6.0E1second", "6.0E1", DURATION},
    {"ounce", "28.3495231gram", "28.3495231", MASS},
    {"parsec", "3.085E16meter", "3.085E16", LENGTH},
    {"pica", "4.2333333E-3meter", "4.2333333E-3", LENGTH},
    {"pound", "4.535924E-1kilogram", "4.535924E-1 1000", MASS},
    {"revolution", "6.283185radian", "6.283185", NONE},
    {"revolutionPerMinute", "1.047198E-1radian/second", "1.047198E-1", FREQUENCY},
    {"week", "6.048E5second", "6.048E5", DURATION},
    {"yard", "9.144E-1meter", "9.144E-1", LENGTH},
    {"year", "3.1536E7second", "3.1536E7", DURATION},
    {"cup", "0.236588236liter", "0.236588236 1E-3", VOLUME},
    {"gallon", "16cup", "16 0.236588236 1E-3", VOLUME},
    {"quart", "4cup", "4 0.236588236 1E-3", VOLUME},
    {"pint", "2cup", "2 0.236588236 1E-3", VOLUME},
    {"tablespoon", "0.0625cup", "0.0625 0.236588236 1E-3", VOLUME},
    {"teaspoon", "0.0208333333333333cup", "0.0208333333333333 0.236588236 1E-3", VOLUME},
};

const char* const abbreviations[][2] = {
    {"m", "meter"},
    {"g", "gram"},
    {"s", "second"},
    {"A", "ampere"},
    {"K", "kelvin"},
    {"mol", "mole"},
    {"cd", "candela"},
    {"rad", "radian"},
    {"sr", "steradian"},
    {"Hz", "hertz"},
    {"N", "newton"},
    {"Pa", "pascal"},
    {"J", "joule"},
    {"W", "watt"},
    {"C", "coulomb"},
    {"V", "volt"},
    {"F", "farad"},
    {"S", "siemens"},
    {"Wb", "weber"},
    {"T", "tesla"},
    {"H", "henry"},
    {"lm", "lumen"},
    {"lx", "lux"},
    {"Bq", "becquerel"},
    {"Gy", "gray"},
    {"Sv", "sievert"},

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
};

const char* const PREFIX_NAMES[][2] = {
    {"yotta", "1e24"},  {"zetta", "1e21"}, {"exa", "1e18"},    {"peta", "1e15"},  {"tera", "1e12"},
    {"giga", "1e9"},    {"mega", "1e6"},   {"kilo", "1e3"},    {"hecto", "1e2"},  {"deka", "1e1"},
    {"deca", "1e1"},    {"deci", "1e-1"},  {"centi", "1e-2"},  {"milli", "1e-3"}, {"micro", "1e-6"},
    {"nano", "1e-9"},   {"pico", "1e-12"}, {"femto", "1e-15"}, {"atto", "1e-18"}, {"zepto", "1e-21"},
    {"yocto", "1e-24"}, {"Y", "1e24"},     {"Z", "1e21"},      {"E", "1e18"},     {"P", "1e15"},
    {"T", "1e12"},      {"G", "1e9"},      {"M", "1e6"},       {"k", "1e3"},      {"h", "1e2"},
    {"da", "1e1"},      {"d", "1e-1"},     {"c", "1e-2"},      {"m", "1e-3"},     {"u", "1e-6"},
    {"n", "1e-9"},      {"p", "1e-12"},    {"f", "1e-15"},     {"a", "1e-18"},    {"z", "1e-21"},
    {"y", "1e-24"},
};

mpq_class product(const char* decimals) {
    mpq_class result = 1;
    std::istringstream words(decimals);
    for (std::string word; words >> word;) result *= exactDecimal(word);
    return result;
}

std::vector<TableUnit> makeUnits() {
    std::vector<TableUnit> units;
    for (const Row& row : ROWS) {
        units.push_back({row.name, row.definition, product(row.decimals), row.dimension});
    }
    for (const auto& [name, full] : abbreviations) {
        for (const Row& row : ROWS) {
            if (std::string(row.name) != full) continue;
            units.push_back({name, full, product(row.decimals), row.dimension});
        }
    }
    return units;
}

} // namespace

const std::vector<TableUnit>& tableUnits() {
    static const std::vector<TableUnit> units = makeUnits();
    return units;
}

const std::vector<TablePrefix>& tablePrefixes() {
    static const std::vector<TablePrefix> prefixes = [] {
        std::vector<TablePrefix> list;
        for (const auto& [name, factor] : PREFIX_NAMES) list.push_back({name, factor});
        return list;
    }();
    return prefixes;
}

const TableUnit& tableUnit(const std::string& name) {
    for (const TableUnit& unit : tableUnits()) {
        if (unit.name == name) return unit;
    }
    ADD_FAILURE() << "no unit " << name;
    return tableUnits().front();
}

mpq_class exactDecimal(const std::string& text) {
    std::string digits;
    long exponent = 0;
    bool isFraction = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == 'e' || c == 'E') {
            exponent += std::stol(text.substr(i + 1));
            break;
        }
        if (c == '.') {
            isFraction = true;
        } else {
            digits += c;
            if (isFraction) --exponent;
        }
    }
    mpz_class power;
    mpz_ui_pow_ui(power.get_mpz_t(), 10, static_cast<unsigned long>(std::labs(exponent)));
    mpq_class result(mpz_class(digits, 10));
    if (exponent < 0) return result / power;
    return result * power;
}

bool isWithinFourUlps(double value, const mpq_class& exact) {
    if (!std::isfinite(value)) return false;
    const double size = std::fabs(value);
    const mpq_class ulp = mpq_class(std::nextafter(size, INFINITY)) - mpq_class(size);
    return abs(mpq_class(value) - exact) <= 4 * ulp;
}
