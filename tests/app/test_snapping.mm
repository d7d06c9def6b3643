// SPDX-License-Identifier: MIT
//
// Snapping of the window to the edges of the screens.
#import "shell_fixture.h"

#import "MainWindowDelegate.h"

namespace {

const NSRect SCREEN = {{0, 0}, {1000, 800}};
const CGFloat WIDTH = 400, HEIGHT = 300;

NSRect snapped(CGFloat x, CGFloat y, const std::vector<NSRect>& screens = {SCREEN}) {
    return snappedFrame(NSMakeRect(x, y, WIDTH, HEIGHT), screens.data(), screens.size());
}

CGFloat snappedX(CGFloat x) {
    return NSMinX(snapped(x, 200));
}

CGFloat snappedY(CGFloat y) {
    return NSMinY(snapped(200, y));
}

// --- The band ---

TEST(SnappedFrame, anEdgeSnapsFrom18PointsInsideTo54Beyond) {
    // left: the window's edge at 0
    EXPECT_EQ(snappedX(-50), 0);
    EXPECT_EQ(snappedX(-60), -60);
    EXPECT_EQ(snappedX(20), 20);
    EXPECT_EQ(snappedX(-54), 0);
    EXPECT_EQ(snappedX(-54.5), -54.5);
    EXPECT_EQ(snappedX(18), 0);
    EXPECT_EQ(snappedX(18.5), 18.5);
    // right: at 600
    EXPECT_EQ(snappedX(650), 600);
    EXPECT_EQ(snappedX(654), 600);
    EXPECT_EQ(snappedX(655), 655);
    EXPECT_EQ(snappedX(582), 600);
    EXPECT_EQ(snappedX(581), 581);
    // bottom: at 0
    EXPECT_EQ(snappedY(-54), 0);
    EXPECT_EQ(snappedY(-55), -55);
    EXPECT_EQ(snappedY(18), 0);
    EXPECT_EQ(snappedY(19), 19);
    // top: at 500
    EXPECT_EQ(snappedY(554), 500);
    EXPECT_EQ(snappedY(555), 555);
    EXPECT_EQ(snappedY(482), 500);
    EXPECT_EQ(snappedY(481), 481);
}

TEST(SnappedFrame, theAxesSnapByThemselves) {
    EXPECT_TRUE(NSEqualRects(snapped(-10, 200), NSMakeRect(0, 200, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(200, -10), NSMakeRect(200, 0, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(610, 510), NSMakeRect(600, 500, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(300, 200), NSMakeRect(300, 200, WIDTH, HEIGHT)));
}

TEST(SnappedFrame, theLeftEdgeComesBeforeTheRightOne) {
    // A window as wide as the screen and 10 points more is near both.
    const NSRect wide = NSMakeRect(-5, 200, 1010, HEIGHT);
    EXPECT_EQ(NSMinX(snappedFrame(wide, &SCREEN, 1)), 0);
}

TEST(SnappedFrame, theFirstScreenThatAttractsAnAxisHasIt) {
    const NSRect right = NSMakeRect(1000, 100, 1200, 900);
    EXPECT_EQ(NSMinX(snapped(990, 300, {SCREEN, right})), 1000);
    EXPECT_EQ(NSMinX(snapped(1810, 300, {SCREEN, right})), 1800);
    // x on the first screen, y on the second
    EXPECT_TRUE(NSEqualRects(snapped(610, 110, {SCREEN, right}), NSMakeRect(600, 100, WIDTH, HEIGHT)));
    // The first has snapped it: the second, nearer one does not move it again.
    const NSRect shifted = NSMakeRect(40, 0, 1000, 800);
    EXPECT_EQ(NSMinX(snapped(15, 200, {SCREEN, shifted})), 0);
    EXPECT_EQ(NSMinX(snapped(15, 200, {shifted, SCREEN})), 40);
    EXPECT_EQ(NSMinX(snapped(15, 200, {})), 15);
}

// --- Dragging ---

NSPoint mouse = {0, 0};

NSPoint mouseOfTests(id, SEL) {
    return mouse;
}

class Snapping : public ShellTest {
protected:
    void SetUp() override {
        ShellTest::SetUp();
        screen = [[NSScreen mainScreen] visibleFrame];
        place(300, 200);
    }

    MainWindowDelegate* mover() const {
        return [reinterpret_cast<PelmoAppDelegate*>(delegate) windowDelegate];
    }

    void place(CGFloat x, CGFloat y) {
        const NSRect frame = {{NSMinX(screen) + x, NSMinY(screen) + y}, {WIDTH, HEIGHT}};
        [mover() placeWindow:frame];
    }

    // Relative to the screen.
    NSPoint origin() const {
        const NSPoint place = [window frame].origin;
        return NSMakePoint(place.x - NSMinX(screen), place.y - NSMinY(screen));
    }

    void dragTo(CGFloat x, CGFloat y, NSUInteger flags = 0, NSEventType type = NSLeftMouseDragged) {
        mouse = NSMakePoint(x, y);
        [mover() mouseDragged:[NSEvent mouseEventWithType:type
                                                 location:NSZeroPoint
                                            modifierFlags:flags
                                                timestamp:0
                                             windowNumber:[window windowNumber]
                                                  context:[window graphicsContext]
                                              eventNumber:0
                                               clickCount:1
                                                 pressure:1]];
    }

    // As the window gets it from the system; the place counts from the window's lower left corner.
    void send(NSEventType type, NSPoint place) {
        [window sendEvent:[NSEvent mouseEventWithType:type
                                             location:place
                                        modifierFlags:0
                                            timestamp:0
                                         windowNumber:[window windowNumber]
                                              context:[window graphicsContext]
                                          eventNumber:0
                                           clickCount:1
                                             pressure:1]];
    }

    // In the strip of the controls, right of them.
    NSPoint freePlace() const {
        NSView* const content = [window contentView];
        const NSRect bounds = [content bounds];
        return [content convertPoint:NSMakePoint(NSMaxX(bounds) - 5, NSMaxY(bounds) - 10) toView:nil];
    }

    void expectOrigin(CGFloat x, CGFloat y) {
        EXPECT_NEAR(origin().x, x, 1e-3);
        EXPECT_NEAR(origin().y, y, 1e-3);
    }

    NSRect screen = NSZeroRect;
    const Replaced mousePlace { metaclassOf([NSEvent class]), @selector(mouseLocation), mouseOfTests };
};

TEST_F(Snapping, theBeginOfAMoveIsRecorded) {
    mouse = NSMakePoint(310.5, 205.25);
    const NSPoint place = [window frame].origin;
    [mover() windowWillMove:nil];
    EXPECT_EQ(snapEnabled, 1);
    EXPECT_TRUE(NSEqualPoints(mouseLocOrig, mouse));
    EXPECT_TRUE(NSEqualPoints(windLocOrig, place));
    EXPECT_EQ(ddX, static_cast<float>(place.x - 310.5));
    EXPECT_EQ(ddY, static_cast<float>(place.y - 205.25));
    setSetting("snaptoscreen", 0);
    [mover() windowWillMove:nil];
    EXPECT_EQ(snapEnabled, 0);
}

TEST_F(Snapping, theWindowFollowsTheMouseStepByStep) {
    mouse = NSMakePoint(310, 210);
    [mover() windowWillMove:nil];
    dragTo(320, 215);
    expectOrigin(310, 205);
    dragTo(330, 220);
    expectOrigin(320, 210);
    dragTo(350, 220);
    expectOrigin(340, 210);
}

TEST_F(Snapping, theStripOfTheControlsDragsTheWindow) {
    mouse = NSMakePoint(690, 490);
    send(NSLeftMouseDown, freePlace());
    for (int step = 2; step <= 10; step += 2) {
        mouse = NSMakePoint(690 + step, 490 - step);
        send(NSLeftMouseDragged, freePlace());
        expectOrigin(300 + step, 200 - step);
    }
    send(NSLeftMouseUp, freePlace());
    expectOrigin(310, 190);
    // The next one begins where this one has ended.
    mouse = NSMakePoint(100, 100);
    send(NSLeftMouseDown, freePlace());
    mouse = NSMakePoint(101, 103);
    send(NSLeftMouseDragged, freePlace());
    expectOrigin(311, 193);
    send(NSLeftMouseUp, freePlace());
}

TEST_F(Snapping, aDragWithoutABeginMovesNothing) {
    dragTo(50, 60);
    expectOrigin(300, 200);
    mouse = NSMakePoint(310, 210);
    [mover() mouseDown:nil];
    [mover() mouseUp:nil];
    dragTo(50, 60);
    expectOrigin(300, 200);
}

TEST_F(Snapping, aDragSnapsAndLetsGoAgain) {
    place(60, 200);
    mouse = NSMakePoint(100, 300);
    [mover() windowWillMove:nil];
    dragTo(55, 300); // 15 points inside
    expectOrigin(0, 200);
    dragTo(50, 300);
    expectOrigin(0, 200);
    dragTo(62, 300); // 22 points inside: out of the band, and beside the mouse as at the begin
    expectOrigin(22, 200);
}

TEST_F(Snapping, optionHoldsTheWindow) {
    mouse = NSMakePoint(310, 210);
    [mover() windowWillMove:nil];
    dragTo(350, 250, NSAlternateKeyMask);
    expectOrigin(300, 200);
    dragTo(350, 250, NSShiftKeyMask);
    expectOrigin(340, 240);
}

TEST_F(Snapping, aDragGoesPartlyOutOfTheScreen) {
    mouse = NSMakePoint(310, 210);
    [mover() windowWillMove:nil];
    dragTo(-50, 60);
    expectOrigin(-60, 50);
}

TEST_F(Snapping, onlyTheLeftButtonDrags) {
    mouse = NSMakePoint(310, 210);
    [mover() windowWillMove:nil];
    dragTo(350, 250, 0, NSRightMouseDragged);
    dragTo(350, 250, 0, NSOtherMouseDragged);
    expectOrigin(300, 200);
}

TEST_F(Snapping, withTheSettingOffNothingIsDraggedOrSnapped) {
    setSetting("snaptoscreen", 0);
    mouse = NSMakePoint(310, 210);
    [mover() windowWillMove:nil];
    dragTo(350, 250);
    expectOrigin(300, 200);
    place(-10, 200);
    [mover() windowDidMove:nil];
    expectOrigin(-10, 200);
}

TEST_F(Snapping, theEndOfAMoveSnaps) {
    place(-50, 200);
    [mover() windowWillMove:nil];
    [mover() windowDidMove:nil];
    expectOrigin(0, 200);
    place(-60, 200);
    [mover() windowWillMove:nil];
    [mover() windowDidMove:nil];
    expectOrigin(-60, 200);
    const CGFloat right = NSWidth(screen) - WIDTH, top = NSHeight(screen) - HEIGHT;
    place(right + 40, top + 40);
    [mover() windowWillMove:nil];
    [mover() windowDidMove:nil];
    expectOrigin(right, top);
    EXPECT_EQ(NSWidth([window frame]), WIDTH);
    EXPECT_EQ(NSHeight([window frame]), HEIGHT);
}

TEST_F(Snapping, aMoveThatTheWindowManagerTellsOfAfterwardsSnapsToo) {
    place(-50, 200);
    snapEnabled = 0;
    [mover() windowDidMove:nil];
    expectOrigin(platformWindowManagerMoves() ? 0 : -50, 200);
}

TEST_F(Snapping, aHiddenWindowIsLeftAlone) {
    place(-50, 200);
    mainWinIsHidden = 1;
    [mover() windowWillMove:nil];
    [mover() windowDidMove:nil];
    expectOrigin(-50, 200);
}

int moves = 0;

void countFrames(id self, SEL, NSRect, BOOL) {
    moves++;
    [[self delegate] windowWillMove:nil];
    [[self delegate] windowDidMove:nil];
}

TEST_F(Snapping, itsOwnMoveDoesNotSnapAgain) {
    place(-50, 200);
    moves = 0;
    const float before = ddX = 123;
    {
        const Replaced frames([NSWindow class], @selector(setFrame:display:), countFrames);
        snapEnabled = 1;
        [mover() windowDidMove:nil];
    }
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(ddX, before) << "nor does a drag begin";
}

} // namespace
