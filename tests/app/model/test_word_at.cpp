// SPDX-License-Identifier: MIT
//
// What a double click takes.
#include "WordAt.h"

#include <gtest/gtest.h>

namespace {

const NumberMarks GROUPED = {u'.', u','};
const NumberMarks EUROPEAN = {u',', u'.'};

// What is taken where the first '|' stands, which is not part of the line.
std::u16string taken(std::u16string line, NumberMarks marks = {}) {
    const size_t place = line.find(u'|');
    line.erase(place, 1);
    const EntryRange word = wordAt(line, place, marks);
    return line.substr(word.location, word.length);
}

TEST(WordAt, TakesAWholeNumberWithItsExponent) {
    EXPECT_EQ(taken(u"ans = 1.2|34567e-26"), u"1.234567e-26");
    EXPECT_EQ(taken(u"ans = 1.234567e|-26"), u"1.234567e-26");
    EXPECT_EQ(taken(u"ans = 1.234567e-2|6"), u"1.234567e-26");
    EXPECT_EQ(taken(u"2*1|E+5+3"), u"1E+5");
    EXPECT_EQ(taken(u"1+|.5"), u".5");
}

TEST(WordAt, LeavesWhatIsNoExponentAlone) {
    EXPECT_EQ(taken(u"1|2-3"), u"12");
    EXPECT_EQ(taken(u"1|2.+3"), u"12");
    EXPECT_EQ(taken(u"|-12"), u"-");
}

TEST(WordAt, TakesGroupedDigits) {
    EXPECT_EQ(taken(u"ans = 1,2|34,567.125", GROUPED), u"1,234,567.125");
    EXPECT_EQ(taken(u"ans = 1.234.56|7,125", EUROPEAN), u"1.234.567,125");
    EXPECT_EQ(taken(u"ans = 1 234| 567.5", {u'.', u' '}), u"1 234 567.5");
}

TEST(WordAt, TellsArgumentsFromGroups) {
    EXPECT_EQ(taken(u"mod(7|,3)", GROUPED), u",");
    EXPECT_EQ(taken(u"mod(|7,3)", GROUPED), u"7");
    EXPECT_EQ(taken(u"mod(|7,1234)", GROUPED), u"7");
    EXPECT_EQ(taken(u"mod(|7,123)"), u"7") << "digits are not grouped";
}

TEST(WordAt, TakesPrefixAndGroupsOfOtherBases) {
    EXPECT_EQ(taken(u"ans = 0x001|CBE991A14"), u"0x001CBE991A14");
    EXPECT_EQ(taken(u"|0x1e-3"), u"0x1e");
    EXPECT_EQ(taken(u"ans = 0b 1111 |0101 1111"), u"0b 1111 0101 1111");
    EXPECT_EQ(taken(u"ans = |0b 1111 0101 1111"), u"0b 1111 0101 1111");
    EXPECT_EQ(taken(u"0b10|1 + 1"), u"0b101");
}

TEST(WordAt, TakesNames) {
    EXPECT_EQ(taken(u"2*wid|th_2+1"), u"width_2");
    EXPECT_EQ(taken(u"lo|g2(8)"), u"log2");
    EXPECT_EQ(taken(u"log|2(8)"), u"log2");
    EXPECT_EQ(taken(u"12.5|k"), u"12.5k") << "a metric prefix is part of the number";
}

TEST(WordAt, TakesAnythingElseAlone) {
    EXPECT_EQ(taken(u"(1|+2)"), u"+");
    EXPECT_EQ(taken(u"|"), u"");
    EXPECT_EQ(taken(u"1+22|"), u"22") << "behind the end, what stands there";
}

} // namespace
