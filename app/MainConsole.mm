// SPDX-License-Identifier: MIT
#import "MainConsole.h"

#import "Controls.h"
#include "Folder.h"
#import "MainWindowDelegate.h"
#import "PelmoAppDelegate.h"
#import "Platform.h"
#include "ShownText.h"
#include "units.h"

#import <objc/runtime.h>

#include <algorithm>
#include <cmath>

NSString* funcFilePath = nil;
NSString* prefFilePath = nil;

static const NSSize SMALLEST_WINDOW = {400, 150};

static const NSTimeInterval SHEET_DELAY = 0.4;
static const NSTimeInterval READING_TIME = 0.7; // of a question

// So much of the upper edge of a window has to be on a screen for it to be caught by the mouse.
static const NSSize REACHABLE = {100, 40};

// The engine asks often; the event queue is asked this often, and not before an entry has run this long, so
// that short entries leave what is typed ahead alone.
static const std::chrono::milliseconds INTERRUPT_INTERVAL(50);

// What takes longer is said in the status line.
static const std::chrono::seconds LONG_TIME(1);

MainConsole* interruptedConsole = nil;

NSString* textFromBytes(const char* bytes) {
    const std::string shown = shownLatin1(bytes);
    return [[[NSString alloc] initWithBytes:shown.data()
                                     length:shown.size()
                                   encoding:NSISOLatin1StringEncoding] autorelease];
}

std::string bytesOf(NSString* text, NSStringEncoding encoding) {
    NSData* const bytes = [text dataUsingEncoding:encoding allowLossyConversion:YES];
    return std::string(static_cast<const char*>([bytes bytes]), [bytes length]);
}

@implementation MainConsole

@synthesize myAppDelegate, answerStatus, ctrlBase, ctrlDegMode, menuDispBin, menuDispDec, menuDispHex,
    menuVars, menuFuncs;

- (void)dealloc {
    if (interruptedConsole == self) interruptedConsole = nil;
    [NSObject cancelPreviousPerformRequestsWithTarget:self];
    [settings release];
    [nameList release];
    [textColor release];
    [scriptOutput release];
    [super dealloc];
}

// --- Start-up ---

static bool isInterrupted() {
    return [interruptedConsole isInterrupted];
}

- (BOOL)isInterrupted {
    const auto now = std::chrono::steady_clock::now();
    if (now - lastInterruptCheck < INTERRUPT_INTERVAL) return NO;
    lastInterruptCheck = now;
    @autoreleasepool {
        if (longFrom && now >= *longFrom) [self sayThatItTakesLong];
        [self writeDueFiles];
        if ([self isReplaying]) {
            [self showScriptOutput];
            [self displayIfNeeded];
        }
        return [self checkInterruptEvent] != 0;
    }
}

// A script is watched as a whole: thousands of short lines would never be interrupted, nor said to take long.
- (void)watchInterrupts {
    if ([self isReplaying]) return;
    lastInterruptCheck = std::chrono::steady_clock::now();
    longFrom = lastInterruptCheck + LONG_TIME;
}

// No event is dealt with while an entry runs: it has to be drawn here.
- (void)sayThatItTakesLong {
    longFrom.reset();
    [self updateStatusbar:"Calculating... Escape ends it."];
    [answerStatus display];
    [[self window] flushWindow];
}

- (void)initializeConsole:(NSWindow*)window {
    interruptedConsole = self;
    calc.interruptCheck = isInterrupted;
    [self clearConsole];
    [self findFiles];
    [self loadSettings];
    calc.initialized = true;
    calc.InitializeFunctionsAndVars();
    calc.history.SetMaxEntries([self setting:@"histsz"]);
    [self testUnits];
    [self loadFuncFile];
    calc.initialized = true;
    [self applySettings];
    [self populateVarsMenu];
    [self populateFuncMenu];
    [self bringBackTranscript];
    [self initWindowProperties];
    [self initWindowLocation];
    [self showWindow:window];
    [self countStart];
}

- (void)findFiles {
    NSString* const folder = [self appSupportFolder];
    [funcFilePath release];
    [prefFilePath release];
    funcFilePath = [[folder stringByAppendingPathComponent:@"pelmo_functions.txt"] copy];
    prefFilePath = [[folder stringByAppendingPathComponent:@"pelmo_settings.plist"] copy];
    [settings release];
    settings = nil;
    keeper.Open(ownFolder());
}

- (void)testUnits {
    units_clear_exception();
    units_convert("m", "ft");
    const char* const error = units_check_exception();
    if (!error) return;
    [self simpleAlert:@"Units converter initialization error.":textFromBytes(error)];
    units_clear_exception();
}

- (void)applySettings {
    [self setDegreeMode:[self setting:@"degmode"]];
    [self setDisplayBase:[self setting:@"dispbase"]:NO];
    [self copySettingsToEngine];
}

// The place of the window is stored in whole points, without their fractions, so that it grows with what is
// in it when the scale changes. Rounded away from zero, what was stored gives the same points again.
static CGFloat fromPoints(int points) {
    const CGFloat length = std::ceil(std::abs(points) * platformScale());
    return points < 0 ? -length : length;
}

static int wholePoints(CGFloat length) {
    const CGFloat tiny = 1e-6; // what a division may lack
    return static_cast<int>(length / platformScale() + (length < 0 ? -tiny : tiny));
}

// In units of a window's frame.
static NSSize scaledSize(NSSize points) {
    const CGFloat scale = platformScale();
    return NSMakeSize(points.width * scale, points.height * scale);
}

- (void)initWindowProperties {
    [[self window] setMinSize:scaledSize(SMALLEST_WINDOW)];
}

- (void)initWindowLocation {
    const NSRect frame = NSMakeRect(fromPoints([self setting:@"x"]), fromPoints([self setting:@"y"]),
                                    fromPoints([self setting:@"cx"]), fromPoints([self setting:@"cy"]));
    [[myAppDelegate windowDelegate] placeWindow:[self reachableFrame:frame]];
}

// A frame that no screen shows any more, as after a monitor was taken away, comes to the first one. At the
// first start all of it is to be seen.
- (NSRect)reachableFrame:(NSRect)frame {
    const NSSize least = scaledSize(SMALLEST_WINDOW);
    frame.size.width = std::max(frame.size.width, least.width);
    frame.size.height = std::max(frame.size.height, least.height);
    const NSSize needed = [self setting:@"firstrun"] > 1 ? REACHABLE : frame.size;
    NSRect upper = frame;
    upper.origin.y = NSMaxY(frame) - needed.height;
    upper.size.height = needed.height;
    for (NSScreen* const screen in [NSScreen screens]) {
        const NSRect shown = NSIntersectionRect(upper, [screen visibleFrame]);
        if (NSWidth(shown) >= needed.width && NSHeight(shown) >= needed.height) return frame;
    }
    const NSRect screen = [[NSScreen mainScreen] visibleFrame];
    frame.size.width = std::min(frame.size.width, screen.size.width);
    frame.size.height = std::min(frame.size.height, screen.size.height);
    frame.origin = NSMakePoint(NSMidX(screen) - frame.size.width / 2, NSMidY(screen) - frame.size.height / 2);
    return frame;
}

- (void)fitToScrollView {
    [self setMinSize:[[self enclosingScrollView] contentSize]];
    [self sizeToFit];
}

- (void)showWindow:(NSWindow*)window {
    [window setOpaque:NO];
    [self setDrawsBackground:NO];
    [[self enclosingScrollView] setDrawsBackground:NO];
    [window makeKeyAndOrderFront:nil];
    // A menu in the window has made the frame larger.
    [self initWindowLocation];
    [self fitToScrollView];
    [self gotoEnd];
    [NSApp activateIgnoringOtherApps:YES];
}

// --- The sheets of some starts ---

// Whether the user's locale writes decimals with a comma.
static bool writesDecimalComma() {
    NSNumberFormatter* const formatter = [[[NSNumberFormatter alloc] init] autorelease];
    [formatter setFormatterBehavior:NSNumberFormatterBehavior10_4];
    [formatter setNumberStyle:NSNumberFormatterDecimalStyle];
    [formatter setMaximumFractionDigits:3]; // GNUstep begins with none
    NSString* const text = [formatter stringFromNumber:[NSNumber numberWithDouble:6.7]];
    return [text rangeOfString:@","].location != NSNotFound;
}

- (void)countStart {
    const int starts = [self setting:@"firstrun"];
    if (starts > 1) {
        [self setSetting:@"firstrun" to:starts + 1];
        if (starts + 1 != 20 && starts + 1 != 100) return;
        [self showSheet:@"If you like Tallyquill, please consider leaving a review."
                    yes:@"Leave Review"
                     no:@"No thanks."
                 didEnd:@selector(reviewSheetDidEnd:returnCode:contextInfo:)];
        return;
    }
    if (writesDecimalComma()) {
        [self setSetting:@"european" to:1];
        [self setSetting:@"schar" to:'.'];
        [self applySettings];
    }
    // Stored first: a sheet may not return before it is answered.
    [self setSetting:@"firstrun" to:2];
    [self showSheet:@"This is your first run.\nShow 45-second quick tutorial?"
                yes:@"Run Tutorial"
                 no:@"No thanks."
             didEnd:@selector(tutorialSheetDidEnd:returnCode:contextInfo:)];
}

- (void)showSheet:(NSString*)message yes:(NSString*)yes no:(NSString*)no didEnd:(SEL)selector {
    NSArray* const sheet = @[ message, yes, no ? no : @"", selector ? NSStringFromSelector(selector) : @"" ];
    // A sheet may keep the program until it is answered, and a window that is only now appearing has not got
    // the keyboard yet.
    [self performSelector:@selector(presentSheet:) withObject:sheet afterDelay:SHEET_DELAY];
}

- (void)presentSheet:(NSArray*)sheet {
    // A script that runs looks for interruptions, and timers fire meanwhile: it would wait for the sheet.
    // Nor can one that a script has closed be asked, which ends the program.
    if (isAtWork || [self isReplaying] || !isShown([self window])) {
        [self performSelector:@selector(presentSheet:) withObject:sheet afterDelay:SHEET_DELAY];
        return;
    }
    [self ignoreKeysSoon];
    NSString* const no = [sheet objectAtIndex:2];
    NSString* const selector = [sheet objectAtIndex:3];
    NSBeginAlertSheet(@"Tallyquill", [sheet objectAtIndex:1], [no length] > 0 ? no : nil, nil, [self window],
                      self, [selector length] > 0 ? NSSelectorFromString(selector) : NULL, NULL, NULL, @"%@",
                      platformSheetText([sheet objectAtIndex:0]));
}

// What is typed before a question can be read is no answer to it: its keys are dropped for a moment. A
// question keeps the program until it is answered, so that this has to begin from within.
- (void)ignoreKeysSoon {
    [self performSelector:@selector(ignoreKeys) withObject:nil afterDelay:0 inModes:everyMode()];
}

- (void)ignoreKeys {
    NSString* const mode = [[NSRunLoop currentRunLoop] currentMode];
    NSDate* const end = [NSDate dateWithTimeIntervalSinceNow:READING_TIME];
    for (bool isClicked = false; !isClicked;) {
        NSEvent* const event = [NSApp nextEventMatchingMask:NSAnyEventMask
                                                  untilDate:end
                                                     inMode:mode ? mode : NSDefaultRunLoopMode
                                                    dequeue:YES];
        if (!event) return;
        isClicked = [event type] == NSLeftMouseUp; // which may answer
        if ([event type] != NSKeyDown) [NSApp sendEvent:event];
    }
}

- (void)tutorialSheetDidEnd:(NSWindow*)sheet returnCode:(NSInteger)code contextInfo:(void*)context {
    if (code != NSAlertDefaultReturn) return;
    [sheet orderOut:nil];
    [self tutorial:self];
}

- (void)reviewSheetDidEnd:(NSWindow*)sheet returnCode:(NSInteger)code contextInfo:(void*)context {
    if (code != NSAlertDefaultReturn) return;
    [sheet orderOut:nil];
    if (platformOpenPage([[NSUserDefaults standardUserDefaults] stringForKey:@"ReviewPageURL"])) return;
    [self simpleAlert:@"Leave Review":@"There is no web page to open."];
}

- (void)simpleAlert:(NSString*)title:(NSString*)detail {
    [self ignoreKeysSoon];
    NSRunAlertPanel(title, @"%@", @"OK", nil, nil, detail);
}

// --- Shut-down ---

- (void)storeFrame {
    NSWindow* const window = [self window];
    if (window && !isShown(window)) return;
    const NSRect frame = window ? [window frame] : NSZeroRect;
    [self setSetting:@"x" to:wholePoints(frame.origin.x)];
    [self setSetting:@"y" to:wholePoints(frame.origin.y)];
    [self setSetting:@"cx" to:wholePoints(frame.size.width)];
    [self setSetting:@"cy" to:wholePoints(frame.size.height)];
}

- (void)terminateConsole {
    [NSObject cancelPreviousPerformRequestsWithTarget:self];
    [self storeFrame];
    [self saveSettings];
    [self saveFuncFile];
    [self reportUnwritten];
    [[self window] orderOut:nil]; // others may have to be waited for
    platformKeepClipboard(copiedAt);
    [NSObject cancelPreviousPerformRequestsWithTarget:self];
    [funcFilePath release];
    [prefFilePath release];
    funcFilePath = prefFilePath = nil;
    keeper.Close();
    [settings release];
    settings = nil;
}

@end
