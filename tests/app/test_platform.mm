// SPDX-License-Identifier: MIT
//
// What the systems do not do by themselves.
#import "Platform.h"

#include <gtest/gtest.h>

#include <string>

namespace {

#ifdef GNUSTEP
std::string lines(const std::string& text) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    const std::string result = [platformSheetText([NSString stringWithUTF8String:text.c_str()]) UTF8String];
    [pool release];
    return result;
}

TEST(SheetText, isBrokenAtBlanksIntoLinesOf52Characters) {
    EXPECT_EQ(lines(""), "");
    EXPECT_EQ(lines("Short."), "Short.");
    const std::string word(25, 'w');
    EXPECT_EQ(lines(word + " " + word + "w"), word + " " + word + "w");
    EXPECT_EQ(lines(word + " " + word + "ww"), word + "\n" + word + "ww");
    EXPECT_EQ(
        lines("Tip:  You can copy the previous answer anytime using CMD-c with no text selected.  Give it "
              "a try!"),
        "Tip:  You can copy the previous answer anytime using\n"
        "CMD-c with no text selected.  Give it a try!");
}

TEST(SheetText, keepsItsOwnLinesAndLongWords) {
    EXPECT_EQ(lines("This is your first run.\nShow 45-second quick tutorial?"),
              "This is your first run.\nShow 45-second quick tutorial?");
    const std::string word(60, 'w');
    EXPECT_EQ(lines(word), word);
    EXPECT_EQ(lines("a " + word + " b"), "a\n" + word + "\nb");
}
#endif

} // namespace
