// SPDX-License-Identifier: MIT
//
// The left button in the text: what a press, a move and a release make of the selection.
#import "console_fixture.h"
#import "replacement.h"

#import "Controls.h"

namespace {

// What comes after the press, and what it comes to. It waits until the console has looked for a release that
// came with the press.
std::vector<NSEvent*> following;
IMP follower = nullptr;

void postAndFollow(id view, SEL selector, NSEvent* event) {
    for (NSEvent* const one : following) [NSApp postEvent:one atStart:NO];
    reinterpret_cast<void (*)(id, SEL, NSEvent*)>(follower)(view, selector, event);
}

class MouseInText : public ConsoleTest {
protected:
    void SetUp() override {
        ConsoleTest::SetUp();
        [window makeKeyAndOrderFront:nil];
    }
    void TearDown() override {
        following.clear();
        [NSApp discardEventsMatchingMask:NSAnyEventMask beforeEvent:nil];
        ConsoleTest::TearDown();
    }

    // Of the window: the left edge of a character of the entry.
    NSPoint Before(NSUInteger character) const {
        NSLayoutManager* const layout = [console layoutManager];
        const NSRange one = {static_cast<NSUInteger>(g_linestart) + character, 1};
        const NSRange glyphs = [layout glyphRangeForCharacterRange:one actualCharacterRange:NULL];
        const NSRect box = [layout boundingRectForGlyphRange:glyphs inTextContainer:[console textContainer]];
        const NSPoint origin = [console textContainerOrigin];
        return [console convertPoint:NSMakePoint(NSMinX(box) + origin.x + 1, NSMidY(box) + origin.y)
                              toView:nil];
    }

    NSEvent* Event(NSEventType type, NSPoint where, NSInteger clicks = 1) const {
        return [NSEvent mouseEventWithType:type
                                  location:where
                             modifierFlags:0
                                 timestamp:0
                              windowNumber:[window windowNumber]
                                   context:nil
                               eventNumber:0
                                clickCount:clicks
                                  pressure:0];
    }

    // A press after which the method of that class follows the mouse.
    void Press(NSPoint where, NSInteger clicks, Class type, SEL method) {
        const Replaced later(type, method, postAndFollow);
        follower = later.Implementation();
        [console mouseDown:Event(NSLeftMouseDown, where, clicks)];
    }

    void PressOnText(NSPoint where, NSInteger clicks = 1) {
        Press(where, clicks, [NSTextView class], @selector(mouseDown:));
    }

    void PressOnSelection(NSPoint where) {
        Press(where, 1, [MainConsole class], sel_registerName("clickOrDrag:"));
    }
};

TEST_F(MouseInText, ASlowDoubleClickTakesAWholeNumber) {
    Type("x+1234.5");
    following = {Event(NSLeftMouseUp, Before(4), 2)};
    PressOnText(Before(4), 2);
    EXPECT_EQ(Selected(), "1234.5");
}

TEST_F(MouseInText, AClickOnWhatIsSelectedSetsTheCursorThere) {
    Type("1234+567");
    SelectEntry(0, 8);
    following = {Event(NSLeftMouseUp, Before(5))};
    PressOnSelection(Before(5));
    EXPECT_EQ(Selected(), "");
    EXPECT_EQ(CursorInEntry(), 5u);
}

// A hand trembles.
TEST_F(MouseInText, AClickThatMovesALittleDragsNothing) {
    Type("1234+567");
    SelectEntry(0, 8);
    NSPoint beside = Before(5);
    beside.x += 1;
    following = {Event(NSLeftMouseDragged, beside), Event(NSLeftMouseUp, beside)};
    PressOnSelection(Before(5));
    EXPECT_EQ(Entry(), "1234+567");
    EXPECT_EQ(CursorInEntry(), 5u);
}

int drags = 0;

void countDrag(id, SEL, NSEvent*, NSSize, BOOL) {
    ++drags;
}

TEST_F(MouseInText, APullOfWhatIsSelectedDragsIt) {
    Type("1234+567");
    SelectEntry(0, 8);
    const Replaced drag([NSTextView class], @selector(dragSelectionWithEvent:offset:slideBack:), countDrag);
    drags = 0;
    NSPoint far = Before(5);
    far.x += 10;
    following = {Event(NSLeftMouseDragged, far), Event(NSLeftMouseUp, far)};
    PressOnSelection(Before(5));
    EXPECT_EQ(drags, 1);
    EXPECT_EQ(Selected(), "1234+567");
}

TEST_F(MouseInText, APressBesideTheLinesIsOneIntoTheText) {
    Type("1234+567");
    NSScrollView* const scroll = [console enclosingScrollView];
    const NSRect lines = [[scroll contentView] convertRect:[[scroll contentView] bounds] toView:nil];
    const NSPoint where = NSMakePoint(Before(3).x, NSMaxY(lines) + 1);
    EXPECT_EQ([[[window contentView] superview] hitTest:where], scroll);
    [NSApp postEvent:Event(NSLeftMouseUp, where) atStart:NO];
    [scroll mouseDown:Event(NSLeftMouseDown, where)];
    EXPECT_EQ(Cursor(), 0u) << "above the first line is the beginning";
}

// --- Panels beside the window ---

NSPanel* smallPanel() {
    NSPanel* const panel = [[[NSPanel alloc] initWithContentRect:NSMakeRect(0, 0, 100, 80)
                                                       styleMask:NSTitledWindowMask
                                                         backing:NSBackingStoreBuffered
                                                           defer:NO] autorelease];
    [panel setReleasedWhenClosed:NO];
    return panel;
}

class PanelsBesideAWindow : public ConsoleTest {};

TEST_F(PanelsBesideAWindow, ComeWhereThereIsMoreRoom) {
    NSPanel* const panel = smallPanel();
    NSRect frame = [window frame];
    const NSRect screen = [[window screen] visibleFrame];
    ASSERT_GT(NSWidth(screen) - NSWidth(frame), 300);
    frame.origin.x = NSMinX(screen) + 10;
    [window setFrame:frame display:NO];
    placeBeside(panel, window);
    EXPECT_GT(NSMinX([panel frame]), NSMaxX([window frame]));
    frame.origin.x = NSMaxX(screen) - NSWidth(frame) - 10;
    [window setFrame:frame display:NO];
    placeBeside(panel, window);
    EXPECT_LT(NSMaxX([panel frame]), NSMinX([window frame]));
}

TEST_F(PanelsBesideAWindow, StayWhereAPersonHasPutThem) {
    NSPanel* const panel = smallPanel();
    [panel orderFront:nil];
    const NSRect before = [panel frame];
    placeBeside(panel, window);
    EXPECT_TRUE(NSEqualRects([panel frame], before));
    [panel close];
}

} // namespace
