// SPDX-License-Identifier: MIT
//
// Long lists behind a button: the pointer, the wheel and the keys in them.
#import "../console_fixture.h"
#import "../replacement.h"

#import <GNUstepGUI/GSDisplayServer.h>

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
const CGFloat ROW = 20, EDGE = 1, SCREEN_GAP = 8;

CGFloat scale = 1;

CGFloat scaleOfScreen(id, SEL) {
    return scale;
}

class ListPopUpTest : public ConsoleTest {
protected:
    void SetUp() override {
        scale = 1;
        ConsoleTest::SetUp();
        Place();
    }

    void TearDown() override {
        [target release];
        [button removeFromSuperview];
        ConsoleTest::TearDown();
        scale = 1;
    }

    // With more room below the button than above it.
    void Place() {
        [window setFrameOrigin:NSMakePoint(100, 500)];
        button = makeListPopUp(@"Pick");
        [button setFrame:NSMakeRect(100, 60, 80, 20)];
        [[window contentView] addSubview:button];
        [target release];
        target = [[ListTarget alloc] init];
        [button setTarget:target];
        [button setAction:@selector(choose:)];
    }

    void Add(NSString* title) {
        NSMenuItem* const item = [[[NSMenuItem alloc] initWithTitle:title action:NULL
                                                      keyEquivalent:@""] autorelease];
        [[button menu] addItem:item];
    }

    void AddRows(int count) {
        [[button menu] setMenuChangedMessagesEnabled:NO]; // as the console fills its lists
        for (int i = 0; i < count; ++i) Add([NSString stringWithFormat:@"row%d\t%d", i, i * i]);
    }

    // In the window's own units: `down` points below the button's lower edge.
    NSPoint Below(CGFloat down) const {
        const NSRect frame = [button convertRect:[button bounds] toView:nil];
        return NSMakePoint(NSMinX(frame) + 20 * scale, NSMinY(frame) - down * scale);
    }

    // Of a list with `count` rows as it is opened, from the button's lower edge.
    CGFloat HeightOfRow(int row) const { return EDGE + (row + 0.5) * ROW; }

    int RowsInSight() const {
        const CGFloat room = [window convertBaseToScreen:Below(0)].y / scale - SCREEN_GAP;
        return static_cast<int>((room - 2 * EDGE) / ROW);
    }

    static void PostEvent(NSEvent* event) { [NSApp postEvent:event atStart:NO]; }
    void PostMouse(NSEventType type, NSPoint where) const { PostEvent(Mouse(type, where)); }

    void PostKey(NSString* characters, NSTimeInterval time = 0, NSUInteger flags = 0) const {
        PostEvent([NSEvent keyEventWithType:NSKeyDown
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

    void PostKey(unichar key) const { PostKey([NSString stringWithCharacters:&key length:1]); }

    void PostTick() const {
        PostEvent([NSEvent otherEventWithType:NSPeriodic
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
    std::string Choose() {
        target->chosen.clear();
        const NSRect frame = [button convertRect:[button bounds] toView:nil];
        [button mouseDown:Mouse(NSLeftMouseDown, NSMakePoint(NSMidX(frame), NSMidY(frame)))];
        return target->chosen;
    }

    // What the keys choose, from a list that is opened without the mouse.
    std::string ChooseByKeys() {
        PostKey(@"\r");
        target->chosen.clear();
        [button performClick:nil];
        return target->chosen;
    }

    void PostRelease(NSPoint where) const {
        PostMouse(NSLeftMouseDragged, where);
        PostMouse(NSLeftMouseUp, where);
    }

    NSPoint MiddleOfButton() const { return Below(-10); }

    NSPopUpButton* button = nil;
    ListTarget* target = nil;
    const Replaced ofScreen { [NSScreen class], @selector(userSpaceScaleFactor), scaleOfScreen };
};

// --- The mouse ---

TEST_F(ListPopUpTest, ARowIsChosenByLettingGoOnIt) {
    AddRows(5);
    for (const int row : {0, 2, 4}) {
        PostRelease(Below(HeightOfRow(row)));
        EXPECT_EQ(Choose(), "row" + std::to_string(row) + "\t" + std::to_string(row * row));
    }
}

TEST_F(ListPopUpTest, AClickOnTheButtonLeavesItOpenForASecondOne) {
    AddRows(5);
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, Below(HeightOfRow(1)));
    PostMouse(NSLeftMouseDown, Below(HeightOfRow(3)));
    PostMouse(NSLeftMouseUp, Below(HeightOfRow(3)));
    EXPECT_EQ(Choose(), "row3\t9");
}

TEST_F(ListPopUpTest, NothingIsChosenBesideTheList) {
    AddRows(5);
    PostMouse(NSLeftMouseDragged, Below(HeightOfRow(2)));
    PostRelease(Below(HeightOfRow(7)));
    EXPECT_EQ(Choose(), "");
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, Below(HeightOfRow(2)));
    PostMouse(NSLeftMouseDown, Below(HeightOfRow(7)));
    EXPECT_EQ(Choose(), "") << "a click elsewhere closes it";
}

TEST_F(ListPopUpTest, ASeparatorIsNoChoice) {
    AddRows(1);
    [[button menu] addItem:[NSMenuItem separatorItem]];
    Add(@"last");
    PostRelease(Below(HeightOfRow(1)));
    PostMouse(NSLeftMouseDown, Below(HeightOfRow(2)));
    PostMouse(NSLeftMouseUp, Below(HeightOfRow(2)));
    EXPECT_EQ(Choose(), "last") << "it stays open";
    PostKey(NSDownArrowFunctionKey);
    PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "last");
}

TEST_F(ListPopUpTest, ThePointerAtAnEndScrolls) {
    AddRows(2000);
    const int inSight = RowsInSight();
    ASSERT_GT(inSight, 5);
    ASSERT_LT(inSight, 100);
    const CGFloat end = EDGE + inSight * ROW - 2;
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, Below(end));
    for (int i = 0; i < 2000; ++i) PostTick();
    PostMouse(NSMouseMoved, Below(HeightOfRow(inSight - 1)));
    PostRelease(Below(HeightOfRow(inSight - 1)));
    EXPECT_EQ(Choose(), "row1999\t3996001") << "all the way down";
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, Below(end));
    for (int i = 0; i < 2000; ++i) PostTick();
    PostMouse(NSMouseMoved, Below(EDGE + 2));
    for (int i = 0; i < 2000; ++i) PostTick();
    PostRelease(Below(HeightOfRow(0)));
    EXPECT_EQ(Choose(), "row0\t0") << "and up again";
}

TEST_F(ListPopUpTest, TheClickThatOpensItDoesNotScroll) {
    AddRows(2000);
    for (int i = 0; i < 100; ++i) PostTick();
    PostRelease(MiddleOfButton());
    PostRelease(Below(HeightOfRow(0)));
    EXPECT_EQ(Choose(), "row0\t0");
}

TEST_F(ListPopUpTest, TheWheelScrollsByThreeRows) {
    AddRows(2000);
    const NSPoint where = Below(HeightOfRow(2));
    PostRelease(MiddleOfButton());
    for (const CGFloat notches : {-1.0, -1.0, -1.0, 1.0}) {
        PostEvent([NSEvent mouseEventWithType:NSScrollWheel
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
    PostRelease(where);
    EXPECT_EQ(Choose(), "row8\t64");
}

// Pulled on below its end, the list scrolls, and at its sides it does not.
TEST_F(ListPopUpTest, APullBelowTheListScrolls) {
    AddRows(2000);
    const int inSight = RowsInSight();
    const NSPoint below = Below(EDGE + inSight * ROW + 4);
    PostMouse(NSLeftMouseDragged, Below(HeightOfRow(2)));
    PostMouse(NSLeftMouseDragged, below);
    for (int i = 0; i < 3; ++i) PostTick();
    for (const CGFloat beside : {-500.0, 500.0}) {
        PostMouse(NSLeftMouseDragged, NSMakePoint(below.x + beside, below.y));
        for (int i = 0; i < 100; ++i) PostTick();
    }
    PostRelease(Below(HeightOfRow(2)));
    EXPECT_EQ(Choose(), "row5\t25");
}

TEST_F(ListPopUpTest, APointerBesideTheListScrollsNothing) {
    AddRows(2000);
    const NSPoint low = Below(EDGE + RowsInSight() * ROW - 2);
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, NSMakePoint(low.x + 500, low.y));
    for (int i = 0; i < 100; ++i) PostTick();
    PostRelease(Below(HeightOfRow(0)));
    EXPECT_EQ(Choose(), "row0\t0");
}

int otherPresses = 0;

void countOtherPress(id, SEL, NSEvent*) {
    ++otherPresses;
}

TEST_F(ListPopUpTest, OtherButtonsOfTheMouseDoNothingWhileItIsOpen) {
    AddRows(5);
    const Replaced press([MainConsole class], @selector(otherMouseDown:), countOtherPress);
    const NSPoint inText = [console convertPoint:NSMakePoint(30, 10) toView:nil];
    otherPresses = 0;
    PostRelease(MiddleOfButton());
    PostMouse(NSMouseMoved, Below(HeightOfRow(2)));
    for (const NSEventType type : {NSRightMouseDown, NSRightMouseUp, NSOtherMouseDown, NSOtherMouseUp})
        PostMouse(type, inText);
    PostKey(@"\r");
    EXPECT_EQ(Choose(), "row2\t4");
    EXPECT_EQ(otherPresses, 0) << "the middle one would paste";
}

TEST_F(ListPopUpTest, AWindowThatClosesClosesItsListFirst) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostEvent([NSEvent otherEventWithType:NSAppKitDefined
                                 location:NSZeroPoint
                            modifierFlags:0
                                timestamp:0
                             windowNumber:[window windowNumber]
                                  context:nil
                                  subtype:GSAppKitWindowClose
                                    data1:0
                                    data2:0]);
    EXPECT_EQ(Choose(), "");
    NSEvent* const left = [NSApp nextEventMatchingMask:NSAppKitDefinedMask
                                             untilDate:[NSDate date]
                                                inMode:NSDefaultRunLoopMode
                                               dequeue:YES];
    EXPECT_EQ([left subtype], GSAppKitWindowClose) << "it is closed when the list is gone";
    EXPECT_EQ([left window], window);
}

TEST_F(ListPopUpTest, OnADenseScreenTheRowsAreTwiceAsHigh) {
    scale = 2;
    Restart();
    Place();
    AddRows(5);
    PostRelease(Below(HeightOfRow(3)));
    EXPECT_EQ(Choose(), "row3\t9");
}

// --- The keys ---

TEST_F(ListPopUpTest, TheArrowsMoveAndReturnChooses) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row0\t0");
    for (int i = 0; i < 3; ++i) PostKey(NSDownArrowFunctionKey);
    PostKey(NSUpArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row1\t1");
    PostKey(NSUpArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row4\t16") << "Up begins at the end";
    for (int i = 0; i < 9; ++i) PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row4\t16") << "there it ends";
}

TEST_F(ListPopUpTest, EnterOfTheKeypadChoosesAsReturnDoes) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostKey(@"\003");
    EXPECT_EQ(Choose(), "row0\t0");
}

TEST_F(ListPopUpTest, TheKeysReachAllOfALongList) {
    AddRows(2000);
    for (int i = 0; i < 151; ++i) PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row150\t22500");
    PostKey(NSEndFunctionKey);
    PostKey(NSUpArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row1998\t3992004");
    PostKey(NSEndFunctionKey);
    PostKey(NSHomeFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row0\t0");
    PostKey(NSHomeFunctionKey);
    PostKey(NSPageDownFunctionKey);
    PostKey(NSPageDownFunctionKey);
    PostKey(NSPageUpFunctionKey);
    const int page = RowsInSight();
    EXPECT_EQ(ChooseByKeys(), "row" + std::to_string(page) + "\t" + std::to_string(page * page));
}

TEST_F(ListPopUpTest, TypedLettersGoToTheFirstRowThatBeginsWithThem) {
    for (NSString* const name : {@"alpha", @"beta", @"Betty", @"best", @"gamma"}) Add(name);
    PostKey(@"b");
    EXPECT_EQ(ChooseByKeys(), "beta");
    for (NSString* const key : {@"b", @"E", @"s"}) PostKey(key);
    EXPECT_EQ(ChooseByKeys(), "best");
    for (NSString* const key : {@"b", @"x", @"e", @"t", @"t"}) PostKey(key);
    EXPECT_EQ(ChooseByKeys(), "Betty") << "what nothing begins with is left out";
}

TEST_F(ListPopUpTest, AfterAPauseTheLettersBeginAnew) {
    for (NSString* const name : {@"alpha", @"beta", @"gamma", @"begin"}) Add(name);
    PostKey(@"b", 10.0);
    PostKey(@"e", 10.9);
    PostKey(@"g", 11.8);
    EXPECT_EQ(ChooseByKeys(), "begin");
    PostKey(@"b", 20.0);
    PostKey(@"g", 21.1);
    EXPECT_EQ(ChooseByKeys(), "gamma");
}

TEST_F(ListPopUpTest, EscapeClosesIt) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostKey(@"\033");
    EXPECT_EQ(Choose(), "");
}

TEST_F(ListPopUpTest, ReturnWithoutAChoiceLeavesItOpen) {
    AddRows(5);
    PostKey(@"\r");
    PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row0\t0");
}

TEST_F(ListPopUpTest, KeysThatBeginNoRowMoveNothing) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostKey(@"");
    PostKey(@" ");
    PostKey(NSF5FunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row0\t0");
}

TEST_F(ListPopUpTest, ASeparatorAtAnEndStopsTheArrows) {
    AddRows(2);
    [[button menu] addItem:[NSMenuItem separatorItem]];
    for (int i = 0; i < 5; ++i) PostKey(NSDownArrowFunctionKey);
    EXPECT_EQ(ChooseByKeys(), "row1\t1");
}

TEST_F(ListPopUpTest, WhereThereIsMoreRoomAboveItOpensThere) {
    [window setFrameOrigin:NSMakePoint(100, 0)];
    AddRows(20);
    const CGFloat top = NSHeight([button frame]) + EDGE + 20 * ROW;
    PostRelease(Below(-(top - 3.5 * ROW)));
    EXPECT_EQ(Choose(), "row3\t9");
}

TEST_F(ListPopUpTest, AKeyOfAMenuClosesItAndIsLeftForTheMenu) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostKey(@"s", 0, NSControlKeyMask);
    EXPECT_EQ(Choose(), "");
    NSEvent* const left = [NSApp nextEventMatchingMask:NSKeyDownMask
                                             untilDate:[NSDate date]
                                                inMode:NSDefaultRunLoopMode
                                               dequeue:YES];
    EXPECT_EQ(std::string([[left characters] UTF8String]), "s");
}

TEST_F(ListPopUpTest, AKeyWithCommandClosesItAndIsLeftForTheMenu) {
    AddRows(5);
    PostKey(NSDownArrowFunctionKey);
    PostKey(@"q", 0, NSCommandKeyMask);
    EXPECT_EQ(Choose(), "");
    NSEvent* const left = [NSApp nextEventMatchingMask:NSKeyDownMask
                                             untilDate:[NSDate date]
                                                inMode:NSDefaultRunLoopMode
                                               dequeue:YES];
    EXPECT_EQ(std::string([[left characters] UTF8String]), "q");
}

std::string drawn;

void noteText(NSString* text, SEL, NSPoint, NSDictionary*) {
    drawn += std::string([text UTF8String]) + ";";
}

// Drawn letters are wider than the font says, by part of a pixel each.
NSSize wideOnPixels(NSString* text, SEL, NSDictionary*) {
    return NSMakeSize(100 * static_cast<CGFloat>([text length]), 13);
}

TEST_F(ListPopUpTest, TheWidestTextOfAColumnIsWhole) {
    for (NSString* const title in @[ @"ans\t5", @"price\t19.90" ]) Add(title);
    const Replaced size([NSString class], @selector(sizeWithAttributes:), wideOnPixels);
    const Replaced drawing([NSString class], @selector(drawAtPoint:withAttributes:), noteText);
    drawn.clear();
    PostKey(@"\x1b");
    [button performClick:nil];
    EXPECT_EQ(drawn.substr(0, drawn.find("19.90;") + 6), "ans;5;price;19.90;");
}

TEST_F(ListPopUpTest, AnEmptyListDoesNotOpen) {
    EXPECT_EQ(Choose(), "");
}

} // namespace
