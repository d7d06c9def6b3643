// SPDX-License-Identifier: MIT
#import "Platform.h"

#import "PelmoAppDelegate.h"

#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#include <X11/Xlib.h>

static const CGFloat BUTTON_ROOM = 12; // points beside a title

// Of GSFontHinting: the shapes of letters are fitted to the pixels, their widths are not.
static const int WIDTHS_OF_FONT = 16;

// What waits in front of it, changes of the focus, is dealt with.
bool platformCloseIsWaiting(NSWindow* window) {
    for (;;) {
        NSEvent* const event = [NSApp nextEventMatchingMask:NSAppKitDefinedMask
                                                  untilDate:[NSDate date]
                                                     inMode:NSDefaultRunLoopMode
                                                    dequeue:YES];
        if (!event) return false;
        if ([event subtype] == GSAppKitWindowClose && [event window] == window) {
            [NSApp postEvent:event atStart:YES];
            return true;
        }
        [NSApp sendEvent:event];
    }
}

bool platformTakeEarlyRelease() {
    return [NSApp nextEventMatchingMask:NSLeftMouseUpMask
                              untilDate:[NSDate date]
                                 inMode:NSEventTrackingRunLoopMode
                                dequeue:YES] != nil;
}

// GNUstep's key codes are those of the X server, which depend on the keyboard; the character tells the key.
uint32_t platformKeyCode(NSEvent* event) {
    NSString* const text = [event charactersIgnoringModifiers];
    if ([text length] == 0) return KEY_OTHER;
    const bool isOnKeypad = ([event modifierFlags] & NSNumericPadKeyMask) != 0;
    switch ([text characterAtIndex:0]) {
    case 13:
    case 10: return isOnKeypad ? KEY_ENTER : KEY_RETURN;
    case 3: return KEY_ENTER;
    case 9:
    case 25: return KEY_TAB; // 25: with Shift
    case 27: return KEY_ESCAPE;
    case 8:
    case 127: return KEY_BACKSPACE;
    case NSDeleteFunctionKey: return KEY_FORWARD_DELETE;
    case NSF6FunctionKey: return KEY_F6;
    case NSF10FunctionKey: return KEY_F10;
    case NSHomeFunctionKey: return KEY_HOME;
    case NSEndFunctionKey: return KEY_END;
    case NSLeftArrowFunctionKey: return KEY_LEFT;
    case NSRightArrowFunctionKey: return KEY_RIGHT;
    case NSUpArrowFunctionKey: return KEY_UP;
    case NSDownArrowFunctionKey: return KEY_DOWN;
    case 'a':
    case 'A':
    case 1: return KEY_A;
    default: return KEY_OTHER;
    }
}

// GNUstep counts the widths of letters in whole points, and draws them in whole pixels, sixteen at a time: on
// a dense screen words had gaps and letters ran into each other. There they have the widths of their font.
static void useEvenText() {
    NSUserDefaults* const defaults = [NSUserDefaults standardUserDefaults];
    const double scale = [defaults doubleForKey:@"GSScaleFactor"];
    if (scale != 0 && scale != 1) [defaults registerDefaults:@{@"GSFontHinting" : @(WIDTHS_OF_FONT)}];
}

void platformRegisterDefaults() {
    // The menu in the window, the scroller at its right, no icon of the application on the desktop, a
    // minimized window left to the window manager, and in menus the names of the keys as they stand
    // on the keyboards here.
    [[NSUserDefaults standardUserDefaults] registerDefaults:@{
        @"NSMenuInterfaceStyle" : @"NSWindows95InterfaceStyle",
        @"NSScrollViewInterfaceStyle" : @"NSMacintoshInterfaceStyle",
        @"GSSuppressAppIcon" : @"YES",
        @"GSCommandKeyString" : @"Alt+",
        @"GSShiftKeyString" : @"Shift+",
        @"GSAppOwnsMiniwindow" : @"NO"
    }];
    useEvenText();
    // GNUstep looks for each image under every ending that it can read, which took half of the start. Ours
    // and its own need none of the 200 kinds that this class adds.
    [NSImageRep unregisterImageRepClass:NSClassFromString(@"GSImageMagickImageRep")];
}

bool platformHasDisplay() {
    // GNUstep's own default for another server.
    if ([[NSUserDefaults standardUserDefaults] stringForKey:@"NSHost"]) return true;
    Display* const display = XOpenDisplay(nullptr);
    if (display) XCloseDisplay(display);
    return display != nullptr;
}

// Xlib calls it where it notices, which is never in a signal handler, and would exit behind it, with all that
// libraries do then on a connection that is gone.
static int endWithoutDisplay(Display*) {
    fputs("Tallyquill: the display has gone away.\n", stderr);
    [(PelmoAppDelegate*)[NSApp delegate] displayWasLost];
    _exit(1);
}

void platformAfterLaunch() {
    setlocale(LC_NUMERIC, "C");
    XSetIOErrorHandler(endWithoutDisplay);
}

NSArray* platformFileArguments(int argc, const char* const* argv) {
    NSFileManager* const manager = [NSFileManager defaultManager];
    NSMutableArray* const paths = [NSMutableArray array];
    for (int i = 1; i < argc; ++i) {
        if (strcmp(argv[i], "--trace") == 0 || strcmp(argv[i], "--new-window") == 0) continue;
        if (argv[i][0] == '-') {
            ++i; // -Key Value sets a default of GNUstep
            continue;
        }
        NSString* const path = [manager stringWithFileSystemRepresentation:argv[i] length:strlen(argv[i])];
        NSString* const folder = [manager currentDirectoryPath];
        [paths addObject:[path isAbsolutePath] ? path : [folder stringByAppendingPathComponent:path]];
    }
    return paths;
}

// [NSWorkspace openURL:] puts up a modal panel here and hangs.
bool platformOpenPage(NSString* address) {
    if ([address length] == 0 || [address hasPrefix:@"-"] || ![NSURL URLWithString:address]) return false;
    NSTask* const task = [[[NSTask alloc] init] autorelease];
    [task setLaunchPath:@"/bin/sh"];
    NSString* const script = @"command -v xdg-open >/dev/null || exit 1; "
                             @"xdg-open \"$1\" >/dev/null 2>&1 </dev/null &";
    [task setArguments:@[ @"-c", script, @"sh", address ]];
    [task launch];
    [task waitUntilExit];
    return [task terminationStatus] == 0;
}

NSStatusBar* platformStatusBar() {
    return nil;
}

void platformHide(NSWindow* window) {
    [window miniaturize:nil];
}

// The window manager's frame is not told from the window's own once that was taken away: shown again it would
// be larger by the frame, with nothing painted there. A window made anew for every opening has the size of
// the first. The prompt is the label of the field for the name here.
void platformWillOpenPanel(NSSavePanel* panel, NSString* button) {
    [panel setOneShot:YES];
    [panel setPrompt:@"Name:"];
    NSButton* const accept = [[panel contentView] viewWithTag:NSFileHandlingPanelOKButton];
    [accept setTitle:button];
    const NSRect before = [accept frame];
    const CGFloat wider = std::ceil([[accept cell] cellSize].width + BUTTON_ROOM) - NSWidth(before);
    if (wider <= 0) return;
    for (NSView* const one in [[accept superview] subviews]) {
        NSRect frame = [one frame];
        frame.origin.x -= wider;
        if (one == accept) frame.size.width += wider;
        if ([one isKindOfClass:[NSButton class]]) [one setFrame:frame];
    }
}

// Lines are broken at blanks. A word that is longer than a line stays whole.
NSString* platformSheetText(NSString* text) {
    const NSUInteger most = 52; // characters, in a window of the first size
    NSMutableString* const broken = [NSMutableString string];
    NSUInteger length = 0; // of the last line
    for (NSString* const line in [text componentsSeparatedByString:@"\n"]) {
        NSString* between = [broken length] > 0 ? @"\n" : @"";
        for (NSString* const word in [line componentsSeparatedByString:@" "]) {
            if ([between isEqualToString:@" "] && length + 1 + [word length] > most) between = @"\n";
            length = [word length] + ([between isEqualToString:@" "] ? length + 1 : 0);
            [broken appendFormat:@"%@%@", between, word];
            between = @" ";
        }
    }
    return broken;
}

// GNUstep's name for the X server's primary selection.
void platformOfferSelection(NSString* text) {
    NSPasteboard* const board = [NSPasteboard pasteboardWithName:@"Selection"];
    [board declareTypes:@[ NSStringPboardType ] owner:nil];
    [board setString:text forType:NSStringPboardType];
}

bool platformWindowManagerMoves() {
    return true;
}

// GNUstep draws the first part at the end of the coordinates, which is the bottom of a flipped view.
void platformDrawVertical(NSRect frame, NSImage* top, NSImage* fill, NSImage* bottom) {
    NSDrawThreePartImage(frame, bottom, fill, top, YES, NSCompositeSourceOver, 1, NO);
}
