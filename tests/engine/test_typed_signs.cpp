// SPDX-License-Identifier: MIT
#include "TypedSigns.h"

#include <gtest/gtest.h>

namespace {

TEST(TypedSigns, WhatPagesWriteBecomesWhatTheEngineReads) {
    const struct {
        const char* typed;
        const char* read;
    } rows[] = {
        {"3 − 4", "3 - 4"},
        {"3–4", "3-4"},
        {"2×3·4⋅5∙6∗7", "2*3*4*5*6*7"},
        {"8÷4∕2⁄1", "8/4/2/1"},
        {"x²+y³", "x^2+y^3"},
        {"10²³", "10^23"}, // one exponent of two digits, not a power of a power
        {"10⁻¹⁹·2⁴⁰", "10^-19*2^40"},
        {"2π", "2pi"},
        {"5 km→mi", "5 km->mi"},
        {"1\u00a0000\u202f000\u2009+\u30001", "1 000 000 + 1"},
        {"\ufeff1\u200b2", "12"},
        {"１２．５＋（３＊４）～", "12.5+(3*4)~"},
        {"5 km->mi # é € ‰ ›", "5 km->mi # é € ‰ ›"}, // the others stay
        {"", ""},
    };
    for (const auto& row : rows) EXPECT_EQ(TypedSigns().Read(row.typed), row.read) << row.typed;
}

TEST(TypedSigns, NeighborsOfWhatIsReplacedStay) {
    for (const char* const neighbor :
         {"\u00a1", "\u00b1", "\u00b4", "\u00b6", "\u00b8", "\u00ba", "\u00d6", "\u00d8", "\u00f6",
          "\u00f8", "\u03bf", "\u03c1", "\u1fff", "\u200c", "\u200f", "\u2014", "\u202e", "\u2030",
          "\u2043", "\u2045", "\u205e", "\u2060", "\u206f", "\u2071", "\u2073", "\u207c", "\u2191",
          "\u2193", "\u2211", "\u2213", "\u2214", "\u2216", "\u2218", "\u221a", "\u22c4", "\u22c6",
          "\u2fff", "\u3001", "\ufefe", "\uff00", "\uff5f"})
        EXPECT_EQ(TypedSigns().Read(neighbor), neighbor);
}

TEST(TypedSigns, BytesThatAreNoTextStay) {
    for (const char* const bytes : {"\xff", "1\xc3", "\xe2\x88", "\xc2\xc2\xb2", "\xb2"})
        EXPECT_EQ(TypedSigns().Read(bytes).find('^') == std::string::npos,
                  std::string(bytes) != "\xc2\xc2\xb2");
}

TEST(TypedSigns, RaisedDigitsThatComeOneByOneAreOneExponent) {
    TypedSigns signs;
    EXPECT_EQ(signs.Read("10²"), "10^2");
    EXPECT_EQ(signs.Read("³"), "3");
    EXPECT_EQ(signs.Read("+x"), "+x");
    EXPECT_EQ(signs.Read("²"), "^2");
}

// What an entry becomes when the character is typed at the place.
std::string typeInto(const std::string& entry, size_t place, char typed, bool minusIsSign) {
    const auto change = changeByOperator(entry, place, typed, minusIsSign);
    if (!change) return entry.substr(0, place) + typed + entry.substr(place);
    return change->text + std::string(1, typed) + entry.substr(change->length);
}

TEST(ChangeByOperator, AnOperatorThatIsTypedFirstAppliesToTheLastAnswer) {
    for (const char typed : {'+', '*', '/'}) {
        EXPECT_EQ(typeInto("", 0, typed, true), std::string("ans") + typed);
        EXPECT_EQ(typeInto("5", 0, typed, true), std::string("ans") + typed + "5");
        EXPECT_EQ(typeInto("5", 1, typed, true), std::string("5") + typed);
    }
    for (const char typed : {'1', 'x', '(', '^', '%', '!'})
        EXPECT_EQ(typeInto("", 0, typed, false), std::string(1, typed));
}

TEST(ChangeByOperator, MinusChangesOverBetweenASignAndTheLastAnswer) {
    EXPECT_EQ(typeInto("", 0, '-', true), "-");
    EXPECT_EQ(typeInto("-", 1, '-', true), "ans-");
    EXPECT_EQ(typeInto("ans-", 4, '-', true), "-");
    EXPECT_EQ(typeInto("", 0, '-', false), "ans-");
    EXPECT_EQ(typeInto("ans-2", 5, '-', false), "ans-2-");
    EXPECT_EQ(typeInto("x", 1, '-', true), "x-");
}

} // namespace
