// SPDX-License-Identifier: MIT
#include "EntryText.h"

#include <gtest/gtest.h>
#include <string>

namespace {

using std::string_literals::operator""s;

TEST(EntryText, PlainTextPasses) {
    for (const char* const text : {"", "2+3*4", "x = 5; y = x*2 # both", "\t1", "~ {[!@#$%^&*()]}"}) {
        EXPECT_EQ(checkEntry(text), EntryFault::None) << text;
    }
}

TEST(EntryText, LengthIsLimitedTo9999Bytes) {
    EXPECT_EQ(checkEntry(std::string(9999, '1')), EntryFault::None);
    EXPECT_EQ(checkEntry(std::string(10000, '1')), EntryFault::TooLong);
    EXPECT_EQ(checkEntry(std::string(10000, '\0')), EntryFault::TooLong);
}

TEST(EntryText, ALineIsBlankWhenItHoldsBlanksAndTabsAlone) {
    for (const char* const text : {"", " ", "\t", " \t "}) EXPECT_TRUE(isBlankLine(text)) << text;
    for (const char* const text : {"1", " 1", "# note", ";", "\r"}) EXPECT_FALSE(isBlankLine(text)) << text;
}

TEST(EntryText, WellFormedUtf8Passes) {
    for (const char* const text :
         {"\xC2\x80", "\xDF\xBF", "\xE0\xA0\x80", "\xED\x9F\xBF", "\xEE\x80\x80", "\xEF\xBF\xBF",
          "\xF0\x90\x80\x80", "\xF4\x8F\xBF\xBF", "1 # gr\xC3\xB6\xC3\x9F"}) {
        EXPECT_EQ(checkEntry(text), EntryFault::None) << text;
    }
}

TEST(EntryText, MalformedUtf8IsRefused) {
    const std::string wrong[] = {
        "\xE4",             // Latin-1
        "1+\xB5",           // a lone continuation byte
        "\xC0\x80",         // overlong, two bytes
        "\xC1\xBF",         //
        "\xE0\x9F\xBF",     // overlong, three bytes
        "\xF0\x8F\xBF\xBF", // overlong, four bytes
        "\xED\xA0\x80",     // a surrogate
        "\xF4\x90\x80\x80", // above U+10FFFF
        "\xF5\x80\x80\x80", //
        "\xFE",             //
        "\xFF",             //
        "\xC3",             // cut short at the end
        "\xE2\x82",         //
        "\xF0\x9F\x98",     //
        "\xC3+1",           // cut short by another character
        "\xE2\x82+1",       //
        "\xC3\xB6+\x01",    // behind a character of two bytes
        "1\xC3\xB6\xFF",    //
    };
    for (const std::string& text : wrong) EXPECT_EQ(checkEntry(text), EntryFault::NotText) << text;
}

TEST(EntryText, ASequenceThatGoesOnBehindTheEntryIsRefused) {
    EXPECT_EQ(checkEntry(std::string_view("\xC3\xB6", 1)), EntryFault::NotText);
    EXPECT_EQ(checkEntry(std::string_view("\xE2\x82\xAC", 2)), EntryFault::NotText);
}

TEST(EntryText, ControlCharactersOtherThanTabAreRefused) {
    for (int code = 0; code < 0x20; ++code) {
        const std::string text = "1"s + static_cast<char>(code) + "2";
        EXPECT_EQ(checkEntry(text), code == '\t' ? EntryFault::None : EntryFault::NotText) << code;
    }
    EXPECT_EQ(checkEntry("1\x7F"), EntryFault::NotText);
    EXPECT_EQ(checkEntry("1+1\0+1"s), EntryFault::NotText);
}

TEST(EntryText, EveryLineShownEndsWithOneLineFeed) {
    EXPECT_EQ(asLine("ans = 1\n"), "ans = 1\n");
    EXPECT_EQ(asLine("** ERROR 12: missing conversion unit **"), "** ERROR 12: missing conversion unit **\n");
    EXPECT_EQ(asLine("a\nb"), "a\nb\n");
    EXPECT_EQ(asLine(""), "");
}

TEST(EntryText, EveryFaultHasItsMessage) {
    EXPECT_EQ(faultMessage(EntryFault::None), "");
    EXPECT_EQ(faultMessage(EntryFault::TooLong), "** ERROR: 10000 max characters **\n");
    EXPECT_EQ(faultMessage(EntryFault::NotText), "** Invalid character/encoding used. **\n");
}

} // namespace
