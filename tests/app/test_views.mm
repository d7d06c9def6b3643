// SPDX-License-Identifier: MIT
//
// The views of our own, drawn into pictures.
#import "console_fixture.h"

#import "HUDViewWithBlur.h"
#import "TextFormatter.h"
#import "ZqScroller.h"

#include <cstdint>
#include <string>

namespace {

struct Pixel {
    double red, green, blue, alpha;
};

// What `draw` leaves on a clear picture of this size, in points from the lower left.
class Picture {
public:
    template <class Draw> Picture(NSSize size, Draw draw) {
        NSImage* const image = [[[NSImage alloc] initWithSize:size] autorelease];
        [image lockFocus];
        [[NSColor clearColor] set];
        NSRectFillUsingOperation(NSMakeRect(0, 0, size.width, size.height), NSCompositeCopy);
        draw();
        const NSRect all = NSMakeRect(0, 0, size.width, size.height);
        bits = [[NSBitmapImageRep alloc] initWithFocusedViewRect:all];
        [image unlockFocus];
    }
    Picture(const Picture&) = delete;
    Picture& operator=(const Picture&) = delete;
    ~Picture() { [bits release]; }

    Pixel At(NSInteger x, NSInteger y) const {
        NSColor* const color =
            [[bits colorAtX:x y:[bits pixelsHigh] - 1 - y] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
        return {[color redComponent], [color greenComponent], [color blueComponent], [color alphaComponent]};
    }

private:
    NSBitmapImageRep* bits;
};

// --- The background ---

class Background : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        view = [[[HUDViewWithBlur alloc] initWithFrame:NSMakeRect(0, 0, 60, 120)] autorelease];
        [view setMainConsole:console];
        [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.2 green:0.4 blue:0.6 alpha:1]];
    }

    Picture Draw(NSRect dirty) {
        return Picture(NSMakeSize(60, 120), [&] { [view drawRect:dirty]; });
    }
    Picture Draw() { return Draw([view bounds]); }

    HUDViewWithBlur* view = nil;
};

const double STEP = 1.5 / 255; // of a color's component

TEST_F(Background, TheBandLeavesTwentyPointsBelowAndTwentySevenAbove) {
    const Picture picture = Draw();
    EXPECT_EQ(picture.At(30, 19).alpha, 0);
    EXPECT_GT(picture.At(30, 20).alpha, 0);
    EXPECT_GT(picture.At(0, 50).alpha, 0);
    EXPECT_GT(picture.At(59, 50).alpha, 0);
    EXPECT_GT(picture.At(30, 92).alpha, 0); // 120 - 27 - 1
    EXPECT_EQ(picture.At(30, 93).alpha, 0);
}

TEST_F(Background, TheBandHasTheColorOfTheConsole) {
    [console setSetting:@"trans" to:0];
    const Pixel pixel = Draw().At(30, 60);
    EXPECT_NEAR(pixel.red, 0.2, STEP);
    EXPECT_NEAR(pixel.green, 0.4, STEP);
    EXPECT_NEAR(pixel.blue, 0.6, STEP);
}

TEST_F(Background, TheTransparencyGoesByTheSetting) {
    const struct {
        int setting;
        double alpha;
    } cases[] = {{25, 0.9}, {0, 1.0}, {50, 0.8}, {100, 0.6}};
    for (const auto& one : cases) {
        [console setSetting:@"trans" to:one.setting];
        EXPECT_NEAR(Draw().At(30, 60).alpha, one.alpha, STEP) << one.setting;
    }
}

TEST_F(Background, OnlyWhatIsDirtyIsFilled) {
    const Picture picture = Draw(NSMakeRect(10, 0, 20, 50));
    EXPECT_GT(picture.At(10, 49).alpha, 0);
    EXPECT_EQ(picture.At(9, 40).alpha, 0);
    EXPECT_EQ(picture.At(30, 40).alpha, 0);
    EXPECT_EQ(picture.At(20, 50).alpha, 0);
    EXPECT_EQ(picture.At(20, 19).alpha, 0);
}

TEST_F(Background, ItReplacesWhatWasThere) {
    const Picture picture(NSMakeSize(60, 120), [&] {
        [[NSColor whiteColor] set];
        NSRectFill(NSMakeRect(0, 0, 60, 120));
        [view drawRect:[view bounds]];
    });
    EXPECT_NEAR(picture.At(30, 60).alpha, 0.9, STEP);
    EXPECT_NEAR(picture.At(30, 60).red, 0.2, 2 * STEP);
}

TEST_F(Background, AWindowTooLowForABandIsSurvived) {
    [view setFrame:NSMakeRect(0, 0, 60, 30)];
    const Picture picture = Draw();
    EXPECT_EQ(picture.At(30, 10).alpha, 0);
    EXPECT_EQ(picture.At(30, 60).alpha, 0);
}

TEST_F(Background, TheContentOfTheWindowIsSuchAView) {
    EXPECT_TRUE([[window contentView] isKindOfClass:[HUDViewWithBlur class]]);
}

// --- The scroller ---

class Scroller : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        scroller = static_cast<ZqScroller*>([[console enclosingScrollView] verticalScroller]);
    }

    // As it is seen; the scroller is flipped, and so is the picture.
    Pixel Seen(NSInteger x, NSInteger fromTop) {
        [window display];
        [scroller lockFocus];
        NSBitmapImageRep* const bits =
            [[[NSBitmapImageRep alloc] initWithFocusedViewRect:[scroller bounds]] autorelease];
        [scroller unlockFocus];
        NSColor* const color = [[bits colorAtX:x y:fromTop] colorUsingColorSpaceName:NSDeviceRGBColorSpace];
        return {[color redComponent], [color greenComponent], [color blueComponent], [color alphaComponent]};
    }

    void FillConsole() {
        for (int i = 0; i < 100; ++i) [console insertWithoutPrompt:"line\n"];
        [console sizeToFit];
    }

    ZqScroller* scroller = nil;
};

TEST_F(Scroller, ItIsTheConsolesAndHasNoArrows) {
    ASSERT_TRUE([scroller isKindOfClass:[ZqScroller class]]);
    EXPECT_EQ([scroller arrowsPosition], NSScrollerArrowsNone);
    EXPECT_EQ(NSWidth([scroller frame]), [ZqScroller scrollerWidth]);
    ZqScroller* const other = [[[ZqScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 80)] autorelease];
    EXPECT_EQ([other arrowsPosition], NSScrollerArrowsNone);
}

TEST_F(Scroller, AnUnarchivedOneHasNoArrowsEither) {
    ZqScroller* const other = [[[ZqScroller alloc] initWithFrame:NSMakeRect(0, 0, 15, 80)] autorelease];
    [other setArrowsPosition:NSScrollerArrowsMaxEnd];
    ZqScroller* const copy =
        [NSUnarchiver unarchiveObjectWithData:[NSArchiver archivedDataWithRootObject:other]];
    ASSERT_TRUE([copy isKindOfClass:[ZqScroller class]]);
    EXPECT_EQ([copy arrowsPosition], NSScrollerArrowsNone);
}

TEST_F(Scroller, ItsImagesAreFoundInTheBundle) {
    for (NSString* const name : {@"KnobTop", @"KnobVerticalFill", @"KnobBottom", @"SlotVerticalFill"}) {
        NSString* const path = [[NSBundle bundleForClass:[ZqScroller class]]
            pathForResource:[@"TransparentScroller" stringByAppendingString:name]
                     ofType:@"tif"];
        ASSERT_NE(path, nil) << [name UTF8String];
        NSImage* const image = [[[NSImage alloc] initWithContentsOfFile:path] autorelease];
        ASSERT_NE(image, nil) << [name UTF8String];
        EXPECT_GT([image size].width, 0);
        EXPECT_GT([image size].height, 0);
    }
}

TEST_F(Scroller, TheKnobIsCenteredAtTheWidthOfItsImage) {
    const struct {
        CGFloat knob, image, x, width;
    } cases[] = {{15, 7, 4, 7}, {14, 7, 3, 7}, {7, 7, 0, 7}, {8, 7, 0, 7}, {7, 9, -1, 9}};
    for (const auto& one : cases) {
        const NSRect place = centeredKnob(NSMakeRect(10, 20, one.knob, 30), one.image);
        EXPECT_EQ(NSMinX(place), 10 + one.x) << one.knob << " " << one.image;
        EXPECT_EQ(NSWidth(place), one.width);
        EXPECT_EQ(NSMinY(place), 20);
        EXPECT_EQ(NSHeight(place), 30);
    }
}

TEST_F(Scroller, ADocumentThatFitsHasNoKnob) {
    const NSInteger middle = static_cast<NSInteger>(NSWidth([scroller bounds]) / 2);
    const NSInteger height = static_cast<NSInteger>(NSHeight([scroller bounds]));
    const Pixel first = Seen(middle, height / 2);
    for (NSInteger y = 1; y < height - 1; ++y) EXPECT_NEAR(Seen(middle, y).red, first.red, STEP) << y;
}

TEST_F(Scroller, ALongDocumentHasAKnobAtItsEnd) {
    FillConsole();
    [console gotoEnd];
    const NSRect knob = [scroller rectForPart:NSScrollerKnob];
    ASSERT_GT(NSHeight(knob), 6);
    const NSInteger middle = static_cast<NSInteger>(NSMidX(knob));
    const NSInteger y = static_cast<NSInteger>(NSMidY(knob));
    EXPECT_GT(Seen(middle, y).red, Seen(middle, 3).red + 0.1);
    // Beside the image there is the track.
    const NSInteger left = static_cast<NSInteger>(NSMinX(knob));
    const NSInteger right = static_cast<NSInteger>(NSMaxX(knob)) - 1;
    EXPECT_NEAR(Seen(left, y).red, Seen(left, 3).red, STEP);
    EXPECT_NEAR(Seen(right, y).red, Seen(right, 3).red, STEP);
    // The knob is drawn to its ends.
    EXPECT_GT(Seen(middle, static_cast<NSInteger>(NSMinY(knob)) + 1).red, Seen(middle, 3).red + 0.1);
    EXPECT_GT(Seen(middle, static_cast<NSInteger>(NSMaxY(knob)) - 2).red, Seen(middle, 3).red + 0.1);
}

TEST_F(Scroller, TheKnobGoesWhenTheDocumentFitsAgain) {
    FillConsole();
    [console gotoEnd];
    const NSRect knob = [scroller rectForPart:NSScrollerKnob];
    const NSInteger x = static_cast<NSInteger>(NSMidX(knob)), y = static_cast<NSInteger>(NSMidY(knob));
    const Pixel before = Seen(x, y);
    [console clearConsole];
    [console fitToScrollView];
    EXPECT_LT(Seen(x, y).red, before.red - 0.1);
}

TEST_F(Scroller, TheTrackHasTheColorOfTheConsole) {
    [console setBackgroundColor:[NSColor colorWithCalibratedRed:0.6 green:0.1 blue:0.1 alpha:1]];
    const Pixel track = Seen(1, 5);
    EXPECT_GT(track.red, 0.5);
    EXPECT_LT(track.green, 0.2);
}

TEST_F(Scroller, WithoutAScrollViewItPaintsItsOwnColor) {
    ZqScroller* const alone = [[[ZqScroller alloc] initWithFrame:NSMakeRect(40, 40, 15, 80)] autorelease];
    EXPECT_TRUE([alone isOpaque]);
    [[window contentView] addSubview:alone];
    [alone setEnabled:YES];
    [alone setDoubleValue:0];
    [alone setKnobProportion:0.5];
    scroller = alone;
    const NSRect knob = [alone rectForPart:NSScrollerKnob];
    ASSERT_GT(NSHeight(knob), 6);
    const Pixel track = Seen(1, 70);
    EXPECT_LT(track.red, 0.3);
    EXPECT_GT(Seen(7, static_cast<NSInteger>(NSMidY(knob))).red, track.red + 0.1) << "its knob";
    [alone removeFromSuperview];
}

TEST_F(Scroller, ItsKnobIsAsWideAsItselfAndOtherPartsAreWhereTheyWere) {
    FillConsole();
    [console gotoEnd];
    NSScroller* const plain = [[[NSScroller alloc] initWithFrame:[scroller frame]] autorelease];
    [plain setArrowsPosition:NSScrollerArrowsNone];
    [plain setEnabled:YES];
    [plain setDoubleValue:[scroller doubleValue]];
    [plain setKnobProportion:[scroller knobProportion]];
    EXPECT_EQ(NSWidth([scroller rectForPart:NSScrollerKnob]), NSWidth([scroller bounds]));
    EXPECT_TRUE(NSEqualRects([scroller rectForPart:NSScrollerDecrementPage],
                             [plain rectForPart:NSScrollerDecrementPage]));
    [scroller setFrame:NSZeroRect];
    EXPECT_TRUE(NSIsEmptyRect([scroller rectForPart:NSScrollerKnob]));
}

TEST_F(Scroller, ANotchOfTheWheelIsAboutThreeLines) {
    const CGFloat line = [[console font] defaultLineHeightForFont];
    EXPECT_GT([[console enclosingScrollView] verticalLineScroll], 2.5 * line);
    EXPECT_LT([[console enclosingScrollView] verticalLineScroll], 3.5 * line);
}

// --- Long lines ---

class LongLines : public ConsoleTest {
protected:
    // Whether the character stands on the line of the prompt's first one.
    bool IsBesideThePrompt(NSUInteger character) {
        NSLayoutManager* const layout = [console layoutManager];
        const NSUInteger start = static_cast<NSUInteger>(g_linestart) - 2;
        const NSRect first = [layout lineFragmentRectForGlyphAtIndex:start effectiveRange:NULL];
        const NSRect other = [layout lineFragmentRectForGlyphAtIndex:start + 2 + character
                                                      effectiveRange:NULL];
        return NSMinY(first) == NSMinY(other);
    }

    void ExpectEntryBesideThePrompt() {
        [console replacePrompt:std::string(200, '7').c_str()];
        EXPECT_TRUE(IsBesideThePrompt(0));
        EXPECT_FALSE(IsBesideThePrompt(199));
    }
};

TEST_F(LongLines, AnEntryBeginsBesideItsPrompt) {
    ExpectEntryBesideThePrompt();
    [console clearPrompt];
    [console insertWithNewPrompt:"ans = 2\n"];
    ExpectEntryBesideThePrompt();
}

TEST_F(LongLines, AlsoWithOtherFontsAndColorsAndInAClearedConsole) {
    [console setFont:[NSFont userFixedPitchFontOfSize:15]];
    ExpectEntryBesideThePrompt();
    [console showTextColor:[NSColor redColor] background:[NSColor blackColor]];
    ExpectEntryBesideThePrompt();
    [console setString:@""];
    [console clearConsole];
    [console setFont:[NSFont userFixedPitchFontOfSize:11]];
    ExpectEntryBesideThePrompt();
    [console clearPrompt];
    [console insertText:[@"" stringByPaddingToLength:200 withString:@"x" startingAtIndex:0]];
    EXPECT_TRUE(IsBesideThePrompt(0));
}

// --- The formatter ---

struct Verdict {
    bool isValid;
    std::string text; // what the field shall show
};

Verdict ask(TextFormatter* formatter, const char* proposed) {
    NSString* text = [NSString stringWithUTF8String:proposed];
    NSRange selection = NSMakeRange([text length], 0);
    const BOOL isValid = [formatter isPartialStringValid:&text
                                   proposedSelectedRange:&selection
                                          originalString:@""
                                   originalSelectedRange:NSMakeRange(0, 0)
                                        errorDescription:NULL];
    return {isValid == YES, [text UTF8String]};
}

class Formatter : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        formatter = [[[TextFormatter alloc] init] autorelease];
    }

    // What a text field with the formatter holds after each of the characters was typed; "<" stands for the
    // key that moves the cursor to the left.
    std::string Typed(const char* characters, NSString* begin = @"") {
        NSTextField* const field =
            [[[NSTextField alloc] initWithFrame:NSMakeRect(0, 30, 80, 22)] autorelease];
        [field setFormatter:formatter];
        [field setStringValue:begin];
        [[window contentView] addSubview:field];
        [window makeFirstResponder:field];
        NSTextView* const editor = static_cast<NSTextView*>([field currentEditor]);
        [editor setSelectedRange:NSMakeRange([begin length], 0)];
        for (; *characters; ++characters) {
            if (*characters == '<')
                [editor moveLeft:nil];
            else
                [editor insertText:[NSString stringWithFormat:@"%c", *characters]];
        }
        const std::string result = [[editor string] UTF8String];
        [window makeFirstResponder:console];
        EXPECT_EQ(result, [[field stringValue] UTF8String]);
        [field removeFromSuperview];
        return result;
    }

    TextFormatter* formatter = nil;
};

// What a field shall show instead of so long a text.
std::string insteadOf(TextFormatter* formatter, NSString* text) {
    NSString* shown = nil;
    EXPECT_FALSE([formatter isPartialStringValid:text newEditingString:&shown errorDescription:NULL]);
    EXPECT_FALSE([formatter isPartialStringValid:text newEditingString:NULL errorDescription:NULL]);
    return shown ? [shown UTF8String] : "nil";
}

TEST_F(Formatter, BringsBackTheLastTextThatFits) {
    [formatter setMaximumLength:3];
    EXPECT_EQ(insteadOf(formatter, @"WXYZ"), "") << "there was none";
    [formatter stringForObjectValue:@"ABC"];
    [formatter stringForObjectValue:[NSNumber numberWithInt:5]]; // no text
    EXPECT_EQ(insteadOf(formatter, @"WXYZ"), "ABC");
    EXPECT_EQ(insteadOf(formatter, @"de"), "DE");
    [formatter setMaximumLength:1];
    EXPECT_EQ(insteadOf(formatter, @"WXYZ"), "") << "it fits no more";
}

TEST_F(Formatter, BeginsWithoutALimit) {
    EXPECT_EQ([formatter maximumLength], 2147483647);
    [formatter setMaximumLength:3];
    EXPECT_EQ([formatter maximumLength], 3);
}

TEST_F(Formatter, AnObjectIsItsText) {
    NSString* const object = @"Some";
    EXPECT_EQ([formatter stringForObjectValue:object], object);
    id value = nil;
    NSString* error = nil;
    EXPECT_TRUE([formatter getObjectValue:&value forString:object errorDescription:&error]);
    EXPECT_EQ(value, object);
    EXPECT_TRUE([formatter getObjectValue:NULL forString:object errorDescription:NULL]);
    EXPECT_EQ([formatter attributedStringForObjectValue:object
                                  withDefaultAttributes:[NSDictionary dictionary]],
              nil);
}

TEST_F(Formatter, CapitalsAndOtherCharactersAreValid) {
    for (const char* const text : {"", "A", "ABC", ";", "12 .,", "\u00c4"}) {
        const Verdict verdict = ask(formatter, text);
        EXPECT_TRUE(verdict.isValid) << text;
        EXPECT_EQ(verdict.text, text);
    }
}

TEST_F(Formatter, SmallLettersBecomeCapitals) {
    const Verdict verdict = ask(formatter, "aBc1");
    EXPECT_FALSE(verdict.isValid);
    EXPECT_EQ(verdict.text, "ABC1");
}

TEST_F(Formatter, MoreThanTheLimitIsRefused) {
    [formatter setMaximumLength:2];
    EXPECT_TRUE(ask(formatter, "AB").isValid);
    const Verdict verdict = ask(formatter, "ABC");
    EXPECT_FALSE(verdict.isValid);
    EXPECT_EQ(verdict.text, "ABC"); // left as it is: the change is refused
    EXPECT_FALSE(ask(formatter, "abc").isValid);
    [formatter setMaximumLength:0];
    EXPECT_TRUE(ask(formatter, "").isValid);
    EXPECT_FALSE(ask(formatter, ";").isValid);
}

TEST_F(Formatter, TheShortQuestionHasTheSameAnswers) {
    [formatter setMaximumLength:2];
    NSString* replacement = nil;
    EXPECT_TRUE([formatter isPartialStringValid:@"AB" newEditingString:&replacement errorDescription:NULL]);
    EXPECT_EQ(replacement, nil);
    EXPECT_FALSE([formatter isPartialStringValid:@"ab" newEditingString:&replacement errorDescription:NULL]);
    EXPECT_TRUE([replacement isEqualToString:@"AB"]);
    // Text fields that ask this way show the replacement in place of what was typed too much.
    EXPECT_FALSE([formatter isPartialStringValid:@"abC" newEditingString:&replacement errorDescription:NULL]);
    EXPECT_TRUE([replacement isEqualToString:@"AB"]);
}

TEST_F(Formatter, AFieldShowsCapitals) {
    EXPECT_EQ(Typed("a"), "A");
    EXPECT_EQ(Typed("abC1"), "ABC1");
}

TEST_F(Formatter, AFieldOfOneCharacterKeepsTheFirst) {
    [formatter setMaximumLength:1];
    EXPECT_EQ(Typed(";"), ";");
    EXPECT_EQ(Typed(";'"), ";");
    EXPECT_EQ(Typed("ab"), "A");
}

TEST_F(Formatter, AFullFieldRefusesWhatIsTypedInFrontOfItsText) {
    [formatter setMaximumLength:1];
    EXPECT_EQ(Typed(";<'"), ";");
    EXPECT_EQ(Typed("<'", @";"), ";"); // what it held when the typing began
    EXPECT_EQ(Typed("<<B", @"A"), "A");
    [formatter setMaximumLength:3];
    EXPECT_EQ(Typed("abc<<xy"), "ABC");
    EXPECT_EQ(Typed("ab<c<xy"), "ACB");
}

TEST_F(Formatter, AFieldThatWasNeverFullRefusesATextTooLong) {
    [formatter setMaximumLength:2];
    NSString* replacement = nil;
    EXPECT_FALSE([formatter isPartialStringValid:@"abc" newEditingString:&replacement errorDescription:NULL]);
    EXPECT_TRUE([replacement isEqualToString:@""]);
}

} // namespace
