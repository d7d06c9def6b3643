// SPDX-License-Identifier: MIT
//
// Keys and editing commands of the text view, and keys that must do nothing.
#import "keys_fixture.h"

#import <AppKit/NSTextView.h>

namespace {

class TextViewKeys : public Keys {};

TEST_F(TextViewKeys, PageKeysScrollAndChangeNothing) {
    for (int i = 0; i < 40; ++i) [console insertWithNewPrompt:"a line"];
    first = Text();
    const CGFloat bottom = NSMinY([console visibleRect]);
    const unichar keys[] = {NSPageUpFunctionKey, NSPageDownFunctionKey};
    Press([NSString stringWithCharacters:&keys[0] length:1], NSFunctionKeyMask);
    EXPECT_LT(NSMinY([console visibleRect]), bottom);
    Press([NSString stringWithCharacters:&keys[1] length:1], NSFunctionKeyMask);
    EXPECT_EQ(bottom, NSMinY([console visibleRect]));
    EXPECT_EQ(first, Text());
}

TEST_F(TextViewKeys, FunctionKeysTypeNothing) {
    const unichar keys[] = {NSF1FunctionKey, NSF5FunctionKey, NSF12FunctionKey, NSInsertFunctionKey,
                            NSMenuFunctionKey};
    for (const unichar key : keys) {
        Press([NSString stringWithCharacters:&key length:1], NSFunctionKeyMask);
        Expect("4+5");
    }
}

TEST_F(TextViewKeys, AKeyWithoutCharactersChangesNothing) {
    Press(@"");
    Expect("4+5");
}

TEST_F(TextViewKeys, AKeyWithCommandThatNoMenuHasTypesNothing) {
    const NSUInteger places[] = {0, begin, begin + 3};
    for (const NSUInteger place : places) {
        for (NSString* key in @[ @"k", @"*", @"-", @"7" ]) {
            Select(place);
            Press(key, NSCommandKeyMask);
            Expect("4+5");
            ExpectSelection(place, 0);
        }
    }
}

TEST_F(TextViewKeys, AKeyWithControlTypesNothing) {
    for (NSString* key in @[ @"*", @"-", @"/", @"q", @"z", @"j", @"m" ]) {
        SelectEntry(0);
        Press(key, NSControlKeyMask);
        Expect("4+5");
    }
    Press(@"\003", @"c", NSControlKeyMask);
    Expect("4+5");
}

TEST_F(TextViewKeys, NoKeyOpensASecondLineInTheEntry) {
    Press(@"\017", @"o", NSControlKeyMask); // what text views open a line with
    Expect("4+5");
    const SEL commands[] = {
        @selector(insertNewline:),
        @selector(insertNewlineIgnoringFieldEditor:),
        @selector(insertLineBreak:)
    };
    for (const SEL command : commands) {
        [console doCommandBySelector:command];
        Expect("4+5");
    }
}

// Every key with every combination of modifiers, at every place, alone and with a selection, and after it
// undo.
TEST_F(TextViewKeys, NoKeyChangesTheTranscript) {
    const uint32_t keys[] = {KEY_TAB,  KEY_ESCAPE, KEY_BACKSPACE, KEY_FORWARD_DELETE,
                             KEY_HOME, KEY_END,    KEY_LEFT,      KEY_RIGHT,
                             KEY_UP,   KEY_DOWN};
    const NSUInteger flags[] = {0,
                                NSShiftKeyMask,
                                NSControlKeyMask,
                                NSAlternateKeyMask,
                                NSCommandKeyMask,
                                NSControlKeyMask | NSShiftKeyMask,
                                NSControlKeyMask | NSAlternateKeyMask,
                                NSAlternateKeyMask | NSShiftKeyMask};
    const NSRange places[] = {{0, 0},         {3, 2},     {begin - 1, 0}, {begin - 2, 2}, {begin - 2, 4},
                              {0, begin + 3}, {begin, 0}, {begin, 2},     {begin + 1, 0}, {begin + 3, 0}};
    for (const uint32_t key : keys) {
        for (const NSUInteger flag : flags) {
            for (const NSRange place : places) {
                SetEntry(@"4+5");
                [[console undoManager] removeAllActions];
                Select(place.location, place.length);
                Press(key, flag);
                ASSERT_EQ(first, Transcript())
                    << "key " << key << " flags " << flag << " at " << place.location;
                [console undo:nil];
                ASSERT_EQ(first, Transcript())
                    << "undo, key " << key << " flags " << flag << " at " << place.location;
            }
        }
    }
}

// The editing commands of text views, which key bindings can reach.
TEST_F(TextViewKeys, NoEditingCommandChangesTheTranscript) {
    const char* const commands[] = {"deleteBackward:",
                                    "deleteForward:",
                                    "deleteWordBackward:",
                                    "deleteWordForward:",
                                    "deleteToBeginningOfLine:",
                                    "deleteToEndOfLine:",
                                    "deleteToBeginningOfParagraph:",
                                    "deleteToEndOfParagraph:",
                                    "deleteToMark:",
                                    "delete:",
                                    "cut:",
                                    "paste:",
                                    "pasteAsPlainText:",
                                    "pasteAsRichText:",
                                    "transpose:",
                                    "transposeWords:",
                                    "yank:",
                                    "uppercaseWord:",
                                    "lowercaseWord:",
                                    "capitalizeWord:",
                                    "insertTab:",
                                    "insertBacktab:",
                                    "insertContainerBreak:",
                                    "insertTabIgnoringFieldEditor:",
                                    "insertNewline:",
                                    "insertParagraphSeparator:"};
    SetPasteboard("8");
    for (const char* const command : commands) {
        const SEL selector = NSSelectorFromString([NSString stringWithUTF8String:command]);
        if (![console respondsToSelector:selector]) continue; // which there are depends on the system
        for (const NSRange place :
             {NSMakeRange(0, 0), NSMakeRange(3, 2), NSMakeRange(begin - 2, 4), NSMakeRange(0, begin + 3),
              NSMakeRange(begin, 0), NSMakeRange(begin - 1, 0)}) {
            SetEntry(@"4+5");
            [[console undoManager] removeAllActions];
            Select(place.location, place.length);
            [console performSelector:selector withObject:nil];
            ASSERT_EQ(first, Transcript()) << command << " at " << place.location;
            [console undo:nil];
            ASSERT_EQ(first, Transcript()) << "undo of " << command << " at " << place.location;
        }
    }
}

TEST_F(TextViewKeys, TextInsertedBySystemServicesStaysOutOfTheTranscript) {
    Select(0, 4);
    [console insertText:@"x"];
    Expect("4+5", false);
    EXPECT_FALSE([console shouldChangeTextInRange:NSMakeRange(begin - 1, 2) replacementString:@""]);
    EXPECT_TRUE([console shouldChangeTextInRange:NSMakeRange(begin, 2) replacementString:@""]);
}

} // namespace
