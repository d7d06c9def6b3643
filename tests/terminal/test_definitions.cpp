// SPDX-License-Identifier: MIT
//
// The definitions that ship: each line of each file. Units are compared with GNU units, the others with what
// they mean.
#include "OwnFiles.h"

#include "../guide.h"
#include "program.h"

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <fstream>
#include <gtest/gtest.h>
#include <map>
#include <set>
#include <sstream>
#include <string>
#include <vector>

namespace {

using NameSet = std::set<std::string>;

std::string fileOf(const std::string& name) {
    return std::string(TALLYQUILL_DEFINITIONS) + "/" + name + ".script";
}

// The names that the file defines.
NameSet namesIn(const std::string& name) {
    NameSet names;
    std::ifstream file(fileOf(name));
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const size_t start = line.rfind("unit ", 0) == 0 ? 5 : 0;
        EXPECT_TRUE(names.insert(line.substr(start, line.find_first_of("(=", start) - start)).second) << line;
    }
    EXPECT_FALSE(names.empty()) << name;
    return names;
}

// The answers to entries, with 17 figures.
std::vector<double> answersWith(const std::string& set, const std::vector<std::string>& entries) {
    std::vector<std::string> arguments = {"-q", "--figures=17", "--with", set, "--"};
    arguments.insert(arguments.end(), entries.begin(), entries.end());
    const Result run = evaluate(arguments);
    EXPECT_EQ(run.status, 0) << run.err;
    std::istringstream lines(run.out);
    std::vector<double> answers;
    for (std::string line; std::getline(lines, line);) answers.push_back(std::strtod(line.c_str(), nullptr));
    EXPECT_EQ(answers.size(), entries.size());
    answers.resize(entries.size());
    return answers;
}

double answerWith(const std::string& set, const std::string& entry) {
    return answersWith(set, {entry})[0];
}

// What GNU units says.
double gnuFactor(const std::string& from, const std::string& to) {
    // NOLINTNEXTLINE(cert-env33-c): a fixed command
    FILE* const run = popen(("units -t -o %.17g '" + from + "' '" + to + "'").c_str(), "r");
    char text[200] = {};
    EXPECT_NE(run == nullptr ? nullptr : std::fgets(text, sizeof text, run), nullptr) << from;
    EXPECT_EQ(pclose(run), 0) << from << ' ' << text;
    return std::strtod(text, nullptr);
}

void expectNear(double found, double expected, double relative, const std::string& what) {
    EXPECT_LE(std::abs(found - expected), relative * std::abs(expected))
        << what << ": " << found << ", not " << expected;
}

TEST(ShippedDefinitions, AreAllUnderstood) {
    ASSERT_EQ(shippedNames().size(), 5U);
    for (const std::string_view name : shippedNames()) {
        const Result run = evaluate({"--fail-fast", "-f", fileOf(std::string(name))});
        EXPECT_EQ(run.status, 0) << name << ": " << run.err;
    }
}

TEST(ShippedDefinitions, AreThereWhenAskedForAndNotOtherwise) {
    EXPECT_EQ(evaluate({"-q", "--with", "everyday,temperature", "fToC(212)", "1 KiB->byte"}).out,
              "100\n1024\n");
    EXPECT_EQ(evaluate({"-q", "--no-files", "--with=temperature", "cToF(100)"}).out, "212\n");
    EXPECT_EQ(evaluate({"cToF(100)"}).status, 1);
    const Result wrong = evaluate({"--with", "everyday,nothing", "1"});
    EXPECT_EQ(wrong.status, 2);
    EXPECT_NE(wrong.err.find("everyday, constants, money, time, temperature"), std::string::npos)
        << wrong.err;
}

TEST(ShippedDefinitions, SayNothingAndLeaveTheLastAnswerAlone) {
    const Result run = evaluate({"--with", "everyday,constants,money,time,temperature", "ans+1"});
    EXPECT_EQ(run.out, "ans = 1\n");
    EXPECT_EQ(run.err, "");
}

struct UnitCase {
    const char* name;
    const char* inSi; // as both programs read it
    const char* gnuName;
};

constexpr UnitCase UNIT_CASES[] = {
    {"mph", "meter/second", "mph"},
    {"kmh", "meter/second", "km/hour"},
    {"knot", "meter/second", "knot"},
    {"fps", "meter/second", "ft/s"},
    {"nauticalMile", "meter", "nauticalmile"},
    {"nmi", "meter", "nmi"},
    {"furlong", "meter", "220 yd"},
    {"fathom", "meter", "6 ft"},
    {"lightSecond", "meter", "lightsecond"},
    {"trueLightYear", "meter", "lightyear"},
    {"trueAU", "meter", "au"},
    {"trueParsec", "meter", "648000 au/pi"},
    {"trueAcre", "meter^2", "4840 yd^2"},
    {"cc", "meter^3", "cc"},
    {"trueCup", "meter^3", "cup"},
    {"trueGallon", "meter^3", "gallon"},
    {"fluidOunce", "meter^3", "fluidounce"},
    {"floz", "meter^3", "floz"},
    {"barrel", "meter^3", "barrel"},
    {"imperialGallon", "meter^3", "brgallon"},
    {"imperialPint", "meter^3", "brpint"},
    {"truePound", "kilogram", "lb"},
    {"trueOunce", "kilogram", "oz"},
    {"trueGrain", "kilogram", "grain"},
    {"troyOunce", "kilogram", "troyounce"},
    {"carat", "kilogram", "carat"},
    {"tonne", "kilogram", "tonne"},
    {"shortTon", "kilogram", "shortton"},
    {"longTon", "kilogram", "longton"},
    {"stone", "kilogram", "stone"},
    {"lbf", "newton", "lbf"},
    {"kgf", "newton", "kgf"},
    {"dyne", "newton", "dyne"},
    {"psi", "pascal", "psi"},
    {"torr", "pascal", "torr"},
    {"mmHg", "pascal", "mmHg"},
    {"inHg", "pascal", "inHg"},
    {"Wh", "joule", "watt hour"},
    {"cal", "joule", "cal_th"},
    {"Btu", "joule", "btu_IT"},
    {"footPound", "joule", "ft lbf"},
    {"trueElectronVolt", "joule", "eV"},
    {"hp", "watt", "hp"},
    {"metricHorsepower", "watt", "metrichorsepower"},
    {"Ah", "coulomb", "ampere hour"},
    {"turn", "radian", "turn"},
    {"trueDegree", "radian", "degree"},
    {"arcmin", "radian", "arcmin"},
    {"arcsec", "radian", "arcsec"},
    {"trueRpm", "radian/second", "rpm"},
    {"fortnight", "second", "fortnight"},
    {"julianYear", "second", "julianyear"},
    {"bit", "bit", "bit"},
    {"B", "bit", "byte"},
    {"byte", "bit", "byte"},
    {"KiB", "bit", "KiB"},
    {"MiB", "bit", "MiB"},
    {"GiB", "bit", "GiB"},
    {"TiB", "bit", "TiB"},
};

TEST(EverydayUnits, AreThoseOfGnuUnits) {
    NameSet tested;
    std::vector<std::string> entries;
    for (const UnitCase& one : UNIT_CASES) {
        tested.insert(one.name);
        entries.push_back(std::string("1 ") + one.name + "->" + one.inSi);
    }
    EXPECT_EQ(tested, namesIn("everyday"));
    const std::vector<double> answers = answersWith("everyday", entries);
    for (size_t i = 0; i < answers.size(); ++i)
        expectNear(answers[i], gnuFactor(UNIT_CASES[i].gnuName, UNIT_CASES[i].inSi), 4e-16,
                   UNIT_CASES[i].name);
}

TEST(EverydayUnits, TakePrefixesAndPlurals) {
    expectNear(answerWith("everyday", "2000 kcal->kJ"), gnuFactor("2000 cal_th", "joule"), 4e-16, "kcal");
    expectNear(answerWith("everyday", "3 kWh->MJ"), 10.8, 4e-16, "kWh");
    expectNear(answerWith("everyday", "100 Mbit/s->MB/s"), 12.5, 4e-16, "Mbit/s");
    expectNear(answerWith("everyday", "5000 mAh->C"), 18000, 4e-16, "mAh");
    expectNear(answerWith("everyday", "10 knots->kmh"), 18.52, 4e-16, "knots");
}

double valueOf(const std::string& name) {
    return answerWith("constants", name);
}

// The relations between the constants hold within what they are measured to.
TEST(Constants, AgreeWithEachOtherAndWithGnuUnits) {
    const double c = valueOf("speedOfLight");
    const double h = valueOf("planck");
    const double e = valueOf("elementaryCharge");
    const double electron = valueOf("electronMass");
    const double alpha = valueOf("fineStructure");
    const double pi = std::acos(-1.0);
    struct Relation {
        const char* name;
        double derived;
        double relative;
    };
    const Relation relations[] = {
        {"speedOfLight", gnuFactor("c", "m/s"), 1e-15},
        {"planck", gnuFactor("h", "J s"), 1e-15},
        {"reducedPlanck", gnuFactor("hbar", "J s"), 1e-15},
        {"elementaryCharge", gnuFactor("e", "C"), 1e-15},
        {"boltzmann", gnuFactor("k", "J/K"), 1e-15},
        {"avogadro", gnuFactor("N_A", "1/mol"), 1e-15},
        {"gasConstant", gnuFactor("R", "J/mol K"), 1e-15},
        {"faradayConstant", valueOf("avogadro") * e, 1e-15},
        {"stefanBoltzmann", gnuFactor("stefanboltzmann", "W/m^2 K^4"), 1e-15},
        {"standardGravity", gnuFactor("gravity", "m/s^2"), 1e-15},
        {"standardAtmosphere", gnuFactor("atm", "Pa"), 1e-15},
        {"gravitation", gnuFactor("G", "m^3/kg s^2"), 1e-15},
        {"fineStructure", gnuFactor("alpha", "1"), 1e-9},
        {"electronMass", gnuFactor("electronmass", "kg"), 2e-9},
        {"protonMass", gnuFactor("protonmass", "kg"), 2e-9},
        {"neutronMass", gnuFactor("neutronmass", "kg"), 2e-9},
        {"atomicMass", electron / 5.485799090441e-4, 4e-10}, // the electron's mass in units of it
        {"rydberg", alpha * alpha * electron * c / (2 * h), 5e-11},
        {"bohrRadius", h / (2 * pi) / (electron * c * alpha), 5e-11},
        {"bohrMagneton", e * h / (2 * pi) / (2 * electron), 5e-11},
        {"vacuumPermittivity", e * e / (2 * alpha * h * c), 1e-10},
        {"vacuumPermeability", 2 * alpha * h / (e * e * c), 1e-10},
        {"eulerNumber", std::exp(1.0), 1e-15},
        {"goldenRatio", (1 + std::sqrt(5.0)) / 2, 1e-15},
    };
    NameSet tested;
    for (const Relation& one : relations) {
        tested.insert(one.name);
        expectNear(valueOf(one.name), one.derived, one.relative, one.name);
    }
    EXPECT_EQ(tested, namesIn("constants"));
}

// What is left of a loan of 200,000 at 3.6 % after 20 years of such payments.
double restOfLoan(double payment) {
    double rest = 200000;
    for (int month = 0; month < 240; ++month) rest = rest * (1 + 0.036 / 12) - payment;
    return rest;
}

double saved(double monthly) {
    double sum = 0;
    for (int month = 0; month < 120; ++month) sum = sum * (1 + 0.05 / 12) + monthly;
    return sum;
}

TEST(Money, IsWhatMonthByMonthComesOut) {
    const double payment = answerWith("money", "payment(200000,3.6,20)");
    EXPECT_NEAR(restOfLoan(payment), 0, 1e-6);
    expectNear(answerWith("money", "totalPaid(200000,3.6,20)"), 240 * payment, 1e-14, "totalPaid");
    expectNear(answerWith("money", "savings(100,5,10)"), saved(100), 1e-12, "savings");
}

TEST(Money, HasWhatIsDerivedByHand) {
    struct Case {
        const char* entry;
        double expected;
    };
    const Case cases[] = {
        {"futureValue(1000,5,2)", 1102.5}, // 1000 * 1.05 * 1.05
        {"presentValue(1102.5,5,2)", 1000},
        {"growth(1000,1102.5,2)", 5},
        {"addVat(200,19)", 238},
        {"withoutVat(238,19)", 200},
        {"vatIn(238,19)", 38},
        {"discounted(80,25)", 60},
        {"share(30,120)", 25},
        {"change(80,60)", -25},
        {"eachPays(90,20,4)", 27},
    };
    NameSet tested = {"payment", "totalPaid", "savings"}; // above
    for (const Case& one : cases) {
        tested.insert(std::string(one.entry, std::string(one.entry).find('(')));
        expectNear(answerWith("money", one.entry), one.expected, 1e-15, one.entry);
    }
    EXPECT_EQ(tested, namesIn("money"));
}

TEST(Time, HoursAndMinutesAreOnesOfAClock) {
    EXPECT_DOUBLE_EQ(answerWith("time", "hours(1,45,36)"), 1.76);
    EXPECT_DOUBLE_EQ(answerWith("time", "wholeHours(1.75)"), 1);
    EXPECT_DOUBLE_EQ(answerWith("time", "restMinutes(1.75)"), 45);
    EXPECT_DOUBLE_EQ(answerWith("time", "fromClock(1.45)"), 1.75);
    EXPECT_DOUBLE_EQ(answerWith("time", "toClock(1.75)"), 1.45);
}

TEST(Time, ATimeBelowZeroKeepsItsSign) {
    EXPECT_DOUBLE_EQ(answerWith("time", "toClock(fromClock(8.00)-fromClock(9.30))"), -1.3);
    EXPECT_DOUBLE_EQ(answerWith("time", "fromClock(-1.30)"), -1.5);
    EXPECT_DOUBLE_EQ(answerWith("time", "wholeHours(-1.75)"), -1);
    EXPECT_DOUBLE_EQ(answerWith("time", "restMinutes(-1.75)"), -45);
}

// The system's calendar is the other one.
TEST(Time, DaysAreThoseOfTheCalendar) {
    constexpr double NUMBER_OF_1970 = 2440588; // of its first day
    std::vector<std::string> entries;
    std::vector<double> expected;
    for (const int year : {1900, 1970, 1999, 2000, 2024, 2026, 2100}) {
        for (int month = 1; month <= 12; ++month) {
            for (const int day : {1, 28}) {
                tm date = {};
                date.tm_year = year - 1900;
                date.tm_mon = month - 1;
                date.tm_mday = day;
                const double days = static_cast<double>(timegm(&date)) / 86400;
                const std::string arguments = "(" + std::to_string(year) + "," + std::to_string(month) + "," +
                                              std::to_string(day) + ")";
                entries.push_back("dayNumber" + arguments);
                expected.push_back(NUMBER_OF_1970 + days);
                entries.push_back("weekday" + arguments);
                expected.push_back(date.tm_wday);
            }
        }
    }
    const std::vector<double> answers = answersWith("time", entries);
    for (size_t i = 0; i < entries.size(); ++i) EXPECT_EQ(answers[i], expected[i]) << entries[i];
    EXPECT_EQ(namesIn("time"), (NameSet{"hours", "wholeHours", "restMinutes", "fromClock", "toClock",
                                        "marchYear", "marchMonth", "yearDays", "dayNumber", "weekday"}));
}

TEST(Temperature, MeetsTheKnownPoints) {
    struct Case {
        const char* entry;
        double expected;
    };
    const Case cases[] = {
        {"fToC(212)", 100},   {"fToC(-40)", -40},    {"cToF(37)", 98.6},   {"cToF(-40)", -40},
        {"cToK(0)", 273.15},  {"kToC(0)", -273.15},  {"fToK(32)", 273.15}, {"fToK(-459.67)", 0},
        {"kToF(273.15)", 32}, {"kToF(373.15)", 212},
    };
    NameSet tested;
    for (const Case& one : cases) {
        tested.insert(std::string(one.entry, 4));
        EXPECT_DOUBLE_EQ(answerWith("temperature", one.entry), one.expected) << one.entry;
    }
    EXPECT_EQ(tested, namesIn("temperature"));
}

// --- The guide ---

// What the file defines as it is used: "mph", "cToF(celsius)".
NameSet usesIn(const std::string& name) {
    NameSet uses;
    std::ifstream file(fileOf(name));
    for (std::string line; std::getline(file, line);) {
        if (line.empty() || line[0] == '#') continue;
        const size_t start = line.rfind("unit ", 0) == 0 ? 5 : 0;
        uses.insert(line.substr(start, line.find('=') - start));
    }
    return uses;
}

TEST(ShippedDefinitions, AreThoseOfTheGuide) {
    const auto rows = guideTable(TALLYQUILL_GUIDE, "| Set | Defines |");
    EXPECT_EQ(rows.size(), shippedNames().size());
    for (const GuideCells& cells : rows) {
        const std::vector<std::string> told = guideCode(cells.at(1));
        EXPECT_EQ(NameSet(told.begin(), told.end()), usesIn(guideCode(cells.at(0)).at(0))) << cells[0];
    }
}

// What GNU units calls a unit of the catalogue, where that is something else.
std::string gnuNameOf(const std::string& unit) {
    static const std::map<std::string, std::string> names = {
        {"astronomicalUnit", "au"},   {"calorie", "calorie_IT"},      {"electronVolt", "eV"},
        {"gilbert", "2.5 ampere/pi"}, {"lightYear", "lightyear"},     {"parsec", "648000 au/pi"},
        {"pica", "inch/6"},           {"revolutionPerMinute", "rpm"}, {"year", "365 day"}};
    const auto found = names.find(unit);
    return found == names.end() ? unit : found->second;
}

// Whether a number in the text is this one.
bool hasNumber(const std::string& text, double wanted) {
    for (size_t i = 0; i < text.size();) {
        char* end = nullptr;
        const double number = std::strtod(text.c_str() + i, &end);
        const auto next = static_cast<size_t>(end - text.c_str());
        if (next > i && std::abs(number / wanted - 1) < 3e-15) return true;
        i = next > i ? next : i + 1;
    }
    return false;
}

TEST(GuideOfUnits, HasAFactorThatIsExactOrANoteWithTheOneOfGnuUnits) {
    const auto rows = guideTable(TALLYQUILL_GUIDE, "| Unit | Short | Is | Note |");
    EXPECT_GT(rows.size(), 40U);
    for (const GuideCells& cells : rows) {
        const std::string name = guideCode(cells.at(0)).at(0);
        const std::string is = guideCode(cells.at(2)).at(0);
        const double exact = gnuFactor(gnuNameOf(name), is.substr(is.find(' ') + 1));
        EXPECT_TRUE(hasNumber(is, exact) || hasNumber(cells.at(3), exact)) << name << " " << exact;
    }
}

} // namespace
