// SPDX-License-Identifier: MIT
//
// The error state, and memory that runs out.
#include "allocation.h"
#include "fixture.h"
#include "table.h"

#include <algorithm>
#include <set>

namespace {

TEST_F(UnitsTest, TheErrorStateStaysUntilItIsCleared) {
    EXPECT_EQ(units_check_exception(), nullptr);
    EXPECT_EQ(convert("foo", "m"), 0);
    ASSERT_NE(units_check_exception(), nullptr);
    EXPECT_EQ(convert("km", "m"), 1000);
    EXPECT_STREQ(units_check_exception(), "invalid unit name 'foo' in 'foo'");
    EXPECT_EQ(convert("baz", "m"), 0);
    EXPECT_STREQ(units_check_exception(), "invalid unit name 'baz' in 'baz'");
    units_clear_exception();
    EXPECT_EQ(units_check_exception(), nullptr);
}

TEST_F(UnitsTest, MessagesCarryNoLineFeed) {
    throw_exception1("about '%s'", "this");
    EXPECT_EQ(takeMessage(), "about 'this'");
    throw_exception2("from '%s' to '%s'", "here", "there");
    EXPECT_EQ(takeMessage(), "from 'here' to 'there'");
}

// The raw format and its texts count together: 254 characters are formatted, 255 are not.
TEST_F(UnitsTest, ALongMessageIsTheFormatAlone) {
    const std::string one = "one '%s'";          // 8 characters
    const std::string two = "one '%s' two '%s'"; // 17 characters
    const std::string fits(246, 'x');
    throw_exception1(one.c_str(), fits.c_str());
    EXPECT_EQ(takeMessage(), "one '" + fits + "'");
    throw_exception1(one.c_str(), (fits + "x").c_str());
    EXPECT_EQ(takeMessage(), one);
    const std::string half(118, 'y');
    throw_exception2(two.c_str(), half.c_str(), (half + "z").c_str());
    EXPECT_EQ(takeMessage(), "one '" + half + "' two '" + half + "z'");
    throw_exception2(two.c_str(), (half + "z").c_str(), (half + "z").c_str());
    EXPECT_EQ(takeMessage(), two);
}

TEST_F(UnitsTest, AFormatLongerThanTheBufferIsCut) {
    const std::string format(1000, 'f');
    throw_exception1(format.c_str(), "");
    EXPECT_EQ(takeMessage(), std::string(255, 'f'));
}

TEST_F(UnitsTest, TextsWithPercentSignsAreNoFormats) {
    EXPECT_EQ(messageOf("%s%n%s"), "invalid characters in unit string '%s%n%s'");
    EXPECT_EQ(messageOf(std::string(300, '%')), "invalid characters in unit string '%s'");
    EXPECT_EQ(define("%n", "meter"), "non-alphabetic characters in unit name '%n'");
    EXPECT_EQ(define("percent", "%n"), "'%n' cannot be reduced to primitive units");
}

// ---------------------------------------------------------------------------------------------------------
// Memory that runs out

// Lets every request for memory fail in turn until the operation succeeds, and gathers the messages.  What
// failed keeps no memory but what `kept` allows.
template <class Operation> std::vector<std::string> failEverywhere(Operation operation, size_t kept = 0) {
    std::vector<std::string> messages;
    for (long count = 0; count < 100000; ++count) {
        units_clear_exception();
        const size_t live = allocation::live();
        allocation::failAfter(count);
        operation();
        allocation::failAfter(-1);
        if (units_check_exception() == nullptr) return messages;
        EXPECT_LE(allocation::live(), live + kept) << "request " << count;
        messages.emplace_back(units_check_exception());
    }
    ADD_FAILURE() << "never succeeds";
    return messages;
}

TEST_F(UnitsTest, ACatalogueWithoutMemoryNamesTheEntryAtWhichItStopped) {
    const std::vector<std::string> messages = failEverywhere([] {
        const int status = unitInitialize();
        EXPECT_EQ(status, units_check_exception() != nullptr ? 1 : 0);
        if (units_check_exception() != nullptr) unitFreeMemory();
    });
    const std::set<std::string> all(messages.begin(), messages.end());
    // The prefixes share blocks of memory; the first of them needs one in any case.
    const std::string prefix = "units failure initializing prefix '";
    EXPECT_EQ(all.count(prefix + "yotta' (1e24)"), 1U);
    EXPECT_EQ(all.count("units failure initializing primitive unit 'meter'"), 1U);
    EXPECT_EQ(all.count("units failure initializing primitive unit 'candela'"), 1U);
    EXPECT_EQ(all.count("units failure initializing derived unit 'radian' (meter/meter)"), 1U);
    EXPECT_EQ(all.count("units failure initializing non-SI unit 'acre' (4.04685642E3meter^2)"), 1U);
    EXPECT_EQ(all.count("units failure initializing abbreviation 'Sv' (sievert)"), 1U);
    EXPECT_EQ(all.count("units failure initializing non-SI abbreviation 'tsp' (teaspoon)"), 1U);
    const auto isUnit = [&prefix](const std::string& message) { return message.rfind(prefix, 0) != 0; };
    EXPECT_EQ(std::count_if(all.begin(), all.end(), isUnit),
              static_cast<std::ptrdiff_t>(tableUnits().size())); // each can fail, with its own message only
}

TEST_F(UnitsTest, OperationsReturnTheirFailureValueWithoutACatalogue) {
    allocation::failAfter(0);
    EXPECT_EQ(units_convert("m", "ft"), 0.0);
    EXPECT_STREQ(units_check_exception(), "units failure initializing prefix 'yotta' (1e24)");
    EXPECT_EQ(units_reduce("m"), nullptr);
    EXPECT_TRUE(removeUnit("m"));
    units_new("smoot", "67inch");
    allocation::failAfter(-1);
    EXPECT_EQ(takeMessage(), "units failure initializing prefix 'yotta' (1e24)");
    EXPECT_DOUBLE_EQ(convert("foot", "inch"), 12); // the next call builds it
    EXPECT_EQ(takeMessage(), "");
}

TEST_F(UnitsTest, AConversionWithoutMemoryIsAnErrorAndNoNumber) {
    ASSERT_EQ(unitInitialize(), 0);
    double factor = 0;
    const auto messages = failEverywhere([&factor] {
        factor = units_convert("3 kg-m^2/s^2", "J");
        EXPECT_TRUE(units_check_exception() == nullptr || factor == 0.0);
    });
    EXPECT_EQ(factor, 3);
    EXPECT_GE(messages.size(), 8U); // three names on each side, and their lists
    for (const std::string& message : messages) {
        EXPECT_EQ(message.rfind("not enough memory for unit string '", 0), 0U) << message;
    }
}

TEST_F(UnitsTest, AReducedTextWithoutMemoryIsNone) {
    ASSERT_EQ(unitInitialize(), 0);
    const char* text = nullptr;
    const auto messages = failEverywhere([&text] {
        text = units_reduce("newton");
        EXPECT_EQ(text == nullptr, units_check_exception() != nullptr);
    });
    EXPECT_STREQ(text, "1000.0 gram meter / second second");
    EXPECT_GE(messages.size(), 4U); // three names and their list
    for (const std::string& message : messages) {
        EXPECT_EQ(message, "not enough memory for unit string 'newton'");
    }
}

TEST_F(UnitsTest, ADefinitionWithoutMemoryLeavesNothing) {
    ASSERT_EQ(unitInitialize(), 0);
    const auto messages = failEverywhere([] { units_new("smoot", "67inch"); });
    for (const std::string& message : messages) {
        EXPECT_EQ(message, "'67inch' cannot be reduced to primitive units");
    }
    EXPECT_GE(messages.size(), 2U); // its names and its place in the list
    EXPECT_DOUBLE_EQ(convert("smoot", "meter"), 1.7018);
}

TEST_F(UnitsTest, ADefinitionWithoutMemoryLosesNoOtherUnit) {
    ASSERT_EQ(unitInitialize(), 0);
    std::string name = "Q";
    for (int i = 124; i <= 300; ++i) {
        name += 'q';
        EXPECT_FALSE(failEverywhere([&name] { units_new(name.c_str(), "2 meter"); }).empty());
    }
    for (; name != "Q"; name.pop_back()) EXPECT_EQ(convert(name, "meter"), 2);
    EXPECT_DOUBLE_EQ(convert("tsp", "tbsp"), 0.0208333333333333 / 0.0625);
}

// ---------------------------------------------------------------------------------------------------------
// Nothing is left behind

TEST_F(UnitsTest, EveryBlockIsFreed) {
    units_reduce("7"); // its text stays with the library
    unitFreeMemory();
    const size_t live = allocation::live();
    units_new("smoot", "67inch");
    units_new("apple", "-primitive");
    units_new("wrong", "meter second foo");
    units_convert("smoot^9/apple", "m^9/apple");
    units_convert("smoot", "foo");
    units_reduce("newton^3/apple meter^0");
    units_reduce("m/$");
    units_reduce("a/b/c");
    units_reduce("m/0");
    units_reduce("7");
    removeUnit("smoot");
    units_clear_exception();
    unitFreeMemory();
    EXPECT_EQ(allocation::live(), live);
}

} // namespace
