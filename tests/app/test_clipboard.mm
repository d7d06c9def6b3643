// SPDX-License-Identifier: MIT
//
// Copy, cut and paste, and text that comes in by other ways.
#import "console_fixture.h"
#include "replacement.h"

#import <objc/runtime.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>

namespace {

using Clock = std::chrono::steady_clock;

struct Selection {
    NSRange range;
    Clock::time_point when;
};
std::vector<Selection> selections;

void recordSelection(id self, SEL selector, NSRange range) {
    selections.push_back({range, Clock::now()});
    const IMP original = class_getMethodImplementation([NSTextView class], selector);
    reinterpret_cast<void (*)(id, SEL, NSRange)>(original)(self, selector, range);
}

class Clipboard : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        class_addMethod([MainConsole class], @selector(setSelectedRange:),
                        reinterpret_cast<IMP>(recordSelection), "v@:{_NSRange=QQ}");
        setPasteboard("what was there");
        sheets.clear(); // that of the first start
    }

    // The pasteboard after a copy of the answer of the line.
    std::string copiedAnswer(const char* line) {
        enter(line);
        [console copy:nil];
        return pasteboard();
    }

    void pasteText(const char* string) {
        setPasteboard(string);
        [console paste:nil];
    }

    const NSUInteger command = NSCommandKeyMask;
};

// --- Copying a selection ---

TEST_F(Clipboard, copyTakesTheSelection) {
    enter("1+2");
    select(2, 3);
    [console copy:nil];
    EXPECT_EQ("1+2", pasteboard());
    EXPECT_EQ("1+2", selected());
    type("7*8");
    selectEntry(1, 2);
    press(@"c", command);
    EXPECT_NE("7*8", pasteboard()); // with a selection the key is the menu's
    [console copy:nil];
    EXPECT_EQ("*8", pasteboard());
}

TEST_F(Clipboard, copyingFromTheTranscriptShowsATipOnce) {
    enter("1+2");
    select(2, 3);
    [console copy:nil];
    ASSERT_EQ(1U, sheets.size());
    EXPECT_EQ(
        "Tip:  You can copy the previous answer anytime using CMD-c with no text selected.  Give it a try!",
        sheets[0].message);
    EXPECT_EQ("Thanks, but don't tell me again!", sheets[0].yes);
    EXPECT_EQ("", sheets[0].no);
    EXPECT_EQ(1, [console setting:@"tipscode"]);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
}

TEST_F(Clipboard, theTipIsShownOncePerSettingsFile) {
    enter("1+2");
    select(2, 3);
    [console copy:nil];
    terminate();
    restart();
    sheets.clear();
    enter("1+2");
    select(2, 3);
    [console copy:nil];
    EXPECT_EQ(0U, sheets.size());
}

TEST_F(Clipboard, theTipNeedsASelectionThatBeginsMoreThanFourCharactersBeforeTheEntry) {
    enter("1+2");
    type("45");
    selectEntry(0, 2);
    [console copy:nil];
    select(static_cast<NSUInteger>(g_linestart) - 4, 5);
    [console copy:nil];
    EXPECT_EQ(0U, sheets.size());
    EXPECT_EQ(0, [console setting:@"tipscode"]);
    select(static_cast<NSUInteger>(g_linestart) - 5, 5);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
}

TEST_F(Clipboard, otherTipsAreKept) {
    [console setSetting:@"tipscode" to:6];
    enter("1+2");
    select(2, 3);
    [console copy:nil];
    EXPECT_EQ(1U, sheets.size());
    EXPECT_EQ(7, [console setting:@"tipscode"]);
}

// --- Copying the answer ---

TEST_F(Clipboard, withoutASelectionTheAnswerIsCopied) {
    EXPECT_EQ("3", copiedAnswer("1+2"));
    EXPECT_EQ(0U, sheets.size());
}

TEST_F(Clipboard, commandCCopiesTheAnswer) {
    enter("1+2");
    type("45");
    press(@"c", command);
    EXPECT_EQ("3", pasteboard());
    EXPECT_EQ("45", entry());
    EXPECT_EQ(2U, cursorInEntry());
}

TEST_F(Clipboard, theCopyItemIsEnabledWithoutASelection) {
    for (const SEL action : { @selector(copy:), @selector(cut:), @selector(paste:), @selector(undo:) }) {
        NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:@"" action:action
                                                      keyEquivalent:@""] autorelease];
        EXPECT_TRUE([console validateMenuItem:item]);
    }
}

TEST_F(Clipboard, theAnswerIsCopiedWithoutItsSeparators) {
    [console setSetting:@"separator" to:1];
    const struct {
        char character;
        const char* shown;
    } separators[] = {{',', "1,234,567.5"}, {' ', "1 234 567.5"}, {'\'', "1'234'567.5"}};
    for (const auto& one : separators) {
        [console setSetting:@"schar" to:one.character];
        EXPECT_EQ("1234567.5", copiedAnswer("1234567.5"));
        EXPECT_NE(std::string::npos, text().find(std::string("= ") + one.shown + "\n")) << one.shown;
    }
}

TEST_F(Clipboard, theDecimalCommaIsCopied) {
    [console setSetting:@"separator" to:1];
    [console setSetting:@"european" to:1];
    for (const char separator : {',', '.'}) { // either stands for the grouping mark
        [console setSetting:@"schar" to:separator];
        EXPECT_EQ("1234567,5", copiedAnswer("1234567,5"));
        EXPECT_NE(std::string::npos, text().find("= 1.234.567,5\n"));
    }
    [console setSetting:@"separator" to:0];
    EXPECT_EQ("1234567,5", copiedAnswer("1234567,5"));
}

TEST_F(Clipboard, anotherBaseIsCopiedAsItIsShown) {
    [console setSetting:@"separator" to:0];
    [console setSetting:@"dispbase" to:16];
    enter("255");
    [console copy:nil];
    const std::string copied = pasteboard();
    EXPECT_NE(std::string::npos, text().find("= " + copied + "\n"));
    EXPECT_EQ("0x00FF", copied);
}

TEST_F(Clipboard, withoutAnAnswerThePasteboardStays) {
    [console copy:nil];
    EXPECT_EQ("what was there", pasteboard());
}

TEST_F(Clipboard, theCopiedAnswerFlashesThreeTimes) {
    enter("3");
    enter("1+2");
    type("45");
    selectEntry(1);
    const NSUInteger place = cursor();
    const auto answer = static_cast<NSUInteger>(text().rfind("= 3") + 2);
    selections.clear();
    [console copy:nil];
    ASSERT_EQ(6U, selections.size());
    for (size_t i = 0; i < 6; i++) {
        const bool isAnswer = i % 2 == 0;
        EXPECT_EQ(isAnswer ? answer : place, selections[i].range.location);
        EXPECT_EQ(isAnswer ? 1U : 0U, selections[i].range.length);
        // A busy machine only makes it longer.
        if (i < 5) EXPECT_LE(std::chrono::milliseconds(80), selections[i + 1].when - selections[i].when);
    }
    EXPECT_EQ(place, cursor());
    EXPECT_EQ("", selected());
    EXPECT_EQ("45", entry());
}

TEST_F(Clipboard, theAnswerIsFoundWithItsSeparators) {
    [console setSetting:@"separator" to:1];
    enter("1234567");
    selections.clear();
    [console copy:nil];
    ASSERT_EQ(6U, selections.size());
    EXPECT_EQ(text().find("1,234,567"), selections[0].range.location);
    EXPECT_EQ(9U, selections[0].range.length);
}

TEST_F(Clipboard, anAnswerThatIsNotShownAnyMoreIsCopiedWithoutFlashing) {
    enter("1+2");
    [console clearConsole];
    selections.clear();
    [console copy:nil];
    EXPECT_EQ("3", pasteboard());
    EXPECT_EQ(0U, selections.size());
}

// --- The answer in other settings than those it was shown in ---

TEST_F(Clipboard, theAnswerIsCopiedInTheDecimalMarkOfNow) {
    [console setSetting:@"separator" to:1];
    enter("1234.5");
    enter("european on");
    [console copy:nil];
    EXPECT_EQ("1234,5", pasteboard());
    enter("european off");
    [console copy:nil];
    EXPECT_EQ("1234.5", pasteboard());
}

TEST_F(Clipboard, anAnswerThatDispShowedIsCopiedAsItsNumber) {
    enter("x=1/4");
    enter("disp pi");
    selections.clear();
    [console copy:nil];
    EXPECT_EQ("3.141592654", pasteboard());
    ASSERT_EQ(6U, selections.size());
    EXPECT_EQ(text().find("3.141592654"), selections[0].range.location);
}

// The settings that decide how a number is written.
struct Writing {
    int european, separator, schar, dispbase, sigfigs, scimode, twoscomp;
};

const Writing WRITINGS[] = {{0, 0, ',', 10, 10, 0, 0}, {0, 1, ',', 10, 10, 0, 0}, {1, 1, ',', 10, 10, 0, 0},
                            {1, 0, ',', 10, 30, 1, 0}, {0, 1, '\'', 10, 6, 2, 0}, {1, 1, ' ', 10, 6, 3, 0},
                            {0, 1, ' ', 10, 5, 4, 0},  {1, 1, '\'', 10, 2, 5, 0}, {0, 1, ',', 10, 100, 5, 0},
                            {0, 0, ',', 16, 10, 0, 0}, {1, 1, ',', 16, 10, 0, 1}, {0, 1, ';', 2, 10, 0, 1},
                            {1, 0, ',', 2, 3, 2, 0},   {0, 0, ',', 16, 3, 4, 1},  {1, 1, ';', 10, 12, 4, 1},
                            {0, 1, '.', 10, 12, 0, 0}};

class CopiedAnswer : public Clipboard {
protected:
    void use(const Writing& one) {
        const struct {
            NSString* key;
            int value;
        } settings[] = {{@"european", one.european}, {@"separator", one.separator}, {@"schar", one.schar},
                        {@"dispbase", one.dispbase}, {@"sigfigs", one.sigfigs},     {@"scimode", one.scimode},
                        {@"twoscomp", one.twoscomp}};
        for (const auto& setting : settings) [console setSetting:setting.key to:setting.value];
    }

    // Half a unit of the last place that the writing shows, and what a double adds when it is compared.
    static double allowed(const Writing& one, double value) {
        const double own = std::fabs(value) * 1e-14;
        if (one.dispbase != 10) return own;
        const bool isFixed = one.scimode == 5;
        return own + (isFixed ? 0.5 * std::pow(10, -one.sigfigs)
                              : 5 * std::pow(10, -one.sigfigs) * std::fabs(value));
    }
};

// What is copied reads back, by the engine in the settings of the copy, as the answer with the figures it was shown
// with: every value in every writing, copied in every other one.
TEST_F(CopiedAnswer, readsBackInWhateverSettingsHoldAtTheCopy) {
    const double values[] = {1234.5,     -5,   255,  1234567, -1234567.25,  0.015625,
                             -0.0078125, 1e12, 3e-7, 0,       123456789.125};
    for (const double value : values) {
        for (const Writing& shown : WRITINGS) {
            use({0, 0, ',', 10, 10, 0, 0});
            char entry[64];
            snprintf(entry, sizeof entry, "x=%.17g", value);
            std::string line = entry;
            if (shown.european) std::replace(line.begin(), line.end(), '.', ',');
            use(shown);
            [console ProcessResult:line.c_str():NO];
            const double wanted = shown.dispbase == 10 ? value : std::trunc(value); // whole ones alone
            for (const Writing& now : WRITINGS) {
                use(now);
                [console copySettingsToEngine];
                const std::string copied = calc.PlainAnswer();
                ASSERT_EQ(STATUS_RESULT, calc.ProcessEntry(copied.c_str(), true)) << copied;
                double read = 0;
                qtoe(calc.result, &read);
                EXPECT_NEAR(wanted, read, allowed(shown, wanted)) << copied << " of " << line;
            }
        }
    }
}

// --- Cut ---

TEST_F(Clipboard, cutAcrossThePromptTakesWhatIsInTheEntry) {
    enter("1+2");
    type("45");
    const std::string before = transcript();
    select(static_cast<NSUInteger>(g_linestart) - 4, 5);
    [console cut:nil];
    EXPECT_EQ("4", pasteboard());
    EXPECT_EQ(before + "5", text());
    EXPECT_EQ("ans = 5", status());
}

TEST_F(Clipboard, cutInTheTranscriptCopies) {
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
TEST_F(Clipboard, cutInsideTheEntryDoesNothing) {
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

TEST_F(Clipboard, pasteInsertsAtTheCursorAndPreviews) {
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

TEST_F(Clipboard, pasteInTheTranscriptGoesToTheEndOfTheEntry) {
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

TEST_F(Clipboard, pastedLinesBecomeStatementsOfOneEntry) {
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

TEST_F(Clipboard, pastedBlanksStay) {
    pasteText(" 1\t+ 2 ");
    EXPECT_EQ(" 1\t+ 2 ", entry());
    EXPECT_EQ("ans = 3", status());
}

TEST_F(Clipboard, pastingNoTextChangesNothing) {
    type("45");
    NSPasteboard* const board = [NSPasteboard generalPasteboard];
    [board declareTypes:[NSArray arrayWithObject:NSColorPboardType] owner:nil];
    [[NSColor redColor] writeToPasteboard:board];
    [console paste:nil];
    EXPECT_EQ("45", entry());
}

TEST_F(Clipboard, stylesAreNotPasted) {
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

TEST_F(Clipboard, pastedTextThatLatin1HasNotIsKeptAndReportedOnReturn) {
    pasteText("3\u20ac\u4e2d");
    EXPECT_EQ("3\u20ac\u4e2d", entry());
    EXPECT_EQ("", status());
    press(KEY_RETURN);
    EXPECT_EQ("> 3\u20ac\u4e2d\n** Invalid character/encoding used. **\n\n> ", text());
}

TEST_F(Clipboard, whatFitsIntoAnEntryIsPasted) {
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

TEST_F(Clipboard, moreIsRefusedAtOnceAndNothingIsLost) {
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
TEST_F(Clipboard, theLengthCountsAsOneLine) {
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

TEST_F(Clipboard, aTextThatItsOwnerDoesNotHandOutIsSaid) {
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

TEST_F(Clipboard, textFromServicesComesInAsPastedTextDoes) {
    enter("1+2");
    const std::string before = text();
    setPasteboard("4\n5");
    select(0, 3);
    EXPECT_TRUE([console readSelectionFromPasteboard:[NSPasteboard generalPasteboard]]);
    EXPECT_EQ(before + "4; 5", text());
    EXPECT_EQ("ans = 5", status());
}

TEST_F(Clipboard, pasteboardTextComesInPlainByEveryCommand) {
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
TEST_F(Clipboard, dropsNeverChangeTheTranscript) {
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

TEST_F(Clipboard, textDraggedInsideTheEntryMoves) {
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
