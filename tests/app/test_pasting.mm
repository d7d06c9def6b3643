// SPDX-License-Identifier: MIT
//
// Cut and paste, and text that comes in by other ways.
#import "console_fixture.h"
#include "replacement.h"

namespace {

class Pasting : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        SetPasteboard("what was there");
        sheets.clear(); // that of the first start
    }

    void PasteText(const char* string) {
        SetPasteboard(string);
        [console paste:nil];
    }

    const NSUInteger command = NSCommandKeyMask;
};

// --- Cut ---

TEST_F(Pasting, NothingHidesBehindANul) {
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:@[ NSStringPboardType ] owner:nil];
    [board setString:[NSString stringWithFormat:@"5%C+1", static_cast<unichar>(0)]
             forType:NSStringPboardType];
    [console paste:nil];
    Press(KEY_RETURN);
    EXPECT_EQ(Text().find("ans = 5"), std::string::npos);
}

TEST_F(Pasting, CutAcrossThePromptTakesWhatIsInTheEntry) {
    Enter("1+2");
    Type("45");
    const std::string before = Transcript();
    Select(static_cast<NSUInteger>(g_linestart) - 4, 5);
    [console cut:nil];
    EXPECT_EQ("4", Pasteboard());
    EXPECT_EQ(before + "5", Text());
    EXPECT_EQ("ans = 5", StatusLine());
}

TEST_F(Pasting, CutInTheTranscriptCopies) {
    Enter("1+2");
    Type("45");
    const std::string before = Text();
    Select(2, 3);
    [console cut:nil];
    EXPECT_EQ("1+2", Pasteboard());
    EXPECT_EQ(before, Text());
    Select(2);
    SetPasteboard("kept");
    [console cut:nil];
    EXPECT_EQ("kept", Pasteboard());
}

// Users know that Cut leaves the line they type alone.
TEST_F(Pasting, CutInsideTheEntryDoesNothing) {
    Type("45");
    SelectEntry(0, 1);
    [console updateStatusbar:""];
    [console cut:nil];
    EXPECT_EQ("what was there", Pasteboard());
    EXPECT_EQ("45", Entry());
    EXPECT_EQ("4", Selected());
    EXPECT_EQ("ans = 45", StatusLine());
}

// --- Paste ---

TEST_F(Pasting, PasteInsertsAtTheCursorAndPreviews) {
    Type("45");
    SelectEntry(1);
    PasteText("+1*");
    EXPECT_EQ("4+1*5", Entry());
    EXPECT_EQ("ans = 9", StatusLine());
    EXPECT_EQ(4U, CursorInEntry());
    SelectEntry(0, 4);
    PasteText("7");
    EXPECT_EQ("75", Entry());
}

TEST_F(Pasting, PasteInTheTranscriptGoesToTheEndOfTheEntry) {
    Enter("1+2");
    Type("45");
    const std::string before = Text();
    Select(0);
    PasteText("6");
    EXPECT_EQ(before + "6", Text());
    Select(2, 3);
    PasteText("7");
    EXPECT_EQ(before + "67", Text());
    [console selectAll:nil];
    PasteText("8");
    EXPECT_EQ(before + "678", Text());
}

TEST_F(Pasting, PastedLinesBecomeStatementsOfOneEntry) {
    PasteText("1+2\n3*4\r\n5\n");
    EXPECT_EQ("1+2; 3*4; 5", Entry());
    EXPECT_EQ("ans = 5", StatusLine());
    [console clearPrompt];
    PasteText("7\n");
    EXPECT_EQ("7", Entry());
    [console clearPrompt];
    PasteText("\n\n 7 \n\n\t8\n");
    EXPECT_EQ("7; 8", Entry());
    [console clearPrompt];
    PasteText("7\u2028"
              "8\u0085"
              "9");
    EXPECT_EQ("7; 8; 9", Entry());
    [console clearPrompt];
    PasteText("\n");
    EXPECT_EQ("", Entry());
}

TEST_F(Pasting, PastedBlanksStay) {
    PasteText(" 1\t+ 2 ");
    EXPECT_EQ(" 1\t+ 2 ", Entry());
    EXPECT_EQ("ans = 3", StatusLine());
}

TEST_F(Pasting, PastingNoTextChangesNothing) {
    Type("45");
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:[NSArray arrayWithObject:NSColorPboardType] owner:nil];
    [[NSColor redColor] writeToPasteboard:board];
    [console paste:nil];
    EXPECT_EQ("45", Entry());
}

TEST_F(Pasting, StylesAreNotPasted) {
    NSDictionary* const large = [NSDictionary dictionaryWithObject:[NSFont boldSystemFontOfSize:40]
                                                            forKey:NSFontAttributeName];
    NSAttributedString* const styled = [[[NSAttributedString alloc] initWithString:@"7"
                                                                        attributes:large] autorelease];
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    NSArray* const types = [NSArray arrayWithObjects:NSRTFPboardType, NSStringPboardType, nil];
    [board declareTypes:types owner:nil];
    [board setData:[styled RTFFromRange:NSMakeRange(0, 1) documentAttributes:nil] forType:NSRTFPboardType];
    [board setString:@"7" forType:NSStringPboardType];
    Type("4");
    NSFont* const font = [[console textStorage] attribute:NSFontAttributeName atIndex:0 effectiveRange:NULL];
    [console paste:nil];
    EXPECT_EQ("47", Entry());
    NSFont* const pasted = [[console textStorage] attribute:NSFontAttributeName
                                                    atIndex:3
                                             effectiveRange:NULL];
    EXPECT_TRUE([font isEqual:pasted]);
}

TEST_F(Pasting, PastedTextThatLatin1HasNotIsKeptAndReportedOnReturn) {
    PasteText("3\u20ac\u4e2d");
    EXPECT_EQ("3\u20ac\u4e2d", Entry());
    EXPECT_EQ("", StatusLine());
    Press(KEY_RETURN);
    EXPECT_EQ("> 3\u20ac\u4e2d\n** Invalid character/encoding used. **\n\n> ", Text());
}

TEST_F(Pasting, WhatFitsIntoAnEntryIsPasted) {
    PasteText(std::string(9999, '1').c_str());
    EXPECT_EQ(9999U, Entry().size());
    [console clearPrompt];
    Type("2");
    PasteText(std::string(9998, '1').c_str());
    EXPECT_EQ(9999U, Entry().size());
    SelectEntry(0, 9999);
    PasteText(std::string(9999, '3').c_str());
    EXPECT_EQ(std::string(9999, '3'), Entry());
}

TEST_F(Pasting, MoreIsRefusedAtOnceAndNothingIsLost) {
    Type("45");
    for (const size_t size : {size_t(9998), size_t(1) << 20}) {
        PasteText(std::string(size, '1').c_str());
        EXPECT_EQ("45", Entry());
        EXPECT_EQ("The text is too long for an entry.", StatusLine());
        EXPECT_EQ(size, Pasteboard().size());
        EXPECT_FALSE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]);
    }
    Type("6");
    EXPECT_EQ("ans = 456", StatusLine());
}

// Between two statements stand two characters, where a line end was one.
TEST_F(Pasting, TheLengthCountsAsOneLine) {
    std::string lines;
    for (int i = 0; i < 4000; ++i) lines += "1\n";
    PasteText(lines.c_str());
    EXPECT_TRUE(Entry().empty());
    EXPECT_EQ("The text is too long for an entry.", StatusLine());
    for (int i = 0; i < 500000; ++i) lines += "1\n";
    PasteText(lines.c_str());
    EXPECT_TRUE(Entry().empty());
}

NSString* noText(id, SEL, NSString*) {
    return nil;
}

TEST_F(Pasting, ATextThatItsOwnerDoesNotHandOutIsSaid) {
    Type("45");
    SetPasteboard("6*7");
    {
        const Replaced gone([[NSPasteboard generalPasteboard] class], @selector(stringForType:), noText);
        EXPECT_FALSE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]
                                                     type:NSStringPboardType]);
        EXPECT_EQ("The text could not be fetched.", StatusLine());
        [console updateStatusbar:""];
        [console paste:nil];
        EXPECT_EQ("The text could not be fetched.", StatusLine());
        EXPECT_EQ("45", Entry());
    }
    // A pasteboard without a text is nothing to speak of.
    [console updateStatusbar:""];
    [[NSPasteboard generalPasteboard] declareTypes:[NSArray arrayWithObject:NSColorPboardType] owner:nil];
    [console paste:nil];
    EXPECT_EQ("", StatusLine());
    EXPECT_EQ("45", Entry());
}

// --- Other ways in ---

TEST_F(Pasting, TextFromServicesComesInAsPastedTextDoes) {
    Enter("1+2");
    const std::string before = Text();
    SetPasteboard("4\n5");
    Select(0, 3);
    EXPECT_TRUE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]);
    EXPECT_EQ(before + "4; 5", Text());
    EXPECT_EQ("ans = 5", StatusLine());
}

TEST_F(Pasting, PasteboardTextComesInPlainByEveryCommand) {
    SetPasteboard("4\n5");
    [console pasteAsPlainText:nil];
    EXPECT_EQ("4; 5", Entry());
    [console clearPrompt];
    [console pasteAsRichText:nil];
    EXPECT_EQ("4; 5", Entry());
}

} // namespace

// What a drag brings.
@interface TestDrag : NSObject {
@public
    NSWindow* window;
    NSPoint place;
    id source;
}
@end

@implementation TestDrag
- (NSWindow*)draggingDestinationWindow {
    return window;
}
- (NSPoint)draggingLocation {
    return place;
}
- (NSPasteboard*)draggingPasteboard {
    return [NSPasteboard generalPasteboard];
}
- (NSDragOperation)draggingSourceOperationMask {
    return NSDragOperationEvery;
}
- (id)draggingSource {
    return source;
}
- (NSInteger)draggingSequenceNumber {
    return 1;
}
@end

namespace {

// Drops what is on the pasteboard at each line of the view, from there or from elsewhere.
TEST_F(Pasting, DropsNeverChangeTheTranscript) {
    Enter("1+2");
    Type("45");
    const std::string before = Transcript();
    TestDrag* const drag = [[[TestDrag alloc] init] autorelease];
    drag->window = window;
    const NSRect visible = [console convertRect:[console visibleRect] toView:nil];
    for (const bool isOwn : {false, true}) {
        SetPasteboard("7\n8");
        drag->source = isOwn ? console : nil;
        for (CGFloat y = NSMinY(visible) + 1; y < NSMaxY(visible); y += 10) {
            drag->place = NSMakePoint(NSMinX(visible) + 20, y);
            if (isOwn) Select(2, 3);
            [console draggingEntered:static_cast<id>(drag)];
            [console draggingUpdated:static_cast<id>(drag)];
            [console prepareForDragOperation:static_cast<id>(drag)];
            [console performDragOperation:static_cast<id>(drag)];
            [console concludeDragOperation:static_cast<id>(drag)];
            ASSERT_EQ(before, Transcript());
            ASSERT_EQ(std::string::npos, Entry().find('\n'));
        }
    }
    EXPECT_NE(std::string::npos, Entry().find("7; 8"));
}

TEST_F(Pasting, TextDraggedInsideTheEntryMoves) {
    Type("12+34");
    SelectEntry(0, 3);
    SetPasteboard("12+");
    TestDrag* const drag = [[[TestDrag alloc] init] autorelease];
    drag->window = window;
    drag->source = console;
    const NSRect visible = [console convertRect:[console visibleRect] toView:nil];
    drag->place = NSMakePoint(NSMaxX(visible) - 5, NSMaxY(visible) - 10);
    [console draggingEntered:static_cast<id>(drag)];
    [console performDragOperation:static_cast<id>(drag)];
    EXPECT_EQ("> 3412+", Text());
}

} // namespace
