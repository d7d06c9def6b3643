// SPDX-License-Identifier: MIT
//
// The preferences panel, on a grid: right-aligned labels, the controls in one column behind them.
#import "Interface.h"

#import "MainConsole.h"
#import "NumberField.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"
#import "PrefController.h"
#import "TextFormatter.h"

static const CGFloat WIDTH = 432;
static const CGFloat HEIGHT = 516;
static const CGFloat EDGE = 24;
static const CGFloat LABELS = 126; // the width of the labels' column
static const CGFloat GAP = 10;
static const CGFloat ROW = 28;
static const CGFloat SECTION = 12; // the space between sections
static const CGFloat HIGH = 22;    // a control's height
static const CGFloat SLIDER = 170;

static void makeLabel(NSTextField* field) {
    [field setEditable:NO];
    [field setSelectable:NO];
    [field setBezeled:NO];
    [field setBordered:NO];
    [field setDrawsBackground:NO];
}

// A slider from 0 to 100 with its value beside it.
@interface PercentSlider : NSSlider {
    NSTextField* shown; // not retained: both are in the same panel
}
- (void)setShown:(NSTextField*)field;
@end

@implementation PercentSlider

- (void)setShown:(NSTextField*)field {
    shown = field;
    [self showValue];
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

// GNUstep would show the keyboard's focus with the next change only.
- (BOOL)becomeFirstResponder {
    [self setNeedsDisplay:YES];
    return [super becomeFirstResponder];
}

- (BOOL)resignFirstResponder {
    [self setNeedsDisplay:YES];
    return [super resignFirstResponder];
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

    CGFloat column() const { return EDGE + LABELS + GAP; }
    void nextRow() { y -= ROW; }
    void nextSection() { y -= SECTION; }

    void label(NSString* title) {
        NSTextField* const field = text(EDGE, LABELS);
        [field setStringValue:title];
        [field setAlignment:NSRightTextAlignment];
    }

    // The control of a setting, behind its title.
    void addSetting(const char* key, NSControl* control, CGFloat width) {
        made.of(*findSetting(key)) = control;
        label(@(findSetting(key)->title));
        add(control, column(), width);
    }

    void add(NSControl* control, CGFloat x, CGFloat width) {
        [control setFrame:NSMakeRect(x, y, width, HIGH)];
        [control setTarget:target];
        [control setAction:@selector(prefCallback:)];
        [view addSubview:control];
        if (last) [last setNextKeyView:control];
        if (!first) first = control;
        last = control;
    }

    NSTextField* field(const char* key, CGFloat width) {
        NSTextField* const field = [[[NSTextField alloc] initWithFrame:NSZeroRect] autorelease];
        [[field cell] setSendsActionOnEndEditing:YES]; // leaving the field counts as well
        addSetting(key, field, width);
        return field;
    }

    NSButton* box(const char* key) {
        NSButton* const button = box(@(findSetting(key)->title));
        made.of(*findSetting(key)) = button;
        return button;
    }

    NSButton* box(NSString* title) {
        NSButton* const button = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
        [button setButtonType:NSSwitchButton];
        [button setTitle:title];
        [button setImagePosition:NSImageLeft];
        [button setAlignment:NSLeftTextAlignment];
        add(button, column(), WIDTH - EDGE - column());
        nextRow();
        return button;
    }

    // Text that is not a control, beside the controls.
    NSTextField* text(CGFloat x, CGFloat width) {
        NSTextField* const field =
            [[[NSTextField alloc] initWithFrame:NSMakeRect(x, y - 3, width, HIGH)] autorelease];
        makeLabel(field);
        [view addSubview:field];
        return field;
    }

    NSColorWell* well(const char* key) {
        NSColorWell* const colors = makeColorWell();
        addSetting(key, colors, 60);
        nextRow();
        return colors;
    }
};

static void addNumbers(Grid& grid, PrefControls& made) {
    made.prefSciMode = [[[NSPopUpButton alloc] initWithFrame:NSZeroRect pullsDown:NO] autorelease];
    for (const SettingChoice& mode : findSetting("scimode")->choices) {
        if (mode.title) [made.prefSciMode addItemWithTitle:@(mode.title)];
    }
    grid.addSetting("scimode", made.prefSciMode, 170);
    grid.nextRow();
    made.prefSigFigs = grid.field("sigfigs", 60);
    grid.nextRow();
    made.prefSepChar = grid.field("schar", 28);
    TextFormatter* const oneCharacter = [[[TextFormatter alloc] init] autorelease];
    [oneCharacter setMaximumLength:1];
    [made.prefSepChar setFormatter:oneCharacter];
    [made.prefSepChar setAlignment:NSCenterTextAlignment];
    const CGFloat besideMark = grid.column() + 28 + GAP;
    made.prefSepReason = grid.text(besideMark, WIDTH - EDGE - besideMark);
    grid.nextRow();
    made.prefSeparator = grid.box("separator");
    made.prefEuropean = grid.box("european");
    made.prefTwosComp = grid.box("twoscomp");
    grid.label(@"Sample:");
    made.prefNumPreview = [[[NumberField alloc]
        initWithFrame:NSMakeRect(grid.column(), grid.y, WIDTH - EDGE - grid.column(), HIGH)] autorelease];
    [grid.view addSubview:made.prefNumPreview];
    [made.prefNumPreview setFont:[NSFont userFixedPitchFontOfSize:13]];
    grid.nextRow();
}

static void addHistory(Grid& grid, PrefControls& made) {
    made.prefHistSize = grid.field("histsz", 60);
    [made.prefHistSize setToolTip:@"1 to 999, from the next start on"];
    grid.nextRow();
}

static void addColors(Grid& grid, PrefControls& made) {
    made.prefFGColor = grid.well("fgcolor");
    made.prefBGColor = grid.well("bgcolor");
    PercentSlider* const slider = [[[PercentSlider alloc] initWithFrame:NSZeroRect] autorelease];
    [slider setMinValue:0];
    [slider setMaxValue:100];
    grid.addSetting("trans", slider, SLIDER);
    [slider setShown:grid.text(grid.column() + SLIDER + GAP, 60)];
    made.prefSlider = slider;
    grid.nextRow();
    made.prefResetColors = [[[NSButton alloc] initWithFrame:NSZeroRect] autorelease];
    [made.prefResetColors setTitle:@"Reset Colors"];
    [made.prefResetColors setBezelStyle:NSRoundedBezelStyle];
    grid.add(made.prefResetColors, grid.column(), 120);
    grid.nextRow();
}

// GNUstep draws the tick of a disabled box as bright as that of the others.
static void dimTick(NSButton* box) {
    NSImage* const tick = [box alternateImage];
    if (!tick) return;
    const NSRect all = {NSZeroPoint, [tick size]};
    NSImage* const dim = [[[NSImage alloc] initWithSize:all.size] autorelease];
    [dim lockFocus];
    [tick drawInRect:all fromRect:NSZeroRect operation:NSCompositeSourceOver fraction:0.4];
    [dim unlockFocus];
    [box setAlternateImage:dim];
}

static void addWindow(Grid& grid, PrefControls& made) {
    made.prefTransBGOnly = grid.box("transback");
    made.prefSnapTo = grid.box("snaptoscreen");
    made.prefAlwaysTop = grid.box(@"Keep above other windows");
    made.prefStatusIcon = grid.box("statusicon");
    if (platformStatusBar()) return;
    [made.prefStatusIcon setEnabled:NO];
    dimTick(made.prefStatusIcon);
    [made.prefStatusIcon setToolTip:@"This desktop has no status bar for applications."];
}

void buildPreferences(PelmoAppDelegate* delegate) {
    PrefController* const controller = [[[PrefController alloc] init] autorelease];
    [controller setMainConsole:[delegate mainConsole]];
    [controller setAppDelegate:delegate];
    MyPrefPanel* const panel =
        [[[MyPrefPanel alloc] initWithContentRect:NSMakeRect(0, 0, WIDTH, HEIGHT)
                                        styleMask:NSTitledWindowMask | NSClosableWindowMask
                                          backing:NSBackingStoreBuffered
                                            defer:YES] autorelease];
    [panel setTitle:@"Tallyquill Preferences"];
    [panel setReleasedWhenClosed:NO];
    [panel setHidesOnDeactivate:NO];
    PrefControls made = {};
    Grid grid = {[panel contentView], controller, made, HEIGHT - EDGE - HIGH, nil, nil};
    addNumbers(grid, made);
    grid.nextSection();
    addHistory(grid, made);
    grid.nextSection();
    addColors(grid, made);
    grid.nextSection();
    addWindow(grid, made);
    [grid.last setNextKeyView:grid.first];
    [panel setInitialFirstResponder:grid.first];
    [panel center];
    [panel setDelegate:(id)controller];
    [controller setPrefWindow:panel controls:made];
    [delegate setPrefController:controller];
}
