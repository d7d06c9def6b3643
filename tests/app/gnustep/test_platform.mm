// SPDX-License-Identifier: MIT
//
// What GNUstep does not do by itself.
#import "Platform.h"

#include <gtest/gtest.h>

#include <string>

namespace {

std::string lines(const std::string& text) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    const std::string result = [platformSheetText([NSString stringWithUTF8String:text.c_str()]) UTF8String];
    [pool release];
    return result;
}

TEST(SheetText, IsBrokenAtBlanksIntoLinesOf52Characters) {
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

TEST(SheetText, KeepsItsOwnLinesAndLongWords) {
    EXPECT_EQ(lines("This is your first run.\nShow 45-second quick tutorial?"),
              "This is your first run.\nShow 45-second quick tutorial?");
    const std::string word(60, 'w');
    EXPECT_EQ(lines(word), word);
    EXPECT_EQ(lines("a " + word + " b"), "a\n" + word + "\nb");
}

// --- Images ---

// Each is looked for in many folders under each ending.
TEST(ImageKinds, AreFewAndThoseThatAreUsed) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    NSArray* const endings = [NSImage imageFileTypes];
    EXPECT_LE([endings count], 20u);
    for (NSString* const used in @[ @"png", @"tif", @"tiff" ])
        EXPECT_TRUE([endings containsObject:used]) << [used UTF8String];
    [pool release];
}

// --- Keys ---

TEST(KeyCodes, CharactersTellTheKeys) {
    NSAutoreleasePool* const pool = [[NSAutoreleasePool alloc] init];
    const struct {
        unichar character;
        NSUInteger flags;
        uint32_t key;
    } keys[] = {{'\r', 0, 36},
                {'\n', 0, 36},
                {'\r', NSNumericPadKeyMask, 76},
                {'\n', NSNumericPadKeyMask, 76},
                {3, 0, 76},
                {'\t', 0, 48},
                {25, NSShiftKeyMask, 48},
                {27, 0, 53},
                {8, 0, 51},
                {127, 0, 51},
                {NSDeleteFunctionKey, NSFunctionKeyMask, 117},
                {NSHomeFunctionKey, NSFunctionKeyMask, 115},
                {NSEndFunctionKey, NSFunctionKeyMask, 119},
                {NSLeftArrowFunctionKey, NSFunctionKeyMask, 123},
                {NSRightArrowFunctionKey, NSFunctionKeyMask, 124},
                {NSDownArrowFunctionKey, NSFunctionKeyMask, 125},
                {NSUpArrowFunctionKey, NSFunctionKeyMask, 126},
                {'a', 0, 0},
                {'A', NSShiftKeyMask, 0},
                {1, NSControlKeyMask, 0},
                {'c', NSControlKeyMask, 0xffff},
                {'7', NSNumericPadKeyMask, 0xffff},
                {NSPageUpFunctionKey, NSFunctionKeyMask, 0xffff}};
    for (const auto& one : keys) {
        NSString* const text = [NSString stringWithCharacters:&one.character length:1];
        NSEvent* const event = [NSEvent keyEventWithType:NSKeyDown
                                                location:NSZeroPoint
                                           modifierFlags:one.flags
                                               timestamp:0
                                            windowNumber:0
                                                 context:nil
                                              characters:text
                             charactersIgnoringModifiers:text
                                               isARepeat:NO
                                                 keyCode:99];
        EXPECT_EQ(one.key, platformKeyCode(event)) << "character " << one.character;
    }
    [pool release];
}

} // namespace
