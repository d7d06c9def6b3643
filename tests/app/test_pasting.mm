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
        setPasteboard("what was there");
        sheets.clear(); // that of the first start
    }

    void pasteText(const char* string) {
        setPasteboard(string);
        [console paste:nil];
    }

    const NSUInteger command = NSCommandKeyMask;
};

// --- Cut ---

TEST_F(Pasting, cutAcrossThePromptTakesWhatIsInTheEntry) {
    enter("1+2");
    type("45");
    const std::string before = transcript();
    select(static_cast<NSUInteger>(g_linestart) - 4, 5);
    [console cut:nil];
    EXPECT_EQ("4", pasteboard());
    EXPECT_EQ(before + "5", text());
    EXPECT_EQ("ans = 5", status());
}

TEST_F(Pasting, cutInTheTranscriptCopies) {
    enter("1+2");
    type("45");
    const std::string before = text();
    select(2, 3);
    [console cut:nil];
    EXPECT_EQ("1+2", pasteboard());
    EXPECT_EQ(before, text());
    select(2);
    setPasteboard("kept");
    [console cut:nil];
    EXPECT_EQ("kept", pasteboard());
}

// Users know that Cut leaves the line they type alone.
TEST_F(Pasting, cutInsideTheEntryDoesNothing) {
    type("45");
    selectEntry(0, 1);
    [console updateStatusbar:""];
    [console cut:nil];
    EXPECT_EQ("what was there", pasteboard());
    EXPECT_EQ("45", entry());
    EXPECT_EQ("4", selected());
    EXPECT_EQ("ans = 45", status());
}

// --- Paste ---

TEST_F(Pasting, pasteInsertsAtTheCursorAndPreviews) {
    type("45");
    selectEntry(1);
    pasteText("+1*");
    EXPECT_EQ("4+1*5", entry());
    EXPECT_EQ("ans = 9", status());
    EXPECT_EQ(4U, cursorInEntry());
    selectEntry(0, 4);
    pasteText("7");
    EXPECT_EQ("75", entry());
}

TEST_F(Pasting, pasteInTheTranscriptGoesToTheEndOfTheEntry) {
    enter("1+2");
    type("45");
    const std::string before = text();
    select(0);
    pasteText("6");
    EXPECT_EQ(before + "6", text());
    select(2, 3);
    pasteText("7");
    EXPECT_EQ(before + "67", text());
    [console selectAll:nil];
    pasteText("8");
    EXPECT_EQ(before + "678", text());
}

TEST_F(Pasting, pastedLinesBecomeStatementsOfOneEntry) {
    pasteText("1+2\n3*4\r\n5\n");
    EXPECT_EQ("1+2; 3*4; 5", entry());
    EXPECT_EQ("ans = 5", status());
    [console clearPrompt];
    pasteText("7\n");
    EXPECT_EQ("7", entry());
    [console clearPrompt];
    pasteText("\n\n 7 \n\n\t8\n");
    EXPECT_EQ("7; 8", entry());
    [console clearPrompt];
    pasteText("7\u2028"
              "8\u0085"
              "9");
    EXPECT_EQ("7; 8; 9", entry());
    [console clearPrompt];
    pasteText("\n");
    EXPECT_EQ("", entry());
}

TEST_F(Pasting, pastedBlanksStay) {
    pasteText(" 1\t+ 2 ");
    EXPECT_EQ(" 1\t+ 2 ", entry());
    EXPECT_EQ("ans = 3", status());
}

TEST_F(Pasting, pastingNoTextChangesNothing) {
    type("45");
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:[NSArray arrayWithObject:NSColorPboardType] owner:nil];
    [[NSColor redColor] writeToPasteboard:board];
    [console paste:nil];
    EXPECT_EQ("45", entry());
}

TEST_F(Pasting, stylesAreNotPasted) {
    NSDictionary* const large = [NSDictionary dictionaryWithObject:[NSFont boldSystemFontOfSize:40]
                                                            forKey:NSFontAttributeName];
    NSAttributedString* const styled = [[[NSAttributedString alloc] initWithString:@"7"
                                                                        attributes:large] autorelease];
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    NSArray* const types = [NSArray arrayWithObjects:NSRTFPboardType, NSStringPboardType, nil];
    [board declareTypes:types owner:nil];
    [board setData:[styled RTFFromRange:NSMakeRange(0, 1) documentAttributes:nil] forType:NSRTFPboardType];
    [board setString:@"7" forType:NSStringPboardType];
    type("4");
    NSFont* const font = [[console textStorage] attribute:NSFontAttributeName atIndex:0 effectiveRange:NULL];
    [console paste:nil];
    EXPECT_EQ("47", entry());
    NSFont* const pasted = [[console textStorage] attribute:NSFontAttributeName
                                                    atIndex:3
                                             effectiveRange:NULL];
    EXPECT_TRUE([font isEqual:pasted]);
}

TEST_F(Pasting, pastedTextThatLatin1HasNotIsKeptAndReportedOnReturn) {
    pasteText("3\u20ac\u4e2d");
    EXPECT_EQ("3\u20ac\u4e2d", entry());
    EXPECT_EQ("", status());
    press(KEY_RETURN);
    EXPECT_EQ("> 3\u20ac\u4e2d\n** Invalid character/encoding used. **\n\n> ", text());
}

TEST_F(Pasting, whatFitsIntoAnEntryIsPasted) {
    pasteText(std::string(9999, '1').c_str());
    EXPECT_EQ(9999U, entry().size());
    [console clearPrompt];
    type("2");
    pasteText(std::string(9998, '1').c_str());
    EXPECT_EQ(9999U, entry().size());
    selectEntry(0, 9999);
    pasteText(std::string(9999, '3').c_str());
    EXPECT_EQ(std::string(9999, '3'), entry());
}

TEST_F(Pasting, moreIsRefusedAtOnceAndNothingIsLost) {
    type("45");
    for (const size_t size : {size_t(9998), size_t(1) << 20}) {
        pasteText(std::string(size, '1').c_str());
        EXPECT_EQ("45", entry());
        EXPECT_EQ("The text is too long for an entry.", status());
        EXPECT_EQ(size, pasteboard().size());
        EXPECT_FALSE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]);
    }
    type("6");
    EXPECT_EQ("ans = 456", status());
}

// Between two statements stand two characters, where a line end was one.
TEST_F(Pasting, theLengthCountsAsOneLine) {
    std::string lines;
    for (int i = 0; i < 4000; i++) lines += "1\n";
    pasteText(lines.c_str());
    EXPECT_TRUE(entry().empty());
    EXPECT_EQ("The text is too long for an entry.", status());
    for (int i = 0; i < 500000; i++) lines += "1\n";
    pasteText(lines.c_str());
    EXPECT_TRUE(entry().empty());
}

NSString* noText(id, SEL, NSString*) {
    return nil;
}

TEST_F(Pasting, aTextThatItsOwnerDoesNotHandOutIsSaid) {
    type("45");
    setPasteboard("6*7");
    {
        const Replaced gone([[NSPasteboard generalPasteboard] class], @selector(stringForType:), noText);
        EXPECT_FALSE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]
                                                     type:NSStringPboardType]);
        EXPECT_EQ("The text could not be fetched.", status());
        [console updateStatusbar:""];
        [console paste:nil];
        EXPECT_EQ("The text could not be fetched.", status());
        EXPECT_EQ("45", entry());
    }
    // A pasteboard without a text is nothing to speak of.
    [console updateStatusbar:""];
    [[NSPasteboard generalPasteboard] declareTypes:[NSArray arrayWithObject:NSColorPboardType] owner:nil];
    [console paste:nil];
    EXPECT_EQ("", status());
    EXPECT_EQ("45", entry());
}

// --- Other ways in ---

TEST_F(Pasting, textFromServicesComesInAsPastedTextDoes) {
    enter("1+2");
    const std::string before = text();
    setPasteboard("4\n5");
    select(0, 3);
    EXPECT_TRUE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]);
    EXPECT_EQ(before + "4; 5", text());
    EXPECT_EQ("ans = 5", status());
}

TEST_F(Pasting, pasteboardTextComesInPlainByEveryCommand) {
    setPasteboard("4\n5");
    [console pasteAsPlainText:nil];
    EXPECT_EQ("4; 5", entry());
    [console clearPrompt];
    [console pasteAsRichText:nil];
    EXPECT_EQ("4; 5", entry());
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
TEST_F(Pasting, dropsNeverChangeTheTranscript) {
    enter("1+2");
    type("45");
    const std::string before = transcript();
    TestDrag* const drag = [[[TestDrag alloc] init] autorelease];
    drag->window = window;
    const NSRect visible = [console convertRect:[console visibleRect] toView:nil];
    for (const bool isOwn : {false, true}) {
        setPasteboard("7\n8");
        drag->source = isOwn ? console : nil;
        for (CGFloat y = NSMinY(visible) + 1; y < NSMaxY(visible); y += 10) {
            drag->place = NSMakePoint(NSMinX(visible) + 20, y);
            if (isOwn) select(2, 3);
            [console draggingEntered:static_cast<id>(drag)];
            [console draggingUpdated:static_cast<id>(drag)];
            [console prepareForDragOperation:static_cast<id>(drag)];
            [console performDragOperation:static_cast<id>(drag)];
            [console concludeDragOperation:static_cast<id>(drag)];
            ASSERT_EQ(before, transcript());
            ASSERT_EQ(std::string::npos, entry().find('\n'));
        }
    }
    EXPECT_NE(std::string::npos, entry().find("7; 8"));
}

TEST_F(Pasting, textDraggedInsideTheEntryMoves) {
    type("12+34");
    selectEntry(0, 3);
    setPasteboard("12+");
    TestDrag* const drag = [[[TestDrag alloc] init] autorelease];
    drag->window = window;
    drag->source = console;
    const NSRect visible = [console convertRect:[console visibleRect] toView:nil];
    drag->place = NSMakePoint(NSMaxX(visible) - 5, NSMaxY(visible) - 10);
    [console draggingEntered:static_cast<id>(drag)];
    [console performDragOperation:static_cast<id>(drag)];
    EXPECT_EQ("> 3412+", text());
}

} // namespace
