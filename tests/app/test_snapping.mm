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

TEST(SnappedFrame, AnEdgeSnapsFrom18PointsInsideTo54Beyond) {
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

TEST(SnappedFrame, TheAxesSnapByThemselves) {
    EXPECT_TRUE(NSEqualRects(snapped(-10, 200), NSMakeRect(0, 200, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(200, -10), NSMakeRect(200, 0, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(610, 510), NSMakeRect(600, 500, WIDTH, HEIGHT)));
    EXPECT_TRUE(NSEqualRects(snapped(300, 200), NSMakeRect(300, 200, WIDTH, HEIGHT)));
}

TEST(SnappedFrame, TheLeftEdgeComesBeforeTheRightOne) {
    // A window as wide as the screen and 10 points more is near both.
    const NSRect wide = NSMakeRect(-5, 200, 1010, HEIGHT);
    EXPECT_EQ(NSMinX(snappedFrame(wide, &SCREEN, 1)), 0);
}

TEST(SnappedFrame, TheFirstScreenThatAttractsAnAxisHasIt) {
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
        Place(300, 200);
    }

    MainWindowDelegate* Mover() const {
        return [reinterpret_cast<PelmoAppDelegate*>(delegate) windowDelegate];
    }

    void Place(CGFloat x, CGFloat y) {
        const NSRect frame = {{NSMinX(screen) + x, NSMinY(screen) + y}, {WIDTH, HEIGHT}};
        [Mover() placeWindow:frame];
    }

    // Relative to the screen.
    NSPoint Origin() const {
        const NSPoint place = [window frame].origin;
        return NSMakePoint(place.x - NSMinX(screen), place.y - NSMinY(screen));
    }

    void DragTo(CGFloat x, CGFloat y, NSUInteger flags = 0, NSEventType type = NSLeftMouseDragged) {
        mouse = NSMakePoint(x, y);
        [Mover() mouseDragged:[NSEvent mouseEventWithType:type
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
    NSPoint FreePlace() const {
        NSView* const content = [window contentView];
        const NSRect bounds = [content bounds];
        return [content convertPoint:NSMakePoint(NSMaxX(bounds) - 5, NSMaxY(bounds) - 10) toView:nil];
    }

    void ExpectOrigin(CGFloat x, CGFloat y) {
        EXPECT_NEAR(Origin().x, x, 1e-3);
        EXPECT_NEAR(Origin().y, y, 1e-3);
    }

    NSRect screen = NSZeroRect;
    const Replaced mousePlace { metaclassOf([NSEvent class]), @selector(mouseLocation), mouseOfTests };
};

TEST_F(Snapping, TheBeginOfAMoveIsRecorded) {
    mouse = NSMakePoint(310.5, 205.25);
    const NSPoint place = [window frame].origin;
    [Mover() windowWillMove:nil];
    EXPECT_EQ(snapEnabled, 1);
    EXPECT_TRUE(NSEqualPoints(mouseLocOrig, mouse));
    EXPECT_TRUE(NSEqualPoints(windLocOrig, place));
    EXPECT_EQ(ddX, static_cast<float>(place.x - 310.5));
    EXPECT_EQ(ddY, static_cast<float>(place.y - 205.25));
    SetSetting("snaptoscreen", 0);
    [Mover() windowWillMove:nil];
    EXPECT_EQ(snapEnabled, 0);
}

TEST_F(Snapping, TheWindowFollowsTheMouseStepByStep) {
    mouse = NSMakePoint(310, 210);
    [Mover() windowWillMove:nil];
    DragTo(320, 215);
    ExpectOrigin(310, 205);
    DragTo(330, 220);
    ExpectOrigin(320, 210);
    DragTo(350, 220);
    ExpectOrigin(340, 210);
}

TEST_F(Snapping, TheStripOfTheControlsDragsTheWindow) {
    mouse = NSMakePoint(690, 490);
    send(NSLeftMouseDown, FreePlace());
    for (int step = 2; step <= 10; step += 2) {
        mouse = NSMakePoint(690 + step, 490 - step);
        send(NSLeftMouseDragged, FreePlace());
        ExpectOrigin(300 + step, 200 - step);
    }
    send(NSLeftMouseUp, FreePlace());
    ExpectOrigin(310, 190);
    // The next one begins where this one has ended.
    mouse = NSMakePoint(100, 100);
    send(NSLeftMouseDown, FreePlace());
    mouse = NSMakePoint(101, 103);
    send(NSLeftMouseDragged, FreePlace());
    ExpectOrigin(311, 193);
    send(NSLeftMouseUp, FreePlace());
}

TEST_F(Snapping, ADragWithoutABeginMovesNothing) {
    DragTo(50, 60);
    ExpectOrigin(300, 200);
    mouse = NSMakePoint(310, 210);
    [Mover() mouseDown:nil];
    [Mover() mouseUp:nil];
    DragTo(50, 60);
    ExpectOrigin(300, 200);
}

TEST_F(Snapping, ADragSnapsAndLetsGoAgain) {
    Place(60, 200);
    mouse = NSMakePoint(100, 300);
    [Mover() windowWillMove:nil];
    DragTo(55, 300); // 15 points inside
    ExpectOrigin(0, 200);
    DragTo(50, 300);
    ExpectOrigin(0, 200);
    DragTo(62, 300); // 22 points inside: out of the band, and beside the mouse as at the begin
    ExpectOrigin(22, 200);
}

TEST_F(Snapping, OptionHoldsTheWindow) {
    mouse = NSMakePoint(310, 210);
    [Mover() windowWillMove:nil];
    DragTo(350, 250, NSAlternateKeyMask);
    ExpectOrigin(300, 200);
    DragTo(350, 250, NSShiftKeyMask);
    ExpectOrigin(340, 240);
}

TEST_F(Snapping, ADragGoesPartlyOutOfTheScreen) {
    mouse = NSMakePoint(310, 210);
    [Mover() windowWillMove:nil];
    DragTo(-50, 60);
    ExpectOrigin(-60, 50);
}

TEST_F(Snapping, OnlyTheLeftButtonDrags) {
    mouse = NSMakePoint(310, 210);
    [Mover() windowWillMove:nil];
    DragTo(350, 250, 0, NSRightMouseDragged);
    DragTo(350, 250, 0, NSOtherMouseDragged);
    ExpectOrigin(300, 200);
}

TEST_F(Snapping, WithTheSettingOffNothingIsDraggedOrSnapped) {
    SetSetting("snaptoscreen", 0);
    mouse = NSMakePoint(310, 210);
    [Mover() windowWillMove:nil];
    DragTo(350, 250);
    ExpectOrigin(300, 200);
    Place(-10, 200);
    [Mover() windowDidMove:nil];
    ExpectOrigin(-10, 200);
}

TEST_F(Snapping, TheEndOfAMoveSnaps) {
    Place(-50, 200);
    [Mover() windowWillMove:nil];
    [Mover() windowDidMove:nil];
    ExpectOrigin(0, 200);
    Place(-60, 200);
    [Mover() windowWillMove:nil];
    [Mover() windowDidMove:nil];
    ExpectOrigin(-60, 200);
    const CGFloat right = NSWidth(screen) - WIDTH, top = NSHeight(screen) - HEIGHT;
    Place(right + 40, top + 40);
    [Mover() windowWillMove:nil];
    [Mover() windowDidMove:nil];
    ExpectOrigin(right, top);
    EXPECT_EQ(NSWidth([window frame]), WIDTH);
    EXPECT_EQ(NSHeight([window frame]), HEIGHT);
}

TEST_F(Snapping, AMoveThatTheWindowManagerTellsOfAfterwardsSnapsToo) {
    Place(-50, 200);
    snapEnabled = 0;
    [Mover() windowDidMove:nil];
    ExpectOrigin(platformWindowManagerMoves() ? 0 : -50, 200);
}

TEST_F(Snapping, AHiddenWindowIsLeftAlone) {
    Place(-50, 200);
    mainWinIsHidden = 1;
    [Mover() windowWillMove:nil];
    [Mover() windowDidMove:nil];
    ExpectOrigin(-50, 200);
}

int moves = 0;

void countFrames(id self, SEL, NSRect, BOOL) {
    ++moves;
    [[self delegate] windowWillMove:nil];
    [[self delegate] windowDidMove:nil];
}

TEST_F(Snapping, ItsOwnMoveDoesNotSnapAgain) {
    Place(-50, 200);
    moves = 0;
    const float before = ddX = 123;
    {
        const Replaced frames([NSWindow class], @selector(setFrame:display:), countFrames);
        snapEnabled = 1;
        [Mover() windowDidMove:nil];
    }
    EXPECT_EQ(moves, 1);
    EXPECT_EQ(ddX, before) << "nor does a drag begin";
}

} // namespace
