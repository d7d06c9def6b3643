// SPDX-License-Identifier: MIT
//
// The preferences panel, on a grid: right-aligned labels, the controls in one column behind them.
#import "Interface.h"

#import "Controls.h"
#import "MainConsole.h"
#import "NumberField.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"
#import "PrefController.h"
#import "TextFormatter.h"
#import "ZqScroller.h"

#include <algorithm>
#include <cmath>

static const CGFloat PANEL_WIDTH = 432;
static const CGFloat HEIGHT = 540;   // with its frame it fits on a screen of 600 points; lower ones scroll
static const CGFloat TITLE_BAR = 30; // with the edges of the frame, at most
static const CGFloat PANEL_EDGE = 20;
static const CGFloat LABELS = 126; // the width of the labels' column
static const CGFloat GAP = 10;
static const CGFloat ROW_HEIGHT = 26;
static const CGFloat SECTION = 10; // the space between sections
static const CGFloat HIGH = 22;    // a control's height
static const CGFloat SLIDER = 170;
static const CGFloat COLUMN = PANEL_EDGE + LABELS + GAP;       // where the controls begin
static const CGFloat REST = PANEL_WIDTH - PANEL_EDGE - COLUMN; // what is free from there

// A slider from 0 to 100 with its value beside it.
@interface PercentSlider : NSSlider {
    NSTextField* shown; // not retained: both are in the same panel
}
- (void)setShown:(NSTextField*)field;
@end

@implementation PercentSlider

- (void)setShown:(NSTextField*)field {
    shown = field;
}

- (void)showValue {
    // As the setting takes it: without its fraction.
    [shown setStringValue:[NSString stringWithFormat:@"%d %%", static_cast<int>([self doubleValue])]];
}

- (void)setIntValue:(int)value {
    [super setIntValue:value];
    [self showValue];
}

- (void)setDoubleValue:(double)value {
    [super setDoubleValue:value];
    [self showValue];
}

- (BOOL)sendAction:(SEL)action to:(id)target {
    [self showValue];
    return [super sendAction:action to:target];
}

@end

// Places rows from top to bottom and links the controls for the Tab key in that order.
struct Grid {
    NSView* view;
    PrefController* target;
    PrefControls& made;
    CGFloat y;
    NSView* first;
    NSView* last;

    // Text that is not a control, beside the controls.
    NSTextField* Text(NSString* content, CGFloat x, CGFloat width) {
        return labelIn(view, content, NSMakeRect(x, y - 3, width, HIGH));
    }

    void Label(NSString* title) { [Text(title, PANEL_EDGE, LABELS) setAlignment:NSRightTextAlignment]; }

    template <typename Control> Control* Add(Control* control, CGFloat width) {
        [control setFrame:NSMakeRect(COLUMN, y, width, HIGH)];
        [control setTarget:target];
        [control setAction:@selector(prefCallback:)];
        [view addSubview:control];
        if (last) [last setNextKeyView:control];
        if (!first) first = control;
        last = control;
        y -= ROW_HEIGHT;
        return control;
    }

    // The control of a setting, behind its title.
    template <typename Control> Control* AddSetting(const char* key, Control* control, CGFloat width) {
        made.Of(*findSetting(key)) = control;
        Label(@(findSetting(key)->title));
        return Add(control, width);
    }

    NSTextField* Field(const char* key, CGFloat width) {
        NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
        [[field cell] setSendsActionOnEndEditing:YES]; // leaving the field counts as well
        return AddSetting(key, field, width);
    }

    // A field with arrows for the mouse at its right; the keyboard types.
    NSTextField* SteppedField(const char* key, NSStepper*& stepper) {
        const CGFloat width = 60;
        stepper = [[[NSStepper alloc] initWithFrame:NSMakeRect(COLUMN + width + 3, y, 18, HIGH)] autorelease];
        [stepper setMinValue:findSetting(key)->least];
        [stepper setMaxValue:findSetting(key)->most];
        [stepper setValueWraps:NO];
        [stepper setTarget:target];
        [stepper setAction:@selector(step:)];
        [view addSubview:stepper];
        return Field(key, width);
    }

    NSButton* Button(NSString* title, CGFloat width) {
        NSButton* const button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
        [button setTitle:title];
        [button setBezelStyle:NSRoundedBezelStyle];
        return Add(button, width);
    }

    NSButton* Box(const char* key) {
        NSButton* const button = Box(@(findSetting(key)->title));
        made.Of(*findSetting(key)) = button;
        return button;
    }

    NSButton* Box(NSString* title) {
        NSButton* const button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
        [button setButtonType:NSSwitchButton];
        [button setTitle:title];
        [button setImagePosition:NSImageLeft];
        [button setAlignment:NSLeftTextAlignment];
        return Add(button, REST);
    }
};

static void addNumbers(Grid& grid, PrefControls& made) {
    made.prefSciMode = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
    for (const SettingChoice& mode : findSetting("scimode")->choices) {
        if (mode.title) [made.prefSciMode addItemWithTitle:@(mode.title)];
    }
    grid.AddSetting("scimode", made.prefSciMode, 170);
    made.prefSigFigs = grid.SteppedField("sigfigs", made.steppers[0]);
    made.prefSepReason = grid.Text(@"", COLUMN + 28 + GAP, REST - 28 - GAP);
    made.prefSepChar = grid.Field("schar", 28);
    TextFormatter* const oneCharacter = [[[TextFormatter alloc] init] autorelease];
    [oneCharacter setMaximumLength:1];
    [made.prefSepChar setFormatter:oneCharacter];
    [made.prefSepChar setAlignment:NSCenterTextAlignment];
    made.prefSeparator = grid.Box("separator");
    made.prefEuropean = grid.Box("european");
    made.prefTwosComp = grid.Box("twoscomp");
    grid.Label(@"Sample:");
    const NSRect frame = NSMakeRect(COLUMN, grid.y, REST, HIGH);
    made.prefNumPreview = [[[NumberField alloc] initWithFrame:frame] autorelease];
    [made.prefNumPreview setFont:[NSFont userFixedPitchFontOfSize:13]];
    [grid.view addSubview:made.prefNumPreview];
    grid.y -= ROW_HEIGHT + SECTION;
    made.prefHistSize = grid.SteppedField("histsz", made.steppers[1]);
    [made.prefHistSize setToolTip:@"1 to 999, from the next start on"];
}

static void addColors(Grid& grid, PrefControls& made) {
    grid.Label(@"Font:");
    made.prefFont = grid.Button(@"", REST);
    made.prefFGColor = grid.AddSetting("fgcolor", makeColorWell(), 60);
    made.prefBGColor = grid.AddSetting("bgcolor", makeColorWell(), 60);
    PercentSlider* const slider = [[[PercentSlider alloc] initWithFrame:NSZeroRect] autorelease];
    [slider setMinValue:0];
    [slider setMaxValue:100];
    [slider setShown:grid.Text(@"", COLUMN + SLIDER + GAP, 60)];
    made.prefSlider = grid.AddSetting("trans", slider, SLIDER);
    made.prefResetColors = grid.Button(@"Reset Colors", 120);
}

static void addWindow(Grid& grid, PrefControls& made) {
    made.prefTransBGOnly = grid.Box("transback");
    made.prefSnapTo = grid.Box("snaptoscreen");
    made.prefAlwaysTop = grid.Box(@"Keep above other windows");
    grid.Box("startclear");
    NSView* const last = grid.last;
    const CGFloat y = grid.y;
    made.prefStatusIcon = grid.Box("statusicon");
    if (platformStatusBar()) return;
    // What can never be used is not offered. The setting stays as it is.
    [made.prefStatusIcon setHidden:YES];
    [made.prefStatusIcon setFrame:NSZeroRect];
    grid.last = last;
    grid.y = y;
}

// A panel around the form; where the screen is lower, with a scroller beside what there is room for.
static MyPrefPanel* makePanelAround(NSView* form) {
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    const CGFloat room = std::floor(NSHeight(screen) / platformScale()) - TITLE_BAR;
    const bool isWhole = room >= HEIGHT;
    const CGFloat width = PANEL_WIDTH + (isWhole ? 0 : [ZqScroller scrollerWidth]);
    MyPrefPanel* const panel = makePanel([MyPrefPanel class], @"Tallyquill Preferences",
                                         NSMakeSize(width, std::min(HEIGHT, room)), 0);
    if (isWhole) {
        [panel setContentView:form];
        return panel;
    }
    const NSRect inside = [[panel contentView] bounds];
    NSScrollView* const scroll = [[[NSScrollView alloc] initWithFrame:inside] autorelease];
    useOurScroller(scroll);
    [scroll setBackgroundColor:[panel backgroundColor]];
    [scroll setLineScroll:ROW_HEIGHT];
    [scroll setDocumentView:form];
    [panel setContentView:scroll];
    [panel setFrameTopLeftPoint:NSMakePoint(NSMinX([panel frame]), NSMaxY(screen))];
    [form scrollPoint:NSMakePoint(0, HEIGHT - [scroll contentSize].height)];
    return panel;
}

void buildPreferences(PelmoAppDelegate* delegate) {
    PrefController* const controller = [[[PrefController alloc] init] autorelease];
    [controller setMainConsole:[delegate mainConsole]];
    [controller setAppDelegate:delegate];
    NSView* const form = [[[NSView alloc] initWithFrame:NSMakeRect(0, 0, PANEL_WIDTH, HEIGHT)] autorelease];
    MyPrefPanel* const panel = makePanelAround(form);
    PrefControls made = {};
    Grid grid = {form, controller, made, HEIGHT - PANEL_EDGE - HIGH, nil, nil};
    addNumbers(grid, made);
    grid.y -= SECTION;
    addColors(grid, made);
    grid.y -= SECTION;
    addWindow(grid, made);
    grid.y -= SECTION;
    made.prefClose = grid.Button(@"Close", 90);
    [made.prefClose
        setFrameOrigin:NSMakePoint(PANEL_WIDTH - PANEL_EDGE - 90, NSMinY([made.prefClose frame]))];
    [grid.last setNextKeyView:grid.first];
    [panel setInitialFirstResponder:grid.first];
    [panel setDelegate:(id)controller];
    [controller setPrefWindow:panel];
    [controller setControls:made];
    [delegate setPrefController:controller];
}
