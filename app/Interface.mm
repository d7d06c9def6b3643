// SPDX-License-Identifier: MIT
#import "Interface.h"

#import "ConsoleScrollView.h"
#import "Controls.h"
#import "HUDViewWithBlur.h"
#import "MainConsole.h"
#import "MainWindowDelegate.h"
#import "NumberField.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"

static const NSRect FIRST_FRAME = {{450, 250}, {450, 250}};
static const CGFloat FRAME_MARGIN = 6;
static const CGFloat CONTROL_HEIGHT = 21;
static const NSUInteger UNDO_LEVELS = 100; // drafts that nobody undoes would take memory all day

static NSScrollView* buildScrollView(NSRect frame, MainConsole* console) {
    NSScrollView* const scroll = [[[ConsoleScrollView alloc] initWithFrame:frame] autorelease];
    [scroll setBorderType:NSNoBorder];
    scrollText(scroll, console);
    return scroll;
}

static MainConsole* buildConsole() {
    MainConsole* const console = [[[MainConsole alloc] initWithFrame:NSZeroRect] autorelease];
    [console setRichText:NO];
    [console setUsesFontPanel:YES];
    [console setAllowsUndo:YES];
    [[console textStorage] setDelegate:(id)console];
    NSFont* const font = [NSFont userFixedPitchFontOfSize:USUAL_TEXT_SIZE];
    if (font) [console setFont:font];
    [[console textContainer] setLineFragmentPadding:TEXT_AIR];
    return console;
}

static NSTextField* buildStatusLine(NSRect frame) {
    NSTextField* const field = [[[NumberField alloc] initWithFrame:frame] autorelease];
    [field setTextColor:[NSColor controlTextColor]];
    [field setAutoresizingMask:NSViewWidthSizable | NSViewMaxYMargin];
    return field;
}

static NSSegmentedControl* buildSegments(NSArray* labels, CGFloat width, MainConsole* target, SEL action) {
    NSSegmentedControl* const control = makeSegmentedControl();
    [control setSegmentCount:static_cast<NSInteger>([labels count])];
    for (NSUInteger i = 0; i < [labels count]; ++i) {
        [control setLabel:[labels objectAtIndex:i] forSegment:static_cast<NSInteger>(i)];
        [control setWidth:width forSegment:static_cast<NSInteger>(i)];
    }
    [control setFont:[NSFont systemFontOfSize:11]];
    [control setTarget:target];
    [control setAction:action];
    return control;
}

static NSPopUpButton* buildPopUp(NSString* title, MainConsole* target, SEL action) {
    NSPopUpButton* const button = makeListPopUp(title);
    [button setFont:[NSFont systemFontOfSize:11]];
    [button setTarget:target];
    [button setAction:action];
    return button;
}

// Places the controls side by side in the strip at the top.
static void placeControls(NSView* content, NSArray* controls, const CGFloat* widths) {
    CGFloat x = FRAME_MARGIN;
    const CGFloat y = NSHeight([content bounds]) - CONTROLS_HEIGHT + (CONTROLS_HEIGHT - CONTROL_HEIGHT) / 2;
    for (NSUInteger i = 0; i < [controls count]; ++i) {
        NSControl* const control = [controls objectAtIndex:i];
        [control setFrame:NSMakeRect(x, y, widths[i], CONTROL_HEIGHT)];
        [control setAutoresizingMask:NSViewMinYMargin | NSViewMaxXMargin];
        [content addSubview:control];
        x += widths[i] + FRAME_MARGIN;
    }
}

static void buildControls(NSView* content, MainConsole* console) {
    NSSegmentedControl* const base =
        buildSegments(@[ @"Bin", @"Dec", @"Hex" ], 42, console, @selector(clickedChangeBase:));
    NSSegmentedControl* const mode =
        buildSegments(@[ @"Deg", @"Rad" ], 42, console, @selector(clickedChangeMode:));
    NSPopUpButton* const vars = buildPopUp(@"Vars", console, @selector(clickedVarsMenu:));
    NSPopUpButton* const functions = buildPopUp(@"Func", console, @selector(clickedFuncMenu:));
    const CGFloat widths[] = {128, 86, 76, 76};
    NSArray* const controls = @[ base, mode, vars, functions ];
    placeControls(content, controls, widths);
    for (NSUInteger i = 0; i < 4; ++i)
        [[controls objectAtIndex:i] setNextKeyView:[controls objectAtIndex:(i + 1) % 4]];
    [console setCtrlBase:base];
    [console setCtrlDegMode:mode];
    [console setMenuVars:vars];
    [console setMenuFuncs:functions];
}

NSWindow* buildMainWindow(PelmoAppDelegate* delegate) {
    const NSUInteger style =
        NSTitledWindowMask | NSClosableWindowMask | NSMiniaturizableWindowMask | NSResizableWindowMask;
    NSWindow* const window = [[[mainWindowClass() alloc] initWithContentRect:FIRST_FRAME
                                                                   styleMask:style
                                                                     backing:NSBackingStoreBuffered
                                                                       defer:NO] autorelease];
    [window setTitle:@"Tallyquill"];
    [window setReleasedWhenClosed:NO];
    [window setBackgroundColor:[NSColor windowBackgroundColor]];

    MainConsole* const console = buildConsole();
    [console setMyAppDelegate:delegate];
    HUDViewWithBlur* const content = [[[HUDViewWithBlur alloc] initWithFrame:FIRST_FRAME] autorelease];
    [content setMainConsole:console];
    [window setContentView:content];
    const NSRect bounds = [content bounds];
    [content addSubview:buildScrollView(NSMakeRect(0, STATUS_HEIGHT, NSWidth(bounds),
                                                   NSHeight(bounds) - STATUS_HEIGHT - CONTROLS_HEIGHT),
                                        console)];
    NSTextField* const status =
        buildStatusLine(NSMakeRect(FRAME_MARGIN, 0, NSWidth(bounds) - 2 * FRAME_MARGIN, STATUS_HEIGHT - 2));
    [content addSubview:status];
    [console setAnswerStatus:status];
    [console setFont:[console font]]; // the status line's too
    buildControls(content, console);
    [window setInitialFirstResponder:console];
    [[console undoManager] setLevelsOfUndo:UNDO_LEVELS];
    MainWindowDelegate* const mover = [[[MainWindowDelegate alloc] init] autorelease];
    [mover setWindow:window console:console];
    [window setDelegate:(id)mover];
    [window setNextResponder:mover];
    [delegate setMainConsole:console];
    [delegate setWindow:window];
    [delegate setWindowDelegate:mover];
    return window;
}

void buildInterface(PelmoAppDelegate* delegate) {
    buildMainWindow(delegate);
    buildPreferences(delegate);
    buildMenus(delegate);
}
