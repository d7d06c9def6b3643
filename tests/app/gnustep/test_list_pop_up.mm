// SPDX-License-Identifier: MIT
//
// Long lists behind a button: the pointer, the wheel and the keys in them.
#import "../console_fixture.h"
#import "../replacement.h"

@interface ListTarget : NSObject {
@public
    std::string chosen;
}
- (void)choose:(id)sender;
@end

@implementation ListTarget
- (void)choose:(id)sender {
    chosen += [[sender titleOfSelectedItem] UTF8String];
}
@end

namespace {

// As the list is drawn, in points.
const CGFloat ROW = 20, STRIP = 16, EDGE = 1, SCREEN_GAP = 8;

CGFloat scale = 1;

CGFloat scaleOfScreen(id, SEL) {
    return scale;
}

class ListPopUpTest : public ConsoleTest {
protected:
    void SetUp() override {
        scale = 1;
        ConsoleTest::SetUp();
        place();
    }

    void TearDown() override {
        [target release];
        [button removeFromSuperview];
        ConsoleTest::TearDown();
        scale = 1;
    }

    // With more room below the button than above it.
    void place() {
        [window setFrameOrigin:NSMakePoint(100, 500)];
        button = makeListPopUp(@"Pick");
        [button setFrame:NSMakeRect(100, 60, 80, 20)];
        [[window contentView] addSubview:button];
        [target release];
        target = [[ListTarget alloc] init];
        [button setTarget:target];
        [button setAction:@selector(choose:)];
    }

    void add(NSString* title) {
        NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                                      keyEquivalent:@""] autorelease];
        [[button menu] addItem:item];
    }

    void addRows(int count) {
        [[button menu] setMenuChangedMessagesEnabled:NO]; // as the console fills its lists
        for (int i = 0; i < count; i++) add([NSString stringWithFormat:@"row%d\t%d", i, i * i]);
    }

    // In the window's own units: `down` points below the button's lower edge.
    NSPoint below(CGFloat down) const {
        const NSRect frame = [button convertRect:[button bounds] toView:nil];
        return NSMakePoint(NSMinX(frame) + 20 * scale, NSMinY(frame) - down * scale);
    }

    // Of a list with `count` rows as it is opened, from the button's lower edge.
    CGFloat heightOfRow(int row, bool scrolls = false) const {
        return EDGE + (scrolls ? STRIP : 0) + (row + 0.5) * ROW;
    }

    int rowsInSight() const {
        const CGFloat room = [window convertBaseToScreen:below(0)].y / scale - SCREEN_GAP;
        return static_cast<int>((room - 2 * (EDGE + STRIP)) / ROW);
    }

    NSEvent* mouse(NSEventType type, NSPoint where) const {
        return [NSEvent mouseEventWithType:type
                                  location:where
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[window windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:1
                                  pressure:0];
    }

    static void postEvent(NSEvent* event) { [NSApp postEvent:event atStart:NO]; }
    void postMouse(NSEventType type, NSPoint where) const { postEvent(mouse(type, where)); }

    void postKey(NSString* characters, NSTimeInterval time = 0, NSUInteger flags = 0) const {
        postEvent([NSEvent keyEventWithType:NSKeyDown
                                   location:NSZeroPoint
                              modifierFlags:flags
                                  timestamp:time
                               windowNumber:[window windowNumber]
                                    context:nil
                                 characters:characters
                charactersIgnoringModifiers:characters
                                  isARepeat:NO
                                    keyCode:0]);
    }

    void postKey(unichar key) const { postKey([NSString stringWithCharacters:&key length:1]); }

    void postTick() const {
        postEvent([NSEvent otherEventWithType:NSPeriodic
                                     location:NSZeroPoint
                                modifierFlags:0
                                    timestamp:0
                                 windowNumber:0
                                      context:nil
                                      subtype:0
                                        data1:0
                                        data2:0]);
    }

    // A press on the button; returns when the events posted before have closed the list.
    std::string choose() {
        target->chosen.clear();
        const NSRect frame = [button convertRect:[button bounds] toView:nil];
        [button mouseDown:mouse(NSLeftMouseDown, NSMakePoint(NSMidX(frame), NSMidY(frame)))];
        return target->chosen;
    }

    // What the keys choose, from a list that is opened without the mouse.
    std::string chooseByKeys() {
        postKey(@"\r");
        target->chosen.clear();
        [button performClick:nil];
        return target->chosen;
    }

    void postRelease(NSPoint where) const {
        postMouse(NSLeftMouseDragged, where);
        postMouse(NSLeftMouseUp, where);
    }

    NSPoint middleOfButton() const { return below(-10); }

    NSPopUpButton* button = nil;
    ListTarget* target = nil;
    const Replaced ofScreen { [NSScreen class], @selector(userSpaceScaleFactor), scaleOfScreen };
};

// --- The mouse ---

TEST_F(ListPopUpTest, aRowIsChosenByLettingGoOnIt) {
    addRows(5);
    for (const int row : {0, 2, 4}) {
        postRelease(below(heightOfRow(row)));
        EXPECT_EQ(choose(), "row" + std::to_string(row) + "\t" + std::to_string(row * row));
    }
}

TEST_F(ListPopUpTest, aClickOnTheButtonLeavesItOpenForASecondOne) {
    addRows(5);
    postRelease(middleOfButton());
    postMouse(NSMouseMoved, below(heightOfRow(1)));
    postMouse(NSLeftMouseDown, below(heightOfRow(3)));
    postMouse(NSLeftMouseUp, below(heightOfRow(3)));
    EXPECT_EQ(choose(), "row3\t9");
}

TEST_F(ListPopUpTest, nothingIsChosenBesideTheList) {
    addRows(5);
    postMouse(NSLeftMouseDragged, below(heightOfRow(2)));
    postRelease(below(heightOfRow(7)));
    EXPECT_EQ(choose(), "");
    postRelease(middleOfButton());
    postMouse(NSMouseMoved, below(heightOfRow(2)));
    postMouse(NSLeftMouseDown, below(heightOfRow(7)));
    EXPECT_EQ(choose(), "") << "a click elsewhere closes it";
}

TEST_F(ListPopUpTest, aSeparatorIsNoChoice) {
    addRows(1);
    [[button menu] addItem:[NSMenuItem separatorItem]];
    add(@"last");
    postRelease(below(heightOfRow(1)));
    postMouse(NSLeftMouseDown, below(heightOfRow(2)));
    postMouse(NSLeftMouseUp, below(heightOfRow(2)));
    EXPECT_EQ(choose(), "last") << "it stays open";
    postKey(NSDownArrowFunctionKey);
    postKey(NSDownArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "last");
}

TEST_F(ListPopUpTest, thePointerAtAnEndScrolls) {
    addRows(2000);
    const int inSight = rowsInSight();
    ASSERT_GT(inSight, 5);
    ASSERT_LT(inSight, 100);
    const CGFloat end = EDGE + STRIP + inSight * ROW + STRIP / 2;
    postRelease(middleOfButton());
    postMouse(NSMouseMoved, below(end));
    for (int i = 0; i < 2000; i++) postTick();
    postMouse(NSMouseMoved, below(heightOfRow(inSight - 1, true)));
    postRelease(below(heightOfRow(inSight - 1, true)));
    EXPECT_EQ(choose(), "row1999\t3996001") << "all the way down";
    postRelease(middleOfButton());
    postMouse(NSMouseMoved, below(end));
    for (int i = 0; i < 2000; i++) postTick();
    postMouse(NSMouseMoved, below(EDGE + STRIP / 2));
    for (int i = 0; i < 2000; i++) postTick();
    postRelease(below(heightOfRow(0, true)));
    EXPECT_EQ(choose(), "row0\t0") << "and up again";
}

TEST_F(ListPopUpTest, theClickThatOpensItDoesNotScroll) {
    addRows(2000);
    for (int i = 0; i < 100; i++) postTick();
    postRelease(middleOfButton());
    postRelease(below(heightOfRow(0, true)));
    EXPECT_EQ(choose(), "row0\t0");
}

TEST_F(ListPopUpTest, theWheelScrollsByThreeRows) {
    addRows(2000);
    const NSPoint where = below(heightOfRow(2, true));
    postRelease(middleOfButton());
    for (const CGFloat notches : {-1.0, -1.0, -1.0, 1.0}) {
        postEvent([NSEvent mouseEventWithType:NSScrollWheel
                                     location:where
                                modifierFlags:0
                                    timestamp:0
                                 windowNumber:[window windowNumber]
                                      context:nil
                                  eventNumber:0
                                   clickCount:0
                                     pressure:0
                                 buttonNumber:0
                                       deltaX:0
                                       deltaY:notches
                                       deltaZ:0]);
    }
    postRelease(where);
    EXPECT_EQ(choose(), "row8\t64");
}

TEST_F(ListPopUpTest, onADenseScreenTheRowsAreTwiceAsHigh) {
    scale = 2;
    restart();
    place();
    addRows(5);
    postRelease(below(heightOfRow(3)));
    EXPECT_EQ(choose(), "row3\t9");
}

// --- The keys ---

TEST_F(ListPopUpTest, theArrowsMoveAndReturnChooses) {
    addRows(5);
    postKey(NSDownArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row0\t0");
    for (int i = 0; i < 3; i++) postKey(NSDownArrowFunctionKey);
    postKey(NSUpArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row1\t1");
    postKey(NSUpArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row4\t16") << "Up begins at the end";
    for (int i = 0; i < 9; i++) postKey(NSDownArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row4\t16") << "there it ends";
}

TEST_F(ListPopUpTest, theKeysReachAllOfALongList) {
    addRows(2000);
    for (int i = 0; i < 151; i++) postKey(NSDownArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row150\t22500");
    postKey(NSEndFunctionKey);
    postKey(NSUpArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row1998\t3992004");
    postKey(NSEndFunctionKey);
    postKey(NSHomeFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row0\t0");
    postKey(NSHomeFunctionKey);
    postKey(NSPageDownFunctionKey);
    postKey(NSPageDownFunctionKey);
    postKey(NSPageUpFunctionKey);
    const int page = rowsInSight();
    EXPECT_EQ(chooseByKeys(), "row" + std::to_string(page) + "\t" + std::to_string(page * page));
}

TEST_F(ListPopUpTest, typedLettersGoToTheFirstRowThatBeginsWithThem) {
    for (NSString* const name : {@"alpha", @"beta", @"Betty", @"best", @"gamma"}) add(name);
    postKey(@"b");
    EXPECT_EQ(chooseByKeys(), "beta");
    for (NSString* const key : {@"b", @"E", @"s"}) postKey(key);
    EXPECT_EQ(chooseByKeys(), "best");
    for (NSString* const key : {@"b", @"x", @"e", @"t", @"t"}) postKey(key);
    EXPECT_EQ(chooseByKeys(), "Betty") << "what nothing begins with is left out";
}

TEST_F(ListPopUpTest, afterAPauseTheLettersBeginAnew) {
    for (NSString* const name : {@"alpha", @"beta", @"gamma", @"begin"}) add(name);
    postKey(@"b", 10.0);
    postKey(@"e", 10.9);
    postKey(@"g", 11.8);
    EXPECT_EQ(chooseByKeys(), "begin");
    postKey(@"b", 20.0);
    postKey(@"g", 21.1);
    EXPECT_EQ(chooseByKeys(), "gamma");
}

TEST_F(ListPopUpTest, escapeClosesIt) {
    addRows(5);
    postKey(NSDownArrowFunctionKey);
    postKey(@"\033");
    EXPECT_EQ(choose(), "");
}

TEST_F(ListPopUpTest, returnWithoutAChoiceLeavesItOpen) {
    addRows(5);
    postKey(@"\r");
    postKey(NSDownArrowFunctionKey);
    EXPECT_EQ(chooseByKeys(), "row0\t0");
}

TEST_F(ListPopUpTest, aKeyWithCommandClosesItAndIsLeftForTheMenu) {
    addRows(5);
    postKey(NSDownArrowFunctionKey);
    postKey(@"q", 0, NSCommandKeyMask);
    EXPECT_EQ(choose(), "");
    NSEvent* const left = [NSApp nextEventMatchingMask:NSKeyDownMask
                                             untilDate:[NSDate date]
                                                inMode:NSDefaultRunLoopMode
                                               dequeue:YES];
    EXPECT_EQ(std::string([[left characters] UTF8String]), "q");
}

TEST_F(ListPopUpTest, anEmptyListDoesNotOpen) {
    EXPECT_EQ(choose(), "");
}

} // namespace
